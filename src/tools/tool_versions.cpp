#include "tools/tool_versions.h"

#include "tools/shell_quote.h"
#include "tools/shell_runner.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace reelcrate {

namespace {

const QString ytDlp = QStringLiteral("yt-dlp");
const QString ffmpeg = QStringLiteral("ffmpeg");
const QString deno = QStringLiteral("deno");
const QString spotdl = QStringLiteral("spotdl");

QString place(const QString& detail) {
    if (detail == ResolvedTool::readyOnSystem)
        return QStringLiteral("from the system");
    if (detail == ResolvedTool::readyBundled)
        return QStringLiteral("bundled with the program");
    return QStringLiteral("installed privately");
}

/// What can be done about an old one. The program's own files are not Setup's to change.
QString advice(const ToolVersion& tool) {
    if (!tool.isStale() || tool.detail == ResolvedTool::readyBundled)
        return {};
    return tool.detail == ResolvedTool::readyOnSystem
               ? QStringLiteral(": Setup brings the newest")
               : QStringLiteral(": Setup asks for a newer one");
}

}  // namespace

bool ToolVersion::isStale() const {
    constexpr qint64 freshForDays = 90;
    return days.value_or(0) > freshForDays;
}

QString versionIn(const QString& command, const QString& output) {
    // Warnings, and what the user's profile prints, come before the version.
    if (command == ytDlp || command == spotdl)
        return output.trimmed().section(u'\n', -1).trimmed();
    static const QRegularExpression named(QStringLiteral("^(?:ffmpeg version|deno) (\\S+)"),
                                          QRegularExpression::MultilineOption);
    return named.match(output).captured(1);
}

std::optional<qint64> ageInDays(const QString& version, const QDate& today) {
    static const QRegularExpression leadingDate(
        QStringLiteral("^(\\d{4})\\.(\\d\\d)\\.(\\d\\d)(?!\\d)"));
    const QRegularExpressionMatch match = leadingDate.match(version);
    const QDate released(match.captured(1).toInt(), match.captured(2).toInt(),
                         match.captured(3).toInt());
    if (!match.hasMatch() || !released.isValid() || released > today)
        return std::nullopt;
    return released.daysTo(today);
}

QString versionOfPrivateFolder(const QString& path) {
    static const QRegularExpression folder(QStringLiteral("/yt-dlp-([0-9][0-9.]*)[^/]*/[^/]+$"));
    return folder.match(path).captured(1);
}

ToolVersion askedVersion(const QString& command, const ResolvedTool& tool, ShellRunner& shell) {
    constexpr double limitSeconds = 10;
    ToolVersion found{command, {}, {}, tool.path, tool.detail};
    if (command == ytDlp && tool.detail == ResolvedTool::readyPrivately)
        found.version = versionOfPrivateFolder(QFileInfo(tool.path).symLinkTarget());
    if (found.version.isEmpty()) {
        const QString option =
            command == ffmpeg ? QStringLiteral(" -version") : QStringLiteral(" --version");
        const CommandResult answer =
            shell.runShellSync(shellQuoted(tool.path) + option, limitSeconds);
        if (answer.status == 0)
            found.version = versionIn(command, answer.output);
    }
    if (command == ytDlp)
        found.days = ageInDays(found.version, QDate::currentDate());
    return found;
}

QString versionLine(const ToolVersion& tool) {
    QString line = tool.command + u' ' +
                   (tool.version.isEmpty() ? QStringLiteral("of unknown version") : tool.version);
    if (tool.days) {
        line += *tool.days == 1 ? QStringLiteral(", 1 day old")
                                : QStringLiteral(", %1 days old").arg(*tool.days);
    }
    return line + QStringLiteral(", ") + place(tool.detail) + advice(tool);
}

QStringList toolVersionLines(const ToolDiscovery& discovery, ShellRunner& shell) {
    QStringList lines;
    for (const QString& command : {ytDlp, ffmpeg, deno, spotdl}) {
        const auto tool = discovery.resolvedTool(command);
        lines.append(tool ? versionLine(askedVersion(command, *tool, shell))
                          : command + QStringLiteral(" not found"));
    }
    return lines;
}

}  // namespace reelcrate
