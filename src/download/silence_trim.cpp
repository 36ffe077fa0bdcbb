#include "download/silence_trim.h"

#include "download/claimed_files.h"
#include "library/finished_files.h"
#include "records/download_item.h"
#include "tools/process_supervisor.h"
#include "tools/shell_quote.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include <chrono>
#include <filesystem>
#include <system_error>

namespace reelcrate {

namespace {

constexpr double limitSeconds = 180;
constexpr std::chrono::minutes forgottenAfter{10};

/// Cuts what is silent before the first sound; on the reversed audio, after the last one.
const QString filterChain = QStringLiteral(
    "silenceremove=start_periods=1:start_duration=0.01:start_threshold=-55dB,"
    "areverse,"
    "silenceremove=start_periods=1:start_duration=0.02:start_threshold=-55dB,"
    "areverse");

/// ffmpeg reports success also where a full disk cut the file's end off, and only says so.
bool reportsWriteError(const QString& output) {
    return output.contains(u"Error writing") || output.contains(u"Error closing") ||
           output.contains(u"av_interleaved_write_frame");
}

/// Replaces in one step, so that under the name there is always one whole file or the other.
bool moveOver(const QString& from, const QString& to) {
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(from).toStdString(),
                            QFile::encodeName(to).toStdString(), error);
    return !error;
}

QString newTemporaryName() {
    return QStringLiteral(".trim-") + idText(QUuid::createUuid()) + QStringLiteral(".mp3");
}

bool isTemporaryName(const QString& name) {
    static const QRegularExpression form(QRegularExpression::anchoredPattern(
        QStringLiteral(R"(\.trim-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\.mp3)")));
    return form.match(name).hasMatch();
}

bool isForgotten(const QString& path) {
    using Time = std::filesystem::file_time_type;
    const Time date = modificationDate(path);
    return date != Time::min() && date < Time::clock::now() - forgottenAfter;
}

}  // namespace

QString silenceTrimCommand(const QString& ffmpeg, const QString& input, const QString& output) {
    return QStringList{
        shellQuoted(ffmpeg),
        QStringLiteral("-hide_banner -loglevel error -nostdin -y"),
        QStringLiteral("-i ") + shellQuoted(input),
        QStringLiteral("-map 0:a:0 -map 0:v?"),
        QStringLiteral("-af ") + shellQuoted(filterChain),
        QStringLiteral("-c:a libmp3lame -q:a 0 -c:v copy -map_metadata 0 -id3v2_version 3"),
        shellQuoted(output),
    }
        .join(u' ');
}

SilenceTrimmer::SilenceTrimmer(ShellRunner& shell, const ToolDiscovery& discovery,
                               ProcessSupervisor& supervisor, ClaimedFiles& claimedFiles)
    : m_shell(shell),
      m_discovery(discovery),
      m_supervisor(supervisor),
      m_claimedFiles(claimedFiles) {}

SilenceTrimResult SilenceTrimmer::trimEdgeSilenceIfNeeded(const QString& outputPath,
                                                          DownloadMode mode) const {
    const QFileInfo file(outputPath);
    const bool isSong = mode == DownloadMode::audio && file.isFile() &&
                        hasExtension(outputPath, QStringLiteral("mp3"));
    if (!isSong) {
        const QString folder = QFileInfo(file.absolutePath()).fileName();
        return {outputPath, QStringLiteral("Saved to ") + folder};
    }
    const auto ffmpeg = m_discovery.toolPath(QStringLiteral("ffmpeg"));
    const bool trimmed = ffmpeg && replaceByTrimmed(*ffmpeg, outputPath);
    return {outputPath, trimmed ? QStringLiteral("Saved; trimmed silent start/end")
                                : QStringLiteral("Saved; silence trim skipped")};
}

bool SilenceTrimmer::replaceByTrimmed(const QString& ffmpeg, const QString& path) const {
    const QString temporary = QFileInfo(path).absolutePath() + u'/' + newTemporaryName();
    FileClaim claim(m_claimedFiles);
    claim.add(temporary);
    UnfinishedFiles unfinished(m_supervisor);
    unfinished.announce(temporary);
    const CommandResult result =
        m_shell.runShellSync(silenceTrimCommand(ffmpeg, path, temporary), limitSeconds);
    return result.status == 0 && !reportsWriteError(result.output) &&
           QFileInfo(temporary).size() > 0 && moveOver(temporary, path);
}

void removeForgottenTrims(const QString& folder) {
    QDirIterator files(folder, {QStringLiteral(".trim-*.mp3")},
                       QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    while (files.hasNext()) {
        const QString path = files.next();
        if (isTemporaryName(files.fileName()) && isForgotten(path))
            QFile::remove(path);
    }
}

}  // namespace reelcrate
