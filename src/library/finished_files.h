#pragma once

#include "records/download_mode.h"
#include "records/media_records.h"

#include <QString>
#include <QStringList>

#include <filesystem>
#include <optional>

/// The files that downloads have left in an event folder, and the texts by which a song and a file
/// are known for the same. Any thread; the listing and the dates are read from the disk at each
/// call. What cannot be read is not listed, or counts as infinitely old; nothing else fails.
namespace reelcrate {

/// The absolute paths of all finished files in the folder and below it, hidden ones included,
/// sorted by path. Symbolic links are neither listed nor followed; the parts of downloads that are
/// not finished (".part", ".ytdl") are not listed.
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

/// The newest of the files that are in the folder and not in `beforeFiles`; the folder itself when
/// there is none. Downloads side by side can take one another's file for theirs: it is only for
/// those that name no file themselves.
QString bestOutputPath(const QStringList& beforeFiles, const QString& eventFolder);

/// The letters and digits of the text outside square brackets, without case and accents: what
/// remains of a title in whatever file name it was turned into.
QString normalizedDownloadKey(const QString& text);

/// The identifier that stands in square brackets in the names of the entry's files. Nothing unless
/// the entry is one of the video site and its link names a video.
std::optional<QString> existingDownloadID(const PlaylistEntry& entry);

}  // namespace reelcrate
