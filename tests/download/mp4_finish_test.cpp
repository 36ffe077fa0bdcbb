#include "download/mp4_finish.h"

#include "library/video_measure.h"
#include "support/music.h"
#include "support/texts.h"
#include "tools/shell_quote.h"

#include <QDir>

namespace reelcrate {
namespace {

const QString picture = QStringLiteral("-f lavfi -i testsrc=d=3:s=321x181:r=25 ");
const QString sound = QStringLiteral("-f lavfi -i sine=d=3 ");
const QString vp8 = text(" -c:v libvpx -deadline realtime ");
const QString vp9 = text(" -c:v libvpx-vp9 -deadline realtime -cpu-used 8 ");
const QString h264 = text(" -c:v libx264 -pix_fmt yuv444p ");
const QString tag = QStringLiteral(" -metadata title='A title' ");

struct Film {
    const char* name;
    QString words;
    const char* codecs;
};

class Mp4Finishing : public testing::Test {
protected:
    Mp4Outcome finish(const QString& path) {
        return Mp4Finisher(music.shell, music.discovery, measurer).finish(path);
    }

    /// The codecs of a file, in their order.
    QString codecs(const VideoMeasure& measure) {
        QStringList codecs;
        for (const MediaStream& stream : measure.streams)
            codecs.append(stream.codec);
        return codecs.join(u' ');
    }

    QStringList filesBeside(const QString& path) {
        return QFileInfo(path).dir().entryList(QDir::Files | QDir::Hidden);
    }

    QString titleOf(const QString& path) {
        return music.shell
            .runShellApart(text("ffprobe -v error -show_entries format_tags=title -of csv=p=0 ") +
                               shellQuoted(path),
                           100)
            .output.trimmed();
    }

    void expectMp4s(std::initializer_list<Film> films) {
        for (const auto& [name, words, expected] : films) {
            SCOPED_TRACE(name);
            const QString path = music.make(text(name), words + tag);
            const Mp4Outcome outcome = finish(path);
            ASSERT_TRUE(outcome.path.endsWith(text(".mp4"))) << outcome.reason.toStdString();
            EXPECT_EQ(filesBeside(path), QStringList(QFileInfo(outcome.path).fileName()));
            const VideoMeasure made = measurer.measure(outcome.path);
            EXPECT_EQ(whyNoWholeVideo(made), std::nullopt);
            EXPECT_EQ(codecs(made), text(expected));
            EXPECT_TRUE(made.format.contains(u"mp4"));
            EXPECT_EQ(made.pictureDecodes, words.contains(u"testsrc"));
            EXPECT_EQ(made.soundDecodes, words.contains(u"sine"));
            EXPECT_NEAR(made.packetSeconds, 3, 0.3);
            EXPECT_EQ(titleOf(outcome.path), text("A title"));
            QFile::remove(outcome.path);
        }
    }

