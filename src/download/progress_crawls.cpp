#include "download/progress_crawls.h"

#include "queue/queue_store.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace reelcrate {

namespace {

constexpr double tickSeconds = 0.16;
constexpr double shortestIntervalSeconds = 0.05;
constexpr double highestTarget = 0.995;

int tickCount(double duration) {
    const double ticks = duration / tickSeconds;
    return ticks < 2 ? 1
                     : static_cast<int>(std::min<double>(ticks, std::numeric_limits<int>::max()));
}

/// A crawl may end inside its own timer's tick, which must not delete the timer under its feet.
void stopAndDeleteLater(QTimer* timer) {
    timer->stop();
    timer->deleteLater();
}

}  // namespace

ProgressCrawls::ProgressCrawls(QueueStore& queue) : m_queue(queue) {}

void ProgressCrawls::crawlQueueProgress(const QUuid& itemID, double target, double duration) {
    Crawl crawl;
    crawl.remainingTicks = tickCount(duration);
    crawl.target = std::clamp(target, 0.0, highestTarget);
    crawl.timer = std::shared_ptr<QTimer>(new QTimer, stopAndDeleteLater);
    const std::chrono::duration<double> interval(
        std::max(duration / crawl.remainingTicks, shortestIntervalSeconds));
    crawl.timer->setTimerType(Qt::PreciseTimer);
    crawl.timer->setInterval(std::chrono::round<std::chrono::milliseconds>(interval));
    connect(crawl.timer.get(), &QTimer::timeout, this, [this, itemID] { tick(itemID); });
    crawl.timer->start();
    m_crawls.insert(itemID, crawl);
}

void ProgressCrawls::cancel(const QUuid& itemID) {
    m_crawls.remove(itemID);
}

QHash<QUuid, QUuid> ProgressCrawls::progressCrawlTokens() const {
    QHash<QUuid, QUuid> tokens;
    for (auto crawl = m_crawls.cbegin(); crawl != m_crawls.cend(); ++crawl)
        tokens.insert(crawl.key(), crawl->token);
    return tokens;
}

void ProgressCrawls::tick(const QUuid& itemID) {
    Crawl& crawl = m_crawls[itemID];
    const int remaining = crawl.remainingTicks--;
    if (remaining <= 1)
        crawl.timer->stop();

    const DownloadItem* row = m_queue.find(itemID);
    if (row == nullptr || row->status != QueueStatus::running || row->progress >= crawl.target)
        return;
    // The last tick stores the target itself: reaching it must not hang on rounding.
    const double part = (crawl.target - row->progress) / remaining;
    const double progress =
        remaining <= 1 ? crawl.target : std::min(crawl.target, row->progress + part);
    if (progress >= crawl.target)
        m_crawls.remove(itemID);
    m_queue.update(itemID, [progress](DownloadItem& changed) { changed.progress = progress; });
}

}  // namespace reelcrate
