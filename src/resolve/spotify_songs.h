#pragma once

#include "records/download_item.h"
#include "records/download_mode.h"
#include "records/media_records.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

/// The songs behind a Spotify link: the command line that lists them with spotdl, the reader of
/// what it prints, and the search by which yt-dlp finds each song elsewhere. Pure functions; any
/// thread. A list that cannot be read is a resolution with a text for the user.
namespace reelcrate {

/// `searchPath` is the colon-separated list of tool folders, `tool` spotdl's path.
QString spotifyListCommand(const QString& searchPath, const QString& tool, const QString& link);

/// Reads the exit status of `spotifyListCommand` and what it printed on either stream.
QueueResolution resolutionFromSpotifyOutput(int status, const QString& output,
                                            const QString& errors = {});

/// The resolution of every Spotify link while spotdl is not installed.
QueueResolution spotifyNeedsSetup();

/// In the given order; songs without a name or an address, and values that are no objects, are
/// left out.
QList<PlaylistEntry> playlistEntriesFromSpotifyJSON(const QJsonArray& songs);

/// The main artist, or else all artists; empty when there is none.
QString spotifyArtistName(const QJsonObject& song);

/// The text for the user that fits what spotdl printed.
QString spotifyFailureMessage(const QString& output);

/// A search of yt-dlp for the one best match of the row.
QString spotifySearchQuery(const DownloadItem& item, DownloadMode mode);

/// The same search for the hits among which the best match is chosen.
QString spotifyHitsQuery(const DownloadItem& item, DownloadMode mode);

}  // namespace reelcrate
