#pragma once

#include "library/event_check.h"

#include <QJsonObject>
#include <QList>
#include <QString>

/// What was found in an event folder, as text for people and for programs. Pure functions; any
/// thread.
namespace reelcrate {

/// Why the file needs attention; empty when it does not.
QString findingText(const CheckedFile& file);

/// A line for each file, those that need attention last, and the sum below them.
QString checkTable(const QList<CheckedFile>& files);

QJsonObject checkAsJson(const QString& folder, const QList<CheckedFile>& files);

/// A bar with the number of songs, in at most `columns` columns.
QString checkProgressLine(qsizetype done, qsizetype all, int columns);

}  // namespace reelcrate
