#pragma once

#include <QByteArray>
#include <QString>

/// The text of a list that somebody sent: message, table, file. Any thread. What cannot be such a
/// text has a failure, which continues a sentence that begins with the list's name.
namespace reelcrate {

/// Bytes. Far more than any event's list has.
inline constexpr qint64 largestList = 1 << 20;

struct ListText {
    QString text;
    QString remark;   ///< how it was read, where that may be wrong; for the log
    QString failure;  ///< such as "is empty"; else empty
};

/// By its byte-order mark UTF-8, UTF-16 or UTF-32; without one UTF-8, or else Windows-1252, which
/// older spreadsheets write in the west of Europe.
ListText textOfList(const QByteArray& bytes);

/// What was copied.
ListText textOfList(QString text);

/// Reads the file, which has to be a regular one.
ListText textOfListFile(const QString& path);

}  // namespace reelcrate
