#pragma once

#include "queue/queue_editor.h"

#include <QObject>
#include <QPointer>

#include <optional>

class QKeyEvent;
class QQuickItem;
class QQuickWindow;

/// The keyboard of the window: whether a text is being edited there, and the queue's keys, which it
/// takes before the focused control sees them. Main thread.
namespace reelcrate {

class Controller;

/// Tells of the window's focused control. Until there is a window, nothing is edited.
class WindowTextEditing : public TextEditing {
public:
    void setWindow(QQuickWindow* window);
    bool isEditing() const override;
    void endEditing() override;

private:
    QPointer<QQuickWindow> m_window;
};

/// The key as the queue knows it; on this platform Control stands for command.
KeyEvent queueKey(const QKeyEvent& event);

/// The letter or mark of a shortcut on a keyboard that has no Latin letters, by the key's place;
/// absent for other keys, and for those that have one.
std::optional<Qt::Key> latinShortcutKey(const QKeyEvent& event);

/// Listens from its making to its end.
class KeyMonitor : public QObject {
    Q_OBJECT

public:
    KeyMonitor(Controller& controller, const TextEditing& textEditing, QQuickWindow& window);

    bool eventFilter(QObject* receiver, QEvent* event) override;

Q_SIGNALS:
    /// An arrow key moved the selection's focus.
    void focusMoved();
    /// Whether the user has last gone about by keyboard; a press of the pointer ends it.
    void keyboardLeads(bool leads);

private:
    bool handle(const QKeyEvent& event);
    bool sendAsLatin(const QKeyEvent& event);
    bool popupIsOpen() const;

    Controller& m_controller;
    const TextEditing& m_textEditing;
    QQuickWindow& m_window;
};

}  // namespace reelcrate
