#pragma once

#include <QString>

/// What an MP3 says of itself on its first pages, without being decoded: enough to tell a song from
/// what a crash or a full disk left under its name. Pure but for reading the file; any thread.
namespace reelcrate {

/// Whether a file can be a song that is listed with this length ("3:25"; may be empty). Of other
/// kinds than MP3, everything can.
bool canBeSong(const QString& path, const QString& listedLength);

}  // namespace reelcrate
