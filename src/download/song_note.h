#pragma once

#include <QString>

/// What a complete row has to say beside that it is complete: the song may not be the one that was
/// asked for. Pure functions; any thread; none fails.
namespace reelcrate {

struct SongOrigin {
    bool isUncertain = false;      ///< chosen by a search that found nothing better
    double downloadedSeconds = 0;  ///< before its silent edges were cut; 0: not known
    QString listedLength;          ///< such as 3:45; empty where nobody has told it
    bool breaksOff = false;        ///< what the site has is not there to its end
};

/// Such as "1:10 longer than listed"; empty where nothing is remarkable. Up to five seconds or
/// three hundredths of the listed length, whichever is more, are not.
QString songNote(const SongOrigin& origin);

}  // namespace reelcrate
