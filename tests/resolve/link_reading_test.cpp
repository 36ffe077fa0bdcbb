#include "resolve/link_reading.h"

#include "support/rows.h"
#include "support/texts.h"

namespace reelcrate {
namespace {

const QString link = QStringLiteral("https://p.x/page");

MediaInfo media(const char* title, const char* page, int index) {
    return {text(title), {}, {}, text(page), index};
}

/// What the row becomes: each entry's title, address and number; dead ones are marked.
QString reading(const QList<MediaInfo>& found, qsizetype counted, bool isPartial,
                int playlistItem = 0, qsizetype onSite = 0) {
    DownloadItem row = makeRow(SourceType::link, {}, link);
    row.playlistItem = playlistItem;
    const QueueResolution resolution =
        resolutionOfMedia(row, {found, counted, std::max(counted, onSite)}, isPartial);
    QStringList entries;
    for (const PlaylistEntry& entry : resolution.entries) {
        entries.append(entry.title + u' ' + entry.url.section(u'/', -1) + u' ' +
                       QString::number(entry.playlistItem));
        if (entry.failure)
            entries.last() = text("dead ") + QString::number(entry.playlistItem);
        EXPECT_EQ(entry.isRead, !entry.failure);
    }
    if (resolution.failure)
        entries.append(text("failed"));
    if (resolution.cut)
        entries.append(cutText(*resolution.cut));
    return entries.join(u'|');
}

TEST(LinkReading, MakesARowOfEachOfTheMedia) {
    const char* page = "https://p.x/page";
    const struct {
        QList<MediaInfo> found;
        qsizetype counted;
        bool isPartial;
        int playlistItem;
        const char* reading;
    } cases[] = {
        {{}, 0, true, 0, "failed"},
        {{}, 0, false, 0, "failed"},
        {{media("A", "https://p.x/a", 0)}, 1, false, 0, "A a 0"},
        {{media("A", "", 0)}, 1, false, 0, "A page 0"},
        {{media("A", "https://p.x/a", 1)}, 1, false, 0, "A a 0"},  // a list of one
        {{media("A", "https://p.x/a", 1), media("B", "https://p.x/b", 2)},
         2,
         false,
         0,
         "A a 0|B b 0"},
        {{media("A", page, 1), media("B", page, 2)}, 2, false, 0, "A page 1|B page 2"},
        {{media("A", "https://p.x/all", 1), media("B", "https://p.x/all", 2),
          media("C", "https://p.x/c", 3)},
         3,
         false,
         0,
         "A page 1|B page 2|C c 0"},
        {{media("A", page, 1), media("B", "https://p.x/b", 2)}, 2, false, 0, "A page 1|B b 0"},
        {{media("B", "https://p.x/b", 2)}, 4, true, 0, "dead 1|B b 0|dead 3|dead 4"},
        {{media("A", "https://p.x/a", 1), media("B", "https://p.x/b", 2)},
         9,
         false,
         0,
         "A a 0|B b 0|2 of 9 listed"},
        // The first of a list that never came to its end.
        {{media("A", "https://p.x/a", 1)}, 1, true, 0, "failed"},
        // One of several, read again.
        {{media("B", page, 2)}, 3, false, 2, "B page 2"},
        {{media("B", "https://p.x/b", 2)}, 1, true, 2, "B page 2"},
        {{}, 0, true, 2, "failed"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.reading);
        EXPECT_EQ(reading(each.found, each.counted, each.isPartial, each.playlistItem),
                  text(each.reading));
    }
}

TEST(LinkReading, SaysWhatCouldNotBeRead) {
    EXPECT_EQ(unreadable(makeRow(SourceType::facebook, {})).failure,
              text("Could not load link info. Check that the link is public."));
    EXPECT_EQ(
        unreadable(makeRow(SourceType::youtube, {})).failure,
        text("Could not load the YouTube title. Check that the video or playlist is public."));
}

}  // namespace
}  // namespace reelcrate
