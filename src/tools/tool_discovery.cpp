#include "tools/tool_discovery.h"

#include "tools/shell_quote.h"
#include "tools/shell_runner.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <utility>

namespace reelcrate {

namespace {

const QString engineFolder = QStringLiteral("DownloaderEngine/bin");
const QString toolsFolder = QStringLiteral("Tools/bin");

QString joined(const QString& folder, const QString& rest) {
    return folder + u'/' + rest;
}

bool isExecutableFile(const QString& path) {
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

/// What a shell finds on this search path, as far as that can be told without one: where a folder
/// that counts from the current one comes before a find, it cannot, since a profile may change the
/// current folder.
std::optional<QString> executableOn(const QString& searchPath, const QString& command) {
    if (command.contains(u'/'))
        return std::nullopt;
    for (const QString& folder : searchPath.split(u':')) {
        if (!folder.startsWith(u'/'))
            return std::nullopt;
        const QString path = folder.endsWith(u'/') ? folder + command : joined(folder, command);
        if (isExecutableFile(path))
            return path;
    }
    return std::nullopt;
}

}  // namespace

ToolPlaces ToolPlaces::ofThisMachine() {
    ToolPlaces places;
    places.home = QDir::homePath();
    places.appSupport = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (places.appSupport.isEmpty())
        places.appSupport = joined(places.home, QStringLiteral("Library/Application Support"));
    // From XDG_DATA_HOME, whose standard has a relative path ignored.
    if (QDir::isRelativePath(places.appSupport))
        places.appSupport = joined(places.home, QStringLiteral(".local/share"));
    const QDir resources(QCoreApplication::applicationDirPath() +
                         QStringLiteral("/../lib/reelcrate"));
    if (resources.exists())
        places.resourceFolder = resources.canonicalPath();
    return places;
}

const QString ResolvedTool::readyBundled = QStringLiteral("Ready - bundled with app");
const QString ResolvedTool::readyPrivately = QStringLiteral("Ready - installed privately");
const QString ResolvedTool::readyOnSystem = QStringLiteral("Ready - already on this Mac");

bool ResolvedTool::isFromSystem() const {
    return detail == readyOnSystem;
}

ToolDiscovery::ToolDiscovery(ShellRunner& shell, ToolPlaces places)
    : m_shell(shell), m_places(std::move(places)) {}

QString ToolDiscovery::appSupportBinDirectory() const {
    return joined(m_places.appSupport, QStringLiteral("Reelcrate/Tools/bin"));
}

QStringList ToolDiscovery::toolCandidates(const QString& command) const {
    QStringList candidates;
    if (m_places.resourceFolder) {
        candidates.append(joined(joined(*m_places.resourceFolder, engineFolder), command));
        candidates.append(joined(joined(*m_places.resourceFolder, toolsFolder), command));
    }
    candidates.append(joined(appSupportBinDirectory(), command));
    return candidates;
}

QString ToolDiscovery::candidateDetail(const QString& path) const {
    if (m_places.resourceFolder && path.startsWith(*m_places.resourceFolder))
        return ResolvedTool::readyBundled;
    return ResolvedTool::readyPrivately;
}

QStringList ToolDiscovery::systemPlaces() const {
    return m_places.systemFolders + QStringList{m_places.home + QStringLiteral("/.local/bin")};
}

std::optional<QString> ToolDiscovery::systemToolPath(const QString& command) const {
    const QString searchPath = systemPlaces().join(u':');
    if (auto path = executableOn(searchPath, command))
        return path;
    // The assignment stands inside the command because a login shell's profile resets the path.
    const QString lookup = QStringLiteral("PATH=") + shellQuoted(searchPath) +
                           QStringLiteral(" command -v ") + shellQuoted(command);
    const CommandResult result = m_shell.runShellSync(lookup, std::nullopt);
    // The last line: what stands before it was printed by the user's profile.
    QString path = result.output.trimmed().section(u'\n', -1).trimmed();
    if (result.status != 0 || path.isEmpty())
        return std::nullopt;
    return path;
}

std::optional<ResolvedTool> ToolDiscovery::resolvedTool(const QString& command) const {
    for (const QString& candidate : toolCandidates(command)) {
        if (isExecutableFile(candidate))
            return ResolvedTool{candidate, candidateDetail(candidate)};
    }
    if (auto path = systemToolPath(command))
        return ResolvedTool{*std::move(path), ResolvedTool::readyOnSystem};
    return std::nullopt;
}

std::optional<QString> ToolDiscovery::toolPath(const QString& command) const {
    if (auto tool = resolvedTool(command))
        return std::move(tool->path);
    return std::nullopt;
}

QString ToolDiscovery::toolSearchPath() const {
    QStringList folders{appSupportBinDirectory()};
    if (m_places.resourceFolder) {
        folders.append(joined(*m_places.resourceFolder, engineFolder));
        folders.append(joined(*m_places.resourceFolder, toolsFolder));
    }
    folders.append(systemPlaces());
    folders.removeDuplicates();
    return folders.join(u':');
}

}  // namespace reelcrate
