#pragma once

#include "library/loudness_meter.h"

#include <QString>

#include <optional>

/// Loudness as it stands in a song's tags, by ReplayGain 2.0, so that players even songs out and
/// the sound stays as it is. Background threads: the file is read or written.
namespace reelcrate {

/// Of a file of any kind that has such tags. A peak that is not told is 0.
std::optional<Loudness> taggedLoudness(const QString& path);

/// Writes the tags of an MP3, in a copy that takes the song's place when it is whole: a hidden file
/// ".gain-IDENTIFIER.mp3" lies beside it meanwhile. Other tags and the sound stay. Comes back with
/// why it could not be done; empty when it was.
QString tagLoudness(const QString& path, const Loudness& loudness);

}  // namespace reelcrate
