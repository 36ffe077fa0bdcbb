#include "console/run_settings.h"

#include "app/content_view.h"
#include "console/arguments.h"

#include <QDir>

namespace reelcrate {

void applySettings(const Arguments& arguments, ContentView& view) {
    view.setDownloadMode(arguments.mode);
    if (arguments.loudness)
        view.setTagsLoudness(true);
    if (arguments.eventName)
        view.setEventName(*arguments.eventName);
    if (arguments.outputFolder)
        view.setOutputFolder(QDir::cleanPath(QDir().absoluteFilePath(*arguments.outputFolder)));
}

}  // namespace reelcrate
