#include "download/start_order.h"

#include "support/printers.h"

#include <QList>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reelcrate {
namespace {

using testing::ElementsAre;

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString c = QStringLiteral("c");

/// Takes all that may start now; their songs run from then on.
QList<qsizetype> takeAll(StartOrder& order, const QStringList& songs, QSet<QString>& running) {
    QList<qsizetype> taken;
    while (const auto position = order.takeNext(running)) {
        running.insert(songs.at(*position));
        taken.append(*position);
    }
    return taken;
}

TEST(StartOrder, HoldsASongThatRunsAndLetsOthersPass) {
    const QStringList songs{a, a, b, a, b, c};
    StartOrder order(songs);
    QSet<QString> running;
    EXPECT_THAT(takeAll(order, songs, running), ElementsAre(0, 2, 5));
    for (const QString& song : {b, a}) {
        running.remove(song);
        order.songFreed(song);
    }
    EXPECT_THAT(takeAll(order, songs, running), ElementsAre(1, 4));
    running.remove(a);
    order.songFreed(a);
    order.songFreed(c);
    EXPECT_THAT(takeAll(order, songs, running), ElementsAre(3));
    running.clear();
    order.songFreed(a);
    EXPECT_EQ(order.takeNext(running), std::nullopt);
}

TEST(StartOrder, ARowGoesOnWaitingWhenAnotherRunIsQuicker) {
    const QStringList songs{a, b, a};
    StartOrder order(songs);
    QSet<QString> running{a};
    EXPECT_THAT(takeAll(order, songs, running), ElementsAre(1));
    order.songFreed(a);  // and taken again at once
    EXPECT_EQ(order.takeNext(running), std::nullopt);
    running.remove(a);
    order.songFreed(a);
    EXPECT_EQ(order.takeNext(running), 0);
}

TEST(StartOrder, ARowThatIsDroppedLetsThoseBehindItTakeItsTurn) {
    const QStringList songs{a, a, a, a, b, c};
    StartOrder order(songs);
    QSet<QString> running{c};
    EXPECT_EQ(order.takeNext(running), 0);
    running.insert(a);
    order.drop(4);  // not looked at yet
    EXPECT_EQ(order.takeNext(running), std::nullopt);
    order.drop(1);  // held
    running.remove(a);
    order.songFreed(a);
    order.drop(2);  // freed
    EXPECT_THAT(takeAll(order, songs, running), ElementsAre(3));
    running.remove(c);
    order.songFreed(c);
    EXPECT_EQ(order.takeNext(running), 5);
    order.putBack(5);
    order.drop(5);
    order.releasePutBack();
    EXPECT_EQ(order.takeNext(running), std::nullopt);
}

TEST(StartOrder, ARowThatWasPutBackWaitsUntilItIsReleased) {
    const QStringList songs{a, b, a, c};
    StartOrder order(songs);
    QSet<QString> running;
    EXPECT_EQ(order.takeNext(running), 0);
    order.putBack(0);  // another program is at it
    EXPECT_THAT(takeAll(order, songs, running), ElementsAre(1, 2, 3));
    order.releasePutBack();
    EXPECT_EQ(order.takeNext(running), std::nullopt) << "its song runs";
    running.remove(a);
    order.songFreed(a);
    EXPECT_EQ(order.takeNext(running), 0);
    order.releasePutBack();
    EXPECT_EQ(order.takeNext({}), std::nullopt);
}

}  // namespace
}  // namespace reelcrate
