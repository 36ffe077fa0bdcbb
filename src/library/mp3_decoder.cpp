#include "library/mp3_decoder.h"

#include <QFile>

#include <mpg123.h>
#include <vector>

namespace reelcrate {

namespace {

constexpr size_t headerBytes = 4;
constexpr size_t pieceSamples = 8192;

// Tags are passed over: they may hold a picture of any size. What is unlike the frames before is
// not, nor what follows the number of frames that the header tells.
constexpr long flags = MPG123_QUIET | MPG123_SKIP_ID3V2 | MPG123_NO_FRANKENSTEIN;

/// The first frame is a new format, too.
bool isFine(int answer) {
    return answer == MPG123_OK || answer == MPG123_NEW_FORMAT;
}

}  // namespace

struct Mp3Decoder::State {
    ~State() { mpg123_delete(handle); }

    mpg123_handle* const handle = mpg123_new(nullptr, nullptr);
};

Mp3Decoder::Mp3Decoder(const QString& path, qint64 end) : m_state(new State) {
    // Frames of which no sample counts are passed over in gapless decoding.
    long rate = 0;
    int encoding = 0;
    if (!open(path, flags) || walk() != end || !open(path, flags | MPG123_GAPLESS) ||
        mpg123_getformat(m_state->handle, &rate, &m_channels, &encoding) != MPG123_OK ||
        encoding != MPG123_ENC_SIGNED_16)
        m_frames = 0;
    m_rate = static_cast<int>(rate);
}

Mp3Decoder::~Mp3Decoder() = default;

/// At its beginning, anew.
bool Mp3Decoder::open(const QString& path, long options) {
    return m_state->handle != nullptr &&
           mpg123_param(m_state->handle, MPG123_FLAGS, options, 0) == MPG123_OK &&
           mpg123_open(m_state->handle, QFile::encodeName(path).constData()) == MPG123_OK;
}

/// Where the last frame ends that follows the others without a gap.
qint64 Mp3Decoder::walk() {
    qint64 end = -1;
    while (isFine(mpg123_framebyframe_next(m_state->handle))) {
        size_t bodyBytes = 0;
        const qint64 start = mpg123_framepos(m_state->handle);
        if (mpg123_framedata(m_state->handle, nullptr, nullptr, &bodyBytes) != MPG123_OK ||
            (m_frames > 0 && start != end))
            break;
        if (m_frames++ == 0)
            m_firstByte = start;
        end = start + static_cast<qint64>(headerBytes + bodyBytes);
    }
    return end;
}

qint64 Mp3Decoder::framesFrom(qint64 firstByte) const {
    return firstByte == m_firstByte ? m_frames : 0;
}

qint64 Mp3Decoder::samples() const {
    return mpg123_length(m_state->handle);
}

void Mp3Decoder::decodeFrom(qint64 sample, const Take& take) {
    if (mpg123_seek(m_state->handle, sample, SEEK_SET) != sample)
        return;
    std::vector<qint16> piece(pieceSamples);
    size_t bytes = 0;
    while (
        isFine(mpg123_read(m_state->handle, piece.data(), pieceSamples * sizeof(qint16), &bytes)))
        if (!take(std::span(piece).first(bytes / sizeof(qint16))))
            return;
    take(std::span(piece).first(bytes / sizeof(qint16)));
}

}  // namespace reelcrate
