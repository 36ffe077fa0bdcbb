#include "tools/shell_runner.h"

#include "tools/process_supervisor.h"
#include "tools/utf8_pieces.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QStringList>

#include <chrono>
#include <csignal>
#include <unistd.h>

namespace reelcrate {

namespace {

using namespace std::chrono_literals;

constexpr auto pollInterval = 100ms;
constexpr auto grace = 2s;

/// Waits until the child has printed something or ended, or until the interval is over.
void waitForNews(QProcess& process) {
    const QDeadlineTimer end(pollInterval);
    // A child that closed its output and lives on gives no more news: waiting for it returns at
    // once.
    if (!process.waitForReadyRead(static_cast<int>(pollInterval / 1ms)) && !end.hasExpired())
        process.waitForFinished(static_cast<int>(end.remainingTime()));
}

qint32 exitStatus(const QProcess& process) {
    // After death by a signal the exit code means nothing, and must not pass for success.
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode()
                                                        : CommandResult::diedBySignal;
}

/// Watches one child's time: asks its group to terminate at the deadline and kills it after a
/// grace.
class TimeLimit {
public:
    TimeLimit(std::optional<double> seconds, pid_t group)
        : m_deadline(seconds ? QDeadlineTimer(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                   std::chrono::duration<double>(*seconds)))
                             : QDeadlineTimer(QDeadlineTimer::Forever)),
          m_group(group) {}

    void check() {
        if (!m_deadline.hasExpired())
            return;
        ::kill(-m_group, m_passed ? SIGKILL : SIGTERM);
        m_passed = true;
        m_deadline = QDeadlineTimer(grace);
    }

    bool hasPassed() const { return m_passed; }

private:
    QDeadlineTimer m_deadline;
    pid_t m_group;
    bool m_passed = false;
};

}  // namespace

ShellRunner::ShellRunner(ProcessSupervisor& supervisor) : m_supervisor(supervisor) {}

CommandResult ShellRunner::runShellSync(const QString& command, std::optional<double> timeout) {
    CommandResult result = runKeepingOutput(command, timeout, {});
    if (result.status == CommandResult::timedOut && result.output.isEmpty())
        result.output = QStringLiteral("Command timed out.");
    return result;
}

CommandResult ShellRunner::runShellStreaming(const QString& command,
                                             const OutputHandler& onOutput) {
    return runKeepingOutput(command, std::nullopt, onOutput);
}

CommandResult ShellRunner::runShellPassingOn(const QString& command,
                                             const OutputHandler& onOutput) {
    return run(command, std::nullopt, onOutput);
}

void ShellRunner::endEverything() {
    {
        const std::lock_guard lock(m_mutex);
        m_ended = true;
    }
    m_supervisor.endEverything();
    // All are dead by now, unless the supervisor itself was killed.
    const std::lock_guard lock(m_mutex);
    for (const pid_t group : m_groups)
        ::kill(-group, SIGKILL);
}

/// Absent on success, otherwise why the child could not be started.
std::optional<QString> ShellRunner::start(QProcess& process, const QString& command) {
    process.setProgram(QStringLiteral("/bin/bash"));
    process.setArguments({QStringLiteral("-lc"), command});
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([supervisor = &m_supervisor] {
        ::setpgid(0, 0);
        supervisor->watchOwnGroup();
    });
    const std::lock_guard lock(m_mutex);
    if (m_ended)
        return QStringLiteral("The program is ending.");
    process.start(QIODevice::ReadOnly);
    if (!process.waitForStarted(-1))
        return process.errorString();
    m_groups.insert(static_cast<pid_t>(process.processId()));
    return std::nullopt;
}

CommandResult ShellRunner::runKeepingOutput(const QString& command, std::optional<double> timeout,
                                            const OutputHandler& onOutput) {
    QString output;
    CommandResult result = run(command, timeout, [&](const QString& piece) {
        // Characters, not the text itself: an empty text would share the piece that the handler may
        // hand to another thread.
        output.append(piece.constData(), piece.size());
        if (onOutput)
            onOutput(piece);
    });
    if (!output.isEmpty())
        result.output = output;
    return result;
}

CommandResult ShellRunner::run(const QString& command, std::optional<double> timeout,
                               const OutputHandler& onOutput) {
    QProcess process;
    if (const auto error = start(process, command))
        return {CommandResult::couldNotStart, *error};

    const auto group = static_cast<pid_t>(process.processId());
    TimeLimit limit(timeout, group);
    Utf8Pieces pieces;
    const auto read = [&] {
        const QString piece = pieces.add(process.readAllStandardOutput());
        if (!piece.isEmpty())
            onOutput(piece);
    };
    // The end of the child decides, not the end of the stream, which a grandchild may keep open:
    // when it comes, QProcess has read what was left in the pipe.
    while (process.state() != QProcess::NotRunning) {
        waitForNews(process);
        read();
        if (process.state() != QProcess::NotRunning)
            limit.check();
    }
    read();
    {
        const std::lock_guard lock(m_mutex);
        m_groups.erase(group);
    }
    m_supervisor.leaderEnded(group);
    return {limit.hasPassed() ? CommandResult::timedOut : exitStatus(process), {}};
}

}  // namespace reelcrate
