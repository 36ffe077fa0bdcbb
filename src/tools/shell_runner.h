#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <sys/types.h>

class QProcess;

/// Runs command lines through the login shell, each in a process group of its own, with standard
/// output and standard error merged in the order of writing and nothing to read on standard input.
/// Both runners block: never call them on the main thread. Any number may run at the same time.
namespace reelcrate {

class ProcessSupervisor;

struct CommandResult {
    static constexpr qint32 couldNotStart = 1;
    static constexpr qint32 timedOut = 124;
    static constexpr qint32 diedBySignal = 128;

    qint32 status = 0;  ///< the exit status, or one of the three above
    QString output;     ///< all that was printed; for a failed start, the system's description
};

class ShellRunner {
public:
    /// Called on the thread that runs the command, in the order of arrival.
    using OutputHandler = std::function<void(const QString& piece)>;

    explicit ShellRunner(ProcessSupervisor& supervisor);

    /// Runs the command to its end. With a limit in seconds, a child that outlives it is asked to
    /// terminate, and killed when it has not ended two seconds later: status `timedOut`, with the
    /// output so far or, when there is none, "Command timed out.".
    CommandResult runShellSync(const QString& command, std::optional<double> timeout);

    /// Runs the command to its end without a limit and hands every piece of output on as it
    /// arrives.
    CommandResult runShellStreaming(const QString& command, const OutputHandler& onOutput);

    /// The same for output of any size: the handler alone gets it. The result's output is empty,
    /// unless the child could not be started.
    CommandResult runShellPassingOn(const QString& command, const OutputHandler& onOutput);

    /// Main thread, at the program's end: from now on nothing starts, and all that runs is ended.
    /// Blocks until it is, about three seconds at most.
    void endEverything();

private:
    CommandResult runKeepingOutput(const QString& command, std::optional<double> timeout,
                                   const OutputHandler& onOutput);
    CommandResult run(const QString& command, std::optional<double> timeout,
                      const OutputHandler& onOutput);
    std::optional<QString> start(QProcess& process, const QString& command);

    ProcessSupervisor& m_supervisor;
    std::mutex m_mutex;
    bool m_ended = false;
    std::set<pid_t> m_groups;  ///< of the children that run
};

}  // namespace reelcrate
