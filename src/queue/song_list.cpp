#include "queue/song_list.h"

#include "base/text.h"
#include "queue/line_ornaments.h"
#include "queue/separated_values.h"
#include "queue/song_columns.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <optional>

namespace reelcrate {

namespace {

constexpr qsizetype longestShown = 80;  // characters
/// Some programs write a title and a date above the names of the columns.
constexpr qsizetype mostLinesAbove = 20;

LineNote noteOf(int line, const QString& text, const QString& note) {
    const QString shown = cleanLine(text.first(std::min(text.size(), longestShown * 4)));
    return {.line = line,
            .text = hasAtLeastCharacters(shown, longestShown + 1)
                        ? firstCharacters(shown, longestShown) + u'\u2026'
                        : shown,
            .note = note};
}

/// Line breaks of all systems are one character.
QString withPlainBreaks(QString text) {
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

// Tables

struct Table {
    QList<TableRecord> records;
    qsizetype header = 0;  ///< its position among the records
    SongColumns columns;
};

std::optional<Table> tableWith(const QString& text, QChar separator) {
    const QList<TableRecord> records = tableRecords(text, separator);
    const qsizetype last = std::min(records.size(), mostLinesAbove);
    for (qsizetype at = 0; at < last; ++at) {
        const QStringList& names = records.at(at).cells;
        const auto columns = names.size() > 1 ? songColumns(names) : std::nullopt;
        if (columns)
            return Table{records, at, *columns};
    }
    return std::nullopt;
}

std::optional<Table> tableIn(const QString& text) {
    for (const QChar separator : {u'\t', u';', u','}) {
        if (auto table = tableWith(text, separator))
            return table;
    }
    return std::nullopt;
}

QString cellAt(const TableRecord& record, qsizetype column) {
    return column >= 0 && column < record.cells.size()
               ? withoutQuotes(cleanLine(record.cells.at(column)))
               : QString();
}

/// "A;B", "A,B" and "A\, B" of exports as they are spoken of.
QString spokenArtists(const QString& artists) {
    static const QRegularExpression between(QStringLiteral(R"(\s*;\s*|,(?=[^\s\d]))"));
    return QString(artists)
        .replace(QStringLiteral("\\,"), QStringLiteral(", "))
        .replace(between, QStringLiteral(", "))
        .simplified();
}

class TableReader {
public:
    explicit TableReader(const Table& table) : m_columns(table.columns) {
        const QStringList& header = table.records.at(table.header).cells;
        for (qsizetype at = 0; at < table.records.size(); ++at) {
            const TableRecord& record = table.records.at(at);
            const QString line = record.cells.join(QStringLiteral(" | "));
            // Tables that were put together have their columns named again.
            if (!hasWords(line) || record.cells == header || line.startsWith(u"sep="))
                continue;
            if (at < table.header)
                refuse(record, QStringLiteral("above the table"));
            else
                read(record);
        }
    }

    const SongList& list() const { return m_list; }

private:
    void read(const TableRecord& record) {
        constexpr qsizetype longestName = 200;
        NamedSong song{spokenArtists(cellAt(record, m_columns.artist)),
                       cellAt(record, m_columns.title)};
        if (m_columns.artist < 0) {
            const ReadLine titled = readSongLine(song.title);
            if (!titled.song)
                return refuse(record, titled.reason);
            song = *titled.song;
        }
        if (!hasWords(song.artist + song.title) || song.title.isEmpty())
            return refuse(record, QStringLiteral("no title"));
        if (song.artist.isEmpty())
            return refuse(record, QStringLiteral("no artist"));
        if (song.artist.size() > longestName || song.title.size() > longestName)
            return refuse(record, QStringLiteral("too long for a song"));
        readLength(record, song);
        m_list.songs.append({record.line, song});
    }

    void readLength(const TableRecord& record, NamedSong& song) {
        const QString cell = cellAt(record, m_columns.length);
        if (cell.isEmpty())
            return;
        song.seconds = secondsOfCell(cell, m_columns.inMilliseconds);
        if (!song.seconds)
            m_list.remarks.append(
                noteOf(record.line, song.artist + QStringLiteral(" - ") + song.title,
                       QStringLiteral("\"%1\" is no song's length and is left out").arg(cell)));
    }

    void refuse(const TableRecord& record, const QString& reason) {
        QStringList cells = record.cells;
        cells.removeAll(QString());
        m_list.unread.append(noteOf(record.line, cells.join(QStringLiteral(" | ")), reason));
    }

    const SongColumns m_columns;
    SongList m_list;
};

// Lines

/// The number that begins a line without anything behind it, as in "1 Artist - Title".
std::optional<int> bareNumber(const QString& line) {
    static const QRegularExpression form(QStringLiteral(R"(^\s*(\d{1,4})\s+(?=\S))"));
    const QRegularExpressionMatch match = form.match(line);
    return match.hasMatch() ? std::optional(match.captured(1).toInt()) : std::nullopt;
}

/// Whether the lines are counted so. "50 Cent" and "2 Unlimited" do not follow each other.
bool areCounted(const QStringList& lines) {
    constexpr int fewest = 3;
    int next = 0;
    int counted = 0;
    for (const QString& line : lines) {
        const auto number = bareNumber(line);
        if (!number)
            continue;
        if (counted > 0 ? *number != next : *number > 1)
            return false;
        next = *number + 1;
        ++counted;
    }
    return counted >= fewest;
}

QString withoutBareNumber(const QString& line) {
    static const QRegularExpression form(QStringLiteral(R"(^\s*\d{1,4}\s+(?=\S))"));
    return QString(line).remove(form);
}

/// What a line that names both parts says of those below it.
std::optional<NameOrder> toldOrder(const QString& line) {
    const auto parts = dashedParts(cleanLine(line));
    if (!parts)
        return std::nullopt;
    const ColumnKind first = columnKind(parts->first);
    const ColumnKind second = columnKind(parts->second);
    if (first == ColumnKind::artist && second == ColumnKind::title)
        return NameOrder::artistFirst;
    if (first == ColumnKind::title && second == ColumnKind::artist)
        return NameOrder::titleFirst;
    return std::nullopt;
}

SongList readLines(const QString& text) {
    SongList list;
    const QStringList lines = trimmedLines(text);
    const bool counted = areCounted(lines);
    NameOrder order = NameOrder::artistFirst;
    for (qsizetype at = 0; at < lines.size(); ++at) {
        const QString line = counted ? withoutBareNumber(lines.at(at)) : lines.at(at);
        const int number = static_cast<int>(at) + 1;
        if (!hasWords(line))
            continue;
        if (const auto told = toldOrder(line)) {
            order = *told;
            continue;
        }
        const ReadLine read = readSongLine(line, order);
        if (read.song)
            list.songs.append({number, *read.song});
        else
            list.unread.append(noteOf(number, line, read.reason));
        if (!read.remark.isEmpty())
            list.remarks.append(noteOf(number, line, read.remark));
    }
    return list;
}

bool isTooLong(const QString& text) {
    qsizetype lines = 0;
    bool isBlank = true;
    for (const QChar c : text) {
        if (c == u'\n' || c == u'\r')
            isBlank = true;
        else if (isBlank && !c.isSpace()) {
            isBlank = false;
            ++lines;
        }
    }
    return lines > mostListLines;
}

}  // namespace

SongList readSongList(const QString& text) {
    if (isTooLong(text)) {
        SongList list;
        list.isTooLong = true;
        return list;
    }
    const QString plain = withPlainBreaks(text);
    if (const auto table = tableIn(plain))
        return TableReader(*table).list();
    return readLines(plain);
}

}  // namespace reelcrate
