#pragma once

#include "records/download_item.h"
#include "records/download_mode.h"

#include <QString>

#include <variant>

/// What to show on the row of a download for its tool's output. Pure functions of pieces of output
/// as they arrive, each holding one line, several, or a part of one. Any thread; text that says
/// nothing known is no failure.
namespace reelcrate {

/// The row's text for the piece: the stage that its last line tells, or that line, shortened.
QString downloadDetail(const QString& piece, DownloadMode mode);

/// The tool's own percentage.
struct RealProgress {
    double progress = 0;  ///< of the whole row; never below what it had
    QString detail;

    friend bool operator==(const RealProgress&, const RealProgress&) = default;
};

/// A stage without a percentage: the row's progress crawls to the target.
struct StageBegun {
    QString detail;
    double target = 0;
    double durationSeconds = 0;

    friend bool operator==(const StageBegun&, const StageBegun&) = default;
};

struct DetailOnly {
    QString detail;

    friend bool operator==(const DetailOnly&, const DetailOnly&) = default;
};

/// What a piece of output does to its row; the first alternative: nothing.
using OutputEffect = std::variant<std::monostate, RealProgress, StageBegun, DetailOnly>;

/// Of `row` the id, title, source and progress count. `piece` is trimmed and not empty.
OutputEffect outputEffect(const DownloadItem& row, DownloadMode mode, const QString& piece);

}  // namespace reelcrate
