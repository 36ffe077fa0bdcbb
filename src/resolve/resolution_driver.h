#pragma once

#include "library/event_library.h"
#include "records/download_item.h"
#include "records/media_records.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUuid>

#include <chrono>
#include <functional>
#include <optional>
#include <stop_token>

/// Reads what queued links stand for, paced and with retries, and rewrites the queue with the
/// results: a song's row gets its title, a playlist's row makes way for one row per song.
///
/// Main thread, except where a function says otherwise. The reading itself runs in the background,
/// one task per batch; results find their row again by id, and are dropped when it is gone.
/// Failures arrive in the rows and in the summary.
namespace reelcrate {

class BackgroundTasks;
class MainQueue;
class QueueStore;
class ShellRunner;
class ToolDiscovery;

struct ResolutionTiming {
    using Seconds = std::chrono::duration<double>;

    Seconds minimumPerLink{1.1};
    Seconds retryPause{1.2};            ///< after every failed attempt ...
    Seconds retryPausePerAttempt{0.8};  ///< ... and this for each attempt made so far

    Seconds pauseAfter(int attempts) const { return retryPause + retryPausePerAttempt * attempts; }
};

/// The file that is there already for each of a resolution's entries, in their order.
using FilesThatAreThere = QList<std::optional<QString>>;

class ResolutionDriver : public QObject {
    Q_OBJECT

public:
    static constexpr int maxMetadataResolveAttempts = 3;

    /// `eventTarget` tells, on the main thread, where songs may be there already.
    ResolutionDriver(QueueStore& queue, ShellRunner& shell, const ToolDiscovery& discovery,
                     const EventLibrary& library, std::function<EventTarget()> eventTarget,
                     BackgroundTasks& background, MainQueue& mainQueue,
                     ResolutionTiming timing = {});

    /// Reads the links of these rows, one after another, in the background.
    void resolveInfo(const QList<DownloadItem>& items);

    /// Gives up reading those of these rows whose links are being read or wait for that. They are
    /// ready, and are to be read when they are started.
    void stop(const QSet<QUuid>& itemIDs);

    /// Background threads. Up to three attempts with pauses in between; after a stop request the
    /// last attempt's resolution is returned early.
    QueueResolution resolveQueueEntryWithRetries(const DownloadItem& item,
                                                 const std::stop_token& stop = {}) const;

    /// Rewrites the queue by what reading `item`, the row at `index`, has yielded. A row that a run
    /// has taken meanwhile stays as it is.
    void applyResolution(const QueueResolution& resolution, const DownloadItem& item,
                         qsizetype index, const FilesThatAreThere& files = {});

    /// Looks which of these songs, whose rows have no link to read, are in the event's folder
    /// already. Where some are, the summary says so, and then `remark`.
    void lookForSongs(const QList<DownloadItem>& rows, const QString& remark);

    /// Whether reading fails in the same way however often it is tried, by the text for the user.
    static bool isPermanentFailure(const QString& failure);

    /// Whether trying a failed row again means reading its link again rather than downloading it.
    static bool shouldRetryInfoForFailedItem(const DownloadItem& item);

    /// Resets the row and reads its link again.
    void retryResolveInfo(const DownloadItem& item);

Q_SIGNALS:
    void summaryChanged(const QString& text) const;
    /// What the tools had to say.
    void logged(const QString& text) const;
    /// Songs are missing from what was read: the user is to know, also later.
    void noted(const QString& text) const;
    /// The row made way for these; none when it could not be read, or has nothing new.
    void rowRead(const QUuid& id, const QList<QUuid>& newRows) const;

private:
    struct Reading {
        DownloadItem item;
        std::stop_source stop;
    };

    void resolveBatch(const QList<Reading>& readings, const std::stop_token& programEnds);
    QueueResolution resolveOnce(const DownloadItem& item, const std::stop_token& stop) const;
    void post(const std::stop_token& stop, std::function<void()> block) const;
    void showReading(const DownloadItem& item);
    void lookWhatIsThere(const QueueResolution& resolution, const Reading& reading);
    void showSongsThatAreThere(const QList<DownloadItem>& rows, const FilesThatAreThere& files,
                               const QString& remark);
    void showRetry(const QUuid& id, int failedAttempt) const;
    void keepRow(const QueueResolution& resolution, const DownloadItem& item, qsizetype index);
    void replaceRow(const QList<DownloadItem>& rows, const QueueResolution& resolution,
                    qsizetype index);
    bool isNew(const PlaylistEntry& entry, const DownloadItem& row) const;

    QueueStore& m_queue;
    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
    const EventLibrary& m_library;
    std::function<EventTarget()> m_eventTarget;
    BackgroundTasks& m_background;
    MainQueue& m_mainQueue;
    const ResolutionTiming m_timing;
    QHash<QUuid, std::stop_source> m_readings;  ///< of the rows that are being read or wait for it
};

}  // namespace reelcrate
