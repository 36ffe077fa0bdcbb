#include "download/start_order.h"

#include <utility>

namespace reelcrate {

StartOrder::StartOrder(QStringList links) : m_links(std::move(links)) {}

std::optional<qsizetype> StartOrder::takeNext(const QSet<QString>& runningLinks) {
    if (const auto position = takeFreed(runningLinks))
        return position;
    while (m_lookedAt < m_links.size()) {
        const qsizetype position = m_lookedAt++;
        const QString& link = m_links.at(position);
        if (!runningLinks.contains(link))
            return position;
        m_held[link].enqueue(position);
    }
    return std::nullopt;
}

std::optional<qsizetype> StartOrder::takeFreed(const QSet<QString>& runningLinks) {
    while (!m_freed.empty()) {
        const qsizetype position = *m_freed.begin();
        m_freed.erase(m_freed.begin());
        const QString& link = m_links.at(position);
        // Another run may have been quicker; when it is done with the link, it says so again.
        if (runningLinks.contains(link))
            continue;
        QQueue<qsizetype>& held = m_held[link];
        held.dequeue();
        if (held.isEmpty())
            m_held.remove(link);
        return position;
    }
    return std::nullopt;
}

void StartOrder::linkFreed(const QString& link) {
    if (const auto held = m_held.constFind(link); held != m_held.constEnd())
        m_freed.insert(held->head());
}

}  // namespace reelcrate
