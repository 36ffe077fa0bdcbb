#include "tools/installer_output.h"

#include <QRegularExpression>

#include <utility>

namespace reelcrate {

namespace {

constexpr QChar newsMark(0x1e);

QString lastPercentage(const QString& bar) {
    static const QRegularExpression percentage(QStringLiteral("(\\d+)(?:\\.\\d+)?%\\s*$"));
    return percentage.match(bar).captured(1);
}

}  // namespace

QString InstallerOutput::add(const QString& piece) {
    m_incomplete += piece;
    QString log;
    for (qsizetype end = m_incomplete.indexOf(u'\n'); end >= 0; end = m_incomplete.indexOf(u'\n')) {
        log += logged(m_incomplete.left(end));
        m_incomplete.remove(0, end + 1);
    }
    const QString percentage = lastPercentage(m_incomplete);
    m_progress = m_incomplete.startsWith(u'\r') && !percentage.isEmpty()
                     ? m_lastLine + u' ' + percentage + u'%'
                     : QString();
    return log;
}

QString InstallerOutput::finish() {
    m_progress.clear();
    const QString rest = std::exchange(m_incomplete, {});
    return rest.isEmpty() ? QString() : logged(rest);
}

QString InstallerOutput::logged(QString line) {
    if (line.endsWith(u'\r'))
        line.chop(1);
    if (line.contains(u'\r') || line.isEmpty())
        return {};  // a bar that was drawn to its end, or the blank line after one
    if (line.startsWith(newsMark)) {
        line.remove(0, 1);
        m_news.append(line);
    }
    m_lastLine = line;
    return line + u'\n';
}

}  // namespace reelcrate
