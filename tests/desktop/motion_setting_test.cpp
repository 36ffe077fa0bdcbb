#include "desktop/motion_setting.h"

#include "private_bus.h"
#include "support/printers.h"

#include <QDBusMetaType>
#include <QMap>
#include <QSignalSpy>
#include <QVariantMap>

namespace reelcrate {
namespace {

using Groups = QMap<QString, QVariantMap>;

const QString servicePath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString reducedMotion = QStringLiteral("reduced-motion");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString enableAnimations = QStringLiteral("enable-animations");

QVariant nested(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(value))));
}

class StandInPortal : public StandIn {
public:
    StandInPortal(const QDBusConnection& bus, const Groups& groups)
        : StandIn(bus, QStringLiteral("org.freedesktop.portal.Desktop"), servicePath,
                  [groups](const QDBusMessage& call) {
                      return call.createReply(QVariant::fromValue(groups));
                  }) {
        qDBusRegisterMetaType<Groups>();
    }
};

class MotionSettingTest : public BusTest {
protected:
    void change(const QString& group, const QString& key, const QVariant& value) {
        QDBusMessage signal = QDBusMessage::createSignal(
            servicePath, QStringLiteral("org.freedesktop.portal.Settings"),
            QStringLiteral("SettingChanged"));
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        EXPECT_TRUE(desktop.send(signal));
        settle();
    }
};

TEST_F(MotionSettingTest, IsReducedWhenEitherSettingSaysSo) {
    const struct {
        const char* what;
        Groups groups;
        bool isReduced;
    } cases[] = {
        {"nothing", {}, false},
        {"no preference, no animations",
         {{appearance, {{reducedMotion, 0U}}}, {gnome, {{enableAnimations, false}}}},
         true},
        {"nested", {{appearance, {{reducedMotion, nested(1U)}}}}, true},
    };
    for (const auto& [what, groups, isReduced] : cases) {
        const StandInPortal portal(desktop, groups);
        const MotionSetting setting(client);
        const QSignalSpy changes(&setting, &MotionSetting::reduceMotionChanged);
        EXPECT_FALSE(setting.reduceMotion()) << what;
        EXPECT_EQ(portal.arguments(1, QStringLiteral("ReadAll")).value(0).toStringList(),
                  QStringList({appearance, gnome}));
        settle();
        EXPECT_EQ(setting.reduceMotion(), isReduced) << what;
        EXPECT_EQ(changes.count(), isReduced ? 1 : 0) << what;
    }
}

TEST_F(MotionSettingTest, FollowsChangesAndTellsOnlyOfThose) {
    const StandInPortal portal(desktop, {{appearance, {{reducedMotion, 1U}}}});
    const MotionSetting setting(client);
    const QSignalSpy changes(&setting, &MotionSetting::reduceMotionChanged);
    portal.arguments(1, QStringLiteral("ReadAll"));
    const struct {
        QString group;
        QString key;
        QVariant value;
        bool isReduced;
        int changes;
    } steps[] = {
        {appearance, reducedMotion, 1U, true, 1},
        {gnome, enableAnimations, false, true, 1},
        {appearance, reducedMotion, 0U, true, 1},
        {appearance, enableAnimations, true, true, 1},
        {gnome, enableAnimations, true, false, 2},
        {appearance, QStringLiteral("color-scheme"), 1U, false, 2},
        {appearance, reducedMotion, nested(1U), true, 3},
    };
    for (const auto& step : steps) {
        change(step.group, step.key, step.value);
        EXPECT_EQ(setting.reduceMotion(), step.isReduced);
        EXPECT_EQ(changes.count(), step.changes);
    }
}

TEST_F(MotionSettingTest, IsNotReducedWithoutAPortalOrABus) {
    const MotionSetting withoutPortal(client);
    const MotionSetting withoutBus(absentBus());
    settle();
    EXPECT_FALSE(withoutPortal.reduceMotion());
    EXPECT_FALSE(withoutBus.reduceMotion());
}

}  // namespace
}  // namespace reelcrate
