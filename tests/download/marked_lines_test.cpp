#include "download/marked_lines.h"

#include "support/texts.h"

namespace reelcrate {
namespace {

TEST(MarkedLines, MarksEachLineWhereverTheTextIsCut) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"a\nbc\n", "3/24 a\n3/24 bc\n"},
        {"a\r\nb", "3/24 a\r\n3/24 b\n"},
        {"ERROR: \r[download] x\n\n", "3/24 ERROR: \r3/24 [download] x\n3/24 \n"},
        {"a\r", "3/24 a\r\n"},
    };
    for (const auto& [output, expected] : cases) {
        SCOPED_TRACE(output);
        EXPECT_EQ(markedText(text("3/24"), text(output)), text(expected));
        MarkedLines lines(text("3/24"));
        QString marked;
        for (const QChar c : text(output))
            marked += lines.add(c);
        EXPECT_EQ(marked + lines.takeRest(), text(expected));
        EXPECT_EQ(lines.takeRest(), QString());
    }
}

TEST(MarkedLines, DoNotPileUpWhatHasNoEnd) {
    MarkedLines lines(text("1/1"));
    const QString piece(10'000, u'x');
    qsizetype length = 0;
    for (int i = 0; i < 10; ++i)
        length += lines.add(piece).count(u'x');
    EXPECT_GT(length, 50'000);
}

}  // namespace
}  // namespace reelcrate
