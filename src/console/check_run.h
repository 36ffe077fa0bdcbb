#pragma once

/// The command line's look at an existing event folder. Main thread; it runs the event loop until
/// the look is done, or ended by a signal.
namespace reelcrate {

class ProcessSupervisor;
struct Arguments;

/// Prints what it finds; the progress, on a terminal, goes to standard error. Returns the program's
/// exit status: as HeadlessRun, with 2 where there is no such folder.
int runCheck(ProcessSupervisor& supervisor, const Arguments& arguments);

}  // namespace reelcrate
