#include "ui/window_controls.h"

#include "app/content_view.h"
#include "theme/tech_theme.h"

namespace reelcrate {

namespace {

bool isSettingUp(const ContentView& view) {
    return view.isCheckingTools() || view.isInstallingTools();
}

QString setupTitle(const ContentView& view) {
    if (view.isInstallingTools())
        return QStringLiteral("Setting Up");
    return view.isCheckingTools() ? QStringLiteral("Checking Setup") : QStringLiteral("Setup");
}

QString selectedCount(const ContentView& view) {
    const qsizetype selected = view.selectedVisibleQueueItemCount();
    return selected > 0 ? QStringLiteral("%1 selected").arg(selected) : QString();
}

}  // namespace

QColor setupStatusColor(const ContentView& view) {
    if (view.coreToolsReady())
        return TechTheme::green;
    return isSettingUp(view) ? TechTheme::gold : TechTheme::amber;
}

WindowControls WindowControls::of(const ContentView& view) {
    const bool downloading = view.activeDownloadRuns() > 0;
    const bool empty = view.queue().size() == 0;
    WindowControls controls;
    controls.addingAllowed = view.canAdd();
    controls.addTitle = downloading ? QStringLiteral("Downloading") : QStringLiteral("Add Songs");
    controls.canClearQueue = view.canDelete() && !empty;
    controls.canDownloadAll = view.canDownloadAll();
    controls.canStopAll = view.canStopAll();
    controls.canDelete = view.canDelete();
    controls.isQueueEmpty = empty;
    controls.songCount = QString::number(view.queue().size());
    controls.activeCount = QStringLiteral("%1 active").arg(view.activeQueueDownloadCount());
    controls.selectedCount = reelcrate::selectedCount(view);
    controls.isSettingUp = reelcrate::isSettingUp(view);
    controls.setupColor = setupStatusColor(view);
    controls.setupDetail = view.setupDetailText();
    controls.setupTitle = reelcrate::setupTitle(view);
    controls.updateTitle = view.isScanningForUpdate() ? QStringLiteral("Checking Updates")
                                                      : QStringLiteral("Scan for Update");
    controls.updateMessage = view.updateMessage();
    return controls;
}

}  // namespace reelcrate
