#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <atomic>
#include <mutex>
#include <sys/types.h>

/// Sees to it that nothing the program started outlives it, whatever ends the program.
///
/// A small process, forked off at the start, listens on a socket whose other end only this program
/// holds. Each child of the program leads a process group of its own and reports it there before it
/// runs anything. When the socket closes, because the program ends or was killed, the supervisor
/// terminates the groups that are left, kills what remains after a grace of two seconds, and
/// removes the files that were announced as unfinished.
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

    /// While announced, the file is removed when the program ends. A list, numbered by newList(),
    /// holds announcements that are taken back together; see UnfinishedFiles.
    quint64 newList();
    void announceUnfinished(quint64 list, const QString& path);
    void forgetUnfinished(quint64 list);

    /// Ends all groups, removes the announced files, and waits until that is done: at most about
    /// three seconds. Reports after this are dropped.
    void endEverything();

private:
    void send(const QByteArray& message);

    std::atomic<quint64> m_lastList = 0;
    std::mutex m_mutex;
    int m_socket = -1;
    pid_t m_process = -1;
};

/// Files of one piece of work that count for nothing unless the work ends well. They are removed
/// with this object, or by the supervisor if the program is killed before; `keep()` lets them stay.
class UnfinishedFiles {
public:
    explicit UnfinishedFiles(ProcessSupervisor& supervisor);
    ~UnfinishedFiles();
    Q_DISABLE_COPY_MOVE(UnfinishedFiles)

    void announce(const QString& path);
    void keep();
    /// Keeps those that are among these, and removes the others now.
    void keepOnly(const QStringList& paths);

private:
    ProcessSupervisor& m_supervisor;
    const quint64 m_list;
    QStringList m_paths;
};

}  // namespace reelcrate
