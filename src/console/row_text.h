#pragma once

#include "records/download_item.h"

#include <QJsonArray>
#include <QList>
#include <QString>

/// Rows of the queue as text for people and for programs. Pure functions; any thread.
namespace reelcrate {

/// Text from outside made harmless for a terminal: control characters, which could be commands to
/// it, and those that turn the writing direction become blanks.
QString printable(QString text);

/// The beginning of a printable text that fits into `columns` of a terminal, where a character
/// takes none, one or two.
QString fitted(const QString& text, int columns);

/// The row's title, or its link while it has none.
QString headline(const DownloadItem& row);

/// State, title and detail on one line.
QString statusLine(const DownloadItem& row);

/// A bar, the percentage, the stage and the title in at most `columns` columns.
QString progressLine(const DownloadItem& row, int columns);

/// One object per row with its fields under their names.
QJsonArray queueAsJson(const QList<DownloadItem>& rows);

}  // namespace reelcrate
