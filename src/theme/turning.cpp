#include "theme/turning.h"

#include <QTimer>

namespace reelcrate {

namespace {

constexpr int stepsPerSecond = 30;
constexpr int stepsPerTurn = 24;

/// Ticks while anything turns.
class TurningClock : public QTimer {
public:
    TurningClock() {
        setTimerType(Qt::PreciseTimer);
        setInterval(1000 / stepsPerSecond);
        connect(this, &QTimer::timeout, this, [this] { m_step = (m_step + 1) % stepsPerTurn; });
    }

    void add() {
        if (m_users++ == 0)
            start();
    }

    void remove() {
        if (--m_users == 0)
            stop();
    }

    double angle() const { return 360.0 * m_step / stepsPerTurn; }

private:
    int m_users = 0;
    int m_step = 0;
};

/// Never destroyed: a timer must not outlive its thread, and nothing ticks by then.
TurningClock& turningClock() {
    static auto* clock = new TurningClock;
    return *clock;
}

}  // namespace

Turning::~Turning() {
    if (m_isRunning)
        turningClock().remove();
}

void Turning::setRunning(bool running) {
    if (running == m_isRunning)
        return;
    m_isRunning = running;
    TurningClock& clock = turningClock();
    if (running) {
        connect(&clock, &QTimer::timeout, this, [this, &clock] { setAngle(clock.angle()); });
        clock.add();
    } else {
        clock.disconnect(this);
        clock.remove();
        setAngle(0);
    }
    Q_EMIT runningChanged();
}

void Turning::setAngle(double angle) {
    m_angle = angle;
    Q_EMIT angleChanged();
}

}  // namespace reelcrate
