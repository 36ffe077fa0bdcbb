#pragma once

#include <QAccessibleInterface>

class QQuickItem;

/// The window's buttons as assistive technology meets them: what they are, whether they can be
/// pressed, and the press itself. The toolkit's own account of them, as of Qt 6.4, knows neither of
/// a press nor of a disabled state. Main thread.
namespace reelcrate {

/// For QAccessible::installFactory: an account of a button, null for all else.
QAccessibleInterface* accessibleButton(const QString& className, QObject* object);

/// The account of the nearest thing around the item that has one; that of the window at last.
QAccessibleInterface* accessibleAround(const QQuickItem& item);

/// In pixels of the screen.
QRect screenRect(const QQuickItem& item, const QRectF& part);

}  // namespace reelcrate
