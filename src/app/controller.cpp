#include "app/content_view.h"

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

const QString ContentView::appVersion = QStringLiteral("4.8");

ContentViewSetup ContentViewSetup::ofThisMachine() {
    ContentViewSetup setup;
    setup.toolPlaces = ToolPlaces::ofThisMachine();
    setup.desktopFolder = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    const QString mirror = qEnvironmentVariable("REELCRATE_TOOL_MIRROR");
    if (!mirror.isEmpty())
        setup.installerSources = setup.installerSources.fromMirror(mirror);
    return setup;
}

ContentView::ContentView(ProcessSupervisor& supervisor, ContentViewSetup setup)
    : m_setup(std::move(setup)),
      m_shell(supervisor),
      m_discovery(m_shell, m_setup.toolPlaces),
      m_readiness(m_shell, m_discovery, m_background, m_mainQueue),
      m_installer(m_shell, m_discovery, m_readiness, m_background, m_mainQueue,
                  m_setup.installerSources),
      m_resolution(
          m_queue, m_shell, m_discovery, m_library, [this] { return runTarget().event; },
          m_background, m_mainQueue, m_setup.resolutionTiming),
      m_downloads(m_queue, m_shell, m_discovery, m_library, m_background, m_mainQueue,
                  m_setup.downloadTiming, [this] { return m_readiness.foundYtDlp(); }),
      m_editor(
          m_queue, [this] { return activeDownloadRuns() > 0; }, m_setup.textEditing,
          [this](const QSet<QUuid>& ids) { return stopQueueItems(ids); }),
      m_update(appVersion, appBuild, m_setup.updateScan) {
    connect(&m_readiness, &ToolReadiness::toolsChanged, this, &ContentView::toolsChanged);
    connect(&m_installer, &ToolInstaller::isInstallingToolsChanged, this,
            &ContentView::toolsChanged);
    connect(&m_installer, &ToolInstaller::progressChanged, this,
            &ContentView::setupProgressChanged);
    connect(&m_readiness, &ToolReadiness::toolLogCleared, this, &ContentView::toolLogCleared);
    connect(&m_readiness, &ToolReadiness::toolLogAppended, this, &ContentView::toolLogAppended);
    connect(&m_readiness, &ToolReadiness::summaryChanged, this, &ContentView::setActiveSummary);
    connect(&m_resolution, &ResolutionDriver::summaryChanged, this, &ContentView::setActiveSummary);
    connect(&m_resolution, &ResolutionDriver::logged, this, &ContentView::appendRunLog);
    connect(&m_resolution, &ResolutionDriver::noted, this, [this](const QString& note) {
        m_downloads.appendNote(note);
        m_readingNotes.append(note);
        m_readingNotes.removeDuplicates();
    });
    connect(&m_queue, &QueueStore::rowsRemoved, this, &ContentView::forgetNotesOfEmptyQueue);
    connect(&m_resolution, &ResolutionDriver::rowRead, this, &ContentView::startWhatWasRead);
    connect(&m_downloads, &DownloadRuns::slotFreed, this, &ContentView::startWaitingRows);
    connect(&m_downloads, &DownloadRuns::summaryChanged, this, &ContentView::setActiveSummary);
    connect(&m_update, &UpdateScan::summaryChanged, this, &ContentView::setActiveSummary);
    connect(&m_update, &UpdateScan::updateChanged, this, &ContentView::updateChanged);
    connect(&m_update, &UpdateScan::finished, this, &ContentView::updateScanFinished);
    connect(&m_editor, &QueueEditor::summaryChanged, this, &ContentView::setActiveSummary);
    connect(&m_editor, &QueueEditor::selectionChanged, this, &ContentView::selectionChanged);
    connect(&m_downloads, &DownloadRuns::activeDownloadRunsChanged, this, [this] {
        if (activeDownloadRuns() == 0)
            m_downloads.appendRunLog(accountText(eventAccount()));
        Q_EMIT activeDownloadRunsChanged();
    });
    connect(&m_downloads, &DownloadRuns::runLogCleared, this, &ContentView::runLogCleared);
    connect(&m_downloads, &DownloadRuns::runLogAppended, this, &ContentView::runLogAppended);
}

ContentView::~ContentView() {
    shutDown();
}

void ContentView::shutDown() {
    // The stop request first: a task whose child is killed must know that this is no failure.
    m_background.requestStop();
    m_shell.endEverything();
    m_background.join();
    m_mainQueue.close();
}

void ContentView::setEventName(const QString& name) {
    m_eventName = name;
    Q_EMIT eventNameChanged();
}

void ContentView::setPastedLinks(const QString& text) {
    m_pastedLinks = text;
    Q_EMIT pastedLinksChanged();
}

void ContentView::setDownloadMode(DownloadMode mode) {
    m_downloadMode = mode;
    Q_EMIT downloadModeChanged();
}

void ContentView::setTagsLoudness(bool tags) {
    m_tagsLoudness = tags;
    setActiveSummary(tags ? QStringLiteral("Songs to come get tags with their loudness")
                          : QStringLiteral("Songs to come get no tags with their loudness"));
}

