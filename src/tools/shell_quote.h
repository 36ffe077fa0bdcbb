#pragma once

#include <QString>

namespace reelcrate {

/// The one rule that makes any text one shell word: data reaches a command line only through it.
/// Wrapped in single quotes, with each single quote inside replaced by '\''. A NUL character,
/// which no argument of a program can hold, is left out. Pure; any thread.
QString shellQuoted(QString text);

}  // namespace reelcrate
