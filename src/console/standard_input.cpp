#include "console/standard_input.h"

#include <array>
#include <cerrno>
#include <unistd.h>

namespace reelcrate {

StandardInput::StandardInput() : m_notifier(STDIN_FILENO, QSocketNotifier::Read) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &StandardInput::read);
}

void StandardInput::read() {
    std::array<char, 65536> bytes{};
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count > 0) {
        m_bytes.append(bytes.data(), count);
    } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
        m_notifier.setEnabled(false);
        Q_EMIT finished(m_bytes);
    }
}

}  // namespace reelcrate
