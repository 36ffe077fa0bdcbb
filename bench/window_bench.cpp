// What the window costs: to start, beside a bare window of the same toolkit; to follow one row and
// to work on the whole queue, in queues of growing length; and to stand there. Each measurement
// runs in a process of its own, which this program starts from itself, and those that are compared
// take turns. "--json FILE" also writes all samples into a file.
//
// Times of work are CPU times: other programs' work on the machine does not count into them. The
// window is shown while it is measured, on the platform that the environment names; where it names
// none, on a screen that exists only in memory.

#include "theme/tech_theme.h"
#include "ui/reelcrate_app.h"
#include "ui/renderer.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QSet>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <vector>

namespace {

using namespace reelcrate;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

constexpr int pairsOfStarts = 6;
constexpr int rounds = 2;
constexpr std::array sizes{10, 1'000, 10'000};
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

double now(clockid_t clock) {
    constexpr double nanosecond = 1e-9;
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * nanosecond;
}

[[noreturn]] void fail(const QString& text) {
    QTextStream(stderr) << text << '\n';
    std::exit(EXIT_FAILURE);
}

// What is measured, each in a process of its own

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

/// In KiB, what the kernel says of a process.
double kibibytes(const QString& process, const char* file, const QByteArray& field) {
    QFile status(QStringLiteral("/proc/%1/%2").arg(process, QLatin1String(file)));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(field + ':'))
            return line.mid(field.size() + 1).chopped(2).trimmed().toDouble();
    }
    return 0;
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
        pss += kibibytes(process, "smaps_rollup", "Pss");
        rss += kibibytes(process, "smaps_rollup", "Rss");
    }
    return {{"pss"_L1, pss}, {"rss"_L1, rss}, {"processes"_L1, processes.size()}};
}

