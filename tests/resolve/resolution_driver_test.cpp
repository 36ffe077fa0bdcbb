#include "resolve/resolution_driver.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "queue/queue_store.h"
#include "support/machine.h"
#include "support/rows.h"
#include "support/texts.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QDir>

#include <chrono>
#include <memory>
#include <vector>

namespace reelcrate {
namespace {

using namespace std::chrono_literals;

const ResolutionTiming quick{1ms, 1ms, 1ms};

/// A queue and its driver, on stand-in tools.
class ResolutionDriverTest : public testing::Test {
protected:
    ResolutionDriverTest() {
        for (const char* tool : {"yt-dlp", "spotdl"})
            machine.install(text(tool));
        QDir().mkpath(target.folder);
    }
    ~ResolutionDriverTest() override {
        background.requestStop();
        shell.endEverything();
        background.join();
        mainQueue.close();
    }

    static QString link(const char* kindAndName) {
        return text("http://site/") + text(kindAndName);
    }

    /// A driver that notes what it says. Its readings may outlive the test's interest.
    ResolutionDriver* makeDriver(const ResolutionTiming& timing) {
        drivers.push_back(std::make_unique<ResolutionDriver>(
            queue, shell, discovery, library, [this] { return target; }, background, mainQueue,
            timing));
        ResolutionDriver* driver = drivers.back().get();
        QObject::connect(driver, &ResolutionDriver::summaryChanged,
                         [this](const QString& summary) { summaries.append(summary); });
        QObject::connect(driver, &ResolutionDriver::noted,
                         [this](const QString& note) { notes.append(note); });
        return driver;
    }

    DownloadItem append(const QString& url, SourceType source = SourceType::link) {
        DownloadItem row = makeRow(source, {}, url);
        row.isResolvingInfo = true;
        row.progress = 0.5;
        queue.append({row});
        return row;
    }

    const DownloadItem& row(qsizetype index) const { return queue.rows().at(index); }

    /// Reads one more link, as quickly as may be: what could have come by then has come.
    void readAnother() {
        ResolutionDriver* driver = makeDriver(quick);
        driver->resolveInfo({append(link("song/another"))});
        const qsizetype index = queue.size() - 1;
        ASSERT_TRUE(waitUntil([&] { return row(index).reading != LinkReading::open; }));
    }

    /// Reads the link of a row of its own, and waits until that is done.
    void read(const QString& url, SourceType source = SourceType::link) {
        ResolutionDriver* driver = makeDriver(quick);
        const QUuid id = append(url, source).id;
        driver->resolveInfo({*queue.find(id)});
        ASSERT_TRUE(waitUntil([&] {
            const DownloadItem* found = queue.find(id);
            return found == nullptr || !found->isResolvingInfo;
        }));
    }

    Machine machine;
    EventTarget target{machine.path(text("Event")), DownloadMode::audio};
    ShellRunner shell{machine.supervisor};
    ToolDiscovery discovery{shell, machine.places()};
    QueueStore queue;
    EventLibrary library;
    BackgroundTasks background;
    MainQueue mainQueue;
    std::vector<std::unique_ptr<ResolutionDriver>> drivers;
    QStringList summaries;
    QStringList notes;
};

TEST_F(ResolutionDriverTest, TakesItsTimeForEachLink) {
    ResolutionDriver* driver = makeDriver({1h, 1ms, 1ms});
    driver->resolveInfo({append(link("song/a")), append(link("song/b"))});
    ASSERT_TRUE(waitUntil([&] { return machine.calls().contains(text("read a")); }));
    readAnother();
    EXPECT_TRUE(row(0).isResolvingInfo);
    driver->stop({row(0).id});
    readAnother();
    EXPECT_FALSE(row(0).isResolvingInfo);
    EXPECT_FALSE(machine.calls().contains(text("read b")));
}

TEST_F(ResolutionDriverTest, TakesABreathBetweenTries) {
    EXPECT_EQ(ResolutionTiming().pauseAfter(1), 2s);
    EXPECT_EQ(ResolutionTiming().pauseAfter(2), 2800ms);
    qsizetype calls = 0;
    for (const ResolutionTiming& timing :
         {ResolutionTiming{1ms, 1h, 0ms}, ResolutionTiming{1ms, 0ms, 1h}}) {
        ResolutionDriver* driver = makeDriver(timing);
        const QUuid id = append(link("unreadable/c")).id;
        driver->resolveInfo({*queue.find(id)});
        ASSERT_TRUE(waitUntil([&] {
            return queue.find(id)->detail == text("Temporary read issue. Trying again 2 of 3...");
        }));
        readAnother();
        EXPECT_EQ(machine.calls().count(text("read c")), ++calls);
    }
}

TEST_F(ResolutionDriverTest, SaysWhatItReads) {
    ResolutionDriver* driver = makeDriver(quick);
    machine.installScript(text("yt-dlp"), "#!/bin/bash\nexec sleep 600\n");
    driver->resolveInfo({append(link("song/a?b"))});
    driver->resolveInfo({append(link("list?list=x&from=youtube.com"), SourceType::youtube)});
    const QString playlist = text("Reading playlist songs...");
    EXPECT_TRUE(waitUntil([&] { return row(0).detail == text("Loading info for a"); }));
    EXPECT_TRUE(waitUntil([&] { return row(1).detail == playlist; }));
}

TEST_F(ResolutionDriverTest, MakesARowOfEachEntryAndFindsWhatIsThere) {
    machine.tell(text("playlist.json"), R"({"entries": [
        {"title": "One Long Title", "url": "http://site/song/one"},
        {"title": "One Long Title", "url": "http://site/song/one"},
        {"title": "Other Title", "url": "http://site/song/two"}, null,
        {"url": "http://site/song/untitled"}], "playlist_count": 206})");
    ASSERT_TRUE(writeFile(target.folder + text("/One Long Title [x].mp3"), silentMp3(1000)));
    read(text("http://site/list?list=x&from=youtube.com"), SourceType::youtube);
    EXPECT_EQ(queue.size(), 4);
    EXPECT_EQ(row(1).status, QueueStatus::complete);
    EXPECT_EQ(row(1).progress, 1.0);
    EXPECT_EQ(row(2).progress, 0.0);
    EXPECT_EQ(summaries.value(0), text("Added 2; 2 already downloaded; 4 of 206 listed"));
    EXPECT_EQ(notes.size(), 1);
    ASSERT_TRUE(waitUntil([&] { return row(3).title == text("untitled"); }));
    EXPECT_EQ(summaries.last(), text("Added 1 song"));

