#pragma once

#include "support/machine.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

namespace reelcrate {

/// A bus for one test, on which no service runs or can be started but the test's own.
class BusTest : public testing::Test {
protected:
    void SetUp() override {
        const QString config = m_folder.filePath(QStringLiteral("bus.conf"));
        ASSERT_TRUE(writeFile(config,
                              "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>"
                              "<policy context='default'><allow send_destination='*'/>"
                              "<allow receive_sender='*'/><allow own='*'/></policy></busconfig>"));
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                        QStringLiteral("--config-file=") + config});
        ASSERT_TRUE(m_daemon.waitForStarted()) << "dbus-daemon is missing";
        ASSERT_TRUE(m_daemon.waitForReadyRead()) << m_daemon.readAllStandardError().constData();
        const QString address = QString::fromLocal8Bit(m_daemon.readLine()).trimmed();
        client = QDBusConnection::connectToBus(address, QStringLiteral("client"));
        desktop = QDBusConnection::connectToBus(address, QStringLiteral("desktop"));
        ASSERT_TRUE(client.isConnected() && desktop.isConnected());
    }

    void TearDown() override {
        QDBusConnection::disconnectFromBus(QStringLiteral("client"));
        QDBusConnection::disconnectFromBus(QStringLiteral("desktop"));
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    /// Waits until all that was sent before has arrived, the desktop's part first.
    void settle() {
        for (const QDBusConnection& connection : {desktop, client}) {
            const QDBusPendingCall call = connection.asyncCall(QDBusMessage::createMethodCall(
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
            EXPECT_TRUE(waitUntil([&call] { return call.isFinished(); }));
        }
        QCoreApplication::processEvents();
    }

    QDBusConnection client = absentBus();
    QDBusConnection desktop = absentBus();

    static QDBusConnection absentBus() { return QDBusConnection(QStringLiteral("absent")); }

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
};

/// A service of the desktop. It keeps the calls that it gets.
class StandIn : public QDBusVirtualObject {
public:
    using Answer = std::function<QDBusMessage(const QDBusMessage&)>;

    /// Without an answer, it stays silent.
    StandIn(QDBusConnection bus, const QString& name, const QString& path, Answer answer)
        : m_bus(std::move(bus)), m_answer(std::move(answer)) {
        EXPECT_TRUE(m_bus.registerVirtualObject(path, this));
        EXPECT_TRUE(m_bus.registerService(name));
    }

    QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& /*bus*/) override {
        calls.push_back(call);
        if (m_answer)
            m_bus.send(m_answer(call));
        return true;
    }

    /// What the last call's named method was given, once there are so many calls.
    QVariantList arguments(size_t count, const QString& method) const {
        const bool came = waitUntil([this, count] { return calls.size() >= count; });
        EXPECT_TRUE(came && calls.size() == count);
        if (!came)
            return {};
        EXPECT_EQ(calls.back().member().toStdString(), method.toStdString());
        return calls.back().arguments();
    }

    std::vector<QDBusMessage> calls;

private:
    QDBusConnection m_bus;
    Answer m_answer;
};

inline QDBusMessage refusal(const QDBusMessage& call) {
    return call.createErrorReply(QDBusError::Failed, QStringLiteral("not today"));
}

}  // namespace reelcrate
