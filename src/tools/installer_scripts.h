#pragma once

#include <QString>

/// The shell scripts that install missing tools into the private tool folder. Pure functions; any
/// thread. A script that cannot do its work says why and ends with a status other than zero.
namespace reelcrate {

/// Where the tools come from, and what differs between systems in getting them.
struct InstallerSources {
    QString ytDlp;                 ///< the executable itself
    QString ytDlpSums;             ///< SHA-256 sums of all builds of the same release
    QString ffmpeg;                ///< a zip archive with one executable
    QString ffprobe;               ///< a zip archive with one executable
    QString executablePermission;  ///< as find's -perm takes it: any execute bit
    QString sha256;                ///< the command that prints a file's sum first
    QString mktemp;
    QString sed;

    /// Of the system and processor that the program was built for.
    static InstallerSources ofThisPlatform();

    /// The same files from one folder of a web server: yt-dlp, SHA2-256SUMS, ffmpeg.zip,
    /// ffprobe.zip.
    InstallerSources fromMirror(const QString& address) const;
};

/// Installs yt-dlp, ffmpeg and ffprobe into the folder `bin`; what is there already stays. A tool
/// gets its name only when it is complete and has told its version, so that an interrupted or
/// broken download leaves nothing that could be taken for a tool.
QString coreInstallScript(const QString& bin, const InstallerSources& sources);

/// Installs spotdl into a Python environment in the folder `tools`, and a link to it into `bin`.
QString spotifyInstallScript(const QString& tools, const QString& bin);

}  // namespace reelcrate