    Music music;
    VideoMeasurer measurer{music.shell, music.discovery};
};

TEST_F(Mp4Finishing, KeepsThePicturesThatMp4Holds) {
    expectMp4s({
        {"h264 aac.mp4", picture + sound + h264, "h264 aac"},
        {"h264 aac.mkv", picture + sound + h264 + text("-c:a aac"), "h264 aac"},
        {"h264 opus.mkv", picture + sound + h264 + text("-c:a libopus"), "h264 opus"},
        {"h264 vorbis.mkv", picture + sound + h264 + text("-c:a libvorbis"), "h264 aac"},
        {"vp9 opus.webm", picture + sound + vp9 + text("-c:a libopus"), "vp9 opus"},
        {"mkv called.mp4", picture + sound + h264 + text("-c:a aac -f matroska"), "h264 aac"},
        {"it's -\n.webm", picture + vp9, "vp9"},
    });
}

TEST_F(Mp4Finishing, ConvertsThePicturesThatItDoesNotHold) {
    expectMp4s({
        {"vp8 vorbis.webm", picture + sound + vp8 + text("-c:a libvorbis"), "h264 aac"},
        {"vp8 opus.webm", picture + sound + vp8 + text("-c:a libopus"), "h264 opus"},
        {"vp8.webm", picture + vp8, "h264"},
    });
}

TEST_F(Mp4Finishing, MakesAnMp4OfSoundAlone) {
    expectMp4s({
        {"aac.m4a", sound + text("-c:a aac"), "aac"},
        {"opus.webm", sound + text("-c:a libopus"), "opus"},
        {"vorbis.ogg", sound + text("-c:a libvorbis"), "aac"},
        {"vorbis in.mp4", sound + text("-c:a libvorbis"), "aac"},
    });
}

TEST_F(Mp4Finishing, LeavesAnMp4ByteForByte) {
    const QString path = music.make(text("film.mp4"), picture + sound);
    const QByteArray film = readFile(path);
    EXPECT_EQ(finish(path).path, path);
    EXPECT_EQ(readFile(path), film);
}

TEST_F(Mp4Finishing, ConvertsWhereTheCopyDoesNotPlay) {
    const QString path = music.make(text("film.mkv"), picture + sound + text("-c:a aac"));
    music.machine.installScript(
        text("ffmpeg"),
        "#!/bin/bash\nreal=/usr/bin/ffmpeg\nout=${!#}\n"
        "if [[ \"$*\" != *'-c:v copy'*'-f mp4'* ]]; then exec $real \"$@\"; fi\n"
        "exec $real -v error -y -f lavfi -i testsrc=d=3 -f mp4 \"$out\"\n");
    const Mp4Outcome outcome = finish(path);
    EXPECT_EQ(outcome.path, music.path(text("film.mp4"))) << outcome.reason.toStdString();
    EXPECT_EQ(codecs(measurer.measure(outcome.path)), text("h264 aac"));
}

TEST_F(Mp4Finishing, AFailureLeavesTheVideoAsItWas) {
    const QString path = music.make(text("film.mkv"), picture + sound + text("-c:a aac"));
    const QByteArray film = readFile(path);
    const struct {
        const char* converter;
        const char* reason;
    } faults[] = {
        {"echo '[error] Out of luck' >&2; exit 1", "no MP4 could be made of it: Out of luck"},
        {"$real \"$@\"; echo '[error] Error writing trailer of x' >&2",
         "no MP4 could be made of it: Error writing trailer of x"},
        {"true", "no MP4 could be made of it: neither picture nor sound decodes"},
        {"$real -v error -y -f lavfi -i testsrc=d=3 -f mp4 \"$out\"",
         "no MP4 could be made of it: the sound was lost"},
        {"$real -v error -y -f lavfi -i sine=d=3 -f mp4 \"$out\"",
         "no MP4 could be made of it: the picture was lost"},
        {"$real \"${@:1:$#-1}\" -t 1 \"$out\"", " became "},
    };
    for (const auto& [converter, reason] : faults) {
        SCOPED_TRACE(converter);
        music.machine.installScript(
            text("ffmpeg"), QByteArray("#!/bin/bash\nreal=/usr/bin/ffmpeg\nout=${!#}\nif [[ "
                                       "\"$*\" != *'-f mp4'* ]]; then exec $real \"$@\"; fi\n") +
                                converter + "\n");
        const Mp4Outcome outcome = finish(path);
        EXPECT_EQ(outcome.path, QString());
        EXPECT_TRUE(outcome.reason.contains(text(reason))) << outcome.reason.toStdString();
        EXPECT_EQ(filesBeside(path), QStringList(text("film.mkv")));
        EXPECT_EQ(readFile(path), film);
    }
    writeFile(path, film.left(film.size() / 2));
    EXPECT_TRUE(finish(path).reason.contains(u" s are there of the 3.0"));
}

}  // namespace
}  // namespace reelcrate
