#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <optional>

/// Tells the user through the desktop's notifications, one at a time: a later text takes the place
/// of the former. Main thread; nothing waits for the desktop. Where nothing shows notifications,
/// nothing happens.
namespace reelcrate {

class Notifications : public QObject {
    Q_OBJECT

public:
    explicit Notifications(QDBusConnection bus = QDBusConnection::sessionBus(),
                           QObject* parent = nullptr);

    /// Both are plain text.
    void show(const QString& title, const QString& body);

private:
    struct Notification {
        QString title;
        QString body;
    };

    QDBusMessage callFor(const Notification& notification) const;
    void send(const Notification& notification);
    void takeAnswer(const QDBusMessage& answer);

    QDBusConnection m_bus;
    quint32 m_shownId = 0;  // zero before there is one, also on the bus
    bool m_isSending = false;
    std::optional<Notification> m_next;  // waits for the id of the one that it replaces
};

}  // namespace reelcrate
