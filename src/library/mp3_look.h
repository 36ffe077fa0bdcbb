#pragma once

#include <QString>

#include <optional>

/// What an MP3 tells of itself without being decoded: enough to tell a song from what a crash or a
/// full disk left under its name. Pure but for reading the file; any thread.
namespace reelcrate {

struct SongMeasure;

/// Whether a file can be a song that is listed with this length ("3:25"; may be empty). Of other
/// kinds than MP3, everything can.
bool canBeSong(const QString& path, const QString& listedLength);

/// The length in seconds of an MP3 that libmp3lame has written, told by going from frame to frame:
/// what it decodes to. Absent where the frames are not those that its header counts, from there to
/// the file's end.
std::optional<double> secondsOfFrames(const QString& path);

/// What decoding all of such an MP3 would tell, at little more than nothing: only its ends are
/// decoded, as far as the edges need it. Absent like the other.
std::optional<SongMeasure> measureEnds(const QString& path);

}  // namespace reelcrate
