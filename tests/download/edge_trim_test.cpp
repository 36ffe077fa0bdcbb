#include "download/edge_trim.h"

#include "library/mp3_look.h"
#include "library/song_measure.h"
#include "support/music.h"
#include "support/printers.h"
#include "tools/shell_quote.h"

#include <QDir>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

const QString mp3 = QStringLiteral(" -c:a libmp3lame -q:a 0 ");

class EdgeTrimming : public testing::Test {
protected:
    QString makeSong(const char* expression) {
        return music.make(
            QStringLiteral("song.mp3"),
            QStringLiteral("-f lavfi -i ") +
                shellQuoted(QStringLiteral("aevalsrc='") + QString::fromLatin1(expression) +
                            QStringLiteral("':d=6")) +
                mp3);
    }

    TrimOutcome trim(const QString& path) { return trim(path, measurer.measure(path)); }

    TrimOutcome trim(const QString& path, const SongMeasure& measure) {
        return EdgeTrimmer(music.shell, music.discovery).trim(path, measure);
    }

    /// What ffprobe tells of tags, chapters and streams.
    QString contents(const QString& path) {
        return music.shell
            .runShellApart(QStringLiteral("ffprobe -v error -show_entries format_tags=title,artist,"
                                          "comment:chapter=start_time:chapter_tags=title:stream="
                                          "codec_name:stream_disposition=attached_pic -of csv ") +
                               shellQuoted(path),
                           100)
            .output;
    }

    /// Beside the song, hidden ones included.
    QStringList leftBeside(const QString& path) {
        QStringList names = QFileInfo(path).dir().entryList(QDir::Files | QDir::Hidden);
        names.removeIf([](const QString& name) { return !name.startsWith(u'.'); });
        return names;
    }

    Music music;
    SongMeasurer measurer{music.shell, music.discovery};
};

TEST_F(EdgeTrimming, LeavesNothingButTheSong) {
    const struct {
        const char* expression;
        double seconds;
    } songs[] = {
        {"0.3*sin(2000*t)*between(t,1,5)", 4},
        {"0.3*sin(2000*t)*between(t,0.02,5)", 4.98},
        {"0.5*(random(0)*2-1)*between(t,1.513,5)", 3.487},
        {"0.5*cos(2000*t)*(1-between(t,2,3))*lt(t,5.5)", 5.5},
        {"0.5*cos(2000*t)*(1-between(t,2,3))*gt(t,0.7)", 5.3},
        {"0|0.5*sin(2000*t)*between(t,1,5)", 4},
    };
    for (const auto& [expression, seconds] : songs) {
        SCOPED_TRACE(expression);
        const QString path = makeSong(expression);
        const TrimOutcome outcome = trim(path);
        EXPECT_EQ(outcome.kind, TrimOutcome::Kind::trimmed) << outcome.remark.toStdString();
        const SongMeasure trimmed = measurer.measure(path);
        EXPECT_NEAR(trimmed.decodedSeconds, seconds, 0.05);
        ASSERT_TRUE(trimmed.sound);
        EXPECT_LT(trimmed.sound->first, 0.03);
        EXPECT_GT(trimmed.sound->last, trimmed.decodedSeconds - 0.03);
        EXPECT_EQ(leftBeside(path), QStringList());
    }
}

TEST_F(EdgeTrimming, LeavesASongByteForByteThatHasNoSilentEdgesOrNoSound) {
    const struct {
        const char* expression;
        TrimOutcome::Kind kind;
    } songs[] = {
        {"0.5*cos(2000*t)*(1-between(t,2,3))", TrimOutcome::Kind::trimmed},
        {"0.3*sin(2000*t)*between(t,0.03,5.97)", TrimOutcome::Kind::trimmed},
        {"0.001*sin(2000*t)", TrimOutcome::Kind::skipped},
    };
    for (const auto& [expression, kind] : songs) {
        SCOPED_TRACE(expression);
        const QString path = makeSong(expression);
        const QByteArray before = readFile(path);
        EXPECT_EQ(trim(path).kind, kind);
        EXPECT_EQ(readFile(path), before);
    }
}

