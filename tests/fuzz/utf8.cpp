#include "fuzz.h"
#include "tools/utf8_pieces.h"

using namespace reelcrate;
using namespace reelcrate::fuzz;

namespace {

/// What comes out of the bytes, cut as the choices say.
QString inPieces(Utf8Pieces& pieces, const QByteArray& bytes, FuzzedDataProvider&& cuts) {
    QString text;
    for (qsizetype at = 0; at < bytes.size();) {
        const QByteArray piece = bytes.mid(at, cuts.ConsumeIntegralInRange<qsizetype>(1, 7));
        at += piece.size();
        text += pieces.add(piece);
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));

    const QString text = QString::fromUtf8(bytes);
    Utf8Pieces whole;
    require(inPieces(whole, text.toUtf8(), FuzzedDataProvider(data, size)) == text,
            "a text is the same wherever it is cut");

    Utf8Pieces broken;
    require(inPieces(broken, bytes, FuzzedDataProvider(data, size)).isValidUtf16(),
            "what is no text gives no half of a character");
    require(broken.add("text") == QStringLiteral("text"), "reading goes on after what is no text");
    return 0;
}
