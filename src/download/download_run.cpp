#include "download/download_run.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"

#include <memory>
#include <utility>

namespace reelcrate {

QString noun(DownloadMode mode, bool singular) {
    const QString one = byMode(mode, QStringLiteral("song"), QStringLiteral("video"));
    return singular ? one : one + u's';
}

DownloadRun::DownloadRun(DownloadParts parts, RunPlan plan, QList<DownloadItem> rows,
                         qsizetype slotCount, BackgroundTasks& background)
    : m_parts(parts),
      m_plan(std::move(plan)),
      m_rows(std::move(rows)),
      m_slotCount(slotCount),
      m_background(background) {}

void DownloadRun::start() {
    while (m_started < m_slotCount)
        startNextRow();
}

void DownloadRun::startNextRow() {
    const qsizetype position = m_started++;
    auto download = std::make_shared<RowDownload>(m_parts, m_plan, m_rows.at(position), position);
    m_background.run([this, download](const std::stop_token& stop) {
        download->run(stop);
        // A stopped download did not end: the program does.
        if (!stop.stop_requested())
            m_parts.mainQueue.post([this] { rowEnded(); });
    });
}

void DownloadRun::rowEnded() {
    ++m_ended;
    if (m_ended == m_rows.size()) {
        Q_EMIT summaryChanged(QStringLiteral("Finalizing downloads"));
        Q_EMIT finished();
        return;
    }
    Q_EMIT summaryChanged(QStringLiteral("Finished %1 of %2; downloading up to %3 %4 at once")
                              .arg(m_ended)
                              .arg(m_rows.size())
                              .arg(m_slotCount)
                              .arg(noun(m_plan.mode, false)));
    if (m_started < m_rows.size())
        startNextRow();
}

}  // namespace reelcrate
