#pragma once

#include "records/download_item.h"

#include <QList>
#include <QStringList>

namespace reelcrate {

class QueueStore;

/// The rows that links become, in the links' order: one for each link that no row of the queue has
/// yet, classified and waiting to be read. A link that occurs twice yields two rows. Main thread.
QList<DownloadItem> newRowsForLinks(const QStringList& links, const QueueStore& queue);

}  // namespace reelcrate
