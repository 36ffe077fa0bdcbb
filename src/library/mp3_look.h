#pragma once

#include <QString>

#include <optional>

/// What an MP3 tells of itself without being decoded: enough to tell a song from what a crash or a
/// full disk left under its name. Pure but for reading the file; any thread.
namespace reelcrate {

/// Whether a file can be a song that is listed with this length ("3:25"; may be empty). Of other
/// kinds than MP3, everything can.
bool canBeSong(const QString& path, const QString& listedLength);

/// The length of an MP3 that libmp3lame has just written, in seconds, told by going from frame to
/// frame: what it decodes to, and less than a frame more. Absent where the frames do not fill the
/// file to its end.
std::optional<double> secondsOfFrames(const QString& path);

}  // namespace reelcrate
