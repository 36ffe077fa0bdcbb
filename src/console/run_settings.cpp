#include "console/run_settings.h"

#include "app/controller.h"
#include "console/arguments.h"

#include <QDir>

namespace reelcrate {

void applySettings(const Arguments& arguments, Controller& controller) {
    controller.setDownloadMode(arguments.mode);
    if (arguments.loudness)
        controller.setTagsLoudness(true);
    if (arguments.eventName)
        controller.setEventName(*arguments.eventName);
    if (arguments.outputFolder)
        controller.setOutputFolder(
            QDir::cleanPath(QDir().absoluteFilePath(*arguments.outputFolder)));
}

}  // namespace reelcrate
