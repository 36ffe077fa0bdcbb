#pragma once

#include "tools/tool_versions.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <optional>

/// Which of the external tools are there, as the last check found them. Main thread; a check looks
/// in the background and reports by signals. A tool that is missing is a record that says so.
namespace reelcrate {

class BackgroundTasks;
class MainQueue;
class ShellRunner;
class ToolDiscovery;

struct ToolState {
    QUuid id = QUuid::createUuid();
    QString name;         ///< the tool's role
    QString command;      ///< the key by which the tool is looked up
    QString requiredFor;  ///< what the tool is needed for
    bool isReady = false;
    QString detail;  ///< where it was found, or what to do
};

/// What a look for the tools gives.
struct ToolCheck {
    QList<ToolState> states;
    QStringList remarks;  ///< what there is to say beside the records
    std::optional<ToolVersion> ytDlp;
    QStringList news;  ///< of a Setup before
};

class ToolReadiness : public QObject {
    Q_OBJECT

public:
    static const QStringList coreToolCommands;      ///< nothing is downloaded without these
    static const QStringList optionalToolCommands;  ///< needed only for some links

    ToolReadiness(ShellRunner& shell, const ToolDiscovery& discovery, BackgroundTasks& background,
                  MainQueue& mainQueue);

    const QList<ToolState>& toolStates() const { return m_toolStates; }
    const QString& toolLog() const { return m_toolLog; }
    bool isCheckingTools() const { return m_isCheckingTools; }

    /// The yt-dlp that the last check found, too old ones included.
    const std::optional<ToolVersion>& foundYtDlp() const { return m_ytDlp; }

    /// Looks for all tools again; the records are replaced when all have been looked for. `news`
    /// are lines for the end of the log, which begins anew.
    void checkTools(const QStringList& news = {});

    void appendToolLog(const QString& text);

    bool coreToolsReady() const;
    QList<ToolState> missingRequiredTools() const;
    QList<ToolState> missingInstallableTools() const;

    /// The one-line summary of the last check.
    QString setupDetailText() const;

Q_SIGNALS:
    void toolsChanged();
    /// The log began anew; what it holds now is appended next.
    void toolLogCleared();
    void toolLogAppended(const QString& text);
    void summaryChanged(const QString& text);

private:
    void applyCheck(const ToolCheck& check);

    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
    BackgroundTasks& m_background;
    MainQueue& m_mainQueue;
    QList<ToolState> m_toolStates;
    std::optional<ToolVersion> m_ytDlp;
    QString m_toolLog;
    bool m_isCheckingTools = false;
};

}  // namespace reelcrate
