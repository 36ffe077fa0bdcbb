#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <stop_token>
#include <thread>

/// Blocking work beside the main thread. Every task has a thread of its own, so that no task waits
/// for another one's place and tasks that wait for tasks cannot starve each other.
namespace reelcrate {

class BackgroundTasks {
public:
    using Task = std::function<void(std::stop_token)>;

    BackgroundTasks() = default;
    ~BackgroundTasks();
    BackgroundTasks(const BackgroundTasks&) = delete;
    BackgroundTasks& operator=(const BackgroundTasks&) = delete;

    /// Main thread. Starts the task at once; after requestStop() it does nothing.
    void run(Task task);

    /// Main thread. Asks all tasks to end: their stop tokens say so and their pauses end early.
    void requestStop();

    /// Main thread. Waits until all tasks have ended.
    void join();

private:
    struct Running {
        std::atomic<bool> done = false;
        std::thread thread;
    };

    void joinDone();

    std::stop_source m_stop;
    std::list<Running> m_running;
};

/// Sleeps for the duration, or shorter when a stop is requested. True when the whole time passed.
bool pauseFor(const std::stop_token& stop, std::chrono::duration<double> duration);

}  // namespace reelcrate
