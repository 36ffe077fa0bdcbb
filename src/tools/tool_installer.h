#pragma once

#include "tools/installer_scripts.h"
#include "tools/shell_runner.h"

#include <QObject>
#include <QString>

/// Installs missing tools into the private tool folder. Main thread; the scripts run in the
/// background, and what they print arrives in the tool log. However an installation ends, the tools
/// are checked again afterwards, which tells what is really there.
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

    /// What the user's Setup button does: installs what the last check missed, or checks. Nothing
    /// while either is under way.
    void performSetup();

    /// Background threads. Blocks until the script has ended; `onOutput` gets its output in pieces.
    CommandResult installOptionalSpotifyTool(const ShellRunner::OutputHandler& onOutput) const;

Q_SIGNALS:
    void isInstallingToolsChanged();

private:
    void install() const;
    void log(const QString& text) const;
    void finish();

    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
    ToolReadiness& m_readiness;
    BackgroundTasks& m_background;
    MainQueue& m_mainQueue;
    const InstallerSources m_sources;
    bool m_isInstallingTools = false;
};

}  // namespace reelcrate
