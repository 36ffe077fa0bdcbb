#pragma once

#include "download/progress_crawls.h"
#include "download/row_download.h"
#include "download/row_stages.h"
#include "download/run_log.h"
#include "download/song_finish.h"
#include "library/event_library.h"
#include "tools/tool_versions.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// Download runs: each takes a set of rows and downloads them in queue order, side by side in as
/// many slots as are free when it starts. All runs share six slots, and no song is downloaded twice
/// at a time. Main thread; a run's downloads go on in the background, and how they go arrives in
/// the rows, the run log and the summary.
namespace reelcrate {

class BackgroundTasks;
class DownloadRun;
class QueueStore;

/// Where a run puts its files, and as what.
struct RunTarget {
    EventTarget event;  ///< its folder is created when the run starts
    QString outputFolder;
    MeasureLoudness loudness = MeasureLoudness::no;  ///< whether songs get tags that tell theirs
};

/// Whether a run may take the row: it is ready or needs attention, and something stands behind it
/// that no other row is for.
bool isStartable(const DownloadItem& row);

/// Whether a run has the row: it is being downloaded or waits for that.
bool isUnderWay(const DownloadItem& row);

class DownloadRuns : public QObject {
    Q_OBJECT

public:
    static constexpr int maxParallelDownloads = 6;

    /// Tells which downloader the last check found.
    using Downloader = std::function<std::optional<ToolVersion>()>;

    DownloadRuns(QueueStore& queue, ShellRunner& shell, const ToolDiscovery& discovery,
                 EventLibrary& library, BackgroundTasks& background, MainQueue& mainQueue,
                 DownloadTiming timing = {}, Downloader downloader = {});
    ~DownloadRuns() override;

    int activeDownloadRuns() const { return m_activeDownloadRuns; }
    const RunLog& runLog() const { return m_log; }
    ProgressCrawls& crawls() { return m_crawls; }
    RowStages& stages() { return m_stages; }

    /// Slots in which nothing is downloaded.
    qsizetype freeSlots() const;

    /// Downloads those of these rows that are startable, in the queue's order.
    void startDownloadRun(const QList<QUuid>& itemIDs, const RunTarget& target);

    /// Stops those of these rows that are being downloaded or wait for that: they are ready again,
    /// and what was there of them is gone on with when they are started again.
    void stop(const QSet<QUuid>& itemIDs);

    void clearRunLog() { m_log.clear(); }

    /// Any thread; the text arrives in the log when the main thread gets to it.
    void appendRunLog(const QString& text);

    /// Of what was read before a run: it stands in the log now, and in that of the next run.
    void appendNote(const QString& text);

Q_SIGNALS:
    void summaryChanged(const QString& text);
    void activeDownloadRunsChanged();
    void slotFreed();
    void runLogCleared();
    void runLogAppended(const QString& text);

private:
    QString oldToolNotice() const;
    QList<DownloadItem> eligibleRows(const QList<QUuid>& itemIDs) const;
    bool createEventFolder(const RunTarget& target);
    void addRun(const RunPlan& plan, const QList<DownloadItem>& rows, qsizetype slotCount);
    void freeSong(const QString& song);
    void startRows();
    void lookAgain();
    void finishRun(const DownloadRun* run);
    void setActiveDownloadRuns(int count);

    QueueStore& m_queue;
    ShellRunner& m_shell;
    BackgroundTasks& m_background;
    MainQueue& m_mainQueue;
    const DownloadTiming m_timing;
    const Downloader m_downloader;
    RunLog m_log;
    QStringList m_notes;  ///< for the next run's log
    ProgressCrawls m_crawls;
    RowStages m_stages;
    SongFinisher m_finisher;
    DownloadParts m_parts;
    QSet<QString> m_runningSongs;
    QTimer m_lookAgain;
    std::vector<std::unique_ptr<DownloadRun>> m_runs;
    int m_activeDownloadRuns = 0;
};

}  // namespace reelcrate
