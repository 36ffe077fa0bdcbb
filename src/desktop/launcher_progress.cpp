#include "desktop/launcher_progress.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QString>
#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace reelcrate {

namespace {

// Also for what is no number, as a share of nothing.
double withinBounds(double fraction) {
    return fraction > 0 ? std::min(fraction, 1.0) : 0.0;
}

QDBusMessage updateSignal(double fraction, bool isVisible) {
    // Docks tell programs apart by the sender; the path only has to be one of its own.
    const QString path = QStringLiteral("/com/canonical/unity/launcherentry/%1")
                             .arg(QCoreApplication::applicationPid());
    QDBusMessage signal = QDBusMessage::createSignal(
        path, QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
    const QVariantMap properties{{QStringLiteral("progress"), fraction},
                                 {QStringLiteral("progress-visible"), isVisible}};
    signal << QStringLiteral("application://reelcrate.desktop") << properties;
    return signal;
}

}  // namespace

LauncherProgress::LauncherProgress(QDBusConnection bus) : m_bus(std::move(bus)) {}

void LauncherProgress::setProgress(std::optional<double> fraction) {
    const double shown = withinBounds(fraction.value_or(0));
    const auto percent = fraction ? std::optional(qRound(shown * 100)) : std::nullopt;
    if (percent == m_shownPercent)
        return;
    m_shownPercent = percent;
    m_bus.send(updateSignal(shown, percent.has_value()));
}

}  // namespace reelcrate
