#include "queue/separated_values.h"

#include <algorithm>

namespace reelcrate {

namespace {

constexpr QChar quote = u'"';
/// UTF-16 units: a quote that encloses more was not meant to.
constexpr qsizetype longestQuoted = 2000;

bool breaksLine(QChar c) {
    return c == u'\n' || c == u'\r';
}

class Reader {
public:
    Reader(QStringView text, QChar separator) : m_text(text), m_separator(separator) {}

    QList<TableRecord> records() {
        QList<TableRecord> records;
        while (m_at < m_text.size()) {
            TableRecord record{.line = m_line, .cells = {nextCell()}};
            while (m_at < m_text.size() && m_text.at(m_at) == m_separator) {
                ++m_at;
                record.cells.append(nextCell());
            }
            skipLineBreak();
            records.append(record);
        }
        return records;
    }

private:
    QString nextCell() {
        if (const qsizetype closing = closingQuote(); closing >= 0) {
            const QStringView inside = m_text.sliced(m_at + 1, closing - m_at - 1);
            m_line += static_cast<int>(lineBreaksIn(inside));
            m_at = closing + 1;
            return inside.toString().replace(QStringLiteral("\"\""), QString(quote));
        }
        const qsizetype start = m_at;
        while (m_at < m_text.size() && !endsCell(m_text.at(m_at)))
            ++m_at;
        return m_text.sliced(start, m_at - start).toString();
    }

    bool endsCell(QChar c) const { return c == m_separator || breaksLine(c); }

    /// Of the cell that begins here; -1 where it is in no quotes.
    qsizetype closingQuote() const {
        if (m_at >= m_text.size() || m_text.at(m_at) != quote)
            return -1;
        const qsizetype last = std::min(m_text.size(), m_at + longestQuoted);
        for (qsizetype at = m_at + 1; at < last; ++at) {
            if (m_text.at(at) != quote)
                continue;
            const bool isEnd = at + 1 == m_text.size() || endsCell(m_text.at(at + 1));
            if (isEnd)
                return at;
            if (m_text.at(at + 1) != quote)
                return -1;
            ++at;
        }
        return -1;
    }

    void skipLineBreak() {
        if (m_at >= m_text.size())
            return;
        const bool isPair =
            m_text.at(m_at) == u'\r' && m_at + 1 < m_text.size() && m_text.at(m_at + 1) == u'\n';
        m_at += isPair ? 2 : 1;
        ++m_line;
    }

    static qsizetype lineBreaksIn(QStringView text) {
        return text.count(u'\n') + text.count(u'\r') - text.count(u"\r\n");
    }

    QStringView m_text;
    QChar m_separator;
    qsizetype m_at = 0;
    int m_line = 1;
};

}  // namespace

QList<TableRecord> tableRecords(const QString& text, QChar separator) {
    return Reader(text, separator).records();
}

}  // namespace reelcrate
