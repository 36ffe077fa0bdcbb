#include "resolve/media_probe.h"

#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

namespace reelcrate {

namespace {

constexpr double mediaInfoLimitSeconds = 45;
constexpr double playlistLimitSeconds = 90;

}  // namespace

MediaProbe::MediaProbe(ShellRunner& shell, const ToolDiscovery& discovery)
    : m_shell(shell), m_discovery(discovery) {}

ProbeTool MediaProbe::tool() const {
    const QString command = QStringLiteral("yt-dlp");
    return {m_discovery.toolPath(command).value_or(command), m_discovery.toolSearchPath()};
}

LinkProbe MediaProbe::fetchMediaInfo(const QString& link, int playlistItem) const {
    const CommandResult result =
        m_shell.runShellApart(mediaInfoCommand(tool(), link, playlistItem), mediaInfoLimitSeconds);
    return {mediaFromOutput(result.output), result.status == CommandResult::timedOut,
            result.status != 0, result.errors};
}

ListingProbe MediaProbe::fetchPlaylistEntries(const QString& link, SourceType source) const {
    const CommandResult result =
        m_shell.runShellApart(playlistCommand(tool(), link), playlistLimitSeconds);
    if (result.status != 0)
        return {{}, result.errors};
    return {listingFromOutput(result.output, link, source), result.errors};
}

}  // namespace reelcrate
