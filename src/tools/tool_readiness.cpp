#include "tools/tool_readiness.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "tools/shell_quote.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace reelcrate {

namespace {

struct Tool {
    const char* name;
    const char* command;
    const char* requiredFor;
    const char* whenMissing;
};

constexpr std::array tools{
    Tool{"YouTube/Facebook Engine", "yt-dlp", "Download YouTube and public Facebook links",
         "Missing - click Setup"},
    Tool{"Audio/Video Converter", "ffmpeg", "Create MP3 and MP4 files", "Missing - click Setup"},
    Tool{"Spotify Link Resolver", "spotdl", "Optional Spotify playlist matching",
         "Optional - install only if using Spotify links"},
};

/// Distributions ship a yt-dlp that is too old for the options that every download uses. Absent
/// when it is not, or does not say.
std::optional<QString> remarkOnAge(const QString& ytDlp, ShellRunner& shell) {
    const QString oldest = QStringLiteral("2024.04.09");
    constexpr double limitSeconds = 10;
    const CommandResult answer =
        shell.runShellSync(shellQuoted(ytDlp) + QStringLiteral(" --version"), limitSeconds);
    static const QRegularExpression date(QStringLiteral("^\\d{4}\\.\\d\\d\\.\\d\\d"));
    const QString version = answer.output.trimmed().section(u'\n', -1).trimmed();
    const QRegularExpressionMatch match = date.match(version);
    if (answer.status != 0 || !match.hasMatch() || match.captured() >= oldest)
        return std::nullopt;
    return QStringLiteral("%1 is version %2, which is too old: %3 or newer is needed.")
        .arg(ytDlp, version, oldest);
}

/// In the background. What there is to say beside the record goes to the remarks.
ToolState lookFor(const Tool& tool, const ToolDiscovery& discovery, ShellRunner& shell,
                  QStringList& remarks) {
    ToolState state;
    state.name = QString::fromLatin1(tool.name);
    state.command = QString::fromLatin1(tool.command);
    state.requiredFor = QString::fromLatin1(tool.requiredFor);
    state.detail = QString::fromLatin1(tool.whenMissing);
    const auto found = discovery.resolvedTool(state.command);
    if (!found)
        return state;
    if (state.command == QStringLiteral("yt-dlp") && found->isFromSystem()) {
        if (const auto remark = remarkOnAge(found->path, shell)) {
            remarks.append(*remark);
            return state;
        }
    }
    state.isReady = true;
    state.detail = found->detail;
    return state;
}

QString logLine(const ToolState& state) {
    return (state.isReady ? QStringLiteral("OK") : QStringLiteral("Missing")) +
           QStringLiteral(": ") + state.name + QStringLiteral(" - ") + state.detail;
}

template <typename Predicate>
QList<ToolState> filtered(const QList<ToolState>& states, Predicate predicate) {
    QList<ToolState> kept;
    std::copy_if(states.begin(), states.end(), std::back_inserter(kept), predicate);
    return kept;
}

}  // namespace

const QStringList ToolReadiness::coreToolCommands{QStringLiteral("yt-dlp"),
                                                  QStringLiteral("ffmpeg")};
const QStringList ToolReadiness::optionalToolCommands{QStringLiteral("spotdl")};

ToolReadiness::ToolReadiness(ShellRunner& shell, const ToolDiscovery& discovery,
                             BackgroundTasks& background, MainQueue& mainQueue)
    : m_shell(shell), m_discovery(discovery), m_background(background), m_mainQueue(mainQueue) {}

void ToolReadiness::checkTools() {
    m_isCheckingTools = true;
    m_toolLog.clear();
    Q_EMIT toolLogCleared();
    appendToolLog(QStringLiteral("Checking required tools...\n"));
    Q_EMIT toolsChanged();
    m_background.run([this](const std::stop_token&) {
        QList<ToolState> states;
        QStringList remarks;
        for (const Tool& tool : tools)
            states.append(lookFor(tool, m_discovery, m_shell, remarks));
        m_mainQueue.post([this, states, remarks] { applyCheck(states, remarks); });
    });
}

void ToolReadiness::applyCheck(const QList<ToolState>& states, const QStringList& remarks) {
    m_toolStates = states;
    m_isCheckingTools = false;
    QStringList lines;
    for (const ToolState& state : states)
        lines.append(logLine(state));
    appendToolLog((lines + remarks).join(u'\n') + u'\n');
    Q_EMIT toolsChanged();
    Q_EMIT summaryChanged(coreToolsReady() ? QStringLiteral("Downloader tools are ready")
                                           : QStringLiteral("Setup needs attention"));
}

void ToolReadiness::appendToolLog(const QString& text) {
    m_toolLog += text;
    Q_EMIT toolLogAppended(text);
}

bool ToolReadiness::coreToolsReady() const {
    return std::all_of(
        coreToolCommands.begin(), coreToolCommands.end(), [this](const QString& command) {
            const auto state =
                std::find_if(m_toolStates.begin(), m_toolStates.end(),
                             [&](const ToolState& s) { return s.command == command; });
            return state != m_toolStates.end() && state->isReady;
        });
}

QList<ToolState> ToolReadiness::missingRequiredTools() const {
    return filtered(m_toolStates, [](const ToolState& state) {
        return !state.isReady && !optionalToolCommands.contains(state.command);
    });
}

QList<ToolState> ToolReadiness::missingInstallableTools() const {
    return filtered(m_toolStates, [](const ToolState& state) { return !state.isReady; });
}

QString ToolReadiness::setupDetailText() const {
    if (m_toolStates.isEmpty())
        return QStringLiteral("Check downloader tools before adding songs.");
    QStringList missing;
    for (const ToolState& state : missingRequiredTools())
        missing.append(state.command);
    if (!missing.isEmpty()) {
        return QStringLiteral("Missing ") + missing.join(QStringLiteral(", ")) +
               QStringLiteral(". Click Setup to finish.");
    }
    const bool spotifyReady =
        std::any_of(m_toolStates.begin(), m_toolStates.end(), [](const ToolState& state) {
            return state.isReady && optionalToolCommands.contains(state.command);
        });
    return spotifyReady
               ? QStringLiteral("YouTube, Facebook, and Spotify helpers are ready.")
               : QStringLiteral("YouTube and Facebook are ready. Spotify matching is optional.");
}

}  // namespace reelcrate
