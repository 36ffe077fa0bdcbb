#include "console/setup_run.h"

#include "app/content_view.h"
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
int execInterruptibly(ContentView& view) {
    constexpr int endedBySignal = 128;
    TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &view, [&view](int signalNumber) {
        view.shutDown();
        QCoreApplication::exit(endedBySignal + signalNumber);
    });
    return QCoreApplication::exec();
}

}  // namespace

int runSetup(ContentView& view) {
    bool isSetUp = false;
    QObject::connect(&view, &ContentView::toolLogAppended, &printLog);
    if (isOnTerminal())
        QObject::connect(&view, &ContentView::setupProgressChanged, &drawProgress);
    QObject::connect(
        &view, &ContentView::toolsChanged, &view,
        [&view, &isSetUp] {
            if (view.isCheckingTools() || view.isInstallingTools())
                return;
            if (isSetUp) {
                print(view.setupDetailText() + u'\n');
                QCoreApplication::exit(view.coreToolsReady() ? EXIT_SUCCESS
                                                             : HeadlessRun::toolsMissing);
                return;
            }
            isSetUp = true;
            view.performSetup();
        },
        Qt::QueuedConnection);
    view.checkTools();
    return execInterruptibly(view);
}

int runUpdateCheck(ContentView& view) {
    QObject::connect(&view, &ContentView::updateScanFinished, &view,
                     [](const UpdateOutcome& outcome) {
                         print(printable(outcome.message) + u'\n');
                         QCoreApplication::exit(outcome.wasChecked ? EXIT_SUCCESS : EXIT_FAILURE);
                     });
    view.scanForUpdate();
    if (!view.isScanningForUpdate()) {
        print(view.updateMessage() + u'\n');
        return EXIT_FAILURE;
    }
    return execInterruptibly(view);
}

}  // namespace reelcrate
