#include "base/text.h"

#include "support/printers.h"

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

const QString family =
    QStringLiteral("👨‍👩‍👧");  // one character of eight UTF-16 units and 18 bytes
const QString accented = QStringLiteral("e\u0301");

TEST(Text, CountsWhatAReaderSees) {
    EXPECT_EQ(characterCount(QString()), 0);
    EXPECT_EQ(characterCount(family + accented + u'x'), 3);
    EXPECT_TRUE(hasAtLeastCharacters(family + accented, 2));
    EXPECT_FALSE(hasAtLeastCharacters(family + accented, 3));
    EXPECT_EQ(firstCharacters(family + accented + u'x', 2), family + accented);
    EXPECT_EQ(firstCharacters(QStringLiteral("ab"), 5), QStringLiteral("ab"));
}

TEST(Text, CutsBytesAtACharactersEnd) {
    const struct {
        QString text;
        qsizetype bytes;
        QString first;
    } cases[] = {
        {QStringLiteral("abc"), 3, QStringLiteral("abc")},
        {QStringLiteral("abcd"), 3, QStringLiteral("abc")},
        {QStringLiteral("aé"), 2, QStringLiteral("a")},
        {QStringLiteral("a") + accented, 2, QStringLiteral("a")},
        {QStringLiteral("日本"), 5, QStringLiteral("日")},
        {family + u'x', 18, family},
        {family + u'x', 17, QString()},
        // Behind a Thai letter Qt sees an end in the middle of a surrogate pair.
        {QStringLiteral("\u0E2D\U0001F3B5"), 6, QStringLiteral("\u0E2D")},
    };
    for (const auto& [text, bytes, first] : cases)
        EXPECT_EQ(firstBytes(text, bytes), first);
}

TEST(Text, BreaksLinesAtEveryKindOfBreak) {
    const QString text = QStringLiteral(" a \r\nb\v\u2028c\u0085");
    const QStringList lines{QStringLiteral("a"), QString(),           QStringLiteral("b"),
                            QString(),           QStringLiteral("c"), QString()};
    EXPECT_EQ(trimmedLines(text), lines);
}

}  // namespace
}  // namespace reelcrate
