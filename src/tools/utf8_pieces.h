#pragma once

#include <QByteArray>
#include <QString>

/// Turns a stream of bytes that arrives in pieces into pieces of text. A piece never ends inside a
/// character: the bytes of an incomplete one wait for the next piece. One thread at a time.
namespace reelcrate {

class Utf8Pieces {
public:
    /// The text that is complete with these bytes; empty when nothing is complete yet, or when the
    /// bytes are not UTF-8: such a piece is dropped, or what waited for it, where that alone is
    /// what spoils it.
    QString add(const QByteArray& bytes);

private:
    QByteArray m_incomplete;
};

}  // namespace reelcrate
