#include "desktop/notifications.h"

#include "private_bus.h"
#include "support/printers.h"

#include <QDBusArgument>
#include <QVariantMap>

namespace reelcrate {
namespace {

using NotificationsTest = BusTest;
using Shown = std::pair<QString, quint32>;

class StandInNotifications : public StandIn {
public:
    StandInNotifications(const QDBusConnection& bus, Answer answer)
        : StandIn(bus, QStringLiteral("org.freedesktop.Notifications"),
                  QStringLiteral("/org/freedesktop/Notifications"), std::move(answer)) {}

    /// Of the last of so many: its title and which one it replaces.
    Shown shown(size_t count) const {
        const QVariantList given = arguments(count, QStringLiteral("Notify"));
        return {given.value(3).toString(), given.value(1).toUInt()};
    }
};

QDBusMessage seven(const QDBusMessage& call) {
    return call.createReply(7U);
}

void show(Notifications& notifications, const char* title) {
    notifications.show(QString::fromUtf8(title), QStringLiteral("<b>Rock & Roll</b>"));
}

TEST_F(NotificationsTest, SayWhoSpeaksAndEscapeTheBody) {
    const StandInNotifications service(desktop, seven);
    Notifications notifications(client);
    show(notifications, "R & B");
    const QVariantList given = service.arguments(1, QStringLiteral("Notify"));
    EXPECT_EQ(service.calls.back().signature(), QStringLiteral("susssasa{sv}i"));
    EXPECT_EQ(given.value(4), QStringLiteral("&lt;b&gt;Rock &amp; Roll&lt;/b&gt;"));
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QStringLiteral("reelcrate")}};
    EXPECT_EQ(qdbus_cast<QVariantMap>(given.value(6)), hints);
}

TEST_F(NotificationsTest, ReplaceTheFormerOneEvenBeforeItsIdIsKnown) {
    const StandInNotifications service(desktop, seven);
    Notifications notifications(client);
    show(notifications, "one");
    show(notifications, "two");
    show(notifications, "three");
    EXPECT_EQ(service.shown(2), Shown(QStringLiteral("three"), 7U));
    settle();
    show(notifications, "four");
    EXPECT_EQ(service.shown(3), Shown(QStringLiteral("four"), 7U));
}

TEST_F(NotificationsTest, GoOnAfterAFailure) {
    Notifications silent(absentBus());
    show(silent, "no bus");
    show(silent, "still none");
    Notifications notifications(client);
    show(notifications, "nobody is there");
    settle();
    const StandInNotifications service(desktop, refusal);
    show(notifications, "refused");
    EXPECT_EQ(service.shown(1), Shown(QStringLiteral("refused"), 0U));
    settle();
    show(notifications, "refused again");
    EXPECT_EQ(service.shown(2), Shown(QStringLiteral("refused again"), 0U));
}

}  // namespace
}  // namespace reelcrate
