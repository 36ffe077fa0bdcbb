#include "download/download_runs.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "download/download_run.h"
#include "download/working_folder.h"
#include "library/file_names.h"
#include "queue/queue_store.h"
#include "tools/shell_runner.h"

#include <QFile>
#include <QSet>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <utility>

namespace reelcrate {

namespace {

/// Absent on success, otherwise the system's description.
std::optional<QString> createFolders(const QString& path) {
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(path).toStdString(), error);
    if (!error)
        return std::nullopt;
    return QString::fromStdString(error.message());
}

}  // namespace

bool isStartable(const DownloadItem& row) {
    const bool isFree = row.status == QueueStatus::waiting || row.status == QueueStatus::failed;
    // Of a Spotify link that was not listed nothing is known that could be searched for.
    const bool isKnown = !isSearchedFor(row.source) || row.reading == LinkReading::song;
    return isFree && isKnown && row.reading != LinkReading::repeated &&
           row.reading != LinkReading::givenUp;
}

bool isUnderWay(const DownloadItem& row) {
    return row.status == QueueStatus::queued || row.status == QueueStatus::running;
}

DownloadRuns::DownloadRuns(QueueStore& queue, ShellRunner& shell, const ToolDiscovery& discovery,
                           EventLibrary& library, BackgroundTasks& background, MainQueue& mainQueue,
                           DownloadTiming timing, Downloader downloader)
    : m_queue(queue),
      m_shell(shell),
      m_background(background),
      m_mainQueue(mainQueue),
      m_timing(timing),
      m_downloader(std::move(downloader)),
      m_crawls(queue),
      m_stages(queue, m_crawls),
      m_finisher(shell, discovery, library),
      m_parts{shell, discovery, library, m_finisher, mainQueue, m_stages, m_log} {
    connect(&m_log, &RunLog::cleared, this, &DownloadRuns::runLogCleared);
    connect(&m_log, &RunLog::appended, this, &DownloadRuns::runLogAppended);
    m_lookAgain.setSingleShot(true);
    m_lookAgain.setInterval(std::chrono::ceil<std::chrono::milliseconds>(timing.lookAgain));
    connect(&m_lookAgain, &QTimer::timeout, this, &DownloadRuns::lookAgain);
}

DownloadRuns::~DownloadRuns() = default;

QString DownloadRuns::oldToolNotice() const {
    const auto tool = m_downloader ? m_downloader() : std::nullopt;
    if (!tool || !tool->isStale())
        return {};
    return versionLine(*tool);
}

QList<DownloadItem> DownloadRuns::eligibleRows(const QList<QUuid>& itemIDs) const {
    const QSet<QUuid> wanted(itemIDs.begin(), itemIDs.end());
    QList<DownloadItem> rows;
    std::copy_if(
        m_queue.rows().begin(), m_queue.rows().end(), std::back_inserter(rows),
        [&](const DownloadItem& row) { return wanted.contains(row.id) && isStartable(row); });
    return rows;
}

void DownloadRuns::startDownloadRun(const QList<QUuid>& itemIDs, const RunTarget& target) {
    const QList<DownloadItem> rows = eligibleRows(itemIDs);
    const DownloadMode mode = target.event.mode;
    const QString nouns = noun(mode, false);
    if (freeSlots() < 1) {
        Q_EMIT summaryChanged(QStringLiteral("Already downloading %1 %2 at once")
                                  .arg(maxParallelDownloads)
                                  .arg(nouns));
        return;
    }
    if (rows.isEmpty())
        return;

    setActiveDownloadRuns(m_activeDownloadRuns + 1);
    m_log.clear();
    for (const QString& note : std::exchange(m_notes, {}))
        m_log.append(note);
    Q_EMIT summaryChanged(QStringLiteral("Preparing event folder"));
    if (!createEventFolder(target)) {
        setActiveDownloadRuns(std::max(m_activeDownloadRuns - 1, 0));
        return;
    }

    const qsizetype slotCount = std::min(freeSlots(), rows.size());
    addRun({target.event, rows.size(), m_timing, oldToolNotice(), target.loudness}, rows,
           slotCount);
    // Beside the downloads, which need not wait for a slow drive.
    m_background.run([this, folder = target.event.folder](const std::stop_token&) {
        removeAbandonedWork(folder);
        if (const QString notice = m_shell.loginNotice(); !notice.isEmpty())
            appendRunLog(notice);
    });
    Q_EMIT summaryChanged(
        rows.size() == 1
            ? QStringLiteral("Downloading selected ") + noun(mode, true)
            : QStringLiteral("Downloading up to %1 %2 at once").arg(slotCount).arg(nouns));
}

