#include "queue/queue_store.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace reelcrate {

namespace {

QueueStore::Fields changedFields(const DownloadItem& before, const DownloadItem& after) {
    QueueStore::Fields fields;
    const auto compare = [&](QueueStore::Field field, auto member) {
        if (before.*member != after.*member)
            fields |= field;
    };
    compare(QueueStore::Url, &DownloadItem::url);
    compare(QueueStore::Source, &DownloadItem::source);
    compare(QueueStore::Status, &DownloadItem::status);
    compare(QueueStore::Detail, &DownloadItem::detail);
    compare(QueueStore::OutputPath, &DownloadItem::outputPath);
    compare(QueueStore::Title, &DownloadItem::title);
    compare(QueueStore::Duration, &DownloadItem::duration);
    compare(QueueStore::ThumbnailURL, &DownloadItem::thumbnailURL);
    compare(QueueStore::IsResolvingInfo, &DownloadItem::isResolvingInfo);
    compare(QueueStore::Progress, &DownloadItem::progress);
    compare(QueueStore::HasRealProgress, &DownloadItem::hasRealProgress);
    compare(QueueStore::PlaylistItem, &DownloadItem::playlistItem);
    compare(QueueStore::Reading, &DownloadItem::reading);
    compare(QueueStore::Cause, &DownloadItem::cause);
    compare(QueueStore::Note, &DownloadItem::note);
    compare(QueueStore::Lengths, &DownloadItem::downloadedSeconds);
    compare(QueueStore::Lengths, &DownloadItem::playingSeconds);
    return fields;
}

/// Adds to a count; what there is none of is not in the table.
template <typename Key>
void change(QHash<Key, qsizetype>& counts, const Key& key, qsizetype difference) {
    qsizetype& count = counts[key];
    count += difference;
    if (count == 0)
        counts.remove(key);
}

}  // namespace

const DownloadItem* QueueStore::find(const QUuid& id) const {
    const qsizetype index = indexOf(id);
    return index < 0 ? nullptr : &m_rows.at(index);
}

qsizetype QueueStore::indexOf(const QUuid& id) const {
    return m_indexes.value(id, -1);
}

QSet<QUuid> QueueStore::idsAmong(const QSet<QUuid>& ids) const {
    QSet<QUuid> among;
    for (const QUuid& id : ids) {
        if (m_indexes.contains(id))
            among.insert(id);
    }
    return among;
}

void QueueStore::append(const QList<DownloadItem>& rows) {
    if (rows.isEmpty())
        return;
    const qsizetype first = m_rows.size();
    m_rows.append(rows);
    m_indexes.reserve(m_rows.size());
    m_urlCounts.reserve(m_rows.size());
    for (const DownloadItem& row : rows)
        count(row, 1);
    indexFrom(first);
    Q_EMIT rowsInserted(first, rows.size());
}

void QueueStore::replace(qsizetype index, const QList<DownloadItem>& rows) {
    const DownloadItem former = m_rows.at(index);
    count(former, -1);
    m_indexes.remove(former.id);
    for (const DownloadItem& row : rows)
        count(row, 1);

    if (rows.size() == 1) {
        // The common case, a single song: no other row moves.
        m_rows[index] = rows.first();
        m_indexes.insert(rows.first().id, index);
    } else {
        QList<DownloadItem> all;
        all.reserve(m_rows.size() - 1 + rows.size());
        std::copy_n(m_rows.cbegin(), index, std::back_inserter(all));
        all.append(rows);
        std::copy(m_rows.cbegin() + index + 1, m_rows.cend(), std::back_inserter(all));
        m_rows = std::move(all);
        indexFrom(index);
    }
    Q_EMIT rowReplaced(index, rows.size());
}

void QueueStore::remove(const QSet<QUuid>& ids) {
    QList<qsizetype> formerIndexes;
    QList<DownloadItem> kept;
    kept.reserve(m_rows.size());
    for (qsizetype index = 0; index < m_rows.size(); ++index) {
        const DownloadItem& row = m_rows.at(index);
        if (!ids.contains(row.id)) {
            kept.append(row);
            continue;
        }
        formerIndexes.append(index);
        m_indexes.remove(row.id);
        count(row, -1);
    }
    if (formerIndexes.isEmpty())
        return;
    m_rows = std::move(kept);
    indexFrom(formerIndexes.first());
    Q_EMIT rowsRemoved(formerIndexes);
}

void QueueStore::clear() {
    QSet<QUuid> ids;
    for (const DownloadItem& row : std::as_const(m_rows))
        ids.insert(row.id);
    remove(ids);
}

bool QueueStore::update(const QUuid& id, const Change& change) {
    const qsizetype index = indexOf(id);
    if (index < 0)
        return false;
    DownloadItem row = m_rows.at(index);
    change(row);
    if (row.status != QueueStatus::failed)
        row.cause.reset();
    if (row.status != QueueStatus::complete) {
        row.note.clear();
        row.downloadedSeconds = 0;
        row.playingSeconds = 0;
    }
    const Fields fields = changedFields(m_rows.at(index), row);
    if (!fields)
        return true;
    if (fields & (Status | Url | PlaylistItem | Reading)) {
        count(m_rows.at(index), -1);
        count(row, 1);
    }
    m_rows[index] = std::move(row);
    Q_EMIT rowChanged(index, fields);
    return true;
}

void QueueStore::count(const DownloadItem& row, int difference) {
    m_statusCounts[row.status] += difference;
    change(m_urlCounts, row.url, difference);
    if (row.reading == LinkReading::song)
        change(m_songCounts, std::pair(row.url, row.playlistItem), difference);
}

void QueueStore::indexFrom(qsizetype first) {
    for (qsizetype index = first; index < m_rows.size(); ++index)
        m_indexes.insert(m_rows.at(index).id, index);
}

}  // namespace reelcrate
