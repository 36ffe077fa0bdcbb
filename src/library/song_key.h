#pragma once

#include <QString>

/// By what two rows are known for the same song, whatever their links look like. Pure functions;
/// any thread; none fails.
namespace reelcrate {

/// The video's identifier, the track's, or else a hash of the link without its fragment, its host
/// in lower case, and of which of the media behind it is meant (0: of all). Fit for a file's name.
QString songKey(const QString& link, int playlistItem);

/// Whether the last part of the link, or its "v", may be one video's identifier: on the video site
/// itself there are links to much else.
bool mayNameVideo(const QString& link);

}  // namespace reelcrate
