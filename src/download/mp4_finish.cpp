#include "download/mp4_finish.h"

#include "library/ffmpeg_words.h"
#include "library/finished_files.h"
#include "library/place_file.h"
#include "library/video_measure.h"
#include "tools/shell_quote.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace reelcrate {

namespace {

constexpr double lengthTolerance = 1;
constexpr double leastLimitSeconds = 600;
constexpr double limitPerSecond = 10;

/// ffmpeg also packs Vorbis into MP4, which no player expects there.
const QStringList picturesOfMp4{QStringLiteral("h264"), QStringLiteral("hevc"),
                                QStringLiteral("av1"), QStringLiteral("vp9"),
                                QStringLiteral("mpeg4")};
const QStringList soundsOfMp4{QStringLiteral("aac"),  QStringLiteral("mp3"),
                              QStringLiteral("opus"), QStringLiteral("ac3"),
                              QStringLiteral("eac3"), QStringLiteral("alac")};

bool allAreOf(const QStringList& codecs, MediaStream::Kind kind, const VideoMeasure& measure) {
    return std::all_of(measure.streams.begin(), measure.streams.end(),
                       [&](const MediaStream& stream) {
                           return stream.kind != kind || codecs.contains(stream.codec);
                       });
}

/// Nothing that played in the source may be missing.
std::optional<QString> whyNotTheSame(const VideoMeasure& source, const VideoMeasure& made) {
    if (auto reason = whyNoWholeVideo(made))
        return reason;
    if (made.pictureDecodes < source.pictureDecodes)
        return QStringLiteral("the picture was lost");
    if (made.soundDecodes < source.soundDecodes)
        return QStringLiteral("the sound was lost");
    if (std::abs(made.packetSeconds - source.packetSeconds) > lengthTolerance)
        return QStringLiteral("%1 s became %2 s")
            .arg(source.packetSeconds, 0, 'f', 2)
            .arg(made.packetSeconds, 0, 'f', 2);
    return std::nullopt;
}

}  // namespace

Mp4Plan Mp4Plan::of(const QString& path, const VideoMeasure& measure) {
    Mp4Plan plan;
    plan.copyPicture = allAreOf(picturesOfMp4, MediaStream::Kind::picture, measure);
    plan.copySound = allAreOf(soundsOfMp4, MediaStream::Kind::sound, measure);
    plan.tagsOfStream = measure.format == u"ogg";
    plan.leave = plan.copyPicture && plan.copySound && hasExtension(path, QStringLiteral("mp4")) &&
                 measure.format.split(u',').contains(u"mp4");
    return plan;
}

QString mp4Command(const QString& ffmpeg, const QString& input, const Mp4Plan& plan,
                   const QString& output) {
    // The codec that players take needs an even number of lines and columns.
    const QString picture = plan.copyPicture
                                ? QStringLiteral("-c:v copy")
                                : QStringLiteral(
                                      "-c:v libx264 -preset veryfast -crf 18 -vf "
                                      "'scale=trunc(iw/2)*2:trunc(ih/2)*2,format=yuv420p'");
    const QString sound =
        plan.copySound ? QStringLiteral("-c:a copy") : QStringLiteral("-c:a aac -b:a 192k");
    return QStringList{
        shellQuoted(ffmpeg),
        QStringLiteral("-hide_banner -loglevel level+error -nostdin -y -i"),
        shellQuoted(input),
        QStringLiteral("-map 0:V:0? -map 0:a? -map_metadata ") +
            (plan.tagsOfStream ? QStringLiteral("0:s:0") : QStringLiteral("0")),
        picture,
        sound,
        QStringLiteral("-f mp4"),
        shellQuoted(output),
    }
        .join(u' ');
}

Mp4Finisher::Mp4Finisher(ShellRunner& shell, const ToolDiscovery& discovery,
                         const VideoMeasurer& measurer)
    : m_shell(shell), m_discovery(discovery), m_measurer(measurer) {}

Mp4Outcome Mp4Finisher::finish(const QString& path) const {
    const VideoMeasure source = m_measurer.measure(path);
    if (const auto reason = whyNoWholeVideo(source))
        return {{}, *reason};
    const Mp4Plan plan = Mp4Plan::of(path, source);
    if (plan.leave)
        return {path, {}, source.packetSeconds};

    const QString temporary = temporaryBeside(path, QStringLiteral("mp4"), QStringLiteral("mp4"));
    auto reason = whyNotMade(path, source, plan, temporary);
    // Streams that were cut out of a broadcast, for one, can be copied and do not play then.
    if (reason && (plan.copyPicture || plan.copySound))
        reason = whyNotMade(path, source, {false, false, false, plan.tagsOfStream}, temporary);
    const QString finished =
        QFileInfo(path).absolutePath() + u'/' + nameWithoutExtension(path) + QStringLiteral(".mp4");
    if (!reason) {
        if (const QString failure = replaceFile(temporary, finished); !failure.isEmpty())
            reason = failure;
    }
    if (reason) {
        QFile::remove(temporary);
        return {{}, QStringLiteral("no MP4 could be made of it: ") + *reason};
    }
    if (finished != path)
        QFile::remove(path);
    return {finished, {}, source.packetSeconds};
}

std::optional<QString> Mp4Finisher::whyNotMade(const QString& path, const VideoMeasure& source,
                                               const Mp4Plan& plan, const QString& output) const {
    const auto ffmpeg = m_discovery.toolPath(QStringLiteral("ffmpeg"));
    if (!ffmpeg)
        return QStringLiteral("ffmpeg is missing");
    const CommandResult result =
        m_shell.runShellApart(mp4Command(*ffmpeg, path, plan, output),
                              leastLimitSeconds + limitPerSecond * source.packetSeconds);
    if (result.status == CommandResult::timedOut)
        return QStringLiteral("the converter took too long");
    const FfmpegWords words = readFfmpegWords(result.errors);
    if (result.status != 0 || words.writeFailed)
        return words.complaint.isEmpty() ? QStringLiteral("the converter failed") : words.complaint;
    return whyNotTheSame(source, m_measurer.measure(output));
}

}  // namespace reelcrate
