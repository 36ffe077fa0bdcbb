#pragma once

#include <QList>
#include <QString>

#include <optional>

/// Which of a search's hits is the song that is wanted. Pure functions; any thread; none fails.
namespace reelcrate {

/// One hit, as the site lists it.
struct SearchHit {
    QString link;
    QString title;
    QString channel;
    std::optional<double> seconds = std::nullopt;

    friend bool operator==(const SearchHit&, const SearchHit&) = default;
};

struct WantedSong {
    QString title;                                 ///< "Artist - Title", or the title alone
    std::optional<double> seconds = std::nullopt;  ///< absent where nobody has told its length
};

struct SearchMatch {
    qsizetype hit = 0;
    bool isCertain = true;  ///< false: the best of what there is may well be another song
};

/// The best hit; absent where none is as long as the song, 30 seconds more or less. Length counts
/// most, then the words of the title, then whose channel it is. A word that makes another version
/// of a song, such as "live", counts against a hit that has it where the wanted title does not, and
/// against one that does not where the wanted title does.
std::optional<SearchMatch> bestHit(const WantedSong& wanted, const QList<SearchHit>& hits);

}  // namespace reelcrate
