#include "records/queue_status.h"

#include <array>

namespace reelcrate {

namespace {

// In the order of the enumeration.
constexpr std::array labels{"Ready", "Queued", "Downloading", "Complete", "Needs Attention"};

}  // namespace

QString rawValue(QueueStatus status) {
    return QString::fromLatin1(labels.at(static_cast<std::size_t>(status)));
}

std::optional<QueueStatus> queueStatusFromRawValue(const QString& rawValue) {
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (rawValue == QLatin1String(labels.at(i)))
            return static_cast<QueueStatus>(i);
    }
    return std::nullopt;
}

}  // namespace reelcrate
