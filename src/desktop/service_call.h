#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <chrono>
#include <functional>

class QObject;

/// Asks a service of the desktop something without waiting for it. Main thread. Whatever goes
/// wrong, from a bus that is not there to a service that stays silent, is an answer of the type
/// QDBusMessage::ErrorMessage.
namespace reelcrate {

/// What the bus itself allows, long enough for a service that has to be started first.
constexpr std::chrono::milliseconds ordinaryTimeLimit{25'000};

/// `answered` is called once, before this returns when that fails at once, as without a bus; not
/// at all when the receiver is destroyed first.
void callService(const QDBusConnection& bus, const QDBusMessage& call, QObject* receiver,
                 std::function<void(const QDBusMessage& answer)> answered,
                 std::chrono::milliseconds timeLimit = ordinaryTimeLimit);

}  // namespace reelcrate
