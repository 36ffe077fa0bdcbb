#include "base/main_queue.h"

#include "base/background_tasks.h"
#include "support/machine.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace reelcrate {
namespace {

using namespace std::chrono_literals;

TEST(MainQueue, RunsBlocksOnItsThreadInTheOrderPosted) {
    MainQueue queue;
    BackgroundTasks background;
    std::vector<int> order;
    constexpr int blocks = 1000;
    background.run([&](const std::stop_token&) {
        for (int i = 0; i < blocks; ++i) {
            queue.post([&order, i, main = QThread::currentThread()] {
                EXPECT_NE(QThread::currentThread(), main);
                order.push_back(i);
            });
        }
    });
    ASSERT_TRUE(waitUntil([&] { return order.size() == blocks; }));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(MainQueue, ABlockMayPostAndCloseDropsWhatWaits) {
    MainQueue queue;
    bool second = false;
    queue.post([&] { queue.post([&] { second = true; }); });
    ASSERT_TRUE(waitUntil([&] { return second; }));

    bool late = false;
    queue.post([&] { late = true; });
    queue.close();
    queue.post([&] { late = true; });
    QCoreApplication::processEvents();
    EXPECT_FALSE(late);
}

TEST(MainQueue, AFloodLeavesOtherEventsTheirTurn) {
    MainQueue queue;
    int run = 0;
    constexpr int blocks = 200;
    for (int i = 0; i < blocks; ++i) {
        queue.post([&] {
            QThread::msleep(1);
            ++run;
        });
    }
    int runBefore = 0;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [&] { runBefore = run; });
    timer.start(1);
    ASSERT_TRUE(waitUntil([&] { return run == blocks; }));
    EXPECT_GT(runBefore, 0);
    EXPECT_LT(runBefore, blocks);
}

TEST(BackgroundTasks, AStopEndsPausesAndStartsNothingNew) {
    BackgroundTasks background;
    std::atomic<int> ended = 0;
    for (int i = 0; i < 3; ++i) {
        background.run([&](const std::stop_token& stop) {
            if (!pauseFor(stop, 1h))
                ++ended;
        });
    }
    background.requestStop();
    background.run([&](const std::stop_token&) { ended = 100; });
    background.join();
    EXPECT_EQ(ended, 3);
}

}  // namespace
}  // namespace reelcrate
