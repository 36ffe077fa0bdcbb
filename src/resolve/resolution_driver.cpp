#include "resolve/resolution_driver.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "base/text.h"
#include "queue/links.h"
#include "queue/queue_store.h"
#include "records/row_texts.h"
#include "resolve/link_reading.h"
#include "resolve/media_probe.h"
#include "resolve/spotify_expansion.h"
#include "tools/shell_runner.h"

#include <algorithm>
#include <iterator>
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

/// A run has the row: what reading it yields comes too late.
bool isTaken(const DownloadItem& row) {
    return row.status != QueueStatus::waiting && row.status != QueueStatus::failed;
}

void markAsDownloaded(DownloadItem& row, const QString& path) {
    row.status = QueueStatus::complete;
    row.detail = row_text::alreadyDownloaded;
    row.outputPath = path;
    row.progress = 1.0;
}

DownloadItem rowFor(const PlaylistEntry& entry, const std::optional<QString>& downloaded) {
    DownloadItem row;
    row.url = entry.url;
    row.playlistItem = entry.playlistItem;
    row.source = entry.source;
    row.title = entry.title;
    row.duration = entry.duration;
    row.thumbnailURL = entry.thumbnailURL;
    row.reading = entry.isRead ? LinkReading::song : LinkReading::open;
    if (entry.failure) {
        row.status = QueueStatus::failed;
        row.detail = *entry.failure;
    } else if (!entry.isRead) {
        row.isResolvingInfo = true;
        row.detail = row_text::loadingInfo;
    } else if (downloaded) {
        markAsDownloaded(row, *downloaded);
    } else {
        row.detail = row_text::readyToDownload;
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

qsizetype countWith(const QList<DownloadItem>& rows, QueueStatus status) {
    return std::count_if(rows.begin(), rows.end(),
                         [status](const DownloadItem& row) { return row.status == status; });
}

}  // namespace

ResolutionDriver::ResolutionDriver(QueueStore& queue, ShellRunner& shell,
                                   const ToolDiscovery& discovery, const EventLibrary& library,
                                   std::function<EventTarget()> eventTarget,
                                   BackgroundTasks& background, MainQueue& mainQueue,
                                   ResolutionTiming timing)
    : m_queue(queue),
      m_shell(shell),
      m_discovery(discovery),
      m_library(library),
      m_eventTarget(std::move(eventTarget)),
      m_background(background),
      m_mainQueue(mainQueue),
      m_timing(timing) {}

void ResolutionDriver::resolveInfo(const QList<DownloadItem>& items) {
    if (items.isEmpty())
        return;
    QList<Reading> readings;
    readings.reserve(items.size());
    for (const DownloadItem& item : items) {
        readings.append({item, {}});
        m_readings.insert(item.id, readings.last().stop);
    }
    m_background.run([this, readings](const std::stop_token& programEnds) {
        resolveBatch(readings, programEnds);
    });
}

void ResolutionDriver::resolveBatch(const QList<Reading>& readings,
                                    const std::stop_token& programEnds) {
    for (const Reading& reading : readings) {
        const std::stop_token stop = reading.stop.get_token();
        if (stop.stop_requested())
            continue;
        const std::stop_callback stopToo(
            programEnds, [source = reading.stop]() mutable { source.request_stop(); });
        const auto start = Clock::now();
        post(stop, [this, item = reading.item] { showReading(item); });
        const QueueResolution resolution = resolveQueueEntryWithRetries(reading.item, stop);
        // One that was stopped is no reason to ask the next sooner.
        if (!pauseFor(programEnds, m_timing.minimumPerLink - (Clock::now() - start)))
            return;
        post(stop, [this, reading, resolution] { lookWhatIsThere(resolution, reading); });
    }
}

/// For a reading that may be stopped meanwhile, on the main thread.
void ResolutionDriver::post(const std::stop_token& stop, std::function<void()> block) const {
    m_mainQueue.post([stop, block = std::move(block)] {
        if (!stop.stop_requested())
            block();
    });
}

/// Where the event's folder is, the main thread knows; but it does not walk through it.
void ResolutionDriver::lookWhatIsThere(const QueueResolution& resolution, const Reading& reading) {
    m_background.run([this, resolution, reading, target = m_eventTarget()](const std::stop_token&) {
        const FilesThatAreThere files =
            m_library.existingDownloadedFiles(resolution.entries, target);
        post(reading.stop.get_token(), [this, resolution, item = reading.item, files] {
            m_readings.remove(item.id);
            if (const qsizetype index = m_queue.indexOf(item.id); index >= 0)
                applyResolution(resolution, item, index, files);
        });
    });
}

void ResolutionDriver::stop(const QSet<QUuid>& itemIDs) {
    for (const QUuid& id : itemIDs) {
        const auto reading = m_readings.find(id);
        if (reading == m_readings.end())
            continue;
        reading->request_stop();
        m_readings.erase(reading);
        m_queue.update(id, [](DownloadItem& row) {
            row.isResolvingInfo = false;
            row.title = titleOfUnreadRow(row);
            // What a run has begun under the link as it is, it goes on with under that.
            if (isTaken(row))
                return;
            row.status = QueueStatus::waiting;
            row.reading = LinkReading::givenUp;
            row.detail = row_text::readyToDownload;
        });
    }
}

void ResolutionDriver::lookForSongs(const QList<DownloadItem>& rows, const QString& remark) {
    QList<PlaylistEntry> entries;
    for (const DownloadItem& row : rows)
        entries.append({.url = row.url,
                        .source = row.source,
                        .title = row.title,
                        .duration = row.duration,
                        .thumbnailURL = {}});
    m_background.run(
        [this, rows, remark, entries, target = m_eventTarget()](const std::stop_token&) {
            const FilesThatAreThere files = m_library.existingDownloadedFiles(entries, target);
            m_mainQueue.post(
                [this, rows, files, remark] { showSongsThatAreThere(rows, files, remark); });
        });
}

void ResolutionDriver::showSongsThatAreThere(const QList<DownloadItem>& rows,
                                             const FilesThatAreThere& files,
                                             const QString& remark) {
    qsizetype found = 0;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const DownloadItem* row = m_queue.find(rows.at(i).id);
        if (row == nullptr || isTaken(*row) || !files.value(i))
            continue;
        m_queue.update(row->id,
                       [&](DownloadItem& there) { markAsDownloaded(there, *files.at(i)); });
        ++found;
    }
    if (found > 0)
        Q_EMIT summaryChanged(summaryOfNewRows(rows.size(), found) + remark);
}

