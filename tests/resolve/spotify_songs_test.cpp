#include "resolve/spotify_songs.h"

#include "support/argument_printer.h"
#include "support/rows.h"
#include "support/sample.h"
#include "support/texts.h"

#include <QJsonDocument>

namespace reelcrate {
namespace {

const char* const rateLimit =
    "Spotify is rate-limiting playlist lookup right now. Try again later or connect Spotify with "
    "authenticated library access.";
const char* const privateList =
    "This looks like a Spotify library/private playlist. It needs Spotify sign-in access before "
    "the songs can be listed.";
const char* const signIn =
    "This Spotify playlist needs signed-in library access before the songs can be listed.";
const char* const unreadable =
    "Could not read Spotify songs yet. Private/library playlists need Spotify sign-in access; "
    "public playlists should expand automatically.";

TEST(SpotifyOutput, ListsTheSongsWhateverStandsAroundThem) {
    const QString list = sample("spotdl_playlist.txt");
    const QString oneBad = sample("spotdl_one_bad.txt");
    for (const QString& output : {list, text("Processing query\n") + list + text("\nSaved 2\n"),
                                  oneBad, QString(oneBad).replace(u'\n', text("\r\n"))}) {
        const QueueResolution resolution = resolutionFromSpotifyOutput(0, output);
        EXPECT_FALSE(resolution.failure);
        const PlaylistEntry first{text("https://open.spotify.com/track/2TpxZ7JUBn3uw46aR7qd6V"),
                                  SourceType::spotify, text("\u00C9lan - D\u00E9j\u00E0 Vu"),
                                  text("3:35"), text("https://i.scdn.co/image/ab67616d0000b273aa")};
        const PlaylistEntry second{text("https://open.spotify.com/track/7ouMYWpwJ422jRcDASZB7P"),
                                   SourceType::spotify, text("The Tuxedos - Slow Dance \U0001F3B5"),
                                   text("1:00:00"), QString()};
        EXPECT_EQ(resolution.entries, QList({first, second}));
    }
}

TEST(SpotifyOutput, TellsWhyThereAreNoSongs) {
    struct Case {
        int status;
        QString output;
        const char* failure;
    };
    const Case cases[] = {
        {1, sample("spotdl_429.txt"), rateLimit},
        {1, sample("spotdl_404.txt"), rateLimit},
        {1, sample("spotdl_saved.txt"), unreadable},
        {1, sample("spotdl_no_ffmpeg.txt"), unreadable},
        {124, sample("spotdl_playlist.txt"), unreadable},
        {0, text("\n"), unreadable},
        {0, text("[]"), unreadable},
        {0, text("] ["), unreadable},
        {0, text("[1, 2] UnAuthorized"), signIn},
        {0, text(R"([{"name": "429 only", "artist": "A"}])"), rateLimit},
        {0, text(R"([{"name": "N", "url": "u"}, null])"), unreadable},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.output.toStdString());
        const QueueResolution resolution = resolutionFromSpotifyOutput(c.status, c.output);
        EXPECT_TRUE(resolution.entries.isEmpty());
        EXPECT_EQ(resolution.failure, text(c.failure));
    }
    EXPECT_EQ(spotifyNeedsSetup().failure,
              text("Spotify playlist expansion needs Setup to install the Spotify helper."));
}

TEST(SpotifyFailureMessage, TakesTheFirstGroupThatFits) {
    expectTexts(spotifyFailureMessage, {{"Rate/Request Limit", rateLimit},
                                        {"404 not found: retry will occur after 5 s", rateLimit},
                                        {"ownerV2 missing", privateList},
                                        {"Resource NotFound, please login", privateList},
                                        {"playlistV2 is private", privateList},
                                        {"Login required", signIn},
                                        {"403 FORBIDDEN", signIn},
                                        {"", unreadable}});
}

TEST(SpotifyArtistName, FallsBackToAllArtists) {
    const auto artist = [](const QString& song) {
        return spotifyArtistName(QJsonDocument::fromJson(song.toUtf8()).object());
    };
    expectTexts(artist, {{R"({"artist": " A ", "artists": ["B"]})", "A"},
                         {R"({"artist": "", "artists": ["A", "B"]})", "A, B"},
                         {R"({"artists": [" A", "", "B "]})", " A, , B "},
                         {R"({"artists": [" A", "", 7, null, {"name": "C"}]})", "A, 7"},
                         {R"({"artist": null, "artists": []})", ""},
                         {R"({"artists": "A"})", ""}});
}

TEST(SpotifySongs, WithoutNameOrAddressAreLeftOut) {
    const QJsonDocument songs = QJsonDocument::fromJson(R"([{"name": "N"}, {"url": "u"},
        {"name": " ", "url": "u"}, {"name": 99, "url": " u ", "duration_string": "9:59"}])");
    const PlaylistEntry only{text("u"), SourceType::spotify, text("99"), text("9:59"), QString()};
    EXPECT_EQ(playlistEntriesFromSpotifyJSON(songs.array()), QList({only}));
}

TEST(SpotifySearchQuery, AsksForTheTitleOrElseTheAddress) {
    const auto query = [](const char* title, DownloadMode mode) {
        return spotifySearchQuery(makeRow(SourceType::spotify, text(title), text("URL")), mode);
    };
    EXPECT_EQ(query("\u3000A - B\n", DownloadMode::audio), text("ytsearch1:A - B official audio"));
    EXPECT_EQ(query("A - B", DownloadMode::video), text("ytsearch1:A - B official video"));
    EXPECT_EQ(query(" \t", DownloadMode::audio), text("ytsearch1:URL official audio"));
    EXPECT_EQ(spotifyHitsQuery(makeRow(SourceType::spotify, text("A")), DownloadMode::audio),
              text("ytsearch5:A official audio"));
}

TEST(SpotifyListCommand, PrintsTheList) {
    ArgumentPrinter tool(text("spot dl"));
    const Invocation call = tool.run(spotifyListCommand(text("/b"), tool.path(), text("LINK")));
    EXPECT_EQ(call.arguments,
              text("save LINK --save-file - --threads 4 --log-level ERROR").split(u' '));
}

}  // namespace
}  // namespace reelcrate
