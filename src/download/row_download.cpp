#include "download/row_download.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "download/download_command.h"
#include "download/output_parsing.h"
#include "download/row_files.h"
#include "download/row_stages.h"
#include "download/run_log.h"
#include "download/silence_trim.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <atomic>
#include <memory>
#include <utility>

namespace reelcrate {

namespace {

using namespace std::chrono_literals;

constexpr qsizetype mostUnshown = 1 << 20;  // UTF-16 units of a tool's output
constexpr auto shortWhile = 2ms;

/// Text that names the user's home folder is shown with "~" instead.
QString withoutHome(QString text, const QString& home) {
    if (!home.isEmpty() && home != QStringLiteral("/"))
        text.replace(home, QStringLiteral("~"));
    return text;
}

}  // namespace

QString downloadCommandFor(const DownloadItem& item, const QString& eventFolder, DownloadMode mode,
                           const ToolDiscovery& discovery) {
    return downloadCommand(
        item, eventFolder, mode,
        {discovery.toolPath(QStringLiteral("yt-dlp")), discovery.toolPath(QStringLiteral("ffmpeg")),
         discovery.toolSearchPath()});
}

/// Follows the downloader's output of one row: logs it, shows it on the row, and tells the row's
/// files of it. On the thread that runs the command.
class RowDownload::Output {
public:
    Output(RowDownload& download, RowFiles& files, const std::stop_token& stop)
        : m_download(download), m_files(files), m_stop(stop) {}

    void read(const QString& piece) {
        for (const FileNews& news : m_reader.read(piece))
            m_files.take(news);
        m_unshown->fetch_add(piece.size());
        m_download.post([&log = m_download.m_parts.log, &stages = m_download.m_parts.stages,
                         item = m_download.m_item, mode = m_download.m_plan.mode, piece,
                         unshown = m_unshown] {
            log.append(piece);
            if (const QString trimmed = piece.trimmed(); !trimmed.isEmpty())
                stages.applyDownloadOutput(item, mode, trimmed);
            unshown->fetch_sub(piece.size());
        });
        // A tool that prints faster than it can be shown has to wait: its output would pile up.
        while (m_unshown->load() > mostUnshown && pauseFor(m_stop, shortWhile)) {
        }
    }

    const OutputReader& reader() const { return m_reader; }

private:
    RowDownload& m_download;
    RowFiles& m_files;
    const std::stop_token& m_stop;
    const std::shared_ptr<std::atomic<qsizetype>> m_unshown =
        std::make_shared<std::atomic<qsizetype>>(0);
    OutputReader m_reader;
};

RowDownload::RowDownload(DownloadParts parts, RunPlan plan, DownloadItem item, qsizetype position)
    : m_parts(parts), m_plan(std::move(plan)), m_item(std::move(item)), m_position(position) {}

void RowDownload::run(const std::stop_token& stop) {
    RowFiles files(m_plan.eventFolder, m_parts.claimedFiles, m_parts.supervisor);
    Output output(*this, files, stop);
    const QString command =
        downloadCommandFor(m_item, m_plan.eventFolder, m_plan.mode, m_parts.discovery);
    logCommand(command);
    const CommandResult result = m_parts.shell.runShellPassingOn(
        command, [&output](const QString& piece) { output.read(piece); });
    if (stop.stop_requested())
        return;
    // A tool that leaves out what it cannot get reports success all the same.
    if (result.status == 0 && !output.reader().leavesOutParts()) {
        finish(files, stop);
        return;
    }
    files.removeUnfinished();
    if (!result.output.isEmpty())
        post([&log = m_parts.log, reason = result.output] { log.append(reason); });
    const bool mentionsLogin = output.reader().mentionsLogin();
    post([&stages = m_parts.stages, item = m_item, mentionsLogin] {
        stages.fail(item, mentionsLogin);
    });
}

void RowDownload::finish(RowFiles& files, const std::stop_token& stop) {
    const bool isSong = m_plan.mode == DownloadMode::audio;
    if (isSong) {
        enterStage(QStringLiteral("Examining Song to Trim"), 0.9, 2);
        if (!pauseFor(stop, m_plan.timing.examining))
            return;
        enterStage(QStringLiteral("Trimming Song"), 0.96, 5);
    }
    const SilenceTrimResult trimmed =
        m_parts.trimmer.trimEdgeSilenceIfNeeded(files.finishedPath(), m_plan.mode);
    if (stop.stop_requested())
        return;
    files.keepAll();
    enterStage(isSong ? QStringLiteral("Saving MP3") : QStringLiteral("Saving MP4"), 0.99, 1);
    if (!pauseFor(stop, isSong ? m_plan.timing.savingAudio : m_plan.timing.savingVideo))
        return;
    post([&stages = m_parts.stages, id = m_item.id, trimmed] { stages.complete(id, trimmed); });
}

void RowDownload::logCommand(const QString& command) {
    const QString line =
        QStringLiteral("Running %1/%2: ").arg(m_position + 1).arg(m_plan.rowCount) +
        withoutHome(command, m_parts.discovery.places().home) + u'\n';
    post([&log = m_parts.log, line] { log.append(line); });
}

void RowDownload::enterStage(const QString& detail, double target, double duration) {
    post([&stages = m_parts.stages, id = m_item.id, detail, target, duration] {
        stages.enterStage(id, detail, target, duration);
    });
}

void RowDownload::post(std::function<void()> block) {
    m_parts.mainQueue.post(std::move(block));
}

}  // namespace reelcrate