void DownloadRuns::addRun(const RunPlan& plan, const QList<DownloadItem>& rows,
                          qsizetype slotCount) {
    m_runs.push_back(std::make_unique<DownloadRun>(m_parts, plan, rows, slotCount, m_runningSongs,
                                                   m_background));
    DownloadRun* run = m_runs.back().get();
    connect(run, &DownloadRun::summaryChanged, this, &DownloadRuns::summaryChanged);
    connect(run, &DownloadRun::rowEnded, this, &DownloadRuns::freeSong);
    connect(run, &DownloadRun::rowPutBack, this, [this](const QString& song) {
        freeSong(song);
        if (!m_lookAgain.isActive())
            m_lookAgain.start();
    });
    // Queued: the run that is finished must have returned before it can go.
    connect(
        run, &DownloadRun::finished, this, [this, run] { finishRun(run); }, Qt::QueuedConnection);
    run->start();
}

qsizetype DownloadRuns::freeSlots() const {
    qsizetype free = maxParallelDownloads;
    for (const auto& run : m_runs)
        free -= run->runningCount();
    return free;
}

void DownloadRuns::freeSong(const QString& song) {
    m_runningSongs.remove(song);
    for (const auto& run : m_runs)
        run->songFreed(song);
    startRows();
    Q_EMIT slotFreed();
}

/// Each run has slots of its own, but a row that was held for another run's song left its slot
/// unused, and a later run may have been given that one, too.
void DownloadRuns::startRows() {
    for (const auto& run : m_runs)
        run->startRows(freeSlots());
}

void DownloadRuns::stop(const QSet<QUuid>& itemIDs) {
    // A download whose row says how it ended has only still to be counted.
    QSet<QUuid> stopped;
    for (const QUuid& id : itemIDs) {
        const DownloadItem* row = m_queue.find(id);
        if (row != nullptr && isUnderWay(*row))
            stopped.insert(id);
    }
    for (const auto& run : m_runs)
        run->stop(stopped);
    startRows();
    Q_EMIT slotFreed();
}

/// Nobody tells when another program has done with a song.
void DownloadRuns::lookAgain() {
    for (const auto& run : m_runs)
        run->releasePutBack();
    startRows();
}

/// False, with the reason in the log, when the run has no folder to write into.
bool DownloadRuns::createEventFolder(const RunTarget& target) {
    std::optional<QString> error;
    if (holdsShellVariable(target.outputFolder)) {
        // The downloader would write to where the variable's value leads.
        error = QStringLiteral(
                    "The downloader reads the \"$\" in %1 as the start of a variable's "
                    "name. Choose another folder.")
                    .arg(target.outputFolder);
    } else {
        error = createFolders(target.event.folder);
    }
    if (error)
        m_log.append(QStringLiteral("Could not create output folders: ") + *error + u'\n');
    return !error;
}

void DownloadRuns::finishRun(const DownloadRun* run) {
    const DownloadMode mode = run->mode();
    const QString lastWord = run->lastWord();
    const bool wasStopped = run->wasStopped();
    m_background.run(
        [folder = run->folder()](const std::stop_token&) { removeWorkFolderIfEmpty(folder); });
    std::erase_if(m_runs, [run](const auto& owned) { return owned.get() == run; });
    setActiveDownloadRuns(std::max(m_activeDownloadRuns - 1, 0));
    // What a user can do something about is not hidden by how the run ended.
    if (!lastWord.isEmpty()) {
        Q_EMIT summaryChanged(lastWord);
        return;
    }
    if (m_activeDownloadRuns == 0) {
        Q_EMIT summaryChanged(wasStopped ? QStringLiteral("Download run stopped")
                                         : QStringLiteral("Download run finished"));
        return;
    }
    const qsizetype running = m_queue.countWithStatus(QueueStatus::running);
    Q_EMIT summaryChanged(
        QStringLiteral("Downloading %1 %2 at once").arg(running).arg(noun(mode, running == 1)));
}

void DownloadRuns::setActiveDownloadRuns(int count) {
    m_activeDownloadRuns = count;
    Q_EMIT activeDownloadRunsChanged();
}

void DownloadRuns::appendNote(const QString& text) {
    m_notes.append(text);
    m_log.append(text);
}

void DownloadRuns::appendRunLog(const QString& text) {
    m_mainQueue.post([this, text] { m_log.append(text); });
}

}  // namespace reelcrate
