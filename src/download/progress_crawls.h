#pragma once

#include <QHash>
#include <QObject>
#include <QTimer>
#include <QUuid>

#include <memory>

/// Moves the bars of running rows smoothly towards a stage's target while the tool reports no
/// percentage. A crawl only ever raises a row's progress; a newer crawl of the same row, or
/// `cancel`, silences it. Main thread.
namespace reelcrate {

class QueueStore;

class ProgressCrawls : public QObject {
    Q_OBJECT

public:
    explicit ProgressCrawls(QueueStore& queue);

    /// Crawls to `target`, a fraction that is limited to 0 to 0.995, over `duration` seconds.
    void crawlQueueProgress(const QUuid& itemID, double target, double duration);

    void cancel(const QUuid& itemID);

    /// Per row the token of the crawl that may animate it.
    QHash<QUuid, QUuid> progressCrawlTokens() const;

private:
    struct Crawl {
        QUuid token = QUuid::createUuid();
        double target = 0;
        int remainingTicks = 1;
        std::shared_ptr<QTimer> timer;
    };

    void tick(const QUuid& itemID);

    QueueStore& m_queue;
    QHash<QUuid, Crawl> m_crawls;
};

}  // namespace reelcrate
