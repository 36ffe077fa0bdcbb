#pragma once

#include "tools/tool_discovery.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>

/// Which version of a tool it is that commands run, how old it is, and where it comes from. Asking
/// runs the tool, so never on the main thread while there is a window; the rest are pure functions.
/// A tool that does not say its version has an empty one.
namespace reelcrate {

class ShellRunner;

struct ToolVersion {
    QString command;
    QString version;             ///< empty when the tool did not say
    std::optional<qint64> days;  ///< since its release, where the version tells that
    QString path;
    QString detail;  ///< the readiness text, which tells the place

    /// So old that the sites may have changed since.
    bool isStale() const;

    friend bool operator==(const ToolVersion&, const ToolVersion&) = default;
};

/// The version in what a tool prints when it is asked for it.
QString versionIn(const QString& command, const QString& output);

/// yt-dlp's versions begin with the date of their release. Absent for all others, and for a date
/// that is still to come.
std::optional<qint64> ageInDays(const QString& version, const QDate& today);

/// The version in the name of the folder that Setup's yt-dlp stands in; empty for any other path.
QString versionOfPrivateFolder(const QString& path);

/// Asks the tool for its version, unless its place tells it.
ToolVersion askedVersion(const QString& command, const ResolvedTool& tool, ShellRunner& shell);

/// "yt-dlp 2025.04.30, 572 days old, from the system: Setup brings the newest"
QString versionLine(const ToolVersion& tool);

/// A line for each of the tools, found or not.
QStringList toolVersionLines(const ToolDiscovery& discovery, ShellRunner& shell);

}  // namespace reelcrate
