#include "resolve/media_probe_output.h"

#include "base/duration_text.h"
#include "queue/links.h"
#include "resolve/media_values.h"
#include "tools/shell_quote.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace reelcrate {

namespace {

// One line of JSON for each of the media: a title may hold line breaks, and a configuration file of
// the user's may print lines of its own. What else that may ask for, so that there is less to read
// or something is run, is undone.
constexpr QLatin1String mark{"RCR_MEDIA:"};
constexpr QLatin1String mediaInfoOptions{
    " --no-update --skip-download --no-warnings --no-playlist --no-download-archive "
    "--no-exec --print "
    "'RCR_MEDIA:%(.{title,duration_string,duration,thumbnail,webpage_url,playlist_index,"
    "n_entries,playlist_count})j'"};
constexpr QLatin1String playlistOptions{
    " --no-update --flat-playlist --dump-single-json --no-warnings --yes-playlist "
    "--no-download-archive --no-exec"};

bool isWebAddress(const QString& line) {
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral(R"(https?://\S+)")),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    return form.match(line).hasMatch();
}

// An address of the site's video is made from its identifier; elsewhere an entry without an address
// is one of the media of the listed page.
PlaylistEntry entryFrom(const QJsonObject& listed, int number, const QString& link,
                        SourceType source) {
    PlaylistEntry entry{.url = stringValue(listed.value(u"webpage_url")),
                        .source = source,
                        .title = stringValue(listed.value(u"title")),
                        .duration = durationText(listed),
                        .thumbnailURL = thumbnailURL(listed)};
    if (entry.url.isEmpty())
        entry.url = stringValue(listed.value(u"url"));
    if (!entry.url.startsWith(u"http")) {
        const QString id = stringValue(listed.value(u"id"));
        const QString identifier = id.isEmpty() ? entry.url : id;
        if (source == SourceType::youtube) {
            entry.url = identifier.isEmpty() ? QString() : watchPagePrefix + identifier;
        } else {
            entry.url = link;
            entry.playlistItem = number;
        }
    }
    // A list of lists: each has still to be listed.
    entry.isRead = !entry.title.isEmpty() && !isYouTubePlaylistLink(entry.url);
    return entry;
}

MediaInfo mediaFrom(const QJsonObject& printed) {
    const QString page = stringValue(printed.value(u"webpage_url"));
    return {.title = stringValue(printed.value(u"title")).simplified(),
            .duration = durationText(printed),
            .thumbnailURL = stringValue(printed.value(u"thumbnail")),
            .resolvedURL = isWebAddress(page) ? page : QString(),
            .playlistIndex = printed.value(u"playlist_index").toInt()};
}

/// A configuration file of the user's may print lines of its own around the one of the listing.
QJsonObject listingIn(const QString& output) {
    for (const QString& text : QStringList(output) + output.split(u'\n')) {
        QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
        if (object.value(u"entries").isArray())
            return object;
    }
    return {};
}

QString toolWords(const ProbeTool& tool) {
    return QStringLiteral("PATH=") + shellQuoted(tool.searchPath) + QStringLiteral(":$PATH ") +
           shellQuoted(tool.path);
}

}  // namespace

QString mediaInfoCommand(const ProbeTool& tool, const QString& link, int playlistItem) {
    const QString item =
        playlistItem > 0 ? QStringLiteral(" --playlist-items %1").arg(playlistItem) : QString();
    return toolWords(tool) + mediaInfoOptions + item + QStringLiteral(" -- ") + shellQuoted(link);
}

ProbedMedia mediaFromOutput(const QString& output) {
    ProbedMedia probed;
    for (const QString& line : output.split(u'\n')) {
        if (!line.startsWith(mark))
            continue;
        const QJsonDocument document =
            QJsonDocument::fromJson(QStringView(line).sliced(mark.size()).toUtf8());
        if (!document.isObject())
            continue;
        const QJsonObject printed = document.object();
        probed.media.append(mediaFrom(printed));
        probed.counted = std::max<qsizetype>(probed.counted, printed.value(u"n_entries").toInt());
        probed.onSite =
            std::max<qsizetype>(probed.onSite, printed.value(u"playlist_count").toInt());
    }
    probed.counted = std::max(probed.counted, probed.media.size());
    probed.onSite = std::max(probed.onSite, probed.counted);
    return probed;
}

QString playlistCommand(const ProbeTool& tool, const QString& link) {
    return toolWords(tool) + playlistOptions + QStringLiteral(" -- ") + shellQuoted(link);
}

Listing listingFromOutput(const QString& output, const QString& link, SourceType source) {
    const QJsonObject document = listingIn(output);
    const QJsonArray listed = document.value(u"entries").toArray();
    Listing listing;
    int number = 0;
    for (const QJsonValue value : listed) {
        ++number;
        if (!value.isObject())
            continue;
        const PlaylistEntry entry = entryFrom(value.toObject(), number, link, source);
        if (!entry.url.isEmpty())
            listing.entries.append(entry);
    }
    const auto counted =
        std::max<qsizetype>(listed.size(), document.value(u"playlist_count").toInt());
    if (!listing.entries.isEmpty() && listing.entries.size() < counted)
        listing.cut = CutListing{.listed = listing.entries.size(), .counted = counted};
    return listing;
}

QList<SearchHit> hitsFromOutput(const QString& output) {
    QList<SearchHit> hits;
    for (const QJsonValue value : listingIn(output).value(u"entries").toArray()) {
        const QJsonObject listed = value.toObject();
        const PlaylistEntry entry = entryFrom(listed, 0, {}, SourceType::youtube);
        if (!isWebAddress(entry.url) || !entry.isRead)
            continue;
        const QString channel = stringValue(listed.value(u"channel"));
        hits.append(
            {.link = entry.url,
             .title = entry.title,
             .channel = channel.isEmpty() ? stringValue(listed.value(u"uploader")) : channel,
             .seconds = secondsOfDuration(entry.duration)});
    }
    return hits;
}

}  // namespace reelcrate
