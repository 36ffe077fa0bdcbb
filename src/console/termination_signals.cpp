#include "console/termination_signals.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace reelcrate {

namespace {

constexpr std::array handledSignals{SIGINT, SIGTERM, SIGHUP};

/// Whoever starts a program with "nohup" wants it to outlive the terminal.
bool isToBeIgnored(int signalNumber) {
    struct sigaction inherited = {};
    ::sigaction(signalNumber, nullptr, &inherited);
    return signalNumber == SIGHUP && inherited.sa_handler == SIG_IGN;
}

// A signal handler may do little more than write to a pipe, and can find it only in a global.
std::array<int, 2> pipeEnds{-1, -1};

extern "C" void writeSignalNumber(int signalNumber) {
    const auto number = static_cast<char>(signalNumber);
    [[maybe_unused]] const auto written = ::write(pipeEnds[1], &number, 1);
}

int openPipe() {
    if (::pipe(pipeEnds.data()) != 0)
        qFatal("No pipe for signals");
    for (int end : pipeEnds) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return pipeEnds[0];
}

}  // namespace

TerminationSignals::TerminationSignals() : m_notifier(openPipe(), QSocketNotifier::Read) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::read);
    struct sigaction action = {};
    action.sa_handler = writeSignalNumber;
    action.sa_flags = SA_RESTART;
    for (int handled : handledSignals) {
        if (!isToBeIgnored(handled))
            ::sigaction(handled, &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals() {
    for (int handled : handledSignals) {
        if (!isToBeIgnored(handled))
            ::signal(handled, SIG_DFL);
    }
    for (int end : pipeEnds)
        ::close(end);
}

void TerminationSignals::read() {
    char number = 0;
    while (::read(pipeEnds[0], &number, 1) == 1)
        Q_EMIT received(number);
}

}  // namespace reelcrate
