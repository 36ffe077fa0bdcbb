#include "library/loudness_meter.h"
#include "library/replay_gain.h"
#include "library/song_measure.h"
#include "support/music.h"
#include "support/texts.h"
#include "tools/shell_quote.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace reelcrate {
namespace {

constexpr int rate = 48'000;

/// Seconds of a tone on all channels, at a level in dB below full scale, then as many of silence.
std::optional<Loudness> toneLoudness(double seconds, double hertz, double decibels, int channels,
                                     double phase = 0) {
    LoudnessMeter meter(rate, channels);
    const auto frames = static_cast<int>(seconds * rate);
    std::vector<qint16> samples;
    for (int frame = 0; frame < frames; ++frame)
        samples.insert(samples.end(), static_cast<size_t>(channels),
                       static_cast<qint16>(std::lround(
                           32'767 * std::pow(10, decibels / 20) *
                           std::sin(2 * std::numbers::pi * hertz * frame / rate + phase))));
    meter.add(samples);
    meter.add(std::vector<qint16>(samples.size(), 0));
    return meter.loudness();
}

// The first four as EBU Tech 3341 has them for meters.
TEST(LoudnessMeter, AgreesWithWhatIsKnownOfTones) {
    EXPECT_NEAR(toneLoudness(20, 1000, -23, 2)->lufs, -23, 0.1);
    EXPECT_NEAR(toneLoudness(20, 1000, -33, 2)->lufs, -33, 0.1);
    EXPECT_NEAR(toneLoudness(20, 1000, -23, 1)->lufs, -26, 0.1);
    EXPECT_NEAR(toneLoudness(5, rate / 4.0, -6, 2, std::numbers::pi / 4)->peak, 0.5, 0.02);
    EXPECT_NEAR(toneLoudness(5, 1000, -20, 1)->peak, 0.1, 0.001);
    EXPECT_EQ(toneLoudness(0.19, 1000, -23, 2), std::nullopt);
    EXPECT_EQ(toneLoudness(5, 1000, -90, 2), std::nullopt);
}

class LoudnessTags : public testing::Test {
protected:
    QString tone(const char* expression, const char* options = "") {
        const QString name = QStringLiteral("Lied – «Песня».mp3");
        return music.make(
            name, QStringLiteral("-f lavfi -i %1 %2 -q:a 0")
                      .arg(shellQuoted(QStringLiteral("aevalsrc='%1':d=12").arg(text(expression))),
                           text(options)));
    }

    QString outputOf(const QString& command, const QString& path) {
        return music.shell.runShellApart(command + shellQuoted(path), 60).output;
    }

    /// What another program measures in the file: loudness, true peak.
    QStringList measuredElsewhere(const QString& path) {
        const QString table = outputOf(QStringLiteral("loudgain -O -q "), path);
        const QStringList cells = table.section(u'\n', 1, 1).split(u'\t');
        return {cells.value(1), cells.value(3)};
    }

    /// A tag as ffprobe reads it.
    QString tag(const QString& path, const char* name) {
        return outputOf(QStringLiteral("ffprobe -v error -of default=nk=1:nw=1 -show_entries ") +
                            QStringLiteral("format_tags=%1 ").arg(text(name)),
                        path)
            .trimmed();
    }

    QString soundHash(const QString& path) {
        return SongMeasurer(music.shell, music.discovery).soundHash(path);
    }

    Music music;
};

TEST_F(LoudnessTags, AreWhatAnotherProgramMeasures) {
    const char* songs[] = {
        "0.9*sin(400*t)|0.1*sin(700*t)",
        "0.02*sin(3000*t)*lt(mod(t,2),1)",
        "1.2*sin(150*t)+random(0)*0.2|sin(90*t*t)",
        "0.3*sin(2000*t)*between(t,4,9)",
    };
    for (const char* expression : songs) {
        SCOPED_TRACE(expression);
        const QString path = tone(expression);
        const SongMeasure song =
            SongMeasurer(music.shell, music.discovery).measure(path, MeasureLoudness::yes);
        ASSERT_TRUE(song.loudness);
        const QStringList elsewhere = measuredElsewhere(path);
        EXPECT_NEAR(song.loudness->lufs, elsewhere.first().section(u' ', 0, 0).toDouble(), 0.1);
        EXPECT_NEAR(song.loudness->peak, elsewhere.last().toDouble(), 0.01);
        ASSERT_EQ(tagLoudness(path, *song.loudness), QString());
        EXPECT_EQ(tag(path, "REPLAYGAIN_TRACK_GAIN"),
                  QString::number(-18 - song.loudness->lufs, 'f', 2) + QStringLiteral(" dB"));
        EXPECT_NEAR(taggedLoudness(path)->lufs, song.loudness->lufs, 0.01);
        EXPECT_NEAR(taggedLoudness(path)->peak, song.loudness->peak, 0.00001);
    }
}

TEST_F(LoudnessTags, LeaveAllElseAsItWas) {
    ASSERT_TRUE(writeFile(music.path(QStringLiteral("tags")),
                          ";FFMETADATA1\ntitle=Hallo\nartist=Ярга\ndate=2024\n"
                          "replaygain_track_gain=+99.00 dB\n"
                          "[CHAPTER]\nTIMEBASE=1/1\nSTART=0\nEND=5\ntitle=One\n"));
    const QString path = tone("0.4*sin(500*t)",
                              "-i tags -f lavfi -i color=red:s=64x64:d=0.04 -map 0 -map 2 "
                              "-map_metadata 1 -c:v mjpeg -disposition:v attached_pic "
                              "-id3v2_version 3");
    const QString sound = soundHash(path);
    ASSERT_NE(sound, QString());
    EXPECT_NEAR(taggedLoudness(path)->lufs, -117, 0.01);
    for (const double lufs : {-7.1, -9.25}) {  // the second time in place of the first
        ASSERT_EQ(tagLoudness(path, {lufs, 0.5}), QString());
        EXPECT_NEAR(taggedLoudness(path)->lufs, lufs, 0.001);
    }
    EXPECT_EQ(soundHash(path), sound);
    EXPECT_EQ(tag(path, "title"), QStringLiteral("Hallo"));
    EXPECT_EQ(tag(path, "artist"), QStringLiteral("Ярга"));
    EXPECT_EQ(tag(path, "date"), QStringLiteral("2024"));
    EXPECT_TRUE(readFile(path).startsWith("ID3\x03"));
    const QString streams =
        outputOf(QStringLiteral("ffprobe -v error -show_chapters -show_streams "), path);
    EXPECT_THAT(streams.toStdString(), testing::HasSubstr("attached_pic=1"));
    EXPECT_THAT(streams.toStdString(), testing::HasSubstr("TAG:title=One"));
}

TEST_F(LoudnessTags, AreMissingWhereTheyCannotBeWrittenAndNothingElseIs) {
    const QString path = tone("0.4*sin(500*t)");
    const QByteArray before = readFile(path);
    const QString folder = QFileInfo(path).path();
    EXPECT_NE(tagLoudness(music.path(QStringLiteral("none.mp3")), {-9, 1}), QString());
    ASSERT_TRUE(writeFile(music.path(QStringLiteral("text.mp3")), "no song at all"));
    EXPECT_NE(tagLoudness(music.path(QStringLiteral("text.mp3")), {-9, 1}), QString());
    EXPECT_EQ(taggedLoudness(path), std::nullopt);
    for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden))
        EXPECT_FALSE(name.startsWith(QStringLiteral(".gain-"))) << name.toStdString();
    EXPECT_EQ(readFile(path), before);
}

}  // namespace
}  // namespace reelcrate
