#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// Where the external tools are taken from. Nothing is cached: every question looks again, so that
/// a tool installed or removed meanwhile is seen. Any thread; a lookup may run a login shell, so
/// never ask for a tool on the main thread. What is not found is absent, never an error.
namespace reelcrate {

class ShellRunner;

/// The folders that the search starts from, fixed at the program's start.
struct ToolPlaces {
    QString home;                           ///< empty when the user has none
    QString appSupport;                     ///< parent of the program's private folder
    std::optional<QString> resourceFolder;  ///< read-only files shipped with the program

    /// Where the system's own tools are looked for, in order, before the user's ".local/bin".
    QStringList systemFolders{QStringLiteral("/opt/homebrew/bin"), QStringLiteral("/usr/local/bin"),
                              QStringLiteral("/usr/bin"),          QStringLiteral("/bin"),
                              QStringLiteral("/usr/sbin"),         QStringLiteral("/sbin")};

    /// From the environment and, for the resource folder, from where the program is installed.
    /// Needs a QCoreApplication.
    static ToolPlaces ofThisMachine();
};

struct ResolvedTool {
    QString path;    ///< absolute
    QString detail;  ///< one of these readiness texts

    static const QString readyBundled;
    static const QString readyPrivately;
    static const QString readyOnSystem;

    /// Found on the system's search path, not among the program's own copies.
    bool isFromSystem() const;

    friend bool operator==(const ResolvedTool&, const ResolvedTool&) = default;
};

class ToolDiscovery {
public:
    ToolDiscovery(ShellRunner& shell, ToolPlaces places);

    const ToolPlaces& places() const { return m_places; }

    /// The private tool folder; it need not exist.
    QString appSupportBinDirectory() const;

    /// Where a tool is looked for before the shell is asked, in order.
    QStringList toolCandidates(const QString& command) const;

    /// The readiness text of a tool found at one of its candidates.
    QString candidateDetail(const QString& path) const;

    /// What a login shell finds on the system's own search path. The shell itself is only asked
    /// when no folder of that path holds an executable file of the name.
    std::optional<QString> systemToolPath(const QString& command) const;

    /// The lookup that everything asks, by the tool's command name such as "yt-dlp".
    std::optional<ResolvedTool> resolvedTool(const QString& command) const;

    /// Just the path of a resolved tool.
    std::optional<QString> toolPath(const QString& command) const;

    /// The colon-separated search path that tool commands run with, in front of the inherited one.
    QString toolSearchPath() const;

private:
    QStringList systemPlaces() const;

    ShellRunner& m_shell;
    const ToolPlaces m_places;
};

}  // namespace reelcrate
