// The whole engine behind its controller, on stand-in tools and with short pauses.

#include "app/controller.h"
#include "base/duration_text.h"
#include "download/working_folder.h"
#include "library/replay_gain.h"
#include "library/song_key.h"
#include "support/machine.h"
#include "support/sample.h"
#include "support/texts.h"

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
    setup.desktopFolder = machine.path(text("Desktop"));
    setup.resolutionTiming = {10ms, 10ms, 1ms};
    setup.downloadTiming = {1ms, 1ms, 1ms, 20ms};
    return setup;
}

class EngineTest : public testing::Test {
protected:
    EngineTest() {
        for (const char* tool : {"yt-dlp", "spotdl"})
            machine.install(text(tool));
        machine.linkConverter();
        machine.installSong();
        controller.setEventName(text("Prom"));
        QObject::connect(&controller, &Controller::activeSummaryChanged,
                         [this] { summaries.append(controller.activeSummary()); });
        QObject::connect(&controller.queue(), &QueueStore::rowChanged, [this](qsizetype index) {
            const QString& detail = row(index).detail;
            if (details.isEmpty() || details.last() != detail)
                details.append(detail);
        });
    }

    static QString link(const char* kind, const QString& name) {
        return text("http://site/%1/%2").arg(text(kind), name);
    }
    static QString link(const char* kind, const char* name) { return link(kind, text(name)); }

    static QStringList links(const char* kind, std::initializer_list<const char*> names) {
        QStringList links;
        for (const char* name : names)
            links.append(link(kind, name));
        return links;
    }

    /// Links to song1, song2 and so on.
    static QStringList links(const char* kind, int count) {
        QStringList links;
        for (int i = 1; i <= count; ++i)
            links.append(link(kind, text("song%1").arg(i)));
        return links;
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

    void waitForEnd() const {
        ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 0; }));
    }

    void downloadAll() {
        controller.startDownloads();
        waitForEnd();
    }

    void download(qsizetype index) {
        controller.startDownloadRun({row(index).id});
        waitForEnd();
    }

    QString log() const { return controller.runs().runLog().text(); }

    QList<QUuid> allIds() const {
        QList<QUuid> ids;
        for (const DownloadItem& each : controller.queue().rows())
            ids.append(each.id);
        return ids;
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
        const QString converter = machine.toolFolder() + text("/ffmpeg");
        ASSERT_TRUE(QFile::remove(converter));
        machine.installScript(
            text("ffmpeg"),
            "#!/bin/bash\nhere=$(dirname \"$0\")\nstep=measure\n"
            "[[ \"$*\" == *.trim-* ]] && step=trim\n"
            "if [[ \"$*\" == */$step-me* ]] && mkdir \"$here/in-$step\" 2> /dev/null\n"
            "then [ $step = measure ] || echo half > \"${!#}\"; sleep 600; fi\n"
            "exec " +
                QFile::encodeName(QStandardPaths::findExecutable(text("ffmpeg"))) + " \"$@\"\n");
    }

    Machine machine;
    QStringList summaries;
    QStringList details;
    Controller controller{machine.supervisor, quickSetup(machine)};
};

TEST_F(EngineTest, ReadsALinkAndDownloadsIt) {
    addAndRead(text("Our song: %1).").arg(link("song", "first")));
    ASSERT_EQ(controller.queue().size(), 1);
    EXPECT_EQ(row(0).title, text("first"));
    EXPECT_EQ(row(0).duration, text("3:45"));
    EXPECT_EQ(row(0).detail, text("Ready to download"));
    EXPECT_TRUE(controller.pastedLinks().isEmpty());

    details.clear();
    downloadAll();
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_EQ(row(0).detail, text("Saved; trimmed silent start/end"));
    EXPECT_EQ(row(0).outputPath, eventFile(text("first [first].mp3")));
    EXPECT_EQ(row(0).progress, 1.0);
    EXPECT_TRUE(waitUntil([this] { return left() == QStringList(text("first [first].mp3")); }));
    EXPECT_LT(QFileInfo(row(0).outputPath).size(),
              QFileInfo(machine.toolFolder() + text("/song.mp3")).size());
    const QStringList stages{text("Preparing Song for Download"),
                             text("Downloading Song"),
                             text("Examining Song to Trim"),
                             text("Trimming Song"),
                             text("Saving MP3"),
                             text("Saved; trimmed silent start/end")};
    EXPECT_EQ(details, stages);
    EXPECT_TRUE(controller.runs().crawls().progressCrawlTokens().isEmpty());
    EXPECT_TRUE(log().startsWith(text("Running 1/1: PATH='~/share/"))) << log().toStdString();
    EXPECT_TRUE(log().contains(text("RCR_PROGRESS: 50.0%\n")));
    const QStringList expected{text("Reading 1 link"),         text("Added 1 song"),
                               text("Preparing event folder"), text("Downloading selected song"),
                               text("Finalizing downloads"),   text("Download run finished")};
    EXPECT_EQ(summaries, expected);
}

TEST_F(EngineTest, RunsSixSideBySideInQueueOrder) {
    const QStringList links = EngineTest::links("hold", 9);
    addReadRows(links);
    controller.tools().checkTools();
    ASSERT_TRUE(waitUntil([this] { return controller.canDownload(); }));
    controller.startDownloads();
    EXPECT_EQ(countWith(QueueStatus::running), 6);
    EXPECT_EQ(countWith(QueueStatus::queued), 3);
    EXPECT_FALSE(controller.canDownload() || controller.canDownloadAll());
    EXPECT_EQ(row(6).detail, text("Waiting for open download slot"));
    EXPECT_EQ(controller.activeSummary(), text("Downloading up to 6 songs at once"));
    controller.startDownloads();
    EXPECT_EQ(controller.activeSummary(), text("Already downloading 6 songs at once"));
    EXPECT_EQ(controller.runs().activeDownloadRuns(), 1);

    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 6; }));
    machine.tell(text("go"));
    waitForEnd();
    EXPECT_EQ(countWith(QueueStatus::complete), 9);
    const QStringList calls = machine.calls();
    EXPECT_THAT(calls.mid(6),
                testing::UnorderedElementsAre(text("download song7"), text("download song8"),
                                              text("download song9")));
    EXPECT_TRUE(summaries.contains(text("Finished 2 of 9; downloading up to 6 songs at once")));
    EXPECT_EQ(summaries.last(), text("Download run finished"));
}

