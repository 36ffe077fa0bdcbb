#pragma once

#include "tools/installer_sources.h"

#include <QString>
#include <QStringList>

/// The shell scripts that install the tools into the private tool folder, and replace those that
/// have become old. Pure functions; any thread. A script that cannot do its work says why and ends
/// with a status other than zero.
///
/// A tool gets its name only when it is complete and has told its version, by a rename: a killed
/// Setup leaves the former tool or the new one, and what runs meanwhile goes on with the former. A
/// line that begins with the character U+001E is worth telling again at the end.
namespace reelcrate {

/// Installs into the folder `bin` what is `wanted` of "yt-dlp", "ffmpeg", "ffprobe" and "deno" and
/// not there already. A yt-dlp that is there is replaced when there is a newer one.
QString coreInstallScript(const QString& bin, const InstallerSources& sources,
                          const QStringList& wanted);

/// Installs spotdl into a Python environment beside the folder `bin`, and a link to it into `bin`;
/// or replaces it by a newer one, in an environment of its own.
QString spotifyInstallScript(const QString& bin, const InstallerSources& sources);

}  // namespace reelcrate
