#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

/// Reads standard input to its end while the event loop goes on. Main thread. An input that cannot
/// be read ends there.
namespace reelcrate {

class StandardInput : public QObject {
    Q_OBJECT

public:
    StandardInput();

Q_SIGNALS:
    /// All of it, once.
    void finished(const QByteArray& bytes);

private:
    void read();

    QSocketNotifier m_notifier;
    QByteArray m_bytes;
};

}  // namespace reelcrate
