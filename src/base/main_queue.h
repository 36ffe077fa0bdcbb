#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <deque>
#include <functional>
#include <mutex>

/// The way from background work to the main thread: blocks posted from any thread run on the
/// thread that owns the queue, in the order posted. Posting never blocks and never fails; blocks
/// that have not run when the queue is closed never run, so that none reaches an object that is
/// gone.
namespace reelcrate {

class MainQueue : public QObject {
    Q_OBJECT

public:
    using Block = std::function<void()>;

    /// Main thread, with a QCoreApplication.
    MainQueue();
    ~MainQueue() override;
    Q_DISABLE_COPY_MOVE(MainQueue)

    /// Any thread.
    void post(Block block);

    /// Main thread. Drops what is waiting and what is posted from now on.
    void close();

private:
    struct WakePipe {
        WakePipe();
        ~WakePipe();
        Q_DISABLE_COPY_MOVE(WakePipe)
        int readEnd = -1;
        int writeEnd = -1;
    };

    void runBlocks();
    bool takeNext(Block& block);

    std::mutex m_mutex;
    std::deque<Block> m_blocks;
    bool m_closed = false;
    WakePipe m_wake;
    QSocketNotifier m_notifier;
};

}  // namespace reelcrate