TEST_F(EngineTest, ASecondRunGetsTheSlotsThatAreLeft) {
    const QStringList links = EngineTest::links("hold", 8);
    addReadRows(links);
    const QList<QUuid> ids = allIds();

    controller.startDownloadRun(ids.first(4));
    controller.setDownloadMode(DownloadMode::video);
    controller.startDownloadRun(ids);  // of these, the four that are not running yet
    EXPECT_EQ(controller.activeSummary(), text("Downloading up to 2 videos at once"));
    EXPECT_EQ(controller.runs().activeDownloadRuns(), 2);
    EXPECT_EQ(countWith(QueueStatus::running), 6);
    EXPECT_EQ(countWith(QueueStatus::queued), 2);
    machine.tell(text("go"));
    waitForEnd();
    EXPECT_EQ(countWith(QueueStatus::complete), 8);
    EXPECT_EQ(row(7).detail, text("Saved to Prom"));
}

TEST_F(EngineTest, ASongIsDownloadedByOneRowAtATimeAndFoundByTheOthers) {
    const QStringList links =
        EngineTest::links("hold", {"a", "a#x", "b", "a#y", "c", "d", "e", "f", "g"});
    addReadRows(links);
    bool isTwice = false;
    QObject::connect(&controller.queue(), &QueueStore::rowChanged, [&] {
        QStringList running = linksWith(QueueStatus::running);
        isTwice = isTwice || running.removeDuplicates() > 0;
    });
    controller.startDownloads();
    const QString& a = links.first();
    EXPECT_EQ(linksWith(QueueStatus::running),
              QStringList({a}) + links.mid(2, 1) + links.mid(4, 4));
    EXPECT_EQ(linksWith(QueueStatus::queued),
              QStringList({links.at(1), links.at(3), links.last()}));
    EXPECT_EQ(row(1).detail, text("Waiting for open download slot"));
    machine.tell(text("go"));
    waitForEnd();
    EXPECT_EQ(countWith(QueueStatus::complete), 9);
    EXPECT_FALSE(isTwice);
    EXPECT_EQ(machine.calls().count(text("download a")), 1);
    EXPECT_EQ(row(1).detail, text("Already Downloaded"));
    EXPECT_EQ(row(1).outputPath, row(0).outputPath);
    EXPECT_EQ(row(3).outputPath, row(0).outputPath);
}

TEST_F(EngineTest, RunsHoldEachOthersLinksAndShareTheSlots) {
    const QStringList links = EngineTest::links(
        "gate", {"1", "2", "3", "4", "p", "q", "s", "t", "p#2", "q#2", "5", "6", "7", "8"});
    addReadRows(links);
    const QList<QUuid> ids = allIds();
    qsizetype most = 0;
    QObject::connect(&controller.queue(), &QueueStore::rowChanged,
                     [&] { most = std::max(most, countWith(QueueStatus::running)); });
    const auto release = [this](const QString& names) {
        for (const QChar name : names)
            machine.tell(text("go-") + name);
    };

    controller.startDownloadRun(ids.mid(0, 4));
    controller.startDownloadRun(ids.mid(4, 4));
    release(text("1234"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 1; }));
    controller.startDownloadRun(ids.mid(8, 2));
    EXPECT_EQ(countWith(QueueStatus::running), 2);
    controller.startDownloadRun(ids.mid(10, 4));  // in the slots that the held rows leave
    EXPECT_EQ(countWith(QueueStatus::running), 6);
    release(text("p"));
    ASSERT_TRUE(waitUntil([this] { return row(6).status == QueueStatus::running; }));
    EXPECT_EQ(row(8).status, QueueStatus::queued);
    release(text("5"));
    ASSERT_TRUE(waitUntil([this] { return row(8).status == QueueStatus::complete; }));
    release(text("s678"));
    ASSERT_TRUE(waitUntil([this] {
        return controller.runs().activeDownloadRuns() == 2 &&
               row(6).status == QueueStatus::complete;
    }));
    release(text("q"));
    ASSERT_TRUE(waitUntil([this] { return controller.runs().activeDownloadRuns() == 1; }));
    EXPECT_EQ(controller.activeSummary(), text("Downloading 1 song at once"));
    release(text("t"));
    waitForEnd();
    EXPECT_EQ(countWith(QueueStatus::complete), 14);
    EXPECT_EQ(most, 6);
}

TEST_F(EngineTest, AnotherProgramsSongIsWaitedForAndFound) {
    const QStringList links{link("hold", "both of us"), link("song", "own")};
    addReadRows(links);
    Controller other(machine.supervisor, quickSetup(machine));
    other.setEventName(text("Prom"));
    addReadRows(other, {links.first()});
    other.startDownloads();
    ASSERT_TRUE(
        waitUntil([this] { return machine.calls().contains(text("download both of us")); }));
    controller.startDownloads();
    // It holds no slot meanwhile, and a row behind it passes.
    ASSERT_TRUE(waitUntil([this] { return row(1).status == QueueStatus::complete; }));
    ASSERT_TRUE(waitUntil([this] { return row(0).status == QueueStatus::queued; }));
    machine.tell(text("go"));
    ASSERT_TRUE(waitUntil([&] {
        return controller.runs().activeDownloadRuns() + other.runs().activeDownloadRuns() == 0;
    }));
    EXPECT_EQ(row(0).detail, text("Already Downloaded"));
    EXPECT_EQ(machine.calls().count(text("download both of us")), 1);
    other.shutDown();
    EXPECT_TRUE(waitUntil([this] { return left().size() == 2; }));
}

