#pragma once

#include "download/claimed_files.h"
#include "download/progress_crawls.h"
#include "download/row_download.h"
#include "download/row_stages.h"
#include "download/run_log.h"
#include "download/silence_trim.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUuid>

#include <memory>
#include <vector>

/// Download runs: each takes a set of rows and downloads them in queue order, side by side in as
/// many slots as are free when it starts. All runs share six slots, and no link is downloaded twice
/// at a time. Main thread; a run's downloads go on in the background, and how they go arrives in
/// the rows, the run log and the summary.
namespace reelcrate {

class BackgroundTasks;
class DownloadRun;
class QueueStore;

/// Where a run puts its files, and as what.
struct RunTarget {
    DownloadMode mode = DownloadMode::audio;
    QString outputFolder;
    QString eventFolder;  ///< inside the output folder; created when the run starts
};

class DownloadRuns : public QObject {
    Q_OBJECT

public:
    static constexpr int maxParallelDownloads = 6;

    DownloadRuns(QueueStore& queue, ShellRunner& shell, const ToolDiscovery& discovery,
                 ProcessSupervisor& supervisor, BackgroundTasks& background, MainQueue& mainQueue,
                 DownloadTiming timing = {});
    ~DownloadRuns() override;

    int activeDownloadRuns() const { return m_activeDownloadRuns; }
    const RunLog& runLog() const { return m_log; }
    ProgressCrawls& crawls() { return m_crawls; }
    RowStages& stages() { return m_stages; }
    const SilenceTrimmer& trimmer() const { return m_trimmer; }

    /// Downloads all rows that are ready or need attention.
    void startDownloads(const RunTarget& target);

    /// Downloads those of these rows that are ready or need attention, in the queue's order.
    void startDownloadRun(const QList<QUuid>& itemIDs, const RunTarget& target);

    void clearRunLog() { m_log.clear(); }

    /// Any thread; the text arrives in the log when the main thread gets to it.
    void appendRunLog(const QString& text);

Q_SIGNALS:
    void summaryChanged(const QString& text);
    void activeDownloadRunsChanged();
    void runLogCleared();
    void runLogAppended(const QString& text);

private:
    QList<DownloadItem> eligibleRows(const QList<QUuid>& itemIDs) const;
    bool createEventFolder(const RunTarget& target);
    void addRun(const RunPlan& plan, const QList<DownloadItem>& rows, qsizetype slotCount);
    qsizetype freeSlots() const;
    void startRowsBehind(const QString& endedLink);
    void finishRun(const DownloadRun* run);
    void setActiveDownloadRuns(int count);

    QueueStore& m_queue;
    BackgroundTasks& m_background;
    MainQueue& m_mainQueue;
    const DownloadTiming m_timing;
    RunLog m_log;
    ProgressCrawls m_crawls;
    RowStages m_stages;
    ClaimedFiles m_claimedFiles;
    SilenceTrimmer m_trimmer;
    DownloadParts m_parts;
    QSet<QString> m_runningLinks;
    std::vector<std::unique_ptr<DownloadRun>> m_runs;
    int m_activeDownloadRuns = 0;
};

}  // namespace reelcrate
