#include "download/row_stages.h"

#include "download/output_parsing.h"
#include "download/progress_crawls.h"
#include "download/progress_seed.h"
#include "queue/queue_store.h"
#include "records/row_texts.h"

#include <algorithm>
#include <variant>

namespace reelcrate {

namespace {

double startProgress(const DownloadItem& row) {
    constexpr int startSalt = 7;
    return progressSeed(row, startSalt) * 0.04 + 0.02;
}

QString preparingText(DownloadMode mode) {
    return byMode(mode, row_text::preparingSong, row_text::preparingVideo);
}

template <typename... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace

RowStages::RowStages(QueueStore& queue, ProgressCrawls& crawls)
    : m_queue(queue), m_crawls(crawls) {}

void RowStages::waitForSlot(const QUuid& id) {
    m_queue.update(id, [](DownloadItem& row) {
        row.status = QueueStatus::queued;
        row.detail = row_text::waitingForSlot;
        row.progress = 0;
        row.hasRealProgress = false;
    });
}

void RowStages::prepare(const QUuid& id, DownloadMode mode) {
    prepareFrom(id, mode, 0);
}

void RowStages::prepareAgain(const QUuid& id, DownloadMode mode) {
    if (const DownloadItem* row = m_queue.find(id))
        prepareFrom(id, mode, row->progress);
}

void RowStages::prepareFrom(const QUuid& id, DownloadMode mode, double lowestProgress) {
    const DownloadItem* found = m_queue.find(id);
    if (found == nullptr)
        return;
    const auto [target, duration] = preparationProgressProfile(*found);
    m_queue.update(id, [&](DownloadItem& row) {
        row.status = QueueStatus::running;
        row.detail = preparingText(mode);
        row.progress = std::max(startProgress(row), lowestProgress);
        row.hasRealProgress = false;
    });
    m_crawls.crawlQueueProgress(id, target, duration);
}

void RowStages::enterStage(const QUuid& id, const QString& detail, double target, double duration) {
    const bool there = m_queue.update(id, [&](DownloadItem& row) {
        row.detail = detail;
        row.hasRealProgress = false;
    });
    if (there)
        m_crawls.crawlQueueProgress(id, target, duration);
}

void RowStages::applyDownloadOutput(const DownloadItem& item, DownloadMode mode,
                                    const QString& piece) {
    const DownloadItem* row = m_queue.find(item.id);
    if (row == nullptr)
        return;
    std::visit(Overloaded{
                   [](std::monostate) {},
                   [&](const RealProgress& real) {
                       m_queue.update(item.id, [&](DownloadItem& changed) {
                           changed.progress = real.progress;
                           changed.hasRealProgress = true;
                           changed.detail = real.detail;
                       });
                   },
                   [&](const StageBegun& stage) {
                       enterStage(item.id, stage.detail, stage.target, stage.durationSeconds);
                   },
                   [&](const DetailOnly& text) {
                       m_queue.update(item.id,
                                      [&](DownloadItem& changed) { changed.detail = text.detail; });
                   },
               },
               outputEffect(*row, mode, piece));
}

void RowStages::complete(const QUuid& id, const SavedSong& song) {
    m_crawls.cancel(id);
    m_queue.update(id, [&](DownloadItem& row) {
        row.status = QueueStatus::complete;
        row.progress = 1.0;
        row.hasRealProgress = false;
        row.detail = song.detail;
        row.outputPath = song.path;
        row.note = song.note;
        row.downloadedSeconds = song.downloadedSeconds;
        row.playingSeconds = song.playingSeconds;
    });
}

void RowStages::completeUnlessTaken(const QUuid& id, const SavedSong& song) {
    const DownloadItem* row = m_queue.find(id);
    if (row != nullptr && row->status == QueueStatus::waiting)
        complete(id, song);
}

void RowStages::fail(const QUuid& id, FailureCause cause) {
    m_crawls.cancel(id);
    m_queue.update(id, [&](DownloadItem& row) {
        row.status = QueueStatus::failed;
        row.progress = 0;
        row.hasRealProgress = false;
        row.detail = failureText(cause, row.source);
        row.cause = cause;
    });
}

void RowStages::giveBack(const QUuid& id) {
    m_crawls.cancel(id);
    m_queue.update(id, [](DownloadItem& row) {
        row.status = QueueStatus::waiting;
        row.progress = 0;
        row.hasRealProgress = false;
        row.detail = row_text::readyToDownload;
    });
}

}  // namespace reelcrate
