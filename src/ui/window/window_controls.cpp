#include "ui/window/window_controls.h"

#include "app/controller.h"
#include "theme/tech_theme.h"

namespace reelcrate {

namespace {

bool isSettingUp(const Controller& controller) {
    return controller.tools().isCheckingTools() || controller.installer().isInstallingTools();
}

QString setupTitle(const Controller& controller) {
    if (controller.installer().isInstallingTools())
        return QStringLiteral("Setting Up");
    return controller.tools().isCheckingTools() ? QStringLiteral("Checking Setup")
                                                : QStringLiteral("Setup");
}

QString selectedCount(const Controller& controller) {
    const qsizetype selected = controller.selectedVisibleQueueItemCount();
    return selected > 0 ? QStringLiteral("%1 selected").arg(selected) : QString();
}

}  // namespace

QColor setupStatusColor(const Controller& controller) {
    if (controller.tools().coreToolsReady())
        return TechTheme::green;
    return isSettingUp(controller) ? TechTheme::gold : TechTheme::amber;
}

WindowControls WindowControls::of(const Controller& controller) {
    const bool downloading = controller.runs().activeDownloadRuns() > 0;
    const bool empty = controller.queue().size() == 0;
    WindowControls controls;
    controls.addingAllowed = controller.canAdd();
    controls.addTitle = downloading ? QStringLiteral("Downloading") : QStringLiteral("Add Songs");
    controls.canClearQueue = controller.canDelete() && !empty;
    controls.canDownloadAll = controller.canDownloadAll();
    controls.canStopAll = controller.canStopAll();
    controls.canDelete = controller.canDelete();
    controls.isQueueEmpty = empty;
    controls.songCount = QString::number(controller.queue().size());
    controls.activeCount = QStringLiteral("%1 active").arg(controller.activeQueueDownloadCount());
    controls.selectedCount = reelcrate::selectedCount(controller);
    controls.isSettingUp = reelcrate::isSettingUp(controller);
    controls.setupColor = setupStatusColor(controller);
    controls.setupDetail = controller.tools().setupDetailText();
    controls.setupTitle = reelcrate::setupTitle(controller);
    controls.updateTitle = controller.update().isScanningForUpdate()
                               ? QStringLiteral("Checking Updates")
                               : QStringLiteral("Scan for Update");
    controls.updateMessage = controller.update().updateMessage();
    return controls;
}

}  // namespace reelcrate
