#include "base/main_queue.h"

#include <QDeadlineTimer>

#include <array>
#include <chrono>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace reelcrate {

namespace {

// A flood of blocks must not keep the window from drawing: after this long the event loop gets its
// turn, and the rest runs in the next round.
constexpr std::chrono::milliseconds turn{5};

}  // namespace

// A pipe instead of a posted event: whoever checks the program for data races sees the hand-over
// between the threads, which is hidden inside the event loop of an uninstrumented library.
MainQueue::WakePipe::WakePipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        qFatal("No pipe for the main queue");
    for (int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    readEnd = ends[0];
    writeEnd = ends[1];
}

MainQueue::WakePipe::~WakePipe() {
    ::close(readEnd);
    ::close(writeEnd);
}

MainQueue::MainQueue() : m_notifier(m_wake.readEnd, QSocketNotifier::Read) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &MainQueue::runBlocks);
}

MainQueue::~MainQueue() {
    close();
}

void MainQueue::post(Block block) {
    const std::lock_guard lock(m_mutex);
    if (m_closed)
        return;
    m_blocks.push_back(std::move(block));
    if (m_blocks.size() == 1) {
        const char wake = 1;
        // Only a full pipe refuses the byte, and a full pipe wakes as well.
        [[maybe_unused]] const auto written = ::write(m_wake.writeEnd, &wake, 1);
    }
}

void MainQueue::close() {
    std::deque<Block> dropped;  // destroyed outside the lock: a block may own anything
    const std::lock_guard lock(m_mutex);
    m_closed = true;
    dropped.swap(m_blocks);
}

/// Takes the next block; when there is none, empties the pipe so that the notifier falls silent.
bool MainQueue::takeNext(Block& block) {
    const std::lock_guard lock(m_mutex);
    if (m_blocks.empty()) {
        std::array<char, 64> wakes{};
        while (::read(m_wake.readEnd, wakes.data(), wakes.size()) > 0) {
        }
        return false;
    }
    block = std::move(m_blocks.front());
    m_blocks.pop_front();
    return true;
}

void MainQueue::runBlocks() {
    const QDeadlineTimer end(turn);
    Block block;
    while (!end.hasExpired() && takeNext(block)) {
        block();
        block = nullptr;
    }
}

}  // namespace reelcrate
