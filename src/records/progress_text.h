#pragma once

#include <QString>

/// A running row's progress as window and terminal show it. Pure.
namespace reelcrate {

/// Within 0 to 1; what is no number counts as 0.
double progressBarValue(double progress);
/// Such as "42%", rounded half up.
QString progressPercentage(double progress);

}  // namespace reelcrate
