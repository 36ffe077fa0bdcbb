// What the engine's steps cost per item, in queues of growing length, in CPU time of their thread.
// "per_item" should not grow with the number of items; "times_bare" is the ratio to one bare pass
// over the same data, measured in turn in the same run.

#include "app/controller.h"
#include "download/row_stages.h"
#include "download/run_log.h"
#include "library/finished_files.h"
#include "measure.h"
#include "queue/links.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>

namespace {

using namespace reelcrate;
ProcessSupervisor* theSupervisor = nullptr;

double timed(const std::function<void()>& work) {
    const double start = now(CLOCK_THREAD_CPUTIME_ID);
    work();
    return now(CLOCK_THREAD_CPUTIME_ID) - start;
}

void reportPerItem(benchmark::State& state, double items) {
    state.counters["per_item"] = benchmark::Counter(
        items, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void measure(benchmark::State& state, const std::function<void()>& prepare,
             const std::function<void()>& work, double items) {
    for ([[maybe_unused]] auto iteration : state) {
        prepare();
        state.SetIterationTime(timed(work));
    }
    reportPerItem(state, items);
}

/// Reports the work as the benchmark's time, and its ratio to the bare pass.
void compare(benchmark::State& state, const std::function<void()>& prepare,
             const std::function<void()>& work, const std::function<void()>& bare) {
    double all = 0;
    double allBare = 0;
    for ([[maybe_unused]] auto iteration : state) {
        prepare();
        allBare += timed(bare);
        const double seconds = timed(work);
        all += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["times_bare"] = all / allBare;
    reportPerItem(state, static_cast<double>(state.range(0)));
}

QString linkNumber(qint64 i) {
    return QStringLiteral("https://site.example/song/number-%1").arg(i);
}

QStringList linkNumbers(qint64 count) {
    QStringList links;
    for (qint64 i = 0; i < count; ++i)
        links.append(linkNumber(i));
    return links;
}

/// Pasted text becomes rows; bare: the matches of the link pattern over the same text.
void intake(benchmark::State& state, const char* linkFormat) {
    QString text;
    for (qint64 i = 0; i < state.range(0); ++i) {
        const QString link = QString::fromLatin1(linkFormat).arg(i);
        text += QStringLiteral("Listen to (%1), it is great\n").arg(link);
    }
    std::unique_ptr<Controller> controller;
    compare(
        state,
        [&] { controller = std::make_unique<Controller>(*theSupervisor, ControllerSetup()); },
        [&] { controller->addLinksToQueue(extractLinks(text)); },
        [&] {
            const QRegularExpression pattern(QStringLiteral("https?://[^\\s]+"));
            for (auto match = pattern.globalMatch(text); match.hasNext();)
                benchmark::DoNotOptimize(match.next().captured());
        });
    if (controller->queue().size() != state.range(0))
        state.SkipWithError("not every link became a row");
}

/// A playlist is applied to the queue against a folder with a file for each song, found by title;
/// bare: the folder's listing with dates and one comparison key for each file and each song.
void resolution(benchmark::State& state) {
    const QTemporaryDir output;
    ControllerSetup setup;
    setup.desktopFolder = output.path();
    QueueResolution songs;
    std::unique_ptr<Controller> controller;
    const auto makeController = [&] {
        controller = std::make_unique<Controller>(*theSupervisor, setup);
        controller->addLinksToQueue({QStringLiteral("https://site.example/list")});
    };
    makeController();
    QDir().mkpath(controller->eventFolder());
    for (qint64 i = 0; i < state.range(0); ++i) {
        const QString title =
            QStringLiteral("The Same Band - Song Number %1 of Many").arg(i * 7919);
        songs.entries.append({linkNumber(i), SourceType::link, title, {}, {}});
        QFile file(controller->eventFolder() + u'/' + title + QStringLiteral(" [%1].mp3").arg(i));
        if (!file.open(QIODevice::WriteOnly))
            return state.SkipWithError("no file");
    }
    compare(
        state, makeController,
        [&] {
            controller->resolution().applyResolution(songs, controller->queue().rows().first(), 0);
        },
        [&] {
            for (const QString& path : regularFiles(controller->eventFolder())) {
                benchmark::DoNotOptimize(modificationDate(path));
                benchmark::DoNotOptimize(normalizedDownloadKey(nameWithoutExtension(path)));
            }
            for (const PlaylistEntry& entry : songs.entries)
                benchmark::DoNotOptimize(normalizedDownloadKey(entry.title));
        });
    if (controller->queue().countWithStatus(QueueStatus::complete) != state.range(0))
        state.SkipWithError("not every song was found");
}

/// Select all, a range over all, and the deletion of all; bare: a set of all rows' ids.
void selection(benchmark::State& state) {
    const QStringList links = linkNumbers(state.range(0));
    std::unique_ptr<Controller> controller;
    compare(
        state,
        [&] {
            controller = std::make_unique<Controller>(*theSupervisor, ControllerSetup());
            controller->addLinksToQueue(links);
        },
        [&] {
            controller->editor().selectAllQueueItemsFromUserAction();
            controller->editor().updateQueueSelection(controller->queue().rows().first().id,
                                                      KeyModifier::shift);
            controller->editor().selectAllQueueItemsFromUserAction();
            controller->editor().deleteSelectedQueueItemsFromUserAction();
        },
        [&] {
            QSet<QUuid> ids;
            for (const DownloadItem& row : controller->queue().rows())
                ids.insert(row.id);
            benchmark::DoNotOptimize(ids);
        });
    if (controller->queue().size() != 0)
        state.SkipWithError("rows are left");
}

/// Every other row is deleted, in one go.
void deletion(benchmark::State& state) {
    const QStringList links = linkNumbers(state.range(0));
    std::unique_ptr<Controller> controller;
    QSet<QUuid> ids;
    measure(
        state,
        [&] {
            controller = std::make_unique<Controller>(*theSupervisor, ControllerSetup());
            controller->addLinksToQueue(links);
            ids.clear();
            for (qsizetype i = 0; i < controller->queue().size(); i += 2)
                ids.insert(controller->queue().rows().at(i).id);
        },
        [&] { controller->editor().deleteQueueItems(ids); }, static_cast<double>(state.range(0)));
    if (controller->queue().size() != state.range(0) / 2)
        state.SkipWithError("other rows are left than should be");
}

/// What a download works with, in a queue of this length: its row is the last one.
struct RunningRow {
    explicit RunningRow(qint64 queueLength) {
        QList<DownloadItem> rows(queueLength - 1);
        for (DownloadItem& row : rows)
            row.id = newRowId();
        item.status = QueueStatus::running;
        item.title = QStringLiteral("The Same Band - Song");
        rows.append(item);
        queue.append(rows);
    }

    DownloadItem item;
    QueueStore queue;
    ProgressCrawls crawls{queue};
    RowStages stages{queue, crawls};
    RunLog log;
};

/// Pieces of a downloader's output reach the row and the log.
void outputPiece(benchmark::State& state) {
    constexpr int pieces = 1000;
    RunningRow running(state.range(0));
    const QStringList lines{
        QStringLiteral("[download] Destination: /music/Party/The Same Band - Song [7].m4a"),
        QStringLiteral("RCR_PROGRESS: 41.5%"),
        QStringLiteral("[info] There are no video thumbnails to download"),
    };
    measure(
        state, [&] { running.log.clear(); },
        [&] {
            for (int i = 0; i < pieces; ++i) {
                const QString& line = lines.at(i % lines.size());
                running.log.append(line);
                running.stages.applyDownloadOutput(running.item, DownloadMode::audio, line);
            }
        },
        pieces);
}

/// A crawl moves the bar, timer included.
void tick(benchmark::State& state) {
    constexpr int ticks = 20;
    constexpr double tickSeconds = 0.16;
    RunningRow running(state.range(0));
    measure(
        state,
        [&] {
            QCoreApplication::processEvents();  // what earlier benchmarks left
            running.queue.update(running.item.id, [](DownloadItem& row) { row.progress = 0; });
        },
        [&] {
            QEventLoop loop;
            QObject::connect(&running.queue, &QueueStore::rowChanged, &loop, [&] {
                if (running.queue.rows().last().progress >= 0.9)
                    loop.quit();
            });
            running.crawls.crawlQueueProgress(running.item.id, 0.9, ticks * tickSeconds);
            loop.exec();
        },
        ticks);
}

void eachSize(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(100)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(intake, links, "https://site.example/song/number-%1")->Apply(eachSize);
BENCHMARK_CAPTURE(intake, videos, "https://www.youtube.com/watch?v=number-%1")->Apply(eachSize);
BENCHMARK(selection)->Apply(eachSize);
BENCHMARK(deletion)->Apply(eachSize);
BENCHMARK(outputPiece)->Apply(eachSize);
BENCHMARK(tick)->Apply(eachSize)->Iterations(3);
BENCHMARK(resolution)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(5000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    ProcessSupervisor supervisor;
    theSupervisor = &supervisor;
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
