#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdio>
#include <memory>

/// Shows on a stream how a queue fares. Main thread.
namespace reelcrate {

class Controller;

class ProgressDisplay : public QObject {
    Q_OBJECT

public:
    /// On a terminal, a line for each active row and the summary, drawn anew as they change; on
    /// anything else, one line for each change of a row's status. `stream` stays the caller's.
    static std::unique_ptr<ProgressDisplay> on(std::FILE* stream, const Controller& controller);

    /// Leaves the stream as it should stay: what was only for the moment is gone.
    virtual void finish() = 0;
};

}  // namespace reelcrate
