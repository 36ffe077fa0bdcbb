#include "library/video_measure.h"

#include "support/music.h"
#include "support/texts.h"

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

using Kind = MediaStream::Kind;

const QString picture = QStringLiteral("-f lavfi -i testsrc=d=8:s=320x180:r=25 ");
const QString sound = QStringLiteral("-f lavfi -i sine=d=8 ");
const QString atFront = QStringLiteral("-pix_fmt yuv420p -movflags faststart");

class VideoMeasuring : public testing::Test {
protected:
    QString whyNot(const QString& path) {
        return whyNoWholeVideo(measure(path)).value_or(QString());
    }

    VideoMeasure measure(const QString& path) {
        return VideoMeasurer(music.shell, music.discovery).measure(path);
    }

    QString cut(const QString& path, double share) {
        QString shorter = path + QStringLiteral(".cut");
        const QByteArray content = readFile(path);
        writeFile(
            shorter,
            content.left(static_cast<qsizetype>(share * static_cast<double>(content.size()))));
        return shorter;
    }

    Music music;
};

TEST_F(VideoMeasuring, TellsWhatAFileHoldsAndWhetherItIsThereToItsEnd) {
    const struct {
        const char* name;
        QString words;
        QList<MediaStream> streams;
        const char* whyNotWhenCut;
    } files[] = {
        {"both.mp4",
         picture + sound + atFront,
         {{Kind::picture, text("h264")}, {Kind::sound, text("aac")}},
         " s are there of the 8.0"},
        {"late.mp4",
         picture + sound + QStringLiteral("-pix_fmt yuv420p"),
         {{Kind::picture, text("h264")}, {Kind::sound, text("aac")}},
         "neither picture nor sound decodes: "},
        {"silent.mp4", picture + atFront, {{Kind::picture, text("h264")}}, "the file breaks off"},
        {"song.m4a", sound + atFront, {{Kind::sound, text("aac")}}, " s are there of the 8.0"},
        {"both.mkv",
         picture + sound + QStringLiteral("-c:a libvorbis"),
         {{Kind::picture, text("h264")}, {Kind::sound, text("vorbis")}},
         " s are there of the 8.0"},
        {"both.webm",
         picture + sound + QStringLiteral("-c:v libvpx -deadline realtime -c:a libopus"),
         {{Kind::picture, text("vp8")}, {Kind::sound, text("opus")}},
         " s are there of the 8.0"},
    };
    for (const auto& [name, words, streams, whyNotWhenCut] : files) {
        SCOPED_TRACE(name);
        const QString path = music.make(QString::fromLatin1(name), words);
        const VideoMeasure whole = measure(path);
        EXPECT_EQ(whyNoWholeVideo(whole), std::nullopt);
        EXPECT_EQ(whole.streams, streams);
        EXPECT_EQ(whole.pictureDecodes, whole.hasPicture());
        EXPECT_EQ(whole.soundDecodes, whole.hasSound());
        EXPECT_NEAR(whole.packetSeconds, 8, 0.2);
        const QString why = whyNot(cut(path, 0.8));
        EXPECT_TRUE(why.contains(QLatin1String(whyNotWhenCut))) << why.toStdString();
    }
}

TEST_F(VideoMeasuring, AReadingOfThePacketsTellsWhatBreaksOff) {
    const struct {
        const char* name;
        const char* words;
        const char* why;
    } songs[] = {
        {"song.mp3", "", " s are there of the 8.0"},
        {"song.flac", "", " s are there of the 8.0"},
        {"song.wav", "", "the file breaks off"},
        {"live.mkv", "-live 1", "the file breaks off"},
        {"song.ogg", "-c:a libvorbis", "the file breaks off"},
        {"song.opus", "-c:a libopus", "the file breaks off"},
        {"song.aac", "", ""},  // says nothing of its length
    };
    const VideoMeasurer measurer(music.shell, music.discovery);
    const auto whyNotWhole = [&](const QString& path) {
        return whyBrokenOff(measurer.measurePackets(path)).value_or(QString());
    };
    for (const auto& [name, words, why] : songs) {
        SCOPED_TRACE(name);
        const QString path = music.make(text(name), sound + text(words));
        EXPECT_EQ(whyNotWhole(path), QString());
        const QString found = whyNotWhole(cut(path, 0.8));
        EXPECT_TRUE(why == QByteArray() ? found.isEmpty() : found.contains(text(why)))
            << found.toStdString();
    }
}

