#pragma once

#include "records/download_mode.h"
#include "records/media_records.h"

#include <QLatin1String>
#include <QString>
#include <QStringList>

#include <filesystem>
#include <optional>

/// The files that downloads have left in an event folder, and the texts by which a song and a file
/// are known for the same. Any thread; the listing and the dates are read from the disk at each
/// call. What cannot be read is not listed, or counts as infinitely old; nothing else fails.
namespace reelcrate {

/// The folder inside an event folder in which downloads work.
inline constexpr QLatin1String workFolderName{".reelcrate"};

/// The absolute paths of all finished files in the folder and below it, hidden ones included,
/// sorted by path. Symbolic links are neither listed nor followed; what downloads are at work on is
/// not listed, nor are the parts that earlier ones left (".part", ".ytdl").
QStringList regularFiles(const QString& folder);

/// When the file's content was last changed; the earliest possible time when that is unknown.
std::filesystem::file_time_type modificationDate(const QString& path);

/// Whether the path's extension is one of those that downloads in this mode end with.
bool hasFinishedExtension(const QString& path, DownloadMode mode);

/// Whether the path's extension is this one, in any letter case. A name whose only dot leads has
/// none.
bool hasExtension(const QString& path, const QString& extension);

/// The last component of a path without its extension; all of it when its only dot leads.
QString nameWithoutExtension(const QString& path);

/// The letters and digits of the text outside square brackets, without case and accents: what
/// remains of a title in whatever file name it was turned into.
QString normalizedDownloadKey(const QString& text);

/// The identifier that stands in square brackets in the names of the entry's files. Nothing unless
/// the entry is one of the video site and its link names a video alone.
std::optional<QString> existingDownloadID(const PlaylistEntry& entry);

}  // namespace reelcrate
