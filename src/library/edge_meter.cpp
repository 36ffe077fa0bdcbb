#include "library/edge_meter.h"

#include <algorithm>
#include <cmath>

namespace reelcrate {

namespace {

constexpr double windowSeconds = 0.02;
constexpr double shortestFirstSeconds = 0.01;
constexpr double shortestLastSeconds = 0.02;
constexpr double thresholdDecibels = -55;
constexpr double fullScale = 32768;

constexpr double shortestTailSeconds = 10;
constexpr qint64 tailGrowth = 8;
// A decoder that starts in the middle lacks what the first frames borrow from those before.
constexpr double unsureSeconds = 1;

qint64 framesIn(double seconds, int rate) {
    return std::max<qint64>(1, std::llround(seconds * rate));
}

}  // namespace

EdgeMeter::EdgeMeter(int rate, int channels)
    : m_rate(rate),
      m_channels(static_cast<size_t>(channels)),
      m_window(std::max<qint64>(1, static_cast<qint64>(windowSeconds * rate))),
      m_shortestFirst(framesIn(shortestFirstSeconds, rate)),
      m_shortestLast(framesIn(shortestLastSeconds, rate)),
      m_limit(static_cast<qint64>(std::pow(10, thresholdDecibels / 10) * fullScale * fullScale *
                                  static_cast<double>(m_window))),
      m_energies(static_cast<size_t>(m_window), 0) {}

void EdgeMeter::add(std::span<const qint16> samples) {
    // An hour has 160 million frames: the usual numbers of channels go without an inner loop.
    switch (m_channels) {
        case 1:
            addFrames<1>(samples);
            break;
        case 2:
            addFrames<2>(samples);
            break;
        default:
            addFrames<0>(samples);
    }
}

/// Where the number of channels is not 0 it is known to the compiler.
template <int knownChannels>
void EdgeMeter::addFrames(std::span<const qint16> samples) {
    const size_t channels = knownChannels > 0 ? knownChannels : m_channels;
    for (size_t i = 0; i < samples.size(); i += channels) {
        qint64 energy = 0;
        for (size_t channel = 0; channel < channels; ++channel) {
            const qint64 sample = samples[i + channel];
            energy += sample * sample;
        }
        m_energy += energy - m_energies[m_slot];
        m_energies[m_slot] = energy;
        if (++m_slot == m_energies.size())
            m_slot = 0;
        if (m_energy > m_limit)
            ++m_run;
        else if (m_run > 0)
            closeRun();
        ++m_frames;
    }
}

double EdgeMeter::seconds() const {
    return static_cast<double>(m_frames) / m_rate;
}

/// The run ended with the frame before this one. A window is told by its last frame: it looks back
/// from there at the song's beginning, and at the song's end ahead to there.
void EdgeMeter::closeRun() {
    const qint64 start = m_frames - m_run;
    if (!m_first && m_run >= m_shortestFirst)
        m_first = start;
    m_run = 0;
    if (!m_first)
        return;
    // What lies before the first sound is cut off before the end is looked for, so that no window
    // looks ahead from there.
    const qint64 firstKept = std::max(start, *m_first + m_window - 1);
    if (m_frames - firstKept >= m_shortestLast)
        m_end = m_frames - m_window + 1;
}

std::optional<SoundEdges> EdgeMeter::finish() {
    const qint64 frames = m_frames;
    // The windows that look ahead from the last frames look into silence, which ends each run.
    addFrames<0>(std::vector<qint16>(m_energies.size() * m_channels, 0));
    m_frames = frames;
    if (!m_first || !m_end)
        return std::nullopt;
    const double rate = m_rate;
    return SoundEdges{static_cast<double>(*m_first) / rate, static_cast<double>(*m_end) / rate};
}

namespace {

std::optional<double> firstSound(const SeekableSound& sound) {
    EdgeMeter meter(sound.rate, sound.channels);
    std::optional<SoundEdges> edges;
    sound.read(0, [&](std::span<const qint16> samples) {
        meter.add(samples);
        edges = EdgeMeter(meter).finish();
        return !edges;
    });
    return edges ? std::optional(edges->first) : std::nullopt;
}

/// Of what lies from that frame on, seconds from there.
std::optional<double> lastSound(const SeekableSound& sound, qint64 firstFrame) {
    EdgeMeter meter(sound.rate, sound.channels);
    sound.read(firstFrame, [&](std::span<const qint16> samples) {
        meter.add(samples);
        return true;
    });
    const auto edges = meter.finish();
    return edges ? std::optional(edges->last) : std::nullopt;
}

}  // namespace

std::optional<SoundEdges> edgesOf(const SeekableSound& sound) {
    const auto first = firstSound(sound);
    if (!first)
        return std::nullopt;
    for (qint64 tail = framesIn(shortestTailSeconds, sound.rate);; tail *= tailGrowth) {
        const qint64 start = std::max<qint64>(0, sound.frames - tail);
        const auto last = lastSound(sound, start);
        if (last && (start == 0 || *last > unsureSeconds))
            return SoundEdges{*first, static_cast<double>(start) / sound.rate + *last};
        if (start == 0)
            return std::nullopt;
    }
}

}  // namespace reelcrate
