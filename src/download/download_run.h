#pragma once

#include "download/row_download.h"

#include <QList>
#include <QObject>
#include <QString>

/// One run: starts its rows strictly in order, a next one whenever one has ended, and counts.
/// Main thread; each row's download is a background task.
namespace reelcrate {

class BackgroundTasks;

/// The singular or plural noun of what a mode downloads.
QString noun(DownloadMode mode, bool singular);

class DownloadRun : public QObject {
    Q_OBJECT

public:
    DownloadRun(DownloadParts parts, RunPlan plan, QList<DownloadItem> rows, qsizetype slotCount,
                BackgroundTasks& background);

    DownloadMode mode() const { return m_plan.mode; }

    /// Starts as many rows as the run has slots.
    void start();

Q_SIGNALS:
    void summaryChanged(const QString& text);
    /// The last row has ended.
    void finished();

private:
    void startNextRow();
    void rowEnded();

    const DownloadParts m_parts;
    const RunPlan m_plan;
    const QList<DownloadItem> m_rows;
    const qsizetype m_slotCount;
    BackgroundTasks& m_background;
    qsizetype m_started = 0;
    qsizetype m_ended = 0;
};

}  // namespace reelcrate
