#pragma once

#include <QString>

/// Puts a mark before each line of a text that comes in pieces, wherever those are cut: lines of
/// several tools can stand in one log and be told apart. One thread at a time.
namespace reelcrate {

class MarkedLines {
public:
    explicit MarkedLines(const QString& mark);

    /// The lines that the piece completes, marked; empty when it completes none.
    QString add(const QString& piece);

    /// The line that was begun and not completed, marked; empty when there is none.
    QString takeRest();

private:
    const QString m_mark;
    QString m_unfinishedLine;
};

/// A whole text, each of its lines marked.
QString markedText(const QString& mark, const QString& text);

}  // namespace reelcrate
