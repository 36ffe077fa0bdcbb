#include "library/replay_gain.h"

#include "library/place_file.h"

#include <QFile>

#include <cmath>
#include <memory>
#include <taglib/fileref.h>
#include <taglib/id3v2header.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/textidentificationframe.h>
#include <taglib/tpropertymap.h>

namespace reelcrate {

namespace {

constexpr double referenceLufs = -18;
constexpr const char* gainName = "REPLAYGAIN_TRACK_GAIN";
constexpr const char* peakName = "REPLAYGAIN_TRACK_PEAK";

/// The number that a value such as "-6.54 dB" begins with.
std::optional<double> numberIn(const TagLib::StringList& values) {
    if (values.isEmpty())
        return std::nullopt;
    const QString text = QString::fromStdString(values.front().to8Bit(true)).trimmed();
    bool isNumber = false;
    const double number = text.section(u' ', 0, 0).toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

/// Instead of what stands there under that name, in whatever letters.
void setUserText(TagLib::ID3v2::Tag& tag, const TagLib::String& name, const QString& value) {
    using Frame = TagLib::ID3v2::UserTextIdentificationFrame;
    const TagLib::ID3v2::FrameList frames = tag.frameList("TXXX");
    for (TagLib::ID3v2::Frame* each : frames) {
        const auto* frame = dynamic_cast<Frame*>(each);
        if (frame != nullptr && frame->description().upper() == name)
            tag.removeFrame(each);
    }
    auto frame = std::make_unique<Frame>(TagLib::String::Latin1);
    frame->setDescription(name);
    frame->setText(value.toStdString());
    tag.addFrame(frame.release());  // which the tag owns from now on
}

/// In the version that they have, so that none of them is lost.
bool writeTags(TagLib::MPEG::File& file, const Loudness& loudness) {
    const bool hasTags = file.hasID3v2Tag();
    TagLib::ID3v2::Tag* tag = file.ID3v2Tag(true);
    setUserText(*tag, gainName,
                QString::number(referenceLufs - loudness.lufs, 'f', 2) + QStringLiteral(" dB"));
    setUserText(*tag, peakName, QString::number(loudness.peak, 'f', 6));
    const bool isNewest = hasTags && tag->header()->majorVersion() == 4;
    return file.save(TagLib::MPEG::File::ID3v2, TagLib::File::StripNone,
                     isNewest ? TagLib::ID3v2::v4 : TagLib::ID3v2::v3);
}

/// Of the same length, too. From the first frame on, since the tags stand before it.
bool haveSameSound(const QString& first, const QString& second) {
    constexpr qint64 piece = 1 << 16;
    QFile files[]{QFile(first), QFile(second)};
    for (QFile& file : files) {
        TagLib::MPEG::File song(QFile::encodeName(file.fileName()).constData(), false);
        const auto sound = static_cast<qint64>(song.firstFrameOffset());
        if (sound < 0 || !file.open(QIODevice::ReadOnly) || !file.seek(sound))
            return false;
    }
    while (!files[0].atEnd()) {
        if (files[0].read(piece) != files[1].read(piece))
            return false;
    }
    return files[1].atEnd();
}

QString whyNotTagged(const QString& path, const Loudness& loudness, const QString& copy) {
    if (!QFile::copy(path, copy))
        return QStringLiteral("the song could not be copied");
    {
        TagLib::MPEG::File file(QFile::encodeName(copy).constData());
        if (!file.isValid() || !writeTags(file, loudness))
            return QStringLiteral("the tags could not be written");
    }
    // A full disk is no error to the writer of tags.
    if (!taggedLoudness(copy) || !haveSameSound(path, copy))
        return QStringLiteral("the tagged song is not whole");
    return replaceFile(copy, path);
}

}  // namespace

std::optional<Loudness> taggedLoudness(const QString& path) {
    const TagLib::FileRef file(QFile::encodeName(path).constData(), false);
    if (file.isNull())
        return std::nullopt;
    const TagLib::PropertyMap tags = file.file()->properties();
    const auto gain = numberIn(tags[gainName]);
    if (!gain)
        return std::nullopt;
    return Loudness{referenceLufs - *gain, numberIn(tags[peakName]).value_or(0)};
}

QString tagLoudness(const QString& path, const Loudness& loudness) {
    const QString copy = temporaryBeside(path, QStringLiteral("gain"), QStringLiteral("mp3"));
    QString reason = whyNotTagged(path, loudness, copy);
    if (!reason.isEmpty())
        QFile::remove(copy);
    return reason;
}

}  // namespace reelcrate
