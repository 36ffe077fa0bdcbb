#include "ui/window/window_state.h"

#include "app/controller.h"
#include "ui/window/dropped_text.h"

#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>

#include <algorithm>
#include <cmath>

namespace reelcrate {

namespace {

/// What brings the row into a queue again.
QString linkOf(const DownloadItem& row) {
    if (row.source != SourceType::song)
        return row.url;
    return row.duration.isEmpty() ? row.title
                                  : QStringLiteral("%1 (%2)").arg(row.title, row.duration);
}

}  // namespace

WindowState::WindowState(Controller& controller, const QString& desktopFolder, QObject* parent)
    : QObject(parent),
      m_controller(controller),
      m_desktopFolder(desktopFolder),
      m_rows(controller),
      m_toolLog([&controller] { return controller.tools().toolLog(); }),
      m_runLog([&controller] { return controller.runs().runLog().text(); }),
      m_runProgress(controller),
      m_controls(WindowControls::of(controller)) {
    m_refresh.setSingleShot(true);
    connect(&m_refresh, &QTimer::timeout, this, &WindowState::refreshControls);
    const auto refreshSoon = qOverload<>(&QTimer::start);
    connect(&controller, &Controller::toolsChanged, &m_refresh, refreshSoon);
    connect(&controller.update(), &UpdateScan::updateChanged, &m_refresh, refreshSoon);
    connect(&controller.editor(), &QueueEditor::selectionChanged, &m_refresh, refreshSoon);
    connect(&controller, &Controller::activeDownloadRunsChanged, &m_refresh, refreshSoon);
    followQueue();

    connect(&controller, &Controller::activeSummaryChanged, this, &WindowState::summaryChanged);
    connect(&controller, &Controller::eventNameChanged, this, &WindowState::eventNameChanged);
    connect(&controller, &Controller::pastedLinksChanged, this, &WindowState::pastedLinksChanged);
    connect(&controller, &Controller::outputFolderChanged, this, &WindowState::outputFolderChanged);
    connect(&controller, &Controller::downloadModeChanged, this, &WindowState::modeChanged);
    connect(&controller.tools(), &ToolReadiness::toolLogAppended, &m_toolLog, &LogTail::append);
    connect(&controller.tools(), &ToolReadiness::toolLogCleared, &m_toolLog, &LogTail::clear);
    connect(&controller.runs(), &DownloadRuns::runLogAppended, &m_runLog, &LogTail::append);
    connect(&controller.runs(), &DownloadRuns::runLogCleared, &m_runLog, &LogTail::clear);
    connect(&m_runProgress, &RunProgress::changed, this, &WindowState::refreshTitle);
}

void WindowState::followQueue() {
    const auto refreshSoon = qOverload<>(&QTimer::start);
    const QueueStore& queue = m_controller.queue();
    connect(&queue, &QueueStore::rowsInserted, &m_refresh, refreshSoon);
    connect(&queue, &QueueStore::rowReplaced, &m_refresh, refreshSoon);
    connect(&queue, &QueueStore::rowsRemoved, &m_refresh, refreshSoon);
    connect(&queue, &QueueStore::rowChanged, this, [this](qsizetype, QueueStore::Fields fields) {
        if (fields & (QueueStore::Status | QueueStore::IsResolvingInfo))
            m_refresh.start();
    });
}

void WindowState::refreshControls() {
    const WindowControls controls = WindowControls::of(m_controller);
    if (controls == m_controls)
        return;
    m_controls = controls;
    Q_EMIT controlsChanged();
}

void WindowState::refreshTitle() {
    const auto fraction = m_runProgress.fraction();
    const int percent = fraction ? static_cast<int>(std::floor(*fraction * 100)) : -1;
    if (percent == m_shownPercent)
        return;
    m_shownPercent = percent;
    Q_EMIT titleChanged();
}

QString WindowState::summary() const {
    return m_controller.activeSummary();
}

QString WindowState::title() const {
    const QString name = QStringLiteral("Reelcrate");
    return m_shownPercent < 0 ? name : QStringLiteral("%1% – %2").arg(m_shownPercent).arg(name);
}

QString WindowState::eventName() const {
    return m_controller.eventName();
}

void WindowState::setEventName(const QString& name) {
    m_controller.setEventName(name);
}

QString WindowState::pastedLinks() const {
    return m_controller.pastedLinks();
}

void WindowState::setPastedLinks(const QString& text) {
    m_controller.setPastedLinks(text);
}

QString WindowState::outputFolder() const {
    return m_controller.outputFolder();
}

QStringList WindowState::modes() {
    QStringList labels;
    for (const DownloadMode mode : allDownloadModes)
        labels.append(rawValue(mode));
    return labels;
}

int WindowState::mode() const {
    return static_cast<int>(m_controller.downloadMode());
}

void WindowState::setMode(int mode) {
    m_controller.setDownloadMode(allDownloadModes.at(static_cast<std::size_t>(mode)));
}

QString WindowState::version() {
    return QStringLiteral("Version ") + Controller::appVersion;
}

QUrl WindowState::folderPickerStart() const {
    return m_desktopFolder.isEmpty() ? QUrl() : QUrl::fromLocalFile(m_desktopFolder);
}

void WindowState::addSongsFromFieldOrClipboard() {
    m_controller.addSongsFromFieldOrClipboard();
}

void WindowState::addDropped(const QList<QUrl>& urls, const QString& text) {
    const DroppedText dropped = droppedText(urls, text);
    if (dropped.links)
        m_controller.addSongs(*dropped.links);
    for (const QString& list : dropped.lists)
        m_controller.addSongListFile(list);
    if (dropped.linesLeftOut > 0)
        m_controller.noteList(leftOutRemark(dropped.linesLeftOut));
}

bool WindowState::takesDrop(const QList<QUrl>& urls, const QString& text) {
    return reelcrate::takesDrop(urls, text);
}

void WindowState::pasteIntoField() {
    m_controller.setPastedLinks(m_controller.clipboardText());
}

void WindowState::openOutput() {
    m_controller.openFolder(m_controller.outputFolder());
}

void WindowState::clearQueue() {
    m_controller.clearQueue();
}

void WindowState::downloadAll() {
    m_controller.startDownloads();
}

void WindowState::stopAll() {
    m_controller.stopAll();
}

void WindowState::setUp() {
    if (m_controller.tools().isCheckingTools() || m_controller.installer().isInstallingTools())
        return;
    if (m_controller.tools().missingInstallableTools().isEmpty())
        m_controller.tools().checkTools();
    else
        m_controller.installer().installMissingTools();
}

void WindowState::scanForUpdate() {
    m_controller.update().scanForUpdate();
}

void WindowState::chooseFolder(const QUrl& folder) {
    if (folder.isLocalFile())
        m_controller.setOutputFolder(folder.toLocalFile());
}

bool WindowState::isOfTheDesktop(const QObject* dialog) {
    // The class has no public header, and nothing else tells.
    const QObjectList& parts = dialog->children();
    return std::none_of(parts.begin(), parts.end(), [](const QObject* part) {
        return part->inherits("QQuickPlatformFolderDialog");
    });
}

QUrl WindowState::parentFolder(const QUrl& folder) {
    return QUrl::fromLocalFile(QFileInfo(folder.toLocalFile()).path());
}

QString WindowState::folderPath(const QUrl& folder) {
    return folder.toLocalFile();
}

QUrl WindowState::makeFolder(const QUrl& parent, const QString& name) {
    const QString path = parent.toLocalFile() + u'/' + name.trimmed();
    return QDir().mkpath(path) ? QUrl::fromLocalFile(path) : QUrl();
}

void WindowState::clickQueueArea() {
    m_controller.editor().clickQueueArea();
}

void WindowState::clickRow(const QString& itemID, int modifiers) {
    KeyModifiers keys;
    keys.setFlag(KeyModifier::shift, (modifiers & Qt::ShiftModifier) != 0);
    keys.setFlag(KeyModifier::command, (modifiers & Qt::ControlModifier) != 0);
    m_controller.editor().updateQueueSelection(QUuid(itemID), keys);
}

void WindowState::actOnRow(const QString& itemID) {
    const DownloadItem* row = m_controller.queue().find(QUuid(itemID));
    if (!row)
        return;
    const DownloadItem item = *row;
    const RowAction action =
        queueRowAction(item, ResolutionDriver::shouldRetryInfoForFailedItem(item));
    if (!m_rows.isActionEnabled(action))
        return;
    switch (action) {
        case RowAction::busy:
            break;
        case RowAction::reveal:
            m_controller.revealOutput(item);
            break;
        case RowAction::readAgain:
            m_controller.resolution().retryResolveInfo(item);
            break;
        case RowAction::tryAgain:
        case RowAction::download:
            m_controller.startDownloadRun({item.id});
            break;
    }
}

bool WindowState::takesSelection(const QString& itemID) const {
    return m_controller.editor().selection().ids.contains(QUuid(itemID)) &&
           m_controller.selectedVisibleQueueItemCount() > 1;
}

QSet<QUuid> WindowState::rowsMeant(const QString& itemID, bool allSelected) const {
    return allSelected ? m_controller.editor().selection().ids : QSet{QUuid(itemID)};
}

void WindowState::deleteFromRow(const QString& itemID, bool allSelected) {
    m_controller.editor().deleteQueueItems(rowsMeant(itemID, allSelected));
}

bool WindowState::canStop(const QString& itemID, bool allSelected) const {
    return m_controller.canStop(rowsMeant(itemID, allSelected));
}

void WindowState::stopFromRow(const QString& itemID, bool allSelected) {
    m_controller.stopQueueItems(rowsMeant(itemID, allSelected));
}

bool WindowState::canPasteSongList() const {
    return m_controller.canAdd() && !m_controller.clipboardText().trimmed().isEmpty();
}

void WindowState::pasteSongList() {
    m_controller.addSongListFromClipboard();
}

bool WindowState::canSavePlaylist() const {
    return m_controller.queue().countWithStatus(QueueStatus::complete) > 0;
}

void WindowState::savePlaylist() {
    m_controller.savePlaylist();
}

bool WindowState::canTagLoudness() const {
    return m_controller.downloadMode() == DownloadMode::audio;
}

bool WindowState::tagsLoudness() const {
    return m_controller.tagsLoudness();
}

void WindowState::setTagsLoudness(bool tags) {
    m_controller.setTagsLoudness(tags);
}

int WindowState::focusedIndex() const {
    const auto focus = m_controller.editor().selection().focus;
    return focus ? static_cast<int>(m_controller.queue().indexOf(*focus)) : -1;
}

QString WindowState::focusedItemID() const {
    const int index = focusedIndex();
    return index < 0 ? QString() : idText(m_controller.queue().rows().at(index).id);
}

void WindowState::actOnFocusedRow() {
    QList<DownloadItem> selected;
    for (const DownloadItem& row : m_controller.queue().rows()) {
        if (m_controller.editor().selection().ids.contains(row.id))
            selected.append(row);
    }
    if (selected.size() == 1)
        actOnRow(idText(selected.first().id));
    if (selected.size() < 2 || !m_rows.isActionEnabled(RowAction::download))
        return;
    QList<QUuid> ready;
    for (const DownloadItem& row : selected) {
        if (row.status == QueueStatus::waiting && Controller::isDownloadable(row))
            ready.append(row.id);
    }
    m_controller.startDownloadRun(ready);
}

bool WindowState::pressQueueKey(int key, int modifiers, int rowsInSight) {
    const bool extending = (modifiers & Qt::ShiftModifier) != 0;
    const int all = static_cast<int>(m_controller.queue().size());
    const int page = std::max(1, rowsInSight - 1);
    int step = 0;
    switch (key) {
        case Qt::Key_PageUp:
            step = -page;
            break;
        case Qt::Key_PageDown:
            step = page;
            break;
        case Qt::Key_Home:
            step = -all;
            break;
        case Qt::Key_End:
            step = all;
            break;
        case Qt::Key_Space:
            clickRow(focusedItemID(), Qt::ControlModifier);
            return true;
        default:
            return false;
    }
    if (m_controller.editor().moveQueueSelection(step, extending))
        Q_EMIT focusMoved();
    return true;
}

QString WindowState::errorOf(const QString& itemID) const {
    const DownloadItem* row = m_controller.queue().find(QUuid(itemID));
    return row ? queueRowError(*row) : QString();
}

QString WindowState::linksWhere(const std::function<bool(const DownloadItem&)>& isMeant) const {
    QStringList links;
    for (const DownloadItem& row : m_controller.queue().rows()) {
        if (isMeant(row))
            links.append(linkOf(row));
    }
    links.removeDuplicates();  // several songs of one page
    return links.join(u'\n');
}

bool WindowState::isSong(const QString& itemID) const {
    const DownloadItem* row = m_controller.queue().find(QUuid(itemID));
    return row && row->source == SourceType::song;
}

QString WindowState::linksOf(const QString& itemID, bool allSelected) const {
    const QSet<QUuid> ids = rowsMeant(itemID, allSelected);
    return linksWhere([&ids](const DownloadItem& row) { return ids.contains(row.id); });
}

QString WindowState::linksInNeed() const {
    return linksWhere([](const DownloadItem& row) { return row.status == QueueStatus::failed; });
}

void WindowState::copyText(const QString& text) const {
    QGuiApplication::clipboard()->setText(text);
}

int WindowState::unfinishedCount() const {
    return static_cast<int>(m_controller.queue().countWithStatus(QueueStatus::running) +
                            m_controller.queue().countWithStatus(QueueStatus::queued));
}

QString WindowState::quitQuestion() const {
    const int count = unfinishedCount();
    return count == 1 ? QStringLiteral("1 song is unfinished.")
                      : QStringLiteral("%1 songs are unfinished.").arg(count);
}

}  // namespace reelcrate
