#include "desktop/service_call.h"

#include <QDBusPendingCallWatcher>

#include <utility>

namespace reelcrate {

void callService(const QDBusConnection& bus, const QDBusMessage& call, QObject* receiver,
                 std::function<void(const QDBusMessage& answer)> answered,
                 std::chrono::milliseconds timeLimit) {
    const QDBusPendingCall pending = bus.asyncCall(call, static_cast<int>(timeLimit.count()));
    if (pending.isError()) {  // already: without a bus a watcher would never hear of it
        answered(pending.reply());
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(pending, receiver);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, receiver,
                     [watcher, answered = std::move(answered)] {
                         watcher->deleteLater();
                         answered(watcher->reply());
                     });
}

}  // namespace reelcrate
