#pragma once

#include "records/download_item.h"

#include <QList>
#include <QString>

/// The playlist of an event, for players: extended M3U in UTF-8, with names relative to the folder
/// that it lies in, so that the folder can be copied anywhere.
namespace reelcrate {

/// `EVENT NAME.m3u8`, from the path of the event's folder. Pure.
QString playlistName(const QString& eventFolder);

/// The complete rows whose files lie in the folder, in their order, each file once. Pure.
QList<DownloadItem> rowsForPlaylist(const QList<DownloadItem>& rows, const QString& eventFolder);

/// The file's text. A row whose file's name holds a line break, which no such file can name, is
/// left out. Pure.
QString playlistText(const QList<DownloadItem>& rows, const QString& eventFolder);

struct PlaylistSaving {
    QString path;         ///< of the playlist
    qsizetype songs = 0;  ///< none: nothing was written
    QString failure;      ///< the system's reason; empty when all went well
};

/// Any thread. Writes the playlist of the rows whose files are there into the folder; what was
/// there under its name is replaced whole, or stays as it was.
PlaylistSaving savePlaylist(const QList<DownloadItem>& rows, const QString& eventFolder);

/// What became of it, for the user. Pure.
QString playlistSummary(const PlaylistSaving& saving);

}  // namespace reelcrate
