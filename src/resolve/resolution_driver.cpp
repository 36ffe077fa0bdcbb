#include "resolve/resolution_driver.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "base/text.h"
#include "queue/links.h"
#include "queue/queue_store.h"
#include "resolve/media_probe.h"
#include "resolve/spotify_expansion.h"

#include <algorithm>
#include <utility>

namespace reelcrate {

namespace {

using Clock = std::chrono::steady_clock;

/// A failure that says one of these stays the same however often it is tried.
const QStringList permanentFailureMarkers{
    QStringLiteral("setup"),         QStringLiteral("install"),    QStringLiteral("signed-in"),
    QStringLiteral("sign-in"),       QStringLiteral("private"),    QStringLiteral("library"),
    QStringLiteral("rate-limiting"), QStringLiteral("rate limit"), QStringLiteral("429"),
};

/// A row that says one of these failed when its link was read, not when it was downloaded.
const QStringList readFailureMarkers{
    QStringLiteral("could not load"),
    QStringLiteral("could not read spotify"),
    QStringLiteral("songs can be listed"),
    QStringLiteral("playlist expansion"),
    QStringLiteral("playlist needs"),
    QStringLiteral("signed-in"),
    QStringLiteral("sign-in"),
};

bool containsAny(const QString& text, const QStringList& markers) {
    const QString lowered = text.toLower();
    return std::any_of(markers.begin(), markers.end(),
                       [&](const QString& marker) { return lowered.contains(marker); });
}

QueueResolution failed(const QString& text) {
    return {{}, text};
}

QueueResolution oneEntry(const MediaInfo& info, const DownloadItem& item) {
    const QString& url = info.resolvedURL.isEmpty() ? item.url : info.resolvedURL;
    return {{PlaylistEntry{url, item.source, info.title, info.duration, info.thumbnailURL}},
            std::nullopt};
}

DownloadItem rowFor(const PlaylistEntry& entry, const std::optional<QString>& downloaded) {
    DownloadItem row;
    row.url = entry.url;
    row.source = entry.source;
    row.title = entry.title;
    row.duration = entry.duration;
    row.thumbnailURL = entry.thumbnailURL;
    if (downloaded) {
        row.status = QueueStatus::complete;
        row.detail = QStringLiteral("Already Downloaded");
        row.outputPath = *downloaded;
        row.progress = 1.0;
    } else {
        row.detail = QStringLiteral("Ready to download");
    }
    return row;
}

QString titleOfUnreadRow(const DownloadItem& item) {
    if (item.source == SourceType::youtube && isYouTubePlaylistLink(item.url))
        return QStringLiteral("Playlist link");
    if (item.source == SourceType::spotify && playlistLike(item.url, item.source))
        return QStringLiteral("Spotify library playlist");
    return item.url;
}

QString summaryOfNewRows(qsizetype total, qsizetype found) {
    if (found == total)
        return QStringLiteral("Found %1 already downloaded").arg(found);
    if (found > 0)
        return QStringLiteral("Added %1; %2 already downloaded").arg(total - found).arg(found);
    return QStringLiteral("Added %1 song").arg(total) + pluralSuffix(total);
}

}  // namespace

ResolutionDriver::ResolutionDriver(QueueStore& queue, const MediaProbe& probe,
                                   const SpotifyExpansion& spotify,
                                   std::function<FindDownloaded()> lookAtDownloads,
                                   BackgroundTasks& background, MainQueue& mainQueue,
                                   ResolutionTiming timing)
    : m_queue(queue),
      m_probe(probe),
      m_spotify(spotify),
      m_lookAtDownloads(std::move(lookAtDownloads)),
      m_background(background),
      m_mainQueue(mainQueue),
      m_timing(timing) {}

void ResolutionDriver::resolveInfo(const QList<DownloadItem>& items) {
    if (items.isEmpty())
        return;
    m_background.run([this, items](const std::stop_token& stop) { resolveBatch(items, stop); });
}

void ResolutionDriver::resolveBatch(const QList<DownloadItem>& items, const std::stop_token& stop) {
    for (const DownloadItem& item : items) {
        const auto start = Clock::now();
        m_mainQueue.post([this, item] { showReading(item); });
        const QueueResolution resolution = resolveQueueEntryWithRetries(item, stop);
        if (!pauseFor(stop, m_timing.minimumPerLink - (Clock::now() - start)))
            return;
        m_mainQueue.post([this, item, resolution] {
            if (const qsizetype index = m_queue.indexOf(item.id); index >= 0)
                applyResolution(resolution, item, index);
        });
    }
}

void ResolutionDriver::showReading(const DownloadItem& item) {
    m_queue.update(item.id, [&](DownloadItem& row) {
        row.detail = playlistLike(item.url, item.source)
                         ? QStringLiteral("Reading playlist songs...")
                         : QStringLiteral("Loading info for ") + videoID(item.url);
        row.isResolvingInfo = true;
    });
}

QueueResolution ResolutionDriver::resolveQueueEntryWithRetries(const DownloadItem& item,
                                                               const std::stop_token& stop) const {
    for (int attempt = 1;; ++attempt) {
        QueueResolution resolution = resolveOnce(item);
        if (!resolution.entries.isEmpty() || !resolution.failure)
            return resolution;
        if (containsAny(*resolution.failure, permanentFailureMarkers))
            return resolution;
        if (attempt == maxMetadataResolveAttempts || stop.stop_requested())
            return resolution;
        m_mainQueue.post([this, id = item.id, attempt] { showRetry(id, attempt); });
        if (!pauseFor(stop, m_timing.retryPause + m_timing.retryPausePerAttempt * attempt))
            return resolution;
    }
}

QueueResolution ResolutionDriver::resolveOnce(const DownloadItem& item) const {
    if (item.source == SourceType::spotify)
        return m_spotify.resolveSpotifyEntries(item.url);

    const bool fromVideoSite = item.source == SourceType::youtube;
    if (fromVideoSite && isYouTubePlaylistLink(item.url)) {
        QList<PlaylistEntry> entries = m_probe.fetchYouTubePlaylistEntries(item.url);
        if (!entries.isEmpty())
            return {std::move(entries), std::nullopt};
    }
    if (const auto info = m_probe.fetchMediaInfo(item.url))
        return oneEntry(*info, item);
    return failed(fromVideoSite
                      ? QStringLiteral("Could not load the YouTube title. Check that the video or "
                                       "playlist is public.")
                      : QStringLiteral("Could not load link info. Check that the link is public."));
}

void ResolutionDriver::showRetry(const QUuid& id, int failedAttempt) const {
    const bool there = m_queue.update(id, [&](DownloadItem& row) {
        row.isResolvingInfo = true;
        row.status = QueueStatus::waiting;
        row.detail = QStringLiteral("Temporary read issue. Trying again %1 of %2...")
                         .arg(failedAttempt + 1)
                         .arg(maxMetadataResolveAttempts);
    });
    if (there)
        Q_EMIT summaryChanged(QStringLiteral("Trying link again"));
}

/// The entries whose link no other row has. One resolution may hold a link twice; both stay.
QList<PlaylistEntry> ResolutionDriver::newEntries(const QueueResolution& resolution,
                                                  qsizetype index) const {
    const QString& ownUrl = m_queue.rows().at(index).url;
    QList<PlaylistEntry> entries;
    for (const PlaylistEntry& entry : resolution.entries) {
        const qsizetype own = entry.url == ownUrl ? 1 : 0;
        if (m_queue.countWithUrl(entry.url) == own)
            entries.append(entry);
    }
    return entries;
}

void ResolutionDriver::applyResolution(const QueueResolution& resolution, const DownloadItem& item,
                                       qsizetype index) {
    const QList<PlaylistEntry> entries = newEntries(resolution, index);
    if (entries.isEmpty()) {
        keepRow(resolution, item, index);
        return;
    }
    const FindDownloaded findDownloaded = m_lookAtDownloads();
    QList<DownloadItem> rows;
    rows.reserve(entries.size());
    qsizetype found = 0;
    for (const PlaylistEntry& entry : entries) {
        rows.append(rowFor(entry, findDownloaded(entry)));
        found += rows.last().status == QueueStatus::complete ? 1 : 0;
    }
    m_queue.replace(index, rows);
    Q_EMIT summaryChanged(summaryOfNewRows(rows.size(), found));
}

void ResolutionDriver::keepRow(const QueueResolution& resolution, const DownloadItem& item,
                               qsizetype index) {
    const bool isFailure = resolution.failure.has_value();
    m_queue.update(m_queue.rows().at(index).id, [&](DownloadItem& row) {
        row.isResolvingInfo = false;
        row.status = isFailure ? QueueStatus::failed : QueueStatus::waiting;
        row.title = titleOfUnreadRow(item);
        row.detail =
            resolution.failure.value_or(QStringLiteral("Those songs are already in the queue."));
    });
    Q_EMIT summaryChanged(isFailure ? QStringLiteral("Playlist needs attention")
                                    : QStringLiteral("No new songs added"));
}

bool ResolutionDriver::shouldRetryInfoForFailedItem(const DownloadItem& item) {
    return item.isResolvingInfo || containsAny(item.detail, readFailureMarkers);
}

void ResolutionDriver::retryResolveInfo(const DownloadItem& item) {
    const bool there = m_queue.update(item.id, [](DownloadItem& row) {
        row.status = QueueStatus::waiting;
        row.isResolvingInfo = true;
        row.detail = QStringLiteral("Reading link again...");
        row.progress = 0.0;
    });
    if (!there)
        return;
    Q_EMIT summaryChanged(QStringLiteral("Reading link again"));
    resolveInfo({*m_queue.find(item.id)});
}

}  // namespace reelcrate
