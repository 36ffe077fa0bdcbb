#include "tools/utf8_pieces.h"

#include "support/printers.h"

#include <QList>

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

TEST(Utf8Pieces, AStrayByteCostsNoOtherPiece) {
    const struct {
        QList<QByteArray> pieces;
        const char* text;
    } cases[] = {
        {{"caf\xC3", "\xA9"}, "caf\u00e9"},
        {{"\xF0", "\x9F\x8E", "\xB5!"}, "\U0001F3B5!"},
        {{"one \xC3", "two"}, "one two"},
        {{"one \xE2\x82", "two \xE2\x82", "\xAC"}, "one two \u20ac"},
        {{"\xF0\x9F", "\xC3\xA9 two"}, "\u00e9 two"},
        {{"\xC3", "\xC3", "\xA9"}, "\u00e9"},
        {{"\xE2\x82", "\xAC bad \xFF", "two"}, "two"},
        {{"bad \xFF", "two"}, "two"},
    };
    for (const auto& [pieces, text] : cases) {
        Utf8Pieces reader;
        QString read;
        for (const QByteArray& piece : pieces)
            read += reader.add(piece);
        EXPECT_EQ(read, QString::fromUtf8(text));
    }
}

}  // namespace
}  // namespace reelcrate
