#pragma once

#include "tools/installer_scripts.h"
#include "tools/shell_runner.h"

#include <QObject>
#include <QString>
#include <QStringList>

/// Installs missing tools into the private tool folder, and replaces those that have become old.
/// Main thread; the scripts run in the background, and what they print arrives in the tool log.
/// However an installation ends, the tools are checked again afterwards, which tells what is really
/// there; what was worth telling stands in the log of that check, too.
namespace reelcrate {

class BackgroundTasks;
class MainQueue;
class ToolDiscovery;
class ToolReadiness;

class ToolInstaller : public QObject {
    Q_OBJECT

public:
    ToolInstaller(ShellRunner& shell, const ToolDiscovery& discovery, ToolReadiness& readiness,
                  BackgroundTasks& background, MainQueue& mainQueue, InstallerSources sources);

    bool isInstallingTools() const { return m_isInstallingTools; }

    void installMissingTools();

    /// What the user's Setup button does: installs what the last check missed and what is newer, or
    /// checks where nothing was checked yet. Nothing while either is under way.
    void performSetup();

    /// Background threads. Blocks until the script has ended; `onOutput` gets its output in pieces.
    CommandResult installOptionalSpotifyTool(const ShellRunner::OutputHandler& onOutput) const;

Q_SIGNALS:
    void isInstallingToolsChanged();
    /// How far a step is; empty when that is not known, or no longer so.
    void progressChanged(const QString& progress);

private:
    QStringList wantedTools() const;
    QStringList runScripts(const QStringList& wanted);
    CommandResult runScript(const QString& script, QStringList& news);
    QString spotifyScript() const;
    void log(const QString& text);
    void show(const QString& progress);
    void finish(const QStringList& news);

    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
    ToolReadiness& m_readiness;
    BackgroundTasks& m_background;
    MainQueue& m_mainQueue;
    const InstallerSources m_sources;
    bool m_isInstallingTools = false;
    QString m_progress;
};

}  // namespace reelcrate