TEST_F(EngineTest, SongsOfOneNameAllArriveUnlessTheyAreOneSong) {
    addReadRows({link("same", "1")});
    controller.setTagsLoudness(true);
    downloadAll();
    EXPECT_TRUE(taggedLoudness(row(0).outputPath));
    machine.installSong(3.0);
    addReadRows(links("same", {"1#x", "2", "3", "3?x"}));
    machine.installSong(3.0);
    downloadAll();
    EXPECT_EQ(countWith(QueueStatus::complete), controller.queue().size());
    EXPECT_TRUE(waitUntil([this] { return left().size() == 2; }));
    EXPECT_EQ(left(), QStringList({text("track (2) [track].mp3"), text("track [track].mp3")}));
    EXPECT_EQ(row(1).outputPath, row(0).outputPath);
    EXPECT_EQ(row(2).outputPath, row(3).outputPath);
    EXPECT_NE(row(2).outputPath, row(0).outputPath);
}

TEST_F(EngineTest, CompleteIsWhatIsThereAndPlays) {
    addReadRows({link("nothing", "a"), link("text", "b"), link("cover", "c"), link("stale", "d"),
                 link("both", "e")});
    const QString failed = text("Download failed. Check the link or try again.");
    const QString saved = text("Saved; trimmed silent start/end");
    const QString stale =
        controller.eventFolder() + text("/.reelcrate/") + songKey(row(3).url, 0) + text(".mp3");
    QDir().mkpath(stale);
    writeFile(stale + text("/d [d].mp3.part"), "of no use");
    writeFile(stale + text("/d [d].webm"), "a page");
    const QString abandoned = controller.eventFolder() + text("/.reelcrate/abandoned");
    QDir().mkpath(abandoned);
    std::filesystem::last_write_time(abandoned.toStdString(),
                                     std::filesystem::file_time_type::clock::now() - 73h);
    writeFile(machine.path(text(".bash_profile")), "exec true\n");
    const_cast<QueueStore&>(controller.queue()).update(row(4).id, [](DownloadItem& each) {
        each.duration = text("3:45");
    });
    downloadAll();
    EXPECT_EQ(allDetails(), QStringList({failed, failed, saved, saved, saved}));
    EXPECT_TRUE(waitUntil([this] { return left().size() == 6; }))
        << left().join(u'|').toStdString();
    EXPECT_EQ(left().mid(1),
              QStringList({text("c [c].mp3"), text("d [d].mp3"), text("first [1].mp3"),
                           text("second [2].mp3"), text("whole [whole].mp3")}));
    EXPECT_TRUE(log().contains(text("there is no file"))) << log().toStdString();
    EXPECT_TRUE(log().contains(text("d [d].webm was fetched, but is not whole")));
    EXPECT_TRUE(waitUntil([this] { return log().contains(text("login profile")); }));
    EXPECT_TRUE(waitUntil([&] { return !QFileInfo::exists(abandoned); }));
    EXPECT_EQ(row(4).outputPath, eventFile(text("second [2].mp3")));
    EXPECT_EQ(row(4).note, QString()) << "the length is of neither";
}

TEST_F(EngineTest, WhatIsThereIsLookedForAgainBeforeADownload) {
    addReadRows(links("song", {"A Longer Title", "A Longer"}));
    QDir().mkpath(controller.eventFolder());
    // What looks like a song from outside, and like the song by its name, has to play as well.
    const QString torn = eventFile(text("A Longer Title [y].mp3"));
    const QString song = machine.toolFolder() + text("/song.mp3");
    const QString whole = eventFile(text("A Longer Title [x].mp3"));
    QFile::copy(song, whole);
    QByteArray bytes = readFile(song);
    const qsizetype third = bytes.size() / 3;
    writeFile(torn, bytes.replace(third, third, QByteArray(third, 'x')));
    download(0);
    EXPECT_EQ(row(0).detail, text("Already Downloaded"));
    EXPECT_EQ(row(0).outputPath, whole);
    EXPECT_TRUE(log().contains(torn + text(" is there, but no whole song (")));
    EXPECT_EQ(machine.calls().count(text("download A Longer Title")), 0);

    // But not what another song has just written.
    QFile::remove(row(0).outputPath);
    addReadRows({link("song", "A Longer Title#2")});
    download(2);
    download(1);
    EXPECT_EQ(row(1).outputPath, eventFile(text("A Longer [A Longer].mp3")));
}

TEST_F(EngineTest, ReadingChangesNoRowThatARunHasTaken) {
    controller.setPastedLinks(link("slowread", "a") + u' ' + link("unreadable", "b"));
    controller.addSongsFromFieldOrClipboard();
    controller.addSongs(link("slowread", "c"));
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 2; }));
    downloadAll();
    const QStringList after = allDetails();
    EXPECT_EQ(countWith(QueueStatus::complete), 3) << after.join(u'|').toStdString();
    machine.tell(text("go-read"));
    ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    EXPECT_EQ(allDetails(), after);
    EXPECT_EQ(countWith(QueueStatus::complete), 3);
}

