#pragma once

#include "records/download_item.h"

#include <QList>
#include <QString>
#include <QStringList>

/// The account of an event: which of the songs that were asked for are there, what is missing, what
/// a person should listen to once more, and how long it all plays. Pure functions; any thread; none
/// fails.
namespace reelcrate {

struct EventAccount {
    struct Remark {
        QString title;
        QString text;

        friend bool operator==(const Remark&, const Remark&) = default;
    };

    QString eventName;
    qsizetype asked = 0;
    qsizetype complete = 0;
    qsizetype needAttention = 0;  ///< the rest has not been downloaded
    double playingSeconds = 0;    ///< of what is complete, as measured or else as listed
    QList<Remark> missing;        ///< what is not complete, and why, in the queue's order
    QList<Remark> notes;          ///< what is complete and remarkable
    QStringList cutListings;      ///< links of which songs are missing, and how many
    QStringList unreadLines;      ///< of song lists: what was not read as a song, and why
    QList<Remark> doubles;        ///< complete songs, and which other one is the same recording
};

/// Rows that stand for songs which have rows of their own do not count.
EventAccount accountOf(const QString& eventName, const QList<DownloadItem>& rows,
                       const QStringList& cutListings, const QStringList& unreadLines);

/// Such as "24 songs asked for: 22 complete, 1 needs attention, 1 not downloaded. Playing time
/// 1:23:45.".
QString accountHeadline(const EventAccount& account);

/// The headline, and a line for each song that somebody has to look after.
QString accountText(const EventAccount& account);

}  // namespace reelcrate
