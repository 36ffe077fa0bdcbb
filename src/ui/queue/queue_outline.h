#pragma once

#include "ui/window/window_state.h"

#include <QAccessible>
#include <QHash>
#include <QPointer>
#include <QQuickItem>
#include <QUuid>
#include <QtQml/qqmlregistration.h>

/// The queue as assistive technology meets it: a list of exactly the rows, in their order,
/// whichever of them have a card at the moment. Says what is added and removed, and which row the
/// keyboard's keys act on. Lies over the view of the rows and shows nothing. Main thread. What it
/// is given outlives it.
namespace reelcrate {

class QueueOutline : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(
        reelcrate::WindowState* state MEMBER m_state WRITE setState NOTIFY stateChanged REQUIRED)
    /// Whether the keyboard is at the rows.
    Q_PROPERTY(bool hasKeyboard MEMBER m_hasKeyboard WRITE setHasKeyboard NOTIFY hasKeyboardChanged)
    /// The view whose cards tell where the rows are.
    Q_PROPERTY(QQuickItem* view MEMBER m_view NOTIFY viewChanged)

public:
    explicit QueueOutline(QQuickItem* parent = nullptr);
    ~QueueOutline() override;
    Q_DISABLE_COPY_MOVE(QueueOutline)

    WindowState* state() const { return m_state; }
    void setState(WindowState* state);
    bool hasKeyboard() const { return m_hasKeyboard; }
    void setHasKeyboard(bool hasKeyboard);

    int rowCount() const;
    QUuid rowAt(int index) const;
    int indexOf(const QUuid& row) const;
    QVariant data(const QUuid& row, int role) const;
    /// Null while the row has none.
    QQuickItem* cardOf(const QUuid& row) const;
    QAccessibleInterface* accessibleRow(int index);

Q_SIGNALS:
    void stateChanged();
    void hasKeyboardChanged();
    void viewChanged();

private:
    void tellInserted(int first, int last);
    void forget(const QUuid& row);
    void forget(int first, int last);
    void forgetAll();
    void tellName(int first, int last, const QList<int>& roles);
    void tellFocus();

    WindowState* m_state = nullptr;
    QPointer<QQuickItem> m_view;
    bool m_hasKeyboard = false;
    QString m_toldFocus;
    QHash<QUuid, QAccessible::Id> m_known;  ///< the rows that have been asked for
};

/// For QAccessible::installFactory: the account of a QueueOutline, null for all else.
QAccessibleInterface* accessibleQueue(const QString& className, QObject* object);

}  // namespace reelcrate
