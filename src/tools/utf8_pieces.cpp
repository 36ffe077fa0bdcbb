#include "tools/utf8_pieces.h"

#include <QStringDecoder>

#include <algorithm>
#include <optional>

namespace reelcrate {

namespace {

constexpr qsizetype longestCharacter = 4;

/// The number of bytes of a character that begins with this byte; 0 inside a character, and 1 for a
/// byte that begins none, since nothing is missing where nothing can follow.
qsizetype lengthOfCharacter(char first) {
    const auto byte = static_cast<unsigned char>(first);
    if (byte >= 0x80 && byte < 0xC0)
        return 0;
    if (byte < 0xC2 || byte > 0xF4)
        return 1;
    if (byte < 0xE0)
        return 2;
    return byte < 0xF0 ? 3 : longestCharacter;
}

/// How many bytes at the end begin a character that is not all there.
qsizetype incompleteTail(const QByteArray& bytes) {
    const qsizetype furthest = std::min(longestCharacter - 1, bytes.size());
    for (qsizetype tail = 1; tail <= furthest; ++tail) {
        const qsizetype length = lengthOfCharacter(bytes.at(bytes.size() - tail));
        if (length > 0)
            return length > tail ? tail : 0;
    }
    return 0;
}

/// Absent where the bytes are not UTF-8.
std::optional<QString> decoded(const QByteArray& bytes) {
    // A byte-order mark in mid-stream is a character like any other.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom |
                                                     QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

}  // namespace

QString Utf8Pieces::add(const QByteArray& bytes) {
    const QByteArray all = m_incomplete + bytes;
    const qsizetype tail = incompleteTail(all);
    auto text = decoded(all.chopped(tail));
    // What waited was no beginning of these bytes, then: it is dropped alone.
    if (!text && !m_incomplete.isEmpty())
        text = decoded(bytes.chopped(tail));
    m_incomplete = all.last(tail);
    return text.value_or(QString());
}

}  // namespace reelcrate
