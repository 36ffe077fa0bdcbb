// What the window costs, in one measurement per call: "window_bench KIND FOLDER ARGUMENT...", where
// FOLDER is a home with stand-ins for the tools. KIND is
//   window                the program's start
//   bare WIDTH HEIGHT     the start of a bare window of the same toolkit
//   queue COUNT           work on one row and on all of them, in a queue of so many
//   idle RUNNING STILL    five seconds in which nothing is done, with so many rows running; STILL
//   is
//                         1 where the desktop asks for reduced motion
// Times of work are CPU times: other programs' work on the machine does not count into them.
// report.py makes the folder, takes turns and makes tables.

#include "measure.h"
#include "theme/tech_theme.h"
#include "ui/window/reelcrate_app.h"
#include "ui/window/renderer.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QJsonArray>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QSet>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace {

using namespace reelcrate;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

constexpr int additions = 3;
constexpr int selections = 3;
constexpr int deletions = 2;
constexpr int ticks = 20;
constexpr int bareFrames = 5;
constexpr int positions = 50;
constexpr int idleRows = 100;
constexpr auto idleSettling = 2s;
constexpr auto idleTime = 5s;
/// The window is done with something when no frame has come for so long.
constexpr auto quietTime = 60ms;
constexpr auto tooLong = 20s;

/// CPU seconds of this process up to now.
struct Cpu {
    double mainThread = now(CLOCK_THREAD_CPUTIME_ID);
    double allThreads = now(CLOCK_PROCESS_CPUTIME_ID);

    QJsonArray since(const Cpu& before) const {
        return {mainThread - before.mainThread, allThreads - before.allThreads};
    }
};

/// The frames of a window, as they come on the screen.
class Frames {
public:
    explicit Frames(QQuickWindow& window) : m_window(window) {
        // Direct: where a thread of its own renders, a frame counts when that thread has shown it,
        // and not when the main thread gets round to it. That thread may go on for longer than this
        // object lives.
        QObject::connect(
            &window, &QQuickWindow::frameSwapped, &window,
            [&window, seen = m_seen] {
                if (seen->count++ > 0)
                    return;
                seen->first = now(CLOCK_MONOTONIC);
                seen->firstCpu = now(CLOCK_PROCESS_CPUTIME_ID);
                seen->fromOwnThread = QThread::currentThread() != window.thread();
            },
            Qt::DirectConnection);
    }

    int count() const { return m_seen->count; }
    double first() const { return m_seen->first; }
    double firstCpu() const { return m_seen->firstCpu; }
    bool haveOwnThread() const { return m_seen->fromOwnThread; }

    /// Runs the event loop until a frame has come, and then none for this time.
    void settle(std::chrono::milliseconds quiet = quietTime) const {
        QEventLoop loop;
        QTimer end;
        end.setSingleShot(true);
        end.setInterval(quiet);
        QObject::connect(&end, &QTimer::timeout, &loop, &QEventLoop::quit);
        QObject::connect(&m_window, &QQuickWindow::frameSwapped, &end, qOverload<>(&QTimer::start));
        QTimer limit;
        QObject::connect(&limit, &QTimer::timeout, &limit,
                         [] { fail("No frame comes, or they do not end."_L1); });
        limit.start(tooLong);
        loop.exec();
    }

private:
    struct Seen {
        std::atomic<int> count = 0;
        std::atomic<double> first = 0;
        std::atomic<double> firstCpu = 0;
        std::atomic<bool> fromOwnThread = false;
    };

    QQuickWindow& m_window;
    const std::shared_ptr<Seen> m_seen = std::make_shared<Seen>();
};

void runEventLoopFor(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer end;
    QObject::connect(&end, &QTimer::timeout, &loop, &QEventLoop::quit);
    end.setTimerType(Qt::PreciseTimer);
    end.start(time);
    loop.exec();
}

void runEventLoopUntil(const std::function<bool()>& condition) {
    const double start = now(CLOCK_MONOTONIC);
    while (!condition()) {
        if (now(CLOCK_MONOTONIC) - start > std::chrono::duration<double>(tooLong).count())
            fail("What was waited for does not come."_L1);
        runEventLoopFor(5ms);
    }
}

