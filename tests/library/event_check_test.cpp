#include "library/event_check.h"

#include "library/finished_files.h"
#include "library/folder_check.h"
#include "support/music.h"
#include "support/texts.h"
#include "tools/shell_quote.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <sys/stat.h>

namespace reelcrate {
namespace {

using Finding = CheckedFile::Finding;
using Kind = EventFile::Kind;
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

TEST(KindOfFile, IsToldByTheName) {
    const std::pair<const char*, Kind> cases[] = {
        {"Artist - Title [abc].mp3", Kind::song},
        {"Disc 2/ЛЕТО.FLAC", Kind::song},
        {"x.opus", Kind::song},
        {"x.webm", Kind::video},
        {"Party.m3u8", Kind::playlist},
        {"x.mp3.part", Kind::halfDownload},
        {"x.m4a.part-Frag12", Kind::halfDownload},
        {"x.mp3.ytdl", Kind::halfDownload},
        {"x.mp3.crdownload", Kind::halfDownload},
        {"x.temp.mp3", Kind::halfDownload},
        {"Spare.Part.mp3", Kind::song},
        {"cover.jpg", Kind::foreign},
        {"mp3", Kind::foreign},
        {".mp3", Kind::foreign},
    };
    for (const auto& [name, kind] : cases)
        EXPECT_EQ(kindOfFile(text(name)), kind) << name;
}

class CheckedFolder : public testing::Test {
protected:
    CheckedFolder() { QDir().mkpath(folder); }
    ~CheckedFolder() override { std::filesystem::remove_all(folder.toStdString()); }

    QString path(const char* name) const { return folder + u'/' + text(name); }

    void write(const char* name, const QByteArray& content = "x") const {
        QDir().mkpath(QFileInfo(path(name)).path());
        ASSERT_TRUE(writeFile(path(name), content));
    }

    void tone(const char* name, int hertz, double seconds, const char* options = "-q:a 5") {
        QDir().mkpath(QFileInfo(path(name)).path());
        music.ffmpeg(QStringLiteral("-f lavfi -i 'aevalsrc=0.3*sin(%1*t):d=%2' -ac 1 %3 ")
                         .arg(hertz)
                         .arg(seconds)
                         .arg(QString::fromLatin1(options)) +
                     shellQuoted(path(name)));
        ASSERT_TRUE(QFile::exists(path(name))) << name;
    }

    /// What needs attention, by name.
    QList<std::pair<QString, Finding>> findings(MeasureLoudness loudness = MeasureLoudness::no) {
        std::atomic<qsizetype> last = 0;
        const FolderCheck check(music.shell, music.discovery, loudness);
        files = check.check(folder, {}, [&](auto done, auto all) {
            last += done > 0 ? 1 : 0;
            decoded = all;
        });
        EXPECT_EQ(last, decoded);
        QList<std::pair<QString, Finding>> found;
        for (const CheckedFile& file : files) {
            if (file.finding)
                found.append({file.file.name, *file.finding});
        }
        return found;
    }

    const CheckedFile& named(const char* name) const {
        for (const CheckedFile& file : files) {
            if (file.file.name == text(name))
                return file;
        }
        ADD_FAILURE() << name;
        return files.first();
    }

