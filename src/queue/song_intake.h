#pragma once

#include "queue/song_list.h"
#include "records/download_item.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace reelcrate {

class QueueStore;

/// What stands for the link of a song that was named without one, such as
/// "song:abba/dancing-queen". It is the same however a name is written: case, accents of Latin and
/// Greek letters, and punctuation make no other song. Pure.
QString songReference(const NamedSong& song);

struct SongIntake {
    QList<DownloadItem> rows;  ///< ready to download
    QString summary;           ///< one line
    QString remark;            ///< its end, on what was not added
    QString account;           ///< for the log: the same, line by line
    QStringList unread;        ///< of these lines those that are no songs, with the list's name
    bool isRefused = false;    ///< the list is too long to be one
};

/// The rows of those songs of a list that neither the queue nor the list had before. `name` is the
/// list's, `remark` what else is to be said of it. Main thread.
SongIntake newRowsForSongs(const SongList& list, const QString& name, const QString& remark,
                           const QueueStore& queue);

}  // namespace reelcrate
