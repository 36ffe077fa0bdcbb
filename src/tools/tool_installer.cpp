#include "tools/tool_installer.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "tools/installer_output.h"
#include "tools/tool_discovery.h"
#include "tools/tool_readiness.h"

#include <algorithm>
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
    if (m_readiness.toolStates().isEmpty())
        m_readiness.checkTools();
    else
        installMissingTools();
}

/// Where anything is missing, the private folder gets all that downloads need. Otherwise the
/// machine's own tools serve, but for a yt-dlp that has become old.
QStringList ToolInstaller::wantedTools() const {
    const QString ytDlp = QStringLiteral("yt-dlp");
    const QString deno = QStringLiteral("deno");
    const QList<ToolState> missing = m_readiness.missingInstallableTools();
    QStringList wanted;
    if (!missing.isEmpty())
        wanted = {ytDlp, QStringLiteral("ffmpeg"), QStringLiteral("ffprobe")};
    else if (m_readiness.foundYtDlp() && m_readiness.foundYtDlp()->isStale())
        wanted = {ytDlp};
    if (std::any_of(missing.begin(), missing.end(),
                    [&](const ToolState& state) { return state.command == deno; }))
        wanted.append(deno);
    return wanted;
}

void ToolInstaller::installMissingTools() {
    m_isInstallingTools = true;
    Q_EMIT isInstallingToolsChanged();
    m_readiness.appendToolLog(QStringLiteral("\nStarting private tool installer...\n"));
    m_background.run([this, wanted = wantedTools()](const std::stop_token&) {
        const QStringList news = runScripts(wanted);
        m_mainQueue.post([this, news] { finish(news); });
    });
}

/// In the background, as the next two. What is worth telling again is the result.
QStringList ToolInstaller::runScripts(const QStringList& wanted) {
    QStringList news;
    const CommandResult core =
        runScript(coreInstallScript(m_discovery.appSupportBinDirectory(), m_sources, wanted), news);
    if (core.status != 0) {
        log(core.output.isEmpty() ? QStringLiteral("Private tool installer did not finish.\n")
                                  : core.output + u'\n');
        return news;
    }
    const auto spotdl = m_discovery.resolvedTool(QStringLiteral("spotdl"));
    if (spotdl && spotdl->detail != ResolvedTool::readyPrivately)
        return news;
    if (runScript(spotifyScript(), news).status != 0) {
        log(
            QStringLiteral("Spotify helper was not installed. YouTube and Facebook downloads can "
                           "still work.\n"));
    }
    return news;
}

/// The result's output is what has gone to the log.
CommandResult ToolInstaller::runScript(const QString& script, QStringList& news) {
    InstallerOutput output;
    QString all;
    const auto pass = [&](const QString& lines) {
        if (!lines.isEmpty()) {
            show({});
            log(lines);
            all += lines;
        }
        show(output.progress());
    };
    CommandResult result =
        m_shell.runShellPassingOn(script, [&](const QString& piece) { pass(output.add(piece)); });
    pass(output.finish());
    news += output.news();
    if (result.output.isEmpty())
        result.output = all;
    return result;
}

QString ToolInstaller::spotifyScript() const {
    return spotifyInstallScript(m_discovery.appSupportBinDirectory(), m_sources);
}

CommandResult ToolInstaller::installOptionalSpotifyTool(
    const ShellRunner::OutputHandler& onOutput) const {
    return m_shell.runShellStreaming(spotifyScript(), onOutput);
}

/// Any thread.
void ToolInstaller::log(const QString& text) {
    m_mainQueue.post([&readiness = m_readiness, text] { readiness.appendToolLog(text); });
}

/// Any thread.
void ToolInstaller::show(const QString& progress) {
    m_mainQueue.post([this, progress] {
        if (m_progress != progress)
            Q_EMIT progressChanged(m_progress = progress);
    });
}

void ToolInstaller::finish(const QStringList& news) {
    m_isInstallingTools = false;
    m_readiness.checkTools(news);
    Q_EMIT isInstallingToolsChanged();
}

}  // namespace reelcrate
