#pragma once

#include "library/key_index.h"
#include "records/download_mode.h"
#include "records/media_records.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// Which songs an event folder already holds, as it was at one moment. Made by one walk through the
/// folder; what an entry costs afterwards does not grow with the number of files. Immutable once
/// made, then for any thread; a folder that cannot be read holds nothing.
namespace reelcrate {

class FinishedFileIndex {
public:
    FinishedFileIndex(const QString& eventFolder, DownloadMode mode);

    /// The absolute path of the newest file with the entry's identifier in its name, or else of the
    /// newest whose name matches the entry's title. Of files with the same date the first by path.
    std::optional<QString> existingDownloadedFile(const PlaylistEntry& entry) const;

private:
    std::optional<qsizetype> findByIdentifier(const PlaylistEntry& entry) const;
    std::optional<qsizetype> findByTitle(const PlaylistEntry& entry) const;

    QStringList m_paths;                          // newest first; the other members name files by
    QStringList m_loweredNames;                   // their position in this list
    QHash<QString, qsizetype> m_fileByBracketed;  // the first file with the text in brackets
    std::vector<qsizetype> m_fileByKey;           // of the key at this position in m_keys
    KeyIndex m_keys;
};

}  // namespace reelcrate
