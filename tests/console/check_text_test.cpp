#include "console/check_text.h"

#include "support/texts.h"

#include <QJsonArray>

namespace reelcrate {
namespace {

using Finding = CheckedFile::Finding;
using Kind = EventFile::Kind;

CheckedFile song(const char* name, double seconds, std::optional<Finding> finding = std::nullopt) {
    CheckedFile file{{text(name), Kind::song}};
    file.seconds = seconds;
    file.finding = finding;
    return file;
}

TEST(CheckText, WhatNeedsAttentionStandsLast) {
    CheckedFile cut = song("A\x1b[2J.mp3", 95, Finding::cutOff);
    cut.headerSeconds = 191;
    CheckedFile twin = song("B.mp3", 60, Finding::doubled);
    twin.detail = text("D.mp3");
    twin.offMedian = 9;  // which is no news of a song that has to go
    CheckedFile quiet = song("D.mp3", 3661);
    quiet.offMedian = -6.5;
    const CheckedFile notes{{text("notes.txt"), Kind::foreign}};
    EXPECT_EQ(checkTable({cut, twin, quiet, notes}).toStdString(),
              "OK                1:01:01  D.mp3 - 6.5 LU quieter than most\n"
              "Foreign file               notes.txt\n"
              "Needs Attention      1:35  A [2J.mp3 - Cut off: 1:35 of the 3:11 that its header "
              "tells\n"
              "Needs Attention      1:00  B.mp3 - The same recording as D.mp3\n"
              "3 songs, 1:03:36 in all; 1 foreign file; 2 need attention\n");
    EXPECT_EQ(checkTable({song("D.mp3", 59.6)}).section(u'\n', 1, 1),
              text("1 song, 1:00 in all; all is well"));
    EXPECT_EQ(checkTable({}), text("0 songs, 0:00 in all\n"));
}

TEST(CheckText, TellsLengthsApartThatRoundToOne) {
    CheckedFile cut = song("A.mp3", 190.2, Finding::cutOff);
    cut.headerSeconds = 190.4;
    EXPECT_EQ(findingText(cut), text("Cut off: 190.2 s of the 190.4 s that its header "
                                     "tells"));
    cut.finding = Finding::longer;
    EXPECT_EQ(findingText(cut), text("Longer than its header tells: 190.2 s instead of 190.4 s"));
    cut.finding = Finding::cutOff;
    EXPECT_TRUE(checkTable({cut}).endsWith(text("; 1 needs attention\n")));
}

TEST(CheckText, JsonHasEachFileAndTheSum) {
    const QJsonObject json = checkAsJson(text("/x"), {song("A.mp3", 1.23456),
                                                      song("B.mp3", 0, Finding::empty),
                                                      {{text("c.txt"), Kind::foreign}},
                                                      {{text("d.mp4"), Kind::video}}});
    EXPECT_EQ(json.value(u"songs").toInt(), 3);
    EXPECT_EQ(json.value(u"needAttention").toInt(), 1);
    EXPECT_EQ(json.value(u"foreign").toInt(), 1);
    EXPECT_DOUBLE_EQ(json.value(u"seconds").toDouble(), 1.235);
    const QJsonArray files = json.value(u"files").toArray();
    EXPECT_EQ(files.at(1)[u"finding"].toString(), text("Empty file"));
    EXPECT_TRUE(files.at(1)[u"needsAttention"].toBool());
    EXPECT_TRUE(files.at(2)[u"seconds"].isUndefined());
    EXPECT_EQ(files.at(3)[u"kind"].toString(), text("video"));
}

TEST(CheckText, ProgressFitsTheTerminal) {
    EXPECT_EQ(checkProgressLine(1, 2, 80), text("[##########----------] 1 of 2 songs"));
    EXPECT_EQ(checkProgressLine(2, 2, 22), text("[####################]"));
}

}  // namespace
}  // namespace reelcrate