/// Of this process, and of those that it has started and that still run.
QJsonObject memory() {
    QFile children(
        QStringLiteral("/proc/self/task/%1/children").arg(QCoreApplication::applicationPid()));
    QStringList processes{"self"_L1};
    if (children.open(QIODevice::ReadOnly))
        processes += QString::fromLatin1(children.readAll()).split(u' ', Qt::SkipEmptyParts);
    double pss = 0;
    double rss = 0;
    for (const QString& process : std::as_const(processes)) {
        const QString figures = QStringLiteral("/proc/%1/smaps_rollup").arg(process);
        pss += bytesIn(figures, "Pss");
        rss += bytesIn(figures, "Rss");
    }
    return {{"pss"_L1, pss}, {"rss"_L1, rss}, {"processes"_L1, processes.size()}};
}

QString rendererName(const QQuickWindow& window) {
    switch (window.rendererInterface()->graphicsApi()) {
        case QSGRendererInterface::Software:
            return "software"_L1;
        case QSGRendererInterface::OpenGL:
            return "OpenGL"_L1;
        case QSGRendererInterface::Vulkan:
            return "Vulkan"_L1;
        default:
            return "other"_L1;
    }
}

/// The window has just been shown: its first frame, and its memory a second later.
void reportStart(QQuickWindow& window) {
    const Frames frames(window);
    runEventLoopUntil([&frames] { return frames.count() > 0; });
    runEventLoopFor(1s);
    QJsonObject measured = memory();
    measured["firstFrame"_L1] = frames.first();
    measured["cpu"_L1] = frames.firstCpu();
    measured["width"_L1] = window.width();
    measured["height"_L1] = window.height();
    measured["platform"_L1] = QGuiApplication::platformName();
    measured["renderer"_L1] = rendererName(window);
    measured["renderThread"_L1] = frames.haveOwnThread();
    report(measured);
}

/// The program's setup in a folder that has all tools, so that none is searched for.
ControllerSetup setupIn(const QString& folder) {
    ControllerSetup setup;
    setup.toolPlaces.home = folder;
    setup.toolPlaces.appSupport = folder + "/share"_L1;
    setup.desktopFolder = folder + "/Desktop"_L1;
    setup.clipboardText = [] { return QString(); };
    return setup;
}

void measureBareStart(const QString& width, const QString& height) {
    chooseRenderer();  // the same for both
    QQmlApplicationEngine engine;
    engine.loadData(
        QStringLiteral("import QtQuick\nWindow { visible: true; width: %1; height: %2 }")
            .arg(width, height)
            .toLatin1());
    reportStart(*qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst()));
}

void measureStart(ProcessSupervisor& supervisor, const QString& folder) {
    ReelcrateApp app(supervisor, setupIn(folder));
    if (!app.show())
        fail("There is no window."_L1);
    reportStart(*app.window());
}

/// The window with the tools checked and nothing more to show.
class ShownWindow {
public:
    ShownWindow(ProcessSupervisor& supervisor, const QString& folder)
        : m_app(supervisor, setupIn(folder)) {
        if (!m_app.show())
            fail("There is no window."_L1);
        m_frames = std::make_unique<Frames>(*m_app.window());
        m_frames->settle();
        runEventLoopUntil([this] { return controller().tools().coreToolsReady(); });
        settleAgain();
    }

    Controller& controller() { return m_app.controller(); }
    const QList<DownloadItem>& rows() { return controller().queue().rows(); }
    QQuickWindow& window() { return *m_app.window(); }
    const Frames& frames() const { return *m_frames; }
    QueueListModel& model() { return *m_app.state().rows(); }

    /// Nothing turns any more, so that each frame is the answer to a change.
    void stopMotion() {
        QQmlEngine* engine = qmlEngine(&window());
        engine->singletonInstance<TechTheme*>(qmlTypeId("Reelcrate.Theme", 1, 0, "TechTheme"))
            ->setAnimated(false);
    }

    /// What it takes until the window shows the outcome and is quiet: CPU times and frames.
    QJsonArray costOf(const std::function<void()>& work) {
        const int formerFrames = m_frames->count();
        const Cpu before;
        work();
        m_frames->settle();
        QJsonArray cost = Cpu().since(before);
        cost.append(m_frames->count() - formerFrames);
        return cost;
    }

