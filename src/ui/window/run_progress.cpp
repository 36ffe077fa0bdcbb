#include "ui/window/run_progress.h"

#include "app/controller.h"

#include <algorithm>
#include <utility>

namespace reelcrate {

namespace {

double shareOf(const DownloadItem& row) {
    switch (row.status) {
        case QueueStatus::running:
            return std::clamp(row.progress, 0.0, 1.0);
        case QueueStatus::complete:
        case QueueStatus::failed:
            return 1;
        case QueueStatus::waiting:
        case QueueStatus::queued:
            break;
    }
    return 0;
}

}  // namespace

RunProgress::RunProgress(Controller& controller, QObject* parent)
    : QObject(parent), m_controller(controller) {
    connect(&controller.queue(), &QueueStore::rowChanged, this, &RunProgress::followRow);
    connect(&controller, &Controller::activeDownloadRunsChanged, this, &RunProgress::followRuns);
}

std::optional<double> RunProgress::fraction() const {
    if (m_shares.isEmpty())
        return std::nullopt;
    return m_furthest;
}

void RunProgress::followRow(qsizetype index, QueueStore::Fields fields) {
    if (!(fields & (QueueStore::Status | QueueStore::Progress)))
        return;
    const DownloadItem& row = m_controller.queue().rows().at(index);
    const auto known = m_shares.find(row.id);
    if (known == m_shares.end() && !isUnderWay(row))
        return;
    if (row.status == QueueStatus::waiting) {  // the run has given it back
        m_sum -= m_shares.take(row.id);
        m_furthest = m_shares.isEmpty() ? 0 : m_furthest;
        Q_EMIT changed();
        return;
    }
    const double share = shareOf(row);
    m_sum += share - (known == m_shares.end() ? 0 : *known);
    m_shares.insert(row.id, share);
    m_furthest = std::max(m_furthest, m_sum / static_cast<double>(m_shares.size()));
    Q_EMIT changed();
}

void RunProgress::followRuns() {
    if (m_controller.runs().activeDownloadRuns() > 0 || m_shares.isEmpty())
        return;
    int complete = 0;
    int needAttention = 0;
    const auto shares = std::exchange(m_shares, {});
    for (auto share = shares.keyBegin(); share != shares.keyEnd(); ++share) {
        const DownloadItem* row = m_controller.queue().find(*share);
        complete += row && row->status == QueueStatus::complete ? 1 : 0;
        needAttention += row && row->status == QueueStatus::failed ? 1 : 0;
    }
    m_sum = 0;
    m_furthest = 0;
    Q_EMIT changed();
    Q_EMIT finished(complete, needAttention);
}

}  // namespace reelcrate
