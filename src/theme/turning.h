#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

/// The angle of what turns: once in 0.8 seconds, in thirty steps a second, which is as smooth as it
/// looks and half of what a screen could show. All that turn do it together, so that one frame
/// shows the step of all; without any, nothing ticks. Main thread.
namespace reelcrate {

class Turning : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(bool running READ isRunning WRITE setRunning NOTIFY runningChanged)
    /// In degrees; 0 while it does not run.
    Q_PROPERTY(double angle READ angle NOTIFY angleChanged)

public:
    using QObject::QObject;
    ~Turning() override;
    Q_DISABLE_COPY_MOVE(Turning)

    bool isRunning() const { return m_isRunning; }
    void setRunning(bool running);
    double angle() const { return m_angle; }

Q_SIGNALS:
    void runningChanged();
    void angleChanged();

private:
    void setAngle(double angle);

    bool m_isRunning = false;
    double m_angle = 0;
};

}  // namespace reelcrate
