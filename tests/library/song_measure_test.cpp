#include "library/song_measure.h"

#include "library/mp3_look.h"
#include "library/pcm_stream.h"
#include "support/music.h"
#include "support/printers.h"
#include "tools/shell_quote.h"

#include <QDir>

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

const QString mp3 = QStringLiteral(" -c:a libmp3lame -q:a 0 ");
const QString forward =
    QStringLiteral("silenceremove=start_periods=1:start_duration=0.01:start_threshold=-55dB");
const QString wholeChain =
    forward + QStringLiteral(
                  ",areverse,"
                  "silenceremove=start_periods=1:start_duration=0.02:start_threshold=-55dB,"
                  "areverse");

QString source(const QString& expression, const QString& options = {}) {
    return QStringLiteral("-f lavfi -i ") +
           shellQuoted(QStringLiteral("aevalsrc='") + expression + u'\'' + options);
}

QString source(const char* expression, const char* options = ":d=6") {
    return source(QString::fromLatin1(expression), QString::fromLatin1(options));
}

class SongMeasuring : public testing::Test {
protected:
    /// What decoding tells. What the ends alone tell must be the same.
    SongMeasure measure(const QString& path) {
        SongMeasure all = SongMeasurer(music.shell, music.discovery).measure(path);
        if (const auto ends = measureEnds(path)) {
            EXPECT_NEAR(ends->decodedSeconds, all.decodedSeconds, 0.0001);
            EXPECT_EQ(ends->hasChapters, all.hasChapters);
            EXPECT_EQ(ends->sound.has_value(), all.sound.has_value());
            EXPECT_NEAR(ends->sound.value_or(SoundEdges{}).first,
                        all.sound.value_or(SoundEdges{}).first, 0.001);
            EXPECT_NEAR(ends->sound.value_or(SoundEdges{}).last,
                        all.sound.value_or(SoundEdges{}).last, 0.001);
        }
        return all;
    }

    /// Where ffmpeg's own filters cut: what they leave is as long as the bytes that they write.
    SoundEdges edgesOfChain(const QString& path, double seconds) {
        const auto kept = [&](const QString& filters) {
            return static_cast<double>(
                       music.bytesFrom(QStringLiteral("-i ") + shellQuoted(path) +
                                       QStringLiteral(" -map 0:a:0 -af ") + filters +
                                       QStringLiteral(" -ar 44100 -ac 1 -f s16le -"))) /
                   2 / 44100;
        };
        const double first = seconds - kept(forward);
        return {first, first + kept(wholeChain)};
    }

    struct EdgySong {
        const char* name;
        QString words;
        int cutEnds;  ///< at how many of its ends there is silence
    };

    void expectEdgesOfChain(std::initializer_list<EdgySong> songs) {
        for (const auto& [name, words, cutEnds] : songs) {
            SCOPED_TRACE(name);
            const bool lossless = words.contains(u"flac");
            const QString path =
                music.make(lossless ? QStringLiteral("song.flac") : QStringLiteral("song.mp3"),
                           words + (lossless ? QString() : mp3));
            const SongMeasure song = measure(path);
            const SoundEdges chain = edgesOfChain(path, song.decodedSeconds);
            ASSERT_TRUE(song.sound);
            EXPECT_LT(song.sound->first, chain.first + (newFilters ? 0.02 : 0.005));
            EXPECT_GT(song.sound->last, chain.last - (newFilters ? 0.02 : 0.005));
            // Newer filters also cut sound: what they wait for, and where one channel is silent.
            if (newFilters)
                continue;
            EXPECT_GT(song.sound->first, chain.first - 0.005);
            EXPECT_LT(song.sound->last, chain.last + 0.005);
            EXPECT_EQ(
                (chain.first > 0.05 ? 1 : 0) + (song.decodedSeconds - chain.last > 0.05 ? 1 : 0),
                cutEnds);
            EXPECT_EQ(whyNoWholeSong(song), std::nullopt);
        }
    }

