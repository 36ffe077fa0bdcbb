#pragma once

/// Where downloads go and as what, as the command line says. Main thread.
namespace reelcrate {

class Controller;
struct Arguments;

/// What the command line leaves open stays as it is.
void applySettings(const Arguments& arguments, Controller& controller);

}  // namespace reelcrate
