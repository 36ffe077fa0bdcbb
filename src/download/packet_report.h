#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// What ffmpeg says of a file that was fetched, before the downloader converts it or gives it tags:
/// with those it also gets a new header, and a half song looks whole. The report on NAME.EXTENSION
/// lies beside it as "NAME.EXTENSION.packets".
namespace reelcrate {

/// The downloader's post-processor that writes the report, as an option of its command line. It
/// never fails a download. Pure.
QString packetReportOption();

/// The names, without their extensions, of the files in a folder that were reported on. Any thread;
/// so below.
QStringList reportedNames(const QString& folder);

struct BrokenOff {
    QString reason;                     ///< which file it is, and where it ends; for the log
    std::optional<double> toldSeconds;  ///< how long it would be, where it says that

    friend bool operator==(const BrokenOff&, const BrokenOff&) = default;
};

/// The first of a folder's files that is not there to its end, as far as its report tells.
std::optional<BrokenOff> firstBrokenOff(const QString& folder);

}  // namespace reelcrate
