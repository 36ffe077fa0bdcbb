#pragma once

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "download/download_runs.h"
#include "library/event_account.h"
#include "library/event_library.h"
#include "library/playlist_file.h"
#include "queue/list_text.h"
#include "queue/queue_editor.h"
#include "queue/queue_store.h"
#include "records/download_item.h"
#include "records/download_mode.h"
#include "records/media_records.h"
#include "resolve/resolution_driver.h"
#include "tools/process_supervisor.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"
#include "tools/tool_installer.h"
#include "tools/tool_readiness.h"
#include "update/update_scan.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <functional>
#include <optional>
#include <stop_token>

/// The one controller: owns the parts that hold all state, and does what concerns several of them.
/// What concerns one part is asked of that part.
///
/// Main thread, except where a function says otherwise. No operation fails by itself: outcomes are
/// the summary line, the rows and the logs.
namespace reelcrate {

/// What the controller finds around it. Tests put their own in its place.
struct ControllerSetup {
    ToolPlaces toolPlaces;
    QString desktopFolder;                   ///< empty when the system names none
    std::function<QString()> clipboardText;  ///< empty function: there is no clipboard
    /// Ask the desktop to show a folder, or a file selected in its folder. Empty: there is none.
    std::function<void(const QString& path)> openFolder;
    std::function<void(const QString& path)> showFile;
    TextEditing* textEditing = nullptr;  ///< null: no text is edited; outlives the controller
    InstallerSources installerSources = InstallerSources::ofThisPlatform();
    UpdateScanSetup updateScan;
    ResolutionTiming resolutionTiming;
    DownloadTiming downloadTiming;

    /// The machine's and the user's own. Needs a QCoreApplication.
    static ControllerSetup ofThisMachine();
};

class Controller : public QObject {
    Q_OBJECT

public:
    static const QString appVersion;
    static constexpr int appBuild = 48;
    static constexpr int maxParallelDownloads = DownloadRuns::maxParallelDownloads;

    /// `supervisor` is forked off by main before there are threads, and outlives the controller.
    Controller(ProcessSupervisor& supervisor, ControllerSetup setup);
    ~Controller() override;

    /// Ends all background work and every child: at most about three seconds. Rows stay as they
    /// are; nothing changes any more after this. Also done by the destructor.
    void shutDown();

    // The parts

    const QueueStore& queue() const { return m_queue; }
    QueueEditor& editor() { return m_editor; }
    const QueueEditor& editor() const { return m_editor; }
    ToolReadiness& tools() { return m_readiness; }
    const ToolReadiness& tools() const { return m_readiness; }
    ToolInstaller& installer() { return m_installer; }
    const ToolInstaller& installer() const { return m_installer; }
    const ToolDiscovery& discovery() const { return m_discovery; }
    ResolutionDriver& resolution() { return m_resolution; }
    DownloadRuns& runs() { return m_runs; }
    const DownloadRuns& runs() const { return m_runs; }
    UpdateScan& update() { return m_update; }
    const UpdateScan& update() const { return m_update; }

    // What the user has entered and chosen

    const QString& eventName() const { return m_eventName; }
    void setEventName(const QString& name);
    const QString& pastedLinks() const { return m_pastedLinks; }
    void setPastedLinks(const QString& text);
    DownloadMode downloadMode() const { return m_downloadMode; }
    void setDownloadMode(DownloadMode mode);
    /// Whether songs of the runs to come get tags that tell their loudness; videos never do.
    bool tagsLoudness() const { return m_tagsLoudness; }
    void setTagsLoudness(bool tags);
    const QString& outputFolder() const { return m_outputFolder; }
    void setOutputFolder(const QString& folder);

    const QString& activeSummary() const { return m_activeSummary; }
    qsizetype activeQueueDownloadCount() const;
    qsizetype selectedVisibleQueueItemCount() const;

    // What may be asked for at the moment. The front ends enable their controls by these.

    bool canAdd() const;
    bool canDelete() const;  ///< rows, one or all
    /// Whether the next row that is asked for would start.
    bool canDownload() const;
    bool canDownloadAll() const;
    /// Whether one of these rows, or any row, runs, waits or is being read.
    bool canStop(const QSet<QUuid>& ids) const;
    bool canStopAll() const;

