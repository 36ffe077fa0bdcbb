#include "base/background_tasks.h"

#include <condition_variable>
#include <mutex>
#include <utility>

namespace reelcrate {

BackgroundTasks::~BackgroundTasks() {
    requestStop();
    join();
}

void BackgroundTasks::run(Task task) {
    joinDone();
    if (m_stop.stop_requested())
        return;
    Running& running = m_running.emplace_back();
    running.thread = std::thread([&running, task = std::move(task), stop = m_stop.get_token()] {
        task(stop);
        running.done = true;
    });
}

void BackgroundTasks::requestStop() {
    m_stop.request_stop();
}

void BackgroundTasks::join() {
    for (Running& running : m_running)
        running.thread.join();
    m_running.clear();
}

void BackgroundTasks::joinDone() {
    m_running.remove_if([](Running& running) {
        if (!running.done)
            return false;
        running.thread.join();
        return true;
    });
}

bool pauseFor(const std::stop_token& stop, std::chrono::duration<double> duration) {
    std::mutex mutex;
    std::condition_variable_any woken;
    std::unique_lock lock(mutex);
    woken.wait_for(lock, stop, duration, [] { return false; });
    return !stop.stop_requested();
}

}  // namespace reelcrate
