#include "queue/links.h"

#include "support/texts.h"

namespace reelcrate {
namespace {

TEST(ExtractLinks, FindsThemInProse) {
    const auto joined = [](const QString& pasted) { return extractLinks(pasted).join(u' '); };
    expectTexts(joined,
                {{"", ""},
                 {"no link, not even www.youtube.com or ftp://a.example/", ""},
                 {"HTTPS://A.EXAMPLE/X Http://a.example", ""},
                 {"(https://a.example/x).", "https://a.example/x"},
                 {"<a href=\"https://a.example/x\">", "https://a.example/x"},
                 {"{'u': ['https://a.example/x']};", "https://a.example/x"},
                 {"see https://a.example/x\u00A0there", "https://a.example/x"},
                 {"see\u3000https://a.example/x\u2028there", "https://a.example/x"},
                 {"https://a.example/x\r\nhttp://b.example/y\thttps://a.example/x",
                  "https://a.example/x http://b.example/y https://a.example/x"},
                 {"https://a.example/(x)/y,z;w?q=[1]", "https://a.example/(x)/y,z;w?q=[1"},
                 {"https://a.example/x,https://b.example", "https://a.example/x,https://b.example"},
                 {"https://))) https://", "https://"},
                 {"httphttps://a.example/x http:/ https//", "https://a.example/x"},
                 {"https://\u00FC.example/\U0001F3B5", "https://\u00FC.example/\U0001F3B5"}});
}

TEST(ExtractLinks, SurvivesHalvesOfCharacters) {
    const QChar high(0xD83C);
    const QChar low(0xDFB5);
    EXPECT_EQ(extractLinks(high + text(" https://a.example/x https://b.example/") + low + high),
              QStringList({text("https://a.example/x"), text("https://b.example/\uFFFD\uFFFD")}));
}

TEST(ClassifySource, GoesByTheFirstDomainAnywhereInTheLink) {
    expectTexts([](const QString& link) { return rawValue(classifySource(link)); },
                {{"https://youtu.be/abc", "YouTube"},
                 {"https://MUSIC.YouTube.com/watch?v=abc", "YouTube"},
                 {"https://m.facebook.com/watch?v=1", "Facebook"},
                 {"https://fb.watch/abc/", "Facebook"},
                 {"https://open.spotify.com/track/abc", "Spotify"},
                 {"https://spotify.link/abc", "Spotify"},
                 {"https://vimeo.com/1", "Link"},
                 {"https://a.example/.com/fb.watc", "Link"},
                 {"http://127.0.0.1:8000/feed?for=youtube.com", "YouTube"},
                 {"https://open.spotify.com/track/abc?ref=facebook.com", "Facebook"}});
}

TEST(PlaylistLink, IsToldByItsPathOrAFilledList) {
    for (const char* link :
         {"https://www.youtube.com/playlist?list=PL1", "https://www.youtube.com/PlayList",
          "https://a.example/x%2Fplaylist", "https://www.youtube.com/watch?v=abc&list=PL1",
          "https://www.youtube.com/watch?list=&v=abc&list&list=PL1#t",
          "http://127.0.0.1:8000/feed.xml?for=youtube.com&list=1"})
        EXPECT_TRUE(isYouTubePlaylistLink(text(link))) << link;
    for (const char* link :
         {"https://www.youtube.com/watch?v=abc&list=", "https://www.youtube.com/watch?v=abc&list",
          "https://www.youtube.com/watch?v=abc&List=PL1&playlist=2",
          "https://www.youtube.com/watch?v=a%26list=PL1",
          "https://www.youtube.com/watch?v=abc#list=PL1", "https://[/playlist", ""})
        EXPECT_FALSE(isYouTubePlaylistLink(text(link))) << link;
}

TEST(PlaylistLike, DependsOnTheSource) {
    const QString list = text("https://www.youtube.com/playlist?list=PL1");
    EXPECT_TRUE(playlistLike(list, SourceType::youtube));
    EXPECT_FALSE(playlistLike(list, SourceType::link));
    EXPECT_TRUE(playlistLike(text("https://open.spotify.com/Album/1"), SourceType::spotify));
    EXPECT_TRUE(playlistLike(text("https://open.spotify.com/playlist/1"), SourceType::spotify));
    EXPECT_FALSE(playlistLike(text("https://open.spotify.com/track/1"), SourceType::spotify));
    EXPECT_FALSE(playlistLike(text("https://open.spotify.com/album/1"), SourceType::facebook));
}

TEST(VideoID, ComesFromWhereTheLinkHoldsIt) {
    expectTexts(videoID, {{"https://youtu.be/abc123?t=5&v=other", "abc123"},
                          {"https://www.youtu.be:443/a%2Fb/more", "a/b"},
                          {"https://youtu.be", "https://youtu.be"},
                          {"https://youtu.be/?v=abc", "https://youtu.be/?v=abc"},
                          {"https://YOUTU.BE/first/last", "last"},
                          {"https://youtu.be@a.example/first/last", "last"},
                          {"https://a.example/first/youtu.be/last", "last"},
                          {"https://www.youtube.com/watch?v=abc123&list=PL1", "abc123"},
                          {"https://www.youtube.com/watch?V=x&v&v=a%26b+c&v=d", "a&b+c"},
                          {"https://www.youtube.com/watch?v=", ""},
                          {"https://www.youtube.com/watch?v", "watch"},
                          {"https://www.youtube.com/shorts/abc123", "abc123"},
                          {"https://a.example/media/clip%20one.mp4?x=1#f", "clip one.mp4"},
                          {"https://a.example/media/", "media"},
                          {"https://a.example/", "/"},
                          {"https://a.example?x=1", "https://a.example?x=1"},
                          {"https://[/x", "https://[/x"},
                          {"", ""}});
}

}  // namespace
}  // namespace reelcrate