    /// One row for a playlist that has not been read yet, and what reading it will give.
    QueueResolution addUnreadPlaylist(int count, const QString& kind) {
        controller().addLinksToQueue({"https://site.example/list"_L1});
        QueueResolution songs;
        for (int i = 0; i < count; ++i) {
            songs.entries.append({QStringLiteral("https://site.example/%1/%2").arg(kind).arg(i),
                                  SourceType::link,
                                  QStringLiteral("The Same Band - Song Number %1 of Many").arg(i),
                                  "3:45"_L1,
                                  {}});
        }
        return songs;
    }

    void fillQueue(int count, const QString& kind = "hold"_L1) {
        const QueueResolution songs = addUnreadPlaylist(count, kind);
        controller().resolution().applyResolution(songs, rows().first(), 0);
        m_frames->settle();
        if (rows().size() != count)
            fail("The queue has other rows than it should."_L1);
    }

    void emptyQueue() {
        controller().clearQueue();
        m_frames->settle();
    }

    /// Where the frames may have come already.
    void settleAgain() {
        window().update();
        m_frames->settle();
    }

    void startRows(int count) {
        QList<QUuid> ids;
        for (int i = 0; i < count; ++i)
            ids.append(rows().at(i).id);
        controller().startDownloadRun(ids);
        // The stand-in has started when its first percentage is here.
        runEventLoopUntil([this, count] {
            return std::all_of(rows().begin(), rows().begin() + count,
                               [](const DownloadItem& row) { return row.hasRealProgress; });
        });
    }

private:
    ReelcrateApp m_app;
    std::unique_ptr<Frames> m_frames;
};

/// What a view of the rows is told, added up.
struct Notices {
    int signalCount = 0;
    int rowCount = 0;
    int roleCount = 0;

    void add(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
        ++signalCount;
        rowCount += last.row() - first.row() + 1;
        roleCount += static_cast<int>(roles.size());
    }
};

QJsonArray repeated(int times, const std::function<QJsonArray()>& measure) {
    QJsonArray samples;
    for (int i = 0; i < times; ++i)
        samples.append(measure());
    return samples;
}

QJsonArray measureTicks(ShownWindow& shown, Notices& notices) {
    shown.startRows(1);
    shown.settleAgain();
    const QUuid id = shown.rows().first().id;
    QObject::connect(&shown.model(), &QAbstractItemModel::dataChanged, &shown.window(),
                     [&notices](const QModelIndex& first, const QModelIndex& last,
                                const QList<int>& roles) { notices.add(first, last, roles); });
    int percent = 50;
    return repeated(ticks, [&] {
        // A crawl so short goes to its target in a single step.
        constexpr double shortest = 0.05;
        const double target = ++percent / 100.0;
        QJsonArray cost = shown.costOf([&] {
            QEventLoop change;
            QObject::connect(&shown.controller().queue(), &QueueStore::rowChanged, &change,
                             &QEventLoop::quit);
            shown.controller().runs().crawls().crawlQueueProgress(id, target, shortest);
            change.exec();
        });
        if (shown.rows().first().progress != target)
            fail("The row did not change as it should."_L1);
        return cost;
    });
}

QJsonArray measureScrolling(ShownWindow& shown, int count) {
    // Fewer rows than that have hardly anywhere to go.
    if (count < positions)
        return {};
    auto* list = shown.window().findChild<QQuickItem*>("queueList"_L1);
    QJsonArray samples;
    for (int i = 1; i <= positions; ++i) {
        const int index = static_cast<int>(qint64{i} * (count - 1) / positions);
        const int formerFrames = shown.frames().count();
        const Cpu before;
        constexpr int atBeginning = 0;
        QMetaObject::invokeMethod(list, "positionViewAtIndex", Q_ARG(int, index),
                                  Q_ARG(int, atBeginning));
        shown.frames().settle(0ms);
        QJsonArray cost = Cpu().since(before);
        cost.append(shown.frames().count() - formerFrames);
        samples.append(cost);
    }
    return samples;
}

