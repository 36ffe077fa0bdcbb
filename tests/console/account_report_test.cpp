#include "console/account_report.h"

#include "support/machine.h"
#include "support/texts.h"

namespace reelcrate {
namespace {

TEST(AccountReport, ReplacesAnAccountAndNothingElse) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(text("account.json"));
    ASSERT_TRUE(writeFile(path, {}));  // an empty file is nobody's
    EventAccount account;
    account.asked = 3;
    account.needAttention = 1;
    EXPECT_EQ(accountAsJson(account)[u"needAttention"], 1);
    EXPECT_EQ(saveReport(account, path), QString());
    EXPECT_EQ(saveReport(account, path), QString());

    const QString song = folder.filePath(text("song.mp3"));
    ASSERT_TRUE(writeFile(song, "ID3, and no account"));
    const QString missing = folder.filePath(text("none/account.json"));
    for (const QString& refused : {song, folder.path(), missing}) {
        EXPECT_FALSE(whyNoReport(refused).isEmpty()) << refused.toStdString();
        EXPECT_FALSE(saveReport(account, refused).isEmpty());
    }
    EXPECT_EQ(readFile(song), "ID3, and no account");
    EXPECT_FALSE(saveReport(account, text("/dev/full")).isEmpty());
    EXPECT_EQ(saveReport(account, text("/dev/null")), QString());
}

}  // namespace
}  // namespace reelcrate
