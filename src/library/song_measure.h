#pragma once

#include "library/edge_meter.h"
#include "library/loudness_meter.h"

#include <QString>

#include <optional>

/// Tells of a song on disk whether it is whole, how long it is and where its sound begins and ends,
/// by decoding all of it. Failures stand in the record that comes back.
namespace reelcrate {

class ShellRunner;
class ToolDiscovery;

/// A song is as long at least,
constexpr double shortestSongSeconds = 0.1;
/// and decodes to what its header tells, more or less.
constexpr double headerToleranceSeconds = 0.5;

struct SongMeasure {
    bool decoded = false;                 ///< to its end, as far as the decoder knows
    double decodedSeconds = 0;            ///< what came out of the decoder, in any case
    std::optional<double> headerSeconds;  ///< what the file says of itself, if it does
    std::optional<SoundEdges> sound;      ///< absent where there is none above -55 dB
    QString complaint;                    ///< what the decoder said first, of whatever weight
    quint64 soundPrint = 0;               ///< the same for the very same samples, whatever the tags
    bool hasChapters = false;
    std::optional<Loudness> loudness = {};  ///< of what decodes; absent unless asked for
};

/// Why the song is not a whole one, for the log; absent when it is. Quiet songs and songs with a
/// few damaged bytes are whole. Pure.
std::optional<QString> whyNoWholeSong(const SongMeasure& measure);

/// Background threads: it blocks while the decoder runs, three seconds of one processor for an
/// hour of music (several times that with its loudness), and 180 seconds at least before the
/// decoder is given up. Any number of threads.
class SongMeasurer {
public:
    SongMeasurer(ShellRunner& shell, const ToolDiscovery& discovery);

    /// The path is absolute.
    SongMeasure measure(const QString& path, MeasureLoudness loudness = MeasureLoudness::no) const;

    /// By which two files are told to hold the very same sound, whatever their tags; empty when the
    /// file does not decode. Blocks like measure().
    QString soundHash(const QString& path) const;

private:
    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
};

}  // namespace reelcrate
