#include "download/edge_trim.h"

#include "library/ffmpeg_words.h"
#include "library/finished_files.h"
#include "library/mp3_look.h"
#include "library/place_file.h"
#include "library/song_measure.h"
#include "tools/shell_quote.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QFile>
#include <QStringList>

#include <cmath>

namespace reelcrate {

namespace {

constexpr double nearlyAll = 0.9;
constexpr double worthCutting = 0.05;
constexpr double lengthTolerance = 0.15;
constexpr double leastLimitSeconds = 180;
constexpr double limitPerSecond = 0.5;

QString position(double seconds) {
    return QString::number(seconds, 'f', 6);
}

TrimOutcome skipped(const QString& reason, const SongMeasure& measure) {
    return {TrimOutcome::Kind::skipped, reason, measure.decodedSeconds};
}

// What follows is empty when all went well.

QString whyConverterFailed(const CommandResult& result, const FfmpegWords& words) {
    if (result.status == CommandResult::timedOut)
        return QStringLiteral("the converter took too long");
    // It reports success also where a full disk cut the file's end off, and only says so.
    if (result.status != 0 || words.writeFailed)
        return QStringLiteral("the converter failed: ") + words.complaint;
    if (result.errors.contains(u"silence_start"))
        return QStringLiteral("the converter was given silence");
    return {};
}

QString whyNotThePart(const QString& path, const TrimPlan& plan) {
    // To decode it, too, would tell no more, and cost a sixth of all that the cut costs.
    const auto seconds = secondsOfFrames(path);
    if (!seconds)
        return QStringLiteral("the cut song is not whole");
    if (std::abs(*seconds - plan.seconds()) > lengthTolerance)
        return QStringLiteral("the cut song has %1 s instead of %2 s")
            .arg(*seconds, 0, 'f', 2)
            .arg(plan.seconds(), 0, 'f', 2);
    return {};
}

QString whyNotReplaced(const QString& temporary, const QString& path) {
    const QString failure = replaceFile(temporary, path);
    return failure.isEmpty() ? failure
                             : QStringLiteral("the song could not be replaced: ") + failure;
}

}  // namespace

TrimPlan TrimPlan::of(const SongMeasure& measure) {
    if (!measure.sound)
        return {Kind::silent, 0, measure.decodedSeconds};
    const auto [first, last] = *measure.sound;
    const bool worth = first >= worthCutting || measure.decodedSeconds - last >= worthCutting;
    return {worth ? Kind::cut : Kind::leave, first, last, measure.hasChapters};
}

QString edgeTrimCommand(const QString& ffmpeg, const QString& input, const TrimPlan& plan,
                        const QString& output) {
    const QString song = QStringLiteral("-i ") + shellQuoted(input);
    // Chapters come from the same file read from the cut on, which is what shifts them. A second
    // input costs a tenth of all, even if nothing else is read of it.
    const QString chapters =
        plan.hasChapters
            ? QStringLiteral("-ss %1 %2 -map_chapters 1").arg(position(plan.start), song)
            : QString();
    return QStringList{
        shellQuoted(ffmpeg),
        QStringLiteral("-hide_banner -nostats -loglevel level+info -nostdin -y"),
        // All is decoded from the song's beginning: a decoder that starts elsewhere lacks what the
        // first frames borrow from those before, and spoils 50 ms.
        song,
        chapters,
        QStringLiteral("-map 0:a:0 -map 0:v? -map_metadata 0"),
        // What begins and ends with sound is never told to be silent, unless a filter fails.
        QStringLiteral("-af atrim=start=%1:end=%2,asetpts=PTS-STARTPTS,silencedetect=n=-55dB:d=%3")
            .arg(position(plan.start), position(plan.end), position(nearlyAll * plan.seconds())),
        QStringLiteral("-t ") + position(plan.seconds()),
        QStringLiteral("-c:a libmp3lame -q:a 0 -c:v copy -id3v2_version 3"),
        shellQuoted(output),
    }
        .join(u' ');
}

EdgeTrimmer::EdgeTrimmer(ShellRunner& shell, const ToolDiscovery& discovery)
    : m_shell(shell), m_discovery(discovery) {}

TrimOutcome EdgeTrimmer::trim(const QString& path, const SongMeasure& measure) const {
    if (!hasExtension(path, QStringLiteral("mp3")))
        return {TrimOutcome::Kind::noMp3, {}, measure.decodedSeconds};
    const TrimPlan plan = TrimPlan::of(measure);
    if (plan.kind == TrimPlan::Kind::silent)
        return skipped(QStringLiteral("nothing in it is louder than -55 dB"), measure);
    if (plan.kind == TrimPlan::Kind::leave)
        return {TrimOutcome::Kind::trimmed, {}, measure.decodedSeconds};
    const QString temporary = temporaryBeside(path, QStringLiteral("trim"), QStringLiteral("mp3"));
    TrimOutcome outcome = cut(path, plan, temporary);
    if (outcome.kind == TrimOutcome::Kind::trimmed)
        return outcome;
    QFile::remove(temporary);
    return skipped(outcome.remark, measure);
}

TrimOutcome EdgeTrimmer::cut(const QString& path, const TrimPlan& plan,
                             const QString& temporary) const {
    const auto ffmpeg = m_discovery.toolPath(QStringLiteral("ffmpeg"));
    if (!ffmpeg)
        return {TrimOutcome::Kind::skipped, QStringLiteral("ffmpeg is missing")};
    const CommandResult result =
        m_shell.runShellApart(edgeTrimCommand(*ffmpeg, path, plan, temporary),
                              leastLimitSeconds + limitPerSecond * plan.end);
    const FfmpegWords words = readFfmpegWords(result.errors);
    QString reason = whyConverterFailed(result, words);
    if (reason.isEmpty())
        reason = whyNotThePart(temporary, plan);
    if (reason.isEmpty())
        reason = whyNotReplaced(temporary, path);
    if (!reason.isEmpty())
        return {TrimOutcome::Kind::skipped, reason};
    return {TrimOutcome::Kind::trimmed, words.complaint, plan.seconds()};
}

}  // namespace reelcrate
