#include "console/row_text.h"

#include "support/texts.h"

#include <clocale>
#include <limits>

namespace reelcrate {
namespace {

DownloadItem runningRow(const QString& title, double progress) {
    DownloadItem row;
    row.title = title;
    row.status = QueueStatus::running;
    row.detail = text("Downloading Song");
    row.progress = progress;
    return row;
}

TEST(RowText, ATitleIsNoCommandToTheTerminal) {
    const QString title = text("a\x1b[2Jb\r\nc\u009b1md\u2028e\u202ef");
    for (const QString& line :
         {statusLine(runningRow(title, 0)), progressLine(runningRow(title, 0), 200)}) {
        for (QChar c : line)
            EXPECT_TRUE(c.isPrint() && c != QChar(0x202e)) << static_cast<int>(c.unicode());
    }
}

TEST(RowText, ProgressIsRoundedAsInTheWindow) {
    struct Case {
        double progress;
        const char* shown;
    };
    for (const auto& [progress, shown] : {
             Case{0.004, "[--------------------]   0%  "},
             Case{0.576, "[############--------]  58%  "},
             Case{0.996, "[####################] 100%  "},
             Case{std::numeric_limits<double>::quiet_NaN(), "[--------------------]   0%  "},
         })
        EXPECT_EQ(progressLine(runningRow(QString(), progress), 29), text(shown));
}

TEST(RowText, ARowWithoutATitleIsCalledByItsLink) {
    DownloadItem row;
    row.url = text("http://a.example/x");
    EXPECT_EQ(headline(row), row.url);
}

TEST(RowText, ProgressFitsTheTerminal) {
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    EXPECT_EQ(progressLine(runningRow(text("Song"), 0.5), 80),
              text("[##########----------]  50%  Downloading Song  Song"));
    EXPECT_EQ(progressLine(runningRow(text("Song"), 7), 29), text("[####################] 100%  "));
    EXPECT_EQ(fitted(text("日本語"), 5), text("日本"));
    EXPECT_EQ(fitted(text("e\u0301x"), 1), text("e\u0301"));
    EXPECT_EQ(fitted(text("\U0001FC00x"), 1), QString());  // a picture yet to come
}

}  // namespace
}  // namespace reelcrate
