#include "console/account_report.h"

#include "support/machine.h"

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

TEST(AccountReport, ReplacesAnAccountAndNothingElse) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("account.json"));
    ASSERT_TRUE(writeFile(path, {}));  // an empty file is nobody's
    const EventAccount account = accountOf(QStringLiteral("Prom"), {}, {}, {});
    EXPECT_EQ(saveReport(account, path), QString());
    EXPECT_EQ(saveReport(account, path), QString());

    const QString song = folder.filePath(QStringLiteral("song.mp3"));
    ASSERT_TRUE(writeFile(song, "ID3, and no account"));
    const QString missing = folder.filePath(QStringLiteral("none/account.json"));
    for (const QString& refused : {song, folder.path(), missing}) {
        EXPECT_FALSE(whyNoReport(refused).isEmpty()) << refused.toStdString();
        EXPECT_FALSE(saveReport(account, refused).isEmpty());
    }
    EXPECT_EQ(readFile(song), "ID3, and no account");
    EXPECT_FALSE(saveReport(account, QStringLiteral("/dev/full")).isEmpty());
    EXPECT_EQ(saveReport(account, QStringLiteral("/dev/null")), QString());
}

}  // namespace
}  // namespace reelcrate
