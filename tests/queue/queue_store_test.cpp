#include "queue/queue_store.h"

#include "queue/link_intake.h"
#include "support/printers.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <random>

namespace reelcrate {
namespace {

QList<DownloadItem> rows(const QStringList& urls) {
    QList<DownloadItem> rows;
    for (const QString& url : urls) {
        DownloadItem row;
        row.url = url;
        rows.append(row);
    }
    return rows;
}

/// What the store keeps beside its rows, against a walk over them.
void expectConsistent(const QueueStore& store) {
    qsizetype running = 0;
    for (qsizetype index = 0; index < store.size(); ++index) {
        const DownloadItem& row = store.rows().at(index);
        EXPECT_EQ(store.indexOf(row.id), index);
        EXPECT_EQ(*store.find(row.id), row);
        running += row.status == QueueStatus::running ? 1 : 0;
        const auto same = std::count_if(store.rows().begin(), store.rows().end(),
                                        [&](const DownloadItem& r) { return r.url == row.url; });
        EXPECT_EQ(store.countWithUrl(row.url), same);
        const auto read =
            std::count_if(store.rows().begin(), store.rows().end(), [&](const DownloadItem& r) {
                return r.url == row.url && r.reading == LinkReading::song;
            });
        EXPECT_EQ(store.countOfSong(row.url, 0), read);
    }
    EXPECT_EQ(store.countWithStatus(QueueStatus::running), running);
}

TEST(QueueStore, KeepsItsIndexesThroughAnyChanges) {
    std::mt19937 random(7);
    const auto below = [&](qsizetype limit) {
        return std::uniform_int_distribution<qsizetype>(0, limit - 1)(random);
    };
    QueueStore store;
    for (int step = 0; step < 400; ++step) {
        const QStringList urls(below(4) + 1, QStringLiteral("http://x/%1").arg(below(5)));
        const qsizetype index = store.size() == 0 ? 0 : below(store.size());
        if (store.size() == 0 || below(3) == 0)
            store.append(rows(urls));
        else if (below(3) == 0)
            store.replace(index, rows(urls));
        else if (below(3) == 0)
            store.remove({store.rows().at(index).id, store.rows().first().id, QUuid::createUuid()});
        else
            store.update(store.rows().at(index).id, [&](DownloadItem& row) {
                row.status = static_cast<QueueStatus>(below(5));
                row.url = urls.first();
            });
        store.update(store.rows().first().id, [&](DownloadItem& row) {
            row.reading = below(2) == 0 ? LinkReading::song : LinkReading::open;
        });
    }
    expectConsistent(store);
}

TEST(QueueStore, SaysPreciselyWhatChanged) {
    QueueStore store;
    store.append(rows({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    const QUuid second = store.rows().at(1).id;
    QList<std::pair<qsizetype, QueueStore::Fields>> changes;
    QObject::connect(&store, &QueueStore::rowChanged,
                     [&](qsizetype index, QueueStore::Fields fields) {
                         changes.append({index, fields});
                     });
    QSignalSpy replaced(&store, &QueueStore::rowReplaced);
    QSignalSpy removed(&store, &QueueStore::rowsRemoved);

    store.update(second, [](DownloadItem& row) {
        row.progress = 0.5;
        row.detail = QStringLiteral("Ready");  // as it was
    });
    store.update(second, [](DownloadItem& row) { row.progress = 0.5; });
    EXPECT_FALSE(store.update(QUuid::createUuid(), [](DownloadItem&) { FAIL(); }));
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes.first().first, 1);
    EXPECT_EQ(changes.first().second, QueueStore::Fields(QueueStore::Progress));

    store.update(second, [](DownloadItem& row) {
        row.status = QueueStatus::failed;
        row.cause = FailureCause::siteLimit;
        row.note = QStringLiteral("of a song that is complete");
    });
    EXPECT_EQ(store.find(second)->note, QString());
    store.update(second, [](DownloadItem& row) { row.status = QueueStatus::queued; });
    EXPECT_FALSE(store.find(second)->cause);
    EXPECT_EQ(changes.last().second, QueueStore::Status | QueueStore::Cause);
    changes.clear();

    store.replace(1, rows({QStringLiteral("x"), QStringLiteral("y")}));
    ASSERT_EQ(replaced.size(), 1);
    EXPECT_EQ(store.rows().at(2).url, QStringLiteral("y"));
    EXPECT_EQ(store.find(second), nullptr);

    store.remove({store.rows().at(0).id, store.rows().at(3).id});
    ASSERT_EQ(removed.size(), 1);
    EXPECT_EQ(removed.first().first().value<QList<qsizetype>>(), (QList<qsizetype>{0, 3}));
    store.remove({QUuid::createUuid()});
    EXPECT_EQ(removed.size(), 1);
    expectConsistent(store);
}

TEST(LinkIntake, OnlyRowsOfTheQueueMakeALinkKnown) {
    QueueStore store;
    const QString song = QStringLiteral("http://site/song");
    const QString album = QStringLiteral("https://open.spotify.com/album/1");
    const QList<DownloadItem> first = newRowsForLinks({song, song, album}, store);
    ASSERT_EQ(first.size(), 3);
    EXPECT_EQ(first.at(0).detail, QStringLiteral("Loading info..."));
    EXPECT_TRUE(first.at(0).title.isEmpty());
    EXPECT_EQ(first.at(2).detail, QStringLiteral("Reading playlist songs..."));
    EXPECT_EQ(first.at(2).title, QStringLiteral("Reading playlist..."));
    EXPECT_TRUE(first.at(2).isResolvingInfo);

    store.append(first);
    EXPECT_EQ(newRowsForLinks({song, song.toUpper()}, store).size(), 1);
}

}  // namespace
}  // namespace reelcrate
