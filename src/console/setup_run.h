#pragma once

/// The command line's other tasks beside downloading. Main thread; each runs the event loop until
/// its task is done, or ended by a signal, and returns the program's exit status.
namespace reelcrate {

class Controller;

/// Looks for the tools and installs what is missing, with the log on standard output. Zero when the
/// core tools are ready afterwards, HeadlessRun::toolsMissing otherwise.
int runSetup(Controller& controller);

/// Prints what the update check finds. Zero when it could be checked, otherwise one.
int runUpdateCheck(Controller& controller);

}  // namespace reelcrate
