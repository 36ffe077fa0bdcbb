#include "library/video_measure.h"

#include "tools/shell_quote.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace reelcrate {

namespace {

/// The packets of a picture are counted by the time at which they are to be decoded, some frames
/// before they are shown; those of sound are not.
constexpr double tolerance = 1;
constexpr double toleranceWithoutSound = 5;
constexpr double leastLimitSeconds = 180;
constexpr double slowestDisk = 2'000'000;  // bytes in a second

bool has(const VideoMeasure& measure, MediaStream::Kind kind) {
    return std::any_of(measure.streams.begin(), measure.streams.end(),
                       [kind](const MediaStream& stream) { return stream.kind == kind; });
}

/// A decoded frame is a line that begins with the number of its stream.
bool hasFrameOf(const QString& frames, const QString& mediaType) {
    const QRegularExpression stream(QStringLiteral(R"(^#media_type (\d+): %1$)").arg(mediaType),
                                    QRegularExpression::MultilineOption);
    const auto match = stream.match(frames);
    return match.hasMatch() && frames.contains(u'\n' + match.captured(1) + u',');
}

/// The furthest point that any of the progress reports names.
double lastProgress(const QString& reports) {
    static const QRegularExpression form(QStringLiteral(R"(^out_time_us=(\d+)$)"),
                                         QRegularExpression::MultilineOption);
    double last = 0;
    for (auto match = form.globalMatch(reports); match.hasNext();)
        last = std::max(last, match.next().captured(1).toDouble() / 1e6);
    return last;
}

/// An Ogg file does not tell its length, but its last page is marked: "OggS", a version, flags.
bool endsWithLastOggPage(const QString& path) {
    constexpr qint64 longestPage = 65'307;  // bytes
    constexpr qsizetype flagsAt = 5;
    constexpr int lastOfStream = 4;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(std::max(0LL, file.size() - longestPage)))
        return false;
    const QByteArray end = file.readAll();
    const qsizetype page = end.lastIndexOf("OggS");
    return page >= 0 && page + flagsAt < end.size() && (end.at(page + flagsAt) & lastOfStream) != 0;
}

}  // namespace

bool VideoMeasure::hasPicture() const {
    return has(*this, MediaStream::Kind::picture);
}

bool VideoMeasure::hasSound() const {
    return has(*this, MediaStream::Kind::sound);
}

std::optional<QString> whyNoWholeVideo(const VideoMeasure& measure) {
    const auto because = [&](const QString& reason) {
        return measure.complaint.isEmpty() ? reason
                                           : reason + QStringLiteral(": ") + measure.complaint;
    };
    if (!measure.pictureDecodes && !measure.soundDecodes)
        return because(QStringLiteral("neither picture nor sound decodes"));
    const auto reason = whyBrokenOff(measure);
    return reason ? std::optional(because(*reason)) : std::nullopt;
}

std::optional<QString> whyBrokenOff(const VideoMeasure& measure) {
    const double missing = measure.hasSound() ? tolerance : toleranceWithoutSound;
    if (measure.headerSeconds && measure.packetSeconds < *measure.headerSeconds - missing)
        return QStringLiteral("%1 s are there of the %2 s that its header tells")
            .arg(measure.packetSeconds, 0, 'f', 2)
            .arg(*measure.headerSeconds, 0, 'f', 2);
    if (!measure.readToEnd)
        return QStringLiteral("the file breaks off");
    return std::nullopt;
}

VideoMeasurer::VideoMeasurer(ShellRunner& shell, const ToolDiscovery& discovery)
    : m_shell(shell), m_discovery(discovery) {}

VideoMeasure VideoMeasurer::measure(const QString& path) const {
    VideoMeasure measure;
    lookAtStart(measure, path);
    if (measure.pictureDecodes || measure.soundDecodes)
        readToEnd(measure, path);
    return measure;
}

VideoMeasure VideoMeasurer::measurePackets(const QString& path) const {
    VideoMeasure measure;
    const FfmpegWords words = readToEnd(measure, path);
    measure.format = words.format;
    measure.streams = words.streams;
    measure.headerSeconds = words.headerSeconds;
    if (measure.format == u"ogg")
        measure.readToEnd = measure.readToEnd && endsWithLastOggPage(path);
    return measure;
}

void VideoMeasurer::lookAtStart(VideoMeasure& measure, const QString& path) const {
    const FfmpegWords words =
        decodeStart(measure, path, QStringLiteral("-map 0:V:0? -map 0:a:0? "));
    measure.format = words.format;
    measure.streams = words.streams;
    measure.headerSeconds = words.headerSeconds;
    measure.complaint = words.complaint;
    if (measure.pictureDecodes || measure.soundDecodes)
        return;
    // ffmpeg writes no sound before it has a picture to write beside it.
    if (measure.hasPicture() && measure.hasSound())
        decodeStart(measure, path, QStringLiteral("-map 0:a:0 "));
}

FfmpegWords VideoMeasurer::decodeStart(VideoMeasure& measure, const QString& path,
                                       const QString& streams) const {
    const CommandResult result =
        run(QStringLiteral("-t 5 "), path, streams + QStringLiteral("-frames:v 5 -f framecrc -"),
            leastLimitSeconds);
    measure.pictureDecodes |= hasFrameOf(result.output, QStringLiteral("video"));
    measure.soundDecodes |= hasFrameOf(result.output, QStringLiteral("audio"));
    return readFfmpegWords(result.errors);
}

FfmpegWords VideoMeasurer::readToEnd(VideoMeasure& measure, const QString& path) const {
    const CommandResult result =
        run({}, path, QStringLiteral("-map 0:V? -map 0:a? -c copy -f null -progress pipe:1 -"),
            leastLimitSeconds + static_cast<double>(QFileInfo(path).size()) / slowestDisk);
    FfmpegWords words = readFfmpegWords(result.errors);
    measure.packetSeconds = lastProgress(result.output);
    measure.readToEnd = result.status == 0 && !words.cutOff;
    if (measure.complaint.isEmpty())
        measure.complaint = words.complaint;
    return words;
}

CommandResult VideoMeasurer::run(const QString& ofInput, const QString& path, const QString& output,
                                 double timeLimit) const {
    const auto ffmpeg = m_discovery.toolPath(QStringLiteral("ffmpeg"));
    if (!ffmpeg)
        return {CommandResult::couldNotStart, {}, QStringLiteral("[error] ffmpeg is missing")};
    return m_shell.runShellApart(
        shellQuoted(*ffmpeg) +
            QStringLiteral(" -hide_banner -nostats -nostdin -loglevel level+info ") + ofInput +
            QStringLiteral("-i ") + shellQuoted(path) + u' ' + output,
        timeLimit);
}

}  // namespace reelcrate
