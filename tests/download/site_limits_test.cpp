#include "download/site_limits.h"

#include "support/texts.h"

namespace reelcrate {
namespace {

TEST(SiteOf, TheVideoSiteHasSeveralNamesAndIsSearched) {
    const auto site = [](const QString& url) {
        DownloadItem row;
        row.url = url;
        return siteOf(row);
    };
    expectTexts(site, {{"https://www.youtube.com/watch?v=x", "youtube.com"},
                       {"https://music.YouTube.com/watch?v=x", "youtube.com"},
                       {"https://youtu.be/x", "youtube.com"},
                       {"https://notyoutube.com/x", "notyoutube.com"},
                       {"http://127.0.0.1:8000/song?from=youtube.com", "127.0.0.1"}});
    DownloadItem song;
    song.url = text("https://open.spotify.com/track/x");
    song.source = SourceType::spotify;
    EXPECT_EQ(siteOf(song), text("youtube.com"));
}

TEST(SiteLimits, ThreeRefusalsInARowWithNothingCompleteBetween) {
    // A letter is a row that ended: limited, failed otherwise, complete; lower case on another
    // site.
    const std::pair<const char*, bool> cases[] = {
        {"", false},     {"LL", false},  {"LLL", true},  {"LLlL", true},
        {"LLCL", false}, {"LLcL", true}, {"LLFL", true}, {"lllLL", false},
        {"LCLLL", true}, {"LLLC", true}, {"FFF", false}, {"LLCLL", false},
    };
    for (const auto& [rows, expected] : cases) {
        SCOPED_TRACE(rows);
        SiteLimits limits;
        for (const QChar row : text(rows)) {
            std::optional<FailureCause> cause;
            if (row.toUpper() == u'L')
                cause = FailureCause::siteLimit;
            else if (row.toUpper() == u'F')
                cause = FailureCause::other;
            limits.rowEnded(row.isUpper() ? text("a") : text("b"), cause);
        }
        EXPECT_EQ(limits.asksToWait(text("a")), expected);
    }
}

}  // namespace
}  // namespace reelcrate
