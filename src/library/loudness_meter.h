#pragma once

#include <QtGlobal>

#include <memory>
#include <optional>
#include <span>

/// How loud a song is by EBU R128, in one pass over its samples and in little memory. One thread.
namespace reelcrate {

enum class MeasureLoudness { no, yes };

struct Loudness {
    double lufs = 0;  ///< of the whole song, its quiet parts left out as the standard has it
    double peak = 0;  ///< the highest true peak of its channels; 1 is full scale
};

class LoudnessMeter {
public:
    /// Both are at least 1. What has too many channels, or is too fast, has no loudness.
    LoudnessMeter(int rate, int channels);
    ~LoudnessMeter();

    /// The next samples, those of all channels in turn. Whole frames, in pieces of any size.
    void add(std::span<const qint16> samples);

    /// So far. Absent for less than 0.4 seconds, and for what is silent throughout.
    std::optional<Loudness> loudness() const;

private:
    struct State;

    const size_t m_channels;
    const std::unique_ptr<State> m_state;
};

}  // namespace reelcrate
