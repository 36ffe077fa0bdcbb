#pragma once

#include <QString>

/// What draws the window. Where OpenGL would run on the processor, the toolkit's own renderer draws
/// the same for a fraction of the time and memory, which downloads need. Main thread.
namespace reelcrate {

/// By the name that OpenGL gives its renderer; true for an empty one. Pure.
bool rendersOnProcessor(const QString& rendererName);

/// Needs a QGuiApplication, and has no effect once there is a window. What the environment chooses
/// stays.
void chooseRenderer();

}  // namespace reelcrate
