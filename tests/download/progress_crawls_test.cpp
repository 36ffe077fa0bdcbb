#include "download/progress_crawls.h"

#include "queue/queue_store.h"
#include "support/machine.h"
#include "support/rows.h"

#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace reelcrate {
namespace {

class ProgressCrawlsTest : public testing::Test {
protected:
    ProgressCrawlsTest() {
        DownloadItem row = makeRow(SourceType::link, QStringLiteral("Song"));
        row.status = QueueStatus::running;
        row.progress = 0.1;
        store.append({row});
        id = row.id;
        QObject::connect(&store, &QueueStore::rowChanged,
                         [this](qsizetype index, QueueStore::Fields fields) {
                             if (fields & QueueStore::Progress)
                                 shown.push_back(store.rows().at(index).progress);
                         });
    }

    void set(const QueueStore::Change& change) { store.update(id, change); }
    bool isLive() const { return crawls.progressCrawlTokens().contains(id); }
    bool waitForEnd() {
        return waitUntil([this] { return !isLive(); });
    }

    QueueStore store;
    ProgressCrawls crawls{store};
    QUuid id;
    std::vector<double> shown;
};

TEST_F(ProgressCrawlsTest, GoesInEqualStepsToItsTarget) {
    crawls.crawlQueueProgress(id, 0.5, 0.65);  // four ticks
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(shown, testing::Pointwise(testing::DoubleNear(1e-9), {0.2, 0.3, 0.4, 0.5}));
    EXPECT_EQ(shown.back(), 0.5);
}

TEST_F(ProgressCrawlsTest, AShortOneJumpsAndNoneGoesToTheEnd) {
    crawls.crawlQueueProgress(id, 1.0, 0.31);
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(shown, testing::ElementsAre(0.995));
}

TEST_F(ProgressCrawlsTest, NeverLowersAndAdaptsToRealProgress) {
    crawls.crawlQueueProgress(id, -1, 0.01);
    crawls.crawlQueueProgress(id, 0.5, 0.49);  // three ticks
    ASSERT_TRUE(waitUntil([this] { return !shown.empty(); }));
    set([](DownloadItem& row) { row.progress = 0.45; });
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(std::is_sorted(shown.begin(), shown.end()));
    EXPECT_EQ(shown.back(), 0.5);
}

TEST_F(ProgressCrawlsTest, ANewerOneSilencesTheOlder) {
    crawls.crawlQueueProgress(id, 0.9, 0.33);
    crawls.crawlQueueProgress(id, 0.3, 0.2);
    ASSERT_TRUE(waitForEnd());
    crawls.crawlQueueProgress(id, 0.2, 0.1);                   // below where the bar is
    crawls.crawlQueueProgress(QUuid::createUuid(), 0.9, 0.1);  // of a row that is not there
    QTest::qWait(500);                                         // in which nothing may happen
    EXPECT_THAT(shown, testing::ElementsAre(0.3));
}

TEST_F(ProgressCrawlsTest, LeavesARowAloneThatHasEnded) {
    crawls.crawlQueueProgress(id, 0.9, 0.33);
    set([](DownloadItem& row) { row.status = QueueStatus::complete; });
    QTest::qWait(500);  // in which nothing may happen
    EXPECT_TRUE(shown.empty());
    crawls.cancel(id);
    EXPECT_FALSE(isLive());
}

}  // namespace
}  // namespace reelcrate
