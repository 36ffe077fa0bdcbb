#include "download/start_order.h"

#include "support/printers.h"

#include <QList>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reelcrate {
namespace {

using testing::ElementsAre;

const QString a = QStringLiteral("http://site/a");
const QString b = QStringLiteral("http://site/b");
const QString c = QStringLiteral("http://site/c");

/// Takes all that may start now; their links run from then on.
QList<qsizetype> takeAll(StartOrder& order, const QStringList& links, QSet<QString>& running) {
    QList<qsizetype> taken;
    while (const auto position = order.takeNext(running)) {
        running.insert(links.at(*position));
        taken.append(*position);
    }
    return taken;
}

TEST(StartOrder, HoldsALinkThatRunsAndLetsOthersPass) {
    const QStringList links{a, a, b, a, b, c};
    StartOrder order(links);
    QSet<QString> running;
    EXPECT_THAT(takeAll(order, links, running), ElementsAre(0, 2, 5));
    for (const QString& link : {b, a}) {
        running.remove(link);
        order.linkFreed(link);
    }
    EXPECT_THAT(takeAll(order, links, running), ElementsAre(1, 4));
    running.remove(a);
    order.linkFreed(a);
    order.linkFreed(c);
    EXPECT_THAT(takeAll(order, links, running), ElementsAre(3));
    running.clear();
    order.linkFreed(a);
    EXPECT_EQ(order.takeNext(running), std::nullopt);
}

TEST(StartOrder, ARowGoesOnWaitingWhenAnotherRunIsQuicker) {
    const QStringList links{a, b};
    StartOrder order(links);
    QSet<QString> running{a};
    EXPECT_THAT(takeAll(order, links, running), ElementsAre(1));
    order.linkFreed(a);  // and taken again at once
    EXPECT_EQ(order.takeNext(running), std::nullopt);
    running.remove(a);
    order.linkFreed(a);
    EXPECT_EQ(order.takeNext(running), 0);
}

}  // namespace
}  // namespace reelcrate