void ResolutionDriver::showReading(const DownloadItem& item) {
    m_queue.update(item.id, [&](DownloadItem& row) {
        if (isTaken(row))
            return;
        row.detail = playlistLike(item.url, item.source)
                         ? row_text::readingPlaylist
                         : QStringLiteral("Loading info for ") + videoID(item.url);
        row.isResolvingInfo = true;
    });
}

QueueResolution ResolutionDriver::resolveQueueEntryWithRetries(const DownloadItem& item,
                                                               const std::stop_token& stop) const {
    for (int attempt = 1;; ++attempt) {
        QueueResolution resolution = resolveOnce(item, stop);
        if (!resolution.entries.isEmpty() || !resolution.failure)
            return resolution;
        if (isPermanentFailure(*resolution.failure))
            return resolution;
        if (attempt == maxMetadataResolveAttempts || stop.stop_requested())
            return resolution;
        post(stop, [this, id = item.id, attempt] { showRetry(id, attempt); });
        if (!pauseFor(stop, m_timing.pauseAfter(attempt)))
            return resolution;
    }
}

QueueResolution ResolutionDriver::resolveOnce(const DownloadItem& item,
                                              const std::stop_token& stop) const {
    ShellRunner shell(m_shell, stop);
    if (item.source == SourceType::spotify)
        return SpotifyExpansion(shell, m_discovery).resolveSpotifyEntries(item.url);

    const MediaProbe mediaProbe(shell, m_discovery);
    const bool isOneOfSeveral = item.playlistItem > 0;
    QString remarks;
    const auto listed = [&] {
        const ListingProbe probe = mediaProbe.fetchPlaylistEntries(item.url, item.source);
        remarks += probe.errors;
        QueueResolution resolution = resolutionOfListing(probe.found);
        resolution.remarks = remarks;
        return resolution;
    };
    const bool isList =
        !isOneOfSeveral && item.source == SourceType::youtube && isYouTubePlaylistLink(item.url);
    if (isList) {
        if (QueueResolution resolution = listed(); !resolution.entries.isEmpty())
            return resolution;
    }
    const LinkProbe probe = mediaProbe.fetchMediaInfo(item.url, item.playlistItem);
    remarks += probe.errors;
    // Each of many songs takes its time to be looked at; a listing does not look at them.
    if (probe.tookTooLong && !isOneOfSeveral) {
        if (QueueResolution resolution = listed(); !resolution.entries.isEmpty())
            return resolution;
    }
    QueueResolution resolution = resolutionOfMedia(item, probe.found, probe.isPartial);
    resolution.remarks = remarks;
    if (isList && !resolution.failure)
        resolution.note =
            QStringLiteral("The list could not be read, only the song that it names.");
    return resolution;
}

