#include "tools/shell_quote.h"

#include "support/argument_printer.h"
#include "support/machine.h"
#include "support/printers.h"

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

TEST(ShellQuoteTest, AShellGivesEveryTextBackAsOneWord) {
    constexpr int texts = 10'000;
    std::mt19937 random(20'261'123);  // the same texts in every run
    QByteArray script = "printf '%s\\0'";
    QList<QByteArray> expected;
    for (int i = 0; i < texts; ++i) {
        QString text = randomText(random);
        script += ' ' + shellQuoted(text).toUtf8();
        expected.append(text.remove(QChar(u'\0')).toUtf8());
    }
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("words"));
    ASSERT_TRUE(writeFile(file, script + '\n'));
    QProcess shell;
    shell.start(QStringLiteral("/bin/bash"), {file});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.readAllStandardError(), QByteArray());
    QList<QByteArray> words = shell.readAllStandardOutput().split('\0');
    EXPECT_TRUE(words.takeLast().isEmpty());
    ASSERT_EQ(words.size(), texts);
    for (int i = 0; i < texts; ++i)
        EXPECT_EQ(words.at(i), expected.at(i)) << "text " << i;
}

}  // namespace
}  // namespace reelcrate
