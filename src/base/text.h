#pragma once

#include <QString>
#include <QStringList>

/// Text as a reader counts and breaks it, where Qt counts UTF-16 units. Pure functions; any thread.
namespace reelcrate {

/// The number of characters that a reader sees (grapheme clusters).
qsizetype characterCount(const QString& text);

/// Whether the text has at least `count` such characters; cheaper than counting them all.
bool hasAtLeastCharacters(const QString& text, qsizetype count);

/// The first `count` such characters, or the whole text when it is shorter.
QString firstCharacters(const QString& text, qsizetype count);

/// The longest beginning that takes at most `bytes` bytes of UTF-8 and ends at a character's end.
QString firstBytes(const QString& text, qsizetype bytes);

/// The parts between line breaks of every kind (line feed, vertical tab, form feed, carriage
/// return, next line, line and paragraph separator), each trimmed; empty parts stay.
QStringList trimmedLines(const QString& text);

/// The "s" that a count other than one puts behind its noun.
QString pluralSuffix(qsizetype count);

/// Each of the ten characters / \ : ? % * | " < > replaced by a hyphen: unwelcome in file names.
/// And the NUL, which no name can hold.
QString withHyphensForUnsafeCharacters(QString text);

}  // namespace reelcrate
