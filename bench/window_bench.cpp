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

constexpr int pairsOfStarts = 6;
constexpr int rounds = 3;
constexpr std::array sizes{10, 1'000, 10'000};
constexpr int additions = 3;
constexpr int selections = 3;
constexpr int deletions = 2;
constexpr int ticks = 12;
constexpr int bareFrames = 5;
constexpr int positions = 50;
constexpr int idleRows = 100;
constexpr auto idleSettling = 2s;
constexpr auto idleTime = 5s;
/// The window is done with something when no frame has come for so long.
constexpr auto quietTime = 30ms;
constexpr auto tooLong = 60s;

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
        // and not when the main thread gets round to it.
        QObject::connect(
            &window, &QQuickWindow::frameSwapped, &window,
            [this] {
                if (m_count++ > 0)
                    return;
                m_first = now(CLOCK_MONOTONIC);
                m_firstCpu = now(CLOCK_PROCESS_CPUTIME_ID);
                m_ownThread = QThread::currentThread() != m_window.thread();
            },
            Qt::DirectConnection);
    }

    int count() const { return m_count; }
    double first() const { return m_first; }
    double firstCpu() const { return m_firstCpu; }
    bool haveOwnThread() const { return m_ownThread; }

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
                         [] { fail(QStringLiteral("No frame comes, or they do not end.")); });
        limit.start(tooLong);
        loop.exec();
    }

private:
    QQuickWindow& m_window;
    std::atomic<int> m_count = 0;
    std::atomic<double> m_first = 0;
    std::atomic<double> m_firstCpu = 0;
    std::atomic<bool> m_ownThread = false;
};

