#include "console/setup_run.h"

#include "app/controller.h"
#include "console/headless_run.h"
#include "console/row_text.h"
#include "console/termination_signals.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace reelcrate {

namespace {

void print(const QString& text) {
    QTextStream(stdout) << text;
}

bool isOnTerminal() {
    return ::isatty(STDOUT_FILENO) != 0;
}

/// In place of what the line held. The next piece of the log comes when it is empty again.
void drawProgress(const QString& progress) {
    print(QStringLiteral("\r\x1b[K") + printable(progress));
}

/// The tools' own words are among it.
void printLog(const QString& text) {
    QStringList lines = text.split(u'\n');
    for (QString& line : lines)
        line = printable(line);
    print(lines.join(u'\n'));
}

/// Runs the event loop; a signal ends what is under way and the loop.
int execInterruptibly(Controller& controller) {
    constexpr int endedBySignal = 128;
    TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &controller,
                     [&controller](int signalNumber) {
                         controller.shutDown();
                         QCoreApplication::exit(endedBySignal + signalNumber);
                     });
    return QCoreApplication::exec();
}

}  // namespace

int runSetup(Controller& controller) {
    bool isSetUp = false;
    QObject::connect(&controller.tools(), &ToolReadiness::toolLogAppended, &printLog);
    if (isOnTerminal())
        QObject::connect(&controller.installer(), &ToolInstaller::progressChanged, &drawProgress);
    QObject::connect(
        &controller, &Controller::toolsChanged, &controller,
        [&controller, &isSetUp] {
            if (controller.tools().isCheckingTools() || controller.installer().isInstallingTools())
                return;
            if (isSetUp) {
                print(controller.tools().setupDetailText() + u'\n');
                QCoreApplication::exit(
                    controller.tools().coreToolsReady() ? EXIT_SUCCESS : HeadlessRun::toolsMissing);
                return;
            }
            isSetUp = true;
            controller.installer().performSetup();
        },
        Qt::QueuedConnection);
    controller.tools().checkTools();
    return execInterruptibly(controller);
}

int runUpdateCheck(Controller& controller) {
    QObject::connect(&controller.update(), &UpdateScan::finished, &controller,
                     [](const UpdateOutcome& outcome) {
                         print(printable(outcome.message) + u'\n');
                         QCoreApplication::exit(outcome.wasChecked ? EXIT_SUCCESS : EXIT_FAILURE);
                     });
    controller.update().scanForUpdate();
    if (!controller.update().isScanningForUpdate()) {
        print(controller.update().updateMessage() + u'\n');
        return EXIT_FAILURE;
    }
    return execInterruptibly(controller);
}

}  // namespace reelcrate
