#pragma once

#include <QString>

namespace reelcrate {

/// Where Setup's tools come from, and what differs between systems in getting them. Plain values.
struct InstallerSources {
    QString ytDlpLatest;  ///< leads to the newest release, whose tag ends the address; or holds it
    QString ytDlp;        ///< a zip archive with the unpackaged build
    QString ytDlpSums;    ///< SHA-256 sums of all files of the same release
    QString ffmpeg;       ///< a zip archive with one executable
    QString ffprobe;      ///< a zip archive with one executable
    QString deno;         ///< a zip archive with one executable
    QString denoSum;      ///< its SHA-256 sum
    QString protocols;    ///< as curl's --proto takes them; redirects are bound to them, too
    int smallFileSeconds = 20;     ///< for what is asked for beside the tools
    QString executablePermission;  ///< as find's -perm takes it: any execute bit
    QString sha256;                ///< the command that prints its input's sum first
    QString mktemp;
    QString sed;

    /// Of the system and processor that the program was built for.
    static InstallerSources ofThisPlatform();

    /// The same files, under their own names, from one folder of a web server; those of ffmpeg are
    /// ffmpeg.zip and ffprobe.zip, and the tag of the newest yt-dlp is in the file "latest".
    InstallerSources fromMirror(const QString& address) const;
};

}  // namespace reelcrate
