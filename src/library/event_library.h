#pragma once

#include "library/finished_file_index.h"
#include "library/place_file.h"
#include "records/download_mode.h"
#include "records/media_records.h"

#include <QList>
#include <QString>

#include <functional>
#include <mutex>
#include <optional>

/// What the program knows of the songs in its event folders: which are there, and which of them it
/// has put there itself since it started. Background threads, any number at once: each question
/// looks at the disk anew.
namespace reelcrate {

/// An event's folder, absolute, and what counts as a finished file in it.
struct EventTarget {
    QString folder;
    DownloadMode mode = DownloadMode::audio;

    friend bool operator==(const EventTarget&, const EventTarget&) = default;
};

/// What came of a file that was to enter an event folder.
struct Arrival {
    enum class Outcome {
        entered,    ///< it is there now, under `path`
        wasThere,   ///< the same song was there, under `path`; the file stays where it was
        notPlaced,  ///< for `reason`
    };

    Outcome outcome = Outcome::notPlaced;
    QString path;
    QString reason;
};

class EventLibrary {
public:
    /// Whether two files of one name hold the same song. `isOfThisRun`: both came since the program
    /// started, by links that are known for different songs.
    using IsSameSong =
        std::function<bool(const QString& file, const QString& there, bool isOfThisRun)>;

    /// The absolute paths of the files that are there for these entries already, in their order,
    /// from one look at the folder.
    QList<std::optional<QString>> existingDownloadedFiles(const QList<PlaylistEntry>& entries,
                                                          const EventTarget& target) const;

    /// From now on the file counts as nobody's song.
    void distrust(const QString& path);

    /// Moves a finished file into the event folder, under its name, or under the next free one
    /// where another song has that. Never replaces a file.
    Arrival enter(const QString& file, const QString& songKey, const QString& eventFolder,
                  const IsSameSong& isSameSong);

private:
    FileWriters writers() const;
    std::optional<QString> writerOf(const QString& path) const;
    Placement placeAs(const QString& file, const QString& path, const QString& songKey);

    mutable std::mutex m_mutex;
    FileWriters m_writers;  ///< of the files that entered since the program started
};

}  // namespace reelcrate
