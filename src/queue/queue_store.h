#pragma once

#include "records/download_item.h"

#include <QFlags>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>

#include <functional>
#include <utility>

/// The rows of the queue, in display order, and their only mutator. Rows are found by id in
/// constant time. Main thread. A row that is not there is absent or left alone, never an error.
namespace reelcrate {

class QueueStore : public QObject {
    Q_OBJECT

public:
    enum Field {
        Url = 1 << 0,
        Source = 1 << 1,
        Status = 1 << 2,
        Detail = 1 << 3,
        OutputPath = 1 << 4,
        Title = 1 << 5,
        Duration = 1 << 6,
        ThumbnailURL = 1 << 7,
        IsResolvingInfo = 1 << 8,
        Progress = 1 << 9,
        HasRealProgress = 1 << 10,
        PlaylistItem = 1 << 11,
        Reading = 1 << 12,
        Cause = 1 << 13,
        Note = 1 << 14,
        Lengths = 1 << 15,
    };
    Q_DECLARE_FLAGS(Fields, Field)

    using Change = std::function<void(DownloadItem&)>;

    const QList<DownloadItem>& rows() const { return m_rows; }
    qsizetype size() const { return m_rows.size(); }

    /// Absent (null, -1) when no row has the id. The pointer holds until the next change.
    const DownloadItem* find(const QUuid& id) const;
    qsizetype indexOf(const QUuid& id) const;

    /// Those of the ids that rows have.
    QSet<QUuid> idsAmong(const QSet<QUuid>& ids) const;

    /// How many rows are in this state, without a walk.
    qsizetype countWithStatus(QueueStatus status) const { return m_statusCounts.value(status); }

    /// How many rows have exactly this link, without a walk.
    qsizetype countWithUrl(const QString& url) const { return m_urlCounts.value(url); }

    /// How many rows have been read and are exactly this song, without a walk.
    qsizetype countOfSong(const QString& url, int playlistItem) const {
        return m_songCounts.value({url, playlistItem});
    }

    void append(const QList<DownloadItem>& rows);

    /// Puts the rows in the place of the row at `index`.
    void replace(qsizetype index, const QList<DownloadItem>& rows);

    /// Removes the rows with these ids in one change.
    void remove(const QSet<QUuid>& ids);

    void clear();

    /// Changes fields of one row; its id stays, and a cause goes with the failure that it was of.
    /// False when there is no such row.
    bool update(const QUuid& id, const Change& change);

Q_SIGNALS:
    void rowsInserted(qsizetype first, qsizetype count);
    /// The row at `index` made way for `count` rows, the first of them at its place.
    void rowReplaced(qsizetype index, qsizetype count);
    void rowsRemoved(const QList<qsizetype>& formerIndexes);
    void rowChanged(qsizetype index, reelcrate::QueueStore::Fields fields);

private:
    void count(const DownloadItem& row, int difference);
    void indexFrom(qsizetype first);

    QList<DownloadItem> m_rows;
    QHash<QUuid, qsizetype> m_indexes;
    QHash<QueueStatus, qsizetype> m_statusCounts;
    QHash<QString, qsizetype> m_urlCounts;
    QHash<std::pair<QString, int>, qsizetype> m_songCounts;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(QueueStore::Fields)

}  // namespace reelcrate
