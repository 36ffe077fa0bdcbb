#pragma once

#include "records/source_type.h"

#include <QList>
#include <QString>

#include <optional>

/// What reading a link yields. Plain values; any thread.
namespace reelcrate {

/// The answer of a probe of one link, or of one of the media behind it.
struct MediaInfo {
    QString title;
    QString duration;
    QString thumbnailURL;
    QString resolvedURL;    ///< the media's own page address; empty when that is no web address
    int playlistIndex = 0;  ///< from 1, where the link stands for several; else 0

    friend bool operator==(const MediaInfo&, const MediaInfo&) = default;
};

/// One media item behind a link: a single video yields one, a playlist one per song.
struct PlaylistEntry {
    QString url;
    SourceType source = SourceType::link;
    QString title;
    QString duration;
    QString thumbnailURL;
    int playlistItem = 0;                           ///< see DownloadItem
    bool isRead = true;                             ///< false: only its address is known yet
    std::optional<QString> failure = std::nullopt;  ///< why it could not be read, for the user

    friend bool operator==(const PlaylistEntry&, const PlaylistEntry&) = default;
};

/// How many of the songs that a site counts it has listed, where that is not all.
struct CutListing {
    qsizetype listed = 0;
    qsizetype counted = 0;

    friend bool operator==(const CutListing&, const CutListing&) = default;
};

/// The outcome of reading one row's link: entries on success, otherwise the text for the user.
struct QueueResolution {
    QList<PlaylistEntry> entries;
    std::optional<QString> failure = std::nullopt;
    std::optional<CutListing> cut = std::nullopt;
    QString note = {};     ///< what is missing in it, for the user
    QString remarks = {};  ///< of the tool, for the log

    friend bool operator==(const QueueResolution&, const QueueResolution&) = default;
};

}  // namespace reelcrate
