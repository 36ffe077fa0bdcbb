#pragma once

#include <QObject>
#include <QSocketNotifier>

/// Ctrl-C and the requests to terminate or hang up, as a signal of the event loop. One at a time
/// per program; main thread. The default handling is back when it goes. A hang-up that the program
/// was started to ignore stays ignored.
namespace reelcrate {

class TerminationSignals : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;
    Q_DISABLE_COPY_MOVE(TerminationSignals)

Q_SIGNALS:
    /// The number of the system's signal, such as SIGINT.
    void received(int signalNumber);

private:
    void read();

    QSocketNotifier m_notifier;
};

}  // namespace reelcrate
