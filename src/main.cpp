#include "app/content_view.h"
#include "console/arguments.h"
#include "console/headless_run.h"
#include "console/setup_run.h"
#include "tools/process_supervisor.h"

#include <QCoreApplication>
#include <QTextStream>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <langinfo.h>
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

void print(FILE* stream, const QString& text) {
    QTextStream(stream) << text;
}

}  // namespace

int main(int argc, char** argv) {
    fillStandardStreams();
    useUtf8();
    // Before all else: it forks, and a process with threads must not.
    ProcessSupervisor supervisor;
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("reelcrate"));
    QCoreApplication::setApplicationVersion(ContentView::appVersion);

    const Arguments arguments = parseArguments(QCoreApplication::arguments());
    if (!arguments.usageError.isEmpty()) {
        print(stderr, arguments.usageError + QStringLiteral("\n\n") + helpText());
        return HeadlessRun::wrongUsage;
    }
    switch (arguments.action) {
        case Arguments::Action::showHelp:
            print(stdout, helpText());
            return EXIT_SUCCESS;
        case Arguments::Action::showVersion:
            print(stdout, QStringLiteral("Reelcrate %1 (%2)\n")
                              .arg(ContentView::appVersion)
                              .arg(ContentView::appBuild));
            return EXIT_SUCCESS;
        case Arguments::Action::checkUpdate:
        case Arguments::Action::setUp:
        case Arguments::Action::download:
            break;
    }
    ContentView view(supervisor, ContentViewSetup::ofThisMachine());
    if (arguments.action == Arguments::Action::checkUpdate)
        return runUpdateCheck(view);
    if (arguments.action == Arguments::Action::setUp)
        return runSetup(view);
    if (!arguments.headless) {
        print(stderr,
              QStringLiteral("The window is not part of this version yet: use --headless.\n\n") +
                  helpText());
        return HeadlessRun::wrongUsage;
    }
    return runHeadless(view, arguments);
}
