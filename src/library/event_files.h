#pragma once

#include <QList>
#include <QString>

#include <optional>

/// What lies in an event folder, by its names: songs, what downloads have left half, and what is no
/// business of the event's. Any thread; the listing is read from the disk at each call. What cannot
/// be looked at is listed with that as its fault.
namespace reelcrate {

struct EventFile {
    enum class Kind { song, video, playlist, halfDownload, foreign };

    /// Why it is not played, whatever its content is.
    enum class Fault {
        hidden,         ///< its name begins with a dot: no player shows it
        foreignName,    ///< its name is in another encoding than this system's
        linkToNowhere,  ///< a symbolic link to what is not there
        linkedFolder,   ///< a symbolic link to a folder, into which nobody looks
        unreadable,     ///< a folder that may not be read
        noRegularFile,  ///< a pipe or the like
    };

    QString name;  ///< the path below the folder
    Kind kind = Kind::foreign;
    std::optional<Fault> fault = std::nullopt;

    friend bool operator==(const EventFile&, const EventFile&) = default;
};

/// What a file of this name is: a pure function.
EventFile::Kind kindOfFile(const QString& name);

/// All that is in the folder and below it, sorted by name, without what desktops put into every
/// folder. A working folder in which a download has left something is one entry.
QList<EventFile> eventFiles(const QString& folder);

}  // namespace reelcrate
