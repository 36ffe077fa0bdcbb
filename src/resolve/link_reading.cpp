#include "resolve/link_reading.h"

#include <QHash>
#include <QSet>

namespace reelcrate {

namespace {

QString failureText(SourceType source) {
    return source == SourceType::youtube
               ? QStringLiteral(
                     "Could not load the YouTube title. Check that the video or playlist is "
                     "public.")
               : QStringLiteral("Could not load link info. Check that the link is public.");
}

PlaylistEntry entryFor(const DownloadItem& item, const MediaInfo& media) {
    return {.url = media.resolvedURL.isEmpty() ? item.url : media.resolvedURL,
            .source = item.source,
            .title = media.title,
            .duration = media.duration,
            .thumbnailURL = media.thumbnailURL};
}

PlaylistEntry deadEntry(const DownloadItem& item, int number) {
    return {.url = item.url,
            .source = item.source,
            .title = QStringLiteral("Item %1 of %2").arg(number).arg(item.url),
            .duration = {},
            .thumbnailURL = {},
            .playlistItem = number,
            .isRead = false,
            .failure = failureText(item.source)};
}

/// How many of the entries lead to one page.
QHash<QString, int> pageCounts(const QList<PlaylistEntry>& entries) {
    QHash<QString, int> counts;
    for (const PlaylistEntry& entry : entries)
        ++counts[entry.url];
    return counts;
}

QueueResolution oneSong(const DownloadItem& item, const MediaInfo& media) {
    PlaylistEntry entry = entryFor(item, media);
    if (item.playlistItem > 0) {
        // The page of one of several may be the page of all.
        entry.url = item.url;
        entry.playlistItem = item.playlistItem;
    }
    return {.entries = {entry}};
}

}  // namespace

QueueResolution unreadable(const DownloadItem& item) {
    return {.entries = {}, .failure = failureText(item.source)};
}

QueueResolution resolutionOfMedia(const DownloadItem& item, const ProbedMedia& found,
                                  bool isPartial) {
    // The first of several, of which the others never came.
    const bool isBeginning = isPartial && found.counted == 1 && !found.media.isEmpty() &&
                             found.media.first().playlistIndex > 0 && item.playlistItem == 0;
    if (found.media.isEmpty() || isBeginning)
        return unreadable(item);
    if (item.playlistItem > 0 || found.counted == 1)
        return oneSong(item, found.media.first());

    QList<PlaylistEntry> read;
    for (const MediaInfo& media : found.media)
        read.append(entryFor(item, media));
    const QHash<QString, int> counts = pageCounts(read);
    QueueResolution resolution;
    int next = 1;  // the number of the entry that is expected
    const auto addDead = [&](int end) {
        for (; isPartial && next < end; ++next)
            resolution.entries.append(deadEntry(item, next));
    };
    for (qsizetype i = 0; i < read.size(); ++i) {
        const int number = found.media.at(i).playlistIndex;
        PlaylistEntry entry = read.at(i);
        if (number > 0 && (counts.value(entry.url) > 1 || entry.url == item.url)) {
            entry.url = item.url;
            entry.playlistItem = number;
        }
        if (number > 0) {
            addDead(number);
            next = number + 1;
        }
        resolution.entries.append(entry);
    }
    addDead(static_cast<int>(found.counted) + 1);
    const qsizetype listed = isPartial ? found.counted : read.size();
    if (listed < found.onSite)
        resolution.cut = CutListing{.listed = listed, .counted = found.onSite};
    return resolution;
}

QueueResolution resolutionOfListing(const Listing& found) {
    return {.entries = found.entries, .cut = found.cut};
}

QString cutText(const CutListing& cut) {
    return QStringLiteral("%1 of %2 listed").arg(cut.listed).arg(cut.counted);
}

}  // namespace reelcrate
