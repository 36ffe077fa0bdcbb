#include "desktop/notifications.h"

#include "desktop/service_call.h"

#include <QStringList>
#include <QVariantMap>

#include <utility>

namespace reelcrate {

namespace {

constexpr qint32 asLongAsTheDesktopLikes = -1;

}  // namespace

Notifications::Notifications(QDBusConnection bus, QObject* parent)
    : QObject(parent), m_bus(std::move(bus)) {}

void Notifications::show(const QString& title, const QString& body) {
    const Notification notification{title, body};
    if (m_isSending)
        m_next = notification;
    else
        send(notification);
}

QDBusMessage Notifications::callFor(const Notification& notification) const {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"),
        QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QStringLiteral("reelcrate")}};
    // Of the two texts, desktops read the body alone as markup.
    call << QStringLiteral("Reelcrate") << m_shownId << QStringLiteral("reelcrate")
         << notification.title << notification.body.toHtmlEscaped() << QStringList() << hints
         << asLongAsTheDesktopLikes;
    return call;
}

void Notifications::send(const Notification& notification) {
    m_isSending = true;
    callService(m_bus, callFor(notification), this,
                [this](const QDBusMessage& answer) { takeAnswer(answer); });
}

void Notifications::takeAnswer(const QDBusMessage& answer) {
    m_isSending = false;
    if (answer.signature() == QStringLiteral("u"))
        m_shownId = answer.arguments().constFirst().toUInt();
    if (const auto next = std::exchange(m_next, std::nullopt))
        send(*next);
}

}  // namespace reelcrate