    Music music;
    const QString version =
        music.shell.runShellApart(QStringLiteral("ffmpeg -version"), {}).output.section(u' ', 2, 2);
    const bool newFilters = version.section(u'.', 0, 0).toInt() > 5;
};

TEST_F(SongMeasuring, FindsTheEdgesWhereFfmpegsOwnFiltersCut) {
    expectEdgesOfChain({
        {"silence at both ends", source("0.3*sin(2000*t)*between(t,1,5)"), 2},
        {"at the start only", source("0.3*sin(2000*t)*gt(t,1.2)*min(1,(6-t)*9)"), 1},
        {"at the end only", source("0.3*sin(2000*t)*lt(t,4.4)"), 1},
        {"at none", source("0.3*sin(2000*t)*min(1,(6-t)*9)"), 0},
        {"fades", source("0.5*sin(3000*t)*exp(-abs(t-3)*4)"), 2},
        {"slow fades", source("0.02*sin(900*t)*exp(-abs(t-3)*1.2)"), 2},
        {"noise floor of -61 dB", source("0.00155*(random(0)*2-1)+0.2*sin(2000*t)*between(t,2,4)"),
         2},
        {"noise floor of -56 dB", source("0.00274*(random(0)*2-1)+0.2*sin(2000*t)*between(t,2,4)"),
         2},
        {"noise floor of -54 dB", source("0.00345*(random(0)*2-1)+0.2*sin(2000*t)*between(t,2,4)"),
         0},
    });
}

TEST_F(SongMeasuring, FindsThemInWhateverFormTheSongComes) {
    expectEdgesOfChain({
        {"pauses inside", source("0.3*sin(2000*t)*between(t,0.5,5.5)*lt(mod(t,1.4),0.9)"), 2},
        {"one channel only", source("0|0.4*sin(2000*t)*between(t,1,5)*exp(-abs(t-3)*3)"), 2},
        {"two unlike channels, fading",
         source("0.4*sin(2000*t)*exp(-abs(t-3)*3)|0.3*sin(900*t)*exp(-abs(t-3.1)*3)"), 2},
        {"faint blips around",
         source("0.004*sin(9000*t)*(between(t,0.5,0.503)+between(t,5.4,5.41))"
                "+0.3*sin(2000*t)*between(t,2,4)"),
         2},
        {"strong blips around",
         source("0.5*sin(9000*t)*(between(t,0.5,0.503)+between(t,5.4,5.41))"
                "+0.3*sin(2000*t)*between(t,2,4)"),
         2},
        {"six channels at 48 kHz",
         source("0|0|0.1*sin(2000*t)*between(t,1,5)|0|0|0", ":c=5.1:s=48000:d=6") +
             QStringLiteral(" -c:a flac"),
         2},
        {"8 kHz", source("0.3*sin(2000*t)*between(t,1,5)", ":s=8000:d=6"), 2},
        {"96 kHz",
         source("0.3*sin(2000*t)*between(t,1,5)", ":s=96000:d=6") + QStringLiteral(" -c:a flac"),
         2},
    });
}

TEST_F(SongMeasuring, FindsTheEdgesOfSongsThatBeginAndEndLoud) {
    const struct {
        const char* expression;
        double first;
        double last;
    } songs[] = {
        {"0.5*cos(2*PI*340*t)*(1-between(t,3,4))", 0, 8},
        {"0.5*cos(2*PI*340*t)*lt(t,5)", 0, 5},
        {"0.5*cos(2*PI*340*t)*gt(t,2)", 2, 8},
    };
    for (const auto& [expression, first, last] : songs) {
        SCOPED_TRACE(expression);
        const auto sound =
            measure(music.make(QStringLiteral("song.mp3"), source(expression, ":d=8") + mp3)).sound;
        ASSERT_TRUE(sound);
        EXPECT_NEAR(sound->first, first, 0.03);
        EXPECT_NEAR(sound->last, last, 0.03);
    }
}

