#include "ui/window/dropped_text.h"

#include "support/machine.h"
#include "support/printers.h"

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

struct DropCase {
    const char* file;
    const char* contents;
    std::optional<const char*> links;
    bool isList;
    int linesLeftOut;
};

void PrintTo(const DropCase& drop, std::ostream* out) {
    *out << drop.file << ": " << drop.contents;
}

class DroppedTextTest : public testing::TestWithParam<DropCase> {};

TEST_P(DroppedTextTest, AFileGivesItsLinksOrElseItsSongs) {
    const auto& [file, contents, links, isList, linesLeftOut] = GetParam();
    QTemporaryDir folder;
    const QString path = folder.filePath(QString::fromLatin1(file));
    ASSERT_TRUE(writeFile(path, contents));
    const DroppedText dropped = droppedText({QUrl::fromLocalFile(path)}, {});
    ASSERT_EQ(dropped.links.has_value(), links.has_value());
    EXPECT_EQ(dropped.links.value_or(QString()).trimmed(), QString::fromLatin1(links.value_or("")));
    EXPECT_EQ(dropped.lists, isList ? QStringList{path} : QStringList());
    EXPECT_EQ(dropped.linesLeftOut, linesLeftOut);
}

INSTANTIATE_TEST_SUITE_P(
    , DroppedTextTest,
    testing::Values(DropCase{"a.txt", "http://site/1\n", "http://site/1", false, 0},
                    DropCase{"a.txt", "ABBA - Waterloo\nToto - Africa\n", std::nullopt, true, 0},
                    DropCase{"a.txt", "ABBA - Waterloo\nhttp://site/1",
                             "ABBA - Waterloo\nhttp://site/1", false, 1},
                    DropCase{"a.CSV", "A,B,http://site/1\n\n--\nC,D,\nE,F,",
                             "A B http://site/1\n\n--\nC D \nE F", false, 2},
                    DropCase{"a.m3u", "#EXTM3U\nhttp://site/1?a=1&amp;b=2",
                             "#EXTM3U\nhttp://site/1?a=1&b=2", false, 0},
                    DropCase{"a.webloc", "<string>http://site/1</string>",
                             "string http://site/1 /string", false, 0},
                    DropCase{"a.mp3", "http://site/1", "", false, 0}));

TEST(DroppedText, WhatIsNoFileIsNotReadAndOneLineLeftOutIsOne) {
    const QTemporaryDir folder;
    const QString device = folder.filePath(QStringLiteral("a.m3u"));
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/zero"), device));
    EXPECT_EQ(droppedText({QUrl::fromLocalFile(device)}, {}).links, QString());
    EXPECT_TRUE(leftOutRemark(1).contains(QStringLiteral("1 line without")));
}

}  // namespace
}  // namespace reelcrate