    // Defaults

    /// Today's date and what the event is, for example "11-16-26 Playlist".
    static QString defaultEventName();
    QString defaultOutputFolder() const;

    // Link intake

    void addSongsFromFieldOrClipboard();
    /// Adds the links in a text that came by another way; the link field stays as it is.
    void addSongs(const QString& text);
    void addSongsFromClipboard();
    /// Adds a row for each song that the text names. The list's `name` begins what the summary and
    /// the log say of it. False where that was no such text at all.
    bool addSongList(const ListText& list, const QString& name);
    bool addSongListFile(const QString& path);
    /// What was not taken of what was given: for the log, now and at the next run.
    void noteList(const QString& text);
    void addSongListFromClipboard();
    QString clipboardText() const;
    QList<DownloadItem> addLinksToQueue(const QStringList& links);

    /// Removes all rows, also during a run, and what was to be done with them.
    void clearQueue();

    // Downloading

    /// Whether a download may be asked for: the row is ready or needs attention, and has something
    /// of its own behind it, as far as is known.
    static bool isDownloadable(const DownloadItem& row);
    void startDownloads();
    /// Starts nothing while a tool is known to be missing; the summary says which.
    void startDownloadRun(const QList<QUuid>& itemIDs);
    /// Stops what runs, waits or is being read among these rows: they are ready again. False when
    /// nothing does.
    bool stopQueueItems(const QSet<QUuid>& ids);
    void stopAll();

    // Files

    /// Shows the row's file in the desktop's file manager, or the folder where it would be.
    void revealOutput(const DownloadItem& item);
    /// Of all rows, as they are. It is appended to the run log when the last run has ended.
    EventAccount eventAccount() const;
    /// Writes the complete rows into the event folder as a playlist; the summary tells.
    PlaylistSaving savePlaylist();
    /// Creates the folder, with its parents, where it can.
    void openFolder(const QString& folder);

    /// The folder that downloads go into: the event's, inside the output folder.
    QString eventFolder() const;

Q_SIGNALS:
    /// Of the records, or of whether a check or an installation is under way.
    void toolsChanged();
    void activeSummaryChanged();
    void eventNameChanged();
    void pastedLinksChanged();
    void downloadModeChanged();
    void outputFolderChanged();
    /// After the account of the last run has been logged.
    void activeDownloadRunsChanged();
    /// What became of a song list, and which of its lines are no songs.
    void songListNoted(const QString& note);

private:
    void setActiveSummary(const QString& text);
    void addSongsBehind(const QStringList& links);
    RunTarget runTarget() const;
    void readWhatNeedsReading(const QList<QUuid>& itemIDs);
    void startWhatWasRead(const QUuid& id, const QList<QUuid>& newRows);
    void startWaitingRows();
    bool isStoppable(const DownloadItem& row) const;
    void forgetNotesOfEmptyQueue();

    const ControllerSetup m_setup;
    QString m_eventName = defaultEventName();
    QString m_pastedLinks;
    DownloadMode m_downloadMode = DownloadMode::audio;
    bool m_tagsLoudness = false;
    QString m_outputFolder = defaultOutputFolder();
    QString m_activeSummary = QStringLiteral("Ready");
    QSet<QUuid> m_startWhenRead;  ///< rows to be downloaded once they have been read
    QList<QUuid> m_waitingRows;   ///< rows that were, and wait for a slot
    QStringList m_readingNotes;   ///< what was missing in what was read
    QStringList m_unreadLines;    ///< of song lists

    // In the order of their dependence: each part knows only parts above it.
    MainQueue m_mainQueue;
    QueueStore m_queue;
    ShellRunner m_shell;
    ToolDiscovery m_discovery;
    BackgroundTasks m_background;
    ToolReadiness m_readiness;
    ToolInstaller m_installer;
    EventLibrary m_library;
    ResolutionDriver m_resolution;
    DownloadRuns m_runs;
    QueueEditor m_editor;
    UpdateScan m_update;
};

}  // namespace reelcrate