TEST_F(SongMeasuring, AQuietSongIsWholeAndHasNoSound) {
    const SongMeasure song =
        measure(music.make(QStringLiteral("song.mp3"), source("0.001*sin(900*t)") + mp3));
    EXPECT_EQ(whyNoWholeSong(song), std::nullopt);
    EXPECT_FALSE(song.sound);
    EXPECT_NEAR(song.decodedSeconds, 6, 0.05);
}

TEST_F(SongMeasuring, ReadsFilesOfAnyName) {
    const QString song = music.make(QStringLiteral("plain.mp3"), source("0.3*sin(900*t)") + mp3);
    for (const char* name : {"it's \"so\" $HOME `x`.mp3", "line\nbreak.mp3", "-dash.mp3",
                             "http:x.mp3", "100%03d [*?].mp3", "\u00E9\U0001F3B5.mp3"}) {
        const QString path = music.path(QString::fromUtf8(name));
        ASSERT_TRUE(QFile::copy(song, path));
        EXPECT_EQ(whyNoWholeSong(measure(path)), std::nullopt) << name;
    }
}

TEST_F(SongMeasuring, TellsSongsThatAreNotWhole) {
    const auto written = [&](const char* name, const QByteArray& content) {
        QString path = music.path(QString::fromLatin1(name));
        EXPECT_TRUE(writeFile(path, content));
        return path;
    };
    const QString tone = source("0.3*sin(900*t)", ":d=8");
    const QByteArray song = readFile(music.make(QStringLiteral("song.mp3"), tone + mp3));
    const QByteArray film = readFile(
        music.make(QStringLiteral("song.m4a"), tone + QStringLiteral(" -movflags faststart")));
    const QByteArray plain = readFile(
        music.make(QStringLiteral("plain.mp3"), tone + mp3 + QStringLiteral("-write_xing 0")));
    const QByteArray slower = readFile(music.make(
        QStringLiteral("slower.mp3"), tone + mp3 + QStringLiteral("-write_xing 0 -ar 22050")));
    QByteArray damaged = song;
    damaged.replace(damaged.size() / 2, 700, QByteArray(700, 'x'));
    const QString cover = music.make(QStringLiteral("cover.png"),
                                     QStringLiteral("-f lavfi -i color=red:s=64x64 -frames:v 1"));
    const struct {
        const char* file;
        QString path;
        const char* reason;
        bool isTableTrue = false;  ///< the header's, of the frames
    } files[] = {
        {"a song with a cover",
         music.make(QStringLiteral("covered.mp3"),
                    tone + QStringLiteral(" -i ") + shellQuoted(cover) +
                        QStringLiteral(" -map 0 -map 1 -disposition:v attached_pic") + mp3),
         "", true},
        {"a title that tells a length",
         music.make(QStringLiteral("titled.mp3"),
                    tone + mp3 +
                        QStringLiteral("-metadata title=$'x\\n[info]   Duration: "
                                       "00:00:01.00, start' -metadata "
                                       "'  Duration: 00:00:01.00'=1")),
         "", true},
        {"a variable rate without a table", written("plain2.mp3", plain), ""},
        {"two rates", written("rates.mp3", plain + slower), ""},
        {"a few damaged bytes", written("damaged.mp3", damaged), ""},
        {"a text", written("text.mp3", "This is no song.\n"), "does not decode: "},
        {"nothing", written("empty.mp3", {}), "does not decode: "},
        {"no file", music.path(QStringLiteral("none.mp3")), "does not decode: "},
        {"a picture", cover, "does not decode: "},
        {"a song cut between two frames",
         written("cut0.mp3", song.left(song.lastIndexOf("\xFF\xFB"))), ""},
        {"a song cut in two", written("cut.mp3", song.left(song.size() / 2)),
         "3.95 s decode of the 8.05 s that its header tells"},
        {"a little cut off", written("cut2.mp3", song.left(song.size() - song.size() / 12)), "7."},
        {"a film's sound cut in two", written("cut.m4a", film.left(film.size() / 2)),
         "decoding broke off after "},
        {"less than a tenth of a second",
         music.make(QStringLiteral("short.mp3"), source("0.3*sin(900*t)", ":d=0.09") + mp3),
         "only 0.09 s of sound", true},
        {"a tag behind the song", written("tagged.mp3", song + "TAG" + QByteArray(125, 'x')), "",
         true},
        {"no tag behind the song", written("more.mp3", song + QByteArray(128, 'T')), ""},
        {"two songs", written("two.mp3", song + plain), ""},
    };
    for (const auto& [name, path, reason, isTableTrue] : files) {
        SCOPED_TRACE(name);
        const SongMeasure song = measure(path);
        const QString why = whyNoWholeSong(song).value_or(QString());
        EXPECT_TRUE(QLatin1String(reason).isEmpty() ? why.isEmpty()
                                                    : why.startsWith(QLatin1String(reason)))
            << why.toStdString();
        EXPECT_EQ(measureEnds(path).has_value(), isTableTrue);
    }
    EXPECT_NEAR(measure(music.path(QStringLiteral("rates.mp3"))).decodedSeconds, 16, 0.2);
}

