#include "download/marked_lines.h"

#include <QStringView>

#include <utility>

namespace reelcrate {

namespace {

constexpr qsizetype longestLine = 65'536;  // UTF-16 units; a longer one is broken

/// A carriage return ends a line, too, unless a line feed may follow.
bool endsLine(const QString& text, qsizetype index) {
    if (text.at(index) == u'\n')
        return true;
    return text.at(index) == u'\r' && index + 1 < text.size() && text.at(index + 1) != u'\n';
}

}  // namespace

MarkedLines::MarkedLines(const QString& mark) : m_mark(mark + u' ') {}

QString MarkedLines::add(const QString& piece) {
    const QString text = m_unfinishedLine + piece;
    QString lines;
    qsizetype begin = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!endsLine(text, i))
            continue;
        lines += m_mark;
        lines += QStringView(text).sliced(begin, i + 1 - begin);
        begin = i + 1;
    }
    m_unfinishedLine = text.sliced(begin);
    if (m_unfinishedLine.size() > longestLine)
        lines += takeRest();
    return lines;
}

QString MarkedLines::takeRest() {
    if (m_unfinishedLine.isEmpty())
        return {};
    return m_mark + std::exchange(m_unfinishedLine, {}) + u'\n';
}

QString markedText(const QString& mark, const QString& text) {
    MarkedLines lines(mark);
    const QString whole = lines.add(text);
    return whole + lines.takeRest();
}

}  // namespace reelcrate
