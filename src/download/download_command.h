#pragma once

#include "records/download_item.h"
#include "records/download_mode.h"

#include <QString>

#include <optional>

/// The one shell command line that downloads a row into a folder with yt-dlp. A pure function; any
/// thread; it never fails: without its tools the command itself does.
namespace reelcrate {

inline constexpr int concurrentFragmentDownloads = 8;
inline constexpr int videoConcurrentFragmentDownloads = 12;

/// Where the tools are, as far as they were found.
struct DownloadTools {
    std::optional<QString> ytDlp;   ///< absolute path
    std::optional<QString> ffmpeg;  ///< absolute path
    QString searchPath;             ///< colon-separated folders, put before the inherited ones
};

/// How sound is converted.
enum class Conversion {
    strict,   ///< fails at the first thing that cannot be read or written
    lenient,  ///< leaves out what cannot be read, and says nothing of what cannot be written
};

/// `folder` is an absolute path. `found` is the link of the song that a row stands for which has to
/// be searched for; without it the first hit of a search is downloaded. With each step of its
/// progress the command prints a line "RCR_PROGRESS:" with the percentage.
QString downloadCommand(const DownloadItem& item, const QString& folder, DownloadMode mode,
                        const DownloadTools& tools, Conversion conversion = Conversion::strict,
                        const QString& found = {});

}  // namespace reelcrate
