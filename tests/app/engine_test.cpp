// The whole engine behind its controller, on stand-in tools and with short pauses.

#include "app/controller.h"
#include "base/duration_text.h"
#include "download/working_folder.h"
#include "library/song_key.h"
#include "support/machine.h"
#include "support/printers.h"
#include "support/sample.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QStandardPaths>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

namespace reelcrate {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

ControllerSetup quickSetup(const Machine& machine) {
    ControllerSetup setup;
    setup.toolPlaces = machine.places();
    setup.desktopFolder = machine.path(QStringLiteral("Desktop"));
    setup.resolutionTiming = {10ms, 10ms, 1ms};
    setup.downloadTiming = {1ms, 1ms, 1ms, 20ms};
    return setup;
}

class EngineTest : public testing::Test {
protected:
    EngineTest() {
        for (const char* tool : {"yt-dlp", "spotdl"})
            machine.install(QString::fromLatin1(tool));
        machine.linkConverter();
        machine.installSong();
        controller.setEventName(QStringLiteral("Prom"));
        QObject::connect(&controller, &Controller::activeSummaryChanged,
                         [this] { summaries.append(controller.activeSummary()); });
        QObject::connect(&controller.queue(), &QueueStore::rowChanged, [this](qsizetype index) {
            const QString& detail = row(index).detail;
            if (details.isEmpty() || details.last() != detail)
                details.append(detail);
        });
    }

    static QString link(const char* kind, const QString& name) {
        return QStringLiteral("http://site/%1/%2").arg(QString::fromLatin1(kind), name);
    }

    const DownloadItem& row(qsizetype index) const { return controller.queue().rows().at(index); }

    QStringList titles() const {
        QStringList titles;
        for (const DownloadItem& row : controller.queue().rows())
            titles.append(row.title);
        return titles;
    }

    qsizetype countWith(QueueStatus status) const {
        return controller.queue().countWithStatus(status);
    }

    QStringList linksWith(QueueStatus status) const {
        QStringList links;
        for (const DownloadItem& row : controller.queue().rows()) {
            if (row.status == status)
                links.append(row.url);
        }
        return links;
    }

    /// Rows that are ready to download without having been read.
    static void addReadRows(Controller& controller, const QStringList& links) {
        for (const DownloadItem& added : controller.addLinksToQueue(links)) {
            const QString title = added.url.section(u'/', -1).section(u'#', 0, 0);
            controller.resolution().applyResolution(
                {{{added.url, added.source, title, {}, {}}}, {}}, added,
                controller.queue().indexOf(added.id));
        }
    }

    void addReadRows(const QStringList& links) {
        addReadRows(controller, links);
        summaries.clear();
        details.clear();
    }

    void addAndRead(const QString& text) {
        controller.setPastedLinks(text);
        controller.addSongsFromFieldOrClipboard();
        ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    }

    bool isReading() const {
        return std::any_of(controller.queue().rows().begin(), controller.queue().rows().end(),
                           [](const DownloadItem& row) { return row.isResolvingInfo; });
    }

    void downloadAll() {
        controller.startDownloads();
        ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    }

    QString eventFile(const QString& name) const { return controller.eventFolder() + u'/' + name; }

