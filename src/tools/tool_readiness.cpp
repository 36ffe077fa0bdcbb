#include "tools/tool_readiness.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "tools/tool_discovery.h"

#include <QRegularExpression>
#include <QVersionNumber>

#include <algorithm>
#include <array>

namespace reelcrate {

namespace {

const QString ytDlp = QStringLiteral("yt-dlp");
const QString deno = QStringLiteral("deno");
const QString spotdl = QStringLiteral("spotdl");

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
    Tool{"YouTube Script Runner", "deno", "Optional, for YouTube videos that need it",
         "Optional - click Setup, some YouTube videos need it"},
};

/// Distributions ship a yt-dlp that is too old for the options that every download uses, and a Deno
/// that yt-dlp passes over. Absent when the tool is not, or does not say.
std::optional<QString> remarkOnAge(const ToolVersion& tool) {
    const QString oldest =
        tool.command == ytDlp ? QStringLiteral("2024.04.09") : QStringLiteral("2.3");
    static const QRegularExpression number(QStringLiteral("^\\d+\\.\\d+"));
    if (!number.match(tool.version).hasMatch() ||
        QVersionNumber::fromString(tool.version) >= QVersionNumber::fromString(oldest))
        return std::nullopt;
    return QStringLiteral("%1 is version %2, which is too old: %3 or newer is needed.")
        .arg(tool.path, tool.version, oldest);
}

/// In the background.
void lookFor(const Tool& tool, const ToolDiscovery& discovery, ShellRunner& shell,
             ToolCheck& check) {
    ToolState state;
    state.name = QString::fromLatin1(tool.name);
    state.command = QString::fromLatin1(tool.command);
    state.requiredFor = QString::fromLatin1(tool.requiredFor);
    state.detail = QString::fromLatin1(tool.whenMissing);
    const auto found = discovery.resolvedTool(state.command);
    std::optional<QString> remark;
    if (found && (state.command == ytDlp || (state.command == deno && found->isFromSystem()))) {
        const ToolVersion version = askedVersion(state.command, *found, shell);
        if (found->isFromSystem())
            remark = remarkOnAge(version);
        if (state.command == ytDlp)
            check.ytDlp = version;
    }
    if (remark) {
        check.remarks.append(*remark);
    } else if (found) {
        state.isReady = true;
        state.detail = found->detail;
    }
    check.states.append(state);
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

const QStringList ToolReadiness::coreToolCommands{ytDlp, QStringLiteral("ffmpeg")};
const QStringList ToolReadiness::optionalToolCommands{spotdl, deno};

ToolReadiness::ToolReadiness(ShellRunner& shell, const ToolDiscovery& discovery,
                             BackgroundTasks& background, MainQueue& mainQueue)
    : m_shell(shell), m_discovery(discovery), m_background(background), m_mainQueue(mainQueue) {}

void ToolReadiness::checkTools(const QStringList& news) {
    m_isCheckingTools = true;
    m_toolLog.clear();
    Q_EMIT toolLogCleared();
    appendToolLog(QStringLiteral("Checking required tools...\n"));
    Q_EMIT toolsChanged();
    m_background.run([this, news](const std::stop_token&) {
        ToolCheck check;
        for (const Tool& tool : tools)
            lookFor(tool, m_discovery, m_shell, check);
        check.news = news;
        m_mainQueue.post([this, check] { applyCheck(check); });
    });
}

void ToolReadiness::applyCheck(const ToolCheck& check) {
    m_toolStates = check.states;
    m_ytDlp = check.ytDlp;
    m_isCheckingTools = false;
    QStringList lines;
    for (const ToolState& state : check.states)
        lines.append(logLine(state));
    lines += check.remarks;
    if (check.ytDlp)
        lines.append(versionLine(*check.ytDlp));
    lines += check.news;
    appendToolLog(lines.join(u'\n') + u'\n');
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
    const bool spotifyReady = std::any_of(
        m_toolStates.begin(), m_toolStates.end(),
        [](const ToolState& state) { return state.isReady && state.command == spotdl; });
    return spotifyReady
               ? QStringLiteral("YouTube, Facebook, and Spotify helpers are ready.")
               : QStringLiteral("YouTube and Facebook are ready. Spotify matching is optional.");
}

}  // namespace reelcrate
