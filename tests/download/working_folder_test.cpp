#include "download/working_folder.h"

#include "download/fetched_files.h"
#include "support/machine.h"
#include "support/texts.h"

#include <QDir>
#include <QLockFile>
#include <QProcess>
#include <QTemporaryDir>

#include <chrono>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>

namespace reelcrate {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Lock = WorkingFolder::Lock;

class WorkingFolderTest : public testing::Test {
protected:
    QString event() const { return m_event.path(); }
    QString work(const char* name) const { return event() + text("/.reelcrate/") + text(name); }

    void put(const char* names) const {
        for (const QString& name : text(names).split(u'|'))
            writeFile(work("song") + u'/' + name, "content");
    }

    QString left() const {
        QStringList names = QDir(work("song")).entryList(QDir::Files | QDir::Hidden, QDir::Name);
        names.removeAll(text("lock"));
        return names.join(u'|');
    }

    static void age(const QString& path) {
        const fs::path native = path.toStdString();
        fs::last_write_time(native, fs::file_time_type::clock::now() - 73h);
    }

    QTemporaryDir m_event;
};

TEST_F(WorkingFolderTest, IsHeldByOneAtATimeAndByItsChildren) {
    auto first = std::make_unique<WorkingFolder>(event(), text("song"));
    ASSERT_EQ(first->lock(), Lock::held);
    WorkingFolder second(event(), text("song"));
    EXPECT_EQ(second.lock(), Lock::inUse);
    WorkingFolder other(event(), text("other"));
    EXPECT_EQ(other.lock(), Lock::held);

    // A child that outlives the program that started it, as after a kill of all but the child.
    const int inherited = ::dup(first->descriptor());
    first.reset();
    EXPECT_EQ(second.lock(), Lock::inUse);
    ::close(inherited);
    EXPECT_EQ(second.lock(), Lock::held);
    second.remove();
    EXPECT_FALSE(QDir(work("song")).exists());
    EXPECT_EQ(second.lock(), Lock::held);
}

TEST_F(WorkingFolderTest, ALockFileThatWasLeftBehindHoldsNothing) {
    WorkingFolder folder(event(), text("song"));
    ASSERT_EQ(folder.lock(), Lock::held);
    const QByteArray own = readFile(work("song") + text("/lock"));
    folder.remove();
    QDir().mkpath(work("song"));
    // As a program that was killed has left it, whose number this process has by chance.
    ASSERT_TRUE(writeFile(work("song") + text("/lock"), own));
    EXPECT_EQ(folder.lock(), Lock::held);

    // That of another machine is believed.
    folder.remove();
    QDir().mkpath(work("song"));
    QByteArrayList lines = own.split('\n');
    lines[2] = "another-machine";
    lines[3] = "another-id";
    ASSERT_TRUE(writeFile(work("song") + text("/lock"), lines.join('\n')));
    EXPECT_EQ(folder.lock(), Lock::inUse);
    // Unless nothing goes on here any more.
    age(work("song") + text("/lock"));
    EXPECT_EQ(folder.lock(), Lock::held);
}

TEST_F(WorkingFolderTest, KeepsWhatCanBeGoneOnWith) {
    WorkingFolder folder(event(), text("song"));
    ASSERT_EQ(folder.lock(), Lock::held);
    put("A [x].m4a|A [x].mp3|A [x].temp.m4a|A [x].webm.part|"
        "B [x].webm.part|B [x].webm.part-Frag7|B [x].webm.ytdl|C [x].m4a.part-Frag1.part|"
        "A [x].jpg|A [x].mp4|.trim-0F8FAD5B-D9CB-469F-A165-70867728950E.mp3|.38 [x].m4a");
    folder.noteFormats(text("251"));
    folder.keepResumable(DownloadMode::audio);
    EXPECT_EQ(folder.formatsOfParts(), text("251"));
    EXPECT_EQ(left(), text(".38 [x].m4a|A [x].m4a|A [x].mp4|A [x].webm.part|formats"));
    EXPECT_TRUE(folder.unconvertedSource().endsWith(u".38 [x].m4a"));
    folder.removeParts();
    EXPECT_EQ(folder.formatsOfParts(), QString());
    EXPECT_EQ(left(), text(".38 [x].m4a|A [x].m4a|A [x].mp4|formats"));

    folder.empty();
    EXPECT_EQ(folder.unconvertedSource(), QString());
    put("B [x].f137.mp4|B [x].f140.m4a|B [x].mp4|B [x].temp.mp4|B [x].f137.mp4.part");
    folder.keepResumable(DownloadMode::video);
    EXPECT_EQ(left(), text("B [x].f137.mp4|B [x].f137.mp4.part|B [x].f140.m4a"));
}

TEST_F(WorkingFolderTest, FindsThePageAmongAStreamsPieces) {
    WorkingFolder folder(event(), text("song"));
    ASSERT_EQ(folder.lock(), Lock::held);
    const std::pair<QByteArray, bool> cases[] = {
        {QByteArray("G@\x11\x10", 4), false},
        {"ID3\x04", false},
        {"", false},
        {QByteArray("<\x01\x80#1", 5) + QByteArray(300, 'x'), false},
        {"\n <!DOCTYPE html>\r\n\t<p>Zugang gesperrt f\xc3\xbcr ...", true},
        {"{\"error\": 1}", true},
    };
    for (const auto& [content, isPage] : cases) {
        const QString piece = text("A [x].mp4.part-Frag12");
        ASSERT_TRUE(writeFile(work("song") + u'/' + piece, content));
        EXPECT_EQ(folder.textAmongFragments(), isPage ? piece : QString()) << content.toStdString();
    }
    folder.empty();
    put("A [x].html|A [x].mp4.part");
    EXPECT_EQ(folder.textAmongFragments(), QString());
}

TEST_F(WorkingFolderTest, TellsFinishedFilesFromPiecesAndSources) {
    WorkingFolder folder(event(), text("song"));
    ASSERT_EQ(folder.lock(), Lock::held);
    const auto finished = [&](const char* names, DownloadMode mode) {
        folder.empty();
        put(names);
        QStringList found;
        for (const QString& path : folder.finishedFiles(mode))
            found.append(path.section(u'/', -1));
        return found.join(u'|');
    };
    const struct {
        const char* names;
        const char* songs;
        const char* videos;
    } cases[] = {
        {"A [x].mp3", "A [x].mp3", "A [x].mp3"},
        {"A [x].mp3|A [x].m4a|A [x].jpg", "A [x].mp3", "A [x].m4a|A [x].mp3"},
        {"Old [x].m4a|New [x].mp3|lock", "New [x].mp3", "New [x].mp3|Old [x].m4a"},
        {"A [x].m4a|lock", "A [x].m4a", "A [x].m4a"},
        {"A [x].mp4|A [x].webm", "", "A [x].mp4"},
        {"A [x].f137.mp4|A [x].f140.m4a", "", ""},
        {"Ferrari.f1 [x].mp3", "Ferrari.f1 [x].mp3", "Ferrari.f1 [x].mp3"},
        {"A [x].webm", "", "A [x].webm"},
        {"Old [x].mkv|New [x].mp4|New [x].mp4.fetched", "", "New [x].mp4"},
        {"Old [x].mp3|New [x].m4a|New [x].m4a.fetched|New [x].mp3", "New [x].mp3",
         "New [x].m4a|New [x].mp3"},
        {"A [x].temp.mp3|A [x].mp3.part|A [x].orig.mp3", "", ""},
        {".38 [x].mp3|.mp4-0F8FAD5B-D9CB-469F-A165-70867728950E.mp4", ".38 [x].mp3", ".38 [x].mp3"},
    };
    for (const auto& [names, songs, videos] : cases) {
        SCOPED_TRACE(names);
        EXPECT_EQ(finished(names, DownloadMode::audio), text(songs));
        EXPECT_EQ(finished(names, DownloadMode::video), text(videos));
    }
    put("A [x].webm.fetched|B [x].webm.fetched");
    EXPECT_TRUE(fetchedFor(work("song") + text("/B [x].mp3")).endsWith(u"/B [x].webm.fetched"));
}

TEST_F(WorkingFolderTest, AbandonedOnesAreRemovedAndNoOthers) {
    for (const char* name : {"song", "fresh", "held", "renewed"}) {
        QDir().mkpath(work(name));
        ASSERT_TRUE(writeFile(work(name) + text("/A [x].m4a.part"), "part"));
        age(work(name) + text("/A [x].m4a.part"));
        age(work(name));
    }
    WorkingFolder held(event(), text("held"));
    ASSERT_EQ(held.lock(), Lock::held);
    age(work("held") + text("/lock"));
    age(work("held"));
    ASSERT_TRUE(writeFile(work("renewed") + text("/A [x].m4a.part"), "more"));
    age(work("renewed"));
    ASSERT_TRUE(writeFile(work("fresh") + text("/new"), "new"));
    age(work("fresh") + text("/new"));  // though not the folder
    removeAbandonedWork(event());
    EXPECT_EQ(QDir(event() + text("/.reelcrate")).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              QStringList({text("fresh"), text("held"), text("renewed")}));
    QDir(event() + text("/.reelcrate")).removeRecursively();
    QDir().mkpath(event() + text("/.reelcrate"));
    removeAbandonedWork(event());
    EXPECT_FALSE(QDir(event() + text("/.reelcrate")).exists());
}

TEST_F(WorkingFolderTest, SaysWhyItCannotBeMade) {
    WorkingFolder folder(event() + text("/gone"), text("song"));
    EXPECT_EQ(folder.lock(), Lock::failed);
    EXPECT_FALSE(folder.failure().isEmpty());
    EXPECT_FALSE(QDir(event() + text("/gone")).exists());
}

}  // namespace
}  // namespace reelcrate