void report(const QJsonObject& measured) {
    QTextStream(stdout) << QString::fromUtf8(
        QJsonDocument(measured).toJson(QJsonDocument::Compact));
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
ContentViewSetup setupIn(const QString& folder) {
    ContentViewSetup setup;
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
        runEventLoopUntil([this] { return view().coreToolsReady(); });
        settleAgain();
    }

    ContentView& view() { return m_app.view(); }
    const QList<DownloadItem>& rows() { return view().queue().rows(); }
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
        view().addLinksToQueue({"https://site.example/list"_L1});
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
        view().applyResolution(songs, rows().first(), 0);
        m_frames->settle();
        if (rows().size() != count)
            fail("The queue has other rows than it should."_L1);
    }

    void emptyQueue() {
        view().clearQueue();
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
        view().startDownloadRun(ids);
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
            QObject::connect(&shown.view().queue(), &QueueStore::rowChanged, &change,
                             &QEventLoop::quit);
            shown.view().crawlQueueProgress(id, target, shortest);
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
    ContentView& view = shown.view();
    QJsonObject costs;

    costs["frame"_L1] =
        repeated(bareFrames, [&] { return shown.costOf([&] { shown.window().update(); }); });

    QStringList links;
    for (int i = 0; i < count; ++i)
        links.append(QStringLiteral("https://site.example/song/%1").arg(i));
    const auto add = [&] {
        QJsonArray cost = shown.costOf([&] { view.addLinksToQueue(links); });
        shown.emptyQueue();
        return cost;
    };
    // The first rows of all come with everything that is made once.
    costs["first"_L1] = repeated(1, add);
    costs["add"_L1] = repeated(additions, add);
    costs["read"_L1] = repeated(additions, [&] {
        const QueueResolution songs = shown.addUnreadPlaylist(count, "song"_L1);
        shown.frames().settle();
        QJsonArray cost =
            shown.costOf([&] { view.applyResolution(songs, shown.rows().first(), 0); });
        shown.emptyQueue();
        return cost;
    });
    costs["delete"_L1] = repeated(deletions, [&] {
        shown.fillQueue(count);
        QSet<QUuid> everySecond;
        for (int i = 0; i < count; i += 2)
            everySecond.insert(shown.rows().at(i).id);
        QJsonArray cost = shown.costOf([&] { view.deleteQueueItems(everySecond); });
        if (shown.rows().size() != count / 2)
            fail("The queue has other rows than it should."_L1);
        shown.emptyQueue();
        return cost;
    });

    shown.fillQueue(count);
    costs["select"_L1] = repeated(selections, [&] {
        QJsonArray cost = shown.costOf([&] { view.selectAllQueueItemsFromUserAction(); });
        view.clearQueueSelectionFromUserAction();
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
    QObject::connect(&shown.view().queue(), &QueueStore::rowChanged, &shown.window(),
                     [&changes] { ++changes; });
    runEventLoopFor(idleSettling);
    const int formerFrames = shown.frames().count();
    const int formerChanges = changes;
    const double start = now(CLOCK_MONOTONIC);
    const Cpu before;
    runEventLoopFor(idleTime);
    report({{"cpu"_L1, Cpu().since(before)},
            {"seconds"_L1, now(CLOCK_MONOTONIC) - start},
            {"frames"_L1, shown.frames().count() - formerFrames},
            {"changes"_L1, changes - formerChanges}});
}

/// The first of `words` names what to measure, the second the folder to do it in.
int runAsChild(const QStringList& words, int argc, char** argv) {
    const QString& what = words.at(0);
    const QString& folder = words.at(1);
    std::optional<ProcessSupervisor> supervisor;
    // Before all else: it forks, and a process with threads must not. A bare window needs none.
    if (what != "--child-bare"_L1)
        supervisor.emplace();
    const QGuiApplication application(argc, argv);
    if (what == "--child-bare"_L1)
        measureBareStart(words.at(2), words.at(3));
    else if (what == "--child-window"_L1)
        measureStart(*supervisor, folder);
    else if (what == "--child-queue"_L1)
        measureQueue(*supervisor, folder, words.at(2).toInt());
    else
        measureIdle(*supervisor, folder, words.at(2).toInt(), words.at(3).toInt() != 0);
    return EXIT_SUCCESS;
}

// What starts the measurements and prints what came of them

/// A home for the measured processes, with stand-ins for the tools.
class Scratch {
public:
    Scratch() {
        const QString tools = m_folder.filePath("share/Reelcrate/Tools/bin"_L1);
        QDir().mkpath(tools);
        for (const char* tool : {"yt-dlp", "ffmpeg", "spotdl"}) {
            const QString path = tools + u'/' + QLatin1String(tool);
            write(path, standIn);
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        write(screenFile(), R"({"screens": [{"name": "bench", "x": 0, "y": 0, "width": 1484,
            "height": 1074, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    }

    QString path() const { return m_folder.path(); }

    QProcessEnvironment environment() const {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME"_L1, path());
        for (const char* kind : {"DATA", "CONFIG", "CACHE"})
            environment.insert(QStringLiteral("XDG_%1_HOME").arg(QLatin1String(kind)),
                               path() + "/share"_L1);
        environment.insert("XDG_RUNTIME_DIR"_L1, path());
        const QString platform = "QT_QPA_PLATFORM"_L1;
        const bool hasPlatform = environment.contains(platform) ||
                                 environment.contains("DISPLAY"_L1) ||
                                 environment.contains("WAYLAND_DISPLAY"_L1);
        if (!hasPlatform) {
            environment.insert(platform, "offscreen:configfile="_L1 + screenFile());
            environment.insert("QT_QUICK_BACKEND"_L1, "software"_L1);
        }
        return environment;
    }

private:
    /// A downloader tells a percentage, and a link "tick" five more each second.
    static constexpr auto standIn = R"(#!/bin/bash
case " $* " in *" --version "*) echo 2030.01.01; exit ;; esac
exec 3<> <(:)
percent=1
while :; do
    echo "RCR_PROGRESS: $percent.0%"
    while :; do
        read -rt 0.2 -u 3
        case "${!#}" in */tick/*) break ;; esac
    done
    percent=$((percent + 1))
done
)";

    QString screenFile() const { return m_folder.filePath("screen.json"_L1); }

    static void write(const QString& path, const char* text) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) < 0)
            fail(path + " cannot be written."_L1);
    }

    QTemporaryDir m_folder;
};

/// What a process of this program measures; with "start", the time when it was started.
QJsonObject measuredBy(const Scratch& scratch, const char* what, const QStringList& more = {}) {
    QProcess process;
    process.setProcessEnvironment(scratch.environment());
    const double start = now(CLOCK_MONOTONIC);
    process.start(QCoreApplication::applicationFilePath(),
                  QStringList{QString::fromLatin1(what), scratch.path()} + more);
    constexpr int minutes = 3;
    const bool ended = process.waitForFinished(minutes * 60 * 1000);
    if (!ended) {
        process.kill();
        process.waitForFinished();
    }
    if (!ended || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != EXIT_SUCCESS)
        fail(QString::fromUtf8(process.readAllStandardError()) +
             QStringLiteral("%1 failed.").arg(QLatin1String(what)));
    QJsonObject measured = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    measured["start"_L1] = start;
    return measured;
}

using Samples = std::vector<double>;

double quantile(Samples samples, double share) {
    std::sort(samples.begin(), samples.end());
    const double place = share * static_cast<double>(samples.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, samples.size() - 1);
    return std::lerp(samples[below], samples[above], place - std::floor(place));
}

double median(const Samples& samples) {
    return quantile(samples, 0.5);
}

/// The median, and the quartiles around it.
QString summary(const Samples& samples, int decimals) {
    if (samples.empty())
        return "-"_L1;
    const auto text = [&](double share) {
        return QString::number(quantile(samples, share), 'f', decimals);
    };
    return QStringLiteral("%1 (%2-%3)").arg(text(0.5), text(0.25), text(0.75));
}

QString ratio(const Samples& samples, const Samples& base) {
    if (samples.empty() || base.empty())
        return "-"_L1;
    return QString::number(median(samples) / median(base), 'f', 2);
}

QJsonArray json(const Samples& samples) {
    QJsonArray array;
    std::copy(samples.begin(), samples.end(), std::back_inserter(array));
    return array;
}

void printLine(const QStringList& cells) {
    constexpr int firstWidth = 32;
    constexpr int width = 22;
    QTextStream out(stdout);
    for (int i = 0; i < cells.size(); ++i)
        out << (i == 0 ? cells.at(i).leftJustified(firstWidth) : cells.at(i).rightJustified(width));
    out << '\n';
}

void printHeading(const QString& text, const QStringList& columns) {
    QTextStream(stdout) << '\n' << text << '\n';
    printLine(QStringList{QString()} + columns);
}

QJsonObject benchStart(const Scratch& scratch) {
    // Once without counting, so that what the first of all starts leaves behind is there for all.
    const QJsonObject last = measuredBy(scratch, "--child-window");
    const QStringList windowSize{QString::number(last["width"_L1].toInt()),
                                 QString::number(last["height"_L1].toInt())};

    struct Comparison {
        const char* label;
        int decimals;
        double (*of)(const QJsonObject&);
        std::array<Samples, 2> samples;
        Samples ratios;
    };
    std::array comparisons{
        Comparison{"to the first frame, ms",
                   0,
                   [](const QJsonObject& measured) {
                       return 1e3 * (measured["firstFrame"_L1].toDouble() -
                                     measured["start"_L1].toDouble());
                   },
                   {},
                   {}},
        Comparison{"CPU to the first frame, ms",
                   0,
                   [](const QJsonObject& measured) { return 1e3 * measured["cpu"_L1].toDouble(); },
                   {},
                   {}},
        Comparison{"PSS after 1 s, MiB",
                   1,
                   [](const QJsonObject& measured) { return measured["pss"_L1].toDouble() / 1024; },
                   {},
                   {}},
        Comparison{"RSS after 1 s, MiB",
                   1,
                   [](const QJsonObject& measured) { return measured["rss"_L1].toDouble() / 1024; },
                   {},
                   {}},
    };
    std::array<QJsonObject, 2> measured;
    for (int pair = 0; pair < pairsOfStarts; ++pair) {
        measured = {measuredBy(scratch, "--child-bare", windowSize),
                    measuredBy(scratch, "--child-window")};
        for (Comparison& comparison : comparisons) {
            for (std::size_t kind = 0; kind < measured.size(); ++kind)
                comparison.samples[kind].push_back(comparison.of(measured[kind]));
            comparison.ratios.push_back(comparison.samples[1].back() /
                                        comparison.samples[0].back());
        }
    }

    QTextStream(stdout) << "Qt " << qVersion() << ", platform " << last["platform"_L1].toString()
                        << ", renderer " << last["renderer"_L1].toString() << " in "
                        << (last["renderThread"_L1].toBool() ? "a thread of its own"
                                                             : "the main thread")
                        << ", window " << windowSize.join(u'x')
                        << "\nMedian (first-third quartile)\n";
    printHeading(QStringLiteral("Start, %1 pairs; the program's memory is that of %2 processes")
                     .arg(pairsOfStarts)
                     .arg(measured[1]["processes"_L1].toInt()),
                 {"bare window"_L1, "program"_L1, "ratio of pairs"_L1});
    QJsonObject all{{"platform"_L1, last["platform"_L1]},
                    {"renderer"_L1, last["renderer"_L1]},
                    {"renderThread"_L1, last["renderThread"_L1]}};
    for (const Comparison& comparison : comparisons) {
        const QString label = QString::fromLatin1(comparison.label);
        printLine({label, summary(comparison.samples[0], comparison.decimals),
                   summary(comparison.samples[1], comparison.decimals),
                   summary(comparison.ratios, 2)});
        all[label] = QJsonObject{{"bare"_L1, json(comparison.samples[0])},
                                 {"program"_L1, json(comparison.samples[1])},
                                 {"ratio"_L1, json(comparison.ratios)}};
    }
    return all;
}

struct Operation {
    const char* name;
    const char* label;
};

constexpr std::array operations{
    Operation{"frame", "frame without a change"},
    Operation{"tick", "one row's progress"},
    Operation{"first", "first N links are added"},
    Operation{"add", "N links are added"},
    Operation{"read", "playlist of N songs is read"},
    Operation{"select", "select all"},
    Operation{"delete", "delete every second row"},
    Operation{"scroll", "scroll to another place"},
};

/// Of one operation, in ms, by the queue's size.
using SamplesOfSizes = std::array<Samples, sizes.size()>;

/// What each sample of an operation tells, in this order.
struct Quantity {
    const char* name;
    const char* heading;
    double factor;
    int decimals;
};

constexpr std::array quantities{
    Quantity{"mainThreadMs",
             "Work until the window shows it and is quiet: CPU of the main thread, ms", 1e3, 2},
    Quantity{"allThreadsMs", "The same: CPU of all threads, ms", 1e3, 2},
    Quantity{"frames", "The same: frames", 1, 0},
};

using CostsOfSizes = std::array<QJsonObject, sizes.size()>;

QJsonObject printOperations(int index, const CostsOfSizes& costs) {
    const Quantity& quantity = quantities.at(static_cast<std::size_t>(index));
    printHeading(QString::fromLatin1(quantity.heading),
                 {"10 rows"_L1, "1,000 rows"_L1, "10,000 rows"_L1, "1,000/10"_L1, "10,000/10"_L1,
                  "10,000/1,000"_L1});
    QJsonObject all;
    for (const Operation& operation : operations) {
        SamplesOfSizes samples;
        QStringList cells{QString::fromLatin1(operation.label)};
        QJsonObject ofSizes;
        for (std::size_t size = 0; size < sizes.size(); ++size) {
            for (const QJsonValue cost : costs[size][QLatin1String(operation.name)].toArray())
                samples[size].push_back(quantity.factor * cost[index].toDouble());
            cells.append(summary(samples[size], quantity.decimals));
            ofSizes[QString::number(sizes[size])] = json(samples[size]);
        }
        cells.append({ratio(samples[1], samples[0]), ratio(samples[2], samples[0]),
                      ratio(samples[2], samples[1])});
        printLine(cells);
        all[QLatin1String(operation.name)] = ofSizes;
    }
    return all;
}

QJsonObject benchQueue(const Scratch& scratch) {
    CostsOfSizes costs;
    CostsOfSizes last;
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t size = 0; size < sizes.size(); ++size) {
            last[size] = measuredBy(scratch, "--child-queue", {QString::number(sizes[size])});
            const QJsonObject measured = last[size]["costs"_L1].toObject();
            for (const QString& operation : measured.keys()) {
                QJsonArray samples = costs[size][operation].toArray();
                for (const QJsonValue sample : measured[operation].toArray())
                    samples.append(sample);
                costs[size][operation] = samples;
            }
        }
    }
    QJsonObject all;
    for (int i = 0; i < static_cast<int>(quantities.size()); ++i)
        all[QLatin1String(quantities.at(static_cast<std::size_t>(i)).name)] =
            printOperations(i, costs);

    QTextStream(stdout)
        << "The first N links include what is made once for all rows. Scrolling goes to "
        << positions << " places down the list.\n";
    printHeading("What the list is told of one row's progress"_L1,
                 {"10 rows"_L1, "1,000 rows"_L1, "10,000 rows"_L1});
    QJsonObject notices;
    for (const char* counted : {"signals", "rows", "roles"}) {
        QStringList cells{QString::fromLatin1(counted)};
        for (std::size_t size = 0; size < sizes.size(); ++size) {
            const double perTick = last[size][QLatin1String(counted)].toDouble() / ticks;
            cells.append(QString::number(perTick, 'f', 2));
        }
        printLine(cells);
        notices[QString::fromLatin1(counted)] = QJsonArray::fromStringList(cells.mid(1));
    }
    all["noticesPerTick"_L1] = notices;
    return all;
}

QJsonArray benchIdle(const Scratch& scratch) {
    struct Case {
        const char* label;
        int running;
        bool still;
    };
    constexpr int allSlots = ContentView::maxParallelDownloads;
    constexpr std::array cases{
        Case{"idle", 0, false},
        Case{"6 running rows", allSlots, false},
        Case{"6 running rows, reduced motion", allSlots, true},
    };
    printHeading(
        QStringLiteral("Standing there for %1 s with %2 rows").arg(idleTime.count()).arg(idleRows),
        {QStringLiteral("% of a core"), "of it main thread"_L1, "frames"_L1, "row changes"_L1});
    QJsonArray all;
    for (const Case& each : cases) {
        QJsonObject measured =
            measuredBy(scratch, "--child-idle",
                       {QString::number(each.running), QString::number(each.still ? 1 : 0)});
        const double percent = 100 / measured["seconds"_L1].toDouble();
        const QJsonArray cpu = measured["cpu"_L1].toArray();
        const QString label = QString::fromLatin1(each.label);
        printLine({label, QString::number(percent * cpu[1].toDouble(), 'f', 2),
                   QString::number(percent * cpu[0].toDouble(), 'f', 2),
                   QString::number(measured["frames"_L1].toInt()),
                   QString::number(measured["changes"_L1].toInt())});
        measured["case"_L1] = label;
        all.append(measured);
    }
    return all;
}

int runAll(const QStringList& words) {
    const bool writesFile = words.size() == 2 && words.at(0) == "--json"_L1;
    if (!words.isEmpty() && !writesFile)
        fail("usage: window_bench [--json FILE]"_L1);
    const Scratch scratch;
    QJsonObject all;
    all["start"_L1] = benchStart(scratch);
    all["queue"_L1] = benchQueue(scratch);
    all["idle"_L1] = benchIdle(scratch);
    if (writesFile) {
        QFile file(words.at(1));
        if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(all).toJson()) < 0)
            fail(words.at(1) + " cannot be written."_L1);
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    ::setenv("LC_ALL", "C.UTF-8", 1);
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    if (!words.isEmpty() && words.at(0).startsWith("--child-"_L1))
        return runAsChild(words, argc, argv);
    const QCoreApplication application(argc, argv);
    return runAll(words);
}
