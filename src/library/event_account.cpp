#include "library/event_account.h"

#include "base/duration_text.h"
#include "base/text.h"
#include "library/song_key.h"

#include <QHash>
#include <QRegularExpression>

#include <cmath>

namespace reelcrate {

namespace {

constexpr double sameLengthSeconds = 1;

QString titleOf(const DownloadItem& row) {
    const QString title = row.title.simplified();
    return title.isEmpty() ? row.url : title;
}

double playingSeconds(const DownloadItem& row) {
    return row.playingSeconds > 0 ? row.playingSeconds
                                  : secondsOfDuration(row.duration).value_or(0);
}

/// What a row was searched for tells nothing of what was found; its file's name does, at its end.
QString recordingKey(const DownloadItem& row) {
    static const QRegularExpression identifier(QStringLiteral(R"(\[([^\[\]]+)\]\.[^.\]]+$)"));
    if (isSearchedFor(row.source)) {
        if (const auto match = identifier.match(row.outputPath); match.hasMatch())
            return QStringLiteral("video-") + match.captured(1);
    }
    return songKey(row.url, row.playlistItem);
}

/// Which of the rows that came before is the same recording as one.
class Recordings {
public:
    /// Null when it is the first; then it is known from now on.
    const DownloadItem* sameAs(const DownloadItem& row) {
        const QString key = recordingKey(row);
        if (const DownloadItem* same = m_byKey.value(key))
            return same;
        m_byKey.insert(key, &row);
        QList<const DownloadItem*>& namesakes = m_byTitle[titleOf(row).toCaseFolded()];
        for (const DownloadItem* other : std::as_const(namesakes)) {
            if (std::abs(playingSeconds(*other) - playingSeconds(row)) <= sameLengthSeconds)
                return other;
        }
        namesakes.append(&row);
        return nullptr;
    }

private:
    QHash<QString, const DownloadItem*> m_byKey;
    QHash<QString, QList<const DownloadItem*>> m_byTitle;
};

QString section(const QString& heading, const QList<EventAccount::Remark>& remarks) {
    if (remarks.isEmpty())
        return {};
    QString text = heading + QStringLiteral(":\n");
    for (const auto& [title, remark] : remarks)
        text += QStringLiteral("  ") + title + QStringLiteral(" - ") + remark + u'\n';
    return text;
}

}  // namespace

EventAccount accountOf(const QString& eventName, const QList<DownloadItem>& rows,
                       const QStringList& cutListings, const QStringList& unreadLines) {
    EventAccount account;
    account.eventName = eventName;
    account.cutListings = cutListings;
    account.unreadLines = unreadLines;
    Recordings recordings;
    for (const DownloadItem& row : rows) {
        if (row.reading == LinkReading::repeated)
            continue;
        ++account.asked;
        if (row.status != QueueStatus::complete) {
            account.needAttention += row.status == QueueStatus::failed ? 1 : 0;
            account.missing.append({titleOf(row), row.detail.simplified()});
            continue;
        }
        ++account.complete;
        account.playingSeconds += playingSeconds(row);
        if (!row.note.isEmpty())
            account.notes.append({titleOf(row), row.note});
        if (const DownloadItem* same = recordings.sameAs(row))
            account.doubles.append(
                {titleOf(row), QStringLiteral("the same recording as ") + titleOf(*same)});
    }
    return account;
}

QString accountHeadline(const EventAccount& account) {
    QStringList parts{QStringLiteral("%1 complete").arg(account.complete)};
    if (account.needAttention > 0)
        parts.append(account.needAttention == 1
                         ? QStringLiteral("1 needs attention")
                         : QStringLiteral("%1 need attention").arg(account.needAttention));
    const qsizetype left = account.asked - account.complete - account.needAttention;
    if (left > 0)
        parts.append(QStringLiteral("%1 not downloaded").arg(left));
    QString text = QStringLiteral("%1 song").arg(account.asked) + pluralSuffix(account.asked) +
                   QStringLiteral(" asked for: ") + parts.join(QStringLiteral(", ")) + u'.';
    if (const qsizetype unread = account.unreadLines.size(); unread > 0)
        text += unread == 1 ? QStringLiteral(" 1 line was not read as a song.")
                            : QStringLiteral(" %1 lines were not read as songs.").arg(unread);
    if (const QString time = formatDuration(account.playingSeconds); !time.isEmpty())
        text += QStringLiteral(" Playing time %1.").arg(time);
    return text;
}

QString accountText(const EventAccount& account) {
    QString text = account.eventName + QStringLiteral(": ") + accountHeadline(account) + u'\n' +
                   section(QStringLiteral("Missing"), account.missing) +
                   section(QStringLiteral("To be listened to"), account.notes) +
                   section(QStringLiteral("Twice"), account.doubles);
    for (const auto& [heading, lines] :
         {std::pair(QStringLiteral("Listed in part:"), account.cutListings),
          std::pair(QStringLiteral("Not read as songs:"), account.unreadLines)}) {
        if (!lines.isEmpty())
            text += heading + QStringLiteral("\n  ") + lines.join(QStringLiteral("\n  ")) + u'\n';
    }
    return text;
}

}  // namespace reelcrate