TEST_F(VideoMeasuring, WhatDoesNotPlayIsNoVideo) {
    const QString text = music.path(QStringLiteral("text.mp4"));
    writeFile(text, "This is no video.\n");
    EXPECT_TRUE(whyNot(text).startsWith(u"neither picture nor sound decodes: "));
    EXPECT_TRUE(whyNot(text + u'x').startsWith(u"neither picture nor sound decodes: "));
}

TEST_F(VideoMeasuring, OneOfPictureAndSoundIsEnough) {
    const QString film = music.make(QStringLiteral("film.mkv"),
                                    picture + sound + atFront + QStringLiteral(" -c:a aac"));
    const auto withUnknown = [&](const QByteArray& codec) {
        const QString path = music.path(QStringLiteral("odd.mkv"));
        writeFile(path, readFile(film).replace(codec, QByteArray(codec.size(), 'X')));
        return measure(path);
    };
    const VideoMeasure blind = withUnknown("V_MPEG4/ISO/AVC");
    EXPECT_FALSE(blind.pictureDecodes);
    EXPECT_TRUE(blind.soundDecodes);
    EXPECT_EQ(whyNoWholeVideo(blind), std::nullopt);
    const VideoMeasure deaf = withUnknown("A_AAC");
    EXPECT_TRUE(deaf.pictureDecodes);
    EXPECT_FALSE(deaf.soundDecodes);
    EXPECT_EQ(whyNoWholeVideo(deaf), std::nullopt);

    const VideoMeasure spoilt = measure(music.make(
        QStringLiteral("spoilt.mkv"), QStringLiteral("-i film.mkv -c copy -bsf:v noise=amount=1")));
    EXPECT_FALSE(spoilt.pictureDecodes);
    EXPECT_TRUE(spoilt.soundDecodes);
    EXPECT_EQ(whyNoWholeVideo(spoilt), std::nullopt);
}

TEST_F(VideoMeasuring, ACoverIsNoPicture) {
    music.make(QStringLiteral("cover.png"),
               QStringLiteral("-f lavfi -i color=red:s=64x64 -frames:v 1"));
    const QString song = music.make(
        QStringLiteral("song.m4a"),
        sound + QStringLiteral("-i cover.png -map 0 -map 1 -c:v copy -disposition:v attached_pic"));
    const VideoMeasure measured = measure(song);
    EXPECT_FALSE(measured.hasPicture());
    EXPECT_EQ(measured.streams.last().kind, Kind::cover);
    EXPECT_EQ(whyNoWholeVideo(measured), std::nullopt);
}

TEST(WhyNoWholeVideo, TheFileMustReachItsEnd) {
    const MediaStream picture{Kind::picture, QStringLiteral("h264")};
    const MediaStream sound{Kind::sound, QStringLiteral("aac")};
    const QString format = QStringLiteral("mp4");
    EXPECT_EQ(whyNoWholeVideo({format, {picture, sound}, true, false, true, 9, 10, {}}),
              std::nullopt);
    EXPECT_EQ(whyNoWholeVideo({format, {picture}, true, false, true, 5, 10, {}}), std::nullopt);
    EXPECT_EQ(whyNoWholeVideo({format, {sound}, false, true, false, 9, {}, QStringLiteral("odd")}),
              QStringLiteral("the file breaks off: odd"));
    EXPECT_EQ(whyNoWholeVideo({format, {sound}, false, true, true, 8.9, 10, {}}),
              QStringLiteral("8.90 s are there of the 10.00 s that its header tells"));
}

}  // namespace
}  // namespace reelcrate
