#include "fuzz.h"
#include "library/file_names.h"
#include "resolve/spotify_songs.h"

#include <QJsonDocument>

#include <algorithm>

using namespace reelcrate;
using namespace reelcrate::fuzz;

namespace {

void checkEntry(const PlaylistEntry& entry) {
    require(!entry.title.isEmpty() && !entry.url.isEmpty(), "a song has a title and an address");
    require(entry.source == SourceType::spotify, "a song is Spotify's");
    DownloadItem row;
    row.title = entry.title;
    row.url = entry.url;
    for (const DownloadMode mode : allDownloadModes)
        require(spotifySearchQuery(row, mode).startsWith(u"ytsearch1:"), "a query is a search");
    require(!spotifyFileStem(entry.title).contains(u'/'), "a song's file is no path");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    const int status = input.ConsumeBool() ? 1 : 0;
    const QString output = decodedText(input);

    const QueueResolution resolution = resolutionFromSpotifyOutput(status, output);
    require(resolution.entries.isEmpty() == resolution.failure.has_value(), "songs, or a reason");
    require(!resolution.failure || !resolution.failure->isEmpty(), "a reason is a text");
    require(status == 0 || resolution.failure, "a failure lists no songs");
    for (const PlaylistEntry& entry : resolution.entries)
        checkEntry(entry);

    const QJsonDocument bare = QJsonDocument::fromJson(output.toUtf8());
    if (status == 0 && bare.isArray()) {
        const QJsonArray songs = bare.array();
        const bool isList = std::all_of(songs.begin(), songs.end(),
                                        [](const QJsonValue& song) { return song.isObject(); });
        require(resolution.entries ==
                    (isList ? playlistEntriesFromSpotifyJSON(songs) : QList<PlaylistEntry>()),
                "a list alone is read whole");
    }

    const QString log = QStringLiteral("Processing query\n");
    require(resolutionFromSpotifyOutput(status, log + output + u'\n' + log) == resolution,
            "lines around the list change nothing");
    return 0;
}
