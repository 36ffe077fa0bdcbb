#include "library/song_measure.h"

#include "library/ffmpeg_words.h"
#include "library/pcm_stream.h"
#include "tools/shell_quote.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QFileInfo>

#include <cmath>

namespace reelcrate {

namespace {

constexpr double leastLimitSeconds = 180;
/// Of a file's bytes, decoded in a second: a hundredth of what this took when it was written.
constexpr double slowestDecoder = 200'000;

// Unless told otherwise, ffmpeg writes each packet by itself into a pipe, which takes as long as
// the decoding.
constexpr QLatin1String asStream{"-flush_packets 0 -f au -"};
constexpr QLatin1String asHash{"-f md5 -"};

double timeLimit(const QString& path) {
    return leastLimitSeconds + static_cast<double>(QFileInfo(path).size()) / slowestDecoder;
}

QString decodeCommand(const QString& ffmpeg, const QString& path, QLatin1String output) {
    return shellQuoted(ffmpeg) +
           QStringLiteral(" -hide_banner -nostats -nostdin -loglevel level+info -i ") +
           shellQuoted(path) + QStringLiteral(" -map 0:a:0 -map_metadata -1 -c:a pcm_s16be ") +
           output;
}

}  // namespace

std::optional<QString> whyNoWholeSong(const SongMeasure& measure) {
    const auto withComplaint = [&](const QString& reason) {
        return measure.complaint.isEmpty() ? reason
                                           : reason + QStringLiteral(": ") + measure.complaint;
    };
    if (!measure.decoded)
        return withComplaint(measure.decodedSeconds > 0
                                 ? QStringLiteral("decoding broke off after %1 s")
                                       .arg(measure.decodedSeconds, 0, 'f', 2)
                                 : QStringLiteral("does not decode"));
    if (measure.decodedSeconds < shortestSongSeconds)
        return withComplaint(
            QStringLiteral("only %1 s of sound").arg(measure.decodedSeconds, 0, 'f', 2));
    if (measure.headerSeconds &&
        std::abs(*measure.headerSeconds - measure.decodedSeconds) > headerToleranceSeconds)
        return withComplaint(QStringLiteral("%1 s decode of the %2 s that its header tells")
                                 .arg(measure.decodedSeconds, 0, 'f', 2)
                                 .arg(*measure.headerSeconds, 0, 'f', 2));
    return std::nullopt;
}

SongMeasurer::SongMeasurer(ShellRunner& shell, const ToolDiscovery& discovery)
    : m_shell(shell), m_discovery(discovery) {}

SongMeasure SongMeasurer::measure(const QString& path, MeasureLoudness loudness) const {
    SongMeasure measure;
    const auto ffmpeg = m_discovery.toolPath(QStringLiteral("ffmpeg"));
    if (!ffmpeg) {
        measure.complaint = QStringLiteral("ffmpeg is missing");
        return measure;
    }
    PcmStream stream(loudness);
    const CommandResult result =
        m_shell.runShellBytes(decodeCommand(*ffmpeg, path, asStream), timeLimit(path),
                              [&stream](const QByteArray& bytes) { stream.add(bytes); });
    const FfmpegWords words = readFfmpegWords(result.errors);
    measure.headerSeconds = words.headerSeconds;
    measure.hasChapters = words.hasChapters;
    measure.complaint = result.status == CommandResult::timedOut
                            ? QStringLiteral("the decoder took too long")
                            : words.complaint;
    if (auto& meter = stream.meter()) {
        measure.sound = meter->finish();
        measure.decodedSeconds = meter->seconds();
        measure.soundPrint = stream.soundPrint();
        measure.decoded = result.status == 0 && !words.cutOff;
    }
    if (const auto& meter = stream.loudnessMeter())
        measure.loudness = meter->loudness();
    return measure;
}

QString SongMeasurer::soundHash(const QString& path) const {
    const auto ffmpeg = m_discovery.toolPath(QStringLiteral("ffmpeg"));
    if (!ffmpeg)
        return {};
    const CommandResult result =
        m_shell.runShellApart(decodeCommand(*ffmpeg, path, asHash), timeLimit(path));
    return result.status == 0 ? result.output.trimmed() : QString();
}

}  // namespace reelcrate
