#include "library/file_names.h"

#include "support/texts.h"

namespace reelcrate {
namespace {

const QString today = QStringLiteral("7-4-26 Playlist");
const QString singer = QStringLiteral("\U0001F469\u200D\U0001F3A4");  // one character, 11 bytes

TEST(SafeOutputStem, IsOneSafeLine) {
    expectTexts(safeOutputStem, {{"AC/DC: Back in Black?", "AC-DC- Back in Black-"},
                                 {" \t\n\u00A0\u3000", "Spotify Match"},
                                 {"", "Spotify Match"},
                                 {"a\r\n\t b\u2028\u00A0c \v", "a b c"},
                                 {"/\\:?%*|\"<>", "----------"},
                                 {"100% $HOME", "100- $HOME"},
                                 {"../../etc/passwd", "..-..-etc-passwd"}});
    EXPECT_EQ(safeOutputStem(QString(300, u'x')), QString(140, u'x'));
    EXPECT_EQ(safeOutputStem(singer.repeated(141)), singer.repeated(140));
}

TEST(SpotifyFileStem, HoldsNoVariableAndFitsAName) {
    expectTexts(spotifyFileStem,
                {{"$HOME ${x} $_ $5 a$ $$A", "-HOME -{x} -_ $5 a$ $-A"}, {"", "Spotify Match"}});
    EXPECT_EQ(spotifyFileStem(QStringLiteral("a$") + QChar::Null + u'b'), text("a$-b"));
    EXPECT_EQ(spotifyFileStem(QString(300, u'x')), QString(140, u'x'));
    EXPECT_EQ(spotifyFileStem(QString(300, QChar(0x4E2D))), QString(60, QChar(0x4E2D)));
    EXPECT_EQ(spotifyFileStem(singer.repeated(20)), singer.repeated(16));
}

TEST(SanitizedFolderName, KeepsWhatAFolderMayBeCalled) {
    expectTexts([](const QString& event) { return sanitizedFolderName(event, today); },
                {{"Prom: 2026/27", "Prom- 2026-27"},
                 {" \n Prom\t\tNight \u00A0", "Prom\t\tNight"},
                 {" \n ", "7-4-26 Playlist"},
                 {"..", ".."},
                 {"$HOME", "$HOME"}});
    EXPECT_EQ(sanitizedFolderName(QString(400, u'x'), today).size(), 400);
}

TEST(EventFolder, StaysInsideTheOutputFolder) {
    expectTexts([](const QString& event) { return eventFolderPath(text("/music"), event, today); },
                {{".", "/music/-"},
                 {" .. ", "/music/--"},
                 {"...", "/music/..."},
                 {"../..", "/music/..-.."},
                 {"/etc", "/music/-etc"},
                 {"Ca$h ${HOME} $_ $1 5$", "/music/Ca-h -{HOME} -_ $1 5$"},
                 {"", "/music/7-4-26 Playlist"},
                 {"100% it's", "/music/100- it's"}});
    EXPECT_EQ(eventFolderPath(text("/music/"), text("A"), today), text("/music/A"));
    EXPECT_EQ(eventFolderPath(text("/"), text("A"), today), text("/A"));
}

TEST(HoldsShellVariable, LooksAtWhatFollowsTheDollar) {
    for (const char* path : {"/a/$HOME/b", "/${x}", "/a$_", "/$$x", "/\u00E9$\u00E9"})
        EXPECT_TRUE(holdsShellVariable(text(path))) << path;
    for (const char* path : {"", "/a$", "/$/HOME", "/$5", "/$ x", "/$$", "/$-"})
        EXPECT_FALSE(holdsShellVariable(text(path))) << path;
}

}  // namespace
}  // namespace reelcrate
