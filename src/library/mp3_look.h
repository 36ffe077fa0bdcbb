#pragma once

#include <QString>

#include <optional>

/// What an MP3 says of itself on its first pages, without being decoded: enough to tell a song from
/// what a crash or a full disk left under its name. Pure but for reading the file; any thread.
namespace reelcrate {

struct Mp3Look {
    double seconds = 0;       ///< as its header has it, or as its size and its bit rate give it
    qint64 missingBytes = 0;  ///< of those that its header counts; never negative
};

/// Absent when there is no sound in the file, or when it is no MP3.
std::optional<Mp3Look> lookAtMp3(const QString& path);

/// Whether a file can be a song that is listed with this length ("3:25"; may be empty). Of other
/// kinds than MP3, everything can.
bool canBeSong(const QString& path, const QString& listedLength);

}  // namespace reelcrate
