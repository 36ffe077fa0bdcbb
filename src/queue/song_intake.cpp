#include "queue/song_intake.h"

#include "base/duration_text.h"
#include "base/text.h"
#include "queue/queue_store.h"
#include "records/row_texts.h"

#include <QHash>
#include <QStringList>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace reelcrate {

namespace {

/// So many lines of each kind the log names singly.
constexpr qsizetype mostNamed = 200;

/// In other scripts the marks make other letters.
bool hasAccents(char32_t scalar) {
    const auto script = QChar::script(scalar);
    return script == QChar::Script_Latin || script == QChar::Script_Greek;
}

/// Letters, digits and signs; whatever is between them is one hyphen.
QString folded(const QString& name) {
    QString key;
    char32_t base = 0;
    for (const char32_t scalar : name.normalized(QString::NormalizationForm_KD).toUcs4()) {
        const bool isMark = QChar::isMark(scalar);
        if (!isMark)
            base = scalar;
        if (isMark && hasAccents(base))
            continue;
        if (isMark || QChar::isLetterOrNumber(scalar) || QChar::isSymbol(scalar))
            key += QChar::fromUcs4(scalar);
        else if (!key.isEmpty() && !key.endsWith(u'-') && scalar != U'\'' && scalar != U'\u2019')
            key += u'-';
    }
    if (key.endsWith(u'-'))
        key.chop(1);
    key = key.toCaseFolded().normalized(QString::NormalizationForm_C);
    // "!!!" is a name, too.
    return key.isEmpty() ? QString::fromLatin1(QUrl::toPercentEncoding(name)) : key;
}

QString shown(const NamedSong& song) {
    return song.artist + QStringLiteral(" - ") + song.title;
}

DownloadItem rowFor(const NamedSong& song) {
    DownloadItem row;
    row.url = songReference(song);
    row.source = SourceType::song;
    row.detail = row_text::readyToDownload;
    row.title = shown(song);
    row.duration = formatDuration(song.seconds.value_or(0));
    row.reading = LinkReading::song;
    return row;
}

QString counted(qsizetype count, const char* noun) {
    return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(noun)) + pluralSuffix(count);
}

QStringList lines(const QString& start, const QList<LineNote>& notes) {
    QStringList lines;
    for (const LineNote& note : notes.first(std::min(notes.size(), mostNamed)))
        lines.append(QStringLiteral("%1line %2: %3 (%4)")
                         .arg(start)
                         .arg(note.line)
                         .arg(note.text, note.note));
    if (notes.size() > mostNamed)
        lines.append(QStringLiteral("%1%2 more lines").arg(start).arg(notes.size() - mostNamed));
    return lines;
}

struct Sorted {
    QList<DownloadItem> rows;
    QList<LineNote> known;
};

Sorted sorted(const SongList& list, const QueueStore& queue) {
    Sorted sorted;
    QHash<QString, int> firstLines;
    for (const auto& [line, song] : list.songs) {
        DownloadItem row = rowFor(song);
        const int first = firstLines.value(row.url);
        if (first > 0)
            sorted.known.append({line, row.title, QStringLiteral("as in line %1").arg(first)});
        else if (queue.countWithUrl(row.url) > 0)
            sorted.known.append({line, row.title, QStringLiteral("in the queue already")});
        else
            sorted.rows.append(row);
        if (first == 0)
            firstLines.insert(row.url, line);
    }
    return sorted;
}

QString addedText(const Sorted& sorted, const QString& name) {
    if (!sorted.rows.isEmpty())
        return QStringLiteral("Added ") + counted(sorted.rows.size(), "song");
    return sorted.known.isEmpty() ? name + QStringLiteral(" names no songs")
                                  : QStringLiteral("No new songs added");
}

/// What was not added, as the end of a sentence.
QString remarkOf(const SongList& list, const Sorted& sorted) {
    QString remark;
    if (!sorted.known.isEmpty())
        remark += QStringLiteral("; %1 named before").arg(sorted.known.size());
    if (!list.unread.isEmpty())
        remark +=
            QStringLiteral("; %1 not read as %2")
                .arg(counted(list.unread.size(), "line"),
                     list.unread.size() == 1 ? QStringLiteral("a song") : QStringLiteral("songs"));
    return remark;
}

}  // namespace

QString songReference(const NamedSong& song) {
    return QStringLiteral("song:") + folded(song.artist) + u'/' + folded(song.title);
}

SongIntake newRowsForSongs(const SongList& list, const QString& name, const QString& remark,
                           const QueueStore& queue) {
    SongIntake intake;
    if (list.isTooLong) {
        intake.isRefused = true;
        intake.summary =
            name + QStringLiteral(" has more than %1 lines, which no list of songs has.")
                       .arg(mostListLines);
        intake.account = intake.summary;
        return intake;
    }
    Sorted songs = sorted(list, queue);
    const QString left = remarkOf(list, songs);
    intake.remark = left + (list.unread.isEmpty() ? QString() : QStringLiteral(" (see the log)"));
    intake.summary = addedText(songs, name) + intake.remark;
    const bool saysName = songs.rows.isEmpty() && songs.known.isEmpty();
    QStringList account{(saysName ? QString() : name + QStringLiteral(": ")) +
                        addedText(songs, name) + left};
    if (!remark.isEmpty())
        account.append(remark);
    account += lines(QStringLiteral("No song, "), list.unread);
    intake.unread = lines(name + QStringLiteral(", "), list.unread);
    account += lines(QStringLiteral("Once only, "), songs.known);
    account += lines(QStringLiteral("Song, "), list.remarks);
    intake.account = account.join(u'\n');
    intake.rows = std::move(songs.rows);
    return intake;
}

}  // namespace reelcrate
