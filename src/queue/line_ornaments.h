#pragma once

#include <QRegularExpression>
#include <QString>

#include <optional>

/// What people put around the names in a line of a message, and how it is taken off. Pure
/// functions; any thread; none fails.
namespace reelcrate {

/// For texts in all scripts, and whatever the case.
QRegularExpression expression(const char16_t* pattern);

/// The line without control characters and turns of the writing direction, and with single blanks.
QString cleanLine(const QString& line);

/// Whether a line says anything: it has a letter or a digit.
bool hasWords(const QString& line);

/// Pictures at both ends go. A text of pictures alone stays: it may be a name.
QString withoutPictures(const QString& text);

/// What stands before a line's first name goes, one after the other: who wrote it when, a bullet, a
/// box to tick, a number, the place in a track list.
QString withoutOpening(QString line);

/// Separators of a table's empty cells go, and what a sentence ends with.
QString withoutEnds(const QString& line);

struct TimedText {
    QString text;  ///< without the length
    std::optional<double> seconds;
};

/// Of "Artist - Title (3:45)", "… 3:45", "… - 3:45 min", "… 3'45\"". Of what else is in brackets,
/// such as "(start at 0:30)", no time is the length.
TimedText withoutLength(const QString& line);

/// Where the quotation that begins the text ends; -1 where none does.
qsizetype endOfQuotation(const QString& text);

/// As a whole.
bool isQuoted(const QString& text);

/// The whole text's quotation marks go, and what encloses it likewise.
QString withoutQuotes(const QString& text);

}  // namespace reelcrate
