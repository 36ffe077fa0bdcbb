#include "app/controller.h"
#include "console/arguments.h"
#include "console/check_run.h"
#include "console/headless_run.h"
#include "console/run_settings.h"
#include "console/setup_run.h"
#include "console/termination_signals.h"
#include "tools/process_supervisor.h"
#include "tools/shell_runner.h"
#include "tools/tool_versions.h"

#ifdef REELCRATE_WINDOW
#include "ui/window/reelcrate_app.h"

#include <QGuiApplication>
#endif
#include <QCoreApplication>
#include <QTextStream>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <langinfo.h>
#include <memory>
#include <unistd.h>

using namespace reelcrate;

namespace {

/// Names of songs and folders are UTF-8, also where the environment names no locale.
void useUtf8() {
    std::setlocale(LC_ALL, "");
    if (std::strcmp(::nl_langinfo(CODESET), "UTF-8") != 0)
        ::setenv("LC_ALL", "C.UTF-8", 1);
}

/// A closed standard stream's number would go to the next thing that is opened, and every child
/// would find that in its place.
void fillStandardStreams() {
    int opened = 0;
    do
        opened = ::open("/dev/null", O_RDWR);
    while (opened >= 0 && opened <= STDERR_FILENO);
    ::close(opened);
}

/// Where that is ignored, as a parent may leave it, the system tells no child's exit status.
void heedEndsOfChildren() {
    std::signal(SIGCHLD, SIG_DFL);
}

void print(FILE* stream, const QString& text) {
    QTextStream(stream) << text;
}

QStringList commandLine(int argc, char** argv) {
    QStringList words;
    for (int i = 0; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    return words;
}

void printVersions(ProcessSupervisor& supervisor) {
    print(stdout, QStringLiteral("Reelcrate %1 (%2)\n")
                      .arg(Controller::appVersion)
                      .arg(Controller::appBuild));
    ShellRunner shell(supervisor);
    const ToolDiscovery discovery(shell, ToolPlaces::ofThisMachine());
    print(stdout, toolVersionLines(discovery, shell).join(u'\n') + u'\n');
}

int runWithoutWindow(ProcessSupervisor& supervisor, const Arguments& arguments) {
    Controller controller(supervisor, ControllerSetup::ofThisMachine());
    if (arguments.action == Arguments::Action::checkUpdate)
        return runUpdateCheck(controller);
    if (arguments.action == Arguments::Action::setUp)
        return runSetup(controller);
    return runHeadless(controller, arguments);
}

#ifdef REELCRATE_WINDOW

/// Why no window can be shown; empty where one can. To ask the toolkit would end the program.
QString whyNoWindow() {
#ifdef Q_OS_LINUX
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (qEnvironmentVariableIsSet(name))
            return {};
    }
    return QStringLiteral(
        "There is no display to show a window on; reelcrate "
        "--headless works without one.\n");
#else
    return {};
#endif
}

std::unique_ptr<QCoreApplication> makeWindowApplication(int& argc, char** argv) {
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Reelcrate"));
    QGuiApplication::setDesktopFileName(QStringLiteral("reelcrate"));
    return std::make_unique<QGuiApplication>(argc, argv);
}

int runWithWindow(ProcessSupervisor& supervisor, const Arguments& arguments) {
    ReelcrateApp app(supervisor, ControllerSetup::ofThisMachine(),
                     {arguments.texts, arguments.lists, arguments.startsDownloads});
    applySettings(arguments, app.controller());
    TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &app, [&app](int signalNumber) {
        constexpr int endedBySignal = 128;
        app.quit(endedBySignal + signalNumber);
    });
    return app.show() ? QCoreApplication::exec() : EXIT_FAILURE;
}

#else

QString whyNoWindow() {
    return QStringLiteral("This reelcrate was built without a window; start it with --headless.\n");
}

std::unique_ptr<QCoreApplication> makeWindowApplication(int& argc, char** argv) {
    return std::make_unique<QCoreApplication>(argc, argv);
}

int runWithWindow(ProcessSupervisor& /*supervisor*/, const Arguments& /*arguments*/) {
    return HeadlessRun::wrongUsage;
}

#endif

}  // namespace

int main(int argc, char** argv) {
    fillStandardStreams();
    heedEndsOfChildren();
    useUtf8();
    // Before all else: it forks, and a process with threads must not.
    ProcessSupervisor supervisor;
    QCoreApplication::setApplicationName(QStringLiteral("reelcrate"));
    QCoreApplication::setApplicationVersion(Controller::appVersion);

    const Arguments arguments = parseArguments(commandLine(argc, argv));
    const bool showsWindow = arguments.usageError.isEmpty() && arguments.needsWindow();
    const QString obstacle = showsWindow ? whyNoWindow() : QString();
    // The windowing toolkit starts only where there is a window: it takes its time.
    const auto application = showsWindow && obstacle.isEmpty()
                                 ? makeWindowApplication(argc, argv)
                                 : std::make_unique<QCoreApplication>(argc, argv);
    if (!arguments.usageError.isEmpty()) {
        print(stderr, arguments.usageError + QStringLiteral("\n\n") + helpText());
        return HeadlessRun::wrongUsage;
    }
    if (!obstacle.isEmpty()) {
        print(stderr, obstacle);
        return HeadlessRun::wrongUsage;
    }
    switch (arguments.action) {
        case Arguments::Action::showHelp:
            print(stdout, helpText());
            return EXIT_SUCCESS;
        case Arguments::Action::showVersion:
            printVersions(supervisor);
            return EXIT_SUCCESS;
        case Arguments::Action::checkFolder:
            return runCheck(supervisor, arguments);
        case Arguments::Action::checkUpdate:
        case Arguments::Action::setUp:
        case Arguments::Action::download:
            break;
    }
    return showsWindow ? runWithWindow(supervisor, arguments)
                       : runWithoutWindow(supervisor, arguments);
}
