#pragma once

#include <QLatin1String>

/// What rows say of themselves: every text that a row's detail takes from the program and not from
/// a tool, but for those of failures (failure_cause.h, link_reading.h).
namespace reelcrate::row_text {

// Before a run.
inline constexpr QLatin1String loadingInfo{"Loading info..."};
inline constexpr QLatin1String readingPlaylist{"Reading playlist songs..."};
inline constexpr QLatin1String readingAgain{"Reading link again..."};
inline constexpr QLatin1String readyToDownload{"Ready to download"};
inline constexpr QLatin1String songsAreInQueue{"Those songs are already in the queue."};
inline constexpr QLatin1String waitingForSlot{"Waiting for open download slot"};

// A download's stages.
inline constexpr QLatin1String preparingSong{"Preparing Song for Download"};
inline constexpr QLatin1String preparingVideo{"Preparing Video for Download"};
inline constexpr QLatin1String downloadingSong{"Downloading Song"};
inline constexpr QLatin1String downloadingVideo{"Downloading Video"};
inline constexpr QLatin1String examiningSong{"Examining Song to Trim"};
inline constexpr QLatin1String trimmingSong{"Trimming Song"};
inline constexpr QLatin1String savingSong{"Saving MP3"};
inline constexpr QLatin1String savingVideo{"Saving MP4"};

// A complete row. One whose file was saved as it is says where to.
inline constexpr QLatin1String alreadyDownloaded{"Already Downloaded"};
inline constexpr QLatin1String trimmed{"Saved; trimmed silent start/end"};
inline constexpr QLatin1String trimSkipped{"Saved; silence trim skipped"};

}  // namespace reelcrate::row_text