    ASSERT_TRUE(writeFile(target.folder + text("/other title.mp3"), silentMp3(1000)));
    read(link("song/Other title"));
    EXPECT_EQ(summaries.last(), text("Found 1 already downloaded"));

    // What the user has started meanwhile is the run's.
    const DownloadItem started = makeRow(SourceType::song, text("Other Title"), text("song:x"));
    queue.append({started});
    makeDriver(quick)->lookForSongs({started}, {});
    queue.update(started.id, [](DownloadItem& each) { each.status = QueueStatus::running; });
    readAnother();
    EXPECT_EQ(queue.find(started.id)->status, QueueStatus::running);
}

TEST_F(ResolutionDriverTest, ALinkThatCannotBeReadKeepsItsRow) {
    machine.tell(text("spotdl.txt"), "ERROR: 429\n");
    const struct {
        const char* url;
        SourceType source;
        const char* title;
        qsizetype tries;
    } cases[] = {
        {"http://site/unreadable/x", SourceType::link, "http://site/unreadable/x", 3},
        {"http://site/unreadable/x?list=y", SourceType::youtube, "Playlist link", 3},
        {"https://open.spotify.com/album/x", SourceType::spotify, "Spotify library playlist", 1},
        {"https://open.spotify.com/track/x", SourceType::spotify,
         "https://open.spotify.com/track/x", 1},
    };
    for (const auto& [url, source, title, tries] : cases) {
        SCOPED_TRACE(url);
        QFile::remove(machine.toolFolder() + text("/calls"));
        read(text(url), source);
        const DownloadItem& last = row(queue.size() - 1);
        EXPECT_EQ(last.status, QueueStatus::failed);
        EXPECT_EQ(last.title, text(title));
        EXPECT_EQ(last.reading, LinkReading::open);
        // A playlist link is asked for its list, too, each time.
        EXPECT_EQ(machine.calls().size() - machine.calls().filter(text("list ")).size(), tries);
    }
}

TEST_F(ResolutionDriverTest, TwoRowsOfOneLinkBecomeOneSong) {
    const DownloadItem first = append(link("song/same"));
    const DownloadItem second = append(link("song/same"));
    ResolutionDriver* driver = makeDriver(quick);
    driver->resolveInfo({first, second});
    ASSERT_TRUE(waitUntil([&] {
        return row(0).reading != LinkReading::open && row(1).reading != LinkReading::open;
    }));
    // They are read side by side: either may be the first.
    const bool isFirst = row(0).reading == LinkReading::song;
    EXPECT_EQ(row(isFirst ? 0 : 1).reading, LinkReading::song);
    EXPECT_EQ(row(isFirst ? 1 : 0).reading, LinkReading::repeated);
    EXPECT_EQ(row(isFirst ? 1 : 0).detail, text("Those songs are already in the queue."));
}

TEST_F(ResolutionDriverTest, ReadingAgainBeginsAnew) {
    const DownloadItem failed = append(link("song/a"));
    ResolutionDriver* driver = makeDriver({1h, 1h, 1h});
    driver->retryResolveInfo(failed);
    EXPECT_EQ(row(0).progress, 0.0);
    EXPECT_EQ(row(0).detail, text("Reading link again..."));
    EXPECT_EQ(summaries.last(), text("Reading link again"));
    driver->retryResolveInfo(makeRow(SourceType::link, {}, {}));
    EXPECT_EQ(summaries.size(), 1);
}

TEST(ReadingFailures, AreToldByTheirWords) {
    const struct {
        const char* failure;
        bool isPermanent;
        bool isReadAgain;
    } cases[] = {
        {"Spotify playlist expansion needs Setup", true, true},
        {"needs SETUP", true, false},
        {"could install it", true, false},
        {"needs signed-in access", true, true},
        {"needs sign-in access", true, true},
        {"a private one", true, false},
        {"a library", true, false},
        {"is rate-limiting", true, false},
        {"a rate limit", true, false},
        {"says 429", true, false},
        {"the playlist expansion", false, true},
        {"songs can be listed", false, true},
        {"This playlist needs something", false, true},
        {"Could not read Spotify songs yet", false, true},
        {"Could not load link info. Check that the link is public.", false, true},
        {"Could not load the YouTube title.", false, true},
        {"Download failed. Check the link or try again.", false, false},
    };
    for (const auto& [failure, isPermanent, isReadAgain] : cases) {
        SCOPED_TRACE(failure);
        DownloadItem row = makeRow(SourceType::link, {});
        row.detail = text(failure);
        EXPECT_EQ(ResolutionDriver::isPermanentFailure(row.detail), isPermanent);
        EXPECT_EQ(ResolutionDriver::shouldRetryInfoForFailedItem(row), isReadAgain);
        row.isResolvingInfo = true;
        EXPECT_TRUE(ResolutionDriver::shouldRetryInfoForFailedItem(row));
    }
}

}  // namespace
}  // namespace reelcrate
