#pragma once

#include <QChar>
#include <QList>
#include <QString>
#include <QStringList>

/// A reader of tables as spreadsheets write them: lines of cells with a separator between, where a
/// cell may stand in quotes, with doubled quotes, separators and line breaks within (RFC 4180, and
/// the same with other separators). Pure; any thread. It never fails: quotes that do not enclose a
/// whole cell are letters like others.
namespace reelcrate {

struct TableRecord {
    int line = 1;       ///< in which it begins, from 1
    QStringList cells;  ///< as written; one empty cell for an empty line
};

QList<TableRecord> tableRecords(const QString& text, QChar separator);

}  // namespace reelcrate