void ContentView::setOutputFolder(const QString& folder) {
    m_outputFolder = folder;
    Q_EMIT outputFolderChanged();
}

void ContentView::setActiveSummary(const QString& text) {
    m_activeSummary = text;
    Q_EMIT activeSummaryChanged();
}

qsizetype ContentView::activeQueueDownloadCount() const {
    return m_queue.countWithStatus(QueueStatus::running);
}

qsizetype ContentView::selectedVisibleQueueItemCount() const {
    const QSet<QUuid>& ids = m_editor.selection().ids;
    return std::count_if(ids.begin(), ids.end(),
                         [this](const QUuid& id) { return m_queue.find(id) != nullptr; });
}

bool ContentView::canAdd() const {
    return activeDownloadRuns() == 0 && coreToolsReady();
}

bool ContentView::canDelete() const {
    return activeDownloadRuns() == 0;
}

bool ContentView::canDownload() const {
    return coreToolsReady() && activeQueueDownloadCount() < maxParallelDownloads;
}

bool ContentView::canDownloadAll() const {
    const QList<DownloadItem>& rows = m_queue.rows();
    return canDownload() && std::any_of(rows.begin(), rows.end(), isDownloadable);
}

bool ContentView::isStoppable(const DownloadItem& row) const {
    return isUnderWay(row) || row.isResolvingInfo || m_waitingRows.contains(row.id);
}

bool ContentView::canStop(const QSet<QUuid>& ids) const {
    return std::any_of(ids.begin(), ids.end(), [this](const QUuid& id) {
        const DownloadItem* row = m_queue.find(id);
        return row != nullptr && isStoppable(*row);
    });
}

bool ContentView::canStopAll() const {
    const QList<DownloadItem>& rows = m_queue.rows();
    return std::any_of(rows.begin(), rows.end(),
                       [this](const DownloadItem& row) { return isStoppable(row); });
}

QString ContentView::defaultEventName() {
    return QDate::currentDate().toString(QStringLiteral("M-d-yy")) + QStringLiteral(" Playlist");
}

QString ContentView::defaultOutputFolder() const {
    const QString desktop = m_setup.desktopFolder.isEmpty()
                                ? m_setup.toolPlaces.home + QStringLiteral("/Desktop")
                                : m_setup.desktopFolder;
    return QDir(desktop).filePath(QStringLiteral("Reelcrate Downloads"));
}

QString ContentView::eventFolder() const {
    return eventFolderPath(m_outputFolder, m_eventName, defaultEventName());
}

// Link intake

QString ContentView::clipboardText() const {
    return m_setup.clipboardText ? m_setup.clipboardText() : QString();
}

void ContentView::addSongsFromFieldOrClipboard() {
    const QString field = m_pastedLinks.trimmed();
    const QStringList links = extractLinks(field.isEmpty() ? clipboardText() : field);
    if (!links.isEmpty())
        setPastedLinks(QString());
    addSongsBehind(links);
}

void ContentView::addSongs(const QString& text) {
    addSongsBehind(extractLinks(text));
}

void ContentView::addSongsFromClipboard() {
    addSongs(clipboardText());
}

void ContentView::noteList(const QString& text) {
    m_downloads.appendNote(text);
    Q_EMIT songListNoted(text);
}