    /// What there is in the event folder.
    QStringList left() const {
        return QDir(controller.eventFolder())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    QStringList allDetails() const {
        QStringList all;
        for (const DownloadItem& row : controller.queue().rows())
            all.append(row.detail);
        return all;
    }

    /// Measures "measure-me" and trims "trim-me" for ever, the first time; "in-measure" and
    /// "in-trim" tell.
    void installHaltingConverter() {
        const QString converter = machine.toolFolder() + QStringLiteral("/ffmpeg");
        ASSERT_TRUE(QFile::remove(converter));
        machine.installScript(
            QStringLiteral("ffmpeg"),
            "#!/bin/bash\nhere=$(dirname \"$0\")\nstep=measure\n"
            "[[ \"$*\" == *.trim-* ]] && step=trim\n"
            "if [[ \"$*\" == */$step-me* ]] && mkdir \"$here/in-$step\" 2> /dev/null\n"
            "then [ $step = measure ] || echo half > \"${!#}\"; sleep 600; fi\n"
            "exec " +
                QFile::encodeName(QStandardPaths::findExecutable(QStringLiteral("ffmpeg"))) +
                " \"$@\"\n");
    }

    Machine machine;
    QStringList summaries;
    QStringList details;
    Controller controller{machine.supervisor, quickSetup(machine)};
};

TEST_F(EngineTest, ReadsALinkAndDownloadsIt) {
    addAndRead(QStringLiteral("Our song: %1).").arg(link("song", QStringLiteral("first"))));
    ASSERT_EQ(controller.queue().size(), 1);
    EXPECT_EQ(row(0).title, QStringLiteral("first"));
    EXPECT_EQ(row(0).duration, QStringLiteral("3:45"));
    EXPECT_EQ(row(0).detail, QStringLiteral("Ready to download"));
    EXPECT_TRUE(controller.pastedLinks().isEmpty());

    details.clear();
    downloadAll();
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_EQ(row(0).detail, QStringLiteral("Saved; trimmed silent start/end"));
    EXPECT_EQ(row(0).outputPath, eventFile(QStringLiteral("first [first].mp3")));
    EXPECT_EQ(row(0).progress, 1.0);
    EXPECT_TRUE(
        waitUntil([this] { return left() == QStringList(QStringLiteral("first [first].mp3")); }));
    EXPECT_LT(QFileInfo(row(0).outputPath).size(),
              QFileInfo(machine.toolFolder() + QStringLiteral("/song.mp3")).size());
    const QStringList stages{QStringLiteral("Preparing Song for Download"),
                             QStringLiteral("Downloading Song"),
                             QStringLiteral("Examining Song to Trim"),
                             QStringLiteral("Trimming Song"),
                             QStringLiteral("Saving MP3"),
                             QStringLiteral("Saved; trimmed silent start/end")};
    EXPECT_EQ(details, stages);
    EXPECT_TRUE(controller.runs().crawls().progressCrawlTokens().isEmpty());
    EXPECT_TRUE(
        controller.runs().runLog().text().startsWith(QStringLiteral("Running 1/1: PATH='~/share/")))
        << controller.runs().runLog().text().toStdString();
    EXPECT_TRUE(
        controller.runs().runLog().text().contains(QStringLiteral("RCR_PROGRESS: 50.0%\n")));
    const QStringList expected{
        QStringLiteral("Reading 1 link"),         QStringLiteral("Added 1 song"),
        QStringLiteral("Preparing event folder"), QStringLiteral("Downloading selected song"),
        QStringLiteral("Finalizing downloads"),   QStringLiteral("Download run finished")};
    EXPECT_EQ(summaries, expected);
}

TEST_F(EngineTest, RunsSixSideBySideInQueueOrder) {
    QStringList links;
    for (int i = 1; i <= 9; ++i)
        links.append(link("hold", QStringLiteral("song%1").arg(i)));
    addReadRows(links);
    controller.tools().checkTools();
    ASSERT_TRUE(waitUntil([this] { return controller.canDownload(); }));
    controller.startDownloads();
    EXPECT_EQ(countWith(QueueStatus::running), 6);
    EXPECT_EQ(countWith(QueueStatus::queued), 3);
    EXPECT_FALSE(controller.canDownload() || controller.canDownloadAll());
    EXPECT_EQ(row(6).detail, QStringLiteral("Waiting for open download slot"));
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("Downloading up to 6 songs at once"));
    controller.startDownloads();
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("Already downloading 6 songs at once"));
    EXPECT_EQ(controller.runs().activeDownloadRuns(), 1);

    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 6; }));
    machine.tell(QStringLiteral("go"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(countWith(QueueStatus::complete), 9);
    const QStringList calls = machine.calls();
    EXPECT_THAT(calls.mid(6), testing::UnorderedElementsAre(QStringLiteral("download song7"),
                                                            QStringLiteral("download song8"),
                                                            QStringLiteral("download song9")));
    EXPECT_TRUE(
        summaries.contains(QStringLiteral("Finished 2 of 9; downloading up to 6 songs at once")));
    EXPECT_EQ(summaries.last(), QStringLiteral("Download run finished"));
}

TEST_F(EngineTest, ASecondRunGetsTheSlotsThatAreLeft) {
    QStringList links;
    for (int i = 1; i <= 8; ++i)
        links.append(link("hold", QStringLiteral("song%1").arg(i)));
    addReadRows(links);
    QList<QUuid> ids;
    for (const DownloadItem& each : controller.queue().rows())
        ids.append(each.id);

    controller.startDownloadRun(ids.first(4));
    controller.setDownloadMode(DownloadMode::video);
    controller.startDownloadRun(ids);  // of these, the four that are not running yet
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("Downloading up to 2 videos at once"));
    EXPECT_EQ(controller.runs().activeDownloadRuns(), 2);
    EXPECT_EQ(countWith(QueueStatus::running), 6);
    EXPECT_EQ(countWith(QueueStatus::queued), 2);
    machine.tell(QStringLiteral("go"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(countWith(QueueStatus::complete), 8);
    EXPECT_EQ(row(7).detail, QStringLiteral("Saved to Prom"));
}

TEST_F(EngineTest, ASongIsDownloadedByOneRowAtATimeAndFoundByTheOthers) {
    QStringList links;
    for (const char* name : {"a", "a#x", "b", "a#y", "c", "d", "e", "f", "g"})
        links.append(link("hold", QString::fromLatin1(name)));
    addReadRows(links);
    bool isTwice = false;
    QObject::connect(&controller.queue(), &QueueStore::rowChanged, [&] {
        QStringList running = linksWith(QueueStatus::running);
        isTwice = isTwice || running.removeDuplicates() > 0;
    });
    controller.startDownloads();
    const QString a = links.first();
    EXPECT_EQ(linksWith(QueueStatus::running),
              QStringList({a}) + links.mid(2, 1) + links.mid(4, 4));
    EXPECT_EQ(linksWith(QueueStatus::queued),
              QStringList({links.at(1), links.at(3), links.last()}));
    EXPECT_EQ(row(1).detail, QStringLiteral("Waiting for open download slot"));
    machine.tell(QStringLiteral("go"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(countWith(QueueStatus::complete), 9);
    EXPECT_FALSE(isTwice);
    EXPECT_EQ(machine.calls().count(QStringLiteral("download a")), 1);
    EXPECT_EQ(row(1).detail, QStringLiteral("Already Downloaded"));
    EXPECT_EQ(row(1).outputPath, row(0).outputPath);
    EXPECT_EQ(row(3).outputPath, row(0).outputPath);
}

TEST_F(EngineTest, RunsHoldEachOthersLinksAndShareTheSlots) {
    QStringList links;
    for (const char* name :
         {"1", "2", "3", "4", "p", "q", "s", "t", "p#2", "q#2", "5", "6", "7", "8"})
        links.append(link("gate", QString::fromLatin1(name)));
    addReadRows(links);
    QList<QUuid> ids;
    for (const DownloadItem& each : controller.queue().rows())
        ids.append(each.id);
    qsizetype most = 0;
    QObject::connect(&controller.queue(), &QueueStore::rowChanged,
                     [&] { most = std::max(most, countWith(QueueStatus::running)); });
    const auto release = [this](const QString& names) {
        for (const QChar name : names)
            machine.tell(QStringLiteral("go-") + name);
    };

    controller.startDownloadRun(ids.mid(0, 4));
    controller.startDownloadRun(ids.mid(4, 4));
    release(QStringLiteral("1234"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 1; }));
    controller.startDownloadRun(ids.mid(8, 2));
    EXPECT_EQ(countWith(QueueStatus::running), 2);
    controller.startDownloadRun(ids.mid(10, 4));  // in the slots that the held rows leave
    EXPECT_EQ(countWith(QueueStatus::running), 6);
    release(QStringLiteral("p"));
    ASSERT_TRUE(waitUntil([this] { return row(6).status == QueueStatus::running; }));
    EXPECT_EQ(row(8).status, QueueStatus::queued);
    release(QStringLiteral("5"));
    ASSERT_TRUE(waitUntil([this] { return row(8).status == QueueStatus::complete; }));
    release(QStringLiteral("qst678"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(countWith(QueueStatus::complete), 14);
    EXPECT_EQ(most, 6);
}

TEST_F(EngineTest, AnotherProgramsSongIsWaitedForAndFound) {
    const QStringList links{link("hold", QStringLiteral("both of us")),
                            link("song", QStringLiteral("own"))};
    addReadRows(links);
    Controller other(machine.supervisor, quickSetup(machine));
    other.setEventName(QStringLiteral("Prom"));
    addReadRows(other, {links.first()});
    other.startDownloads();
    ASSERT_TRUE(waitUntil(
        [this] { return machine.calls().contains(QStringLiteral("download both of us")); }));
    controller.startDownloads();
    // It holds no slot meanwhile, and a row behind it passes.
    ASSERT_TRUE(waitUntil([this] { return row(1).status == QueueStatus::complete; }));
    ASSERT_TRUE(waitUntil([this] { return row(0).status == QueueStatus::queued; }));
    machine.tell(QStringLiteral("go"));
    ASSERT_TRUE(waitUntil([&] {
        return controller.runs().activeDownloadRuns() + other.runs().activeDownloadRuns() == 0;
    }));
    EXPECT_EQ(row(0).detail, QStringLiteral("Already Downloaded"));
    EXPECT_EQ(machine.calls().count(QStringLiteral("download both of us")), 1);
    other.shutDown();
    EXPECT_TRUE(waitUntil([this] { return left().size() == 2; }));
}

TEST_F(EngineTest, SongsOfOneNameAllArriveUnlessTheyAreOneSong) {
    addReadRows({link("same", QStringLiteral("1"))});
    downloadAll();
    machine.installSong(3.0);
    addReadRows({link("same", QStringLiteral("1#x")), link("same", QStringLiteral("2")),
                 link("same", QStringLiteral("3")), link("same", QStringLiteral("3?x"))});
    machine.installSong(3.0);
    downloadAll();
    EXPECT_EQ(countWith(QueueStatus::complete), controller.queue().size());
    EXPECT_TRUE(waitUntil([this] { return left().size() == 2; }));
    EXPECT_EQ(left(), QStringList({QStringLiteral("track (2) [track].mp3"),
                                   QStringLiteral("track [track].mp3")}));
    EXPECT_EQ(row(1).outputPath, row(0).outputPath);
    EXPECT_EQ(row(2).outputPath, row(3).outputPath);
    EXPECT_NE(row(2).outputPath, row(0).outputPath);
}

TEST_F(EngineTest, CompleteIsWhatIsThereAndPlays) {
    addReadRows({link("nothing", QStringLiteral("a")), link("text", QStringLiteral("b")),
                 link("cover", QStringLiteral("c")), link("stale", QStringLiteral("d")),
                 link("both", QStringLiteral("e"))});
    const QString failed = QStringLiteral("Download failed. Check the link or try again.");
    const QString saved = QStringLiteral("Saved; trimmed silent start/end");
    const QString stale = controller.eventFolder() + QStringLiteral("/.reelcrate/") +
                          songKey(row(3).url, 0) + QStringLiteral(".mp3");
    QDir().mkpath(stale);
    writeFile(stale + QStringLiteral("/d [d].mp3.part"), "of no use");
    downloadAll();
    EXPECT_EQ(allDetails(), QStringList({failed, failed, saved, saved, saved}));
    EXPECT_TRUE(waitUntil([this] { return left().size() == 5; }))
        << left().join(u'|').toStdString();
    EXPECT_EQ(left().mid(1),
              QStringList({QStringLiteral("c [c].mp3"), QStringLiteral("d [d].mp3"),
                           QStringLiteral("first [1].mp3"), QStringLiteral("second [2].mp3")}));
    EXPECT_TRUE(controller.runs().runLog().text().contains(QStringLiteral("there is no file")))
        << controller.runs().runLog().text().toStdString();
    EXPECT_EQ(row(4).outputPath, eventFile(QStringLiteral("second [2].mp3")));
}

TEST_F(EngineTest, WhatIsThereIsLookedForAgainBeforeADownload) {
    addReadRows(
        {link("song", QStringLiteral("A Longer Title")), link("song", QStringLiteral("A Longer"))});
    QDir().mkpath(controller.eventFolder());
    // What looks like a song from outside, and like the song by its name, has to play as well.
    const QString torn = eventFile(QStringLiteral("A Longer Title [y].mp3"));
    const QString song = machine.toolFolder() + QStringLiteral("/song.mp3");
    const QString whole = eventFile(QStringLiteral("A Longer Title [x].mp3"));
    QFile::copy(song, whole);
    QByteArray bytes = readFile(song);
    const qsizetype third = bytes.size() / 3;
    writeFile(torn, bytes.replace(third, third, QByteArray(third, 'x')));
    controller.startDownloadRun({row(0).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(0).detail, QStringLiteral("Already Downloaded"));
    EXPECT_EQ(row(0).outputPath, whole);
    EXPECT_TRUE(controller.runs().runLog().text().contains(
        torn + QStringLiteral(" is there, but no whole song (")));
    EXPECT_EQ(machine.calls().count(QStringLiteral("download A Longer Title")), 0);

    // But not what another song has just written.
    QFile::remove(row(0).outputPath);
    addReadRows({link("song", QStringLiteral("A Longer Title#2"))});
    controller.startDownloadRun({row(2).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    controller.startDownloadRun({row(1).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(1).outputPath, eventFile(QStringLiteral("A Longer [A Longer].mp3")));
}

TEST_F(EngineTest, ReadingChangesNoRowThatARunHasTaken) {
    controller.setPastedLinks(link("slowread", QStringLiteral("a")) + u' ' +
                              link("unreadable", QStringLiteral("b")));
    controller.addSongsFromFieldOrClipboard();
    controller.addSongs(link("slowread", QStringLiteral("c")));
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 2; }));
    downloadAll();
    const QStringList after = allDetails();
    EXPECT_EQ(countWith(QueueStatus::complete), 3) << after.join(u'|').toStdString();
    machine.tell(QStringLiteral("go-read"));
    ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    EXPECT_EQ(allDetails(), after);
    EXPECT_EQ(countWith(QueueStatus::complete), 3);
}

TEST_F(EngineTest, NoMoreThanSixDownloadHoweverOftenTheyAreAskedFor) {
    QStringList links;
    for (int i = 0; i < 8; ++i)
        links.append(link("hold", QString::number(i)));
    addReadRows(links);
    controller.startDownloads();
    controller.clearQueue();  // what runs goes on
    addReadRows({link("hold", QStringLiteral("x"))});
    controller.startDownloads();
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("Already downloading 6 songs at once"));
    EXPECT_EQ(row(0).status, QueueStatus::waiting);
    machine.tell(QStringLiteral("go"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(left().filter(QStringLiteral(".mp3")).size(), 8);
}

TEST_F(EngineTest, EachOfSeveralSongsOnAPageIsARow) {
    addAndRead(link("three", QStringLiteral("p")) + u' ' + link("feed", QStringLiteral("f")));
    EXPECT_EQ(titles(),
              QStringList({QStringLiteral("p1"), QStringLiteral("p2"), QStringLiteral("p3"),
                           QStringLiteral("f1"), QStringLiteral("Item 2 of http://site/feed/f"),
                           QStringLiteral("f3")}));
    EXPECT_EQ(row(4).status, QueueStatus::failed);
    EXPECT_EQ(summaries.last(), QStringLiteral("Added 3 songs; 1 could not be read"));
    EXPECT_TRUE(
        controller.runs().runLog().text().contains(QStringLiteral("ERROR: the second is gone\n")));
    controller.resolution().retryResolveInfo(row(4));
    ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    EXPECT_EQ(row(4).title, QStringLiteral("f2"));
    downloadAll();
    EXPECT_EQ(countWith(QueueStatus::complete), 6);
    EXPECT_TRUE(left().contains(QStringLiteral("p3 [p3].mp3")));
    addAndRead(link("three", QStringLiteral("p")));
    EXPECT_EQ(summaries.last(), QStringLiteral("No new links added"));
}

TEST_F(EngineTest, EachFailureHasItsText) {
    addReadRows({link("broken", QStringLiteral("a")), link("private", QStringLiteral("b")),
                 QStringLiteral("https://open.spotify.com/track/c")});
    const QString failed = QStringLiteral("Download failed. Check the link or try again.");
    downloadAll();
    EXPECT_EQ(row(0).detail, failed);
    EXPECT_EQ(row(0).status, QueueStatus::failed);
    EXPECT_EQ(row(0).progress, 0.0);
    EXPECT_EQ(row(1).detail,
              QStringLiteral("This link may require a browser login or may not be public."));

    // What failed can be tried again.
    const QStringList before = machine.calls();
    downloadAll();
    EXPECT_EQ(machine.calls().size(), before.size() + 2);
}

TEST_F(EngineTest, ASpotifyRowIsSearchedForAndFailsInItsOwnWords) {
    machine.tell(QStringLiteral("spotdl.txt"), sample("spotdl_playlist.txt").toUtf8());
    addAndRead(QStringLiteral("https://open.spotify.com/playlist/x"));
    ASSERT_GT(controller.queue().size(), 1);
    EXPECT_EQ(row(0).source, SourceType::spotify);
    machine.installScript(
        QStringLiteral("yt-dlp"),
        "#!/bin/bash\necho '[youtube:search] Playlist Login: Downloading 0 items'\n");
    controller.startDownloadRun({row(0).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(0).cause, FailureCause::noMatch);
    EXPECT_EQ(
        row(0).detail,
        QStringLiteral("Could not find a matching YouTube result for this Spotify reference."));
    EXPECT_TRUE(controller.runs().runLog().text().contains(
        QStringLiteral("ytsearch1:") + row(0).title + QStringLiteral(" official audio")));

    // That is said only of a search that was made.
    machine.installScript(QStringLiteral("yt-dlp"), "#!/bin/bash\necho login \"$*\"; exit 1\n");
    controller.startDownloadRun({row(0).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(0).cause, FailureCause::other);
    EXPECT_EQ(row(0).detail, QStringLiteral("Download failed. Check the link or try again."));
}

TEST_F(EngineTest, ASiteThatLimitsDownloadsIsAskedNoMore) {
    QStringList links;
    for (int i = 1; i <= 15; ++i)
        links.append(link("limited", QStringLiteral("song%1").arg(i)));
    const QStringList others{QStringLiteral("http://other/song/x"),
                             QStringLiteral("http://other/song/y")};
    addReadRows(links + others);
    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 6; }));
    machine.tell(QStringLiteral("go"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));

    // Each of the first two that failed made room for another.
    EXPECT_EQ(linksWith(QueueStatus::failed), links.first(8));
    EXPECT_EQ(linksWith(QueueStatus::waiting), links.last(7));
    EXPECT_EQ(linksWith(QueueStatus::complete), others);
    EXPECT_EQ(machine.calls().filter(QStringLiteral("download song")).size(), 8);
    EXPECT_EQ(row(0).detail, QStringLiteral("The site limits downloads. Try again in an hour."));
    EXPECT_EQ(row(0).cause, FailureCause::siteLimit);
    EXPECT_EQ(row(14).detail, QStringLiteral("Ready to download"));
    EXPECT_EQ(row(14).progress, 0.0);
    EXPECT_EQ(controller.activeSummary(),
              QStringLiteral("site asks to wait: try again in an hour (7 songs not started)"));
    EXPECT_TRUE(controller.runs().runLog().text().contains(controller.activeSummary()));
    EXPECT_TRUE(controller.runs().crawls().progressCrawlTokens().isEmpty());

    // The next run tries again.
    controller.startDownloadRun({row(14).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(14).status, QueueStatus::failed);
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("Download run finished"));
}

TEST_F(EngineTest, ARowThatWaitsForAnotherProgramGoesBackToo) {
    const QString waiting = link("limited", QStringLiteral("waiting"));
    QDir().mkpath(controller.eventFolder());
    WorkingFolder elsewhere(controller.eventFolder(), songKey(waiting, 0) + QStringLiteral(".mp3"));
    ASSERT_EQ(elsewhere.lock(), WorkingFolder::Lock::held);
    addReadRows({waiting, link("limited", QStringLiteral("a")),
                 link("limited", QStringLiteral("b")), link("limited", QStringLiteral("c"))});
    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 3; }));
    ASSERT_TRUE(waitUntil([this] { return row(0).status == QueueStatus::queued; }));
    machine.tell(QStringLiteral("go"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(linksWith(QueueStatus::waiting), QStringList(waiting));
    EXPECT_EQ(controller.activeSummary(),
              QStringLiteral("site asks to wait: try again in an hour (1 song not started)"));
}

TEST_F(EngineTest, AnOldDownloaderIsNamedOnceBehindAFailure) {
    machine.tell(QStringLiteral("version"), "2025.04.30\n");
    controller.tools().checkTools();
    ASSERT_TRUE(waitUntil([this] { return !controller.tools().isCheckingTools(); }));
    addReadRows({link("broken", QStringLiteral("a")), link("refused", QStringLiteral("b")),
                 link("song", QStringLiteral("c"))});
    const QString notice = QStringLiteral("yt-dlp 2025.04.30, ");
    downloadAll();
    EXPECT_EQ(row(1).detail, QStringLiteral("yt-dlp is too old for this site. Run Setup."));
    EXPECT_EQ(controller.runs().runLog().text().count(notice), 1);
    EXPECT_GT(controller.runs().runLog().text().indexOf(notice),
              controller.runs().runLog().text().indexOf(QStringLiteral("ERROR: ")));

    controller.startDownloadRun({row(1).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(controller.runs().runLog().text().count(notice), 1);  // the log of this run
    machine.tell(QStringLiteral("version"), "2999.01.01\n");
    controller.tools().checkTools();
    ASSERT_TRUE(waitUntil([this] { return !controller.tools().isCheckingTools(); }));
    controller.startDownloadRun({row(1).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(controller.runs().runLog().text().count(notice), 0);
    EXPECT_EQ(row(1).cause, FailureCause::other);
}

TEST_F(EngineTest, ASpotifyRowIsDownloadedFromTheBestHit) {
    QString listed = sample("spotdl_playlist.txt");
    listed.insert(listed.lastIndexOf(u']'),
                  QStringLiteral(R"(, {"name": "Third", "artist": "Trio", "duration": 200,
                  "url": "https://open.spotify.com/track/3"})"));
    machine.tell(QStringLiteral("spotdl.txt"), listed.toUtf8());
    addAndRead(QStringLiteral("https://open.spotify.com/playlist/x"));
    const auto hit = [&](const char* name, const char* suffix, double seconds) {
        return QJsonObject{{QStringLiteral("url"), link("song", QString::fromLatin1(name))},
                           {QStringLiteral("title"), row(0).title + QString::fromLatin1(suffix)},
                           {QStringLiteral("duration"), seconds}};
    };
    const double seconds = secondsOfDuration(row(0).duration).value();
    const QJsonArray hits{hit("sung", " (Karaoke)", seconds), hit("long", "", seconds + 40),
                          hit("right", "", seconds + 2), hit("sped", " sped up", seconds)};
    machine.tell(QStringLiteral("playlist.json"),
                 QJsonDocument(QJsonObject{{QStringLiteral("entries"), hits}}).toJson());
    const auto calls = [&] { return machine.calls().filter(QStringLiteral("download ")); };
    controller.startDownloadRun({row(0).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_THAT(calls(), ElementsAre(QStringLiteral("download right")));
    EXPECT_TRUE(
        controller.runs().runLog().text().contains(QStringLiteral("3 of 4 hits: ") + row(0).title));

    const auto listOnly = [&](const QJsonObject& only) {
        machine.tell(
            QStringLiteral("playlist.json"),
            QJsonDocument(QJsonObject{{QStringLiteral("entries"), QJsonArray{only}}}).toJson());
    };
    // What is as long may still be another song.
    listOnly(hit("other", "", 200));
    controller.startDownloadRun({row(2).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_TRUE(controller.runs().runLog().text().contains(
        QStringLiteral("1 of 1 hits (best match is uncertain): ")));
    EXPECT_TRUE(row(2).note.startsWith(QStringLiteral("Best match is uncertain; ")));
    EXPECT_TRUE(waitUntil([this] {
        return controller.runs().runLog().text().contains(row(2).title + QStringLiteral(" - ") +
                                                          row(2).note);
    }));
    EXPECT_GT(row(2).playingSeconds, 0);

    // None is as long as this one.
    listOnly(hit("short", "", 1));
    controller.startDownloadRun({row(1).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(1).status, QueueStatus::complete);
    EXPECT_TRUE(calls().last().startsWith(QStringLiteral("download ytsearch1:")));
}

TEST_F(EngineTest, ASongOfAListIsFoundLikeASpotifyRow) {
    QDir().mkpath(controller.eventFolder());
    const QString there = eventFile(QStringLiteral("Queen - Bicycle Race [x].mp3"));
    writeFile(there, silentMp3());
    QSignalSpy noted(&controller, &Controller::songListNoted);
    const auto add = [&](const char* list) {
        return controller.addSongList(textOfList(QByteArray(list)), QStringLiteral("The list"));
    };
    EXPECT_TRUE(add("ABBA - Waterloo (2:46)\nhello\nqueen – bicycle race\nNobody - Nothing"));
    EXPECT_EQ(titles(), (QStringList{QStringLiteral("ABBA - Waterloo"),
                                     QStringLiteral("queen - bicycle race"),
                                     QStringLiteral("Nobody - Nothing")}));
    EXPECT_FALSE(isReading());
    ASSERT_TRUE(waitUntil([this] { return row(1).status == QueueStatus::complete; }));
    EXPECT_EQ(row(1).outputPath, there);
    EXPECT_EQ(row(1).detail, QStringLiteral("Already Downloaded"));
    EXPECT_EQ(controller.activeSummary(),
              QStringLiteral("Added 2; 1 already downloaded; 1 line not read "
                             "as a song (see the log)"));
    EXPECT_TRUE(noted.first().first().toString().contains(QStringLiteral("line 2: hello")));
    EXPECT_TRUE(add("hello\nhello"));
    EXPECT_EQ(controller.eventAccount().unreadLines.size(), 2);  // each line once

    const auto hit = [](const char* name, double seconds) {
        return QJsonObject{{QStringLiteral("url"), link("song", QString::fromLatin1(name))},
                           {QStringLiteral("title"), QStringLiteral("ABBA - Waterloo")},
                           {QStringLiteral("duration"), seconds}};
    };
    const QJsonArray hits{hit("long", 300), hit("right", 167)};
    machine.tell(QStringLiteral("playlist.json"),
                 QJsonDocument(QJsonObject{{QStringLiteral("entries"), hits}}).toJson());
    controller.startDownloadRun({row(0).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_THAT(machine.calls(), testing::Contains(QStringLiteral("download right")));
    EXPECT_TRUE(QFileInfo(row(0).outputPath).fileName().startsWith(QStringLiteral("right")));
    // What was not read stands in the run's log, too.
    EXPECT_TRUE(
        controller.runs().runLog().text().contains(QStringLiteral("No song, line 2: hello")));

    machine.installScript(QStringLiteral("yt-dlp"),
                          "#!/bin/bash\necho '[youtube:search] Playlist x: Downloading 0 items'\n");
    controller.startDownloadRun({row(2).id});
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(2).cause, FailureCause::noMatch);
    EXPECT_EQ(row(2).detail,
              QStringLiteral("Could not find a matching YouTube result for this song."));
    EXPECT_TRUE(controller.runs().runLog().text().contains(
        QStringLiteral("ytsearch1:Nobody - Nothing official audio")));
    EXPECT_FALSE(ResolutionDriver::shouldRetryInfoForFailedItem(row(2)));

    EXPECT_TRUE(add("Waterloo by Abba"));
    EXPECT_EQ(controller.queue().size(), 3);
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("No new songs added; 1 named before"));
    EXPECT_FALSE(add(" "));
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("The list is empty."));
    controller.clearQueue();
    EXPECT_EQ(controller.eventAccount().unreadLines, QStringList());
}

TEST_F(EngineTest, ReadingIsTriedThreeTimesAndRetriedOnRequest) {
    addAndRead(link("flaky", QStringLiteral("late")) + u' ' +
               link("unreadable", QStringLiteral("never")));
    EXPECT_EQ(row(0).title, QStringLiteral("late"));
    EXPECT_EQ(row(1).status, QueueStatus::failed);
    EXPECT_EQ(row(1).title, row(1).url);
    EXPECT_EQ(row(1).detail,
              QStringLiteral("Could not load link info. Check that the link is public."));
    EXPECT_EQ(machine.calls().count(QStringLiteral("read never")), 3);
    for (const char* notice : {"Temporary read issue. Trying again 2 of 3...",
                               "Temporary read issue. Trying again 3 of 3..."})
        EXPECT_TRUE(details.contains(QString::fromLatin1(notice)));
    EXPECT_TRUE(summaries.contains(QStringLiteral("Trying link again")));
    EXPECT_EQ(summaries.last(), QStringLiteral("Playlist needs attention"));

    EXPECT_TRUE(ResolutionDriver::shouldRetryInfoForFailedItem(row(1)));
    controller.resolution().retryResolveInfo(row(1));
    EXPECT_EQ(row(1).detail, QStringLiteral("Reading link again..."));
    ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    EXPECT_EQ(machine.calls().count(QStringLiteral("read never")), 6);
}

TEST_F(EngineTest, ASpotifyLinkThatWasNotListedIsReadAgainAndNeverSearchedFor) {
    machine.tell(QStringLiteral("spotdl.txt"), sample("spotdl_429.txt").toUtf8());
    addAndRead(
        QStringLiteral("https://open.spotify.com/playlist/x https://open.spotify.com/track/y"));
    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    EXPECT_EQ(countWith(QueueStatus::failed), 2);
    EXPECT_EQ(machine.calls().filter(QStringLiteral("download")).size(), 0);
    EXPECT_EQ(machine.calls().size(), 4);

    // When it can be listed, what it turns out to be is downloaded.
    machine.tell(QStringLiteral("spotdl.txt"), sample("spotdl_playlist.txt").toUtf8());
    controller.startDownloads();
    ASSERT_TRUE(
        waitUntil([this] { return !isReading() && controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_TRUE(waitUntil([this] {
        return countWith(QueueStatus::waiting) + countWith(QueueStatus::complete) ==
               controller.queue().size();
    }));
    EXPECT_GT(machine.calls().filter(QStringLiteral("download")).size(), 0);
}

TEST_F(EngineTest, PermanentFailuresAreNotTriedAgain) {
    machine.tell(QStringLiteral("spotdl.txt"), sample("spotdl_429.txt").toUtf8());
    addAndRead(QStringLiteral("https://open.spotify.com/album/x"));
    EXPECT_EQ(row(0).status, QueueStatus::failed);
    EXPECT_EQ(row(0).title, QStringLiteral("Spotify library playlist"));
    EXPECT_EQ(machine.calls().size(), 1);
}

TEST_F(EngineTest, APlaylistMakesWayForItsSongs) {
    machine.tell(QStringLiteral("playlist.json"), R"({"entries": [
        {"title": "One Long Title", "url": "http://site/song/one"},
        {"title": "Another Title", "url": "http://site/song/two"},
        {"title": "In The Queue", "url": "http://site/song/queued"}]})");
    QDir().mkpath(controller.eventFolder());
    writeFile(eventFile(QStringLiteral("One Long Title [x].mp3")), silentMp3());
    writeFile(eventFile(QStringLiteral("Another Title [y].mp3.part")), "sound");
    const QString playlist = QStringLiteral("http://site/playlist/all?from=youtube.com");
    addReadRows({link("song", QStringLiteral("before")), link("song", QStringLiteral("queued"))});
    addAndRead(playlist + QStringLiteral(" ") + link("song", QStringLiteral("after")));
    const QStringList expected{QStringLiteral("before"), QStringLiteral("queued"),
                               QStringLiteral("One Long Title"), QStringLiteral("Another Title"),
                               QStringLiteral("after")};
    EXPECT_EQ(titles(), expected);
    EXPECT_EQ(row(2).detail, QStringLiteral("Already Downloaded"));
    EXPECT_EQ(row(2).status, QueueStatus::complete);
    EXPECT_EQ(row(2).outputPath, eventFile(QStringLiteral("One Long Title [x].mp3")));
    EXPECT_EQ(row(3).status, QueueStatus::waiting);
    EXPECT_TRUE(summaries.contains(QStringLiteral("Added 1; 1 already downloaded")));

    addAndRead(playlist);
    EXPECT_EQ(controller.queue().size(), 6);
    controller.startDownloadRun({row(5).id});
    EXPECT_EQ(controller.runs().activeDownloadRuns(), 0);
    EXPECT_EQ(row(5).title, QStringLiteral("Playlist link"));
    EXPECT_EQ(row(5).status, QueueStatus::waiting);
    EXPECT_EQ(row(5).detail, QStringLiteral("Those songs are already in the queue."));
    EXPECT_EQ(summaries.last(), QStringLiteral("No new songs added"));
}

TEST_F(EngineTest, RowsThatAreGoneStayGone) {
    // One is deleted while it is read; the queue is cleared while another is downloaded.
    addReadRows({link("song", QStringLiteral("stays"))});
    controller.setPastedLinks(link("slowread", QStringLiteral("gone")));
    controller.addSongsFromFieldOrClipboard();
    ASSERT_TRUE(
        waitUntil([this] { return machine.calls().contains(QStringLiteral("read gone")); }));
    EXPECT_TRUE(controller.editor().deleteQueueItems({row(1).id}));
    machine.tell(QStringLiteral("go-read"));
    addAndRead(link("song", QStringLiteral("next")));
    EXPECT_EQ(titles(), (QStringList{QStringLiteral("stays"), QStringLiteral("next")}));

    addReadRows({link("hold", QStringLiteral("held"))});
    controller.startDownloads();
    EXPECT_FALSE(controller.editor().deleteQueueItems({row(0).id}));
    controller.clearQueue();
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("Ready"));
    machine.tell(QStringLiteral("go"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(controller.queue().size(), 0);
    EXPECT_EQ(summaries.last(), QStringLiteral("Download run finished"));
    EXPECT_TRUE(QFile::exists(eventFile(QStringLiteral("held [held].mp3"))));
}

TEST_F(EngineTest, AnEmptyListingIsReadAsTheVideoThatTheLinkNames) {
    addAndRead(QStringLiteral("http://site/song/watched?list=x&from=youtube.com"));
    EXPECT_EQ(machine.calls().size(), 2);
    EXPECT_EQ(row(0).source, SourceType::youtube);
    EXPECT_EQ(row(0).status, QueueStatus::waiting);
}

TEST_F(EngineTest, IntakeSaysWhatItFound) {
    controller.addSongsFromFieldOrClipboard();  // an empty field, and no clipboard here
    EXPECT_EQ(controller.activeSummary(),
              QStringLiteral("Copy a share link, then click Add Songs"));
    controller.setPastedLinks(QStringLiteral("HTTPS://SITE/X no link"));
    controller.addSongsFromFieldOrClipboard();
    EXPECT_FALSE(controller.pastedLinks().isEmpty());

    const QString song = link("song", QStringLiteral("a"));
    EXPECT_EQ(controller.addLinksToQueue({song, song}).size(), 2);
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("Reading 2 links"));
    EXPECT_TRUE(controller.addLinksToQueue({song}).isEmpty());
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("No new links added"));
    EXPECT_TRUE(controller.addLinksToQueue({}).isEmpty());
}

TEST_F(EngineTest, AFolderThatCannotBeMadeEndsTheRun) {
    addReadRows({link("song", QStringLiteral("a"))});
    const QString home = machine.path(QStringLiteral("out"));
    ASSERT_TRUE(writeFile(home, "a file"));
    for (const QString& folder : {home, machine.path(QStringLiteral("$HOME/x"))}) {
        SCOPED_TRACE(folder.toStdString());
        controller.setOutputFolder(folder);
        controller.startDownloads();
        EXPECT_EQ(controller.runs().activeDownloadRuns(), 0);
        EXPECT_EQ(controller.activeSummary(), QStringLiteral("Preparing event folder"));
        EXPECT_TRUE(controller.runs().runLog().text().startsWith(
            QStringLiteral("Could not create output folders: ")));
        EXPECT_EQ(row(0).status, QueueStatus::waiting);
    }
    EXPECT_FALSE(QDir(machine.path(QStringLiteral("$HOME"))).exists());
}

TEST_F(EngineTest, NothingStartsWithoutTheTools) {
    const QString tool = machine.toolFolder() + QStringLiteral("/yt-dlp");
    const QString old = machine.path(QStringLiteral("old"));
    QDir().mkpath(old);
    ASSERT_TRUE(QFile::rename(tool, old + QStringLiteral("/yt-dlp")));
    ControllerSetup setup = quickSetup(machine);
    setup.toolPlaces.systemFolders.prepend(old);
    Controller own(machine.supervisor, setup);
    addReadRows(own, {link("song", QStringLiteral("a"))});
    for (const bool isReady : {false, true}) {
        writeFile(old + QStringLiteral("/yt-dlp"),
                  isReady ? "#!/bin/sh\necho 2099.01.01\n" : "#!/bin/sh\necho 2020.01.01\n");
        own.tools().checkTools();
        ASSERT_TRUE(waitUntil([&] { return !own.tools().isCheckingTools(); }));
        EXPECT_EQ(own.canDownloadAll(), isReady);
        EXPECT_EQ(own.canAdd(), isReady);
        own.startDownloads();
        EXPECT_EQ(own.runs().activeDownloadRuns(), isReady ? 1 : 0);
        EXPECT_EQ(own.activeSummary() == own.tools().setupDetailText(), !isReady);
    }
}

TEST_F(EngineTest, StoppedRowsAreReadyAndTheirSlotsGoToTheNext) {
    QStringList links;
    for (int i = 1; i <= 9; ++i)
        links.append(link("gate", QString::number(i)));
    addReadRows(links);
    const QSet<QUuid> firstAndLast{row(0).id, row(8).id};
    EXPECT_FALSE(controller.stopQueueItems(firstAndLast));
    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 6; }));
    EXPECT_TRUE(controller.canStop(firstAndLast));
    EXPECT_TRUE(controller.stopQueueItems(firstAndLast));
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("Stopped 2 songs"));
    EXPECT_FALSE(controller.canStop(firstAndLast));
    EXPECT_FALSE(controller.stopQueueItems(firstAndLast)) << "twice";
    EXPECT_EQ(linksWith(QueueStatus::waiting), QStringList({links.first(), links.last()}));
    EXPECT_EQ(linksWith(QueueStatus::running), links.mid(1, 6));
    EXPECT_EQ(row(0).detail, QStringLiteral("Ready to download"));
    EXPECT_EQ(row(0).progress, 0.0);
    EXPECT_TRUE(controller.runs().runLog().text().endsWith(QStringLiteral("1/9 Stopped.\n")));

    for (const QChar name : QStringLiteral("2345678"))
        machine.tell(QStringLiteral("go-") + name);
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(linksWith(QueueStatus::complete), links.mid(1, 7));
    EXPECT_EQ(linksWith(QueueStatus::waiting), QStringList({links.first(), links.last()}));
    EXPECT_FALSE(machine.calls().contains(QStringLiteral("download 9")));
    EXPECT_TRUE(
        summaries.contains(QStringLiteral("Finished 2 of 7; downloading up to 6 songs at once")));
    EXPECT_EQ(summaries.last(), QStringLiteral("Download run finished"));
    EXPECT_TRUE(controller.runs().crawls().progressCrawlTokens().isEmpty());
}

TEST_F(EngineTest, AStoppedDownloadLeavesNoStumpAndCanBeStartedAgainAtOnce) {
    installHaltingConverter();
    const struct {
        const char* kind;
        const char* name;
        const char* sign;
    } cases[] = {{"part", "half", "parted"},
                 {"converting", "half-converted", "converts"},
                 {"song", "measure-me", "in-measure"},
                 {"song", "trim-me", "in-trim"}};
    for (const auto& [kind, name, sign] : cases) {
        SCOPED_TRACE(name);
        addReadRows({link(kind, QString::fromLatin1(name))});
        const QUuid id = controller.queue().rows().last().id;
        const auto status = [&] { return controller.queue().find(id)->status; };
        const QString isThere = machine.toolFolder() + u'/' + QString::fromLatin1(sign);
        const QStringList before = left();
        controller.startDownloadRun({id});
        ASSERT_TRUE(waitUntil([&] { return QFile::exists(isThere); }));
        EXPECT_TRUE(controller.stopQueueItems({id}));
        EXPECT_EQ(status(), QueueStatus::waiting);
        controller.startDownloadRun({id});
        EXPECT_EQ(status(), QueueStatus::queued) << "until what was stopped has ended";
        ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
        EXPECT_EQ(status(), QueueStatus::complete);
        EXPECT_EQ(controller.queue().find(id)->detail,
                  QStringLiteral("Saved; trimmed silent start/end"));
        const QString file = QString::fromLatin1(name) + QStringLiteral(" [%1].mp3");
        QStringList expected = before + QStringList(file.arg(QString::fromLatin1(name)));
        expected.sort();
        EXPECT_TRUE(waitUntil([&] { return left() == expected; }))
            << left().join(u' ').toStdString();
    }
    EXPECT_TRUE(machine.calls().contains(QStringLiteral("resume half")));
}

TEST_F(EngineTest, NothingOfAStoppedDownloadArrivesLater) {
    addReadRows({link("converting", QStringLiteral("a"))});
    controller.startDownloads();
    const QString isThere = machine.toolFolder() + QStringLiteral("/converts");
    ASSERT_TRUE(pollUntil([&] { return QFile::exists(isThere); }));  // so much is on its way
    controller.stopAll();
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(0).detail, QStringLiteral("Ready to download"));
    EXPECT_EQ(controller.runs().runLog().text(), QStringLiteral("1/1 Stopped.\n"));
}

TEST_F(EngineTest, ASongThatIsThereIsNotDoubtedForAStop) {
    installHaltingConverter();
    addReadRows({link("song", QStringLiteral("measure-me"))});
    QDir().mkpath(controller.eventFolder());
    const QString song = eventFile(QStringLiteral("measure-me [measure-me].mp3"));
    ASSERT_TRUE(QFile::copy(machine.toolFolder() + QStringLiteral("/song.mp3"), song));
    controller.startDownloads();
    ASSERT_TRUE(waitUntil(
        [this] { return QFile::exists(machine.toolFolder() + QStringLiteral("/in-measure")); }));
    controller.stopAll();
    downloadAll();
    EXPECT_EQ(row(0).detail, QStringLiteral("Already Downloaded"));
    EXPECT_EQ(row(0).outputPath, song);
    EXPECT_TRUE(machine.calls().isEmpty());
}

TEST_F(EngineTest, StoppingAllEndsEveryRun) {
    const QString elsewhereToo = link("hold", QStringLiteral("elsewhere"));
    QDir().mkpath(controller.eventFolder());
    WorkingFolder elsewhere(controller.eventFolder(),
                            songKey(elsewhereToo, 0) + QStringLiteral(".mp3"));
    ASSERT_EQ(elsewhere.lock(), WorkingFolder::Lock::held);
    QStringList links{elsewhereToo};
    for (const char* name : {"a", "a#x", "b", "c", "d", "e", "f", "g"})
        links.append(link("hold", QString::fromLatin1(name)));
    addReadRows(links);
    QList<QUuid> ids;
    for (const DownloadItem& each : controller.queue().rows())
        ids.append(each.id);
    controller.startDownloadRun(ids.first(4));
    controller.startDownloadRun(ids);
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 5; }));
    ASSERT_TRUE(waitUntil([this] { return row(0).status == QueueStatus::queued; }));
    EXPECT_EQ(controller.runs().activeDownloadRuns(), 2);
    EXPECT_TRUE(controller.canStopAll());
    controller.stopAll();
    EXPECT_FALSE(controller.canStopAll());
    EXPECT_EQ(countWith(QueueStatus::waiting), 9);
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("Stopped 9 songs"));
    controller.stopAll();
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(summaries.last(), QStringLiteral("Download run stopped"));
    EXPECT_EQ(machine.calls().size(), 5) << "nothing has started in the slots";
    EXPECT_EQ(left(), QStringList(QStringLiteral(".reelcrate")));
}

TEST_F(EngineTest, ARowThatIsHeldMayBeStoppedAlone) {
    addReadRows({link("hold", QStringLiteral("a")), link("hold", QStringLiteral("a#x")),
                 link("hold", QStringLiteral("a#y"))});
    controller.startDownloads();
    EXPECT_TRUE(controller.stopQueueItems({row(1).id}));
    machine.tell(QStringLiteral("go"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_EQ(row(1).status, QueueStatus::waiting);
    EXPECT_EQ(row(2).detail, QStringLiteral("Already Downloaded"));
}

TEST_F(EngineTest, AStopThatComesTooLateForASongShowsIt) {
    addReadRows({link("song", QStringLiteral("late"))});
    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return row(0).detail == QStringLiteral("Trimming Song"); }));
    const QString song = eventFile(QStringLiteral("late [late].mp3"));
    ASSERT_TRUE(pollUntil([&] { return QFile::exists(song); }));  // and nobody has told the row
    EXPECT_TRUE(controller.stopQueueItems({row(0).id}));
    EXPECT_EQ(row(0).status, QueueStatus::waiting);
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_EQ(row(0).outputPath, song);
    EXPECT_EQ(summaries.last(), QStringLiteral("Download run finished"));
}

TEST_F(EngineTest, AReadingThatIsStoppedIsMadeUpForAtTheStart) {
    controller.setPastedLinks(link("slowread", QStringLiteral("a")) + u' ' +
                              link("song", QStringLiteral("b")) + u' ' +
                              link("song", QStringLiteral("c")));
    controller.addSongsFromFieldOrClipboard();
    const auto hasRead = [this](const char* name) {
        return machine.calls().count(QStringLiteral("read ") + QString::fromLatin1(name));
    };
    ASSERT_TRUE(waitUntil([&] { return hasRead("a") == 1; }));
    EXPECT_TRUE(controller.stopQueueItems({row(0).id, row(2).id}));
    EXPECT_EQ(controller.activeSummary(), QStringLiteral("Stopped 2 songs"));
    for (const int index : {0, 2}) {
        EXPECT_EQ(row(index).status, QueueStatus::waiting);
        EXPECT_EQ(row(index).detail, QStringLiteral("Ready to download"));
        EXPECT_EQ(row(index).title, row(index).url);
        EXPECT_TRUE(Controller::isDownloadable(row(index)));
    }
    ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    EXPECT_EQ(row(1).title, QStringLiteral("b"));

    // To start it is to read it first; that can be stopped again, and nothing starts then.
    controller.startDownloadRun({row(0).id});
    ASSERT_TRUE(waitUntil([&] { return hasRead("a") == 2; }));
    EXPECT_TRUE(controller.canStopAll());
    controller.stopAll();
    machine.tell(QStringLiteral("go-read"));
    addAndRead(link("song", QStringLiteral("d")));
    EXPECT_EQ(row(0).title, row(0).url);
    EXPECT_EQ(controller.runs().activeDownloadRuns(), 0);
    EXPECT_EQ(hasRead("c"), 0);

    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return countWith(QueueStatus::complete) == 4; }));
    EXPECT_EQ(titles(), QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                                     QStringLiteral("d")}));
}

