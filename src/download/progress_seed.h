#pragma once

#include "records/download_item.h"

/// The small differences from row to row in where simulated progress goes and how fast, so that
/// bars do not move in step. Pure functions; any thread.
namespace reelcrate {

/// A fraction from 0 to 0.9999, always the same for the same row, title and salt.
double progressSeed(const DownloadItem& item, int salt);

struct PreparationProgressProfile {
    double target = 0;  ///< fraction of the row's progress
    double durationSeconds = 0;

    friend bool operator==(const PreparationProgressProfile&,
                           const PreparationProgressProfile&) = default;
};

/// The crawl of a row from its start until its tool reports something.
PreparationProgressProfile preparationProgressProfile(const DownloadItem& item);

}  // namespace reelcrate
