#include "library/video_measure.h"

#include "tools/shell_quote.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

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

void addPackets(VideoMeasure& measure, const QString& reports, const FfmpegWords& words) {
    measure.packetSeconds = lastProgress(reports);
    measure.readToEnd = !words.cutOff;
    if (measure.complaint.isEmpty())
        measure.complaint = words.complaint;
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

VideoMeasure readPackets(const QString& printed) {
    const FfmpegWords words = readFfmpegWords(printed);
    VideoMeasure measure;
    measure.format = words.format;
    measure.streams = words.streams;
    measure.headerSeconds = words.headerSeconds;
    addPackets(measure, printed, words);
    return measure;
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
    const auto ffmpeg = m_discovery.toolPath(QStringLiteral("ffmpeg"));
    if (!ffmpeg) {
        measure.complaint = QStringLiteral("ffmpeg is missing");
        return measure;
    }
    const QString tool = shellQuoted(*ffmpeg) + QStringLiteral(" -hide_banner -nostats -nostdin ");
    const QString input = QStringLiteral("-i ") + shellQuoted(path) + u' ';
    lookAtStart(measure, tool + QStringLiteral("-loglevel level+info -t 5 ") + input);
    if (measure.pictureDecodes || measure.soundDecodes)
        readToEnd(measure, tool + QStringLiteral("-loglevel level+warning ") + input,
                  leastLimitSeconds + static_cast<double>(QFileInfo(path).size()) / slowestDisk);
    return measure;
}

void VideoMeasurer::lookAtStart(VideoMeasure& measure, const QString& input) const {
    const FfmpegWords words =
        decodeStart(measure, input, QStringLiteral("-map 0:V:0? -map 0:a:0? "));
    measure.format = words.format;
    measure.streams = words.streams;
    measure.headerSeconds = words.headerSeconds;
    measure.complaint = words.complaint;
    if (measure.pictureDecodes || measure.soundDecodes)
        return;
    // ffmpeg writes no sound before it has a picture to write beside it.
    if (measure.hasPicture() && measure.hasSound())
        decodeStart(measure, input, QStringLiteral("-map 0:a:0 "));
}

FfmpegWords VideoMeasurer::decodeStart(VideoMeasure& measure, const QString& input,
                                       const QString& streams) const {
    const CommandResult result = m_shell.runShellApart(
        input + streams + QStringLiteral("-frames:v 5 -f framecrc -"), leastLimitSeconds);
    measure.pictureDecodes |= hasFrameOf(result.output, QStringLiteral("video"));
    measure.soundDecodes |= hasFrameOf(result.output, QStringLiteral("audio"));
    return readFfmpegWords(result.errors);
}

void VideoMeasurer::readToEnd(VideoMeasure& measure, const QString& input, double timeLimit) const {
    const CommandResult result =
        m_shell.runShellApart(input + QString::fromUtf16(packetReading), timeLimit);
    addPackets(measure, result.output, readFfmpegWords(result.errors));
    measure.readToEnd = measure.readToEnd && result.status == 0;
}

}  // namespace reelcrate
