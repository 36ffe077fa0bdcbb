#include "app/controller.h"

#include "base/text.h"
#include "library/file_names.h"
#include "queue/link_intake.h"
#include "queue/links.h"
#include "queue/song_intake.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <memory>
#include <utility>

namespace reelcrate {

namespace {

bool needsReading(const DownloadItem& row) {
    const bool isFree = row.status == QueueStatus::waiting || row.status == QueueStatus::failed;
    const bool isUnlisted = row.source == SourceType::spotify && row.reading == LinkReading::open;
    return isFree && (isUnlisted || row.reading == LinkReading::givenUp);
}

}  // namespace

const QString Controller::appVersion = QStringLiteral("4.8");

ControllerSetup ControllerSetup::ofThisMachine() {
    ControllerSetup setup;
    setup.toolPlaces = ToolPlaces::ofThisMachine();
    setup.desktopFolder = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    const QString mirror = qEnvironmentVariable("REELCRATE_TOOL_MIRROR");
    if (!mirror.isEmpty())
        setup.installerSources = setup.installerSources.fromMirror(mirror);
    return setup;
}

Controller::Controller(ProcessSupervisor& supervisor, ControllerSetup setup)
    : m_setup(std::move(setup)),
      m_shell(supervisor),
      m_discovery(m_shell, m_setup.toolPlaces),
      m_readiness(m_shell, m_discovery, m_background, m_mainQueue),
      m_installer(m_shell, m_discovery, m_readiness, m_background, m_mainQueue,
                  m_setup.installerSources),
      m_resolution(
          m_queue, m_shell, m_discovery, m_library, [this] { return runTarget().event; },
          m_background, m_mainQueue, m_setup.resolutionTiming),
      m_runs(m_queue, m_shell, m_discovery, m_library, m_background, m_mainQueue,
             m_setup.downloadTiming, [this] { return m_readiness.foundYtDlp(); }),
      m_editor(
          m_queue, [this] { return m_runs.activeDownloadRuns() > 0; }, m_setup.textEditing,
          [this](const QSet<QUuid>& ids) { return stopQueueItems(ids); }),
      m_update(appVersion, appBuild, m_setup.updateScan) {
    connect(&m_readiness, &ToolReadiness::toolsChanged, this, &Controller::toolsChanged);
    connect(&m_installer, &ToolInstaller::isInstallingToolsChanged, this,
            &Controller::toolsChanged);
    connect(&m_readiness, &ToolReadiness::summaryChanged, this, &Controller::setActiveSummary);
    connect(&m_resolution, &ResolutionDriver::summaryChanged, this, &Controller::setActiveSummary);
    connect(&m_resolution, &ResolutionDriver::logged, &m_runs, &DownloadRuns::appendRunLog);
    connect(&m_resolution, &ResolutionDriver::noted, this, [this](const QString& note) {
        m_runs.appendNote(note);
        m_readingNotes.append(note);
        m_readingNotes.removeDuplicates();
    });
    connect(&m_queue, &QueueStore::rowsRemoved, this, &Controller::forgetNotesOfEmptyQueue);
    connect(&m_resolution, &ResolutionDriver::rowRead, this, &Controller::startWhatWasRead);
    connect(&m_runs, &DownloadRuns::slotFreed, this, &Controller::startWaitingRows);
    connect(&m_runs, &DownloadRuns::summaryChanged, this, &Controller::setActiveSummary);
    connect(&m_update, &UpdateScan::summaryChanged, this, &Controller::setActiveSummary);
    connect(&m_editor, &QueueEditor::summaryChanged, this, &Controller::setActiveSummary);
    connect(&m_runs, &DownloadRuns::activeDownloadRunsChanged, this, [this] {
        if (m_runs.activeDownloadRuns() == 0)
            m_runs.appendRunLog(accountText(eventAccount()));
        Q_EMIT activeDownloadRunsChanged();
    });
}

Controller::~Controller() {
    shutDown();
}

void Controller::shutDown() {
    // The stop request first: a task whose child is killed must know that this is no failure.
    m_background.requestStop();
    m_shell.endEverything();
    m_background.join();
    m_mainQueue.close();
}

void Controller::setEventName(const QString& name) {
    m_eventName = name;
    Q_EMIT eventNameChanged();
}

void Controller::setPastedLinks(const QString& text) {
    m_pastedLinks = text;
    Q_EMIT pastedLinksChanged();
}

void Controller::setDownloadMode(DownloadMode mode) {
    m_downloadMode = mode;
    Q_EMIT downloadModeChanged();
}

void Controller::setTagsLoudness(bool tags) {
    m_tagsLoudness = tags;
    setActiveSummary(tags ? QStringLiteral("Songs to come get tags with their loudness")
                          : QStringLiteral("Songs to come get no tags with their loudness"));
}

void Controller::setOutputFolder(const QString& folder) {
    m_outputFolder = folder;
    Q_EMIT outputFolderChanged();
}

void Controller::setActiveSummary(const QString& text) {
    m_activeSummary = text;
    Q_EMIT activeSummaryChanged();
}

qsizetype Controller::activeQueueDownloadCount() const {
    return m_queue.countWithStatus(QueueStatus::running);
}

qsizetype Controller::selectedVisibleQueueItemCount() const {
    const QSet<QUuid>& ids = m_editor.selection().ids;
    return std::count_if(ids.begin(), ids.end(),
                         [this](const QUuid& id) { return m_queue.find(id) != nullptr; });
}

bool Controller::canAdd() const {
    return m_runs.activeDownloadRuns() == 0 && m_readiness.coreToolsReady();
}

bool Controller::canDelete() const {
    return m_runs.activeDownloadRuns() == 0;
}

bool Controller::canDownload() const {
    return m_readiness.coreToolsReady() && activeQueueDownloadCount() < maxParallelDownloads;
}

bool Controller::canDownloadAll() const {
    const QList<DownloadItem>& rows = m_queue.rows();
    return canDownload() && std::any_of(rows.begin(), rows.end(), isDownloadable);
}

bool Controller::isStoppable(const DownloadItem& row) const {
    return isUnderWay(row) || row.isResolvingInfo || m_waitingRows.contains(row.id);
}

bool Controller::canStop(const QSet<QUuid>& ids) const {
    return std::any_of(ids.begin(), ids.end(), [this](const QUuid& id) {
        const DownloadItem* row = m_queue.find(id);
        return row != nullptr && isStoppable(*row);
    });
}

bool Controller::canStopAll() const {
    const QList<DownloadItem>& rows = m_queue.rows();
    return std::any_of(rows.begin(), rows.end(),
                       [this](const DownloadItem& row) { return isStoppable(row); });
}

QString Controller::defaultEventName() {
    return QDate::currentDate().toString(QStringLiteral("M-d-yy")) + QStringLiteral(" Playlist");
}

QString Controller::defaultOutputFolder() const {
    const QString desktop = m_setup.desktopFolder.isEmpty()
                                ? m_setup.toolPlaces.home + QStringLiteral("/Desktop")
                                : m_setup.desktopFolder;
    return QDir(desktop).filePath(QStringLiteral("Reelcrate Downloads"));
}

QString Controller::eventFolder() const {
    return eventFolderPath(m_outputFolder, m_eventName, defaultEventName());
}

// Link intake

QString Controller::clipboardText() const {
    return m_setup.clipboardText ? m_setup.clipboardText() : QString();
}

void Controller::addSongsFromFieldOrClipboard() {
    const QString field = m_pastedLinks.trimmed();
    const QStringList links = extractLinks(field.isEmpty() ? clipboardText() : field);
    if (!links.isEmpty())
        setPastedLinks(QString());
    addSongsBehind(links);
}

void Controller::addSongs(const QString& text) {
    addSongsBehind(extractLinks(text));
}

void Controller::addSongsFromClipboard() {
    addSongs(clipboardText());
}

void Controller::noteList(const QString& text) {
    m_runs.appendNote(text);
    Q_EMIT songListNoted(text);
}

bool Controller::addSongList(const ListText& list, const QString& name) {
    if (!list.failure.isEmpty()) {
        const QString word = name + u' ' + list.failure;
        noteList(word);
        setActiveSummary(word);
        return false;
    }
    const SongIntake intake = newRowsForSongs(readSongList(list.text), name, list.remark, m_queue);
    m_queue.append(intake.rows);
    m_unreadLines += intake.unread;
    m_unreadLines.removeDuplicates();
    noteList(intake.account);
    setActiveSummary(intake.summary);
    if (!intake.rows.isEmpty())
        m_resolution.lookForSongs(intake.rows, intake.remark);
    return !intake.isRefused;
}

bool Controller::addSongListFile(const QString& path) {
    return addSongList(textOfListFile(path), QFileInfo(path).fileName());
}

void Controller::addSongListFromClipboard() {
    addSongList(textOfList(clipboardText()), QStringLiteral("The clipboard"));
}

void Controller::addSongsBehind(const QStringList& links) {
    if (links.isEmpty())
        setActiveSummary(QStringLiteral("Copy a share link, then click Add Songs"));
    else
        m_resolution.resolveInfo(addLinksToQueue(links));
}

QList<DownloadItem> Controller::addLinksToQueue(const QStringList& links) {
    if (links.isEmpty())
        return {};
    QList<DownloadItem> rows = newRowsForLinks(links, m_queue);
    if (rows.isEmpty()) {
        setActiveSummary(QStringLiteral("No new links added"));
        return {};
    }
    m_queue.append(rows);
    setActiveSummary(QStringLiteral("Reading %1 link").arg(rows.size()) +
                     pluralSuffix(rows.size()));
    return rows;
}

void Controller::clearQueue() {
    m_editor.clearQueue();
    m_startWhenRead.clear();
    m_waitingRows.clear();
    m_runs.clearRunLog();
}

// Downloading

RunTarget Controller::runTarget() const {
    return {{eventFolder(), m_downloadMode},
            m_outputFolder,
            m_tagsLoudness ? MeasureLoudness::yes : MeasureLoudness::no};
}

bool Controller::isDownloadable(const DownloadItem& row) {
    return isStartable(row) || needsReading(row);
}

void Controller::startDownloads() {
    QList<QUuid> itemIDs;
    for (const DownloadItem& row : m_queue.rows())
        itemIDs.append(row.id);
    startDownloadRun(itemIDs);
}

void Controller::startDownloadRun(const QList<QUuid>& itemIDs) {
    if (!m_readiness.toolStates().isEmpty() && !m_readiness.coreToolsReady()) {
        setActiveSummary(m_readiness.setupDetailText());
        return;
    }
    readWhatNeedsReading(itemIDs);
    QList<QUuid> known = itemIDs;
    known.removeIf([this](const QUuid& id) { return m_startWhenRead.contains(id); });
    const bool hasStartable = std::any_of(known.begin(), known.end(), [this](const QUuid& id) {
        const DownloadItem* row = m_queue.find(id);
        return row != nullptr && isStartable(*row);
    });
    if (hasStartable || known.size() == itemIDs.size())
        m_runs.startDownloadRun(known, runTarget());
}

/// Of a Spotify link that was not listed nothing can be searched for, and what a link stands for
/// whose reading was stopped is not known: it is read again, and what it turns out to be is
/// downloaded then.
void Controller::readWhatNeedsReading(const QList<QUuid>& itemIDs) {
    QList<DownloadItem> unread;
    for (const QUuid& id : itemIDs) {
        const DownloadItem* row = m_queue.find(id);
        if (row != nullptr && needsReading(*row))
            unread.append(*row);
    }
    for (const DownloadItem& row : std::as_const(unread)) {
        m_startWhenRead.insert(row.id);
        if (!row.isResolvingInfo)
            m_resolution.retryResolveInfo(row);
    }
}

void Controller::startWhatWasRead(const QUuid& id, const QList<QUuid>& newRows) {
    if (!m_startWhenRead.remove(id))
        return;
    m_waitingRows += newRows;
    startWaitingRows();
}

/// The user has asked for them already: they are not refused for want of a slot.
void Controller::startWaitingRows() {
    if (m_waitingRows.isEmpty() || m_runs.freeSlots() < 1)
        return;
    m_runs.startDownloadRun(std::exchange(m_waitingRows, {}), runTarget());
}

bool Controller::stopQueueItems(const QSet<QUuid>& ids) {
    QSet<QUuid> stopped;
    for (const QUuid& id : ids) {
        const DownloadItem* row = m_queue.find(id);
        if (row != nullptr && isStoppable(*row))
            stopped.insert(id);
    }
    if (stopped.isEmpty())
        return false;
    m_startWhenRead.subtract(stopped);
    m_waitingRows.removeIf([&](const QUuid& id) { return stopped.contains(id); });
    m_resolution.stop(stopped);
    m_runs.stop(stopped);
    setActiveSummary(QStringLiteral("Stopped %1 song").arg(stopped.size()) +
                     pluralSuffix(stopped.size()));
    return true;
}

void Controller::stopAll() {
    QSet<QUuid> ids;
    for (const DownloadItem& row : m_queue.rows())
        ids.insert(row.id);
    stopQueueItems(ids);
}

// Files

void Controller::revealOutput(const DownloadItem& item) {
    const QFileInfo output(item.outputPath);
    if (item.outputPath.isEmpty())
        openFolder(eventFolder());
    else if (!output.exists() || output.isDir())
        openFolder(item.outputPath);
    else if (m_setup.showFile)
        m_setup.showFile(item.outputPath);
}

/// What comes next is another event.
void Controller::forgetNotesOfEmptyQueue() {
    if (m_queue.size() > 0)
        return;
    m_readingNotes.clear();
    m_unreadLines.clear();
}

EventAccount Controller::eventAccount() const {
    return accountOf(m_eventName, m_queue.rows(), m_readingNotes, m_unreadLines);
}

PlaylistSaving Controller::savePlaylist() {
    PlaylistSaving saving = reelcrate::savePlaylist(m_queue.rows(), eventFolder());
    setActiveSummary(playlistSummary(saving));
    return saving;
}

void Controller::openFolder(const QString& folder) {
    QDir().mkpath(folder);
    if (m_setup.openFolder)
        m_setup.openFolder(folder);
}

}  // namespace reelcrate
