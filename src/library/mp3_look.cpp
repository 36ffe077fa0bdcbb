#include "library/mp3_look.h"

#include "library/finished_files.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <taglib/mpegfile.h>
#include <taglib/mpegproperties.h>
#include <taglib/xingheader.h>

namespace reelcrate {

namespace {

constexpr double shortestSeconds = 0.1;
// Edges that were cut make a song shorter, a pause that stands in for a hidden track even much.
constexpr double leastOfListed = 0.1;

/// "1:02:03" in seconds; 0 for what is no length.
double secondsIn(const QString& length) {
    double seconds = 0;
    for (const QString& part : length.split(u':'))
        seconds = seconds * 60 + part.toInt();
    return seconds;
}

}  // namespace

std::optional<Mp3Look> lookAtMp3(const QString& path) {
    TagLib::MPEG::File file(QFile::encodeName(path).constData());
    if (!file.isValid())
        return std::nullopt;
    const TagLib::MPEG::Properties* sound = file.audioProperties();
    const auto first = static_cast<qint64>(file.firstFrameOffset());
    if (sound == nullptr || first < 0 || sound->sampleRate() <= 0)
        return std::nullopt;
    Mp3Look look{.seconds = sound->lengthInMilliseconds() / 1000.0};
    if (const TagLib::MPEG::XingHeader* header = sound->xingHeader())
        look.missingBytes = std::max<qint64>(0, first + static_cast<qint64>(header->totalSize()) -
                                                    static_cast<qint64>(file.length()));
    return look;
}

bool canBeSong(const QString& path, const QString& listedLength) {
    if (!hasExtension(path, QStringLiteral("mp3")))
        return true;
    const auto look = lookAtMp3(path);
    return look && look->missingBytes == 0 && look->seconds >= shortestSeconds &&
           look->seconds >= secondsIn(listedLength) * leastOfListed;
}

}  // namespace reelcrate
