#include "tools/shell_runner.h"

#include "tools/process_supervisor.h"
#include "tools/utf8_pieces.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QStringList>
#include <QUuid>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <set>
#include <sys/types.h>
#include <unistd.h>
#include <utility>
#ifdef __linux__
#include <sys/prctl.h>
#endif

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

/// In the forked child. A session of its own is a group of its own, and has no terminal: a tool
/// that asks for a password there would wait for ever.
void detachChild(int keptDescriptor) {
    ::setsid();
#ifdef __linux__
    // For the case that program and supervisor are killed at once. The thread that starts a child
    // waits for it, so it does not end before the child as long as the program lives.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
#endif
    if (keptDescriptor >= 0)
        ::fcntl(keptDescriptor, F_SETFD, 0);
}

/// Watches one child's time: asks its group to terminate at the deadline, or when it is to be
/// stopped, and kills it after a grace.
class TimeLimit {
public:
    TimeLimit(std::optional<double> seconds, std::stop_token stop, pid_t group)
        : m_stop(std::move(stop)),
          m_deadline(seconds ? QDeadlineTimer(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                   std::chrono::duration<double>(*seconds)))
                             : QDeadlineTimer(QDeadlineTimer::Forever)),
          m_group(group) {}

    void check() {
        const bool isStop = !m_status && m_stop.stop_requested();
        if (!isStop && !m_deadline.hasExpired())
            return;
        ::kill(-m_group, m_status ? SIGKILL : SIGTERM);
        if (!m_status)
            m_status = isStop ? CommandResult::stopped : CommandResult::timedOut;
        m_deadline = QDeadlineTimer(grace);
    }

    /// What the child's end means; absent where that is the child's own.
    std::optional<qint32> status() const { return m_status; }

private:
    std::stop_token m_stop;
    QDeadlineTimer m_deadline;
    pid_t m_group;
    std::optional<qint32> m_status;
};

}  // namespace

/// What becomes of a child's output.
struct ShellRunner::Streams {
    BytesHandler onOutput;  ///< of standard error, too, unless that has its own
    BytesHandler onErrors;
    int keptDescriptor = -1;
};

/// What all pieces of work share.
struct ShellRunner::Common {
    Common(ProcessSupervisor& endsChildren, double seconds)
        : supervisor(endsChildren), loginLimitSeconds(seconds) {}

    ProcessSupervisor& supervisor;
    const double loginLimitSeconds;
    std::once_flag environmentRead;
    LoginEnvironment environment;
    QString loginNotice;
    std::mutex mutex;
    bool ended = false;
    std::set<pid_t> groups;  ///< of the children that run
};

ShellRunner::ShellRunner(ProcessSupervisor& supervisor, double loginLimitSeconds)
    : m_common(std::make_shared<Common>(supervisor, loginLimitSeconds)) {}

ShellRunner::ShellRunner(const ShellRunner& whole, std::stop_token stop)
    : m_common(whole.m_common), m_stop(std::move(stop)) {}

ShellRunner::~ShellRunner() = default;

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

CommandResult ShellRunner::runShellPassingOn(const QString& command, const OutputHandler& onOutput,
                                             int keptDescriptor) {
    Utf8Pieces pieces;
    const auto passOn = [&](const QByteArray& bytes) {
        const QString piece = pieces.add(bytes);
        if (!piece.isEmpty())
            onOutput(piece);
    };
    return run(command, std::nullopt, {passOn, {}, keptDescriptor});
}

CommandResult ShellRunner::runShellApart(const QString& command, std::optional<double> timeout) {
    QByteArray output;
    CommandResult result =
        runShellBytes(command, timeout, [&output](const QByteArray& bytes) { output += bytes; });
    if (result.status == CommandResult::couldNotStart && output.isEmpty())
        return result;
    return {result.status, QString::fromUtf8(output), result.errors};
}

CommandResult ShellRunner::runShellBytes(const QString& command, std::optional<double> timeout,
                                         const BytesHandler& onOutput) {
    QByteArray errors;
    CommandResult result = run(
        command, timeout, {onOutput, [&errors](const QByteArray& bytes) { errors += bytes; }, -1});
    result.errors = QString::fromUtf8(errors);
    return result;
}

void ShellRunner::endEverything() {
    {
        const std::lock_guard lock(m_common->mutex);
        m_common->ended = true;
    }
    m_common->supervisor.endEverything();
    // All are dead by now, unless the supervisor itself was killed.
    const std::lock_guard lock(m_common->mutex);
    for (const pid_t group : m_common->groups)
        ::kill(-group, SIGKILL);
}

