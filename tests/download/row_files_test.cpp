#include "download/row_files.h"

#include "support/machine.h"
#include "support/printers.h"

#include <QDir>
#include <QHash>

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

using Kind = FileNews::Kind;

class RowFilesTest : public testing::Test {
protected:
    RowFilesTest() { QDir().mkpath(folder); }

    QString path(const QString& name) const { return folder + u'/' + name; }

    /// Words of the tool; any other is a file that it writes, an MP3 by conversion.
    void tell(RowFiles& files, const QString& words) const {
        static const QHash<QString, Kind> kinds{
            {QStringLiteral("hole"), Kind::leavesOutPart},
            {QStringLiteral("converted"), Kind::hasConverted},
            {QStringLiteral("tags"), Kind::addsTags},
            {QStringLiteral("next"), Kind::nextItem},
        };
        for (const QString& word : words.split(u' ')) {
            if (kinds.contains(word)) {
                files.take({kinds.value(word), {}});
                continue;
            }
            const bool isSong = word.endsWith(QStringLiteral(".mp3"));
            files.take({isSong ? Kind::converts : Kind::downloads, path(word)});
            writeFile(path(word), "sound");
        }
    }

    QString left() const { return QDir(folder).entryList(QDir::Files, QDir::Name).join(u' '); }

    Machine machine;
    ClaimedFiles claims;
    const QString folder = machine.path(QStringLiteral("Party"));
};

TEST_F(RowFilesTest, WhatIsNotWholeGoesWhenTheRowFails) {
    const struct {
        const char* words;
        const char* left;
    } cases[] = {
        {"a.m4a a.mp3", ""},
        {"a.m4a a.mp3 tags", ""},
        {"a.mp3 converted tags", "a.mp3"},
        {"a.mp4 tags", "a.mp4"},
        {"hole a.mp3 converted tags", ""},
        {"next a.mp3 converted next b.mp3 next c.mp3 converted next", "a.mp3 c.mp3"},
        {"next hole a.mp3 converted next b.mp3 converted", "b.mp3"},
    };
    for (const auto& [words, expected] : cases) {
        SCOPED_TRACE(words);
        RowFiles files(folder, claims, machine.supervisor);
        tell(files, QString::fromLatin1(words));
        files.removeUnfinished();
        EXPECT_EQ(left(), QString::fromLatin1(expected));
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
    }
}

TEST_F(RowFilesTest, WhatWasThereOrIsElsewhereIsNoneOfTheRows) {
    const QString there = path(QStringLiteral("there.mp3"));
    const QString elsewhere = machine.path(QStringLiteral("elsewhere.mp3"));
    writeFile(there, "sound");
    RowFiles files(folder, claims, machine.supervisor);
    for (const QString& each :
         {there, elsewhere, path(QStringLiteral("../Party/../elsewhere.mp3"))})
        files.take({Kind::converts, each});
    writeFile(elsewhere, "sound");
    EXPECT_EQ(files.finishedPath(), there);
    files.removeUnfinished();
    EXPECT_TRUE(QFile::exists(there));
    EXPECT_TRUE(QFile::exists(elsewhere));
}

TEST_F(RowFilesTest, OfTwoThatWriteOneFileTheLastThatFailsRemovesIt) {
    RowFiles first(folder, claims, machine.supervisor);
    RowFiles second(folder, claims, machine.supervisor);
    tell(first, QStringLiteral("song.mp3"));
    tell(second, QStringLiteral("song.mp3"));
    first.removeUnfinished();
    EXPECT_EQ(left(), QStringLiteral("song.mp3"));
    second.removeUnfinished();
    EXPECT_EQ(left(), QString());
}

}  // namespace
}  // namespace reelcrate
