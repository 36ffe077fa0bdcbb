#include "library/event_account.h"

#include "support/printers.h"

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

DownloadItem row(QueueStatus status, const char* title, const char* url, const char* duration,
                 double playing = 0) {
    DownloadItem item;
    item.status = status;
    item.title = QString::fromUtf8(title);
    item.url = QString::fromLatin1(url);
    item.duration = QString::fromLatin1(duration);
    item.playingSeconds = playing;
    item.reading = LinkReading::song;
    return item;
}

/// Searched for, under other words.
DownloadItem found(const char* identifier) {
    DownloadItem item = row(QueueStatus::complete, "Words", "song:words/other", "9:00");
    item.source = SourceType::song;
    item.outputPath = QStringLiteral("/p/Words [live] [%1].mp3").arg(QLatin1String(identifier));
    return item;
}

TEST(EventAccount, TellsWhatIsThereAndWhatIsNot) {
    QList<DownloadItem> rows{
        row(QueueStatus::complete, "First\ndance", "https://a.example/1", "3:45", 221.4),
        row(QueueStatus::failed, "Gone", "https://a.example/2", "3:00"),
        row(QueueStatus::waiting, "", "https://a.example/3", ""),
        row(QueueStatus::complete, "Long", "https://a.example/4", "1:00:00"),
        row(QueueStatus::waiting, "A list pasted again", "https://a.example/l", ""),
    };
    rows[0].note = QStringLiteral("12 s shorter than listed");
    rows[1].detail = QStringLiteral("This video is private.");
    rows[2].detail = QStringLiteral("Ready to download");
    rows[4].reading = LinkReading::repeated;
    const EventAccount account =
        accountOf(QStringLiteral("Prom"), rows, {QStringLiteral("https://l: 2 of 3 listed")},
                  {QStringLiteral("list.txt, line 1: Hi")});
    EXPECT_EQ(accountText(account),
              QStringLiteral("Prom: 4 songs asked for: 2 complete, 1 needs attention, 1 not "
                             "downloaded. 1 line was not read as a song. Playing time 1:03:41.\n"
                             "Missing:\n"
                             "  Gone - This video is private.\n"
                             "  https://a.example/3 - Ready to download\n"
                             "To be listened to:\n"
                             "  First dance - 12 s shorter than listed\n"
                             "Listed in part:\n"
                             "  https://l: 2 of 3 listed\n"
                             "Not read as songs:\n"
                             "  list.txt, line 1: Hi\n"));
    EXPECT_EQ(accountText(accountOf(QStringLiteral("Prom"), {rows[3]}, {}, {})),
              QStringLiteral("Prom: 1 song asked for: 1 complete. Playing time 1:00:00.\n"));
}

TEST(EventAccount, TellsOfOneRecordingTwice) {
    using S = QueueStatus;
    const struct {
        DownloadItem other;
        bool isSame;
    } cases[] = {
        {row(S::complete, "Other", "https://www.youtube.com/watch?v=abcdefghijk", "9:00"), true},
        {row(S::complete, "SONG ", "https://b.example/1", "3:46"), true},
        {row(S::complete, "Song", "https://b.example/1", "9:00", 225.9), true},
        {row(S::complete, "Song", "https://b.example/1", "3:47"), false},
        {row(S::complete, "Song (live)", "https://b.example/1", "3:45"), false},
        {row(S::failed, "Song", "https://b.example/1", "3:45"), false},
        {found("abcdefghijk"), true},
        {found("bbbbbbbbbbb"), false},
    };
    const DownloadItem song = row(S::complete, "Song", "https://youtu.be/abcdefghijk", "3:45");
    for (const auto& [other, isSame] : cases) {
        SCOPED_TRACE(other.title.toStdString() + ' ' + other.duration.toStdString());
        const auto between = row(S::complete, "Song", "https://c.example/1", "1:00");
        const EventAccount account = accountOf({}, {song, between, other}, {}, {});
        ASSERT_EQ(account.doubles.size(), isSame ? 1 : 0);
        for (const EventAccount::Remark& same : account.doubles)
            EXPECT_EQ(same.text, QStringLiteral("the same recording as Song"));
    }
}

}  // namespace
}  // namespace reelcrate