QString ShellRunner::loginNotice() {
    environment();
    return m_common->loginNotice;
}

const LoginEnvironment& ShellRunner::environment() {
    std::call_once(m_common->environmentRead, [this] { readLoginEnvironment(); });
    return m_common->environment;
}

void ShellRunner::readLoginEnvironment() {
    const QByteArray mark = QUuid::createUuid().toByteArray();
    QByteArray output;
    QProcess process;
    process.setArguments({QStringLiteral("-lc"), loginEnvironmentCommand(mark)});
    const CommandResult result = runChild(
        process, m_common->loginLimitSeconds, {},  // it is for everybody
        {[&output](const QByteArray& bytes) { output += bytes; }, [](const QByteArray&) {}, -1});
    if (const auto environment = loginEnvironmentFrom(output, mark)) {
        m_common->environment = *environment;
        return;
    }
    m_common->environment.variables = QProcessEnvironment::systemEnvironment();
    m_common->loginNotice =
        result.status == CommandResult::timedOut
            ? QStringLiteral(
                  "The login profile took longer than %1 seconds and was left out: the "
                  "tools run with the program's own variables.")
                  .arg(m_common->loginLimitSeconds)
            : QStringLiteral(
                  "The login profile runs no commands and was left out: the tools run "
                  "with the program's own variables.");
}

/// Absent on success, otherwise why the child could not be started.
std::optional<QString> ShellRunner::start(QProcess& process, int keptDescriptor) {
    process.setProgram(QStringLiteral("/bin/bash"));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([supervisor = &m_common->supervisor, keptDescriptor] {
        detachChild(keptDescriptor);
        supervisor->watchOwnGroup();
    });
    const std::lock_guard lock(m_common->mutex);
    if (m_common->ended)
        return QStringLiteral("The program is ending.");
    process.start(QIODevice::ReadOnly);
    if (!process.waitForStarted(-1))
        return process.errorString();
    m_common->groups.insert(static_cast<pid_t>(process.processId()));
    return std::nullopt;
}

CommandResult ShellRunner::runKeepingOutput(const QString& command, std::optional<double> timeout,
                                            const OutputHandler& onOutput) {
    QString output;
    Utf8Pieces pieces;
    const auto keep = [&](const QByteArray& bytes) {
        const QString piece = pieces.add(bytes);
        if (piece.isEmpty())
            return;
        // Characters, not the text itself: an empty text would share the piece that the handler may
        // hand to another thread.
        output.append(piece.constData(), piece.size());
        if (onOutput)
            onOutput(piece);
    };
    CommandResult result = run(command, timeout, {keep, {}, -1});
    if (!output.isEmpty())
        result.output = output;
    return result;
}

CommandResult ShellRunner::run(const QString& command, std::optional<double> timeout,
                               const Streams& streams) {
    QProcess process;
    const LoginEnvironment& login = environment();
    process.setProcessEnvironment(login.variables);
    // "-p": the shell reads no file of the user's on its way to the command.
    process.setArguments({QStringLiteral("-pc"), login.exports + command});
    if (m_stop.stop_requested())
        return {CommandResult::couldNotStart, QStringLiteral("Stopped."), {}};
    return runChild(process, timeout, m_stop, streams);
}

CommandResult ShellRunner::runChild(QProcess& process, std::optional<double> timeout,
                                    const std::stop_token& stop, const Streams& streams) {
    process.setProcessChannelMode(streams.onErrors ? QProcess::SeparateChannels
                                                   : QProcess::MergedChannels);
    if (const auto error = start(process, streams.keptDescriptor))
        return {CommandResult::couldNotStart, *error, {}};

    const auto group = static_cast<pid_t>(process.processId());
    TimeLimit limit(timeout, stop, group);
    const auto read = [&] {
        if (const QByteArray bytes = process.readAllStandardOutput(); !bytes.isEmpty())
            streams.onOutput(bytes);
        if (!streams.onErrors)
            return;
        if (const QByteArray bytes = process.readAllStandardError(); !bytes.isEmpty())
            streams.onErrors(bytes);
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
        const std::lock_guard lock(m_common->mutex);
        m_common->groups.erase(group);
    }
    m_common->supervisor.leaderEnded(group);
    return {limit.status().value_or(exitStatus(process)), {}, {}};
}

}  // namespace reelcrate
