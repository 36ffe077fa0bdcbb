#pragma once

#include <QString>

#include <optional>

/// What one line of a message says of a song: "Artist - Title", "Title by Artist", and whatever
/// people put around that. Pure functions; any thread. A line that names no song has the reason for
/// the user.
namespace reelcrate {

struct NamedSong {
    QString artist;
    QString title;
    std::optional<double> seconds = std::nullopt;  ///< absent where none is given

    friend bool operator==(const NamedSong&, const NamedSong&) = default;
};

struct ReadLine {
    std::optional<NamedSong> song;
    QString reason;  ///< why there is no song
    QString remark;  ///< on a song: what of the line was left out, where that is no mere ornament
};

/// Which of two names with a dash between comes first.
enum class NameOrder { artistFirst, titleFirst };

ReadLine readSongLine(const QString& line, NameOrder order = NameOrder::artistFirst);

/// The two parts of a line with one dash, in their order; absent without such a dash.
std::optional<std::pair<QString, QString>> dashedParts(const QString& line);

}  // namespace reelcrate
