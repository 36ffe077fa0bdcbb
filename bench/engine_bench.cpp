// What intake and resolution cost beside one bare pass over the same data, measured in turn in one
// run: "times_bare" is the ratio, and it should not grow with the number of items.

#include "app/content_view.h"
#include "download/finished_files.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <memory>

namespace {

using namespace reelcrate;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

ProcessSupervisor* theSupervisor = nullptr;

Seconds timed(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return Clock::now() - start;
}

/// Reports the work as the benchmark's time, and its ratio to the bare pass.
void compare(benchmark::State& state, const std::function<void()>& prepare,
             const std::function<void()>& work, const std::function<void()>& bare) {
    Seconds all{};
    Seconds allBare{};
    for ([[maybe_unused]] auto iteration : state) {
        prepare();
        allBare += timed(bare);
        const Seconds seconds = timed(work);
        all += seconds;
        state.SetIterationTime(seconds.count());
    }
    state.counters["times_bare"] = all / allBare;
    state.counters["per_item"] = benchmark::Counter(
        static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

QString linkNumber(qint64 i) {
    return QStringLiteral("https://site.example/song/number-%1").arg(i);
}

/// Pasted text becomes rows; bare: the matches of the link pattern over the same text.
void intake(benchmark::State& state) {
    QString text;
    for (qint64 i = 0; i < state.range(0); ++i)
        text += QStringLiteral("Listen to (%1), it is great\n").arg(linkNumber(i));
    std::unique_ptr<ContentView> view;
    compare(
        state, [&] { view = std::make_unique<ContentView>(*theSupervisor, ContentViewSetup()); },
        [&] { view->addLinksToQueue(ContentView::extractLinks(text)); },
        [&] {
            const QRegularExpression pattern(QStringLiteral("https?://[^\\s]+"));
            for (auto match = pattern.globalMatch(text); match.hasNext();)
                benchmark::DoNotOptimize(match.next().captured());
        });
}

/// A playlist is applied to the queue against a folder with a file for each song, found by title;
/// bare: the folder's listing with dates and one comparison key for each file and each song.
void resolution(benchmark::State& state) {
    const QTemporaryDir output;
    ContentViewSetup setup;
    setup.desktopFolder = output.path();
    QueueResolution songs;
    std::unique_ptr<ContentView> view;
    const auto makeView = [&] {
        view = std::make_unique<ContentView>(*theSupervisor, setup);
        view->addLinksToQueue({QStringLiteral("https://site.example/list")});
    };
    makeView();
    QDir().mkpath(view->eventFolder());
    for (qint64 i = 0; i < state.range(0); ++i) {
        const QString title =
            QStringLiteral("The Same Band - Song Number %1 of Many").arg(i * 7919);
        songs.entries.append({linkNumber(i), SourceType::link, title, {}, {}});
        QFile file(view->eventFolder() + u'/' + title + QStringLiteral(" [%1].mp3").arg(i));
        if (!file.open(QIODevice::WriteOnly))
            return state.SkipWithError("no file");
    }
    compare(
        state, makeView, [&] { view->applyResolution(songs, view->queue().rows().first(), 0); },
        [&] {
            for (const QString& path : regularFiles(view->eventFolder())) {
                benchmark::DoNotOptimize(modificationDate(path));
                benchmark::DoNotOptimize(normalizedDownloadKey(nameWithoutExtension(path)));
            }
            for (const PlaylistEntry& entry : songs.entries)
                benchmark::DoNotOptimize(normalizedDownloadKey(entry.title));
        });
    if (view->queue().countWithStatus(QueueStatus::complete) != state.range(0))
        state.SkipWithError("not every song was found");
}

/// Select all, a range over all, and the deletion of all; bare: a set of all rows' ids.
void selection(benchmark::State& state) {
    QStringList links;
    for (qint64 i = 0; i < state.range(0); ++i)
        links.append(linkNumber(i));
    std::unique_ptr<ContentView> view;
    compare(
        state,
        [&] {
            view = std::make_unique<ContentView>(*theSupervisor, ContentViewSetup());
            view->addLinksToQueue(links);
        },
        [&] {
            view->selectAllQueueItemsFromUserAction();
            view->updateQueueSelection(view->queue().rows().first().id, KeyModifier::shift);
            view->selectAllQueueItemsFromUserAction();
            view->deleteSelectedQueueItemsFromUserAction();
        },
        [&] {
            QSet<QUuid> ids;
            for (const DownloadItem& row : view->queue().rows())
                ids.insert(row.id);
            benchmark::DoNotOptimize(ids);
        });
    if (view->queue().size() != 0)
        state.SkipWithError("rows are left");
}

BENCHMARK(intake)->Arg(100)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(selection)->Arg(100)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(
    benchmark::kMillisecond);
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
