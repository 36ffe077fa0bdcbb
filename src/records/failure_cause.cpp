#include "records/failure_cause.h"

#include <array>

namespace reelcrate {

namespace {

struct Words {
    const char* word;
    const char* text;
};

// In the order of the enumeration. The row's window holds about sixty letters.
constexpr std::array causes{
    Words{"tool-too-old", "yt-dlp is too old for this site. Run Setup."},
    Words{"site-limit", "The site limits downloads. Try again in an hour."},
    Words{"login", "This link may require a browser login or may not be public."},
    Words{"not-available", "Removed, or not available in your country."},
    Words{"no-such-page", "No song at this address. Check the link."},
    Words{"no-connection", "No connection to the site. Check the network."},
    Words{"cannot-write", "Cannot write: check the folder and its free room."},
    Words{"no-converter", "ffmpeg is missing. Run Setup to install it."},
    Words{"no-match", "Could not find a matching YouTube result for this Spotify reference."},
    Words{"other", "Download failed. Check the link or try again."},
};

const Words& wordsOf(FailureCause cause) {
    return causes.at(static_cast<std::size_t>(cause));
}

}  // namespace

QString word(FailureCause cause) {
    return QString::fromLatin1(wordsOf(cause).word);
}

QString failureText(FailureCause cause, SourceType source) {
    if (cause == FailureCause::noMatch && source == SourceType::song)
        return QStringLiteral("Could not find a matching YouTube result for this song.");
    return QString::fromLatin1(wordsOf(cause).text);
}

}  // namespace reelcrate
