#pragma once

#include "records/download_item.h"

/// A row as it stands in the queue before anything was done with it.
namespace reelcrate {

inline DownloadItem makeRow(SourceType source, const QString& title, const QString& url = {}) {
    DownloadItem row;
    row.url = url;
    row.source = source;
    row.title = title;
    return row;
}

}  // namespace reelcrate
