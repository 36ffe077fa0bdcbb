#pragma once

#include "app/controller.h"
#include "desktop/file_manager.h"
#include "desktop/launcher_progress.h"
#include "desktop/motion_setting.h"
#include "desktop/notifications.h"
#include "ui/window/key_monitor.h"
#include "ui/window/window_state.h"

#include <QObject>
#include <QQmlApplicationEngine>
#include <QStringList>

#include <memory>

class QQuickWindow;

/// The program with its window: the controller, what the window shows of it, and the desktop around
/// both. Needs a QGuiApplication. Main thread.
namespace reelcrate {

/// Links and songs that are there from the start.
struct FirstLinks {
    QStringList texts;       ///< to be added once the tools have been checked
    QStringList lists = {};  ///< files that name songs; likewise
    bool download = false;   ///< once they have been read

    bool areWaiting() const { return !texts.isEmpty() || !lists.isEmpty(); }
};

class ReelcrateApp : public QObject {
    Q_OBJECT

public:
    /// What `setup` leaves empty of the clipboard, the file manager and the text editing is the
    /// desktop's and the window's own.
    ReelcrateApp(ProcessSupervisor& supervisor, ControllerSetup setup, FirstLinks links = {});
    ~ReelcrateApp() override;

    Controller& controller() { return *m_controller; }

    /// Shows the window. False when it could not be made; the reason is on standard error.
    bool show();
    QQuickWindow* window() const { return m_window; }
    WindowState& state() { return *m_state; }

    /// Sizes the window to its screen in the event loop's next turn.
    void ensureReadableWindowSize();
    /// Does nothing when one is installed.
    void installDeleteKeyMonitor();
    bool hasDeleteKeyMonitor() const { return m_deleteKeyMonitor != nullptr; }

    /// Ends all work and the program, with this status.
    void quit(int exitStatus = 0);

private:
    ControllerSetup completed(ControllerSetup setup);
    void appear();
    void disappear();
    void addFirstLinks();
    void downloadFirstLinks();
    void sizeWindow();
    /// Of the window on its screen, inside the frame; sets its least size.
    QRect fittingGeometry();
    void showRunProgress();
    void announceEnd(int complete, int needAttention);
    void followMotionSetting();

    FirstLinks m_firstLinks;
    WindowTextEditing m_textEditing;
    FileManager m_fileManager;
    Notifications m_notifications;
    LauncherProgress m_launcherProgress;
    MotionSetting m_motionSetting;
    QTimer m_sizing;
    std::unique_ptr<Controller> m_controller;
    std::unique_ptr<WindowState> m_state;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QQuickWindow* m_window = nullptr;
    std::unique_ptr<KeyMonitor> m_deleteKeyMonitor;
};

}  // namespace reelcrate
