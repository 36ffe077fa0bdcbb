#include "console/check_run.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "console/arguments.h"
#include "console/check_text.h"
#include "console/headless_run.h"
#include "console/print.h"
#include "console/termination_signals.h"
#include "library/folder_check.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonDocument>

#include <sys/ioctl.h>
#include <unistd.h>

namespace reelcrate {

namespace {

int terminalColumns() {
    constexpr int usual = 80;
    winsize size{};
    ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size);
    return (size.ws_col > 0 ? size.ws_col : usual) - 1;
}

/// One line on standard error where that is a terminal, in place of what it held.
class ProgressLine {
public:
    void draw(qsizetype done, qsizetype all) const {
        if (m_isShown)
            print(stderr, "\r\x1b[K" + checkProgressLine(done, all, terminalColumns()).toUtf8());
    }

    void clear() const {
        if (m_isShown)
            print(stderr, "\r\x1b[K");
    }

private:
    const bool m_isShown = ::isatty(STDERR_FILENO) != 0;
};

void report(const Arguments& arguments, const QString& folder, const QList<CheckedFile>& files) {
    print(stdout, arguments.json ? QJsonDocument(checkAsJson(folder, files)).toJson()
                                 : checkTable(files).toUtf8());
}

std::optional<QString> whyNoFolder(const QString& folder) {
    const QFileInfo info(folder);
    if (!info.isDir())
        return QStringLiteral("There is no folder %1.\n").arg(folder);
    if (!info.isReadable())
        return QStringLiteral("The folder %1 cannot be read.\n").arg(folder);
    return std::nullopt;
}

}  // namespace

int runCheck(ProcessSupervisor& supervisor, const Arguments& arguments) {
    const QString folder = QFileInfo(arguments.checkedFolder).absoluteFilePath();
    if (const auto reason = whyNoFolder(folder)) {
        print(stderr, reason->toUtf8());
        return HeadlessRun::wrongUsage;
    }
    MainQueue mainQueue;
    ShellRunner shell(supervisor);
    const ToolDiscovery discovery(shell, ToolPlaces::ofThisMachine());
    const FolderCheck check(shell, discovery,
                            arguments.loudness ? MeasureLoudness::yes : MeasureLoudness::no);
    const ProgressLine line;
    BackgroundTasks background;
    TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &mainQueue, [&](int signalNumber) {
        constexpr int endedBySignal = 128;
        background.requestStop();
        shell.endEverything();
        line.clear();
        QCoreApplication::exit(endedBySignal + signalNumber);
    });
    background.run([&](const std::stop_token& stop) {
        if (!discovery.toolPath(QStringLiteral("ffmpeg"))) {
            mainQueue.post([] {
                print(stderr, "ffmpeg is missing: reelcrate --headless --setup installs it.\n");
                QCoreApplication::exit(HeadlessRun::toolsMissing);
            });
            return;
        }
        const auto progress = [&](qsizetype done, qsizetype all) {
            mainQueue.post([&line, done, all] { line.draw(done, all); });
        };
        const QList<CheckedFile> files = check.check(folder, stop, progress);
        if (stop.stop_requested())
            return;
        mainQueue.post([&, files] {
            line.clear();
            report(arguments, folder, files);
            QCoreApplication::exit(totalsOf(files).isAllWell() ? HeadlessRun::allComplete
                                                               : HeadlessRun::someNeedAttention);
        });
    });
    const int status = QCoreApplication::exec();
    background.join();
    return status;
}

}  // namespace reelcrate
