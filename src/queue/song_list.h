#pragma once

#include "queue/song_line.h"

#include <QList>
#include <QString>

/// The songs that a message or a table names. Pure; any thread. What cannot be read as a song is
/// told with its line; nothing else fails.
namespace reelcrate {

/// A list has at most so many lines that say anything: it is read while the window waits.
inline constexpr qsizetype mostListLines = 5'000;

struct ListedSong {
    int line = 1;
    NamedSong song;

    friend bool operator==(const ListedSong&, const ListedSong&) = default;
};

/// What is to be said of a line of the list.
struct LineNote {
    int line = 1;
    QString text;  ///< the line, or its beginning
    QString note;  ///< why it is no song, or what of it was left out

    friend bool operator==(const LineNote&, const LineNote&) = default;
};

struct SongList {
    QList<ListedSong> songs;  ///< in the list's order, each as often as it is named
    QList<LineNote> unread;   ///< lines that are no songs
    QList<LineNote> remarks;  ///< on lines that are
    bool isTooLong = false;   ///< nothing was read
};

/// A table has a line, one of its first twenty, that names its columns; what stands above it is no
/// song. Anything else is read line by line. A line that says "Title - Artist" tells the order of
/// those below it.
SongList readSongList(const QString& text);

}  // namespace reelcrate
