// What a child costs that prints without end: "noisy_bench bare FILE" reads the file through the
// program's pipe reader and drops it; "noisy_bench row FILE" downloads one row whose downloader
// prints it. Prints one JSON object: the seconds from the start to the last of it; and of the row
// the log's size, how much the memory grew, and the longest time for which the main thread let its
// event loop wait, by the clock and in its own CPU time.

#include "app/controller.h"
#include "measure.h"
#include "tools/shell_quote.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <utility>

namespace {

using namespace reelcrate;
using namespace std::chrono_literals;

void measureBare(ProcessSupervisor& supervisor, const QString& file) {
    ShellRunner shell(supervisor);
    const double start = now(CLOCK_MONOTONIC);
    qint64 characters = 0;
    shell.runShellPassingOn(QStringLiteral("cat ") + shellQuoted(file),
                            [&](const QString& piece) { characters += piece.size(); });
    report({{QStringLiteral("seconds"), now(CLOCK_MONOTONIC) - start},
            {QStringLiteral("characters"), characters}});
}

/// How long the event loop waited at most between two beats of a timer.
class Heartbeat {
public:
    Heartbeat() {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { beat(); });
        m_timer.start(1ms);
    }

    double longestWall() const { return m_longestWall; }
    double longestCpu() const { return m_longestCpu; }

private:
    void beat() {
        const double wall = now(CLOCK_MONOTONIC);
        const double cpu = now(CLOCK_THREAD_CPUTIME_ID);
        m_longestWall = std::max(m_longestWall, wall - std::exchange(m_wall, wall));
        m_longestCpu = std::max(m_longestCpu, cpu - std::exchange(m_cpu, cpu));
    }

    QTimer m_timer;
    double m_wall = now(CLOCK_MONOTONIC);
    double m_cpu = now(CLOCK_THREAD_CPUTIME_ID);
    double m_longestWall = 0;
    double m_longestCpu = 0;
};

QString installNoisyDownloader(const QString& folder, const QString& file) {
    const QString bin = folder + QStringLiteral("/Reelcrate/Tools/bin");
    QDir().mkpath(bin);
    QFile tool(bin + QStringLiteral("/yt-dlp"));
    if (tool.open(QIODevice::WriteOnly))
        tool.write("#!/bin/sh\nexec cat " + shellQuoted(file).toUtf8() + '\n');
    tool.setPermissions(tool.permissions() | QFile::ExeOwner);
    return folder;
}

void measureRow(ProcessSupervisor& supervisor, const QString& file) {
    const QTemporaryDir scratch;
    ControllerSetup setup;
    setup.toolPlaces.home = scratch.path();
    setup.toolPlaces.appSupport = installNoisyDownloader(scratch.path(), file);
    setup.desktopFolder = scratch.path();
    Controller controller(supervisor, setup);
    controller.setDownloadMode(DownloadMode::video);
    controller.addLinksToQueue({QStringLiteral("https://site.example/song")});

    const auto peakMemory = [] { return bytesIn(QStringLiteral("/proc/self/status"), "VmHWM"); };
    const double memory = peakMemory();
    const double start = now(CLOCK_MONOTONIC);
    double end = 0;
    const Heartbeat heartbeat;
    QObject::connect(&controller.runs(), &DownloadRuns::runLogAppended, &controller,
                     [&] { end = now(CLOCK_MONOTONIC); });
    QObject::connect(&controller, &Controller::activeDownloadRunsChanged, &controller, [&] {
        if (controller.runs().activeDownloadRuns() == 0)
            QCoreApplication::quit();
    });
    controller.startDownloads();
    QCoreApplication::exec();
    const auto logBytes =
        static_cast<double>(controller.runs().runLog().text().size() * qsizetype{sizeof(QChar)});
    report({{QStringLiteral("seconds"), end - start},
            {QStringLiteral("logBytes"), logBytes},
            {QStringLiteral("grownBytes"), peakMemory() - memory},
            {QStringLiteral("longestWait"), heartbeat.longestWall()},
            {QStringLiteral("longestTurn"), heartbeat.longestCpu()},
            {QStringLiteral("status"), rawValue(controller.queue().rows().first().status)}});
}

}  // namespace

int main(int argc, char** argv) {
    ProcessSupervisor supervisor;
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() != 3)
        fail(QStringLiteral("usage: noisy_bench bare|row FILE"));
    if (words.at(1) == QStringLiteral("bare"))
        measureBare(supervisor, words.at(2));
    else
        measureRow(supervisor, words.at(2));
    return EXIT_SUCCESS;
}
