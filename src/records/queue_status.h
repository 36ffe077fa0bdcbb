#pragma once

#include <QString>

#include <optional>

/// The life state of a queue row. A plain value; any thread.
namespace reelcrate {

enum class QueueStatus {
    waiting,   ///< in the queue, not scheduled; the state of every new row
    queued,    ///< scheduled by a download run, waiting for a free slot
    running,   ///< its download process is running
    complete,  ///< finished; the row's output path names the file
    failed,    ///< reading its link or downloading it failed; the row's detail says why
};

/// The visible label, for example "Needs Attention"; the only text form of the state.
QString rawValue(QueueStatus status);

/// The state with exactly this label (case-sensitive), or nothing.
std::optional<QueueStatus> queueStatusFromRawValue(const QString& rawValue);

}  // namespace reelcrate
