#include "desktop/motion_setting.h"

#include "desktop/service_call.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QMap>
#include <QStringList>
#include <QVariantMap>

namespace reelcrate {

namespace {

struct Setting {
    QString group;
    QString key;

    bool is(const QString& otherGroup, const QString& otherKey) const {
        return group == otherGroup && key == otherKey;
    }
};

Setting reducedMotion() {
    return {QStringLiteral("org.freedesktop.appearance"), QStringLiteral("reduced-motion")};
}

// What desktops had before there was a setting across desktops.
Setting enableAnimations() {
    return {QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("enable-animations")};
}

// Some portals wrap a value more than once.
QVariant unwrapped(QVariant value) {
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

}  // namespace

MotionSetting::MotionSetting(QDBusConnection bus, QObject* parent) : QObject(parent) {
    const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
    const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
    const QString settings = QStringLiteral("org.freedesktop.portal.Settings");
    // Before asking, so that no change falls between the answer and the listening.
    // From any sender: to follow who owns the portal's name, the bus would have to be asked first.
    bus.connect(QString(), path, settings, QStringLiteral("SettingChanged"), this,
                SLOT(takeChange(QDBusMessage)));
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, settings, QStringLiteral("ReadAll"));
    call << QStringList{reducedMotion().group, enableAnimations().group};
    callService(bus, call, this, [this](const QDBusMessage& answer) { takeAll(answer); });
}

void MotionSetting::takeAll(const QDBusMessage& answer) {
    if (answer.signature() != QStringLiteral("a{sa{sv}}"))
        return;
    const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(answer.arguments().constFirst());
    for (const Setting& setting : {reducedMotion(), enableAnimations()})
        take(setting.group, setting.key, groups.value(setting.group).value(setting.key));
}

void MotionSetting::takeChange(const QDBusMessage& signal) {
    if (signal.signature() != QStringLiteral("ssv"))
        return;
    const QVariantList arguments = signal.arguments();
    take(arguments.at(0).toString(), arguments.at(1).toString(), arguments.at(2));
}

void MotionSetting::take(const QString& group, const QString& key, const QVariant& value) {
    const bool before = reduceMotion();
    if (reducedMotion().is(group, key))
        m_isMotionReduced = unwrapped(value) == QVariant(1U);
    else if (enableAnimations().is(group, key))
        m_areAnimationsOff = unwrapped(value) == QVariant(false);
    if (reduceMotion() != before)
        Q_EMIT reduceMotionChanged();
}

}  // namespace reelcrate
