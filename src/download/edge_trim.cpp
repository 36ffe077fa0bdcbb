#include "download/edge_trim.h"

#include "library/ffmpeg_words.h"
#include "library/finished_files.h"
#include "library/song_measure.h"
#include "records/download_item.h"
#include "tools/shell_quote.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cmath>
#include <filesystem>
#include <system_error>

namespace reelcrate {

namespace {

constexpr double worthCutting = 0.05;
constexpr double lengthTolerance = 0.15;
constexpr double leastLimitSeconds = 180;
constexpr double limitPerSecond = 0.5;

QString position(double seconds) {
    return QString::number(seconds, 'f', 6);
}

TrimOutcome skipped(const QString& reason) {
    return {TrimOutcome::Kind::skipped, reason};
}

/// In one step, so that under the name there is always one whole file or the other.
QString whyNotMoved(const QString& from, const QString& to) {
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(from).toStdString(),
                            QFile::encodeName(to).toStdString(), error);
    return error ? QStringLiteral("the song could not be replaced: ") +
                       QString::fromLocal8Bit(error.message().c_str())
                 : QString();
}

QString whyConverterFailed(const CommandResult& result) {
    const FfmpegWords words = readFfmpegWords(result.errors);
    if (result.status == CommandResult::timedOut)
        return QStringLiteral("the converter took too long");
    // It reports success also where a full disk cut the file's end off, and only says so.
    if (result.status != 0 || words.writeFailed)
        return QStringLiteral("the converter failed: ") + words.complaint;
    return {};
}

}  // namespace

TrimPlan TrimPlan::of(const SongMeasure& measure) {
    if (!measure.sound)
        return {Kind::silent, 0, measure.decodedSeconds};
    const auto [first, last] = *measure.sound;
    const bool worth = first >= worthCutting || measure.decodedSeconds - last >= worthCutting;
    return {worth ? Kind::cut : Kind::leave, first, last};
}

QString edgeTrimCommand(const QString& ffmpeg, const QString& input, const TrimPlan& plan,
                        const QString& output) {
    const QString song = QStringLiteral("-i ") + shellQuoted(input);
    const QString start = QStringLiteral("-ss ") + position(plan.start);
    return QStringList{
        shellQuoted(ffmpeg),
        QStringLiteral("-hide_banner -loglevel level+error -nostdin -y"),
        // All is decoded from the song's beginning: a decoder that starts elsewhere lacks what the
        // first frames borrow from those before, and spoils 50 ms. The chapters alone come from the
        // same file read from the cut on, which is what shifts them.
        song,
        start,
        song,
        QStringLiteral("-map 0:a:0 -map 0:v? -map_metadata 0 -map_chapters 1"),
        QStringLiteral("-af atrim=start=%1:end=%2,asetpts=PTS-STARTPTS")
            .arg(position(plan.start), position(plan.end)),
        QStringLiteral("-t ") + position(plan.seconds()),
        QStringLiteral("-c:a libmp3lame -q:a 0 -c:v copy -id3v2_version 3"),
        shellQuoted(output),
    }
        .join(u' ');
}

EdgeTrimmer::EdgeTrimmer(ShellRunner& shell, const ToolDiscovery& discovery,
                         const SongMeasurer& measurer)
    : m_shell(shell), m_discovery(discovery), m_measurer(measurer) {}

TrimOutcome EdgeTrimmer::trim(const QString& path, const SongMeasure& measure) const {
    if (!hasExtension(path, QStringLiteral("mp3")))
        return {TrimOutcome::Kind::noMp3, {}};
    const TrimPlan plan = TrimPlan::of(measure);
    if (plan.kind == TrimPlan::Kind::silent)
        return skipped(QStringLiteral("nothing in it is louder than -55 dB"));
    if (plan.kind == TrimPlan::Kind::cut) {
        const QString temporary = QFileInfo(path).absolutePath() + QStringLiteral("/.trim-") +
                                  idText(QUuid::createUuid()) + QStringLiteral(".mp3");
        if (const QString reason = whyNotCut(path, plan, temporary); !reason.isEmpty()) {
            QFile::remove(temporary);
            return skipped(reason);
        }
    }
    return {TrimOutcome::Kind::trimmed, {}};
}

/// Empty when the cut song has taken the place of the other.
QString EdgeTrimmer::whyNotCut(const QString& path, const TrimPlan& plan,
                               const QString& temporary) const {
    const auto ffmpeg = m_discovery.toolPath(QStringLiteral("ffmpeg"));
    if (!ffmpeg)
        return QStringLiteral("ffmpeg is missing");
    const CommandResult result =
        m_shell.runShellApart(edgeTrimCommand(*ffmpeg, path, plan, temporary),
                              leastLimitSeconds + limitPerSecond * plan.end);
    if (QString reason = whyConverterFailed(result); !reason.isEmpty())
        return reason;

    const SongMeasure cut = m_measurer.measure(temporary);
    if (const auto reason = whyNoWholeSong(cut))
        return QStringLiteral("the cut song is not whole: ") + *reason;
    if (!cut.sound || std::abs(cut.decodedSeconds - plan.seconds()) > lengthTolerance)
        return QStringLiteral("the cut song has %1 s instead of %2 s")
            .arg(cut.decodedSeconds, 0, 'f', 2)
            .arg(plan.seconds(), 0, 'f', 2);
    return whyNotMoved(temporary, path);
}

}  // namespace reelcrate
