#include "ui/queue/queue_outline.h"

#include "ui/window/accessible_button.h"

#include <QAccessibleObject>
#include <QQuickWindow>

#include <memory>

namespace reelcrate {

namespace {

/// A row, with or without a card.
class AccessibleRow : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    AccessibleRow(QueueOutline& outline, const QUuid& row) : m_outline(outline), m_row(row) {}

    const QUuid& row() const { return m_row; }
    bool isValid() const override { return m_outline.indexOf(m_row) >= 0; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return m_outline.window(); }
    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(&m_outline);
    }
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}

    QRect rect() const override {
        const QQuickItem* card = m_outline.cardOf(m_row);
        return card ? screenRect(*card, card->boundingRect()) : QRect();
    }

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name)
            return m_outline.data(m_row, QueueListModel::AccessibleName).toString();
        if (kind == QAccessible::Description)
            return m_outline.data(m_row, QueueListModel::AccessibleDescription).toString();
        return {};
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        const WindowState& window = *m_outline.state();
        state.focusable = true;
        state.selectable = true;
        state.multiSelectable = true;
        state.extSelectable = true;
        state.selected = m_outline.data(m_row, QueueListModel::IsSelected).toBool();
        state.focused = m_outline.hasKeyboard() && window.focusedItemID() == idText(m_row);
        state.offscreen = !m_outline.cardOf(m_row);
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    /// To press a row is to press its button.
    QStringList actionNames() const override {
        QStringList names{setFocusAction(), toggleAction()};
        if (m_outline.data(m_row, QueueListModel::ActionEnabled).toBool())
            names.prepend(pressAction());
        return names;
    }

    QString localizedActionName(const QString& name) const override {
        return name == pressAction() ? localizedActionDescription(name)
                                     : QAccessibleActionInterface::localizedActionName(name);
    }

    QString localizedActionDescription(const QString& name) const override {
        if (name == pressAction())
            return m_outline.data(m_row, QueueListModel::ActionHelp).toString();
        return QAccessibleActionInterface::localizedActionDescription(name);
    }

    void doAction(const QString& name) override {
        WindowState& window = *m_outline.state();
        if (name == pressAction()) {
            window.actOnRow(idText(m_row));
        } else if (name == toggleAction()) {
            window.clickRow(idText(m_row), Qt::ControlModifier);
        } else if (name == setFocusAction()) {
            window.clickRow(idText(m_row), Qt::NoModifier);
            Q_EMIT window.focusMoved();
        }
    }

    QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

private:
    QueueOutline& m_outline;
    const QUuid m_row;
};

class AccessibleQueue : public QAccessibleObject {
public:
    explicit AccessibleQueue(QueueOutline& outline)
        : QAccessibleObject(&outline), m_outline(outline) {}

    QAccessibleInterface* parent() const override { return accessibleAround(m_outline); }
    int childCount() const override { return m_outline.rowCount(); }
    QAccessibleInterface* child(int index) const override { return m_outline.accessibleRow(index); }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* row = dynamic_cast<const AccessibleRow*>(child);
        return row ? m_outline.indexOf(row->row()) : -1;
    }
    QWindow* window() const override { return m_outline.window(); }
    QRect rect() const override { return screenRect(m_outline, m_outline.boundingRect()); }
    QAccessible::Role role() const override { return QAccessible::List; }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? QStringLiteral("Queue") : QString();
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.focusable = true;
        state.focused = m_outline.hasKeyboard() && m_outline.state()->focusedIndex() < 0;
        state.multiSelectable = true;
        return state;
    }
    QAccessibleInterface* focusChild() const override {
        return m_outline.hasKeyboard() ? child(m_outline.state()->focusedIndex()) : nullptr;
    }

private:
    QueueOutline& m_outline;
};

void tell(QAccessibleInterface* about, QAccessible::Event type) {
    QAccessibleEvent event(about, type);
    QAccessible::updateAccessibility(&event);
}

}  // namespace

QueueOutline::QueueOutline(QQuickItem* parent) : QQuickItem(parent) {}

QueueOutline::~QueueOutline() {
    for (const QAccessible::Id id : std::as_const(m_known))
        QAccessible::deleteAccessibleInterface(id);
}

