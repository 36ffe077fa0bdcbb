#include "ui/queue/row_presentation.h"

#include "records/progress_text.h"
#include "support/rows.h"
#include "support/texts.h"
#include "theme/tech_theme.h"

#include <initializer_list>
#include <limits>
#include <optional>

namespace reelcrate {
namespace {

using enum QueueStatus;

const QColor amber = rgb(0.55, 0.36, 0.06);
const QColor gold = rgb(1.0, 0.70, 0.22);

DownloadItem rowIn(QueueStatus status, const char* detail = "") {
    DownloadItem row = makeRow(SourceType::link, text("Song"), text("https://a.example/x"));
    row.status = status;
    row.detail = text(detail);
    return row;
}

DownloadItem resolving(DownloadItem row) {
    row.isResolvingInfo = true;
    return row;
}

DownloadItem linkBeingRead(SourceType source, const char* url, const char* detail = "Reading") {
    DownloadItem row = resolving(makeRow(source, {}, text(url)));
    row.detail = text(detail);
    return row;
}

DownloadItem runningAt(double progress, const char* detail) {
    DownloadItem row = rowIn(running, detail);
    row.progress = progress;
    return row;
}

template <typename Expected>
struct RowCase {
    const char* description;
    DownloadItem row;
    Expected expected;
};

/// A null text stands for none.
template <typename Function>
void expectRowTexts(Function function, std::initializer_list<RowCase<const char*>> cases) {
    for (const auto& [description, row, expected] : cases) {
        SCOPED_TRACE(description);
        EXPECT_EQ(function(row),
                  expected == nullptr ? std::nullopt : std::optional(text(expected)));
    }
}

template <typename Function>
void expectRowColors(Function function, std::initializer_list<RowCase<QColor>> cases) {
    for (const auto& [description, row, expected] : cases) {
        SCOPED_TRACE(description);
        EXPECT_EQ(function(row), expected);
    }
}

DownloadItem noted(DownloadItem row, const char* note) {
    row.note = text(note);
    row.duration = QStringLiteral("3:45");
    row.downloadedSeconds = 232;
    return row;
}

TEST(RowPresentation, ANoteIsToldWhole) {
    expectRowTexts(queueRowNoteHelp, {{"none", rowIn(complete), ""},
                                      {"note", noted(rowIn(complete), "7 s longer"),
                                       "7 s longer. Listed: 3:45. Downloaded: 3:52."}});
    EXPECT_TRUE(rowAccessibleDescription(noted(rowIn(complete), "7 s longer"))
                    .contains(QStringLiteral("Downloaded: 3:52")));
}

TEST(RowPresentation, TitleIsOneLine) {
    expectRowTexts(
        queueRowTitle,
        {{"title", rowIn(waiting), "Song"},
         {"link", makeRow(SourceType::link, {}, text("https://a.example/x")),
          "https://a.example/x"},
         {"line breaks", makeRow(SourceType::link, text("a\r\nb\vc\fd\u0085e\u2028f\u2029g")),
          "a  b c d e f g"},
         {"controls", makeRow(SourceType::link, text("a\tb\x1b[1mc\u009b")), "a b [1mc "},
         {"no controls", makeRow(SourceType::link, text(" \u00FC \U0001F3B5 ")),
          " \u00FC \U0001F3B5 "}});
}

TEST(RowPresentation, SubtitleFollowsStatusAndDetail) {
    expectRowTexts(
        queueStatusSubtitle,
        {{"failed", rowIn(failed, " \n No such video \r\n"), "No such video"},
         {"failed, wordless", rowIn(failed, " \n"), nullptr},
         {"failed, read again", resolving(rowIn(failed, " No such video ")), "No such video"},
         {"trimmed", rowIn(complete, "Saved; trimmed silent start/end"),
          "Silent start/end removed"},
         {"trimmed, other case", rowIn(complete, "TRIMMED"), "Silent start/end removed"},
         {"not trimmed", rowIn(complete, "Saved; silence trim skipped"), "Ready in folder"},
         {"with a note", noted(rowIn(complete, "Saved; trimmed silent start/end"), "7 s longer"),
          "\u26A0 7 s longer"},
         {"complete, read again", resolving(rowIn(complete, "Trying again")), "Ready in folder"},
         {"waiting", rowIn(waiting, "Trying again"), "Click gold arrow to download"},
         {"queued", rowIn(queued), "Starts when a slot opens"},
         {"running, read", resolving(rowIn(running, "Downloading Song")), "Loading song info"}});
}

TEST(RowPresentation, SubtitleExplainsTheStageOfADownload) {
    expectRowTexts(
        queueStatusSubtitle,
        {{"prepare song", rowIn(running, "Preparing Song for Download"), "Finding the best source"},
         {"prepare video", rowIn(running, "Preparing Video for Download"),
          "Finding the best video source"},
         {"download song", rowIn(running, "Downloading Song"), "Getting the audio file"},
         {"download video", rowIn(running, "Downloading Video"), "Getting the video file"},
         {"examine", rowIn(running, "Examining Song to Trim"), "Checking start/end silence"},
         {"trim", rowIn(running, "Trimming Song"), "Removing silent edges"},
         {"save song", rowIn(running, "Saving MP3"), "Writing final file"},
         {"save video", rowIn(running, "Saving MP4"), "Writing final video"},
         {"blanks around", rowIn(running, "\n Saving MP4 "), "Writing final video"},
         {"other case", rowIn(running, "saving mp4"), nullptr},
         {"more words", rowIn(running, "Saving MP4 now"), nullptr},
         {"no detail", rowIn(running), nullptr}});
}

TEST(RowPresentation, SubtitleTellsWhatIsRead) {
    const char* const album = "https://open.spotify.com/album/1";
    const char* const song = "https://open.spotify.com/track/1";
    expectRowTexts(
        queueStatusSubtitle,
        {{"album", linkBeingRead(SourceType::spotify, album), "Reading playlist songs"},
         {"album's address elsewhere", linkBeingRead(SourceType::link, album), "Loading song info"},
         {"song", linkBeingRead(SourceType::spotify, song), "Loading song info"},
         {"second attempt at an album",
          linkBeingRead(SourceType::spotify, album, "Temporary read issue. Trying again "),
          "Temporary read issue. Trying again"},
         {"trying again", linkBeingRead(SourceType::link, song, "Still TRYING again\n"),
          "Still TRYING again"},
         {"temporary", linkBeingRead(SourceType::link, song, "temporary read issue"),
          "temporary read issue"},
         {"queued", resolving(rowIn(queued)), "Loading song info"}});
}

TEST(RowPresentation, HeadlineNamesTheState) {
    expectRowTexts(
        queueStatusHeadline,
        {{"waiting", rowIn(waiting, "Ready"), "Ready to Download"},
         {"queued", rowIn(queued, "Ready"), "Waiting to Download"},
         {"running", rowIn(running, "Downloading Song"), "Downloading Song"},
         {"running, as stored", rowIn(running, " 12 of 30 "), " 12 of 30 "},
         {"running, wordless", rowIn(running), "Downloading"},
         {"downloaded before", rowIn(complete, "Already Downloaded; trimmed"),
          "Already Downloaded"},
         {"trimmed", rowIn(complete, "Saved; trimmed silent start/end"), "Saved & Trimmed"},
         {"not trimmed", rowIn(complete, "Saved; Silence trim skipped"), "Saved"},
         {"complete", rowIn(complete, "Saved"), "Complete"},
         {"failed", rowIn(failed, "No such video"), "Needs Attention"},
         {"running, read", resolving(rowIn(running, "Downloading Song")), "Reading Link"},
         {"complete, read again", resolving(rowIn(complete, "Saved")), "Reading Link"},
         {"failed, read again", resolving(rowIn(failed, "No such video")), "Reading Link"}});
}

TEST(RowPresentation, IconShowsTheState) {
    expectRowTexts(queueStatusIcon,
                   {{"waiting", rowIn(waiting), "arrow.down.circle.fill"},
                    {"queued", rowIn(queued), "clock.fill"},
                    {"running", rowIn(running), "bolt.fill"},
                    {"complete", rowIn(complete), "checkmark.circle.fill"},
                    {"failed", rowIn(failed), "exclamationmark.triangle.fill"},
                    {"read", resolving(rowIn(failed)), "arrow.triangle.2.circlepath"}});
}

TEST(RowPresentation, LabelIsTheStatus) {
    expectRowTexts(queueStatusLabel, {{"waiting", rowIn(waiting), "Ready"},
                                      {"queued", rowIn(queued), "Queued"},
                                      {"running", rowIn(running), "Downloading"},
                                      {"complete", rowIn(complete), "Complete"},
                                      {"failed", rowIn(failed), "Needs Attention"},
                                      {"read", resolving(rowIn(failed)), "Reading"}});
    const QColor muted = rgb(0.35, 0.42, 0.49);
    expectRowColors(queueStatusLabelColor, {{"waiting", rowIn(waiting), muted},
                                            {"queued", rowIn(queued), muted},
                                            {"running", rowIn(running), gold},
                                            {"complete", rowIn(complete), rgb(0.10, 0.47, 0.21)},
                                            {"failed", rowIn(failed), rgb(0.70, 0.28, 0.0)},
                                            {"read", resolving(rowIn(complete)), gold}});
}

TEST(RowPresentation, HeadlineColorFollowsTheState) {
    const QColor dark = rgb(0.08, 0.11, 0.15);
    const QColor green = rgb(0.10, 0.47, 0.25);
    expectRowColors(queueDetailColor, {{"waiting", rowIn(waiting), dark},
                                       {"queued", rowIn(queued), dark},
                                       {"running", rowIn(running), amber},
                                       {"complete", rowIn(complete), green},
                                       {"failed", rowIn(failed), rgb(0.60, 0.24, 0.10)},
                                       {"waiting, read", resolving(rowIn(waiting)), amber},
                                       {"queued, read", resolving(rowIn(queued)), amber},
                                       {"running, read", resolving(rowIn(running)), amber},
                                       {"complete, read again", resolving(rowIn(complete)), green},
                                       {"failed, read again", resolving(rowIn(failed)), amber}});
}

TEST(RowPresentation, AccentColorFollowsStateThenSelection) {
    const QColor orange = rgb(0.80, 0.43, 0.16);
    const QColor green = rgb(0.22, 0.64, 0.32);
    for (const bool selected : {false, true}) {
        SCOPED_TRACE(selected);
        const QColor atRest = selected ? rgb(1.0, 0.70, 0.22, 0.86) : rgb(0.78, 0.81, 0.84, 0.80);
        expectRowColors([&](const DownloadItem& row) { return queueAccentColor(row, selected); },
                        {{"waiting", rowIn(waiting), atRest},
                         {"queued", rowIn(queued), atRest},
                         {"running", rowIn(running), gold},
                         {"complete", rowIn(complete), green},
                         {"failed", rowIn(failed), orange},
                         {"waiting, read", resolving(rowIn(waiting)), gold},
                         {"queued, read", resolving(rowIn(queued)), gold},
                         {"running, read", resolving(rowIn(running)), gold},
                         {"complete, read again", resolving(rowIn(complete)), green},
                         {"failed, read again", resolving(rowIn(failed)), orange}});
    }
}

TEST(RowPresentation, WindowColorsFollowTheStatus) {
    struct Case {
        QueueStatus status;
        QueueStatusBackground background;
        QColor shadow;
        QColor stroke;
    };
    const QueueStatusBackground plain{rgb(1, 1, 1, 0.94), rgb(0.94, 0.91, 0.84)};
    const QColor plainShadow = rgb(1.0, 0.70, 0.22, 0.14);
    const QColor plainStroke = rgb(1.0, 0.70, 0.22, 0.42);
    for (const Case& expected : {
             Case{waiting, plain, plainShadow, plainStroke},
             Case{queued, plain, plainShadow, plainStroke},
             Case{running, plain, plainShadow, plainStroke},
             Case{complete,
                  {rgb(0.93, 0.98, 0.94), rgb(0.80, 0.92, 0.84)},
                  rgb(0.20, 0.56, 0.30, 0.16),
                  rgb(0.36, 0.70, 0.44, 0.45)},
             Case{failed,
                  {rgb(1.0, 0.93, 0.86), rgb(0.94, 0.82, 0.72)},
                  rgb(0.60, 0.24, 0.10, 0.14),
                  rgb(0.80, 0.40, 0.20, 0.42)},
         }) {
        SCOPED_TRACE(rawValue(expected.status).toStdString());
        EXPECT_EQ(queueStatusBackground(expected.status), expected.background);
        EXPECT_EQ(queueStatusShadowColor(expected.status), expected.shadow);
        EXPECT_EQ(queueStatusStrokeColor(expected.status), expected.stroke);
    }
}

TEST(RowPresentation, ProgressStaysWithinItsBounds) {
    struct Case {
        double progress;
        const char* percentage;
        double barValue;
    };
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const auto& [progress, percentage, barValue] : {
             Case{-infinity, "0%", 0},
             Case{-0.2, "0%", 0},
             Case{0, "0%", 0},
             Case{0.004, "0%", 0.004},
             Case{0.005, "1%", 0.005},
             Case{0.124, "12%", 0.124},
             Case{0.125, "13%", 0.125},
             Case{0.994, "99%", 0.994},
             Case{1, "100%", 1},
             Case{1.7, "100%", 1},
             Case{infinity, "100%", 1},
             Case{std::numeric_limits<double>::quiet_NaN(), "0%", 0},
         }) {
        SCOPED_TRACE(progress);
        EXPECT_EQ(progressPercentage(progress), text(percentage));
        EXPECT_EQ(progressBarValue(progress), barValue);
    }
}

TEST(RowPresentation, ActionIsTheOneThatTheStateAllows) {
    struct Case {
        const char* description;
        DownloadItem row;
        RowAction action;
        RowAction actionWhenInfoIsMissing;
    };
    for (const auto& [description, row, action, actionWhenInfoIsMissing] : {
             Case{"waiting", rowIn(waiting), RowAction::download, RowAction::download},
             Case{"queued", rowIn(queued), RowAction::busy, RowAction::busy},
             Case{"running", rowIn(running), RowAction::busy, RowAction::busy},
             Case{"complete", rowIn(complete), RowAction::reveal, RowAction::reveal},
             Case{"failed", rowIn(failed), RowAction::tryAgain, RowAction::readAgain},
             Case{"waiting, read", resolving(rowIn(waiting)), RowAction::busy, RowAction::busy},
             Case{"complete, read", resolving(rowIn(complete)), RowAction::busy, RowAction::busy},
             Case{"failed, read", resolving(rowIn(failed)), RowAction::busy, RowAction::busy},
         }) {
        SCOPED_TRACE(description);
        EXPECT_EQ(queueRowAction(row, false), action);
        EXPECT_EQ(queueRowAction(row, true), actionWhenInfoIsMissing);
    }
}

TEST(RowPresentation, ActionHasSymbolAndHelp) {
    struct Case {
        RowAction action;
        const char* symbol;
        const char* help;
    };
    for (const auto& [action, symbol, help] : {
             Case{RowAction::busy, "", "Loading song info"},
             Case{RowAction::reveal, "magnifyingglass", "Show downloaded file"},
             Case{RowAction::readAgain, "arrow.clockwise", "Read link again"},
             Case{RowAction::tryAgain, "arrow.clockwise", "Try download again"},
             Case{RowAction::download, "arrow.down", "Download this song"},
         }) {
        SCOPED_TRACE(help);
        EXPECT_EQ(rowActionSymbol(action), text(symbol));
        EXPECT_EQ(rowActionHelp(action), text(help));
    }
}

TEST(RowPresentation, OnlyADownloadMayHaveToWait) {
    for (const bool canDownload : {false, true}) {
        EXPECT_FALSE(rowActionEnabled(RowAction::busy, canDownload));
        EXPECT_EQ(rowActionEnabled(RowAction::download, canDownload), canDownload);
        for (const RowAction action :
             {RowAction::reveal, RowAction::readAgain, RowAction::tryAgain})
            EXPECT_TRUE(rowActionEnabled(action, canDownload));
    }
}

TEST(RowPresentation, WorkRaisesTheRow) {
    for (const QueueStatus status : {waiting, queued, running, complete, failed}) {
        SCOPED_TRACE(rawValue(status).toStdString());
        EXPECT_EQ(rowIsRaised(rowIn(status)), status == running);
        EXPECT_TRUE(rowIsRaised(resolving(rowIn(status))));
    }
}

TEST(RowPresentation, AccessibleNameSaysTheWholeRow) {
    expectRowTexts(
        rowAccessibleName,
        {{"waiting", rowIn(waiting), "Song, Ready to Download, Click gold arrow to download"},
         {"running", runningAt(0.125, "Downloading Song"),
          "Song, Downloading Song, Getting the audio file, 13%"},
         {"running, no subtitle", runningAt(0, ""), "Song, Downloading, 0%"},
         {"failed", rowIn(failed), "Song, Needs Attention"},
         {"link", linkBeingRead(SourceType::link, "https://a.example/x"),
          "https://a.example/x, Reading Link, Loading song info"}});
}

}  // namespace
}  // namespace reelcrate
