#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <mutex>
#include <sys/types.h>

/// Sees to it that nothing the program started outlives it, whatever ends the program.
///
/// A small process, forked off at the start, listens on a socket whose other end only this program
/// holds. Each child of the program leads a process group of its own and reports it there before it
/// runs anything. When the socket closes, because the program ends or was killed, the supervisor
/// terminates the groups that are left, and kills what remains after a grace of two seconds.
///
/// Any thread, except where a function says otherwise. A supervisor that is gone is not an error:
/// reports to it are dropped.
namespace reelcrate {

class ProcessSupervisor {
public:
    /// Forks the supervising process: call it before the program has threads.
    ProcessSupervisor();
    /// Ends everything, like endEverything().
    ~ProcessSupervisor();
    Q_DISABLE_COPY_MOVE(ProcessSupervisor)

    /// In a forked child that has made itself a group leader, before it runs its program.
    /// Async-signal-safe.
    void watchOwnGroup() const noexcept;

    /// The group's leader has ended and was reaped: what it left behind in its group is ended too.
    void leaderEnded(pid_t group);

    /// Ends all groups and waits until that is done: at most about three seconds. Reports after
    /// this are dropped.
    void endEverything();

private:
    void send(const QByteArray& message);

    std::mutex m_mutex;
    int m_socket = -1;
    pid_t m_process = -1;
};

}  // namespace reelcrate