void runEventLoopFor(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

void runEventLoopUntil(const std::function<bool()>& condition) {
    const double start = now(CLOCK_MONOTONIC);
    while (!condition()) {
        if (now(CLOCK_MONOTONIC) - start > std::chrono::duration<double>(tooLong).count())
            fail(QStringLiteral("What was waited for does not come."));
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
    QStringList processes{QStringLiteral("self")};
    if (children.open(QIODevice::ReadOnly))
        processes += QString::fromLatin1(children.readAll()).split(u' ', Qt::SkipEmptyParts);
    double pss = 0;
    double rss = 0;
    for (const QString& process : std::as_const(processes)) {
        pss += kibibytes(process, "smaps_rollup", "Pss");
        rss += kibibytes(process, "smaps_rollup", "Rss");
    }
    return {{QStringLiteral("pss"), pss},
            {QStringLiteral("rss"), rss},
            {QStringLiteral("processes"), processes.size()}};
}

void report(const QJsonObject& measured) {
    QTextStream(stdout) << QString::fromUtf8(
        QJsonDocument(measured).toJson(QJsonDocument::Compact));
}

QString rendererName(const QQuickWindow& window) {
    switch (window.rendererInterface()->graphicsApi()) {
        case QSGRendererInterface::Software:
            return QStringLiteral("software");
        case QSGRendererInterface::OpenGL:
            return QStringLiteral("OpenGL");
        case QSGRendererInterface::Vulkan:
            return QStringLiteral("Vulkan");
        default:
            return QStringLiteral("other");
    }
}

/// The window has just been shown: its first frame, and its memory a second later.
void reportStart(QQuickWindow& window) {
    const Frames frames(window);
    runEventLoopUntil([&frames] { return frames.count() > 0; });
    runEventLoopFor(1s);
    QJsonObject measured = memory();
    measured[QStringLiteral("firstFrame")] = frames.first();
    measured[QStringLiteral("cpu")] = frames.firstCpu();
    measured[QStringLiteral("width")] = window.width();
    measured[QStringLiteral("height")] = window.height();
    measured[QStringLiteral("platform")] = QGuiApplication::platformName();
    measured[QStringLiteral("renderer")] = rendererName(window);
    measured[QStringLiteral("renderThread")] = frames.haveOwnThread();
    report(measured);
}

/// The program's setup in a folder that has all tools, so that none is searched for.
ContentViewSetup setupIn(const QString& folder) {
    ContentViewSetup setup;
    setup.toolPlaces.home = folder;
    setup.toolPlaces.appSupport = folder + QStringLiteral("/share");
    setup.desktopFolder = folder + QStringLiteral("/Desktop");
    setup.clipboardText = [] { return QString(); };
    return setup;
}

void measureBareStart() {
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\nWindow { visible: true; width: 1440; height: 1040 }");
    reportStart(*qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst()));
}

void measureStart(ProcessSupervisor& supervisor, const QString& folder) {
    ReelcrateApp app(supervisor, setupIn(folder));
    if (!app.show())
        fail(QStringLiteral("There is no window."));
    reportStart(*app.window());
}

/// The window with the tools checked and nothing more to show.
class ShownWindow {
public:
    ShownWindow(ProcessSupervisor& supervisor, const QString& folder)
        : m_app(supervisor, setupIn(folder)) {
        if (!m_app.show())
            fail(QStringLiteral("There is no window."));
        m_frames = std::make_unique<Frames>(*m_app.window());
        m_frames->settle();
        runEventLoopUntil([this] { return view().coreToolsReady(); });
        m_app.window()->update();
        m_frames->settle();
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

    /// What it takes until the window shows the outcome and is quiet.
    QJsonArray costOf(const std::function<void()>& work) {
        const Cpu before;
        work();
        m_frames->settle();
        return Cpu().since(before);
    }

    /// One row for a playlist that has not been read yet, and what reading it will give.
    QueueResolution addUnreadPlaylist(int count, const QString& kind) {
        view().addLinksToQueue({QStringLiteral("https://site.example/list")});
        m_frames->settle();
        QueueResolution songs;
        for (int i = 0; i < count; ++i) {
            songs.entries.append({QStringLiteral("https://site.example/%1/%2").arg(kind).arg(i),
                                  SourceType::link,
                                  QStringLiteral("The Same Band - Song Number %1 of Many").arg(i),
                                  QStringLiteral("3:45"),
                                  {}});
        }
        return songs;
    }

    void fillQueue(int count, const QString& kind = QStringLiteral("hold")) {
        const QueueResolution songs = addUnreadPlaylist(count, kind);
        view().applyResolution(songs, rows().first(), 0);
        m_frames->settle();
        if (rows().size() != count)
            fail(QStringLiteral("The queue has other rows than it should."));
    }

    void emptyQueue() {
        view().clearQueue();
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
    shown.frames().settle(200ms);
    const QUuid id = shown.rows().first().id;
    QObject::connect(&shown.model(), &QAbstractItemModel::dataChanged, &shown.window(),
                     [&notices](const QModelIndex& first, const QModelIndex& last,
                                const QList<int>& roles) { notices.add(first, last, roles); });
    int percent = 50;
    return repeated(ticks, [&] {
        // A crawl so short goes to its target in a single step.
        constexpr double shortest = 0.05;
        const double target = ++percent / 100.0;
        const QJsonArray cost =
            shown.costOf([&] { shown.view().crawlQueueProgress(id, target, shortest); });
        if (shown.rows().first().progress != target)
            fail(QStringLiteral("The row did not change as it should."));
        return cost;
    });
}

QJsonArray measureScrolling(ShownWindow& shown, int count) {
    auto* list = shown.window().findChild<QQuickItem*>(QStringLiteral("queueList"));
    QJsonArray samples;
    for (int i = 0; i < positions; ++i) {
        const int index = static_cast<int>(qint64{i} * (count - 1) / (positions - 1));
        const Cpu before;
        constexpr int atBeginning = 0;
        QMetaObject::invokeMethod(list, "positionViewAtIndex", Q_ARG(int, index),
                                  Q_ARG(int, atBeginning));
        // Also where the list had no way to go.
        shown.window().update();
        shown.frames().settle(0ms);
        samples.append(Cpu().since(before));
    }
    return samples;
}

void measureQueue(ProcessSupervisor& supervisor, const QString& folder, int count) {
    ShownWindow shown(supervisor, folder);
    shown.stopMotion();
    ContentView& view = shown.view();
    QJsonObject costs;

    costs[QStringLiteral("frame")] =
        repeated(bareFrames, [&] { return shown.costOf([&] { shown.window().update(); }); });

    QStringList links;
    for (int i = 0; i < count; ++i)
        links.append(QStringLiteral("https://site.example/song/%1").arg(i));
    costs[QStringLiteral("add")] = repeated(additions, [&] {
        const QJsonArray cost = shown.costOf([&] { view.addLinksToQueue(links); });
        shown.emptyQueue();
        return cost;
    });
    costs[QStringLiteral("read")] = repeated(additions, [&] {
        const QueueResolution songs = shown.addUnreadPlaylist(count, QStringLiteral("song"));
        const QJsonArray cost =
            shown.costOf([&] { view.applyResolution(songs, shown.rows().first(), 0); });
        shown.emptyQueue();
        return cost;
    });
    costs[QStringLiteral("delete")] = repeated(deletions, [&] {
        shown.fillQueue(count);
        QSet<QUuid> everySecond;
        for (int i = 0; i < count; i += 2)
            everySecond.insert(shown.rows().at(i).id);
        const QJsonArray cost = shown.costOf([&] { view.deleteQueueItems(everySecond); });
        if (shown.rows().size() != count / 2)
            fail(QStringLiteral("The queue has other rows than it should."));
        shown.emptyQueue();
        return cost;
    });

    shown.fillQueue(count);
    costs[QStringLiteral("select")] = repeated(selections, [&] {
        const QJsonArray cost = shown.costOf([&] { view.selectAllQueueItemsFromUserAction(); });
        view.clearQueueSelectionFromUserAction();
        shown.frames().settle();
        return cost;
    });
    costs[QStringLiteral("scroll")] = measureScrolling(shown, count);
    QMetaObject::invokeMethod(shown.window().findChild<QQuickItem*>(QStringLiteral("queueList")),
                              "positionViewAtBeginning");
    Notices notices;
    costs[QStringLiteral("tick")] = measureTicks(shown, notices);
    report({{QStringLiteral("costs"), costs},
            {QStringLiteral("signals"), notices.signalCount},
            {QStringLiteral("rows"), notices.rowCount},
            {QStringLiteral("roles"), notices.roleCount}});
}

void measureIdle(ProcessSupervisor& supervisor, const QString& folder, int running, bool still) {
    ShownWindow shown(supervisor, folder);
    if (still)
        shown.stopMotion();
    shown.fillQueue(idleRows, QStringLiteral("tick"));
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
    report({{QStringLiteral("cpu"), Cpu().since(before)},
            {QStringLiteral("seconds"), now(CLOCK_MONOTONIC) - start},
            {QStringLiteral("frames"), shown.frames().count() - formerFrames},
            {QStringLiteral("changes"), changes - formerChanges}});
}

/// The first of `words` names what to measure, the second the folder to do it in.
int runAsChild(const QStringList& words, int argc, char** argv) {
    const QString what = words.at(0);
    const QString folder = words.at(1);
    std::optional<ProcessSupervisor> supervisor;
    // Before all else: it forks, and a process with threads must not. A bare window needs none.
    if (what != QStringLiteral("--child-bare"))
        supervisor.emplace();
    const QGuiApplication application(argc, argv);
    if (what == QStringLiteral("--child-bare"))
        measureBareStart();
    else if (what == QStringLiteral("--child-window"))
        measureStart(*supervisor, folder);
    else if (what == QStringLiteral("--child-queue"))
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
        const QString tools = m_folder.filePath(QStringLiteral("share/Reelcrate/Tools/bin"));
        QDir().mkpath(tools);
        for (const char* tool : {"yt-dlp", "ffmpeg", "spotdl"}) {
            const QString path = tools + u'/' + QLatin1String(tool);
            write(path, standIn);
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        write(screenFile(), R"({"screens": [{"name": "bench", "x": 0, "y": 0, "width": 1600,
            "height": 1200, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    }

    QString path() const { return m_folder.path(); }

    QProcessEnvironment environment() const {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), path());
        for (const char* kind : {"DATA", "CONFIG", "CACHE"})
            environment.insert(QStringLiteral("XDG_%1_HOME").arg(QLatin1String(kind)),
                               path() + QStringLiteral("/share"));
        const QString platform = QStringLiteral("QT_QPA_PLATFORM");
        const bool hasPlatform = environment.contains(platform) ||
                                 environment.contains(QStringLiteral("DISPLAY")) ||
                                 environment.contains(QStringLiteral("WAYLAND_DISPLAY"));
        if (!hasPlatform) {
            environment.insert(platform, QStringLiteral("offscreen:configfile=") + screenFile());
            environment.insert(QStringLiteral("QT_QUICK_BACKEND"), QStringLiteral("software"));
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

    QString screenFile() const { return m_folder.filePath(QStringLiteral("screen.json")); }

    static void write(const QString& path, const char* text) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) < 0)
            fail(path + QStringLiteral(" cannot be written."));
    }

    QTemporaryDir m_folder;
};

/// What a process of this program measures; with "start", the time when it was started.
QJsonObject measuredBy(const Scratch& scratch, const char* what, const QStringList& more = {}) {
    QProcess process;
    process.setProcessEnvironment(scratch.environment());
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    const double start = now(CLOCK_MONOTONIC);
    process.start(QCoreApplication::applicationFilePath(),
                  QStringList{QString::fromLatin1(what), scratch.path()} + more);
    constexpr int minutes = 3;
    if (!process.waitForFinished(minutes * 60 * 1000) || process.exitCode() != EXIT_SUCCESS)
        fail(QStringLiteral("%1 failed.").arg(QLatin1String(what)));
    QJsonObject measured = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    measured[QStringLiteral("start")] = start;
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
    const auto text = [&](double share) {
        return QString::number(quantile(samples, share), 'f', decimals);
    };
    return QStringLiteral("%1 (%2-%3)").arg(text(0.5), text(0.25), text(0.75));
}

QString ratio(double value, double base) {
    return base > 0 ? QString::number(value / base, 'f', 2) : QStringLiteral("-");
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
    const std::array kinds{"--child-bare", "--child-window"};
    // Once without counting, so that what the first of all starts leaves behind is there for all.
    QJsonObject last;
    for (const char* kind : kinds)
        last = measuredBy(scratch, kind);

    struct Quantity {
        const char* label;
        int decimals;
        double (*of)(const QJsonObject&);
        std::array<Samples, 2> samples;
        Samples ratios;
    };
    std::array quantities{
        Quantity{"to the first frame, ms",
                 0,
                 [](const QJsonObject& measured) {
                     return 1e3 * (measured[QLatin1String("firstFrame")].toDouble() -
                                   measured[QLatin1String("start")].toDouble());
                 },
                 {},
                 {}},
        Quantity{"CPU to the first frame, ms",
                 0,
                 [](const QJsonObject& measured) {
                     return 1e3 * measured[QLatin1String("cpu")].toDouble();
                 },
                 {},
                 {}},
        Quantity{"PSS after 1 s, MiB",
                 1,
                 [](const QJsonObject& measured) {
                     return measured[QLatin1String("pss")].toDouble() / 1024;
                 },
                 {},
                 {}},
        Quantity{"RSS after 1 s, MiB",
                 1,
                 [](const QJsonObject& measured) {
                     return measured[QLatin1String("rss")].toDouble() / 1024;
                 },
                 {},
                 {}},
    };
    std::array<QJsonObject, 2> measured;
    for (int pair = 0; pair < pairsOfStarts; ++pair) {
        for (std::size_t kind = 0; kind < kinds.size(); ++kind)
            measured[kind] = measuredBy(scratch, kinds[kind]);
        for (Quantity& quantity : quantities) {
            for (std::size_t kind = 0; kind < kinds.size(); ++kind)
                quantity.samples[kind].push_back(quantity.of(measured[kind]));
            quantity.ratios.push_back(quantity.samples[1].back() / quantity.samples[0].back());
        }
    }

    const auto size = [](const QJsonObject& of) {
        return QStringLiteral("%1x%2")
            .arg(of[QLatin1String("width")].toInt())
            .arg(of[QLatin1String("height")].toInt());
    };
    QTextStream(stdout) << "Qt " << qVersion() << ", platform "
                        << last[QLatin1String("platform")].toString() << ", renderer "
                        << last[QLatin1String("renderer")].toString() << " in "
                        << (last[QLatin1String("renderThread")].toBool() ? "a thread of its own"
                                                                         : "the main thread")
                        << "\nMedian (first-third quartile)\n";
    printHeading(
        QStringLiteral("Start: %1 pairs; the program's memory includes its %2 process(es) "
                       "beside it")
            .arg(pairsOfStarts)
            .arg(measured[1][QLatin1String("processes")].toInt() - 1),
        {QStringLiteral("bare ") + size(measured[0]),
         QStringLiteral("program ") + size(measured[1]), QStringLiteral("ratio of pairs")});
    QJsonObject all{{QStringLiteral("platform"), last[QLatin1String("platform")]},
                    {QStringLiteral("renderer"), last[QLatin1String("renderer")]},
                    {QStringLiteral("renderThread"), last[QLatin1String("renderThread")]}};
    for (const Quantity& quantity : quantities) {
        const QString label = QString::fromLatin1(quantity.label);
        printLine({label, summary(quantity.samples[0], quantity.decimals),
                   summary(quantity.samples[1], quantity.decimals), summary(quantity.ratios, 2)});
        all[label] = QJsonObject{{QStringLiteral("bare"), json(quantity.samples[0])},
                                 {QStringLiteral("program"), json(quantity.samples[1])},
                                 {QStringLiteral("ratio"), json(quantity.ratios)}};
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
    Operation{"add", "N links are added"},
    Operation{"read", "playlist of N songs is read"},
    Operation{"select", "select all"},
    Operation{"delete", "delete every second row"},
    Operation{"scroll", "scroll to another place"},
};

/// Of one operation, in ms, by the queue's size.
using SamplesOfSizes = std::array<Samples, sizes.size()>;

void printOperations(const char* heading, int cpu,
                     const std::array<QJsonObject, sizes.size()>& costs, QJsonObject& all) {
    printHeading(
        QString::fromLatin1(heading),
        {QStringLiteral("10 rows"), QStringLiteral("1,000 rows"), QStringLiteral("10,000 rows"),
         QStringLiteral("1,000/10"), QStringLiteral("10,000/10"), QStringLiteral("10,000/1,000")});
    for (const Operation& operation : operations) {
        SamplesOfSizes samples;
        QStringList cells{QString::fromLatin1(operation.label)};
        QJsonObject ofSizes;
        for (std::size_t size = 0; size < sizes.size(); ++size) {
            for (const QJsonValue cost : costs[size][QLatin1String(operation.name)].toArray())
                samples[size].push_back(1e3 * cost[cpu].toDouble());
            cells.append(summary(samples[size], 2));
            ofSizes[QString::number(sizes[size])] = json(samples[size]);
        }
        cells.append({ratio(median(samples[1]), median(samples[0])),
                      ratio(median(samples[2]), median(samples[0])),
                      ratio(median(samples[2]), median(samples[1]))});
        printLine(cells);
        all[QString::fromLatin1(operation.name)] = ofSizes;
    }
}

QJsonObject benchQueue(const Scratch& scratch) {
    std::array<QJsonObject, sizes.size()> costs;
    std::array<QJsonObject, sizes.size()> last;
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t size = 0; size < sizes.size(); ++size) {
            last[size] = measuredBy(scratch, "--child-queue", {QString::number(sizes[size])});
            const QJsonObject measured = last[size][QLatin1String("costs")].toObject();
            for (const QString& operation : measured.keys()) {
                QJsonArray samples = costs[size][operation].toArray();
                for (const QJsonValue sample : measured[operation].toArray())
                    samples.append(sample);
                costs[size][operation] = samples;
            }
        }
    }
    QJsonObject mainThread;
    QJsonObject allThreads;
    printOperations("Work until the window shows it and is quiet: CPU of the main thread, ms", 0,
                    costs, mainThread);
    printOperations("The same, CPU of all threads, ms", 1, costs, allThreads);

    printHeading(
        QStringLiteral("What the list is told of one row's progress"),
        {QStringLiteral("10 rows"), QStringLiteral("1,000 rows"), QStringLiteral("10,000 rows")});
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
    return {{QStringLiteral("mainThreadMs"), mainThread},
            {QStringLiteral("allThreadsMs"), allThreads},
            {QStringLiteral("noticesPerTick"), notices}};
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
        {QStringLiteral("% of a core"), QStringLiteral("of it main thread"),
         QStringLiteral("frames"), QStringLiteral("row changes")});
    QJsonArray all;
    for (const Case& each : cases) {
        QJsonObject measured =
            measuredBy(scratch, "--child-idle",
                       {QString::number(each.running), QString::number(each.still ? 1 : 0)});
        const double percent = 100 / measured[QLatin1String("seconds")].toDouble();
        const QJsonArray cpu = measured[QLatin1String("cpu")].toArray();
        const QString label = QString::fromLatin1(each.label);
        printLine({label, QString::number(percent * cpu[1].toDouble(), 'f', 2),
                   QString::number(percent * cpu[0].toDouble(), 'f', 2),
                   QString::number(measured[QLatin1String("frames")].toInt()),
                   QString::number(measured[QLatin1String("changes")].toInt())});
        measured[QStringLiteral("case")] = label;
        all.append(measured);
    }
    return all;
}

int runAll(const QStringList& words) {
    const bool writesFile = words.size() == 2 && words.at(0) == QStringLiteral("--json");
    if (!words.isEmpty() && !writesFile)
        fail(QStringLiteral("usage: window_bench [--json FILE]"));
    const Scratch scratch;
    QJsonObject all;
    all[QStringLiteral("start")] = benchStart(scratch);
    all[QStringLiteral("queue")] = benchQueue(scratch);
    all[QStringLiteral("idle")] = benchIdle(scratch);
    if (writesFile) {
        QFile file(words.at(1));
        if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(all).toJson()) < 0)
            fail(words.at(1) + QStringLiteral(" cannot be written."));
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    ::setenv("LC_ALL", "C.UTF-8", 1);
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    if (!words.isEmpty() && words.at(0).startsWith(QStringLiteral("--child-")))
        return runAsChild(words, argc, argv);
    const QCoreApplication application(argc, argv);
    return runAll(words);
}