TEST_F(EdgeTrimming, KeepsCoverTagsAndChapters) {
    writeFile(music.path(QStringLiteral("words")),
              ";FFMETADATA1\ntitle=A 'title'\nartist=\xC3\x89\ncomment=c\n[CHAPTER]\n"
              "TIMEBASE=1/1000\nSTART=0\nEND=3000\ntitle=one\n[CHAPTER]\nTIMEBASE=1/1000\n"
              "START=3000\nEND=6000\ntitle=two\n");
    music.make(QStringLiteral("cover.jpg"),
               QStringLiteral("-f lavfi -i color=red:s=64x64 -frames:v 1"));
    const QString path = music.make(
        QStringLiteral("it's -\n.mp3"),
        QStringLiteral("-f lavfi -i \"aevalsrc='0.3*sin(2000*t)*between(t,1,5)':d=6\" -i cover.jpg "
                       "-i words -map 0 -map 1 -map_metadata 2 -map_chapters 2 -c:v copy "
                       "-disposition:v attached_pic -id3v2_version 3") +
            mp3);
    const QString before = contents(path);
    EXPECT_TRUE(before.contains(u"mjpeg,1")) << before.toStdString();
    EXPECT_TRUE(measurer.measure(path).hasChapters);
    EXPECT_EQ(trim(path, measureEnds(path).value()).kind, TrimOutcome::Kind::trimmed);
    const QString after = contents(path);
    EXPECT_TRUE(after.contains(u"chapter,1.9")) << after.toStdString();
    EXPECT_EQ(QString(after).replace(QRegularExpression(QStringLiteral("chapter,1\\.9\\d+")),
                                     QStringLiteral("chapter,3.000000")),
              before);
}

TEST_F(EdgeTrimming, WhatIsNoMp3IsLeft) {
    EXPECT_EQ(trim(music.path(QStringLiteral("x.m4a")), {}).kind, TrimOutcome::Kind::noMp3);
}

TEST_F(EdgeTrimming, AFailureLeavesTheSongAsItWas) {
    const QString path = makeSong("0.3*sin(2000*t)*between(t,1,5)");
    const QByteArray song = readFile(path);
    const SongMeasure measure = measurer.measure(path);
    const QByteArray real =
        "ffmpeg=/usr/bin/ffmpeg; out=${!#};\n"
        "if [ \"$out\" = - ]; then exec $ffmpeg \"$@\"; fi\n";
    const struct {
        const char* converter;
        const char* reason;
    } faults[] = {
        {"echo '[error] Out of luck' >&2; exit 1", "the converter failed: Out of luck"},
        {"$ffmpeg \"$@\"; echo '[error] Error writing trailer of x: No space left' >&2",
         "the converter failed: Error writing trailer of x: No space left"},
        {"true", "the cut song is not whole"},
        {"> \"$out\"", "the cut song is not whole"},
        {"$ffmpeg \"$@\"; truncate -s -30000 \"$out\"", "the cut song is not whole"},
        {"$ffmpeg \"$@\"; dd if=/dev/zero of=\"$out\" bs=1000 seek=20 count=1 conv=notrunc",
         "the cut song is not whole"},
        {"$ffmpeg \"$@\"; head -c 500 /dev/zero >>\"$out\"", "the cut song is not whole"},
        {"$ffmpeg -v error -y -f lavfi -i sine=d=3.5 -c:a libmp3lame \"$out\"",
         "the cut song has 3.5"},
        {"$ffmpeg \"${@/atrim/volume=0,atrim}\"", "the converter was given silence"},
    };
    for (const auto& [converter, reason] : faults) {
        SCOPED_TRACE(converter);
        music.machine.installScript(QStringLiteral("ffmpeg"),
                                    "#!/bin/bash\n" + real + converter + "\n");
        const TrimOutcome outcome = trim(path, measure);
        EXPECT_EQ(outcome.kind, TrimOutcome::Kind::skipped);
        EXPECT_TRUE(outcome.remark.startsWith(QLatin1String(reason)))
            << outcome.remark.toStdString();
        EXPECT_EQ(readFile(path), song);
        EXPECT_EQ(leftBeside(path), QStringList());
    }
}

TEST(TrimPlan, CutsWhereAtLeastOneEndIsWorthIt) {
    using Kind = TrimPlan::Kind;
    EXPECT_EQ(TrimPlan::of({true, 10, {}, SoundEdges{0.049, 9.951}, {}}).kind, Kind::leave);
    EXPECT_EQ(TrimPlan::of({true, 10, {}, SoundEdges{0.06, 10}, {}}).kind, Kind::cut);
    EXPECT_EQ(TrimPlan::of({true, 10, {}, SoundEdges{0, 9.94}, {}}).kind, Kind::cut);
    EXPECT_EQ(TrimPlan::of({true, 10, {}, {}, {}}).kind, Kind::silent);
}

}  // namespace
}  // namespace reelcrate
