#pragma once

#include "records/failure_cause.h"
#include "records/queue_status.h"
#include "records/source_type.h"

#include <QString>
#include <QUuid>

#include <optional>

/// One row of the queue. A plain value, copied freely; found again by `id`, never by position.
namespace reelcrate {

/// A random identifier, unlike all others. Any thread.
QUuid newRowId();

/// The standard upper-case text form of an identifier, without braces.
QString idText(const QUuid& id);

/// What reading a row's link has told so far.
enum class LinkReading {
    open,      ///< nothing: the title, if there is one, is a stand-in
    song,      ///< the row is one song, under its own title
    givenUp,   ///< nothing, since it was stopped: the link is read when the row is started
    repeated,  ///< every song behind the link has a row of its own already
};

struct DownloadItem {
    QUuid id = newRowId();
    QString url;
    SourceType source = SourceType::link;
    QueueStatus status = QueueStatus::waiting;
    QString detail = QStringLiteral("Ready");  ///< one line of status under the row's title
    QString outputPath;                        ///< absolute; empty until the file is known
    QString title;
    QString duration;      ///< display form such as 3:45; empty when unknown
    QString thumbnailURL;  ///< empty when there is none
    bool isResolvingInfo = false;
    double progress = 0.0;         ///< 0 to 1
    bool hasRealProgress = false;  ///< the shown progress is the tool's own percentage
    int playlistItem = 0;  ///< which of several media on one page, from 1; 0: all that is there
    LinkReading reading = LinkReading::open;
    std::optional<FailureCause> cause;  ///< of a download that failed; absent in all other states

    friend bool operator==(const DownloadItem&, const DownloadItem&) = default;
};

}  // namespace reelcrate
