#include "library/edge_meter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace reelcrate {
namespace {

struct Signal {
    int rate = 1000;
    int channels = 1;
    std::vector<qint16> samples;
};

using Frames = std::vector<std::vector<double>>;

/// Frame by frame, with each window summed anew.
size_t silentFrames(const Frames& frames, int rate, double shortestSound) {
    const auto window = static_cast<size_t>(0.02 * rate);
    const auto shortest = static_cast<size_t>(std::llround(shortestSound * rate));
    size_t loud = 0;
    for (size_t end = 0; end < frames.size(); ++end) {
        double power = 0;
        for (size_t i = end + 1 < window ? 0 : end + 1 - window; i <= end; ++i) {
            for (const double sample : frames.at(i))
                power += sample * sample;
        }
        power /= static_cast<double>(window);
        loud = 10 * std::log10(power) > -55 ? loud + 1 : 0;
        if (loud == shortest)
            return end + 1 - shortest;
    }
    return frames.size();
}

std::optional<SoundEdges> edgesFrameByFrame(const Signal& signal) {
    Frames frames;
    for (size_t i = 0; i + signal.channels <= signal.samples.size(); i += signal.channels) {
        frames.emplace_back();
        for (int channel = 0; channel < signal.channels; ++channel)
            frames.back().push_back(signal.samples.at(i + channel) / 32768.0);
    }
    const size_t all = frames.size();
    const size_t before = silentFrames(frames, signal.rate, 0.01);
    frames.erase(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(before));
    std::reverse(frames.begin(), frames.end());
    const size_t after = silentFrames(frames, signal.rate, 0.02);
    if (after == frames.size())
        return std::nullopt;
    const double rate = signal.rate;
    return SoundEdges{static_cast<double>(before) / rate, static_cast<double>(all - after) / rate};
}

class Random {
public:
    int below(int bound) { return static_cast<int>(m_engine() % static_cast<unsigned>(bound)); }

    /// Stretches of silence, of what is near the level on either side, and of loud sound; half of
    /// them pauses of up to this many frames, unless that is 0.
    Signal signal(int longestPause = 0) {
        Signal signal{1000 + 50 * below(4), 1 + below(3), {}};
        for (int stretches = below(7); stretches > 0; --stretches) {
            constexpr int amplitudes[] = {0, 0, 20, 55, 58, 60, 70, 100, 300, 20'000, 32'767};
            const bool isPause = longestPause > 0 && below(2) == 0;
            const int amplitude = isPause ? 0 : amplitudes[below(std::size(amplitudes))];
            const int silentChannel = below(5);
            const int longest = below(2) == 0 ? 30 : 150;
            for (int frames = below(isPause ? longestPause : longest); frames > 0; --frames) {
                for (int channel = 0; channel < signal.channels; ++channel)
                    signal.samples.push_back(static_cast<qint16>(
                        channel == silentChannel ? 0 : (below(2) * 2 - 1) * amplitude));
            }
        }
        return signal;
    }

    std::optional<SoundEdges> edges(const Signal& signal) {
        EdgeMeter meter(signal.rate, signal.channels);
        std::span<const qint16> rest(signal.samples);
        while (!rest.empty()) {
            const auto channels = static_cast<size_t>(signal.channels);
            const size_t piece = std::min(rest.size(), channels * static_cast<size_t>(below(30)));
            meter.add(rest.first(piece));
            rest = rest.subspan(piece);
        }
        const auto edges = meter.finish();
        EXPECT_DOUBLE_EQ(meter.seconds(), static_cast<double>(signal.samples.size()) /
                                              signal.channels / signal.rate);
        return edges;
    }

private:
    std::mt19937 m_engine{2026};
};

TEST(EdgeMeter, AnswersAsALookAtEachWindowDoes) {
    Random random;
    int silent = 0;
    int cut = 0;
    for (int i = 0; i < 6000 && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(i);
        const Signal signal = random.signal();
        const auto expected = edgesFrameByFrame(signal);
        const auto edges = random.edges(signal);
        ASSERT_EQ(edges.has_value(), expected.has_value());
        silent += expected ? 0 : 1;
        if (!expected)
            continue;
        EXPECT_DOUBLE_EQ(edges->first, expected->first);
        EXPECT_DOUBLE_EQ(edges->last, expected->last);
        cut += expected->first > 0 ? 1 : 0;
    }
    EXPECT_GT(silent, 500);
    EXPECT_GT(cut, 2000);
}

/// How many frames it took is added up. What is read first from the middle is not what is there.
std::optional<SoundEdges> edgesFromBothEnds(const Signal& signal, size_t& framesRead) {
    const auto channels = static_cast<size_t>(signal.channels);
    const auto read = [&](qint64 firstFrame, const SeekableSound::Take& take) {
        const size_t start = channels * static_cast<size_t>(firstFrame);
        std::vector<qint16> samples(signal.samples);
        if (start > 0)
            std::fill_n(samples.begin() + static_cast<std::ptrdiff_t>(start), 100 * channels, 900);
        for (auto rest = std::span<const qint16>(samples).subspan(start); !rest.empty();) {
            const size_t piece = std::min(rest.size(), 100 * channels);
            framesRead += piece / channels;
            if (!take(rest.first(piece)))
                return;
            rest = rest.subspan(piece);
        }
    };
    return edgesOf({signal.rate, signal.channels,
                    static_cast<qint64>(signal.samples.size() / channels), read});
}

TEST(EdgesOf, TellsOfTheEndsWhatAllOfItTells) {
    Random random;
    size_t framesRead = 0;
    for (int i = 0; i < 400; ++i) {
        const Signal signal = random.signal(60'000);
        const auto edges = edgesFromBothEnds(signal, framesRead);
        const auto expected = random.edges(signal);
        ASSERT_EQ(edges.has_value(), expected.has_value()) << i;
        EXPECT_DOUBLE_EQ(edges.value_or(SoundEdges{}).first, expected.value_or(SoundEdges{}).first);
        EXPECT_DOUBLE_EQ(edges.value_or(SoundEdges{}).last, expected.value_or(SoundEdges{}).last);
    }
    framesRead = 0;
    edgesFromBothEnds({1000, 1, std::vector<qint16>(200'000, 900)}, framesRead);
    EXPECT_LT(framesRead, 11'000);
}

}  // namespace
}  // namespace reelcrate
