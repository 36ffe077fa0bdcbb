#pragma once

#include "records/source_type.h"

#include <QLatin1String>
#include <QString>
#include <QStringList>

/// What can be told from the text of a link alone: where it leads, whether it stands for several
/// songs, which media it names. Pure functions; any thread. A text that is no address is no
/// failure: it is a plain link, no playlist, and its own identifier.
namespace reelcrate {

/// The address of a video's page on the video site, up to where the video's identifier follows.
inline constexpr QLatin1String watchPagePrefix{"https://www.youtube.com/watch?v="};

/// The web links in a text, in order of occurrence, duplicates kept. A link ends before white
/// space of any kind; punctuation that closes the sentence around it is not part of it.
QStringList extractLinks(const QString& text);

/// By the first of the services' domains that stands anywhere in the link, in any letter case.
SourceType classifySource(const QString& link);

/// Whether the link names a playlist of the video site; also true of a video within a playlist.
bool isYouTubePlaylistLink(const QString& link);

/// Whether a link of this source stands for several media items.
bool playlistLike(const QString& link, SourceType source);

/// The identifier of the video that the link names, or the last part of its path, or else the
/// link unchanged.
QString videoID(const QString& link);

}  // namespace reelcrate
