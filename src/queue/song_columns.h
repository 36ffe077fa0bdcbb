#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// What the columns of a table of songs hold, as told by the names in its first line, in the
/// languages of those who use the program and of the exports that they send. Pure functions; any
/// thread. A line that names no columns is absent.
namespace reelcrate {

struct SongColumns {
    qsizetype title = -1;
    qsizetype artist = -1;  ///< -1: the titles hold the artists, too
    qsizetype length = -1;  ///< -1: none is told
    bool inMilliseconds = false;
};

/// Of a line that names a title's column and at least one other.
std::optional<SongColumns> songColumns(const QStringList& names);

enum class ColumnKind { none, title, artist, length, milliseconds, other };

ColumnKind columnKind(const QString& name);

/// What a cell of a length column says, in seconds: 3:45, 0:03:45, whole seconds or milliseconds,
/// 3m45s, PT3M45S. Absent for what is no song's length, or may be read in two ways.
std::optional<double> secondsOfCell(const QString& cell, bool inMilliseconds);

}  // namespace reelcrate
