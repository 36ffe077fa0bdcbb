#include "library/event_library.h"

#include "library/file_names.h"
#include "support/machine.h"
#include "support/texts.h"

#include <QDir>
#include <QTemporaryDir>

#include <atomic>
#include <string_view>
#include <thread>
#include <vector>

namespace reelcrate {
namespace {

using Outcome = Arrival::Outcome;

class EventLibraryTest : public testing::Test {
protected:
    EventLibraryTest() {
        QDir().mkpath(m_folder.filePath(text("work")));
        QDir().mkpath(event());
    }

    QString event() const { return m_folder.filePath(text("event")); }

    /// A finished file, of that name, with the song for its content.
    QString finished(const char* name, const QByteArray& song) {
        QString path = m_folder.filePath(text("work/") + text(name));
        writeFile(path, song);
        return path;
    }

    Arrival enter(const char* name, const QByteArray& song, const char* key) {
        return library.enter(finished(name, song), text(key), event(),
                             [](const QString& file, const QString& there, bool) {
                                 return readFile(file) == readFile(there);
                             });
    }

    QTemporaryDir m_folder;
    EventLibrary library;
};

TEST_F(EventLibraryTest, SongsOfOneNameStandSideBySide) {
    const struct {
        const char* name;
        const char* song;
        const char* key;
        Outcome outcome;
        const char* path;
    } cases[] = {
        {"Track [x].mp3", "one", "1", Outcome::entered, "Track [x].mp3"},
        {"Track [x].mp3", "two", "2", Outcome::entered, "Track (2) [x].mp3"},
        {"Track [x].mp3", "two", "3", Outcome::wasThere, "Track (2) [x].mp3"},
        {"Track [x].mp3", "one again", "1", Outcome::wasThere, "Track [x].mp3"},
        {"Track [x].mp3", "other", "4", Outcome::entered, "Track (3) [x].mp3"},
        {"plain.mp3", "one", "5", Outcome::entered, "plain.mp3"},
        {"plain.mp3", "two", "6", Outcome::entered, "plain (2).mp3"},
        {"... Baby [x].mp3", "baby", "7", Outcome::entered, "Baby [x].mp3"},
    };
    for (const auto& [name, song, key, outcome, path] : cases) {
        SCOPED_TRACE(song);
        const Arrival arrival = enter(name, song, key);
        EXPECT_EQ(arrival.outcome, outcome);
        EXPECT_EQ(arrival.path, event() + u'/' + text(path));
        EXPECT_EQ(QFile::exists(finished(name, song)), true);
    }
    EXPECT_EQ(readFile(event() + text("/Track [x].mp3")), "one");

    // A file of an earlier start is compared otherwise than one of this one.
    ASSERT_TRUE(writeFile(event() + text("/earlier.mp3"), "x"));
    for (const char* name : {"earlier.mp3", "plain.mp3"}) {
        library.enter(finished(name, "y"), text("9"), event(),
                      [&](const QString&, const QString&, bool isOfThisStart) {
                          EXPECT_EQ(isOfThisStart, name == std::string_view("plain.mp3"));
                          return true;
                      });
    }

    QDir(event()).removeRecursively();
    const Arrival nowhere = enter("Track [x].mp3", "one", "1");
    EXPECT_EQ(nowhere.outcome, Outcome::notPlaced);
    EXPECT_FALSE(nowhere.reason.isEmpty());
    EXPECT_TRUE(QFile::exists(m_folder.filePath(text("work/Track [x].mp3"))));
}

TEST_F(EventLibraryTest, ManyAtOnceReplaceNothing) {
    constexpr int count = 16;
    std::vector<std::thread> threads;
    std::atomic<int> entered = 0;
    for (int i = 0; i < count; ++i) {
        QDir().mkpath(m_folder.filePath(text("work/%1").arg(i)));
        const QString file = m_folder.filePath(text("work/%1/same.mp3").arg(i));
        writeFile(file, QByteArray::number(i));
        threads.emplace_back([this, file, i, &entered] {
            const auto never = [](const QString&, const QString&, bool) { return false; };
            entered +=
                library.enter(file, QString::number(i), event(), never).outcome == Outcome::entered;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(entered, count);
    QSet<QByteArray> songs;
    for (const QFileInfo& file : QDir(event()).entryInfoList(QDir::Files))
        songs.insert(readFile(file.filePath()));
    EXPECT_EQ(songs.size(), count);
}

TEST_F(EventLibraryTest, WhoSeesASongKnowsWhoseItIs) {
    constexpr int count = 8;
    std::atomic<int> found = 0;
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([this, i, &found] {
            const EventTarget target{event(), DownloadMode::video};
            const PlaylistEntry other{text("https://youtu.be/x"), SourceType::youtube, {}, {}, {}};
            for (int song = 0; song < 60; ++song) {
                const QByteArray name = QByteArray::number(100 * i + song);
                enter((name + " [x].mp4").constData(), name, name.constData());
                found += library.existingDownloadedFiles({other}, target).first() ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(found, 0);
}

TEST(NumberedFileName, PutsTheNumberBehindTheTitle) {
    const auto second = [](const QString& name) { return numberedFileName(name, 2); };
    expectTexts(second, {{"Song [id].mp3", "Song (2) [id].mp3"},
                         {"Song [live] [id].mp3", "Song [live] (2) [id].mp3"},
                         {"Song.mp3", "Song (2).mp3"},
                         {"Vol. 1 [id].mp3", "Vol. 1 (2) [id].mp3"},
                         {"Song", "Song (2)"},
                         {".mp3", " (2).mp3"},
                         {"a\nb [id].mp3", "a\nb (2) [id].mp3"},
                         {"[id].mp3", "[id] (2).mp3"}});
    const QString longest = QString(80, QChar(0x4E2D)) + text(" [id].mp3");
    const QString cut = numberedFileName(longest, 10);
    EXPECT_LE(cut.toUtf8().size(), 255);
    EXPECT_TRUE(cut.endsWith(text("\u4E2D (10) [id].mp3")));
}

}  // namespace
}  // namespace reelcrate
