#include "download/download_run.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "download/row_stages.h"
#include "download/run_log.h"
#include "library/song_key.h"

#include <memory>
#include <utility>

namespace reelcrate {

namespace {

QStringList songsOf(const QList<DownloadItem>& rows) {
    QStringList songs;
    songs.reserve(rows.size());
    for (const DownloadItem& row : rows)
        songs.append(songKey(row.url, row.playlistItem));
    return songs;
}

}  // namespace

QString noun(DownloadMode mode, bool singular) {
    const QString one = byMode(mode, QStringLiteral("song"), QStringLiteral("video"));
    return singular ? one : one + u's';
}

DownloadRun::DownloadRun(DownloadParts parts, RunPlan plan, QList<DownloadItem> rows,
                         qsizetype slotCount, QSet<QString>& runningSongs,
                         BackgroundTasks& background)
    : m_parts(parts),
      m_plan(std::move(plan)),
      m_rows(std::move(rows)),
      m_songs(songsOf(m_rows)),
      m_slotCount(slotCount),
      m_runningSongs(runningSongs),
      m_background(background),
      m_order(m_songs) {
    m_sites.reserve(m_rows.size());
    for (const DownloadItem& row : m_rows)
        m_sites.append(siteOf(row));
}

void DownloadRun::start() {
    QList<qsizetype> first;
    while (const auto position = takeNextRow())
        first.append(*position);
    markRows(first);
    for (const qsizetype position : first)
        startRow(position);
}

void DownloadRun::startRows(qsizetype freeSlots) {
    for (; freeSlots > 0; --freeSlots) {
        const auto position = takeNextRow();
        if (!position)
            return;
        startRow(*position);
    }
}

/// The row that may start now, with a slot and its song taken for it.
std::optional<qsizetype> DownloadRun::takeNextRow() {
    if (m_running == m_slotCount)
        return std::nullopt;
    const auto position = m_order.takeNext(m_runningSongs);
    if (position) {
        ++m_running;
        m_started.insert(*position);
        m_runningSongs.insert(m_songs.at(*position));
    }
    return position;
}

void DownloadRun::markRows(const QList<qsizetype>& first) const {
    for (qsizetype position = 0; position < m_rows.size(); ++position) {
        const QUuid& id = m_rows.at(position).id;
        if (first.contains(position))
            m_parts.stages.prepare(id, m_plan.target.mode);
        else
            m_parts.stages.waitForSlot(id);
    }
}

void DownloadRun::startRow(qsizetype position) {
    const DownloadItem& row = m_rows.at(position);
    // At once, so that the rows that are shown as running are always those that take up a slot.
    m_parts.stages.prepareAgain(row.id, m_plan.target.mode);
    auto download = std::make_shared<RowDownload>(m_parts, m_plan, row, position);
    m_downloads.insert(position, download);
    m_background.run([this, position, download](const std::stop_token& programEnds) {
        const RowDownload::End end = download->run(programEnds);
        if (!programEnds.stop_requested())
            m_parts.mainQueue.post([this, position, end] { leaveRow(position, end); });
    });
}

void DownloadRun::leaveRow(qsizetype position, RowDownload::End end) {
    const std::shared_ptr<RowDownload> download = m_downloads.take(position);
    if (m_stopped.contains(position))
        leaveStoppedRow(position, *download);
    else if (end == RowDownload::End::elsewhere)
        putBackRow(position);
    else
        countRow(position, download->cause());
}

/// Its child has ended, and its song may be downloaded again.
void DownloadRun::leaveStoppedRow(qsizetype position, const RowDownload& download) {
    if (const auto& saved = download.saved()) {  // the stop came too late
        m_stopped.remove(position);
        ++m_ended;
        m_parts.stages.completeUnlessTaken(m_rows.at(position).id, saved->path, saved->detail);
    }
    Q_EMIT rowEnded(m_songs.at(position));
    if (isDone())
        Q_EMIT finished();
}

bool DownloadRun::isUnderWay(qsizetype position) const {
    if (m_stopped.contains(position) || m_givenBack.contains(position))
        return false;
    return !m_started.contains(position) || m_downloads.contains(position);
}

/// How many rows are under way.
qsizetype DownloadRun::leftCount() const {
    return m_rows.size() - m_ended - m_givenBack.size() - m_stopped.size();
}

void DownloadRun::stop(const QSet<QUuid>& itemIDs) {
    bool anyIsStopped = false;
    for (qsizetype position = 0; position < m_rows.size(); ++position) {
        if (!itemIDs.contains(m_rows.at(position).id) || !isUnderWay(position))
            continue;
        stopRow(position);
        anyIsStopped = true;
    }
    if (anyIsStopped && isDone())
        Q_EMIT finished();
}

void DownloadRun::stopRow(qsizetype position) {
    m_stopped.insert(position);
    if (const auto download = m_downloads.value(position)) {
        download->stop();
        --m_running;
        m_parts.log.append(download->number() + QStringLiteral(" Stopped."));
    } else {
        m_order.drop(position);
    }
    m_parts.stages.giveBack(m_rows.at(position).id);
}

void DownloadRun::countRow(qsizetype position, std::optional<FailureCause> cause) {
    ++m_ended;
    --m_running;
    logAge(cause);
    m_limits.rowEnded(m_sites.at(position), cause);
    heedLimit(m_sites.at(position));
    Q_EMIT summaryChanged(leftCount() == 0 ? QStringLiteral("Finalizing downloads") : summary());
    Q_EMIT rowEnded(m_songs.at(position));
    if (isDone())
        Q_EMIT finished();
}

void DownloadRun::logAge(std::optional<FailureCause> cause) {
    if (!cause || m_ageIsLogged || m_plan.oldToolNotice.isEmpty())
        return;
    m_ageIsLogged = true;
    m_parts.log.append(m_plan.oldToolNotice);
}

/// The rows of a site that asks to wait, as far as they have not begun, go back.
void DownloadRun::heedLimit(const QString& site) {
    if (!m_limits.asksToWait(site))
        return;
    for (qsizetype position = 0; position < m_rows.size(); ++position) {
        if (m_sites.at(position) != site || m_started.contains(position) || !isUnderWay(position))
            continue;
        m_givenBack.insert(position);
        m_order.drop(position);
        m_parts.stages.giveBack(m_rows.at(position).id);
    }
    if (m_sitesToWaitFor.contains(site))
        return;
    m_sitesToWaitFor.append(site);
    m_parts.log.append(lastWord());
}

QString DownloadRun::summary() const {
    const QString text = QStringLiteral("Finished %1 of %2; downloading up to %3 %4 at once")
                             .arg(m_ended)
                             .arg(m_rows.size() - m_stopped.size())
                             .arg(m_slotCount)
                             .arg(noun(m_plan.target.mode, false));
    return m_sitesToWaitFor.isEmpty() ? text : text + QStringLiteral("; ") + lastWord();
}

QString DownloadRun::lastWord() const {
    if (m_sitesToWaitFor.isEmpty())
        return {};
    const QString sites = m_sitesToWaitFor.join(QStringLiteral(" and "));
    const QString text =
        sites + (m_sitesToWaitFor.size() == 1 ? QStringLiteral(" asks") : QStringLiteral(" ask")) +
        QStringLiteral(" to wait: try again in an hour");
    const qsizetype left = m_givenBack.size();
    return left == 0 ? text
                     : text + QStringLiteral(" (%1 %2 not started)")
                                  .arg(left)
                                  .arg(noun(m_plan.target.mode, left == 1));
}

void DownloadRun::putBackRow(qsizetype position) {
    --m_running;
    m_started.remove(position);
    m_parts.stages.waitForSlot(m_rows.at(position).id);
    m_order.putBack(position);
    heedLimit(m_sites.at(position));
    Q_EMIT rowPutBack(m_songs.at(position));
    if (isDone())
        Q_EMIT finished();
}

}  // namespace reelcrate
