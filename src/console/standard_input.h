#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

/// Reads standard input to its end while the event loop goes on. Main thread. An input that cannot
/// be read ends there.
namespace reelcrate {

class StandardInput : public QObject {
    Q_OBJECT

public:
    StandardInput();

Q_SIGNALS:
    /// All of it, once; what is not UTF-8 in it is replaced.
    void finished(const QString& text);

private:
    void read();

    QSocketNotifier m_notifier;
    QByteArray m_bytes;
};

}  // namespace reelcrate
