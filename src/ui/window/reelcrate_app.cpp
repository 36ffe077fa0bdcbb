#include "ui/window/reelcrate_app.h"

#include "base/duration_text.h"
#include "theme/tech_theme.h"
#include "ui/queue/queue_outline.h"
#include "ui/queue/thumbnail_provider.h"
#include "ui/window/accessible_button.h"
#include "ui/window/renderer.h"
#include "ui/window/window_sizing.h"

#include <QAccessible>
#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QScreen>

#include <algorithm>
#include <utility>

void qml_register_types_Reelcrate();
void qml_register_types_Reelcrate_Theme();

namespace reelcrate {

namespace {

/// The window is drawn in one typeface everywhere; where its files fail, the system's own shows.
void useTypeface() {
    for (const char* weight : {"Regular", "Medium", "SemiBold", "Bold", "ExtraBold"})
        QFontDatabase::addApplicationFont(
            QStringLiteral(":/reelcrate/fonts/Inter-%1.otf").arg(QLatin1String(weight)));
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(TechTheme::headline);
    QGuiApplication::setFont(font);
}

void registerTypes() {
    // A static library's registrations run only where they are named.
    qml_register_types_Reelcrate();
    qml_register_types_Reelcrate_Theme();
    chooseRenderer();
    QAccessible::installFactory(accessibleButton);
    QAccessible::installFactory(accessibleQueue);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    useTypeface();
}

TechTheme* theme(QQmlEngine& engine) {
    static const int type = qmlTypeId("Reelcrate.Theme", 1, 0, "TechTheme");
    return engine.singletonInstance<TechTheme*>(type);
}

}  // namespace

ReelcrateApp::ReelcrateApp(ProcessSupervisor& supervisor, ControllerSetup setup, FirstLinks links)
    : m_firstLinks(std::move(links)) {
    m_firstLinks.download = m_firstLinks.download && m_firstLinks.areWaiting();
    static const bool registered = (registerTypes(), true);
    Q_UNUSED(registered);
    const QString desktopFolder = setup.desktopFolder;
    m_controller = std::make_unique<Controller>(supervisor, completed(std::move(setup)));
    m_state = std::make_unique<WindowState>(*m_controller, desktopFolder);
    m_sizing.setSingleShot(true);
    connect(&m_sizing, &QTimer::timeout, this, &ReelcrateApp::sizeWindow);
    connect(m_state.get(), &WindowState::quitRequested, this, [this] { quit(); });
    connect(&m_state->runProgress(), &RunProgress::changed, this, &ReelcrateApp::showRunProgress);
    connect(&m_state->runProgress(), &RunProgress::finished, this, &ReelcrateApp::announceEnd);
    // Later, so that each sees the outcome of a whole operation and not its middle, and what is
    // said of a list is not hidden by what is said of the tools.
    connect(m_controller.get(), &Controller::toolsChanged, this, &ReelcrateApp::addFirstLinks,
            Qt::QueuedConnection);
    connect(m_state.get(), &WindowState::controlsChanged, this, &ReelcrateApp::downloadFirstLinks);
    connect(m_controller.get(), &Controller::activeSummaryChanged, this,
            &ReelcrateApp::downloadFirstLinks, Qt::QueuedConnection);
}

ReelcrateApp::~ReelcrateApp() {
    m_deleteKeyMonitor.reset();
    m_engine.reset();
}

ControllerSetup ReelcrateApp::completed(ControllerSetup setup) {
    if (!setup.clipboardText)
        setup.clipboardText = [] { return QGuiApplication::clipboard()->text(); };
    if (!setup.openFolder)
        setup.openFolder = [this](const QString& path) { m_fileManager.openFolder(path); };
    if (!setup.showFile)
        setup.showFile = [this](const QString& path) { m_fileManager.showFile(path); };
    if (!setup.textEditing)
        setup.textEditing = &m_textEditing;
    return setup;
}

bool ReelcrateApp::show() {
    m_engine = std::make_unique<QQmlApplicationEngine>();
    m_engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
    m_engine->addImageProvider(ThumbnailProvider::name(), new ThumbnailProvider);
    m_engine->setInitialProperties({{QStringLiteral("state"), QVariant::fromValue(m_state.get())}});
    followMotionSetting();
    m_engine->load(QUrl(QStringLiteral("qrc:/qt/qml/Reelcrate/MainWindow.qml")));
    if (m_engine->rootObjects().isEmpty())
        return false;
    m_window = qobject_cast<QQuickWindow*>(m_engine->rootObjects().constFirst());
    m_textEditing.setWindow(m_window);
    connect(m_window, &QWindow::visibleChanged, this, [this](bool visible) {
        if (visible)
            appear();
        else
            disappear();
    });
    // What the desktop puts around a window is known once the window is there.
    connect(m_window, &QQuickWindow::frameSwapped, this, &ReelcrateApp::ensureReadableWindowSize,
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    // What a window grows by after that is white until it is drawn anew.
    m_window->resize(fittingGeometry().size());
    m_window->show();
    return true;
}

void ReelcrateApp::appear() {
    if (m_controller->tools().toolStates().isEmpty())
        m_controller->tools().checkTools();
    ensureReadableWindowSize();
    installDeleteKeyMonitor();
}

void ReelcrateApp::disappear() {
    m_deleteKeyMonitor.reset();
}

void ReelcrateApp::addFirstLinks() {
    if (m_controller->tools().isCheckingTools() || !m_firstLinks.areWaiting())
        return;
    for (const QString& list : std::exchange(m_firstLinks.lists, {}))
        m_controller->addSongListFile(list);
    if (!m_firstLinks.texts.isEmpty())
        m_controller->addSongs(std::exchange(m_firstLinks.texts, {}).join(u'\n'));
    // Without a link or a song in the texts there is nothing to wait for.
    m_firstLinks.download = m_firstLinks.download && m_controller->queue().size() > 0;
}

void ReelcrateApp::downloadFirstLinks() {
    if (!m_firstLinks.download || m_firstLinks.areWaiting())
        return;
    const auto& rows = m_controller->queue().rows();
    // Who has stopped one of them does not want all to start by themselves.
    m_firstLinks.download = std::none_of(rows.begin(), rows.end(), [](const DownloadItem& row) {
        return row.reading == LinkReading::givenUp;
    });
    const bool read = std::none_of(rows.begin(), rows.end(),
                                   [](const DownloadItem& row) { return row.isResolvingInfo; });
    if (m_firstLinks.download && !rows.isEmpty() && read) {
        m_firstLinks.download = false;
        m_controller->startDownloads();
    }
}

void ReelcrateApp::ensureReadableWindowSize() {
    m_sizing.start();
}

void ReelcrateApp::sizeWindow() {
    if (!m_window->isVisible())
        return;
    const QRect fitting = fittingGeometry();
    if (fitting != m_window->geometry())
        m_window->setGeometry(fitting);
}

QRect ReelcrateApp::fittingGeometry() {
    const QScreen* screen = m_window->screen();
    const ReadableWindow readable =
        readableWindow(m_window->frameGeometry(),
                       screen ? std::optional<QRectF>(screen->availableGeometry()) : std::nullopt);
    // The least size is the content's; the rule for the window's own speaks of its frame.
    m_window->setMinimumSize(readable.minimumSize.toSize());
    return readable.frame ? readable.frame->toRect().marginsRemoved(m_window->frameMargins())
                          : m_window->geometry();
}

void ReelcrateApp::installDeleteKeyMonitor() {
    if (m_deleteKeyMonitor)
        return;
    m_deleteKeyMonitor = std::make_unique<KeyMonitor>(*m_controller, m_textEditing, *m_window);
    connect(m_deleteKeyMonitor.get(), &KeyMonitor::focusMoved, m_state.get(),
            &WindowState::focusMoved);
    TechTheme* shown = theme(*m_engine);
    connect(m_deleteKeyMonitor.get(), &KeyMonitor::keyboardLeads, shown,
            &TechTheme::setKeyboardLeads);
}

void ReelcrateApp::showRunProgress() {
    m_launcherProgress.setProgress(m_state->runProgress().fraction());
}

void ReelcrateApp::announceEnd(int complete, int needAttention) {
    // A screen reader says notifications; one who looks at the window sees it there.
    if (m_window && m_window->isActive() && !QAccessible::isActive())
        return;
    QString text = complete == 1 ? QStringLiteral("1 song is complete.")
                                 : QStringLiteral("%1 songs are complete.").arg(complete);
    if (needAttention > 0)
        text += needAttention == 1 ? QStringLiteral(" 1 needs attention.")
                                   : QStringLiteral(" %1 need attention.").arg(needAttention);
    if (const QString time = formatDuration(m_controller->eventAccount().playingSeconds);
        !time.isEmpty())
        text += QStringLiteral(" Playing time of the event: %1.").arg(time);
    m_notifications.show(QStringLiteral("Download run finished"), text);
}

void ReelcrateApp::followMotionSetting() {
    TechTheme* shown = theme(*m_engine);
    const auto follow = [this, shown] { shown->setAnimated(!m_motionSetting.reduceMotion()); };
    connect(&m_motionSetting, &MotionSetting::reduceMotionChanged, shown, follow);
    follow();
}

void ReelcrateApp::quit(int exitStatus) {
    if (m_window)
        m_window->hide();
    m_controller->shutDown();
    QCoreApplication::exit(exitStatus);
}

}  // namespace reelcrate