TEST_F(SongMeasuring, ADecoderThatDiesLeavesNoWholeSong) {
    const QString path =
        music.make(QStringLiteral("song.mp3"),
                   source("0.3*sin(900*t)") + mp3 + QStringLiteral("-write_xing 0"));
    const std::pair<const char*, const char*> decoders[] = {
        {"/usr/bin/ffmpeg \"$@\" | head -c 88224; exit 1", "decoding broke off after 1.00 s"},
        {"echo '[error] Out of luck' >&2", "does not decode: Out of luck"},
    };
    for (const auto& [decoder, reason] : decoders) {
        music.machine.installScript(QStringLiteral("ffmpeg"),
                                    QByteArray("#!/bin/bash\n") + decoder + "\n");
        const QString why = whyNoWholeSong(measure(path)).value_or(QString());
        EXPECT_TRUE(why.startsWith(QString::fromLatin1(reason))) << why.toStdString();
    }
}

TEST(PcmStream, ReadsPiecesOfAnySizeAndNothingElse) {
    const QByteArray header =
        QByteArray::fromHex("2e736e640000001cffffffff00000003000000640000000200000000");
    const QByteArray samples = QByteArray::fromHex("7fff8000").repeated(50);
    PcmStream stream;
    for (const char byte : header + samples + samples.first(3))  // with half a frame at the end
        stream.add(QByteArray(1, byte));
    ASSERT_TRUE(stream.meter());
    EXPECT_DOUBLE_EQ(stream.meter()->finish()->last, 0.5);
    EXPECT_DOUBLE_EQ(stream.meter()->seconds(), 0.5);

    for (const qsizetype field : {0, 1, 3, 4, 5}) {
        SCOPED_TRACE(field);
        PcmStream other;
        other.add(QByteArray(header).replace(4 * field, 4, QByteArray(4, '\0')) + samples);
        EXPECT_FALSE(other.meter());
        other.add(header + samples);
        EXPECT_FALSE(other.meter());
    }
}

TEST(WhyNoWholeSong, LooksAtLengthAndHeader) {
    EXPECT_EQ(whyNoWholeSong({true, 0.1, 0.6, {}, {}}), std::nullopt);
    EXPECT_EQ(whyNoWholeSong({true, 0.099, {}, {}, {}}), QStringLiteral("only 0.10 s of sound"));
    EXPECT_EQ(whyNoWholeSong({true, 9, 9.51, {}, QStringLiteral("odd")}),
              QStringLiteral("9.00 s decode of the 9.51 s that its header tells: odd"));
    EXPECT_NE(whyNoWholeSong({true, 9.51, 9, {}, {}}), std::nullopt);
    EXPECT_EQ(whyNoWholeSong({false, 9, 9, {}, {}}),
              QStringLiteral("decoding broke off after 9.00 s"));
}

}  // namespace
}  // namespace reelcrate
