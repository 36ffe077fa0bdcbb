#include "library/playlist_file.h"

#include "support/music.h"
#include "support/texts.h"
#include "tools/shell_quote.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reelcrate {
namespace {

const QString folder = QStringLiteral("/out/Prom: 26");

DownloadItem complete(const QString& path, const char* title = "", const char* duration = "") {
    DownloadItem row;
    row.status = QueueStatus::complete;
    row.outputPath = path;
    row.title = text(title);
    row.duration = text(duration);
    return row;
}

DownloadItem inFolder(const char* name, const char* title = "", const char* duration = "") {
    return complete(folder + u'/' + text(name), title, duration);
}

TEST(PlaylistText, NamesEachSongAsReadersTakeIt) {
    const struct {
        DownloadItem row;
        const char* entry;
    } cases[] = {
        {inFolder("A - B [x].mp3", "A - B", "3:45"), "#EXTINF:225,A - B\nA - B [x].mp3\n"},
        {inFolder("A.mp3", "A", "1:02:03"), "#EXTINF:3723,A\nA.mp3\n"},
        {inFolder("A [x].mp3", "A"), "#EXTINF:-1,A\nA [x].mp3\n"},
        {inFolder("A [x].mp3", "", "NA"), "#EXTINF:-1,A\nA [x].mp3\n"},
        {inFolder("A.mp3", " A\nB\t", "0:30"), "#EXTINF:30,A B\nA.mp3\n"},
        {inFolder("#1 hit.mp3", "#1 hit"), "#EXTINF:-1,#1 hit\n./#1 hit.mp3\n"},
        {inFolder(" a.mp3", "a"), "#EXTINF:-1,a\n./ a.mp3\n"},
        {inFolder("\u3000a.mp3", "a"), "#EXTINF:-1,a\n./\u3000a.mp3\n"},
        {inFolder("http: a.mp3", "a"), "#EXTINF:-1,a\n./http: a.mp3\n"},
        {inFolder("Disc 2/a: b.mp3", "a"), "#EXTINF:-1,a\nDisc 2/a: b.mp3\n"},
        {inFolder("Песня 歌.mp3", "Песня 歌", "0:09"), "#EXTINF:9,Песня 歌\nПесня 歌.mp3\n"},
        {inFolder("a\nb.mp3", "a"), ""},
        {complete(QStringLiteral("/out/Prom: 26 b/a.mp3"), "a"), ""},
        {complete(QStringLiteral("/elsewhere/a.mp3"), "a"), ""},
        {complete({}, "a"), ""},
    };
    for (const auto& [row, entry] : cases)
        EXPECT_EQ(playlistText({row}, folder), text("#EXTM3U\n") + text(entry)) << entry;
}

TEST(PlaylistText, HasCompleteRowsOnceInTheirOrder) {
    DownloadItem running = inFolder("r.mp3", "r");
    running.status = QueueStatus::running;
    EXPECT_EQ(playlistText({inFolder("b.mp3", "b"), running, inFolder("a.mp3", "a"),
                            inFolder("b.mp3", "again")},
                           folder + u'/'),
              text("#EXTM3U\n#EXTINF:-1,b\nb.mp3\n#EXTINF:-1,a\na.mp3\n"));
}

TEST(PlaylistName, IsTheEventsAndFits) {
    EXPECT_EQ(playlistName(folder), text("Prom: 26.m3u8"));
    EXPECT_EQ(playlistName(QStringLiteral("/out/..hidden")), text("hidden.m3u8"));
    EXPECT_EQ(playlistName(u'/' + QString(255, u'x')).size(), 255);
}

class SavedPlaylist : public testing::Test {
protected:
    QString song(const QString& name, int hertz) {
        QDir().mkpath(party);
        return music.make(QStringLiteral("Party/") + name,
                          QStringLiteral("-f lavfi -i sine=%1:d=1 -q:a 5").arg(hertz));
    }

    Music music;
    const QString party = music.path(QStringLiteral("Party"));
};

TEST_F(SavedPlaylist, IsReadByAPlayer) {
    if (QStandardPaths::findExecutable(QStringLiteral("mpg123")).isEmpty())
        GTEST_SKIP() << "mpg123 is not installed";
    QList<DownloadItem> rows;
    const QStringList names{text("Песня.mp3"), text("#1 歌.mp3"), text(" space é.mp3"),
                            text("100% it's $HOME [x].mp3")};
    for (const QString& name : names)
        rows.append(complete(song(name, 400), "x"));
    const PlaylistSaving saving = savePlaylist(rows, party);
    EXPECT_EQ(saving.failure, QString());
    EXPECT_EQ(saving.songs, 4);
    EXPECT_EQ(saving.path, party + QStringLiteral("/Party.m3u8"));

    // From another folder: the names count from where the playlist lies. With -v the player tells
    // the name of each file that it decodes.
    const CommandResult played = music.shell.runShellApart(
        QStringLiteral("cd / && LC_ALL=C.UTF-8 mpg123 -t -v -@ ") + shellQuoted(saving.path), 60);
    QStringList heard;
    for (const QString& line : played.errors.split(u'\n')) {
        if (line.contains(u"finished."))
            heard.append(line);
    }
    EXPECT_EQ(heard.size(), 4) << played.errors.toStdString();
    for (const QString& name : names)
        EXPECT_TRUE(played.errors.contains(name)) << name.toStdString();
    EXPECT_FALSE(played.errors.contains(u"rror")) << played.errors.toStdString();
}

TEST_F(SavedPlaylist, ReplacesTheFormerOneWholeOrNotAtAll) {
    const DownloadItem row = complete(song(QStringLiteral("a.mp3"), 500), "a");
    const QString path = party + QStringLiteral("/Party.m3u8");
    ASSERT_TRUE(writeFile(path, QByteArray(1000, 'x')));
    const DownloadItem gone = complete(party + QStringLiteral("/gone.mp3"), "gone");
    EXPECT_EQ(savePlaylist({gone}, party).songs, 0);
    EXPECT_EQ(readFile(path).size(), 1000);
    EXPECT_EQ(savePlaylist({gone, row}, party).songs, 1);
    EXPECT_EQ(readFile(path), "#EXTM3U\n#EXTINF:-1,a\na.mp3\n");
    EXPECT_EQ(QDir(party).entryList(QDir::Files | QDir::Hidden).size(), 2);

    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(QDir().mkpath(path));
    const PlaylistSaving failed = savePlaylist({row}, party);
    EXPECT_FALSE(failed.failure.isEmpty());
    EXPECT_TRUE(playlistSummary(failed).contains(failed.failure));
}

}  // namespace
}  // namespace reelcrate
