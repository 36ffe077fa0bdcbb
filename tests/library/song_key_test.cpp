#include "library/song_key.h"

#include "support/texts.h"

#include <QRegularExpression>
#include <QSet>

namespace reelcrate {
namespace {

TEST(SongKey, IsOneForAllLinksOfASong) {
    const std::initializer_list<const char*> songs[] = {
        {"https://www.youtube.com/watch?v=dQw4w9WgXcQ", "https://youtu.be/dQw4w9WgXcQ?si=x",
         "http://m.youtube.com/watch?t=1&v=dQw4w9WgXcQ#t", "https://YouTube.com/shorts/dQw4w9WgXcQ",
         "https://www.youtube-nocookie.com/embed/dQw4w9WgXcQ"},
        {"https://youtu.be/dQw4w9WgXcq"},
        {"https://www.youtube.com/results?search_query=one"},
        {"https://www.youtube.com/results?search_query=two"},
        {"https://www.youtube.com/@elevenchars/videos"},
        {"https://www.youtube.com/@other/videos"},
        {"https://www.youtube.com/elevenchars"},
        // The list, not the video that it begins with.
        {"https://www.youtube.com/watch?v=dQw4w9WgXcQ&list=PL1"},
        {"https://open.spotify.com/track/4uLU6hMCjMI75M1A2tKUQC?si=x",
         "https://open.spotify.com/intl-de/track/4uLU6hMCjMI75M1A2tKUQC"},
        {"https://open.spotify.com/album/4uLU6hMCjMI75M1A2tKUQC"},
        // Whose identifiers these are, nobody knows.
        {"https://site.example/watch?v=dQw4w9WgXcQ&from=youtube.com"},
        {"https://notyoutube.com/watch?v=dQw4w9WgXcQ"},
        {"https://open.spotify.com.example/track/4uLU6hMCjMI75M1A2tKUQC"},
        {"https://Site.example/audio.m4a?n=1", "HTTPS://site.EXAMPLE/audio.m4a?n=1#fragment"},
        {"https://site.example/audio.m4a?n=2"},
        {"https://site.example/Audio.m4a?n=1"},
        {"https://other.example/audio.m4a?n=1"},
        {"not a link", "not a link#x"},
        {"https://[::1", "https://[::1#x"},
        {""},
    };
    static const QRegularExpression fitForAFile(QStringLiteral("^[A-Za-z0-9_-]{1,64}$"));
    QSet<QString> keys;
    for (const auto& links : songs) {
        QSet<QString> own;
        for (const char* link : links)
            own.insert(songKey(text(link), 0));
        EXPECT_EQ(own.size(), 1) << *links.begin();
        EXPECT_TRUE(fitForAFile.match(*own.begin()).hasMatch()) << *links.begin();
        EXPECT_FALSE(keys.contains(*own.begin())) << *links.begin();
        keys += own;
        EXPECT_FALSE(keys.contains(songKey(text(*links.begin()), 1)) &&
                     !text(*links.begin()).contains(text("track")))
            << *links.begin();
    }
}

}  // namespace
}  // namespace reelcrate
