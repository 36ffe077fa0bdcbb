#pragma once

#include "records/media_records.h"

#include <QList>
#include <QString>

#include <optional>

/// The command lines that ask yt-dlp what a link stands for, and the readers of what it prints.
/// Pure functions; any thread. Output that cannot be read gives nothing, or an empty list.
namespace reelcrate {

/// Asks for title, duration, thumbnail and page address of one link. `tool` is a path or a name.
QString mediaInfoCommand(const QString& tool, const QString& link);

/// Reads the answer to `mediaInfoCommand`. `link` is what was asked about; it stands in where the
/// tool reports no web address of its own.
std::optional<MediaInfo> mediaInfoFromOutput(const QString& output, const QString& link);

/// Asks for the songs of a playlist without reading each of them. `tool` is a path or a name.
QString playlistCommand(const QString& tool, const QString& link);

/// Reads the answer to `playlistCommand`, in playlist order; entries without a title or without an
/// address are left out.
QList<PlaylistEntry> playlistEntriesFromOutput(const QString& output);

}  // namespace reelcrate
