#include "library/mp3_look.h"

#include "base/duration_text.h"
#include "library/finished_files.h"
#include "library/mp3_decoder.h"
#include "library/song_measure.h"

#include <QFile>

#include <memory>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/mpegheader.h>
#include <taglib/mpegproperties.h>
#include <taglib/xingheader.h>

namespace reelcrate {

namespace {

// Edges that were cut make a song shorter, a pause that stands in for a hidden track even much.
constexpr double leastOfListed = 0.1;

constexpr qint64 shortTagBytes = 128;  // of the kind that stands behind the sound

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

/// Goes over all of the file. Absent where it is not as its header frame tells.
std::unique_ptr<Mp3Decoder> decoderOfWhole(const QString& path, TagLib::MPEG::File& file) {
    const TagLib::MPEG::Properties* sound = file.isValid() ? file.audioProperties() : nullptr;
    const TagLib::MPEG::XingHeader* header = sound != nullptr ? sound->xingHeader() : nullptr;
    if (header == nullptr)
        return nullptr;
    // The header stands in a frame of its own, without sound.
    const auto start = file.firstFrameOffset();
    const TagLib::MPEG::Header headerFrame(&file, start, false);
    const auto end = file.length() - (file.hasID3v1Tag() ? shortTagBytes : 0);
    auto decoder = std::make_unique<Mp3Decoder>(path, end);
    const qint64 frames = decoder->framesFrom(start + headerFrame.frameLength());
    return frames > 0 && frames == header->totalFrames() ? std::move(decoder) : nullptr;
}

double secondsOf(const Mp3Decoder& decoder) {
    return static_cast<double>(decoder.samples()) / decoder.rate();
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
    const auto decoder = decoderOfWhole(path, file);
    return decoder ? std::optional(secondsOf(*decoder)) : std::nullopt;
}

std::optional<SongMeasure> measureEnds(const QString& path) {
    TagLib::MPEG::File file(QFile::encodeName(path).constData());
    const auto decoder = decoderOfWhole(path, file);
    if (!decoder)
        return std::nullopt;
    SongMeasure measure;
    measure.decoded = true;
    measure.decodedSeconds = secondsOf(*decoder);
    measure.headerSeconds = measure.decodedSeconds;
    measure.hasChapters = file.hasID3v2Tag() && !file.ID3v2Tag()->frameList("CHAP").isEmpty();
    measure.sound = edgesOf(
        {decoder->rate(), decoder->channels(), decoder->samples(),
         [&](qint64 frame, const SeekableSound::Take& take) { decoder->decodeFrom(frame, take); }});
    return measure;
}

}  // namespace reelcrate
