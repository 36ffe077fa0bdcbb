#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>
#include <memory>
#include <span>

/// Goes over the frames of an MP3, and decodes it in-process from wherever that is wanted. What is
/// no MP3 has no frames. One thread.
namespace reelcrate {

class Mp3Decoder {
public:
    /// Reads the file up to this byte, where its sound is to end, and decodes nothing of it.
    Mp3Decoder(const QString& path, qint64 end);
    ~Mp3Decoder();

    /// The number of frames of sound, if they follow each other in one form from this byte to the
    /// end; otherwise 0, and nothing below holds.
    qint64 framesFrom(qint64 firstByte) const;

    int rate() const { return m_rate; }
    int channels() const { return m_channels; }

    /// Of one channel. What the encoder says that it has added at both ends does not count.
    qint64 samples() const;

    /// The samples of all channels in turn, in pieces of any size; false when it wants no more.
    using Take = std::function<bool(std::span<const qint16>)>;

    /// What begins with this sample of each channel.
    void decodeFrom(qint64 sample, const Take& take);

private:
    struct State;

    bool open(const QString& path, long options);
    qint64 walk();

    const std::unique_ptr<State> m_state;
    qint64 m_firstByte = -1;
    qint64 m_frames = 0;
    int m_rate = 0;
    int m_channels = 0;
};

}  // namespace reelcrate
