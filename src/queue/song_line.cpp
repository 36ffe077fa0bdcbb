#include "queue/song_line.h"

#include "base/duration_text.h"
#include "base/text.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace reelcrate {

namespace {

constexpr qsizetype longestLine = 300;  // UTF-16 units
/// A "length" of more is a time of day, or a spreadsheet's mistake.
constexpr double mostSeconds = 3 * 3600;
/// The same of one that stands by itself at a line's end.
constexpr double mostBareSeconds = 15 * 60;

QRegularExpression expression(const char16_t* pattern) {
    return QRegularExpression(
        QString::fromUtf16(pattern),
        QRegularExpression::UseUnicodePropertiesOption | QRegularExpression::CaseInsensitiveOption);
}

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

/// A text of pictures alone stays: it may be a name.
QString withoutPictures(const QString& text) {
    const QList<uint> scalars = text.toUcs4();
    const auto isOrnament = [](uint scalar) { return isPicture(scalar) || isBlank(scalar); };
    const auto first = std::find_if_not(scalars.begin(), scalars.end(), isOrnament);
    const auto last = std::find_if_not(scalars.rbegin(), scalars.rend(), isOrnament).base();
    if (first >= last)
        return text;
    return QString::fromUcs4(reinterpret_cast<const char32_t*>(&*first), last - first);
}

/// What stands before a line's first name, one after the other: who wrote it when, a bullet, a box
/// to tick, a number, the place in a track list.
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

/// Separators of a table's empty cells, and what a sentence ends with.
QString withoutEnds(const QString& line) {
    static const QRegularExpression start = expression(uR"(^[\s,;|]+)");
    static const QRegularExpression end = expression(uR"([\s,;|、，]*(?:\s[-–—]+)?$)");
    return QString(line).remove(start).remove(end);
}

struct Timed {
    QString text;  ///< without the length
    std::optional<double> seconds;
};

/// "Artist - Title (3:45)", "… 3:45", "… - 3:45 min", "… 3'45\"". Of what else is in brackets, such
/// as
/// "(start at 0:30)", no time is the length.
Timed timed(const QString& line) {
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

/// Where the quotation that begins the text ends; -1 where none does.
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

QString tidied(const QString& name) {
    static const QRegularExpression dashes = expression(uR"(^(?:[-–—]+\s+)+)");
    return withoutQuotes(withoutPictures(withoutEnds(name.trimmed().remove(dashes)))).trimmed();
}

using Parts = std::pair<QString, QString>;

std::optional<Parts> partsAround(const QString& line, const QRegularExpressionMatch& match) {
    const QString first = line.first(match.capturedStart()).trimmed();
    const QString second = line.sliced(match.capturedEnd()).trimmed();
    const bool bothNames = !tidied(first).isEmpty() && !tidied(second).isEmpty();
    return bothNames && (hasWords(first) || hasWords(second)) ? std::optional(Parts(first, second))
                                                              : std::nullopt;
}

/// The only place in the line that the pattern matches.
std::optional<Parts> partsAroundOnly(const QString& line, const QRegularExpression& pattern) {
    QRegularExpressionMatchIterator matches = pattern.globalMatch(line);
    if (!matches.hasNext())
        return std::nullopt;
    const QRegularExpressionMatch match = matches.next();
    return matches.hasNext() ? std::nullopt : partsAround(line, match);
}

/// What comes before "by" in a wish for anything.
bool namesNoSong(const QString& title) {
    static const QRegularExpression pattern = expression(
        uR"(^(?:(?:please|bitte|play|spiel|no|not|any|some|all|more|only|just|a|the|every|lots of|)"
        uR"(other|good|best|old|new)\s+)*)"
        uR"((?:songs?|music|musik|stuff|tracks?|hits?|anything|something|everything|nothing|all|)"
        uR"(more|some|one|any|please|no)$)");
    return pattern.match(title).hasMatch();
}

/// What comes behind "by" in a title, such as "Stand by Me", or in a remark.
bool namesNoArtist(const QString& artist) {
    static const QRegularExpression pattern = expression(
        uR"(^(?:me|you|him|her|us|them|myself|yourself|now|then|the way|far|heart|accident|)"
        uR"((?:the )?end|midnight|noon|tonight|\d{1,2}(?:[:.]\d{2})?\s?(?:am|pm|uhr|h|o.clock)?)[.!?]*$)");
    return pattern.match(artist).hasMatch();
}

/// "Title by Artist"; the last "by" is it, for titles have some, too.
std::optional<NamedSong> songByArtist(const QString& line) {
    static const QRegularExpression pattern = expression(uR"(^(.*\S)[\s,(]+by\s+(.+)$)");
    static const QRegularExpression how =
        expression(uR"([\s,(]+(?:as )?(?:performed|sung|recorded|covered)$)");
    const QRegularExpressionMatch match = pattern.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    QString artist = tidied(match.captured(2));
    if (artist.endsWith(u')') && !artist.contains(u'('))
        artist = tidied(artist.chopped(1));
    const QString title = tidied(match.captured(1).remove(how));
    const bool isPhrase =
        title.section(u' ', -1).compare(artist.section(u' ', 0, 0), Qt::CaseInsensitive) == 0;
    if (title.isEmpty() || artist.isEmpty() || isPhrase || namesNoSong(title) ||
        namesNoArtist(artist))
        return std::nullopt;
    return NamedSong{artist, title};
}

/// "“Title” by Artist", "„Titel“ von Interpret", "«Название» — Исполнитель".
std::optional<NamedSong> songOfQuotedTitle(const QString& line) {
    static const QRegularExpression link = expression(
        uR"(^\s*(?:[-\x{2010}-\x{2015}\x{2212}]+\s|,\s|(?:by|von|de|di|par|door|av|od)\s)\s*)");
    const qsizetype end = endOfQuotation(line);
    if (end < 0)
        return std::nullopt;
    const QString rest = line.sliced(end + 1);
    const QRegularExpressionMatch match = link.match(rest);
    const QString artist = rest.sliced(std::max<qsizetype>(match.capturedEnd(), 0)).trimmed();
    if (!match.hasMatch() || isQuoted(artist) || tidied(artist).isEmpty())
        return std::nullopt;
    return NamedSong{tidied(artist), withoutQuotes(line.first(end + 1))};
}

/// "Artist「Title」", as it is written in Japan.
std::optional<NamedSong> songInCorners(const QString& line) {
    static const QRegularExpression pattern =
        expression(uR"(^([^「『]+)[「『]([^「」『』]+)[」』]$)");
    const QRegularExpressionMatch match = pattern.match(line);
    if (!match.hasMatch() || tidied(match.captured(1)).isEmpty())
        return std::nullopt;
    return NamedSong{tidied(match.captured(1)), tidied(match.captured(2))};
}

/// Hours, dates and scores on both sides of a dash.
bool areNumbers(const Parts& parts) {
    static const QRegularExpression number =
        expression(uR"(^[\d\s.:/]*[.:/][\d\s.:/]*(?:uhr|h)?$)");
    return number.match(parts.first).hasMatch() && number.match(parts.second).hasMatch();
}

std::optional<NamedSong> songOf(const QString& line, NameOrder order) {
    if (auto song = songOfQuotedTitle(line))
        return song;
    if (const auto parts = dashedParts(line)) {
        if (areNumbers(*parts))
            return std::nullopt;
        const bool isReversed = order == NameOrder::titleFirst;
        return isReversed ? NamedSong{tidied(parts->second), tidied(parts->first)}
                          : NamedSong{tidied(parts->first), tidied(parts->second)};
    }
    if (auto song = songByArtist(line))
        return song;
    return songInCorners(line);
}

std::optional<NamedSong> timedSongOf(const QString& line, NameOrder order) {
    const Timed parted = timed(line);
    auto song = songOf(withoutEnds(parted.text), order);
    if (song)
        song->seconds = parted.seconds;
    // A title may be a time itself.
    return song || !parted.seconds ? song : songOf(line, order);
}

/// "First dance: Artist - Title"; only what is known for a moment of an event is left out.
QRegularExpressionMatch momentOf(const QString& line) {
    static const QRegularExpression pattern = expression(
        uR"(^(?:(?:our|the|unser|mein|notre|nuestro|nossa|nasz|наш)\s+)?)"
        uR"((?:first dance|last dance|last song|opening|opening dance|entrance|grand entrance|walk in|)"
        uR"(walking down the aisle|aisle|processional|recessional|ceremony|cocktails?|dinner|)"
        uR"(cake cutting|cutting the cake|bouquet toss|garter toss|party|must plays?|)"
        uR"((?:father|mother|vater|mutter)[\s/&-]+(?:and )?(?:daughter|son|tochter|sohn|bride|groom)(?:[\s-]dance|tanz)?|)"
        uR"(eröffnungstanz|hochzeitstanz|brauttanz|erster tanz|letzter tanz|einzug|auszug|trauung|)"
        uR"(sektempfang|torte|tortenanschnitt|brautstrauß|brautwalzer|hochzeitswalzer|rausschmeißer|)"
        uR"(primer baile|vals|entrada|salida|ceremonia|baile|première danse|ouverture de bal|entrée|)"
        uR"(sortie|cérémonie|primeira dança|cerimônia|cerimónia|saída|pierwszy taniec|oczepiny|wejście|)"
        uR"(primo ballo|ingresso|uscita|openingsdans|первый танец|выход|πρώτος χορός|ilk dans|)"
        uR"(song|track|lied|wunschlied|wunsch)\s*\d{0,2}\s*(?::|\s[-–—])\s+)");
    return pattern.match(line);
}

/// A wish for silence, several songs at once, a date or a telephone number, the end of a letter.
/// Empty for what may be a song.
QString whyDoubtful(const QString& line) {
    static const std::pair<QRegularExpression, QString> doubts[] = {
        {expression(
             uR"(^[^:]{0,40}\b(?:not?|don['’]?t|never|avoid|skip|without|kein\w*|nicht|nie|ohne|sans|)"
             uR"(pas|sin|nada|non|niente|senza|não|sem|nie|без|не|нет)\b[^:]{0,40}:\s)"),
         QStringLiteral("asks for something not to be played")},
        {expression(
             uR"(^(?:please[\s,]+)?(?:do not|don['’]?t|never) play\b|^please,? (?:no|don['’]?t|do not)\b|)"
             uR"(^bitte (?:nicht|kein\w*)\b|^no\b.*\bplease[!.]*$|^kein\w*\b.*\bbitte[!.]*$)"),
         QStringLiteral("asks for something not to be played")},
        {expression(uR"(^.*?\s[-–—]\s.*?\S(?:[,;]|\s[/|])\s+(?:\S+\s+)*?\S+\s[-–—]\s+)"
                    uR"((?!.*\b(?:remaster\w*|live|edit|mix|remix|version|radio)\b)\S)"),
         QStringLiteral("several songs on one line")},
        {expression(uR"(\d{1,2}[:.]\d{2}(?:\s?(?:uhr|h|am|pm))?\s*[-–—]\s*\d{1,2}[:.]\d{2}\b)"),
         QStringLiteral("a time")},
        {expression(
             uR"((?:^|\s[-–—]\s)(?:\d{1,2}[./]\s?\d{1,2}[./]\s?\d{2,4}|\d{4}-\d{2}-\d{2})$)"),
         QStringLiteral("a date")},
        {expression(uR"((?:^|\s)\+?\d{2,5}\s?[-–/]\s?\d{3,}[\d\s]{3,}$)"),
         QStringLiteral("a telephone number")},
        {expression(
             uR"((?:^|\s[-–—]\s)(?:thank(?:s| you) (?:so much|for)|many thanks|vielen dank|danke für|)"
             uR"((?:best|kind|warm) regards|(?:liebe|viele|herzliche|beste) grüße)\b)"),
         QStringLiteral("the words of a letter")},
    };
    // "Title (feat. One, Two) - Radio Edit" is one song.
    static const QRegularExpression brackets = expression(uR"([(\[][^()\[\]]*[)\]])");
    const QString plain = QString(line).remove(brackets);
    for (const auto& [form, reason] : doubts) {
        if (form.match(plain).hasMatch())
            return reason;
    }
    return {};
}

/// A table's line: what parts its cells is no part of a message. A bullet, a number and a length
/// may stand apart by a tab.
bool hasColumns(const QString& line) {
    static const QRegularExpression cells = expression(uR"(\S\t+\S|\S;\S)");
    return cells.match(line).hasMatch() &&
           cells.match(withoutEnds(timed(withoutOpening(line.trimmed())).text)).hasMatch();
}

}  // namespace

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

std::optional<Parts> dashedParts(const QString& line) {
    // What is most surely meant to part two names comes first: "Jay-Z - 99 Problems".
    static const QRegularExpression spaced =
        expression(uR"(\s[-\x{2010}-\x{2015}\x{2212}\x{FF0D}\x{2E3A}\x{2E3B}]+\s)");
    static const QRegularExpression longDash =
        expression(uR"((?<=[^\d\s])\s?[\x{2013}-\x{2015}]\s?(?=[^\d\s]))");
    static const QRegularExpression halfSpaced = expression(uR"((?<=\S)(?:\s[-–]|[-–]\s)(?=\S))");
    static const QRegularExpression wave = expression(uR"(\s[~\x{301C}\x{FF5E}]\s)");
    for (QRegularExpressionMatchIterator all = spaced.globalMatch(line); all.hasNext();) {
        if (auto parts = partsAround(line, all.next()))
            return parts;
    }
    for (const QRegularExpression* only : {&longDash, &halfSpaced, &wave}) {
        if (auto parts = partsAroundOnly(line, *only))
            return parts;
    }
    return std::nullopt;
}

ReadLine readSongLine(const QString& line, NameOrder order) {
    static const QRegularExpression link = expression(uR"(\w://\S|\bwww\.\S)");
    const auto refused = [](const QString& reason) {
        return ReadLine{.song = {}, .reason = reason, .remark = {}};
    };
    if (line.size() > longestLine)
        return refused(QStringLiteral("too long for a song"));
    if (link.match(line).hasMatch())
        return refused(QStringLiteral("a link, to be added by itself"));
    if (hasColumns(line))
        return refused(QStringLiteral("no line above names these columns"));
    const QString named = withoutEnds(withoutOpening(withoutQuotes(withoutEnds(cleanLine(line)))));
    if (const QString doubt = whyDoubtful(named); !doubt.isEmpty())
        return refused(doubt);
    if (const auto moment = momentOf(named); moment.hasMatch()) {
        const QString rest = withoutQuotes(named.sliced(moment.capturedEnd()));
        if (auto song = timedSongOf(rest, order))
            return {
                .song = std::move(song),
                .reason = {},
                .remark = QStringLiteral("read without \"%1\"").arg(moment.captured().trimmed())};
    }
    if (auto song = timedSongOf(named, order))
        return {.song = std::move(song), .reason = {}, .remark = {}};
    return refused(QStringLiteral("no dash or \"by\" between an artist and a title"));
}

}  // namespace reelcrate
