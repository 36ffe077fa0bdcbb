#include "tools/process_supervisor.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <poll.h>
#include <set>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace reelcrate {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto grace = 2s;        // between the request to end and the end by force
constexpr auto lastWait = 500ms;  // for the system to carry out the end by force
constexpr auto step = 20ms;

// A message is a letter, its argument in text form, and a NUL.
constexpr char watchGroup = 'g';        // g PID
constexpr char groupLeaderEnded = 'e';  // e PID

#ifndef MSG_NOSIGNAL
constexpr int MSG_NOSIGNAL = 0;
#endif

bool isAlive(pid_t group) {
    return ::kill(-group, 0) == 0 || errno == EPERM;
}

pid_t numberIn(std::string_view text) {
    pid_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// What runs in the supervising process.
class Watch {
public:
    explicit Watch(int socket) : m_socket(socket) {}

    void run() {
        while (receive())
            endLeftovers();
        endAll();
    }

private:
    /// False when the program's end of the socket is closed.
    bool receive() {
        pollfd readable{m_socket, POLLIN, 0};
        const int wait = m_leftovers.empty() ? -1 : static_cast<int>(step / 1ms);
        if (::poll(&readable, 1, wait) <= 0)
            return true;
        std::array<char, 4096> bytes{};
        const ssize_t count = ::recv(m_socket, bytes.data(), bytes.size(), 0);
        if (count <= 0)
            return count < 0 && errno == EINTR;
        m_pending.append(bytes.data(), static_cast<std::size_t>(count));
        for (std::size_t end = m_pending.find('\0'); end != std::string::npos;
             end = m_pending.find('\0')) {
            handle(std::string_view(m_pending).substr(0, end));
            m_pending.erase(0, end + 1);
        }
        return true;
    }

    void handle(std::string_view message) {
        if (message.empty())
            return;
        const std::string_view argument = message.substr(1);
        switch (message.front()) {
            case watchGroup:
                m_groups.insert(numberIn(argument));
                break;
            case groupLeaderEnded:
                startEnding(numberIn(argument));
                break;
            default:
                break;
        }
    }

    void startEnding(pid_t group) {
        if (m_groups.erase(group) == 0 || !isAlive(group))
            return;
        ::kill(-group, SIGTERM);
        m_leftovers[group] = Clock::now() + grace;
    }

    void endLeftovers() {
        std::erase_if(m_leftovers, [](const auto& leftover) {
            const auto& [group, deadline] = leftover;
            if (!isAlive(group))
                return true;
            if (Clock::now() >= deadline)
                ::kill(-group, SIGKILL);
            // A dead process that its parent never reaps looks alive for ever.
            return Clock::now() >= deadline + lastWait;
        });
    }

    void endAll() {
        while (!m_groups.empty())
            startEnding(*m_groups.begin());
        const auto giveUp = Clock::now() + grace + lastWait;
        while (!m_leftovers.empty() && Clock::now() < giveUp) {
            std::this_thread::sleep_for(step);
            endLeftovers();
        }
    }

    int m_socket;
    std::string m_pending;
    std::set<pid_t> m_groups;
    std::map<pid_t, Clock::time_point> m_leftovers;
};

/// Leaves the terminal, the standard streams and the working folder to the program: the supervisor
/// must hold nothing open that somebody waits for, and no key may reach it.
void detach(int& socket) {
    ::setsid();
    for (int ignored : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE})
        ::signal(ignored, SIG_IGN);
    const int null = ::open("/dev/null", O_RDWR);
    for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(null, stream);
    socket = ::dup2(socket, STDERR_FILENO + 1);
#ifdef __linux__
    ::close_range(static_cast<unsigned>(socket) + 1, ~0U, 0);
    // Under another name than the program's, so that ending "all of that name" spares it.
    ::prctl(PR_SET_NAME, "rc-guard");
#else
    const int limit = static_cast<int>(::sysconf(_SC_OPEN_MAX));
    for (int other = socket + 1; other < limit; ++other)
        ::close(other);
#endif
    if (::chdir("/") != 0)
        ::_exit(1);
}

}  // namespace

ProcessSupervisor::ProcessSupervisor() {
    std::array<int, 2> sockets{};
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, sockets.data()) != 0) {
        qWarning("No supervisor: children are ended by the program alone");
        return;
    }
    for (int socket : sockets)
        ::fcntl(socket, F_SETFD, FD_CLOEXEC);
    m_process = ::fork();
    if (m_process == 0) {
        detach(sockets[1]);
        Watch(sockets[1]).run();
        ::_exit(0);
    }
    ::close(sockets[1]);
    m_socket = sockets[0];
    if (m_process < 0)
        qWarning("No supervisor: children are ended by the program alone");
}

ProcessSupervisor::~ProcessSupervisor() {
    endEverything();
}

void ProcessSupervisor::watchOwnGroup() const noexcept {
    std::array<char, 16> message{watchGroup};
    const auto end =
        std::to_chars(message.data() + 1, message.data() + message.size() - 1, ::getpid());
    const auto length = static_cast<std::size_t>(end.ptr - message.data()) + 1;
    ::send(m_socket, message.data(), length, MSG_NOSIGNAL);
}

void ProcessSupervisor::leaderEnded(pid_t group) {
    send(groupLeaderEnded + QByteArray::number(group));
}

void ProcessSupervisor::send(const QByteArray& message) {
    const std::lock_guard lock(m_mutex);
    if (m_socket < 0)
        return;
    const char* bytes = message.constData();  // with the NUL that ends it
    for (qsizetype left = message.size() + 1; left > 0;) {
        const ssize_t sent = ::send(m_socket, bytes, static_cast<std::size_t>(left), MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR)
            return;
        bytes += std::max<ssize_t>(sent, 0);
        left -= std::max<ssize_t>(sent, 0);
    }
}

void ProcessSupervisor::endEverything() {
    {
        const std::lock_guard lock(m_mutex);
        if (m_socket < 0)
            return;
        ::close(m_socket);
        m_socket = -1;
    }
    while (m_process > 0 && ::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace reelcrate