TEST_F(EngineTest, EachOfSeveralSongsOnAPageIsARow) {
    addAndRead(link("three", "p") + u' ' + link("feed", "f"));
    EXPECT_EQ(titles(), QStringList({text("p1"), text("p2"), text("p3"), text("f1"),
                                     text("Item 2 of http://site/feed/f"), text("f3")}));
    EXPECT_EQ(row(4).status, QueueStatus::failed);
    EXPECT_EQ(summaries.last(), text("Added 3 songs; 1 could not be read"));
    EXPECT_TRUE(log().contains(text("ERROR: the second is gone\n")));
    controller.resolution().retryResolveInfo(row(4));
    ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    EXPECT_EQ(row(4).title, text("f2"));
    downloadAll();
    EXPECT_EQ(countWith(QueueStatus::complete), 6);
    EXPECT_TRUE(left().contains(text("p3 [p3].mp3")));
    addAndRead(link("three", "p"));
    EXPECT_EQ(summaries.last(), text("No new links added"));
}

TEST_F(EngineTest, ASpotifyRowIsSearchedForAndFailsInItsOwnWords) {
    const QString leftOut = text("x generated an exception: y\n");
    machine.tell(text("spotdl.txt"), (leftOut + sample("spotdl_playlist.txt")).toUtf8());
    addAndRead(text("https://open.spotify.com/playlist/x"));
    EXPECT_TRUE(log().contains(leftOut));
    ASSERT_GT(controller.queue().size(), 1);
    EXPECT_EQ(row(0).source, SourceType::spotify);
    machine.installScript(
        text("yt-dlp"),
        "#!/bin/bash\necho '[youtube:search] Playlist Login: Downloading 0 items'\n");
    download(0);
    EXPECT_EQ(row(0).cause, FailureCause::noMatch);
    EXPECT_EQ(row(0).detail,
              text("Could not find a matching YouTube result for this Spotify reference."));
    EXPECT_TRUE(log().contains(text("ytsearch1:") + row(0).title + text(" official audio")));

    // That is said only of a search that was made.
    machine.installScript(text("yt-dlp"), "#!/bin/bash\necho login \"$*\"; exit 1\n");
    download(0);
    EXPECT_EQ(row(0).cause, FailureCause::other);
    EXPECT_EQ(row(0).detail, text("Download failed. Check the link or try again."));
}

TEST_F(EngineTest, ASiteThatLimitsDownloadsIsAskedNoMore) {
    QStringList links;
    for (int i = 1; i <= 15; ++i)
        links.append(link("limited", text("song%1").arg(i)));
    const QStringList others{text("http://other/song/x"), text("http://other/song/y")};
    addReadRows(links + others);
    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 6; }));
    machine.tell(text("go"));
    waitForEnd();

    // Each of the first two that failed made room for another.
    EXPECT_EQ(linksWith(QueueStatus::failed), links.first(8));
    EXPECT_EQ(linksWith(QueueStatus::waiting), links.last(7));
    EXPECT_EQ(linksWith(QueueStatus::complete), others);
    EXPECT_EQ(machine.calls().filter(text("download song")).size(), 8);
    EXPECT_EQ(row(0).detail, text("The site limits downloads. Try again in an hour."));
    EXPECT_EQ(row(0).cause, FailureCause::siteLimit);
    EXPECT_EQ(row(14).detail, text("Ready to download"));
    EXPECT_EQ(row(14).progress, 0.0);
    EXPECT_EQ(controller.activeSummary(),
              text("site asks to wait: try again in an hour (7 songs not started)"));
    EXPECT_TRUE(log().contains(controller.activeSummary()));
    EXPECT_TRUE(controller.runs().crawls().progressCrawlTokens().isEmpty());

    // The next run tries again.
    download(14);
    EXPECT_EQ(row(14).status, QueueStatus::failed);
    EXPECT_EQ(controller.activeSummary(), text("Download run finished"));
}

TEST_F(EngineTest, ARowThatWaitsForAnotherProgramGoesBackToo) {
    const QString waiting = link("limited", "waiting");
    QDir().mkpath(controller.eventFolder());
    WorkingFolder elsewhere(controller.eventFolder(), songKey(waiting, 0) + text(".mp3"));
    ASSERT_EQ(elsewhere.lock(), WorkingFolder::Lock::held);
    addReadRows({waiting, link("limited", "a"), link("limited", "b"), link("limited", "c")});
    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 3; }));
    ASSERT_TRUE(waitUntil([this] { return row(0).status == QueueStatus::queued; }));
    machine.tell(text("go"));
    waitForEnd();
    EXPECT_EQ(linksWith(QueueStatus::waiting), QStringList(waiting));
    EXPECT_EQ(controller.activeSummary(),
              text("site asks to wait: try again in an hour (1 song not started)"));
}

TEST_F(EngineTest, AnOldDownloaderIsNamedOnceBehindAFailure) {
    machine.tell(text("version"), "2025.04.30\n");
    controller.tools().checkTools();
    ASSERT_TRUE(waitUntil([this] { return !controller.tools().isCheckingTools(); }));
    addReadRows({link("broken", "a"), link("refused", "b"), link("song", "c")});
    const QString notice = text("yt-dlp 2025.04.30, ");
    downloadAll();
    EXPECT_EQ(row(1).detail, text("yt-dlp is too old for this site. Run Setup."));
    EXPECT_EQ(log().count(notice), 1);
    EXPECT_GT(log().indexOf(notice), log().indexOf(text("ERROR: ")));

    download(1);
    EXPECT_EQ(log().count(notice), 1);  // the log of this run
    machine.tell(text("version"), "2999.01.01\n");
    controller.tools().checkTools();
    ASSERT_TRUE(waitUntil([this] { return !controller.tools().isCheckingTools(); }));
    download(1);
    EXPECT_EQ(log().count(notice), 0);
    EXPECT_EQ(row(1).cause, FailureCause::other);
}

