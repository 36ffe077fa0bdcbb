#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>

/// Knows whether the user wants the desktop to keep still, and follows the setting. Main thread;
/// the desktop is asked when this is made and answers later. Where it does not say, things move.
namespace reelcrate {

class MotionSetting : public QObject {
    Q_OBJECT

public:
    explicit MotionSetting(QDBusConnection bus = QDBusConnection::sessionBus(),
                           QObject* parent = nullptr);

    /// Either of the desktop's two settings for it suffices.
    bool reduceMotion() const { return m_isMotionReduced || m_areAnimationsOff; }

Q_SIGNALS:
    void reduceMotionChanged();

private Q_SLOTS:
    void takeChange(const QDBusMessage& signal);

private:
    void takeAll(const QDBusMessage& answer);
    void take(const QString& group, const QString& key, const QVariant& value);

    bool m_isMotionReduced = false;
    bool m_areAnimationsOff = false;
};

}  // namespace reelcrate