void QueueOutline::setState(WindowState* state) {
    m_state = state;
    const QueueListModel* rows = state->rows();
    connect(rows, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) { tellInserted(first, last); });
    connect(rows, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) { forget(first, last); });
    connect(rows, &QAbstractItemModel::modelAboutToBeReset, this, &QueueOutline::forgetAll);
    connect(rows, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
                tellName(first.row(), last.row(), roles);
            });
    // Later, so that it sees the outcome of a whole gesture.
    connect(state, &WindowState::controlsChanged, this, &QueueOutline::tellFocus);
    connect(state, &WindowState::focusMoved, this, &QueueOutline::tellFocus, Qt::QueuedConnection);
    Q_EMIT stateChanged();
}

void QueueOutline::setHasKeyboard(bool hasKeyboard) {
    if (m_hasKeyboard == hasKeyboard)
        return;
    m_hasKeyboard = hasKeyboard;
    m_toldFocus.clear();
    Q_EMIT hasKeyboardChanged();
    tellFocus();
}

int QueueOutline::rowCount() const {
    return m_state->rows()->rowCount();
}

QUuid QueueOutline::rowAt(int index) const {
    return m_state->rows()->idAt(index);
}

int QueueOutline::indexOf(const QUuid& row) const {
    return m_state->rows()->firstOf({idText(row)});
}

QVariant QueueOutline::data(const QUuid& row, int role) const {
    const QueueListModel& rows = *m_state->rows();
    return rows.data(rows.index(indexOf(row)), role);
}

QQuickItem* QueueOutline::cardOf(const QUuid& row) const {
    QQuickItem* card = nullptr;
    if (m_view)
        QMetaObject::invokeMethod(m_view, "itemAtIndex", Q_RETURN_ARG(QQuickItem*, card),
                                  Q_ARG(int, indexOf(row)));
    return card;
}

QAccessibleInterface* QueueOutline::accessibleRow(int index) {
    if (index < 0 || index >= rowCount())
        return nullptr;
    const QUuid row = rowAt(index);
    const auto known = m_known.constFind(row);
    if (known != m_known.constEnd())
        return QAccessible::accessibleInterface(*known);
    auto made = std::make_unique<AccessibleRow>(*this, row);
    // The toolkit's register owns it from here on, which the analyzer cannot know.
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks)
    const QAccessible::Id id = QAccessible::registerAccessibleInterface(made.release());
    m_known.insert(row, id);
    return QAccessible::accessibleInterface(id);
}

void QueueOutline::tellInserted(int first, int last) {
    // A client that has not asked yet will see them when it asks.
    if (!QAccessible::isActive() || m_known.isEmpty())
        return;
    for (int i = first; i <= last; ++i)
        tell(accessibleRow(i), QAccessible::ObjectCreated);
}

void QueueOutline::forget(const QUuid& row) {
    const auto known = m_known.constFind(row);
    if (known == m_known.constEnd())
        return;
    tell(QAccessible::accessibleInterface(*known), QAccessible::ObjectDestroyed);
    QAccessible::deleteAccessibleInterface(*known);
    m_known.erase(known);
}

void QueueOutline::forget(int first, int last) {
    for (int i = first; i <= last; ++i)
        forget(rowAt(i));
}

void QueueOutline::forgetAll() {
    if (rowCount() > 0)
        forget(0, rowCount() - 1);
}

void QueueOutline::tellName(int first, int last, const QList<int>& roles) {
    if (roles.isEmpty()) {  // another row is in the place
        const QList<QUuid> known = m_known.keys();
        for (const QUuid& row : known) {
            if (indexOf(row) < 0)
                forget(row);
        }
        tellInserted(first, last);
        return;
    }
    const bool named = roles.contains(QueueListModel::AccessibleName);
    // A percentage would be read out several times a second.
    const bool onlyProgress = roles.contains(QueueListModel::Progress) && roles.size() <= 3;
    if (!QAccessible::isActive() || !named || onlyProgress)
        return;
    for (int i = first; i <= last; ++i) {
        if (m_known.contains(rowAt(i)))
            tell(accessibleRow(i), QAccessible::NameChanged);
    }
}

void QueueOutline::tellFocus() {
    if (!m_hasKeyboard || !QAccessible::isActive())
        return;
    const QString focused = m_state->focusedItemID();
    if (focused.isEmpty() || focused == m_toldFocus)
        return;
    m_toldFocus = focused;
    QAccessibleInterface* row = accessibleRow(m_state->focusedIndex());
    tell(row, QAccessible::Focus);
    tell(row, QAccessible::SelectionAdd);
}

QAccessibleInterface* accessibleQueue(const QString& className, QObject* object) {
    if (className != QStringLiteral("reelcrate::QueueOutline"))
        return nullptr;
    return new AccessibleQueue(*static_cast<QueueOutline*>(object));
}

}  // namespace reelcrate
