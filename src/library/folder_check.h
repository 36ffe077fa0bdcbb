#pragma once

#include "library/event_check.h"

#include <QList>
#include <QString>

#include <functional>
#include <stop_token>

/// Looks at all that is in an event folder, and decodes each of its songs from start to end, as
/// many at a time as there are processors. What it finds stands in the records that come back.
namespace reelcrate {

class ShellRunner;
class ToolDiscovery;

class FolderCheck {
public:
    /// How many of the songs have been decoded. Called on any thread, several at once.
    using Progress = std::function<void(qsizetype done, qsizetype all)>;

    /// Loudness is measured, or else read from the songs' tags.
    FolderCheck(ShellRunner& shell, const ToolDiscovery& discovery,
                MeasureLoudness loudness = MeasureLoudness::no);

    /// Background threads; blocks until all is decoded. After a stop request it returns early, with
    /// songs in it that nobody has looked at.
    QList<CheckedFile> check(const QString& folder, const std::stop_token& stop,
                             const Progress& progress) const;

private:
    CheckedFile checked(const EventFile& file, const QString& path) const;

    const MeasureLoudness m_loudness;
    const SongMeasurer m_songs;
    const VideoMeasurer m_videos;
};

}  // namespace reelcrate
