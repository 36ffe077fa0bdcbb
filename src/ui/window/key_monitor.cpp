#include "ui/window/key_monitor.h"

#include "app/controller.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <array>

namespace reelcrate {

namespace {

std::optional<quint16> codeOf(int key) {
    switch (key) {
        case Qt::Key_A:
            return KeyEvent::a;
        case Qt::Key_Period:
            return KeyEvent::period;
        case Qt::Key_Backspace:
            return KeyEvent::backspace;
        case Qt::Key_Delete:
            return KeyEvent::forwardDelete;
        case Qt::Key_Escape:
            return KeyEvent::escape;
        case Qt::Key_Down:
            return KeyEvent::downArrow;
        case Qt::Key_Up:
            return KeyEvent::upArrow;
        default:
            return std::nullopt;
    }
}

/// Whether the key is one of those by which the keyboard gets from place to place.
bool goesAbout(const QKeyEvent& event) {
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    constexpr std::array keys{Qt::Key_Tab,    Qt::Key_Backtab,  Qt::Key_Up,   Qt::Key_Down,
                              Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
    return std::find(keys.begin(), keys.end(), event.key()) != keys.end();
}

}  // namespace

void WindowTextEditing::setWindow(QQuickWindow* window) {
    m_window = window;
}

bool WindowTextEditing::isEditing() const {
    const QQuickItem* focused = m_window ? m_window->activeFocusItem() : nullptr;
    // The classes have no public headers. A text that can only be read has keys of its own too.
    return focused && (focused->inherits("QQuickTextInput") || focused->inherits("QQuickTextEdit"));
}

void WindowTextEditing::endEditing() {
    if (isEditing())
        m_window->activeFocusItem()->setFocus(false);
}

KeyEvent queueKey(const QKeyEvent& event) {
    KeyEvent key{codeOf(event.key()), {}};
    key.modifiers.setFlag(KeyModifier::shift, event.modifiers().testFlag(Qt::ShiftModifier));
    key.modifiers.setFlag(KeyModifier::command, event.modifiers().testFlag(Qt::ControlModifier));
    return key;
}

std::optional<Qt::Key> latinShortcutKey(const QKeyEvent& event) {
    constexpr int lastLatin = 0xff;
    const bool hasOtherLetter = event.key() > lastLatin && event.key() < Qt::Key_Escape;
    if (!event.modifiers().testFlag(Qt::ControlModifier) || !hasOtherLetter)
        return std::nullopt;
    // The numbers that both display systems of this platform have for places on the keyboard.
    switch (event.nativeScanCode()) {
        case 38:
            return Qt::Key_A;
        case 52:
            return Qt::Key_Z;
        case 53:
            return Qt::Key_X;
        case 54:
            return Qt::Key_C;
        case 55:
            return Qt::Key_V;
        case 60:
            return Qt::Key_Period;
        default:
            return std::nullopt;
    }
}

KeyMonitor::KeyMonitor(Controller& controller, const TextEditing& textEditing, QQuickWindow& window)
    : m_controller(controller), m_textEditing(textEditing), m_window(window) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool KeyMonitor::popupIsOpen() const {
    return m_window.property("popupIsOpen").toBool();
}

bool KeyMonitor::eventFilter(QObject* receiver, QEvent* event) {
    // The application sees a key again for every item that it is offered to after the window.
    if (receiver != &m_window)
        return false;
    if (event->type() == QEvent::MouseButtonPress)
        Q_EMIT keyboardLeads(false);
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (goesAbout(key))
        Q_EMIT keyboardLeads(true);
    return sendAsLatin(key) || (!popupIsOpen() && handle(key));
}

/// The toolkit knows its shortcuts by their Latin letters only.
bool KeyMonitor::sendAsLatin(const QKeyEvent& event) {
    const std::optional<Qt::Key> key = latinShortcutKey(event);
    if (!key)
        return false;
    QKeyEvent latin(event.type(), *key, event.modifiers(), event.text(), event.isAutoRepeat());
    QCoreApplication::sendEvent(&m_window, &latin);
    return true;
}

bool KeyMonitor::handle(const QKeyEvent& event) {
    if (event.matches(QKeySequence::Paste) && !m_textEditing.isEditing()) {
        m_controller.addSongsFromClipboard();
        return true;
    }
    const KeyEvent key = queueKey(event);
    if (!m_controller.editor().handleKeyDown(key))
        return false;
    if (key.code == KeyEvent::downArrow || key.code == KeyEvent::upArrow)
        Q_EMIT focusMoved();
    return true;
}

}  // namespace reelcrate
