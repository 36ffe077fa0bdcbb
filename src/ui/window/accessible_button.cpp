#include "ui/window/accessible_button.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlProperty>
#include <QQuickItem>
#include <QQuickWindow>

namespace reelcrate {

namespace {

class AccessibleButton : public QAccessibleObject, public QAccessibleActionInterface {
public:
    explicit AccessibleButton(QQuickItem& button) : QAccessibleObject(&button), m_button(button) {
        const auto tellDisabled = [&button] {
            QAccessible::State changed;
            changed.disabled = true;
            QAccessibleStateChangeEvent event(&button, changed);
            QAccessible::updateAccessibility(&event);
        };
        QObject::connect(&button, &QQuickItem::enabledChanged, &button, tellDisabled);
    }

    QAccessibleInterface* parent() const override { return accessibleAround(m_button); }
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    QWindow* window() const override { return m_button.window(); }
    QRect rect() const override { return screenRect(m_button, m_button.boundingRect()); }

    QAccessible::Role role() const override {
        if (m_button.inherits("QQuickMenuItem"))
            return QAccessible::MenuItem;
        return has("isChosen") ? QAccessible::RadioButton : QAccessible::Button;
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        state.disabled = !m_button.isEnabled();
        state.invisible = !m_button.isVisible();
        state.focusable = m_button.isEnabled();
        state.focused = m_button.hasActiveFocus();
        state.defaultButton = is("isDefault");
        state.checkable = has("isChosen");
        state.checked = is("isChosen");
        state.expandable = has("isOpen");
        state.expanded = is("isOpen");
        state.collapsed = state.expandable && !state.expanded;
        return state;
    }

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name)
            return attached(QStringLiteral("Accessible.name"));
        if (kind == QAccessible::Description)
            return attached(QStringLiteral("Accessible.description"));
        return {};
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    QStringList actionNames() const override {
        return m_button.isEnabled() ? QStringList{pressAction(), setFocusAction()} : QStringList();
    }

    void doAction(const QString& name) override {
        if (!m_button.isEnabled())
            return;
        if (name == pressAction())
            QMetaObject::invokeMethod(&m_button, "clicked");
        else if (name == setFocusAction())
            m_button.forceActiveFocus(Qt::OtherFocusReason);
    }

    QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

private:
    bool has(const char* property) const { return m_button.property(property).isValid(); }
    bool is(const char* property) const { return m_button.property(property).toBool(); }

    QString attached(const QString& property) const {
        return QQmlProperty::read(&m_button, property, qmlContext(&m_button)).toString();
    }

    QQuickItem& m_button;
};

}  // namespace

QAccessibleInterface* accessibleButton(const QString& className, QObject* object) {
    if (className != QStringLiteral("QQuickAbstractButton"))
        return nullptr;
    auto* button = qobject_cast<QQuickItem*>(object);
    return button ? new AccessibleButton(*button) : nullptr;
}

QAccessibleInterface* accessibleAround(const QQuickItem& item) {
    QQuickWindow* window = item.window();
    const QQuickItem* root = window ? window->contentItem() : nullptr;
    for (QQuickItem* around = item.parentItem(); around && around != root;
         around = around->parentItem()) {
        // What is not told of has no account.
        const QVariant ignored =
            QQmlProperty::read(around, QStringLiteral("Accessible.ignored"), qmlContext(around));
        if (ignored.toBool())
            continue;
        if (QAccessibleInterface* found = QAccessible::queryAccessibleInterface(around))
            return found;
    }
    return window ? QAccessible::queryAccessibleInterface(window) : nullptr;
}

QRect screenRect(const QQuickItem& item, const QRectF& part) {
    if (!item.window())
        return {};
    const QRectF inScene = item.mapRectToScene(part);
    return {item.window()->mapToGlobal(inScene.topLeft().toPoint()), inScene.size().toSize()};
}

}  // namespace reelcrate
