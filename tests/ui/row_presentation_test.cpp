#include "ui/queue/row_presentation.h"

#include "records/progress_text.h"
#include "support/rows.h"
#include "support/texts.h"

#include <limits>
#include <optional>

namespace reelcrate {
namespace {

using enum QueueStatus;

DownloadItem rowIn(QueueStatus status, const char* detail = "") {
    DownloadItem row = makeRow(SourceType::link, text("Song"), text("https://a.example/x"));
    row.status = status;
    row.detail = text(detail);
    return row;
}

DownloadItem read(DownloadItem row) {
    row.isResolvingInfo = true;
    return row;
}

DownloadItem linkBeingRead(SourceType source, const char* url, const char* detail = "Reading") {
    DownloadItem row = read(makeRow(source, {}, text(url)));
    row.detail = text(detail);
    return row;
}

DownloadItem noted(const char* detail) {
    DownloadItem row = rowIn(complete, detail);
    row.note = text("7 s longer");
    row.duration = text("3:45");
    row.downloadedSeconds = 232;
    return row;
}

TEST(RowPresentation, TitleIsOneLine) {
    const auto titled = [](const QString& title) {
        return queueRowTitle(makeRow(SourceType::link, title, text("https://a.example/x")));
    };
    expectTexts(titled, {{"Song", "Song"},
                         {"", "https://a.example/x"},
                         {"a\r\nb\vc\fd\u0085e\u2028f\u2029g", "a  b c d e f g"},
                         {"a\tb\x1b[1mc\u009b", "a b [1mc "},
                         {" \u00FC \U0001F3B5 ", " \u00FC \U0001F3B5 "}});
}

TEST(RowPresentation, HeadlineAndSubtitleTellTheState) {
    const char* const album = "https://open.spotify.com/album/1";
    const char* const song = "https://open.spotify.com/track/1";
    const char* const trimmed = "Saved; trimmed silent start/end";
    const struct {
        DownloadItem row;
        const char* headline;
        const char* subtitle;  // null: none
    } cases[] = {
        {rowIn(waiting, "Trying again"), "Ready to Download", "Click gold arrow to download"},
        {rowIn(queued, "Ready"), "Waiting to Download", "Starts when a slot opens"},
        {rowIn(running, "Preparing Song for Download"), "Preparing Song for Download",
         "Finding the best source"},
        {rowIn(running, "Preparing Video for Download"), "Preparing Video for Download",
         "Finding the best video source"},
        {rowIn(running, "Downloading Song"), "Downloading Song", "Getting the audio file"},
        {rowIn(running, "Downloading Video"), "Downloading Video", "Getting the video file"},
        {rowIn(running, "Examining Song to Trim"), "Examining Song to Trim",
         "Checking start/end silence"},
        {rowIn(running, "Trimming Song"), "Trimming Song", "Removing silent edges"},
        {rowIn(running, "Saving MP3"), "Saving MP3", "Writing final file"},
        {rowIn(running, "\n Saving MP4 "), "\n Saving MP4 ", "Writing final video"},
        {rowIn(running, "saving mp4"), "saving mp4", nullptr},
        {rowIn(running, "Saving MP4 now"), "Saving MP4 now", nullptr},
        {rowIn(running), "Downloading", nullptr},
        {rowIn(complete, "Already Downloaded; trimmed"), "Already Downloaded",
         "Silent start/end removed"},
        {rowIn(complete, "SAVED; TRIMMED"), "Saved & Trimmed", "Silent start/end removed"},
        {rowIn(complete, "Saved; Silence trim skipped"), "Saved", "Ready in folder"},
        {rowIn(complete, "Saved"), "Complete", "Ready in folder"},
        {noted(trimmed), "Saved & Trimmed", "\u26A0 7 s longer"},
        {rowIn(failed, " \n No such video \r\n"), "Needs Attention", "No such video"},
        {rowIn(failed, " \n"), "Needs Attention", nullptr},
        {read(rowIn(failed, " No such video ")), "Reading Link", "No such video"},
        {read(rowIn(complete, "Trying again")), "Reading Link", "Ready in folder"},
        {read(rowIn(running, "Downloading Song")), "Reading Link", "Loading song info"},
        {linkBeingRead(SourceType::spotify, album), "Reading Link", "Reading playlist songs"},
        {linkBeingRead(SourceType::link, album), "Reading Link", "Loading song info"},
        {linkBeingRead(SourceType::spotify, song), "Reading Link", "Loading song info"},
        {linkBeingRead(SourceType::spotify, album, "Temporary read issue. Once more "),
         "Reading Link", "Temporary read issue. Once more"},
        {linkBeingRead(SourceType::link, song, "Still TRYING again\n"), "Reading Link",
         "Still TRYING again"},
    };
    for (const auto& [row, headline, subtitle] : cases) {
        SCOPED_TRACE(row.detail.toStdString());
        EXPECT_EQ(queueStatusHeadline(row), text(headline));
        EXPECT_EQ(queueStatusSubtitle(row),
                  subtitle == nullptr ? std::nullopt : std::optional(text(subtitle)));
    }
}

TEST(RowPresentation, IconLabelAndActionFollowTheState) {
    DownloadItem repeated = rowIn(waiting);
    repeated.reading = LinkReading::repeated;
    const struct {
        DownloadItem row;
        const char* icon;
        const char* label;
        RowAction action;
    } cases[] = {
        {rowIn(waiting), "arrow.down.circle.fill", "Ready", RowAction::download},
        {repeated, "arrow.down.circle.fill", "Ready", RowAction::readAgain},
        {rowIn(queued), "clock.fill", "Queued", RowAction::busy},
        {rowIn(running), "bolt.fill", "Downloading", RowAction::busy},
        {rowIn(complete), "checkmark.circle.fill", "Complete", RowAction::reveal},
        {rowIn(failed), "exclamationmark.triangle.fill", "Needs Attention", RowAction::tryAgain},
        {read(rowIn(failed)), "arrow.triangle.2.circlepath", "Reading", RowAction::busy},
    };
    for (const auto& [row, icon, label, action] : cases) {
        SCOPED_TRACE(label);
        EXPECT_EQ(queueStatusIcon(row), text(icon));
        EXPECT_EQ(queueStatusLabel(row), text(label));
        EXPECT_EQ(queueRowAction(row, false), action);
        EXPECT_EQ(rowIsRaised(row), row.isResolvingInfo || row.status == running);
        for (const bool canDownload : {false, true})
            EXPECT_EQ(rowActionEnabled(action, canDownload),
                      action == RowAction::download ? canDownload : action != RowAction::busy);
    }
    EXPECT_EQ(queueRowAction(rowIn(failed), true), RowAction::readAgain);
    EXPECT_EQ(queueStatusSubtitle(repeated), std::nullopt);
    // What is complete stays green while its link is read again.
    EXPECT_EQ(queueDetailColor(read(rowIn(complete))), queueDetailColor(rowIn(complete)));
    EXPECT_EQ(queueDetailColor(read(rowIn(failed))), queueDetailColor(rowIn(running)));
    EXPECT_EQ(queueAccentColor(read(rowIn(waiting)), false),
              queueAccentColor(rowIn(running), true));
}

TEST(RowPresentation, ProgressStaysWithinItsBounds) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const struct {
        double progress;
        const char* percentage;
        double barValue;
    } cases[] = {{-infinity, "0%", 0},  {0.005, "1%", 0.005}, {0.124, "12%", 0.124},
                 {0.994, "99%", 0.994}, {1.7, "100%", 1},     {std::nan(""), "0%", 0}};
    for (const auto& [progress, percentage, barValue] : cases) {
        EXPECT_EQ(progressPercentage(progress), text(percentage));
        EXPECT_EQ(progressBarValue(progress), barValue);
    }
}

TEST(RowPresentation, AssistiveTechnologyIsToldTheWholeRow) {
    DownloadItem row = rowIn(running, "Downloading Song");
    row.progress = 0.125;
    EXPECT_EQ(rowAccessibleName(row), text("Song, Downloading Song, Getting the audio file, 13%"));
    EXPECT_EQ(rowAccessibleName(rowIn(failed)), text("Song, Needs Attention"));
    EXPECT_EQ(rowAccessibleName(linkBeingRead(SourceType::link, "https://a.example/x")),
              text("https://a.example/x, Reading Link, Loading song info"));
    EXPECT_EQ(queueRowNoteHelp(rowIn(complete)), QString());
    EXPECT_EQ(rowAccessibleDescription(noted("")),
              text("7 s longer. Listed: 3:45. Downloaded: 3:52."));
    DownloadItem unmeasured = noted("");
    unmeasured.downloadedSeconds = 0;
    EXPECT_EQ(queueRowNoteHelp(unmeasured), text("7 s longer."));
    DownloadItem unlisted = noted("");
    unlisted.duration.clear();
    EXPECT_EQ(queueRowNoteHelp(unlisted), text("7 s longer."));
    // A text too long to be shown is told at length, and never ends inside a character.
    DownloadItem longOne = rowIn(waiting);
    longOne.title = QString(longestShownText - 1, u'x') + text("\U0001F3B5 and more");
    EXPECT_EQ(queueRowTitle(longOne), QString(longestShownText - 1, u'x') + QChar(0x2026));
    EXPECT_EQ(rowAccessibleDescription(longOne), longOne.title);
}

}  // namespace
}  // namespace reelcrate
