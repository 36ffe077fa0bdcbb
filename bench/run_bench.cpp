// The same work by the program's engine and by a shell: "run_bench download|read program|bare
// FOLDER SONGS", where SONGS is a JSON list of objects with "url", "title", "seconds" and "id".
// What is downloaded goes into FOLDER.
//
// "bare" is what somebody would type: xargs runs the very same command lines, six downloads side by
// side, with the same pauses; links are read one after the other at the same pace. Prints one JSON
// object: the seconds by the clock, and the CPU seconds of this process and its children.

#include "app/controller.h"
#include "base/duration_text.h"
#include "download/fetched_files.h"
#include "measure.h"
#include "resolve/media_probe_output.h"
#include "tools/shell_quote.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <sys/resource.h>

namespace {

using namespace reelcrate;
using Clock = std::chrono::steady_clock;

double cpuSeconds(int who) {
    constexpr double microsecond = 1e-6;
    rusage usage{};
    ::getrusage(who, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * microsecond;
}

double cpuSeconds() {
    return cpuSeconds(RUSAGE_SELF) + cpuSeconds(RUSAGE_CHILDREN);
}

/// The program's setup on this machine, with the event "Bench" in the folder.
class Engine {
public:
    Engine(ProcessSupervisor& supervisor, const QString& folder, const QList<PlaylistEntry>& songs)
        : m_controller(supervisor, ControllerSetup::ofThisMachine()) {
        m_controller.setOutputFolder(folder);
        m_controller.setEventName(QStringLiteral("Bench"));
        m_controller.addLinksToQueue({QStringLiteral("https://site.example/list")});
        m_controller.resolution().applyResolution({songs}, m_controller.queue().rows().first(), 0);
    }

    Controller& controller() { return m_controller; }
    const QList<DownloadItem>& rows() { return m_controller.queue().rows(); }

    void download() {
        QEventLoop loop;
        QObject::connect(&m_controller, &Controller::activeDownloadRunsChanged, &loop, [&] {
            if (m_controller.runs().activeDownloadRuns() == 0)
                loop.quit();
        });
        m_controller.startDownloads();
        loop.exec();
        const bool allComplete = std::all_of(rows().begin(), rows().end(), [](const auto& row) {
            return row.status == QueueStatus::complete;
        });
        if (!allComplete)
            fail(m_controller.runs().runLog().text());
    }

    void read() {
        QEventLoop loop;
        qsizetype ended = 0;
        QObject::connect(&m_controller.queue(), &QueueStore::rowReplaced, &loop, [&] {
            if (++ended == rows().size())
                loop.quit();
        });
        m_controller.resolution().resolveInfo(rows());
        loop.exec();
    }

private:
    Controller m_controller;
};

void run(const QString& program, const QStringList& arguments, const QByteArray& input = {}) {
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(-1);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        fail(program + QStringLiteral(" failed"));
}

QString loginShell(const QString& command) {
    return QStringLiteral("/bin/bash -lc ") + shellQuoted(command);
}

/// What ffmpeg's own filters make of a song: its edges cut, and all of it encoded once more.
QString filterTrim(const QString& ffmpeg, const QString& input, const QString& output) {
    return QStringLiteral(
               "%1 -hide_banner -loglevel error -nostdin -y -i %2 -map 0:a:0 -map 0:v? -af "
               "silenceremove=start_periods=1:start_duration=0.01:start_threshold=-55dB,areverse,"
               "silenceremove=start_periods=1:start_duration=0.02:start_threshold=-55dB,areverse "
               "-c:a libmp3lame -q:a 0 -c:v copy -map_metadata 0 -id3v2_version 3 %3")
        .arg(shellQuoted(ffmpeg), shellQuoted(input), shellQuoted(output));
}

/// Everything that is done for one song, as one line.
QString songScript(Engine& engine, const DownloadItem& row, const QString& id) {
    const QString folder = engine.controller().eventFolder();
    const QString file = QStringLiteral("%1/%2 [%3].mp3").arg(folder, row.title, id);
    const QString temporary = QStringLiteral("%1/.trim-%2.mp3").arg(folder, id);
    const QString ffmpeg =
        engine.controller().discovery().resolvedTool(QStringLiteral("ffmpeg"))->path;
    const DownloadTiming timing;
    // Nobody who downloads by hand asks for it.
    const QString download =
        downloadCommandFor(row, folder, DownloadMode::audio, engine.controller().discovery())
            .remove(keepFetchedOption());
    return QStringList{
        loginShell(download),
        QStringLiteral("sleep %1").arg(timing.examining.count()),
        loginShell(filterTrim(ffmpeg, file, temporary)),
        QStringLiteral("mv -f %1 %2").arg(shellQuoted(temporary), shellQuoted(file)),
        QStringLiteral("sleep %1").arg(timing.savingAudio.count()),
    }
        .join(QStringLiteral(" && "));
}

void downloadBare(const QByteArray& scripts, const QString& folder) {
    QDir().mkpath(folder);
    run(QStringLiteral("xargs"),
        {QStringLiteral("-0"), QStringLiteral("-n1"),
         QStringLiteral("-P%1").arg(Controller::maxParallelDownloads), QStringLiteral("sh"),
         QStringLiteral("-c")},
        scripts);
}

void readBare(Engine& engine) {
    const ProbeTool tool{
        engine.controller().discovery().resolvedTool(QStringLiteral("yt-dlp"))->path,
        engine.controller().discovery().toolSearchPath()};
    for (const DownloadItem& row : engine.rows()) {
        const auto next = Clock::now() + ResolutionTiming().minimumPerLink;
        run(QStringLiteral("/bin/bash"), {QStringLiteral("-lc"), mediaInfoCommand(tool, row.url)});
        const auto rest = next - Clock::now();
        if (rest.count() > 0)
            QThread::usleep(static_cast<unsigned long>(
                std::chrono::duration_cast<std::chrono::microseconds>(rest).count()));
    }
}

QJsonArray songsIn(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        fail(path + QStringLiteral(" cannot be read"));
    return QJsonDocument::fromJson(file.readAll()).array();
}

}  // namespace

int main(int argc, char** argv) {
    ProcessSupervisor supervisor;
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() != 5)
        fail(QStringLiteral("usage: run_bench download|read program|bare FOLDER SONGS"));
    const bool downloads = words.at(1) == QStringLiteral("download");
    const bool isBare = words.at(2) == QStringLiteral("bare");

    QList<PlaylistEntry> songs;
    QStringList ids;
    for (const QJsonValue value : songsIn(words.at(4))) {
        const QJsonObject song = value.toObject();
        ids.append(song[QStringLiteral("id")].toString());
        songs.append({song[QStringLiteral("url")].toString(),
                      SourceType::link,
                      song[QStringLiteral("title")].toString(),
                      formatDuration(song[QStringLiteral("seconds")].toDouble()),
                      {}});
    }
    Engine engine(supervisor, words.at(3), songs);
    QByteArray scripts;
    for (qsizetype i = 0; i < ids.size(); ++i)
        scripts += songScript(engine, engine.rows().at(i), ids.at(i)).toUtf8() + '\0';

    const double cpu = cpuSeconds();
    const auto start = Clock::now();
    if (downloads && isBare)
        downloadBare(scripts, engine.controller().eventFolder());
    else if (downloads)
        engine.download();
    else if (isBare)
        readBare(engine);
    else
        engine.read();
    const std::chrono::duration<double> seconds = Clock::now() - start;
    report({{QStringLiteral("seconds"), seconds.count()},
            {QStringLiteral("cpu"), cpuSeconds() - cpu}});
    return EXIT_SUCCESS;
}