TEST_F(EngineTest, ASpotifyRowIsDownloadedFromTheBestHit) {
    QString listed = sample("spotdl_playlist.txt");
    listed.insert(listed.lastIndexOf(u']'),
                  text(R"(, {"name": "Third", "artist": "Trio", "duration": 200,
                  "url": "https://open.spotify.com/track/3"})"));
    machine.tell(text("spotdl.txt"), listed.toUtf8());
    addAndRead(text("https://open.spotify.com/playlist/x"));
    const auto hit = [&](const char* name, const char* suffix, double seconds) {
        return QJsonObject{{text("url"), link("song", text(name))},
                           {text("title"), row(0).title + text(suffix)},
                           {text("duration"), seconds}};
    };
    const double seconds = secondsOfDuration(row(0).duration).value();
    const QJsonArray hits{hit("sung", " (Karaoke)", seconds), hit("long", "", seconds + 40),
                          hit("right", "", seconds + 2), hit("sped", " sped up", seconds)};
    machine.tell(text("playlist.json"),
                 QJsonDocument(QJsonObject{{text("entries"), hits}}).toJson());
    const auto calls = [&] { return machine.calls().filter(text("download ")); };
    download(0);
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_THAT(calls(), ElementsAre(text("download right")));
    EXPECT_TRUE(log().contains(text("3 of 4 hits: ") + row(0).title));

    const auto listOnly = [&](const QJsonObject& only) {
        machine.tell(text("playlist.json"),
                     QJsonDocument(QJsonObject{{text("entries"), QJsonArray{only}}}).toJson());
    };
    // What is as long may still be another song.
    listOnly(hit("other", "", 200));
    download(2);
    EXPECT_TRUE(log().contains(text("1 of 1 hits (best match is uncertain): ")));
    EXPECT_TRUE(row(2).note.startsWith(text("Best match is uncertain; ")));
    EXPECT_TRUE(
        waitUntil([this] { return log().contains(row(2).title + text(" - ") + row(2).note); }));
    EXPECT_GT(row(2).playingSeconds, 0);

    // None is as long as this one.
    listOnly(hit("short", "", 1));
    download(1);
    EXPECT_EQ(row(1).status, QueueStatus::complete);
    EXPECT_TRUE(calls().last().startsWith(text("download ytsearch1:")));
}

TEST_F(EngineTest, ASongOfAListIsFoundLikeASpotifyRow) {
    QDir().mkpath(controller.eventFolder());
    const QString there = eventFile(text("Queen - Bicycle Race [x].mp3"));
    writeFile(there, silentMp3());
    writeFile(eventFile(text("ABBA - Waterloo [y].mp3")),
              silentMp3());  // which is another's length
    QSignalSpy noted(&controller, &Controller::songListNoted);
    const auto add = [&](const char* list) {
        return controller.addSongList(textOfList(QByteArray(list)), text("The list"));
    };
    EXPECT_TRUE(add("ABBA - Waterloo (2:46)\nhello\nqueen – bicycle race\nNobody - Nothing"));
    EXPECT_EQ(titles(), (QStringList{text("ABBA - Waterloo"), text("queen - bicycle race"),
                                     text("Nobody - Nothing")}));
    EXPECT_FALSE(isReading());
    ASSERT_TRUE(waitUntil([this] { return row(1).status == QueueStatus::complete; }));
    EXPECT_EQ(row(1).outputPath, there);
    EXPECT_EQ(row(1).detail, text("Already Downloaded"));
    EXPECT_EQ(controller.activeSummary(), text("Added 2; 1 already downloaded; 1 line not read "
                                               "as a song (see the log)"));
    EXPECT_TRUE(noted.first().first().toString().contains(text("line 2: hello")));
    EXPECT_TRUE(add("hello\nhello"));
    EXPECT_EQ(controller.eventAccount().unreadLines.size(), 2);  // each line once

    const auto hit = [](const char* name, double seconds) {
        return QJsonObject{{text("url"), link("song", text(name))},
                           {text("title"), text("ABBA - Waterloo")},
                           {text("duration"), seconds}};
    };
    const QJsonArray hits{hit("long", 300), hit("right", 167)};
    machine.tell(text("playlist.json"),
                 QJsonDocument(QJsonObject{{text("entries"), hits}}).toJson());
    download(0);
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_THAT(machine.calls(), testing::Contains(text("download right")));
    EXPECT_TRUE(QFileInfo(row(0).outputPath).fileName().startsWith(text("right")));
    // What was not read stands in the run's log, too.
    EXPECT_TRUE(log().contains(text("No song, line 2: hello")));

    machine.installScript(text("yt-dlp"),
                          "#!/bin/bash\necho '[youtube:search] Playlist x: Downloading 0 items'\n");
    download(2);
    EXPECT_EQ(row(2).cause, FailureCause::noMatch);
    EXPECT_EQ(row(2).detail, text("Could not find a matching YouTube result for this song."));
    EXPECT_TRUE(log().contains(text("ytsearch1:Nobody - Nothing official audio")));
    EXPECT_FALSE(ResolutionDriver::shouldRetryInfoForFailedItem(row(2)));

    EXPECT_TRUE(add("Waterloo by Abba"));
    EXPECT_EQ(controller.queue().size(), 3);
    EXPECT_EQ(controller.activeSummary(), text("No new songs added; 1 named before"));
    EXPECT_FALSE(add(QByteArray("A - B\n").repeated(5001).constData()));
    EXPECT_FALSE(add(" "));
    EXPECT_EQ(controller.activeSummary(), text("The list is empty."));
    controller.clearQueue();
    EXPECT_EQ(controller.eventAccount().unreadLines, QStringList());
    EXPECT_EQ(log(), QString());
}

