#include "download/song_finish.h"

#include "library/event_library.h"
#include "library/replay_gain.h"
#include "records/row_texts.h"
#include "support/music.h"
#include "support/texts.h"

#include <QDir>

namespace reelcrate {
namespace {

class SongFinishing : public testing::Test {
protected:
    QString makeSong(const char* name, int hertz, int seconds) {
        return music.make(text(name), text("-f lavfi -i sine=%1:d=%2").arg(hertz).arg(seconds));
    }

    Music music;
    EventLibrary library;
    const SongFinisher finisher{music.shell, music.discovery, library};
    const SongFinisher::Log log = [](const QString&) {};
};

TEST_F(SongFinishing, ASongThatIsShorterThanItsSourceIsNotWhole) {
    const QString song = makeSong("song.mp3", 440, 3);
    for (const auto& [source, isWhole] : {std::pair(3.4, true), std::pair(3.7, false)})
        EXPECT_EQ(finisher.prepare(song, {}, {.sourceSeconds = source, .listedLength = {}}, log)
                      .has_value(),
                  isWhole);
}

TEST_F(SongFinishing, WhetherItIsCutOrNotASongIsDecodedAndItsDamageNamedOnce) {
    const QString edgy = text("sin(2000*t)*gt(t,2)");
    const QString loud = text("sin(2000*t)");
    const QByteArray complaining = "/usr/bin/ffmpeg \"$@\"; echo '[error] Odd' >&2";
    const QByteArray cannotCut = "[ \"${!#}\" != - ] || exec /usr/bin/ffmpeg \"$@\"; exit 1";
    const struct {
        QString sound;
        QString options;
        QByteArray ffmpeg;
        std::optional<QString> detail;
        int complaints;
    } songs[] = {
        {edgy, {}, complaining, row_text::trimmed, 1},
        {edgy, text("-write_xing 0"), complaining, row_text::trimmed, 1},
        {loud, {}, complaining, row_text::trimmed, 1},
        {edgy, {}, cannotCut, row_text::trimSkipped, 1},
        {edgy, {}, "exit 1", std::nullopt, 2},
        {loud, {}, "exit 1", std::nullopt, 1},
    };
    for (const auto& [sound, options, ffmpeg, detail, complaints] : songs) {
        music.machine.linkConverter();
        const QString song = music.make(
            text("song.mp3"), text("-f lavfi -i \"aevalsrc='%1':d=6\" ").arg(sound) + options);
        music.machine.installScript(text("ffmpeg"), "#!/bin/bash\n" + ffmpeg + '\n');
        int lines = 0;
        const auto prepared = finisher.prepare(song, {}, {}, [&lines](const QString&) { ++lines; });
        EXPECT_EQ(prepared ? std::optional(prepared->detail) : std::nullopt, detail);
        EXPECT_EQ(lines, complaints);
    }
}

TEST_F(SongFinishing, WhatIsTooShortForASongIsNotCutIntoOne) {
    const QString song = music.make(
        text("song.mp3"), text("-f lavfi -i \"aevalsrc='sin(2000*t)*gt(t,0.06)':d=0.09\""));
    EXPECT_FALSE(finisher.prepare(song, {}, {}, log));
}

TEST_F(SongFinishing, ASongThatIsCutHasItsLoudnessToo) {
    const QString song =
        music.make(text("song.mp3"), text("-f lavfi -i \"aevalsrc='sin(2000*t)*gt(t,2)':d=6\""));
    finisher.prepare(song, {}, {{}, MeasureLoudness::yes, {}}, log);
    EXPECT_TRUE(taggedLoudness(song));
}

TEST_F(SongFinishing, WhatIsNotAsLongAsListedIsComparedWithWhatWasFetched) {
    const QString song = makeSong("song.mp3", 440, 3);
    const QByteArray fetched = readFile(makeSong("fetched.flac", 440, 6));
    writeFile(music.path(text("song.flac.fetched")), fetched.left(fetched.size() / 2));
    for (const auto& [listed, isLookedAt] : {std::pair("0:03", false), std::pair("0:04", false),
                                             std::pair("0:05", true), std::pair("", true)})
        EXPECT_EQ(finisher.prepare(song, {}, {{}, {}, text(listed)}, log)->brokenOff.has_value(),
                  isLookedAt)
            << listed;
}

TEST_F(SongFinishing, ANameThatIsTakenStaysTheOtherSongs) {
    const EventTarget target{music.path(text("Prom")), DownloadMode::audio};
    QDir().mkpath(target.folder);
    makeSong("Prom/song.mp3", 440, 3);  // of an earlier start: only its length is compared
    const struct {
        int hertz;
        int seconds;
        const char* name;
    } songs[] = {{880, 3, "song.mp3"},
                 {440, 5, "song (2).mp3"},
                 {880, 5, "song (3).mp3"},
                 {440, 5, "song (2).mp3"}};
    for (int key = 0; const auto& [hertz, seconds, name] : songs)
        EXPECT_EQ(finisher.enter(makeSong("song.mp3", hertz, seconds), QString::number(++key),
                                 target, log),
                  target.folder + u'/' + text(name));
}

}  // namespace
}  // namespace reelcrate
