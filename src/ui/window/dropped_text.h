#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

/// What is taken of addresses, files and texts that are dropped on the window: the web addresses
/// where there are any, then the links in text files, otherwise the text. Text files and tables
/// without links are lists of songs.
namespace reelcrate {

struct DroppedText {
    std::optional<QString> links;  ///< a text with links; none where there are lists alone
    QStringList lists;             ///< the paths of files that name songs
    qsizetype linesLeftOut = 0;    ///< which name no link, beside others that do
};

/// Whether there are links in it, or files that may hold some. Pure.
bool takesDrop(const QList<QUrl>& urls, const QString& text);

/// Reads the beginnings of the files; one that cannot be read counts as empty.
DroppedText droppedText(const QList<QUrl>& urls, const QString& text);

/// What to say of at least one line that was left out. Pure.
QString leftOutRemark(qsizetype lines);

}  // namespace reelcrate
