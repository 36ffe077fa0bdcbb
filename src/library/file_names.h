#pragma once

#include <QString>

/// The names of the event folder and of the files in it, made from texts that anyone may have
/// written. Pure functions; any thread; none fails.
///
/// yt-dlp replaces $NAME and ${NAME} in its output path by the environment's variables and has no
/// way to write them literally: a "$" that it would read so is kept out of the path.
namespace reelcrate {

/// The beginning of a file name made from a title: at most 140 characters on one line, never empty.
QString safeOutputStem(const QString& title);

/// `safeOutputStem` as the download command needs it: without variables, and at most 180 bytes, so
/// that the identifier and the extension fit a name too.
QString spotifyFileStem(const QString& title);

/// The file name without the dots at its beginning, which would hide it.
QString visibleFileName(const QString& fileName);

/// The file name with a number behind the title, for the second song of that name and further ones:
/// "Track (2) [id].mp3". A title that leaves no room for it is cut.
QString numberedFileName(const QString& fileName, int number);

/// The event's name without what is unwelcome in a folder's name; `defaultName` (not limited in
/// any way) stands in for a blank one.
QString sanitizedFolderName(const QString& eventName, const QString& defaultName);

/// `sanitizedFolderName`, made safe as the last component of the output path: it neither leads
/// elsewhere nor holds a variable.
QString eventFolderName(const QString& eventName, const QString& defaultName);

/// The event folder's path inside the output folder.
QString eventFolderPath(const QString& outputFolder, const QString& eventName,
                        const QString& defaultName);

/// Whether yt-dlp would take a part of the path for a variable.
bool holdsShellVariable(const QString& path);

}  // namespace reelcrate
