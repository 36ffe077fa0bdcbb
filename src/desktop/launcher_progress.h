#pragma once

#include <QDBusConnection>

#include <optional>

/// Shows progress on the program's icon in the desktop's dock or task bar. Main thread; nothing
/// waits for the desktop. Where nothing shows progress, nothing happens.
namespace reelcrate {

class LauncherProgress {
public:
    explicit LauncherProgress(QDBusConnection bus = QDBusConnection::sessionBus());

    /// From 0 to 1; absent hides it. Call it as often as you like: the desktop hears of whole
    /// percents.
    void setProgress(std::optional<double> fraction);

private:
    QDBusConnection m_bus;
    std::optional<int> m_shownPercent;
};

}  // namespace reelcrate
