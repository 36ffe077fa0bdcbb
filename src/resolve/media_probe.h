#pragma once

#include "records/media_records.h"

#include <QList>
#include <QString>

#include <optional>

/// Reads what links stand for with the downloader, without downloading anything. Blocks for the
/// life of the tool's run: background threads only. What cannot be read is absent or empty; why is
/// the caller's to say.
namespace reelcrate {

class ShellRunner;
class ToolDiscovery;

class MediaProbe {
public:
    MediaProbe(ShellRunner& shell, const ToolDiscovery& discovery);

    /// Title, duration, thumbnail and page address of one link; takes up to 45 seconds.
    std::optional<MediaInfo> fetchMediaInfo(const QString& link) const;

    /// The songs of a video-site playlist, in its order; takes up to 90 seconds.
    QList<PlaylistEntry> fetchYouTubePlaylistEntries(const QString& link) const;

private:
    QString tool() const;

    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
};

}  // namespace reelcrate
