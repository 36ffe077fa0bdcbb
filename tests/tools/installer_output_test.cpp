#include "tools/installer_output.h"

#include "support/texts.h"

namespace reelcrate {
namespace {

TEST(InstallerOutput, TheLogHasWholeLinesWhereverTheOutputIsCut) {
    const QString printed = text(
        "Downloading yt-dlp...\n\r#=#=#\r\r##  7.1%\r#### 100.0%\nDownloaded.\r\n\n\r### 45.3%\n"
        "curl: (18) closed\n\n\u001eyt-dlp: 1 -> 2\nReady");
    const QString log =
        text("Downloading yt-dlp...\nDownloaded.\ncurl: (18) closed\nyt-dlp: 1 -> 2\nReady\n");
    for (qsizetype size = 1; size <= printed.size(); ++size) {
        InstallerOutput output;
        QString read;
        for (qsizetype at = 0; at < printed.size(); at += size)
            read += output.add(printed.mid(at, size));
        EXPECT_EQ(read + output.finish(), log) << "in pieces of " << size;
        EXPECT_EQ(output.news(), QStringList{text("yt-dlp: 1 -> 2")});
    }
}

TEST(InstallerOutput, ProgressIsThatOfTheLastLine) {
    InstallerOutput output;
    const struct {
        const char* piece;
        const char* progress;
    } cases[] = {
        {"Downloading yt-dlp...\n", ""},
        {"\r#=#=#  ", ""},
        {"\r###      7.1%", "Downloading yt-dlp... 7%"},
        {"\r##########  4", ""},
        {"5.3%", "Downloading yt-dlp... 45%"},
        {"\r##### 100.0%", "Downloading yt-dlp... 100%"},
        {"\n", ""},
        {"free: 10%", ""},
    };
    for (const auto& [piece, progress] : cases) {
        output.add(text(piece));
        EXPECT_EQ(output.progress(), text(progress)) << piece;
    }
}

}  // namespace
}  // namespace reelcrate
