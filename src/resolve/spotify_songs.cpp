#include "resolve/spotify_songs.h"

#include "resolve/media_values.h"
#include "tools/shell_quote.h"

#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <optional>

namespace reelcrate {

namespace {

using namespace Qt::StringLiterals;

struct FailureRule {
    std::array<QLatin1String, 4> fragments;  // any of them, lower-case; unused ones are null
    QLatin1String message;
};

constexpr std::array failureRules{
    FailureRule{{"rate/request limit"_L1, "retry will occur after"_L1, "429"_L1},
                "Spotify is rate-limiting playlist lookup right now. Try again later "
                "or connect Spotify with authenticated library access."_L1},
    FailureRule{{"ownerv2"_L1, "notfound"_L1, "not found"_L1, "playlistv2"_L1},
                "This looks like a Spotify library/private playlist. It needs "
                "Spotify sign-in access before the songs can be listed."_L1},
    FailureRule{{"login"_L1, "private"_L1, "unauthorized"_L1, "forbidden"_L1},
                "This Spotify playlist needs signed-in library access before the "
                "songs can be listed."_L1},
};

QueueResolution failed(const QString& message) {
    return {.entries = {}, .failure = message};
}

// The JSON array between these two places, if it is one and holds nothing but objects.
std::optional<QJsonArray> songsBetween(const QString& output, qsizetype opening,
                                       qsizetype closing) {
    if (opening < 0 || closing < opening)
        return std::nullopt;
    const QStringView text = QStringView(output).sliced(opening, closing - opening + 1);
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    const QJsonArray songs = document.array();
    const bool allAreObjects =
        document.isArray() && std::all_of(songs.begin(), songs.end(),
                                          [](const QJsonValue& value) { return value.isObject(); });
    return allAreObjects ? std::optional(songs) : std::nullopt;
}

// spotdl (4.4.3) reports a song that it could not read on a line before the list, and still exits
// with status 0. The song's name may hold a bracket; the list itself opens on a line of its own.
std::optional<QJsonArray> listedSongs(const QString& output) {
    static const QRegularExpression openingLine(QStringLiteral("^\\[\\s*$"),
                                                QRegularExpression::MultilineOption);
    const qsizetype closing = output.lastIndexOf(u']');
    if (auto songs = songsBetween(output, output.indexOf(u'['), closing))
        return songs;
    return songsBetween(output, output.indexOf(openingLine), closing);
}

// The lines that name songs which could not be read.
QString songsLeftOut(const QString& output) {
    QString lines;
    for (const QString& line : output.split(u'\n')) {
        if (line.contains(u" generated an exception: "))
            lines += line.trimmed() + u'\n';
    }
    return lines;
}

QString searchWords(const DownloadItem& item, DownloadMode mode) {
    const QString title = item.title.trimmed();
    return (title.isEmpty() ? item.url : title) +
           byMode(mode, " official audio"_L1, " official video"_L1);
}

}  // namespace

QString spotifyListCommand(const QString& searchPath, const QString& tool, const QString& link) {
    return QStringLiteral("PATH=") + shellQuoted(searchPath) + QStringLiteral(":$PATH ") +
           shellQuoted(tool) + QStringLiteral(" save ") + shellQuoted(link) +
           QStringLiteral(" --save-file - --threads 4 --log-level ERROR");
}

QueueResolution resolutionFromSpotifyOutput(int status, const QString& output,
                                            const QString& errors) {
    const QString all = output + errors;
    QueueResolution resolution;
    if (status == 0) {
        resolution.entries =
            playlistEntriesFromSpotifyJSON(listedSongs(output).value_or(QJsonArray()));
    }
    if (resolution.entries.isEmpty())
        resolution = failed(spotifyFailureMessage(all));
    resolution.remarks = errors + songsLeftOut(output);
    return resolution;
}

QueueResolution spotifyNeedsSetup() {
    return failed(
        QStringLiteral("Spotify playlist expansion needs Setup to install the Spotify helper."));
}

QList<PlaylistEntry> playlistEntriesFromSpotifyJSON(const QJsonArray& songs) {
    QList<PlaylistEntry> entries;
    for (const QJsonValue value : songs) {
        const QJsonObject song = value.toObject();
        const QString name = stringValue(song.value(u"name"));
        const QString url = stringValue(song.value(u"url"));
        if (name.isEmpty() || url.isEmpty())
            continue;
        const QString artist = spotifyArtistName(song);
        entries.append(
            PlaylistEntry{.url = url,
                          .source = SourceType::spotify,
                          .title = artist.isEmpty() ? name : artist + QStringLiteral(" - ") + name,
                          .duration = durationText(song),
                          .thumbnailURL = stringValue(song.value(u"cover_url"))});
    }
    return entries;
}

QString spotifyArtistName(const QJsonObject& song) {
    QString artist = stringValue(song.value(u"artist"));
    if (!artist.isEmpty())
        return artist;
    const QJsonArray artists = song.value(u"artists").toArray();
    const bool allAreTexts = std::all_of(artists.begin(), artists.end(),
                                         [](const QJsonValue& value) { return value.isString(); });
    QStringList names;
    for (const QJsonValue value : artists)
        names.append(allAreTexts ? value.toString() : stringValue(value));
    if (!allAreTexts)
        names.removeAll(QString());
    return names.join(QStringLiteral(", "));
}

QString spotifyFailureMessage(const QString& output) {
    const QString lowered = output.toLower();
    for (const FailureRule& rule : failureRules) {
        const bool applies =
            std::any_of(rule.fragments.begin(), rule.fragments.end(), [&](QLatin1String fragment) {
                return !fragment.isEmpty() && lowered.contains(fragment);
            });
        if (applies)
            return rule.message;
    }
    return QStringLiteral(
        "Could not read Spotify songs yet. Private/library playlists need Spotify sign-in access; "
        "public playlists should expand automatically.");
}

QString spotifySearchQuery(const DownloadItem& item, DownloadMode mode) {
    return QStringLiteral("ytsearch1:") + searchWords(item, mode);
}

QString spotifyHitsQuery(const DownloadItem& item, DownloadMode mode) {
    return QStringLiteral("ytsearch5:") + searchWords(item, mode);
}

}  // namespace reelcrate