TEST_F(EngineTest, ADownloadThatBeganBeforeItsReadingGoesOnWithoutIt) {
    controller.addSongs(link("slowread", QStringLiteral("a")));
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 1; }));
    controller.startDownloads();
    EXPECT_EQ(row(0).status, QueueStatus::running);
    EXPECT_TRUE(controller.stopQueueItems({row(0).id}));
    EXPECT_FALSE(row(0).isResolvingInfo);
    EXPECT_EQ(row(0).status, QueueStatus::waiting);
    downloadAll();
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_EQ(machine.calls().count(QStringLiteral("read a")), 1);
}

TEST_F(EngineTest, ShuttingDownLeavesNoStumpAndChangesNoRow) {
    addReadRows({link("converting", QStringLiteral("a")), link("song", QStringLiteral("b"))});
    const QString earlier = eventFile(QStringLiteral("c [c].mp3"));
    QDir().mkpath(controller.eventFolder());
    writeFile(earlier, "an earlier song");
    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return countWith(QueueStatus::complete) == 1; }));
    ASSERT_TRUE(waitUntil([this] {
        return QFile::exists(machine.toolFolder() + QStringLiteral("/converts")) &&
               row(0).detail == QStringLiteral("Downloading Song");
    }));
    controller.shutDown();
    QCoreApplication::processEvents();
    EXPECT_EQ(row(0).status, QueueStatus::running);
    EXPECT_THAT(left(), ElementsAre(QStringLiteral(".reelcrate"), QStringLiteral("b [b].mp3"),
                                    QStringLiteral("c [c].mp3")));
}

}  // namespace
}  // namespace reelcrate
