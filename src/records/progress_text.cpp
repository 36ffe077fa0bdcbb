#include "records/progress_text.h"

#include <algorithm>
#include <cmath>

namespace reelcrate {

double progressBarValue(double progress) {
    return std::isnan(progress) ? 0.0 : std::clamp(progress, 0.0, 1.0);
}

QString progressPercentage(double progress) {
    return QStringLiteral("%1%").arg(std::lround(progressBarValue(progress) * 100));
}

}  // namespace reelcrate
