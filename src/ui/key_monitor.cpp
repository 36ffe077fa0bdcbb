#include "ui/key_monitor.h"

#include "app/content_view.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>

namespace reelcrate {

namespace {

std::optional<quint16> codeOf(int key) {
    switch (key) {
        case Qt::Key_A:
            return KeyEvent::a;
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

KeyMonitor::KeyMonitor(ContentView& view, const TextEditing& textEditing, QQuickWindow& window)
    : m_view(view), m_textEditing(textEditing), m_window(window) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool KeyMonitor::popupIsOpen() const {
    return m_window.property("popupIsOpen").toBool();
}

bool KeyMonitor::eventFilter(QObject* receiver, QEvent* event) {
    // The application sees a key again for every item that it is offered to after the window.
    if (receiver != &m_window || event->type() != QEvent::KeyPress || popupIsOpen())
        return false;
    return handle(*static_cast<QKeyEvent*>(event));
}

bool KeyMonitor::handle(const QKeyEvent& event) {
    if (event.matches(QKeySequence::Paste) && !m_textEditing.isEditing()) {
        m_view.addSongsFromClipboard();
        return true;
    }
    const KeyEvent key = queueKey(event);
    if (!m_view.handleKeyDown(key))
        return false;
    if (key.code == KeyEvent::downArrow || key.code == KeyEvent::upArrow)
        Q_EMIT focusMoved();
    return true;
}

}  // namespace reelcrate
