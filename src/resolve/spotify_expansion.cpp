#include "resolve/spotify_expansion.h"

#include "resolve/spotify_songs.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

namespace reelcrate {

namespace {

constexpr double limitSeconds = 120;

}  // namespace

SpotifyExpansion::SpotifyExpansion(ShellRunner& shell, const ToolDiscovery& discovery)
    : m_shell(shell), m_discovery(discovery) {}

QueueResolution SpotifyExpansion::resolveSpotifyEntries(const QString& link) const {
    const auto tool = m_discovery.toolPath(QStringLiteral("spotdl"));
    if (!tool)
        return spotifyNeedsSetup();
    const CommandResult result = m_shell.runShellApart(
        spotifyListCommand(m_discovery.toolSearchPath(), *tool, link), limitSeconds);
    return resolutionFromSpotifyOutput(result.status, result.output, result.errors);
}

}  // namespace reelcrate
