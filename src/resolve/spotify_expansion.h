#pragma once

#include "records/media_records.h"

#include <QString>

/// Lists the songs behind a Spotify link with the optional Spotify tool. Blocks for the life of the
/// tool's run: background threads only. A failure arrives as the resolution's text for the user.
namespace reelcrate {

class ShellRunner;
class ToolDiscovery;

class SpotifyExpansion {
public:
    SpotifyExpansion(ShellRunner& shell, const ToolDiscovery& discovery);

    /// Takes up to 120 seconds.
    QueueResolution resolveSpotifyEntries(const QString& link) const;

private:
    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
};

}  // namespace reelcrate
