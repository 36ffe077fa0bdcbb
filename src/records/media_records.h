#pragma once

#include "records/source_type.h"

#include <QList>
#include <QString>

#include <optional>

/// What reading a link yields. Plain values; any thread.
namespace reelcrate {

/// The answer of a probe of one link.
struct MediaInfo {
    QString title;
    QString duration;
    QString thumbnailURL;
    QString resolvedURL;  ///< the media's own page address; may be empty

    friend bool operator==(const MediaInfo&, const MediaInfo&) = default;
};

/// One media item behind a link: a single video yields one, a playlist one per song.
struct PlaylistEntry {
    QString url;
    SourceType source = SourceType::link;
    QString title;
    QString duration;
    QString thumbnailURL;

    friend bool operator==(const PlaylistEntry&, const PlaylistEntry&) = default;
};

/// The outcome of reading one row's link: entries on success, otherwise the text for the user.
struct QueueResolution {
    QList<PlaylistEntry> entries;
    std::optional<QString> failure;

    friend bool operator==(const QueueResolution&, const QueueResolution&) = default;
};

}  // namespace reelcrate
