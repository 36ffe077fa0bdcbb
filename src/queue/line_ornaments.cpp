#include "queue/line_ornaments.h"

#include "base/duration_text.h"

#include <QList>

#include <algorithm>
#include <array>

namespace reelcrate {

namespace {

/// A "length" of more is a time of day, or a spreadsheet's mistake.
constexpr double mostSeconds = 3 * 3600;
/// The same of one that stands by itself at a line's end.
constexpr double mostBareSeconds = 15 * 60;

bool turnsDirection(QChar c) {
    const char16_t unit = c.unicode();
    return unit == 0x200E || unit == 0x200F || (unit >= 0x202A && unit <= 0x202E) ||
           (unit >= 0x2066 && unit <= 0x2069);
}

bool isInvisible(QChar c) {
    return turnsDirection(c) || c == QChar(0x200B) || c == QChar(0xFEFF) || c == QChar(0x00AD);
}

/// The pictures that people begin and end a line with, and what such a picture is composed of.
bool isPicture(char32_t scalar) {
    constexpr char32_t firstPicture = 0x2190;
    constexpr char32_t keycap = 0x20E3;
    const bool isTone = scalar >= 0x1F3FB && scalar <= 0x1F3FF;
    const bool isJoint = scalar == 0xFE0F || scalar == 0x200D || scalar == keycap;
    return isTone || isJoint ||
           (scalar >= firstPicture && QChar::category(scalar) == QChar::Symbol_Other);
}

bool isBlank(char32_t scalar) {
    return QChar::isSpace(scalar);
}

struct Quotes {
    QChar opening;
    QChar closing;
};

constexpr std::array quotes{
    Quotes{u'"', u'"'},           Quotes{u'\u201C', u'\u201D'}, Quotes{u'\u201E', u'\u201C'},
    Quotes{u'\u201E', u'\u201D'}, Quotes{u'\u201D', u'\u201D'}, Quotes{u'\u00AB', u'\u00BB'},
    Quotes{u'\u00BB', u'\u00AB'}, Quotes{u'\u2018', u'\u2019'}, Quotes{u'\u201A', u'\u2018'},
    Quotes{u'\u2039', u'\u203A'}, Quotes{u'\'', u'\''},         Quotes{u'\u300C', u'\u300D'},
    Quotes{u'\u300E', u'\u300F'}, Quotes{u'\u300A', u'\u300B'}, Quotes{u'`', u'`'},
};

}  // namespace

QRegularExpression expression(const char16_t* pattern) {
    return QRegularExpression(
        QString::fromUtf16(pattern),
        QRegularExpression::UseUnicodePropertiesOption | QRegularExpression::CaseInsensitiveOption);
}

QString withoutPictures(const QString& text) {
    const QList<uint> scalars = text.toUcs4();
    const auto isOrnament = [](uint scalar) { return isPicture(scalar) || isBlank(scalar); };
    const auto first = std::find_if_not(scalars.begin(), scalars.end(), isOrnament);
    const auto last = std::find_if_not(scalars.rbegin(), scalars.rend(), isOrnament).base();
    if (first >= last)
        return text;
    return QString::fromUcs4(reinterpret_cast<const char32_t*>(&*first), last - first);
}

QString withoutOpening(QString line) {
    static const std::array openings{
        // A number in a box.
        expression(uR"(^\d{1,2}\x{FE0F}?\x{20E3}\s*)"),
        // [12.05.26, 18:03:11] Anna: or 12/05/2026, 18:03 - Anna:
        expression(uR"(^\[(?=[^\]]*\d[./-]\s?\d)[^\]]*\d{1,2}:\d{2}[^\]]*\]\s[^:]{1,40}:\s+)"),
        expression(uR"(^\d{1,4}[./-]\d{1,2}[./-]\d{2,4},?\s+\d{1,2}:\d{2}(:\d{2})?(\s[ap]m)?)"
                   uR"(\s-\s[^:]{1,40}:\s+)"),
        expression(uR"(^[-\x{2010}-\x{2015}\x{2212}\x{301C}•‣⁃◦·∙*+~>→]+\s+)"),
        expression(uR"(^[•‣⁃◦·∙])"),
        // A dash that stands at the first name, unless it is the name's own, as in "-M-".
        expression(uR"(^[-\x{2012}-\x{2015}](?=[^\s-])(?!\S*[-\x{2012}-\x{2015}]\s))"),
        expression(uR"(^\[[ x✓✔]?\]\s*)"),
        expression(uR"(^[\(（\[]\d{1,4}[\)）\]][.:]?\s*)"),
        expression(uR"(^(?:nr\.?\s|no\.?\s|#|№)?\s?\d{1,4}\s?(?:[.．、:](?!\d)[)\]]?|[)）\]])\s*)"
                   uR"((?:[-–—]\s+)?)"),
        expression(uR"(^\d{1,4}\s?[-–—]\s+(?=.*\s[-–—~|]\s|.*\sby\s))"),
        expression(uR"(^[\x{2460}-\x{24FF}\x{2776}-\x{2793}]\s*)"),
        expression(
            uR"(^[\(\[]?\d{1,2}:\d{2}(?::\d{2})?[\)\]]?\s+(?:[-–—]\s+)?(?=.*\s[-–—~]\s|.*\sby\s))"),
    };
    qsizetype size = 0;
    do {
        size = line.size();
        line = withoutPictures(line);
        for (const QRegularExpression& opening : openings) {
            const QRegularExpressionMatch match = opening.match(line);
            if (match.hasMatch() && hasWords(line.sliced(match.capturedEnd())))
                line = line.sliced(match.capturedEnd());
        }
    } while (line.size() != size);
    return line;
}

QString withoutEnds(const QString& line) {
    static const QRegularExpression start = expression(uR"(^[\s,;|]+)");
    static const QRegularExpression end = expression(uR"([\s,;|、，]*(?:\s[-–—]+)?$)");
    return QString(line).remove(start).remove(end);
}

TimedText withoutLength(const QString& line) {
    static const QRegularExpression bracketed = expression(
        uR"(\s*[\(\[（【]\s*(\d{1,2}(?::\d{2}){1,2})\s*)"
        uR"((?:min(?:s|utes|uten)?\.?|h|мин\.?|분|分)?\s*[\)\]）】]$)");
    static const QRegularExpression bare = expression(
        uR"((?:\s+[-–—|,]\s*|[\s,;]+)(\d{1,2}(?::\d{2}){1,2})\s*)"
        uR"((min(?:s|utes|uten)?\.?|h|мин\.?|분|分)?$)");
    static const QRegularExpression marked = expression(
        uR"((?:\s*[\(\[]|[\s,;-]+)(\d{1,2})\s?(?:['’′]|m(?:in)?\.?)\s?(\d{2})\s?(?:["”″]|''|’’|s(?:ec)?\.?)?\s*[\)\]]?$)");
    if (const auto match = bracketed.match(line); match.hasMatch()) {
        const auto seconds = secondsOfDuration(match.captured(1));
        if (seconds && *seconds <= mostSeconds)
            return {line.first(match.capturedStart()), seconds};
    }
    if (const auto match = bare.match(line); match.hasMatch()) {
        const auto seconds = secondsOfDuration(match.captured(1));
        const double most = match.captured(2).isEmpty() ? mostBareSeconds : mostSeconds;
        if (seconds && *seconds <= most)
            return {line.first(match.capturedStart()), seconds};
    }
    if (const auto match = marked.match(line); match.hasMatch()) {
        if (const auto seconds = secondsOfDuration(match.captured(1) + u':' + match.captured(2)))
            return {line.first(match.capturedStart()), seconds};
    }
    return {line, std::nullopt};
}

