#pragma once

#include "records/source_type.h"

#include <QString>

/// Why a download failed, as far as that could be told. A plain value; any thread.
namespace reelcrate {

enum class FailureCause {
    toolTooOld,        ///< the site has changed since the downloader was released
    siteLimit,         ///< the site lets no more be downloaded for a while
    loginNeeded,       ///< for members, for adults, or private
    notAvailable,      ///< removed, or not in this country
    noSuchPage,        ///< nothing at the address, or no media there
    noConnection,      ///< the site cannot be reached, or falls silent
    cannotWrite,       ///< no room on the drive, or no right to write
    converterMissing,  ///< the downloader found no ffmpeg
    noMatch,           ///< the search for a song found nothing
    other,
};

/// The word for programs, for example "site-limit".
QString word(FailureCause cause);

/// What a row of this source says: what to do, in few words.
QString failureText(FailureCause cause, SourceType source);

}  // namespace reelcrate
