#include "library/finished_files.h"

#include "library/file_names.h"
#include "library/finished_file_index.h"
#include "library/song_key.h"
#include "support/machine.h"
#include "support/texts.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>

namespace reelcrate {
namespace {

namespace fs = std::filesystem;

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

PlaylistEntry titled(const QString& title) {
    return {text("u"), SourceType::spotify, title, {}, {}};
}

PlaylistEntry video(const char* url, const char* title = "") {
    return {text(url), SourceType::youtube, text(title), {}, {}};
}

class FinishedFiles : public testing::Test {
protected:
    /// Makes a file, as many nanoseconds older than the first one as `age` says.
    QString add(const QString& name, int age = 0) {
        QString path = m_folder.filePath(name);
        QDir().mkpath(path.left(path.lastIndexOf(u'/')));
        EXPECT_TRUE(writeFile(path, silentMp3())) << path.toStdString();
        fs::last_write_time(path.toStdString(), m_newest - std::chrono::nanoseconds(age));
        return path;
    }

    QString find(const PlaylistEntry& entry, DownloadMode mode = DownloadMode::audio) const {
        return FinishedFileIndex(folder(), mode).existingDownloadedFile(entry).value_or(QString());
    }

    QString folder() const { return m_folder.path(); }

    QTemporaryDir m_folder;
    const fs::file_time_type m_newest = fs::file_time_type::clock::now();
};

TEST_F(FinishedFiles, AreListedByPathWithoutUnfinishedOnesAndLinks) {
    const QStringList expected{
        add(text(".hidden/x.mp3")), add(text(".part")), add(text("B.mp3")),
        add(text("a.part.mp4")),    add(text("b")),     add(text("c/d/e.PARTS")),
        add(text("\U0001F3B5.mp3"))};
    add(text("x.mp4.part"));
    add(text("x.PART"));
    add(text("c/x.ytdl"));
    const QTemporaryDir elsewhere;
    QFile(elsewhere.filePath(text("far.mp3"))).open(QIODevice::WriteOnly);
    QFile::link(elsewhere.path(), m_folder.filePath(text("link")));
    QFile::link(expected.at(2), m_folder.filePath(text("link.mp3")));
    EXPECT_EQ(regularFiles(folder()), expected);
    EXPECT_EQ(regularFiles(folder() + text("/none")), QStringList());
    EXPECT_EQ(regularFiles(expected.first()), QStringList());
}

TEST_F(FinishedFiles, NameAndExtensionAreToldByTheLastDot) {
    expectTexts(
        nameWithoutExtension,
        {{"/x.y/a.b.mp3", "a.b"}, {"/x/.mp3", ".mp3"}, {"/x.y/a", "a"}, {"/x/.a.mp3", ".a"}});
    for (const char* path : {"/x/a.MP3", "/x/a.b.flac", "/x/.a.m4a"})
        EXPECT_TRUE(hasFinishedExtension(text(path), DownloadMode::audio)) << path;
    for (const char* path : {"/x/.mp3", "/x.mp3/a", "/x/a.mp4", "/x/mp3"})
        EXPECT_FALSE(hasFinishedExtension(text(path), DownloadMode::audio)) << path;
    EXPECT_TRUE(hasFinishedExtension(text("/x/a.webm"), DownloadMode::video));
    EXPECT_FALSE(hasFinishedExtension(text("/x/a.m4a"), DownloadMode::video));
}

TEST_F(FinishedFiles, DatesAreFineAndUnreadableOnesOld) {
    EXPECT_GT(modificationDate(add(text("new"))), modificationDate(add(text("old"), 1)));
    EXPECT_EQ(modificationDate(folder() + text("/none")), fs::file_time_type::min());
}

TEST(NormalizedDownloadKey, KeepsLettersAndDigitsOutsideBrackets) {
    expectTexts(normalizedDownloadKey,
                {{"Caf\u00E9 Del Mar (Remix)", "cafedelmarremix"},
                 {"Cafe\u0301 Del Mar Remix [xyz]", "cafedelmarremix"},
                 {"a[b[c]d]e", "ade"},
                 {"a[]b]c[d", "abcd"},
                 {"a[][b]c", "ac"},
                 {"[[[", ""},
                 {"\u03A3\u0391\u03A3 \u03C3\u03B1\u03C2", "\u03C3\u03B1\u03C3\u03C3\u03B1\u03C3"},
                 {"\u0130stanbul \u0141\u00F3d\u017A", "istanbul\u0142odz"},
                 {"\u4E2D\u6587 \u304C", "\u4E2D\u6587\u304B"},
                 {"\u2160\u00BD 7_8-9", "\u2170\u00BD789"},
                 {"\U0001F3B5 \U0001D400x\U000101FD", "\U0001D400x"}});
    EXPECT_EQ(normalizedDownloadKey(QString(200'000, u'[')), QString());
}

TEST(ExistingDownloadID, IsOnlyKnownForTheVideoSite) {
    EXPECT_EQ(existingDownloadID(video("https://youtu.be/%20abc%20")), text("abc"));
    EXPECT_FALSE(existingDownloadID(video("https://www.youtube.com/watch?v=%20")));
    EXPECT_FALSE(existingDownloadID(video("https://youtu.be")));
    EXPECT_FALSE(existingDownloadID(video("https://a.example/httpish")));
    PlaylistEntry other = video("https://youtu.be/abc");
    other.source = SourceType::link;
    EXPECT_FALSE(existingDownloadID(other));
}

TEST_F(FinishedFiles, AreRecognisedByIdentifier) {
    const QString newer = add(text("Other [AbC] [x].mp3"), 1);
    add(text("Other [abc].mp3"), 2);
    const QString bracket = add(text("Odd [a[b]].mp3"), 3);
    EXPECT_EQ(find(video("https://youtu.be/aBc", "Unlike any")), newer);
    EXPECT_EQ(find(video("https://youtu.be/ab", "Unlike any")), QString());
    EXPECT_EQ(find(video("https://youtu.be/abc"), DownloadMode::video), QString());
    EXPECT_EQ(find(video("https://a.example/x?v=a[b]", "Unlike any")), bracket);
    EXPECT_EQ(find(video("https://a.example/x?v=b", "Unlike any")), bracket);
}

TEST_F(FinishedFiles, AreRecognisedByTitle) {
    const QString cafe = add(text("Cafe Del Mar Remix [xyz].mp3"), 5);
    const QString hidden = add(text("sub/.Hello World.flac"), 6);
    const QString prefix = add(text("Long Way.mp3"), 7);
    add(text("Short.mp3"), 8);
    add(text("Hey.mp3"), 9);
    const QString tenth = add(text("Track 10 [x].mp3"), 3);
    add(text("Symphony No 12 in full length.mp3"), 2);
    QFile empty(add(text("Nothing In It.m4a"), 1));
    EXPECT_TRUE(empty.resize(0));
    add(text(".reelcrate/key/At Work On.mp3"), 1);
    const std::pair<const char*, QString> cases[] = {
        {"Track 1", QString()},
        {"Track 10", tenth},
        {"Symphony No 1", QString()},
        {"2 in full length", QString()},
        {"At Work On", QString()},
        {"Cafe Del Mar Remix Two", QString()},
        {"Nothing In It", QString()},
        {"Caf\u00E9 Del Mar (Remix)", cafe},
        {"DEL MAR", QString()},  // which is another song than its remix
        {"world", QString()},
        {"hello wor", hidden},
        {"hello: world!", hidden},
        {"Artist - Long Way", prefix},  // 13 characters around the file's 7
        {"A Long Way 1", QString()},    // 10 are too few to hold another key
        {"Hey!", QString()},
        {"Short", QString()},
        {"Short Story", QString()},
        {"", QString()},
    };
    for (const auto& [title, path] : cases) {
        SCOPED_TRACE(title);
        EXPECT_EQ(find(titled(text(title))), path);
    }
    const QString newest = add(text("The Del Mar.mp3"), 4);
    EXPECT_EQ(find(titled(text("Del Mar"))), newest);
    EXPECT_EQ(find(video("https://youtu.be/XYZ", "Del Mar")), cafe);
    EXPECT_EQ(find(video("https://www.youtube.com/@someone/xyz", "")), QString());
    EXPECT_EQ(find(video("https://youtu.be/XYZ?list=PL1", "")), QString());
    EXPECT_EQ(FinishedFileIndex(folder() + text("/none"), DownloadMode::audio)
                  .existingDownloadedFile(titled(text("Del Mar"))),
              std::nullopt);
}

TEST_F(FinishedFiles, AreSongsByTheirFirstPagesToo) {
    const QByteArray song = silentMp3(100);  // 2.6 s
    QByteArray xing = song;
    // The header in the first frame counts all of the bytes, or so it says.
    xing.replace(36, 16, QByteArray("Xing\0\0\0\3\0\0\0\x64\0\0\xa2\xe4", 16));
    const QByteArray cover = QByteArray("ID3\4\0\0\0\0\x40\0", 10).append(8192, 'c');
    QByteArray xingOfNothing = xing;
    xingOfNothing.replace(47, 1, QByteArray("\2", 1));
    const std::tuple<const char*, QByteArray, const char*, bool> cases[] = {
        {"bare frames", song, "0:03", true},
        {"behind a cover", cover + song, "", true},
        {"counted", xing, "0:03", true},
        {"counted behind a cover, tags at the end", cover + xing + QByteArray(128, 't'), "", true},
        {"cut off", xing.first(30'000), "0:03", false},
        {"a cover alone", cover, "", false},
        {"two frames of what was a song", xingOfNothing.first(834), "", false},
        {"no media", QByteArray(35'000, 'r'), "", false},
        {"far shorter than listed", song, "1:03", false},
        {"shorter than listed", song, "0:20", true},
        {"without a length in the listing", song, "live", true},
    };
    for (const auto& [what, bytes, listed, isSong] : cases) {
        SCOPED_TRACE(what);
        const QString path = add(text("My Nice Song [x].mp3"));
        ASSERT_TRUE(writeFile(path, bytes));
        PlaylistEntry entry = titled(text("My Nice Song"));
        entry.duration = text(listed);
        const auto found =
            FinishedFileIndex(folder(), DownloadMode::audio).existingDownloadedFile(entry);
        EXPECT_EQ(found, isSong ? std::optional(path) : std::nullopt);
    }
}

TEST_F(FinishedFiles, LongTitlesMatchTheNamesTheyWereCutTo) {
    const QString title(300, QChar(0x4E2D));
    const QString path = add(spotifyFileStem(title) + text(" [xyz].mp3"));
    EXPECT_EQ(find(titled(title)), path);
    // Nothing can be told by no title.
    add(text("Spotify Match [xyz].mp3"));
    EXPECT_EQ(find(titled(text(" "))), QString());
}

TEST_F(FinishedFiles, AreTheirWritersAlone) {
    const QString one = add(text("Same Name [x].mp3"), 1);
    const QString two = add(text("Unlike [abc].mp3"), 2);
    const QString url = text("https://site.example/song#part");
    const PlaylistEntry entry{url, SourceType::link, text("Same Name"), {}, {}};
    const auto findWith = [&](const FileWriters& writers, const PlaylistEntry& wanted) {
        return FinishedFileIndex(folder(), DownloadMode::audio, [&] { return writers; })
            .existingDownloadedFile(wanted)
            .value_or(QString());
    };
    const QString own = songKey(text("HTTPS://SITE.example/song"), 0);
    EXPECT_EQ(findWith({}, entry), one);
    EXPECT_EQ(findWith({{one, text("another")}}, entry), QString());
    EXPECT_EQ(findWith({{one, text("another")}, {two, own}}, entry), two);
    const PlaylistEntry byId = video("https://youtu.be/abc", "Same Name");
    EXPECT_EQ(findWith({{two, own}}, byId), one);
    EXPECT_EQ(findWith({{two, own}, {one, own}}, byId), QString());
}

}  // namespace
}  // namespace reelcrate
