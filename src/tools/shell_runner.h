#pragma once

#include "tools/login_environment.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

class QProcess;

/// Runs command lines through a shell, each in a session of its own with nothing to read on
/// standard input, and with the variables that the user's login shell would give it. Standard
/// output and standard error come merged in the order of writing, unless a function says otherwise.
/// All runners block: never call them on the main thread. Any number may run at the same time. A
/// runner can be narrowed to one piece of work, with which what it runs is stopped.
namespace reelcrate {

class ProcessSupervisor;

struct CommandResult {
    static constexpr qint32 couldNotStart = 1;
    static constexpr qint32 timedOut = 124;
    static constexpr qint32 diedBySignal = 128;
    static constexpr qint32 stopped = 143;

    qint32 status = 0;  ///< the exit status, or one of the four above
    QString output;     ///< all that was printed; for a failed start, the system's description
    QString errors;     ///< what came on standard error, where that is kept apart
};

class ShellRunner {
public:
    /// Called on the thread that runs the command, in the order of arrival.
    using OutputHandler = std::function<void(const QString& piece)>;

    using BytesHandler = std::function<void(const QByteArray& bytes)>;

    /// A login profile that takes longer than so many seconds is not waited for.
    explicit ShellRunner(ProcessSupervisor& supervisor, double loginLimitSeconds = 10);
    /// `whole`, for one piece of work: once a stop of that is requested, nothing more starts, and a
    /// child that runs is ended as at a time limit: status `stopped`.
    ShellRunner(const ShellRunner& whole, std::stop_token stop);
    ~ShellRunner();
    Q_DISABLE_COPY_MOVE(ShellRunner)

    /// Background threads: reads the login environment now, unless that was done before. What went
    /// wrong with it, for the user; empty when all is well.
    QString loginNotice();

    /// Runs the command to its end. With a limit in seconds, a child that outlives it is asked to
    /// terminate, and killed when it has not ended two seconds later: status `timedOut`, with the
    /// output so far or, when there is none, "Command timed out.".
    CommandResult runShellSync(const QString& command, std::optional<double> timeout);

    /// Runs the command to its end without a limit and hands every piece of output on as it
    /// arrives.
    CommandResult runShellStreaming(const QString& command, const OutputHandler& onOutput);

    /// The same for output of any size: the handler alone gets it. The result's output is empty,
    /// unless the child could not be started.
    /// The descriptor, if there is one, stays open in the child under the same number.
    CommandResult runShellPassingOn(const QString& command, const OutputHandler& onOutput,
                                    int keptDescriptor = -1);

    /// Like runShellSync, with the two streams apart: the result's output is standard output alone.
    CommandResult runShellApart(const QString& command, std::optional<double> timeout);

    /// For standard output that is no text: the handler alone gets it, the result has the errors.
    CommandResult runShellBytes(const QString& command, std::optional<double> timeout,
                                const BytesHandler& onOutput);

    /// Main thread, at the program's end: from now on nothing starts, and all that runs is ended.
    /// Blocks until it is, about three seconds at most.
    void endEverything();

private:
    struct Common;
    struct Streams;

    CommandResult runKeepingOutput(const QString& command, std::optional<double> timeout,
                                   const OutputHandler& onOutput);
    CommandResult run(const QString& command, std::optional<double> timeout,
                      const Streams& streams);
    CommandResult runChild(QProcess& process, std::optional<double> timeout,
                           const std::stop_token& stop, const Streams& streams);
    std::optional<QString> start(QProcess& process, int keptDescriptor);
    const LoginEnvironment& environment();
    void readLoginEnvironment();

    const std::shared_ptr<Common> m_common;
    const std::stop_token m_stop;
};

}  // namespace reelcrate