TEST_F(EngineTest, ASpotifyLinkThatWasNotListedIsReadAgainAndNeverSearchedFor) {
    machine.tell(text("spotdl.txt"), sample("spotdl_429.txt").toUtf8());
    addAndRead(text("https://open.spotify.com/playlist/x https://open.spotify.com/track/y"));
    controller.startDownloads();
    controller.startDownloads();  // while they are read
    ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    EXPECT_EQ(countWith(QueueStatus::failed), 2);
    EXPECT_EQ(machine.calls().filter(text("download")).size(), 0);
    EXPECT_EQ(machine.calls().size(), 4);

    // When it can be listed, what it turns out to be is downloaded.
    machine.tell(text("spotdl.txt"), sample("spotdl_playlist.txt").toUtf8());
    controller.startDownloads();
    ASSERT_TRUE(
        waitUntil([this] { return !isReading() && controller.runs().activeDownloadRuns() == 0; }));
    EXPECT_TRUE(waitUntil([this] {
        return countWith(QueueStatus::waiting) + countWith(QueueStatus::complete) ==
               controller.queue().size();
    }));
    EXPECT_GT(machine.calls().filter(text("download")).size(), 0);
}

TEST_F(EngineTest, RowsThatAreGoneStayGone) {
    // One is deleted while it is read; the queue is cleared while another is downloaded.
    addReadRows({link("song", "stays")});
    controller.setPastedLinks(link("slowread", "gone"));
    controller.addSongsFromFieldOrClipboard();
    ASSERT_TRUE(waitUntil([this] { return machine.calls().contains(text("read gone")); }));
    EXPECT_TRUE(controller.editor().deleteQueueItems({row(1).id}));
    machine.tell(text("go-read"));
    addAndRead(link("song", "next"));
    EXPECT_EQ(titles(), (QStringList{text("stays"), text("next")}));

    addReadRows({link("hold", "held")});
    controller.startDownloads();
    EXPECT_FALSE(controller.editor().deleteQueueItems({row(0).id}));
    controller.clearQueue();
    EXPECT_EQ(controller.activeSummary(), text("Ready"));
    machine.tell(text("go"));
    waitForEnd();
    EXPECT_EQ(controller.queue().size(), 0);
    EXPECT_EQ(summaries.last(), text("Download run finished"));
    EXPECT_TRUE(QFile::exists(eventFile(text("held [held].mp3"))));
}

TEST_F(EngineTest, AnEmptyListingIsReadAsTheVideoThatTheLinkNames) {
    const QString list = text("http://site/song/watched?list=x&from=youtube.com");
    addAndRead(list);
    EXPECT_EQ(machine.calls().size(), 2);
    EXPECT_EQ(row(0).source, SourceType::youtube);
    EXPECT_EQ(row(0).status, QueueStatus::waiting);
    addAndRead(link("song", "b"));
    controller.editor().deleteQueueItems({row(0).id});
    addAndRead(list);
    EXPECT_EQ(controller.eventAccount().cutListings.size(), 1) << "twice the same";
    controller.clearQueue();
    EXPECT_EQ(controller.eventAccount().cutListings, QStringList());
}

TEST_F(EngineTest, IntakeSaysWhatItFound) {
    controller.addSongsFromFieldOrClipboard();  // an empty field, and no clipboard here
    EXPECT_EQ(controller.activeSummary(), text("Copy a share link, then click Add Songs"));
    controller.setPastedLinks(text("HTTPS://SITE/X no link"));
    controller.addSongsFromFieldOrClipboard();
    EXPECT_FALSE(controller.pastedLinks().isEmpty());

    const QString song = link("song", "a");
    EXPECT_EQ(controller.addLinksToQueue({song, song}).size(), 2);
    EXPECT_EQ(controller.activeSummary(), text("Reading 2 links"));
    EXPECT_TRUE(controller.addLinksToQueue({song}).isEmpty());
    EXPECT_EQ(controller.activeSummary(), text("No new links added"));
    EXPECT_TRUE(controller.addLinksToQueue({}).isEmpty());
}

TEST_F(EngineTest, AFolderThatCannotBeMadeEndsTheRun) {
    addReadRows({link("song", "a")});
    const QString home = machine.path(text("out"));
    ASSERT_TRUE(writeFile(home, "a file"));
    for (const QString& folder : {home, machine.path(text("$HOME/x"))}) {
        SCOPED_TRACE(folder.toStdString());
        controller.setOutputFolder(folder);
        controller.startDownloads();
        EXPECT_EQ(controller.runs().activeDownloadRuns(), 0);
        EXPECT_EQ(controller.activeSummary(), text("Preparing event folder"));
        EXPECT_TRUE(log().startsWith(text("Could not create output folders: ")));
        EXPECT_EQ(row(0).status, QueueStatus::waiting);
    }
    EXPECT_FALSE(QDir(machine.path(text("$HOME"))).exists());
}

