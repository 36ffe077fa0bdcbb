#include "console/setup_run.h"

#include "app/content_view.h"
#include "console/headless_run.h"
#include "console/row_text.h"
#include "console/termination_signals.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>
#include <cstdlib>

namespace reelcrate {

namespace {

void print(const QString& text) {
    QTextStream(stdout) << text;
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
    QObject::connect(&view, &ContentView::toolLogAppended, &print);
    QObject::connect(
        &view, &ContentView::toolsChanged, &view,
        [&view, &isSetUp] {
            if (view.isCheckingTools() || view.isInstallingTools())
                return;
            const bool isComplete = view.missingInstallableTools().isEmpty();
            if (isSetUp || isComplete) {
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