void ResolutionDriver::showRetry(const QUuid& id, int failedAttempt) const {
    const DownloadItem* found = m_queue.find(id);
    if (found == nullptr || isTaken(*found))
        return;
    m_queue.update(id, [&](DownloadItem& row) {
        row.isResolvingInfo = true;
        row.status = QueueStatus::waiting;
        row.detail = QStringLiteral("Temporary read issue. Trying again %1 of %2...")
                         .arg(failedAttempt + 1)
                         .arg(maxMetadataResolveAttempts);
    });
    Q_EMIT summaryChanged(QStringLiteral("Trying link again"));
}

/// Whether no other row than this one is there for the entry. Of two rows with one link, the one
/// that is read first is its.
bool ResolutionDriver::isNew(const PlaylistEntry& entry, const DownloadItem& row) const {
    const bool isOwn = row.reading == LinkReading::song && entry.url == row.url &&
                       entry.playlistItem == row.playlistItem;
    return m_queue.countOfSong(entry.url, entry.playlistItem) == (isOwn ? 1 : 0);
}

void ResolutionDriver::applyResolution(const QueueResolution& resolution, const DownloadItem& item,
                                       qsizetype index, const FilesThatAreThere& files) {
    if (!resolution.remarks.trimmed().isEmpty())
        Q_EMIT logged(QStringLiteral("Reading %1:\n").arg(item.url) + resolution.remarks);
    const DownloadItem row = m_queue.rows().at(index);
    if (isTaken(row)) {
        m_queue.update(row.id, [](DownloadItem& taken) { taken.isResolvingInfo = false; });
        return;
    }
    // One resolution may hold a link twice; both stay.
    QList<DownloadItem> rows;
    for (qsizetype i = 0; i < resolution.entries.size(); ++i) {
        if (isNew(resolution.entries.at(i), row))
            rows.append(rowFor(resolution.entries.at(i), files.value(i)));
    }
    if (rows.isEmpty())
        keepRow(resolution, item, index);
    else
        replaceRow(rows, resolution, index);
    QList<QUuid> newRows;
    for (const DownloadItem& added : std::as_const(rows))
        newRows.append(added.id);
    Q_EMIT rowRead(row.id, newRows);
}

void ResolutionDriver::replaceRow(const QList<DownloadItem>& rows,
                                  const QueueResolution& resolution, qsizetype index) {
    const QString link = m_queue.rows().at(index).url;
    m_queue.replace(index, rows);
    QString summary = summaryOfNewRows(rows.size(), countWith(rows, QueueStatus::complete));
    if (const qsizetype failed = countWith(rows, QueueStatus::failed); failed > 0)
        summary += QStringLiteral("; %1 could not be read").arg(failed);
    if (resolution.cut) {
        summary += QStringLiteral("; ") + cutText(*resolution.cut);
        Q_EMIT noted(link + QStringLiteral(": ") + cutText(*resolution.cut));
    }
    if (!resolution.note.isEmpty())
        Q_EMIT noted(link + QStringLiteral(": ") + resolution.note);
    Q_EMIT summaryChanged(summary);

    QList<DownloadItem> unread;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(unread),
                 [](const DownloadItem& row) { return row.isResolvingInfo; });
    resolveInfo(unread);
}

void ResolutionDriver::keepRow(const QueueResolution& resolution, const DownloadItem& item,
                               qsizetype index) {
    const bool isFailure = resolution.failure.has_value();
    m_queue.update(m_queue.rows().at(index).id, [&](DownloadItem& row) {
        row.isResolvingInfo = false;
        row.status = isFailure ? QueueStatus::failed : QueueStatus::waiting;
        row.reading = isFailure ? LinkReading::open : LinkReading::repeated;
        row.title = titleOfUnreadRow(item);
        row.detail = resolution.failure.value_or(row_text::songsAreInQueue);
    });
    Q_EMIT summaryChanged(isFailure ? QStringLiteral("Playlist needs attention")
                                    : QStringLiteral("No new songs added"));
}

bool ResolutionDriver::isPermanentFailure(const QString& failure) {
    return containsAny(failure, permanentFailureMarkers);
}

bool ResolutionDriver::shouldRetryInfoForFailedItem(const DownloadItem& item) {
    return item.source != SourceType::song &&
           (item.isResolvingInfo || containsAny(item.detail, readFailureMarkers));
}

void ResolutionDriver::retryResolveInfo(const DownloadItem& item) {
    const bool there = m_queue.update(item.id, [](DownloadItem& row) {
        row.status = QueueStatus::waiting;
        row.isResolvingInfo = true;
        row.reading = LinkReading::open;
        row.detail = row_text::readingAgain;
        row.progress = 0.0;
    });
    if (!there)
        return;
    Q_EMIT summaryChanged(QStringLiteral("Reading link again"));
    resolveInfo({*m_queue.find(item.id)});
}

}  // namespace reelcrate