TEST_F(EngineTest, NothingStartsWithoutTheTools) {
    const QString tool = machine.toolFolder() + text("/yt-dlp");
    const QString old = machine.path(text("old"));
    QDir().mkpath(old);
    ASSERT_TRUE(QFile::rename(tool, old + text("/yt-dlp")));
    ControllerSetup setup = quickSetup(machine);
    setup.toolPlaces.systemFolders.prepend(old);
    Controller own(machine.supervisor, setup);
    addReadRows(own, {link("song", "a")});
    for (const bool isReady : {false, true}) {
        writeFile(old + text("/yt-dlp"),
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
    EXPECT_EQ(controller.activeSummary(), text("Stopped 2 songs"));
    EXPECT_FALSE(controller.canStop(firstAndLast));
    EXPECT_FALSE(controller.stopQueueItems(firstAndLast)) << "twice";
    EXPECT_EQ(linksWith(QueueStatus::waiting), QStringList({links.first(), links.last()}));
    EXPECT_EQ(linksWith(QueueStatus::running), links.mid(1, 6));
    EXPECT_EQ(row(0).detail, text("Ready to download"));
    EXPECT_EQ(row(0).progress, 0.0);
    EXPECT_TRUE(log().endsWith(text("1/9 Stopped.\n")));

    for (const QChar name : text("2345678"))
        machine.tell(text("go-") + name);
    waitForEnd();
    EXPECT_EQ(linksWith(QueueStatus::complete), links.mid(1, 7));
    EXPECT_EQ(linksWith(QueueStatus::waiting), QStringList({links.first(), links.last()}));
    EXPECT_FALSE(machine.calls().contains(text("download 9")));
    EXPECT_TRUE(summaries.contains(text("Finished 2 of 7; downloading up to 6 songs at once")));
    EXPECT_EQ(summaries.last(), text("Download run finished"));
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
        addReadRows({link(kind, text(name))});
        const QUuid id = controller.queue().rows().last().id;
        const auto status = [&] { return controller.queue().find(id)->status; };
        const QString isThere = machine.toolFolder() + u'/' + text(sign);
        const QStringList before = left();
        controller.setTagsLoudness(text(sign) == u"in-measure");  // which needs all of the song
        controller.startDownloadRun({id});
        ASSERT_TRUE(waitUntil([&] { return QFile::exists(isThere); }));
        EXPECT_TRUE(controller.stopQueueItems({id}));
        EXPECT_EQ(status(), QueueStatus::waiting);
        controller.startDownloadRun({id});
        EXPECT_EQ(status(), QueueStatus::queued) << "until what was stopped has ended";
        waitForEnd();
        EXPECT_EQ(status(), QueueStatus::complete);
        EXPECT_EQ(controller.queue().find(id)->detail, text("Saved; trimmed silent start/end"));
        const QString file = text(name) + text(" [%1].mp3");
        QStringList expected = before + QStringList(file.arg(text(name)));
        expected.sort();
        EXPECT_TRUE(waitUntil([&] { return left() == expected; }))
            << left().join(u' ').toStdString();
    }
    EXPECT_TRUE(machine.calls().contains(text("resume half")));
}

TEST_F(EngineTest, NothingOfAStoppedDownloadArrivesLater) {
    addReadRows({link("converting", "a")});
    controller.startDownloads();
    const QString isThere = machine.toolFolder() + text("/converts");
    ASSERT_TRUE(pollUntil([&] { return QFile::exists(isThere); }));  // so much is on its way
    controller.stopAll();
    waitForEnd();
    EXPECT_EQ(row(0).detail, text("Ready to download"));
    EXPECT_EQ(log(), text("1/1 Stopped.\n"));
}

TEST_F(EngineTest, ASongThatIsThereIsNotDoubtedForAStop) {
    installHaltingConverter();
    addReadRows({link("song", "measure-me")});
    QDir().mkpath(controller.eventFolder());
    const QString song = eventFile(text("measure-me [measure-me].mp3"));
    ASSERT_TRUE(QFile::copy(machine.toolFolder() + text("/song.mp3"), song));
    controller.startDownloads();
    ASSERT_TRUE(
        waitUntil([this] { return QFile::exists(machine.toolFolder() + text("/in-measure")); }));
    controller.stopAll();
    downloadAll();
    EXPECT_EQ(row(0).detail, text("Already Downloaded"));
    EXPECT_EQ(row(0).outputPath, song);
    EXPECT_TRUE(machine.calls().isEmpty());
}

TEST_F(EngineTest, StoppingAllEndsEveryRun) {
    const QString elsewhereToo = link("hold", "elsewhere");
    QDir().mkpath(controller.eventFolder());
    WorkingFolder elsewhere(controller.eventFolder(), songKey(elsewhereToo, 0) + text(".mp3"));
    ASSERT_EQ(elsewhere.lock(), WorkingFolder::Lock::held);
    QStringList links{elsewhereToo};
    for (const char* name : {"a", "a#x", "b", "c", "d", "e", "f", "g"})
        links.append(link("hold", text(name)));
    addReadRows(links);
    const QList<QUuid> ids = allIds();
    controller.startDownloadRun(ids.first(4));
    controller.startDownloadRun(ids);
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 5; }));
    ASSERT_TRUE(waitUntil([this] { return row(0).status == QueueStatus::queued; }));
    EXPECT_EQ(controller.runs().activeDownloadRuns(), 2);
    EXPECT_TRUE(controller.canStopAll());
    controller.stopAll();
    EXPECT_FALSE(controller.canStopAll());
    EXPECT_EQ(countWith(QueueStatus::waiting), 9);
    EXPECT_EQ(controller.activeSummary(), text("Stopped 9 songs"));
    controller.stopAll();
    waitForEnd();
    EXPECT_EQ(summaries.last(), text("Download run stopped"));
    EXPECT_EQ(machine.calls().size(), 5) << "nothing has started in the slots";
    EXPECT_EQ(left(), QStringList(text(".reelcrate")));
}

TEST_F(EngineTest, ARowThatIsHeldMayBeStoppedAlone) {
    addReadRows(links("hold", {"a", "a#x", "a#y"}));
    controller.startDownloads();
    EXPECT_TRUE(controller.stopQueueItems({row(1).id}));
    machine.tell(text("go"));
    waitForEnd();
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_EQ(row(1).status, QueueStatus::waiting);
    EXPECT_EQ(row(2).detail, text("Already Downloaded"));
}

