#pragma once

#include <QHash>
#include <QList>
#include <QQueue>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>
#include <set>

/// The order in which a run's rows start: that of the queue, except that a row whose song is being
/// downloaded is held until that has ended, and rows of other songs overtake it. Each row is looked
/// at once, and once more each time it is held and may start. Any thread, one at a time.
namespace reelcrate {

class StartOrder {
public:
    /// The keys of the rows' songs, in the order of the queue.
    explicit StartOrder(QStringList songs);

    /// The position of the next row to start, which is then done with; absent when there is none
    /// or all that are left are held.
    std::optional<qsizetype> takeNext(const QSet<QString>& runningSongs);

    /// The song is no longer being downloaded: the first row that is held for it may start.
    void songFreed(const QString& song);

    /// The row, which had been taken, could not start: another program is at its song.
    void putBack(qsizetype position) { m_elsewhere.append(position); }

    /// Rows that were put back may start again.
    void releasePutBack();

    /// The row, which is not taken, does not start any more; who is held behind it may in its turn.
    void drop(qsizetype position);

private:
    std::optional<qsizetype> takeFreed(const QSet<QString>& runningSongs);

    const QStringList m_songs;
    qsizetype m_lookedAt = 0;
    QHash<QString, QQueue<qsizetype>> m_held;  ///< the positions of rows by their song
    std::set<qsizetype> m_freed;               ///< of rows that may start before any other
    QList<qsizetype> m_elsewhere;
    QSet<qsizetype> m_dropped;
};

}  // namespace reelcrate
