#pragma once

#include <QString>
#include <QStringList>

/// What an installer script prints, read line by line: a piece of output may end anywhere. A line
/// that is drawn over, as a progress bar is, is no line of the log, and neither is a blank one. One
/// thread; nothing fails.
namespace reelcrate {

class InstallerOutput {
public:
    /// The whole lines that are complete with this piece, each with its line break.
    QString add(const QString& piece);

    /// What is left when the script has ended.
    QString finish();

    /// How far the step of the last line is; empty when it has not said.
    const QString& progress() const { return m_progress; }

    /// The lines that are worth telling again at the end.
    const QStringList& news() const { return m_news; }

private:
    QString logged(QString line);

    QString m_incomplete;
    QString m_lastLine;
    QString m_progress;
    QStringList m_news;
};

}  // namespace reelcrate
