#include "library/loudness_meter.h"

#include <algorithm>
#include <cmath>
#include <ebur128.h>

namespace reelcrate {

struct LoudnessMeter::State {
    struct Destroy {
        void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
    };

    std::unique_ptr<ebur128_state, Destroy> meter;
};

// The histogram keeps an hour as small as a minute, and is exact to a tenth of a decibel.
LoudnessMeter::LoudnessMeter(int rate, int channels)
    : m_channels(static_cast<size_t>(channels)),
      m_state(new State{std::unique_ptr<ebur128_state, State::Destroy>(
          ebur128_init(static_cast<unsigned>(channels), static_cast<unsigned long>(rate),
                       EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK | EBUR128_MODE_HISTOGRAM))}) {}

LoudnessMeter::~LoudnessMeter() = default;

void LoudnessMeter::add(std::span<const qint16> samples) {
    if (ebur128_state* meter = m_state->meter.get())
        ebur128_add_frames_short(meter, samples.data(), samples.size() / m_channels);
}

std::optional<Loudness> LoudnessMeter::loudness() const {
    Loudness result;
    ebur128_state* meter = m_state->meter.get();
    if (meter == nullptr || ebur128_loudness_global(meter, &result.lufs) != EBUR128_SUCCESS ||
        !std::isfinite(result.lufs))
        return std::nullopt;
    for (unsigned channel = 0; channel < m_channels; ++channel) {
        double peak = 0;
        if (ebur128_true_peak(meter, channel, &peak) == EBUR128_SUCCESS)
            result.peak = std::max(result.peak, peak);
    }
    return result;
}

}  // namespace reelcrate
