#pragma once

#include "records/download_item.h"
#include "records/download_mode.h"

#include <QString>
#include <QUuid>

/// What a download does to its row, from the preparation to the end. Main thread. Each operation
/// finds the row by id; for a row that was deleted meanwhile it does nothing.
namespace reelcrate {

class ProgressCrawls;
class QueueStore;

class RowStages {
public:
    RowStages(QueueStore& queue, ProgressCrawls& crawls);

    /// The row waits for a slot of its run.
    void waitForSlot(const QUuid& id);

    /// The run starts with this row among the first.
    void prepare(const QUuid& id, DownloadMode mode);

    /// The row's own download starts; its bar does not go back.
    void prepareAgain(const QUuid& id, DownloadMode mode);

    /// A stage without a percentage: the bar crawls to `target` over `duration` seconds.
    void enterStage(const QUuid& id, const QString& detail, double target, double duration);

    /// One trimmed piece of the downloader's output.
    void applyDownloadOutput(const DownloadItem& item, DownloadMode mode, const QString& piece);

    /// The song is in the event folder, at this path.
    void complete(const QUuid& id, const QString& path, const QString& detail);

    /// The same, of a row that was given back, unless another run has taken it meanwhile.
    void completeUnlessTaken(const QUuid& id, const QString& path, const QString& detail);

    void fail(const QUuid& id, FailureCause cause);

    /// The run does not get to the row: it is as it was before.
    void giveBack(const QUuid& id);

private:
    void prepareFrom(const QUuid& id, DownloadMode mode, double lowestProgress);

    QueueStore& m_queue;
    ProgressCrawls& m_crawls;
};

}  // namespace reelcrate
