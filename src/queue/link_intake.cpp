#include "queue/link_intake.h"

#include "queue/links.h"
#include "queue/queue_store.h"
#include "records/row_texts.h"

namespace reelcrate {

namespace {

DownloadItem rowForLink(const QString& link) {
    DownloadItem row;
    row.url = link;
    row.source = classifySource(link);
    row.isResolvingInfo = true;
    if (playlistLike(link, row.source)) {
        row.detail = row_text::readingPlaylist;
        row.title = QStringLiteral("Reading playlist...");
    } else {
        row.detail = row_text::loadingInfo;
    }
    return row;
}

}  // namespace

QList<DownloadItem> newRowsForLinks(const QStringList& links, const QueueStore& queue) {
    QList<DownloadItem> rows;
    rows.reserve(links.size());
    for (const QString& link : links) {
        if (queue.countWithUrl(link) == 0)
            rows.append(rowForLink(link));
    }
    return rows;
}

}  // namespace reelcrate
