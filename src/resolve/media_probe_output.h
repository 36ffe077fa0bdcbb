#pragma once

#include "records/media_records.h"
#include "resolve/search_match.h"

#include <QList>
#include <QString>

#include <optional>

/// The command lines that ask yt-dlp what a link stands for, and the readers of what it prints on
/// standard output. Pure functions; any thread. Output that cannot be read gives nothing, or an
/// empty list.
namespace reelcrate {

/// What the command lines are made with.
struct ProbeTool {
    QString path;        ///< or a name
    QString searchPath;  ///< colon-separated folders, put before the inherited ones
};

/// Asks for title, duration, thumbnail and page address of each of the media behind a link, or of
/// one of them, counted from 1.
QString mediaInfoCommand(const ProbeTool& tool, const QString& link, int playlistItem = 0);

/// What was printed about the media behind a link.
struct ProbedMedia {
    QList<MediaInfo> media;  ///< in the order of the page
    qsizetype counted = 0;   ///< how many the tool looked at, as far as it said
    qsizetype onSite = 0;    ///< how many the site counts
};

/// Reads the answer to `mediaInfoCommand`. Other lines, which a configuration file of the user's
/// may make the tool print, are passed over.
ProbedMedia mediaFromOutput(const QString& output);

/// Asks for the songs of a playlist without reading each of them.
QString playlistCommand(const ProbeTool& tool, const QString& link);

/// What a listing holds: entries in its order, and how many the site counts.
struct Listing {
    QList<PlaylistEntry> entries;
    std::optional<CutListing> cut;  ///< when the site counts more than are listed
};

/// Reads the answer to `playlistCommand` for a link of this source. An entry without a title has
/// still to be read. One that is not there any more (null) is left out, and counts as not listed.
Listing listingFromOutput(const QString& output, const QString& link, SourceType source);

/// The same answer, to a search on the video site.
QList<SearchHit> hitsFromOutput(const QString& output);

}  // namespace reelcrate