bool ContentView::addSongList(const ListText& list, const QString& name) {
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

bool ContentView::addSongListFile(const QString& path) {
    return addSongList(textOfListFile(path), QFileInfo(path).fileName());
}

void ContentView::addSongListFromClipboard() {
    addSongList(textOfList(clipboardText()), QStringLiteral("The clipboard"));
}

void ContentView::addSongsBehind(const QStringList& links) {
    if (links.isEmpty())
        setActiveSummary(QStringLiteral("Copy a share link, then click Add Songs"));
    else
        resolveInfo(addLinksToQueue(links));
}

QList<DownloadItem> ContentView::addLinksToQueue(const QStringList& links) {
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

// Selection and deletion

void ContentView::updateQueueSelection(const QUuid& id, KeyModifiers modifiers) {
    m_editor.updateQueueSelection(id, modifiers);
}

bool ContentView::moveQueueSelection(int direction, bool extending) {
    return m_editor.moveQueueSelection(direction, extending);
}

bool ContentView::selectAllQueueItemsFromUserAction() {
    return m_editor.selectAllQueueItemsFromUserAction();
}

bool ContentView::clearQueueSelectionFromUserAction() {
    return m_editor.clearQueueSelectionFromUserAction();
}

bool ContentView::deleteQueueItems(const QSet<QUuid>& ids) {
    return m_editor.deleteQueueItems(ids);
}

bool ContentView::deleteSelectedQueueItemsFromUserAction() {
    return m_editor.deleteSelectedQueueItemsFromUserAction();
}

void ContentView::clearQueue() {
    m_editor.clearQueue();
    m_startWhenRead.clear();
    m_waitingRows.clear();
    m_downloads.clearRunLog();
}

void ContentView::clickQueueArea() {
    m_editor.clickQueueArea();
}

bool ContentView::handleKeyDown(const KeyEvent& event) {
    return m_editor.handleKeyDown(event);
}

// Commands and tools

void ContentView::checkTools() {
    m_readiness.checkTools();
}

QList<ToolState> ContentView::missingInstallableTools() const {
    return m_readiness.missingInstallableTools();
}

bool ContentView::coreToolsReady() const {
    return m_readiness.coreToolsReady();
}

QString ContentView::setupDetailText() const {
    return m_readiness.setupDetailText();
}

void ContentView::installMissingTools() {
    m_installer.installMissingTools();
}

void ContentView::performSetup() {
    m_installer.performSetup();
}

// Reading links

void ContentView::resolveInfo(const QList<DownloadItem>& items) {
    m_resolution.resolveInfo(items);
}

void ContentView::applyResolution(const QueueResolution& resolution, const DownloadItem& item,
                                  qsizetype index) {
    m_resolution.applyResolution(resolution, {}, item, index);
}

bool ContentView::shouldRetryInfoForFailedItem(const DownloadItem& item) {
    return ResolutionDriver::shouldRetryInfoForFailedItem(item);
}

void ContentView::retryResolveInfo(const DownloadItem& item) {
    m_resolution.retryResolveInfo(item);
}

// Downloading

RunTarget ContentView::runTarget() const {
    return {{eventFolder(), m_downloadMode},
            m_outputFolder,
            m_tagsLoudness ? MeasureLoudness::yes : MeasureLoudness::no};
}

bool ContentView::isDownloadable(const DownloadItem& row) {
    return isStartable(row) || needsReading(row);
}

void ContentView::startDownloads() {
    QList<QUuid> itemIDs;
    for (const DownloadItem& row : m_queue.rows())
        itemIDs.append(row.id);
    startDownloadRun(itemIDs);
}

void ContentView::startDownloadRun(const QList<QUuid>& itemIDs) {
    if (!toolStates().isEmpty() && !coreToolsReady()) {
        setActiveSummary(setupDetailText());
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
        m_downloads.startDownloadRun(known, runTarget());
}

/// Of a Spotify link that was not listed nothing can be searched for, and what a link stands for
/// whose reading was stopped is not known: it is read again, and what it turns out to be is
/// downloaded then.
void ContentView::readWhatNeedsReading(const QList<QUuid>& itemIDs) {
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

void ContentView::startWhatWasRead(const QUuid& id, const QList<QUuid>& newRows) {
    if (!m_startWhenRead.remove(id))
        return;
    m_waitingRows += newRows;
    startWaitingRows();
}

/// The user has asked for them already: they are not refused for want of a slot.
void ContentView::startWaitingRows() {
    if (m_waitingRows.isEmpty() || m_downloads.freeSlots() < 1)
        return;
    m_downloads.startDownloadRun(std::exchange(m_waitingRows, {}), runTarget());
}

bool ContentView::stopQueueItems(const QSet<QUuid>& ids) {
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
    m_downloads.stop(stopped);
    setActiveSummary(QStringLiteral("Stopped %1 song").arg(stopped.size()) +
                     pluralSuffix(stopped.size()));
    return true;
}

void ContentView::stopAll() {
    QSet<QUuid> ids;
    for (const DownloadItem& row : m_queue.rows())
        ids.insert(row.id);
    stopQueueItems(ids);
}

void ContentView::appendRunLog(const QString& text) {
    m_downloads.appendRunLog(text);
}

// Files

void ContentView::revealOutput(const DownloadItem& item) {
    const QFileInfo output(item.outputPath);
    if (item.outputPath.isEmpty())
        openFolder(eventFolder());
    else if (!output.exists() || output.isDir())
        openFolder(item.outputPath);
    else if (m_setup.showFile)
        m_setup.showFile(item.outputPath);
}

/// What comes next is another event.
void ContentView::forgetNotesOfEmptyQueue() {
    if (m_queue.size() > 0)
        return;
    m_readingNotes.clear();
    m_unreadLines.clear();
}

EventAccount ContentView::eventAccount() const {
    return accountOf(m_eventName, m_queue.rows(), m_readingNotes, m_unreadLines);
}

PlaylistSaving ContentView::savePlaylist() {
    PlaylistSaving saving = reelcrate::savePlaylist(m_queue.rows(), eventFolder());
    setActiveSummary(playlistSummary(saving));
    return saving;
}

void ContentView::openFolder(const QString& folder) {
    QDir().mkpath(folder);
    if (m_setup.openFolder)
        m_setup.openFolder(folder);
}

void ContentView::scanForUpdate() {
    m_update.scanForUpdate();
}

void ContentView::crawlQueueProgress(const QUuid& itemID, double target, double duration) {
    m_downloads.crawls().crawlQueueProgress(itemID, target, duration);
}

}  // namespace reelcrate