qsizetype endOfQuotation(const QString& text) {
    qsizetype end = -1;
    for (const auto& [opening, closing] : quotes) {
        if (text.size() < 3 || text.front() != opening)
            continue;
        const qsizetype at = text.indexOf(closing, 1);
        if (at > 1 && (end < 0 || at < end))
            end = at;
    }
    return end;
}

bool isQuoted(const QString& text) {
    return text.size() > 2 && endOfQuotation(text) == text.size() - 1;
}

QString cleanLine(const QString& line) {
    QString clean = line;
    clean.removeIf(isInvisible);
    std::replace_if(
        clean.begin(), clean.end(), [](QChar c) { return c.category() == QChar::Other_Control; },
        QChar(u' '));
    return clean.simplified();
}

bool hasWords(const QString& line) {
    const QList<uint> scalars = line.toUcs4();
    return std::any_of(scalars.begin(), scalars.end(),
                       [](char32_t scalar) { return QChar::isLetterOrNumber(scalar); });
}

QString withoutQuotes(const QString& text) {
    // As messages mark bold and slanted letters.
    static const QRegularExpression marked =
        expression(uR"(^([*_]{1,3})(?!\s)((?:(?!\1).)+)(?<!\s)\1$)");
    QString inside = text.trimmed().replace(marked, QStringLiteral("\\2"));
    while (isQuoted(inside))
        inside = inside.sliced(1, inside.size() - 2).trimmed();
    return inside;
}

}  // namespace reelcrate
