#include "library/mp3_look.h"

#include "base/duration_text.h"
#include "library/finished_files.h"
#include "library/song_measure.h"

#include <QFile>

#include <taglib/mpegfile.h>
#include <taglib/mpegheader.h>
#include <taglib/mpegproperties.h>
#include <taglib/xingheader.h>

namespace reelcrate {

namespace {

// Edges that were cut make a song shorter, a pause that stands in for a hidden track even much.
constexpr double leastOfListed = 0.1;

// Samples before the sound: the encoder's own delay and the decoder's.
constexpr double leadingSamples = 576 + 529;

/// In seconds, as the header has it, or as size and bit rate give it. Absent when there is no sound
/// in the file, or less of it than its header counts.
std::optional<double> toldLength(const QString& path) {
    TagLib::MPEG::File file(QFile::encodeName(path).constData());
    if (!file.isValid())
        return std::nullopt;
    const TagLib::MPEG::Properties* sound = file.audioProperties();
    const auto first = static_cast<qint64>(file.firstFrameOffset());
    if (sound == nullptr || first < 0 || sound->sampleRate() <= 0)
        return std::nullopt;
    const TagLib::MPEG::XingHeader* header = sound->xingHeader();
    if (header != nullptr && first + static_cast<qint64>(header->totalSize()) > file.length())
        return std::nullopt;
    return sound->lengthInMilliseconds() / 1000.0;
}

/// Which is no sound, but what the encoder says of the sound.
bool hasHeaderFrame(const TagLib::MPEG::File& file) {
    return file.audioProperties() != nullptr && file.audioProperties()->xingHeader() != nullptr;
}

}  // namespace

bool canBeSong(const QString& path, const QString& listedLength) {
    if (!hasExtension(path, QStringLiteral("mp3")))
        return true;
    const auto length = toldLength(path);
    const double listed = secondsOfDuration(listedLength).value_or(0);
    return length && *length >= shortestSongSeconds && *length >= listed * leastOfListed;
}

std::optional<double> secondsOfFrames(const QString& path) {
    TagLib::MPEG::File file(QFile::encodeName(path).constData());
    if (!file.isValid())
        return std::nullopt;
    auto offset = file.firstFrameOffset();
    if (offset < 0)
        return std::nullopt;
    double samples = 0;
    double rate = 0;
    for (bool isSound = !hasHeaderFrame(file); offset < file.length(); isSound = true) {
        const TagLib::MPEG::Header frame(&file, offset, false);
        if (!frame.isValid() || frame.frameLength() <= 0 || frame.sampleRate() <= 0)
            return std::nullopt;
        if (isSound)
            samples += frame.samplesPerFrame();
        rate = frame.sampleRate();
        offset += frame.frameLength();
    }
    if (offset != file.length() || samples <= leadingSamples)
        return std::nullopt;
    return (samples - leadingSamples) / rate;
}

}  // namespace reelcrate
