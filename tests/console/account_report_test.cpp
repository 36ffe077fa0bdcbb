#include "console/account_report.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

TEST(AccountReport, ReplacesAnAccountAndNothingElse) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("account.json"));
    const EventAccount account = accountOf(QStringLiteral("Prom"), {}, {}, {});
    EXPECT_EQ(saveReport(account, path), QString());
    EXPECT_EQ(saveReport(account, path), QString());

    const QString song = folder.filePath(QStringLiteral("song.mp3"));
    QFile file(song);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("ID3, and no account");
    file.close();
    const QString missing = folder.filePath(QStringLiteral("none/account.json"));
    for (const QString& refused : {song, folder.path(), missing}) {
        EXPECT_FALSE(whyNoReport(refused).isEmpty()) << refused.toStdString();
        EXPECT_FALSE(saveReport(account, refused).isEmpty());
    }
    EXPECT_EQ(file.size(), 19);
    EXPECT_FALSE(saveReport(account, QStringLiteral("/dev/full")).isEmpty());
    EXPECT_EQ(saveReport(account, QStringLiteral("/dev/null")), QString());
}

}  // namespace
}  // namespace reelcrate
