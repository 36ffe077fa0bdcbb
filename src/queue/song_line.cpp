#include "queue/song_line.h"

#include "base/text.h"
#include "queue/line_ornaments.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace reelcrate {

namespace {

constexpr qsizetype longestLine = 300;  // UTF-16 units

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
    const TimedText parted = withoutLength(line);
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
           cells.match(withoutEnds(withoutLength(withoutOpening(line.trimmed())).text)).hasMatch();
}

}  // namespace

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
