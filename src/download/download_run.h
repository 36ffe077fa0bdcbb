#pragma once

#include "download/row_download.h"
#include "download/site_limits.h"
#include "download/start_order.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUuid>

#include <memory>
#include <optional>

/// One run: starts its rows in order, a next one whenever one has ended, and counts. A row whose
/// song is being downloaded, by whatever run or program, is held until that has ended. Main thread;
/// each row's download is a background task. Rows of a site that asks to wait are not started any
/// more: they go back to where they were, and so do rows that are stopped. The slot of a download
/// that is stopped is free at once, its song only when its child has ended.
namespace reelcrate {

class BackgroundTasks;

/// The singular or plural noun of what a mode downloads.
QString noun(DownloadMode mode, bool singular);

class DownloadRun : public QObject {
    Q_OBJECT

public:
    /// `runningSongs`, the keys of the songs that are being downloaded, is shared by all runs.
    DownloadRun(DownloadParts parts, RunPlan plan, QList<DownloadItem> rows, qsizetype slotCount,
                QSet<QString>& runningSongs, BackgroundTasks& background);

    DownloadMode mode() const { return m_plan.target.mode; }
    const QString& folder() const { return m_plan.target.folder; }

    /// How many of its rows are being downloaded.
    qsizetype runningCount() const { return m_running; }

    /// Whether all its rows were stopped.
    bool wasStopped() const { return m_stopped.size() == m_rows.size(); }

    /// What the run's end has to tell beside that; empty when there is nothing.
    QString lastWord() const;

    /// Marks all rows, and starts as many as the run has slots.
    void start();

    /// The song is no longer being downloaded.
    void songFreed(const QString& song) { m_order.songFreed(song); }

    /// Rows that wait for another program may start again.
    void releasePutBack() { m_order.releasePutBack(); }

    /// Starts as many of the next rows as the run has slots left, and `freeSlots` at most.
    void startRows(qsizetype freeSlots);

    /// Stops those of its rows that are being downloaded or wait; their slots are free after this.
    void stop(const QSet<QUuid>& itemIDs);

Q_SIGNALS:
    void summaryChanged(const QString& text);
    /// A row of this song has ended and its slot is free.
    void rowEnded(const QString& song);
    /// A row has given back its slot, since another program is at its song.
    void rowPutBack(const QString& song);
    /// The last row has ended.
    void finished();

private:
    std::optional<qsizetype> takeNextRow();
    void markRows(const QList<qsizetype>& first) const;
    void startRow(qsizetype position);
    void stopRow(qsizetype position);
    void leaveRow(qsizetype position, RowDownload::End end);
    void leaveStoppedRow(qsizetype position, const RowDownload& download);
    void countRow(qsizetype position, std::optional<FailureCause> cause);
    void logAge(std::optional<FailureCause> cause);
    void heedLimit(const QString& site);
    QString summary() const;
    void putBackRow(qsizetype position);
    bool isUnderWay(qsizetype position) const;
    qsizetype leftCount() const;
    /// Also with every download that was stopped.
    bool isDone() const { return leftCount() == 0 && m_downloads.isEmpty(); }

    const DownloadParts m_parts;
    const RunPlan m_plan;
    const QList<DownloadItem> m_rows;
    const QStringList m_songs;  ///< the rows' keys
    QStringList m_sites;        ///< what the rows ask
    const qsizetype m_slotCount;
    QSet<QString>& m_runningSongs;
    BackgroundTasks& m_background;
    StartOrder m_order;
    qsizetype m_running = 0;
    qsizetype m_ended = 0;
    SiteLimits m_limits;
    QSet<qsizetype> m_started;
    QSet<qsizetype> m_givenBack;
    QSet<qsizetype> m_stopped;
    QHash<qsizetype, std::shared_ptr<RowDownload>> m_downloads;  ///< that have not returned yet
    QStringList m_sitesToWaitFor;
    bool m_ageIsLogged = false;
};

}  // namespace reelcrate
