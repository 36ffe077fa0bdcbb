#include "resolve/media_probe.h"

#include "resolve/media_probe_output.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

namespace reelcrate {

namespace {

constexpr double mediaInfoLimitSeconds = 45;
constexpr double playlistLimitSeconds = 90;

}  // namespace

MediaProbe::MediaProbe(ShellRunner& shell, const ToolDiscovery& discovery)
    : m_shell(shell), m_discovery(discovery) {}

QString MediaProbe::tool() const {
    const QString command = QStringLiteral("yt-dlp");
    return m_discovery.toolPath(command).value_or(command);
}

std::optional<MediaInfo> MediaProbe::fetchMediaInfo(const QString& link) const {
    const CommandResult result =
        m_shell.runShellSync(mediaInfoCommand(tool(), link), mediaInfoLimitSeconds);
    if (result.status != 0)
        return std::nullopt;
    return mediaInfoFromOutput(result.output, link);
}

QList<PlaylistEntry> MediaProbe::fetchYouTubePlaylistEntries(const QString& link) const {
    const CommandResult result =
        m_shell.runShellSync(playlistCommand(tool(), link), playlistLimitSeconds);
    if (result.status != 0)
        return {};
    return playlistEntriesFromOutput(result.output);
}

}  // namespace reelcrate