void measureQueue(ProcessSupervisor& supervisor, const QString& folder, int count) {
    ShownWindow shown(supervisor, folder);
    shown.stopMotion();
    Controller& controller = shown.controller();
    QJsonObject costs;

    costs["frame"_L1] =
        repeated(bareFrames, [&] { return shown.costOf([&] { shown.window().update(); }); });

    QStringList links;
    for (int i = 0; i < count; ++i)
        links.append(QStringLiteral("https://site.example/song/%1").arg(i));
    const auto add = [&] {
        QJsonArray cost = shown.costOf([&] { controller.addLinksToQueue(links); });
        shown.emptyQueue();
        return cost;
    };
    // The first rows of all come with everything that is made once.
    costs["first"_L1] = repeated(1, add);
    costs["add"_L1] = repeated(additions, add);
    costs["read"_L1] = repeated(additions, [&] {
        const QueueResolution songs = shown.addUnreadPlaylist(count, "song"_L1);
        shown.frames().settle();
        QJsonArray cost = shown.costOf(
            [&] { controller.resolution().applyResolution(songs, shown.rows().first(), 0); });
        shown.emptyQueue();
        return cost;
    });
    costs["delete"_L1] = repeated(deletions, [&] {
        shown.fillQueue(count);
        QSet<QUuid> everySecond;
        for (int i = 0; i < count; i += 2)
            everySecond.insert(shown.rows().at(i).id);
        QJsonArray cost = shown.costOf([&] { controller.editor().deleteQueueItems(everySecond); });
        if (shown.rows().size() != count / 2)
            fail("The queue has other rows than it should."_L1);
        shown.emptyQueue();
        return cost;
    });

    shown.fillQueue(count);
    costs["select"_L1] = repeated(selections, [&] {
        QJsonArray cost =
            shown.costOf([&] { controller.editor().selectAllQueueItemsFromUserAction(); });
        controller.editor().clearQueueSelectionFromUserAction();
        shown.frames().settle();
        return cost;
    });
    costs["scroll"_L1] = measureScrolling(shown, count);
    QMetaObject::invokeMethod(shown.window().findChild<QQuickItem*>("queueList"_L1),
                              "positionViewAtBeginning");
    Notices notices;
    costs["tick"_L1] = measureTicks(shown, notices);
    report({{"costs"_L1, costs},
            {"signals"_L1, notices.signalCount},
            {"rows"_L1, notices.rowCount},
            {"roles"_L1, notices.roleCount}});
}

void measureIdle(ProcessSupervisor& supervisor, const QString& folder, int running, bool still) {
    ShownWindow shown(supervisor, folder);
    if (still)
        shown.stopMotion();
    shown.fillQueue(idleRows, "tick"_L1);
    if (running > 0)
        shown.startRows(running);
    int changes = 0;
    QObject::connect(&shown.controller().queue(), &QueueStore::rowChanged, &shown.window(),
                     [&changes] { ++changes; });
    runEventLoopFor(idleSettling);
    const int formerFrames = shown.frames().count();
    const int formerChanges = changes;
    const double start = now(CLOCK_MONOTONIC);
    const Cpu before;
    runEventLoopFor(idleTime);
    const QJsonArray cpu = Cpu().since(before);
    report({{"cpu"_L1, cpu},
            {"seconds"_L1, now(CLOCK_MONOTONIC) - start},
            {"frames"_L1, shown.frames().count() - formerFrames},
            {"changes"_L1, changes - formerChanges},
            {"rss"_L1, memory().value("rss"_L1)}});
}

}  // namespace

int main(int argc, char** argv) {
    ::setenv("LC_ALL", "C.UTF-8", 1);
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    words.resize(4);
    const QString& kind = words.at(0);
    const QString& folder = words.at(1);
    const QString& argument = words.at(2);
    std::optional<ProcessSupervisor> supervisor;
    // Before all else: it forks, and a process with threads must not. A bare window needs none.
    if (kind != "bare"_L1)
        supervisor.emplace();
    const QGuiApplication application(argc, argv);
    if (kind == "bare"_L1)
        measureBareStart(argument, words.at(3));
    else if (kind == "window"_L1)
        measureStart(*supervisor, folder);
    else if (kind == "queue"_L1)
        measureQueue(*supervisor, folder, argument.toInt());
    else if (kind == "idle"_L1)
        measureIdle(*supervisor, folder, argument.toInt(), words.at(3) == "1"_L1);
    else
        fail("usage: window_bench window|bare|queue|idle FOLDER ARGUMENT..."_L1);
    return EXIT_SUCCESS;
}
