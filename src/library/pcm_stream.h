#pragma once

#include "library/edge_meter.h"
#include "library/loudness_meter.h"
#include "library/sound_print.h"

#include <QByteArray>

#include <optional>
#include <vector>

/// Reads what ffmpeg writes as `-f au -c:a pcm_s16be`, in pieces of any size, and passes the
/// samples to its meters. Pure, one thread. What is no such stream leaves no meter.
namespace reelcrate {

class PcmStream {
public:
    explicit PcmStream(MeasureLoudness loudness = MeasureLoudness::no) : m_loudness(loudness) {}

    void add(const QByteArray& bytes);

    /// Present once the stream's header has come.
    std::optional<EdgeMeter>& meter() { return m_meter; }

    /// Present with the other, where it was asked for.
    const std::optional<LoudnessMeter>& loudnessMeter() const { return m_loudnessMeter; }

    /// Of all samples so far. Once, at the end.
    quint64 soundPrint() { return m_print.finish(); }

private:
    bool readHeader();

    const MeasureLoudness m_loudness;
    QByteArray m_rest;  ///< the header as far as it has come; then a part of a frame
    qsizetype m_frameBytes = 0;
    bool m_refused = false;
    std::optional<EdgeMeter> m_meter;
    std::optional<LoudnessMeter> m_loudnessMeter;
    SoundPrint m_print;
    std::vector<qint16> m_samples;
};

}  // namespace reelcrate
