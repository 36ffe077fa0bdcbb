#pragma once

#include "records/download_mode.h"
#include "records/media_records.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

/// Which songs an event folder already holds, as it was at one moment. Made by one walk through the
/// folder; immutable once made, then for any thread. A folder that cannot be read holds nothing.
namespace reelcrate {

/// Which song wrote a file, by its key, for the files of which that is known.
using FileWriters = QHash<QString, QString>;

class FinishedFileIndex {
public:
    /// `writers` is asked after the walk, so that it knows of each file that was seen.
    FinishedFileIndex(const QString& eventFolder, DownloadMode mode,
                      const std::function<FileWriters()>& writers = {});

    /// The absolute path of the file that the same song is known to have written, or of the newest
    /// with the entry's identifier in its name, or else of the newest whose name matches the
    /// entry's title. A file that is known to be another song's is none of these, nor one that
    /// cannot be a whole song. Of files with the same date the first by path.
    std::optional<QString> existingDownloadedFile(const PlaylistEntry& entry) const;

private:
    using IsAnswer = std::function<bool(qsizetype file)>;

    std::optional<qsizetype> firstFile(const PlaylistEntry& entry, const IsAnswer& isAnswer) const;
    std::optional<qsizetype> findByTitle(const PlaylistEntry& entry) const;

    const QStringList m_paths;         // newest first; other members name files by
    const QStringList m_loweredNames;  // their position in this list
    const FileWriters m_writers;
    std::vector<std::optional<QString>> m_titleKeys;
};

}  // namespace reelcrate
