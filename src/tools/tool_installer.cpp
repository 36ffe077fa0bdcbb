#include "tools/tool_installer.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "tools/tool_discovery.h"
#include "tools/tool_readiness.h"

#include <QFileInfo>

#include <utility>

namespace reelcrate {

ToolInstaller::ToolInstaller(ShellRunner& shell, const ToolDiscovery& discovery,
                             ToolReadiness& readiness, BackgroundTasks& background,
                             MainQueue& mainQueue, InstallerSources sources)
    : m_shell(shell),
      m_discovery(discovery),
      m_readiness(readiness),
      m_background(background),
      m_mainQueue(mainQueue),
      m_sources(std::move(sources)) {}

void ToolInstaller::performSetup() {
    if (m_isInstallingTools || m_readiness.isCheckingTools())
        return;
    if (m_readiness.missingInstallableTools().isEmpty())
        m_readiness.checkTools();
    else
        installMissingTools();
}

void ToolInstaller::installMissingTools() {
    m_isInstallingTools = true;
    Q_EMIT isInstallingToolsChanged();
    m_readiness.appendToolLog(QStringLiteral("\nStarting private tool installer...\n"));
    m_background.run([this](const std::stop_token&) {
        install();
        m_mainQueue.post([this] { finish(); });
    });
}

/// In the background.
void ToolInstaller::install() const {
    const auto logPiece = [this](const QString& piece) {
        log(piece.endsWith(u'\n') ? piece : piece + u'\n');
    };
    const CommandResult core = m_shell.runShellStreaming(
        coreInstallScript(m_discovery.appSupportBinDirectory(), m_sources), logPiece);
    if (core.status != 0) {
        log(core.output.isEmpty() ? QStringLiteral("Private tool installer did not finish.\n")
                                  : core.output + u'\n');
        return;
    }
    if (m_discovery.resolvedTool(QStringLiteral("spotdl")))
        return;
    if (installOptionalSpotifyTool(logPiece).status != 0) {
        log(
            QStringLiteral("Spotify helper was not installed. YouTube and Facebook downloads can "
                           "still work.\n"));
    }
}

CommandResult ToolInstaller::installOptionalSpotifyTool(
    const ShellRunner::OutputHandler& onOutput) const {
    const QString bin = m_discovery.appSupportBinDirectory();
    return m_shell.runShellStreaming(spotifyInstallScript(QFileInfo(bin).path(), bin), onOutput);
}

/// Any thread.
void ToolInstaller::log(const QString& text) const {
    m_mainQueue.post([&readiness = m_readiness, text] { readiness.appendToolLog(text); });
}

void ToolInstaller::finish() {
    m_isInstallingTools = false;
    m_readiness.checkTools();
    Q_EMIT isInstallingToolsChanged();
}

}  // namespace reelcrate
