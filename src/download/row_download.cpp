#include "download/row_download.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "download/claimed_files.h"
#include "download/download_command.h"
#include "download/finished_files.h"
#include "download/output_parsing.h"
#include "download/row_stages.h"
#include "download/run_log.h"
#include "download/silence_trim.h"
#include "tools/process_supervisor.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
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

bool isInside(const QString& path, const QString& folder) {
    return path.startsWith(QDir::cleanPath(folder) + u'/');
}

/// Where yt-dlp writes a file anew while it adds tags or a cover to it.
QString rewrittenPath(const QString& path) {
    const QFileInfo file(path);
    return file.path() + u'/' + file.completeBaseName() + QStringLiteral(".temp.") + file.suffix();
}

}  // namespace

QString downloadCommandFor(const DownloadItem& item, const QString& eventFolder, DownloadMode mode,
                           const ToolDiscovery& discovery) {
    return downloadCommand(
        item, eventFolder, mode,
        {discovery.toolPath(QStringLiteral("yt-dlp")), discovery.toolPath(QStringLiteral("ffmpeg")),
         discovery.toolSearchPath()});
}

/// Follows the downloader's output of one row: logs it, shows it on the row, and remembers the file
/// that it names. On the thread that runs the command.
class RowDownload::Output {
public:
    Output(RowDownload& download, const std::stop_token& stop)
        : m_download(download),
          m_stop(stop),
          m_claim(download.m_parts.claimedFiles),
          m_beforeFiles(regularFiles(download.m_plan.eventFolder)),
          m_unfinished(download.m_parts.supervisor) {}

    void read(const QString& piece) {
        for (const auto& [path, isWritten] : m_reader.read(piece))
            believe(QDir::cleanPath(path), isWritten);
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

    /// The row is about to be complete: what it left are files like any others.
    void keepFiles() { m_unfinished.keep(); }

    /// The file that the tool named or else, as far as can be told, the one that is new.
    QString finishedPath() {
        if (m_path.isEmpty()) {
            m_path = newFile();
            m_claim.add(m_path);
        }
        return m_path;
    }

private:
    /// A title may hold any text, also one that looks like the line of a path.
    void believe(const QString& path, bool isWritten) {
        if (!isInside(path, m_download.m_plan.eventFolder))
            return;
        m_path = path;
        m_claim.add(path);
        // A conversion writes straight into the file's final name. If the program ends before the
        // row does, what stands there would pass for a finished song from then on.
        if (isWritten && !std::binary_search(m_beforeFiles.begin(), m_beforeFiles.end(), path)) {
            m_unfinished.announce(path);
            m_unfinished.announce(rewrittenPath(path));
        }
    }

    QString newFile() const {
        QStringList notOwn = m_beforeFiles;
        for (const QString& path : m_claim.ofOthers())
            notOwn += relatedFiles(path);
        return bestOutputPath(notOwn, m_download.m_plan.eventFolder);
    }

    RowDownload& m_download;
    const std::stop_token& m_stop;
    const std::shared_ptr<std::atomic<qsizetype>> m_unshown =
        std::make_shared<std::atomic<qsizetype>>(0);
    // Before the listing: a neighbour that ends meanwhile is in the one or in the other.
    FileClaim m_claim;
    const QStringList m_beforeFiles;
    UnfinishedFiles m_unfinished;
    OutputReader m_reader;
    QString m_path;
};

RowDownload::RowDownload(DownloadParts parts, RunPlan plan, DownloadItem item, qsizetype position)
    : m_parts(parts), m_plan(std::move(plan)), m_item(std::move(item)), m_position(position) {}

void RowDownload::run(const std::stop_token& stop) {
    Output output(*this, stop);
    const QString command =
        downloadCommandFor(m_item, m_plan.eventFolder, m_plan.mode, m_parts.discovery);
    logCommand(command);
    const CommandResult result = m_parts.shell.runShellPassingOn(
        command, [&output](const QString& piece) { output.read(piece); });
    if (stop.stop_requested())
        return;
    // A tool that leaves out what it cannot get reports success all the same.
    if (result.status == 0 && !output.reader().leavesOutParts()) {
        finish(output, stop);
        return;
    }
    // The files stay announced, and so go with `output`: a conversion that failed, or of half a
    // stream, leaves half a song under the song's name. What a later download can resume has other
    // names.
    const bool mentionsLogin = output.reader().mentionsLogin();
    post([&stages = m_parts.stages, item = m_item, mentionsLogin] {
        stages.fail(item, mentionsLogin);
    });
}

void RowDownload::finish(Output& output, const std::stop_token& stop) {
    const bool isSong = m_plan.mode == DownloadMode::audio;
    if (isSong) {
        enterStage(QStringLiteral("Examining Song to Trim"), 0.9, 2);
        if (!pauseFor(stop, m_plan.timing.examining))
            return;
        enterStage(QStringLiteral("Trimming Song"), 0.96, 5);
    }
    const SilenceTrimResult trimmed =
        m_parts.trimmer.trimEdgeSilenceIfNeeded(output.finishedPath(), m_plan.mode);
    if (stop.stop_requested())
        return;
    output.keepFiles();
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
