#pragma once

#include "library/edge_meter.h"
#include "library/sound_print.h"

#include <QByteArray>

#include <optional>
#include <vector>

/// Reads what ffmpeg writes as `-f au -c:a pcm_s16be`, in pieces of any size, and passes the
/// samples to an EdgeMeter. Pure, one thread. What is no such stream leaves no meter.
namespace reelcrate {

class PcmStream {
public:
    void add(const QByteArray& bytes);

    /// Present once the stream's header has come.
    std::optional<EdgeMeter>& meter() { return m_meter; }

    /// Of all samples so far. Once, at the end.
    quint64 soundPrint() { return m_print.finish(); }

private:
    bool readHeader();

    QByteArray m_rest;  ///< the header as far as it has come; then the half of a sample
    bool m_refused = false;
    std::optional<EdgeMeter> m_meter;
    SoundPrint m_print;
    std::vector<qint16> m_samples;
};

}  // namespace reelcrate
