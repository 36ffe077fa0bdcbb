#pragma once

#include <QtGlobal>

#include <functional>
#include <optional>
#include <span>
#include <vector>

/// Finds where the sound of a song begins and ends, in one pass over its samples and in little
/// memory. Pure, one thread, never fails.
namespace reelcrate {

/// Seconds from the song's start.
struct SoundEdges {
    double first = 0;  ///< where the first sound begins
    double last = 0;   ///< where the last sound has ended
};

/// Silent is what lies below -55 dB in a window of 0.02 seconds, on the average of its channels.
/// The first sound begins where the level up to a sample is above that, and stays there for 0.01
/// seconds; the last one ends where the level from a sample on is, and had been for 0.02 seconds.
class EdgeMeter {
public:
    /// Both are at least 1.
    EdgeMeter(int rate, int channels);

    /// The next samples, those of all channels in turn. Whole frames, in pieces of any size.
    void add(std::span<const qint16> samples);

    /// So far.
    double seconds() const;

    /// Absent when nothing is above the level for long enough. Once, at the end.
    std::optional<SoundEdges> finish();

private:
    template <int knownChannels>
    void addFrames(std::span<const qint16> samples);
    void closeRun();

    const int m_rate;
    const size_t m_channels;
    const qint64 m_window;  ///< in frames, as all below
    const qint64 m_shortestFirst;
    const qint64 m_shortestLast;
    const qint64 m_limit;  ///< what a window's energy must exceed

    std::vector<qint64> m_energies;  ///< of the frames in the window, a ring
    size_t m_slot = 0;
    qint64 m_energy = 0;  ///< their sum; of whole numbers, so that it never drifts
    qint64 m_frames = 0;
    qint64 m_run = 0;  ///< how many windows in a row were above the limit
    std::optional<qint64> m_first;
    std::optional<qint64> m_end;  ///< behind the last sound's last frame
};

/// What lies in a song that can be read from anywhere.
struct SeekableSound {
    /// False when no more samples are wanted.
    using Take = std::function<bool(std::span<const qint16>)>;

    int rate = 1;
    int channels = 1;
    qint64 frames = 0;
    std::function<void(qint64 firstFrame, const Take& take)> read;  ///< to the end, in pieces
};

/// What a meter tells of all of it, read from both ends no further than needed.
std::optional<SoundEdges> edgesOf(const SeekableSound& sound);

}  // namespace reelcrate
