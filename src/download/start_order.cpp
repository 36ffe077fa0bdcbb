#include "download/start_order.h"

#include <utility>

namespace reelcrate {

StartOrder::StartOrder(QStringList songs) : m_songs(std::move(songs)) {}

std::optional<qsizetype> StartOrder::takeNext(const QSet<QString>& runningSongs) {
    if (const auto position = takeFreed(runningSongs))
        return position;
    while (m_lookedAt < m_songs.size()) {
        const qsizetype position = m_lookedAt++;
        if (m_dropped.contains(position))
            continue;
        const QString& song = m_songs.at(position);
        if (!runningSongs.contains(song))
            return position;
        m_held[song].enqueue(position);
    }
    return std::nullopt;
}

std::optional<qsizetype> StartOrder::takeFreed(const QSet<QString>& runningSongs) {
    while (!m_freed.empty()) {
        const qsizetype position = *m_freed.begin();
        m_freed.erase(m_freed.begin());
        const QString& song = m_songs.at(position);
        if (!runningSongs.contains(song))
            return position;
        // Another run was quicker; when it is done with the song, it says so again.
        m_held[song].prepend(position);
    }
    return std::nullopt;
}

void StartOrder::songFreed(const QString& song) {
    const auto held = m_held.find(song);
    if (held == m_held.end())
        return;
    while (!held->isEmpty() && m_dropped.contains(held->head()))
        held->dequeue();
    if (!held->isEmpty())
        m_freed.insert(held->dequeue());
    if (held->isEmpty())
        m_held.erase(held);
}

void StartOrder::releasePutBack() {
    m_freed.insert(m_elsewhere.cbegin(), m_elsewhere.cend());
    m_elsewhere.clear();
}

void StartOrder::drop(qsizetype position) {
    m_dropped.insert(position);
    m_elsewhere.removeAll(position);
    if (m_freed.erase(position) > 0)
        songFreed(m_songs.at(position));
}

}  // namespace reelcrate