    Music music;
    const QString folder = music.path(QStringLiteral("Prom"));
    QList<CheckedFile> files;
    std::atomic<qsizetype> decoded = 0;
};

TEST_F(CheckedFolder, ListsAllButWhatDesktopsLeave) {
    write("b.mp3");
    write("Disc 2/a.mp3");
    write(".hidden.mp3");
    write("desktop.ini");
    write(".notes");
    write("._b.mp3");
    write(".DS_Store");
    write(".reelcrate/link-1.mp3/lock");
    write(".reelcrate/link-2.mp3/lock");
    write(".reelcrate/link-2.mp3/a.m4a.part");
    write(".reelcrate/link-2.mp3/a.jpg");
    QFile::link(QStringLiteral("nowhere"), path("gone.mp3"));
    QFile::link(path("b.mp3"), path("linked.mp3"));
    QFile::link(path("Disc 2"), path("Disc 3"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe.mp3")).constData(), 0600), 0);
    std::filesystem::copy_file(path("b.mp3").toStdString(), path("bad").toStdString() + "\xff.mp3");
    using Fault = EventFile::Fault;
    EXPECT_THAT(eventFiles(folder),
                ElementsAre(EventFile{text(".hidden.mp3"), Kind::song, Fault::hidden},
                            EventFile{text(".notes"), Kind::foreign},
                            EventFile{text(".reelcrate/link-2.mp3"), Kind::halfDownload},
                            EventFile{text("Disc 2/a.mp3"), Kind::song},
                            EventFile{text("Disc 3"), Kind::foreign, Fault::linkedFolder},
                            EventFile{text("b.mp3"), Kind::song},
                            EventFile{text("bad\uFFFD.mp3"), Kind::song, Fault::foreignName},
                            EventFile{text("gone.mp3"), Kind::song, Fault::linkToNowhere},
                            EventFile{text("linked.mp3"), Kind::song},
                            EventFile{text("pipe.mp3"), Kind::song, Fault::noRegularFile}));
    EXPECT_THAT(eventFiles(path("nowhere")),
                ElementsAre(EventFile{text("."), Kind::foreign, Fault::unreadable}));
}

TEST_F(CheckedFolder, AWholeEventIsWell) {
    tone("# Песня.mp3", 900, 3);
    tone(" 歌.mp3", 1000, 3);
    tone("Disc 2/it's 100% \"so\".flac", 1100, 2, "");
    tone("quiet.ogg", 1200, 2, "-af volume=-20dB");
    write("list.m3u8");
    write("notes.txt");
    EXPECT_THAT(findings(), testing::IsEmpty());
    const CheckTotals totals = totalsOf(files);
    EXPECT_EQ(totals.songs, 4);
    EXPECT_EQ(totals.foreign, 1);
    EXPECT_NEAR(totals.seconds, 10, 0.3);
    EXPECT_TRUE(totals.isAllWell());
}

TEST_F(CheckedFolder, AnEmptyOneIsNot) {
    EXPECT_THAT(findings(), testing::IsEmpty());
    EXPECT_FALSE(totalsOf(files).isAllWell());
}

TEST_F(CheckedFolder, NamesWhatDoesNotPlay) {
    tone("good.mp3", 900, 4);
    tone("cut.mp3", 1000, 4);
    tone("cut.flac", 1000, 4, "");
    tone("click.mp3", 1300, 0.05);
    for (const char* name : {"cut.mp3", "cut.flac"})
        QFile::resize(path(name), QFileInfo(path(name)).size() / 2);
    write("empty.mp3", {});
    write("noise.mp3", QByteArray(5000, 'x'));
    write("half.mp3.part");
    music.ffmpeg(QStringLiteral("-f lavfi -i anullsrc=d=2 ") + shellQuoted(path("silent.mp3")));
    EXPECT_THAT(findings(), UnorderedElementsAre(Pair(text("cut.mp3"), Finding::cutOff),
                                                 Pair(text("cut.flac"), Finding::cutOff),
                                                 Pair(text("click.mp3"), Finding::tooShort),
                                                 Pair(text("empty.mp3"), Finding::empty),
                                                 Pair(text("noise.mp3"), Finding::undecodable),
                                                 Pair(text("half.mp3.part"), Finding::halfDownload),
                                                 Pair(text("silent.mp3"), Finding::silent)));
    EXPECT_FALSE(named("noise.mp3").detail.isEmpty());
    EXPECT_NEAR(named("cut.mp3").seconds, 2, 0.2);
    EXPECT_EQ(decoded, 7);
}

TEST_F(CheckedFolder, LooksAtPictureAndSoundOfVideos) {
    const auto film = [&](const char* name, const char* sound) {
        music.ffmpeg(QStringLiteral("-f lavfi -i testsrc=d=3:s=320x240 ") +
                     QString::fromLatin1(sound) + u' ' + shellQuoted(path(name)));
    };
    film("film.mp4", "-f lavfi -i sine=d=3 -movflags faststart");
    film("mute.mp4", "");
    film("silent.mp4", "-f lavfi -i anullsrc=d=3 -shortest");
    write("cut.mp4", readFile(path("film.mp4")).left(QFileInfo(path("film.mp4")).size() * 2 / 3));
    tone("film.mp3", 2764, 3);
    EXPECT_THAT(findings(), ElementsAre(Pair(text("cut.mp4"), Finding::breaksOff),
                                        Pair(text("mute.mp4"), Finding::silent),
                                        Pair(text("silent.mp4"), Finding::silent)));
    EXPECT_NEAR(named("film.mp4").seconds, 3, 0.1);
}

TEST_F(CheckedFolder, KnowsTheVerySameSoundUnderOtherTags) {
    tone("Song.mp3", 900, 3);
    tone("Another.mp3", 901, 3);
    music.ffmpeg(QStringLiteral("-i ") + shellQuoted(path("Song.mp3")) +
                 QStringLiteral(" -c copy -metadata title=Other ") +
                 shellQuoted(path("A later copy.mp3")));
    EXPECT_THAT(findings(), ElementsAre(Pair(text("A later copy.mp3"), Finding::doubled)));
    EXPECT_EQ(named("A later copy.mp3").detail, text("Song.mp3"));
}

TEST_F(CheckedFolder, NamesSongsThatStandOutByTheirTagsOrByMeasuring) {
    tone("a.mp3", 900, 3);
    tone("b.mp3", 901, 3, "-q:a 5 -metadata REPLAYGAIN_TRACK_GAIN='-3.00 dB'");
    tone("c.mp3", 902, 3, "-q:a 5 -af volume=-9dB -metadata REPLAYGAIN_TRACK_GAIN='-4.00 dB'");
    tone("d.mp3", 903, 3, "-q:a 5 -metadata REPLAYGAIN_TRACK_GAIN='-13.50 dB'");
    EXPECT_THAT(findings(), testing::IsEmpty());
    EXPECT_EQ(named("a.mp3").lufs, std::nullopt);
    EXPECT_NEAR(*named("d.mp3").lufs, -4.5, 0.001);
    EXPECT_NEAR(named("d.mp3").offMedian.value_or(0), 9.5, 0.001);
    EXPECT_EQ(named("c.mp3").offMedian, std::nullopt);

    EXPECT_THAT(findings(MeasureLoudness::yes), testing::IsEmpty());
    EXPECT_NEAR(*named("a.mp3").lufs, *named("d.mp3").lufs, 0.1);
    EXPECT_NEAR(named("c.mp3").offMedian.value_or(0), -9, 0.2);
    EXPECT_EQ(named("d.mp3").offMedian, std::nullopt);
}

TEST(FindOddLoudness, ComparesWithTheMiddleOfThreeAtLeast) {
    const std::pair<QList<double>, QList<double>> cases[] = {
        {{-9, -30}, {}},
        {{-9, -10, -16.1}, {-6.1}},
        {{-9, -10, -16}, {}},
        {{-16.1, -8, -14, -10}, {}},
        {{-5.9, -14, -18.1, -10}, {6.1, -6.1}},
        {{-70, -70, -12}, {58}},
    };
    for (const auto& [levels, expected] : cases) {
        QList<CheckedFile> files{{}};
        for (const double level : levels)
            files.append({.file = {}, .lufs = level});
        findOddLoudness(files);
        std::vector<testing::Matcher<double>> matchers;
        for (const double each : expected)
            matchers.push_back(testing::DoubleNear(each, 1e-9));
        QList<double> off;
        for (const CheckedFile& file : files) {
            if (file.offMedian)
                off.append(*file.offMedian);
        }
        EXPECT_THAT(off, testing::ElementsAreArray(matchers));
    }
}

TEST(CheckedSong, ComparesWhatDecodesWithTheHeader) {
    const auto finding = [](double decoded, std::optional<double> header, bool isWhole = true) {
        SongMeasure measure;
        measure.decoded = isWhole;
        measure.decodedSeconds = decoded;
        measure.headerSeconds = header;
        measure.sound = SoundEdges{0, decoded};
        return checkedSong({}, measure).finding;
    };
    EXPECT_EQ(finding(9.6, 10), std::nullopt);
    EXPECT_EQ(finding(9.4, 10), Finding::cutOff);
    EXPECT_EQ(finding(10.6, 10), Finding::longer);
    EXPECT_EQ(finding(9.4, std::nullopt), std::nullopt);
    EXPECT_EQ(finding(9.4, 10, false), Finding::breaksOff);
    EXPECT_EQ(finding(0, 10, false), Finding::undecodable);
}

TEST(CheckedVideo, IsAsLongAsTheLongerOfPictureAndSound) {
    VideoMeasure video;
    video.pictureDecodes = video.readToEnd = true;
    video.packetSeconds = 10;
    SongMeasure sound;
    sound.decoded = true;
    sound.headerSeconds = 10;
    sound.sound = SoundEdges{0, 8};
    for (const double seconds : {8.0, 12.0}) {
        sound.decodedSeconds = seconds;
        const CheckedFile checked = checkedVideo({}, video, sound);
        EXPECT_EQ(checked.seconds, std::max(seconds, 10.0));
        EXPECT_EQ(checked.finding, std::nullopt);
    }
    // A name that cannot be read comes before what the file holds.
    EXPECT_EQ(checkedVideo({{}, Kind::video, EventFile::Fault::hidden}, {}, {}).finding,
              Finding::fault);
}

TEST(FindDoubles, KnowsOneRecordingByItsName) {
    const struct {
        const char* first;
        double firstSeconds;
        const char* second;
        double secondSeconds;
        bool isDouble;
    } cases[] = {
        {"A [dQw4w9WgXcQ].mp3", 200, "Other [dQw4w9WgXcQ].mp3", 300, true},
        {"A [dQw4w9WgXcQ].mp3", 200, "Other [dQw4w9WgXcR].mp3", 200, false},
        {"A [Instrumenta].mp3", 200, "Other [Instrumenta].mp3", 300, false},
        {"A [dQw4w9WgXcQ].mp3", 200, "Other [dQw4w9WgXcQ].mp4", 200, false},
        {"Café [x1].mp3", 200, "CAFE\u0301 [x2].m4a", 201, true},
        {"Café [x1].mp3", 200, "CAFE\u0301 [x2].m4a", 201.1, false},
        {"Песня [x1].mp3", 200, "песня (2) [x2].mp3", 199, true},
        {"Track 1.mp3", 200, "Track 11.mp3", 200, false},
        {"歌.mp3", 200, "花.mp3", 200, false},
        {"!!!.mp3", 200, "???.mp3", 200, false},
        {"Song.mp3", 200, "Song (Live).mp3", 200, false},
    };
    quint64 print = 1;
    for (const auto& [first, firstSeconds, second, secondSeconds, isDouble] : cases) {
        QList<CheckedFile> files;
        for (const auto& [name, seconds] :
             {std::pair(first, firstSeconds), std::pair(second, secondSeconds)}) {
            CheckedFile file{{text(name), kindOfFile(text(name))}};
            file.seconds = seconds;
            file.soundPrint = ++print;
            files.append(file);
        }
        findDoubles(files);
        EXPECT_EQ(files.at(0).finding.has_value() || files.at(1).finding.has_value(), isDouble)
            << first << " " << second;
    }
}

TEST(FindDoubles, KnowsAThirdByWhatTheSecondHas) {
    QList<CheckedFile> files;
    const std::tuple<const char*, double, quint64> three[] = {
        {"A.mp3", 200, 1}, {"Abc [dQw4w9WgXcQ].mp3", 260, 1}, {"Abcdef [dQw4w9WgXcQ].mp3", 300, 2}};
    for (const auto& [name, seconds, print] : three)
        files.append({.file = {text(name), Kind::song}, .seconds = seconds, .soundPrint = print});
    findDoubles(files);
    EXPECT_FALSE(files.at(0).finding);
    for (const qsizetype later : {1, 2}) {
        EXPECT_EQ(files.at(later).finding, Finding::doubled);
        EXPECT_EQ(files.at(later).detail, text("A.mp3"));
    }
}

}  // namespace
}  // namespace reelcrate