TEST_F(EngineTest, AStopThatComesTooLateForASongShowsIt) {
    const QString saved = text("Saved; trimmed silent start/end");
    for (const bool isStartedAgain : {false, true}) {
        const QString name = QString::number(int{isStartedAgain});
        addReadRows({link("song", name)});
        const qsizetype late = isStartedAgain;
        controller.startDownloads();
        ASSERT_TRUE(waitUntil([&] { return row(late).detail == text("Trimming Song"); }));
        const QString song = eventFile(text("%1 [%1].mp3").arg(name));
        ASSERT_TRUE(pollUntil([&] { return QFile::exists(song); }));  // and nobody told the row
        EXPECT_TRUE(controller.stopQueueItems({row(late).id}));
        EXPECT_EQ(row(late).status, QueueStatus::waiting);
        if (isStartedAgain)
            controller.startDownloads();
        waitForEnd();
        EXPECT_EQ(row(late).status, QueueStatus::complete);
        EXPECT_EQ(row(late).outputPath, song);
        EXPECT_EQ(row(late).detail, isStartedAgain ? text("Already Downloaded") : saved);
        EXPECT_EQ(details.contains(saved), !isStartedAgain) << "of a row that has begun anew";
        EXPECT_EQ(summaries.last(), text("Download run finished"));
    }
}

TEST_F(EngineTest, AReadingThatIsStoppedIsMadeUpForAtTheStart) {
    controller.setPastedLinks(link("slowread", "a") + u' ' + link("song", "b") + u' ' +
                              link("song", "c"));
    controller.addSongsFromFieldOrClipboard();
    const auto hasRead = [this](const char* name) {
        return machine.calls().count(text("read ") + text(name));
    };
    ASSERT_TRUE(waitUntil([&] { return hasRead("a") == 1; }));
    EXPECT_TRUE(controller.stopQueueItems({row(0).id, row(2).id}));
    EXPECT_EQ(controller.activeSummary(), text("Stopped 2 songs"));
    for (const int index : {0, 2}) {
        EXPECT_EQ(row(index).status, QueueStatus::waiting);
        EXPECT_EQ(row(index).detail, text("Ready to download"));
        EXPECT_EQ(row(index).title, row(index).url);
        EXPECT_TRUE(Controller::isDownloadable(row(index)));
    }
    ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    EXPECT_EQ(row(1).title, text("b"));

    // To start it is to read it first; that can be stopped again, and nothing starts then.
    controller.startDownloadRun({row(0).id});
    ASSERT_TRUE(waitUntil([&] { return hasRead("a") == 2; }));
    EXPECT_TRUE(controller.canStopAll());
    controller.stopAll();
    machine.tell(text("go-read"));
    addAndRead(link("song", "d"));
    EXPECT_EQ(row(0).title, row(0).url);
    EXPECT_EQ(controller.runs().activeDownloadRuns(), 0);
    EXPECT_EQ(hasRead("c"), 0);
    controller.resolution().retryResolveInfo(row(0));
    ASSERT_TRUE(waitUntil([this] { return !isReading(); }));
    EXPECT_EQ(row(0).status, QueueStatus::waiting);

    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return countWith(QueueStatus::complete) == 4; }));
    EXPECT_EQ(titles(), QStringList({text("a"), text("b"), text("c"), text("d")}));
}

TEST_F(EngineTest, WhatWasReadForADownloadWaitsForASlotUnlessItIsStopped) {
    addReadRows(links("hold", 6));
    controller.startDownloads();
    controller.addSongs(link("slowread", "a") + u' ' + link("slowread", "b"));
    const QSet<QUuid> unread{row(6).id, row(7).id};
    EXPECT_TRUE(controller.stopQueueItems(unread));
    controller.startDownloadRun(unread.values());
    EXPECT_EQ(controller.activeSummary(), text("Reading link again"));
    machine.tell(text("go-read"));
    ASSERT_TRUE(
        waitUntil([this] { return row(6).title == text("a") && row(7).title == text("b"); }));
    EXPECT_TRUE(controller.stopQueueItems({row(6).id}));
    machine.tell(text("go"));
    ASSERT_TRUE(waitUntil([this] { return countWith(QueueStatus::complete) == 7; }));
    EXPECT_EQ(row(6).status, QueueStatus::waiting);
}

TEST_F(EngineTest, ADownloadThatBeganBeforeItsReadingGoesOnWithoutIt) {
    controller.addSongs(link("slowread", "a"));
    ASSERT_TRUE(waitUntil([this] { return machine.calls().size() == 1; }));
    controller.startDownloads();
    EXPECT_EQ(row(0).status, QueueStatus::running);
    EXPECT_TRUE(controller.stopQueueItems({row(0).id}));
    EXPECT_FALSE(row(0).isResolvingInfo);
    EXPECT_EQ(row(0).status, QueueStatus::waiting);
    downloadAll();
    EXPECT_EQ(row(0).status, QueueStatus::complete);
    EXPECT_EQ(machine.calls().count(text("read a")), 1);
}

TEST_F(EngineTest, ShuttingDownLeavesNoStumpAndChangesNoRow) {
    addReadRows({link("converting", "a"), link("song", "b")});
    const QString earlier = eventFile(text("c [c].mp3"));
    QDir().mkpath(controller.eventFolder());
    writeFile(earlier, "an earlier song");
    controller.startDownloads();
    ASSERT_TRUE(waitUntil([this] { return countWith(QueueStatus::complete) == 1; }));
    ASSERT_TRUE(waitUntil([this] {
        return QFile::exists(machine.toolFolder() + text("/converts")) &&
               row(0).detail == text("Downloading Song");
    }));
    controller.shutDown();
    QCoreApplication::processEvents();
    EXPECT_EQ(row(0).status, QueueStatus::running);
    EXPECT_THAT(left(), ElementsAre(text(".reelcrate"), text("b [b].mp3"), text("c [c].mp3")));
}

}  // namespace
}  // namespace reelcrate
