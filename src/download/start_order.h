#pragma once

#include <QHash>
#include <QQueue>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>
#include <set>

/// The order in which a run's rows start: that of the queue, except that a row whose link is being
/// downloaded is held until that has ended, and rows with other links overtake it. Each row is
/// looked at once, and once more when it is held and its link becomes free. Any thread, one at a
/// time.
namespace reelcrate {

class StartOrder {
public:
    /// The rows' links, in the order of the queue.
    explicit StartOrder(QStringList links);

    /// The position of the next row to start, which is then done with; absent when there is none
    /// or all that are left are held.
    std::optional<qsizetype> takeNext(const QSet<QString>& runningLinks);

    /// The link is no longer being downloaded: the first row that is held for it may start.
    void linkFreed(const QString& link);

private:
    std::optional<qsizetype> takeFreed(const QSet<QString>& runningLinks);

    const QStringList m_links;
    qsizetype m_lookedAt = 0;
    QHash<QString, QQueue<qsizetype>> m_held;  ///< the positions of rows by their link
    std::set<qsizetype> m_freed;  ///< those that are first of their link, and may start
};

}  // namespace reelcrate
