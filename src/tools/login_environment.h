#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>

#include <optional>

/// The variables that a command would see in the user's login shell. They are read once, by a login
/// shell that runs nothing else, so that what a profile prints reaches no command's output and what
/// it costs is paid once. Pure functions; any thread.
namespace reelcrate {

/// The command for a login shell that prints its variables between two marks.
QString loginEnvironmentCommand(const QByteArray& mark);

struct LoginEnvironment {
    QProcessEnvironment variables;
    /// What a command line has to begin with: it sets the variables whose bytes are no text.
    QString exports;
};

/// Reads that command's output, whatever a profile printed before and after it. Absent when the
/// shell never came to run the command.
std::optional<LoginEnvironment> loginEnvironmentFrom(const QByteArray& output,
                                                     const QByteArray& mark);

}  // namespace reelcrate
