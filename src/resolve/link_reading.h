#pragma once

#include "records/download_item.h"
#include "records/media_records.h"
#include "resolve/media_probe_output.h"

#include <QString>

/// What a row becomes by what was read of its link. Pure functions; any thread. What could not be
/// read is a text for the user: of the whole link in the resolution, of one of several in its
/// entry.
namespace reelcrate {

/// The resolution of a link of which nothing can be read.
QueueResolution unreadable(const DownloadItem& item);

/// One entry for each of the media. Where several have the page in common, each is told by its
/// number. `isPartial`: the tool failed for some; those that are missing in the count are entries
/// that need attention.
QueueResolution resolutionOfMedia(const DownloadItem& item, const ProbedMedia& found,
                                  bool isPartial);

/// The entries of a listing.
QueueResolution resolutionOfListing(const Listing& found);

/// "100 of 206 listed"
QString cutText(const CutListing& cut);

}  // namespace reelcrate
