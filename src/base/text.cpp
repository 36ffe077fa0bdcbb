#include "base/text.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace reelcrate {

namespace {

/// Like the finder's own, which ends some characters between the two halves of a surrogate pair.
qsizetype toNextBoundary(QTextBoundaryFinder& finder) {
    const QString text = finder.string();
    qsizetype next = finder.toNextBoundary();
    while (next > 0 && next < text.size() && text.at(next).isLowSurrogate() &&
           text.at(next - 1).isHighSurrogate())
        next = finder.toNextBoundary();
    return next;
}

/// The position where the character number `count` ends, or -1 when the text ends before.
qsizetype endOfCharacter(const QString& text, qsizetype count) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    for (qsizetype seen = 0; seen < count; ++seen) {
        end = toNextBoundary(finder);
        if (end < 0)
            return -1;
    }
    return end;
}

bool isLineBreak(QChar c) {
    const char16_t unit = c.unicode();
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

}  // namespace

qsizetype characterCount(const QString& text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (toNextBoundary(finder) > 0)
        ++count;
    return count;
}

bool hasAtLeastCharacters(const QString& text, qsizetype count) {
    // A character is one UTF-16 unit or more, so that a short text needs no look at its boundaries.
    return text.size() >= count && endOfCharacter(text, count) >= 0;
}

QString firstCharacters(const QString& text, qsizetype count) {
    const qsizetype end = endOfCharacter(text, count);
    return end < 0 ? text : text.first(end);
}

QString firstBytes(const QString& text, qsizetype bytes) {
    if (text.toUtf8().size() <= bytes)
        return text;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    qsizetype used = 0;
    for (qsizetype next = toNextBoundary(finder); next > 0; next = toNextBoundary(finder)) {
        used += QStringView(text).sliced(end, next - end).toUtf8().size();
        if (used > bytes)
            break;
        end = next;
    }
    return text.first(end);
}

QStringList trimmedLines(const QString& text) {
    QStringList lines;
    auto begin = text.cbegin();
    while (true) {
        const auto end = std::find_if(begin, text.cend(), isLineBreak);
        lines.append(QStringView(begin, end).trimmed().toString());
        if (end == text.cend())
            return lines;
        begin = end + 1;
    }
}

QString pluralSuffix(qsizetype count) {
    return count == 1 ? QString() : QStringLiteral("s");
}

QString withHyphensForUnsafeCharacters(QString text) {
    const QStringView unsafe = u"/\\:?%*|\"<>";
    for (QChar& c : text) {
        if (unsafe.contains(c) || c.isNull())
            c = u'-';
    }
    return text;
}

}  // namespace reelcrate
