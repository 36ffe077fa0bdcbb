#include "resolve/media_probe_output.h"

#include "base/text.h"
#include "queue/links.h"
#include "resolve/media_values.h"
#include "tools/shell_quote.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>

namespace reelcrate {

namespace {

constexpr QLatin1String mediaInfoOptions{
    " --no-update --skip-download --no-warnings --no-playlist --print '%(title)s' --print "
    "'%(duration_string)s' --print '%(thumbnail)s' --print '%(webpage_url)s' -- "};
constexpr QLatin1String playlistOptions{
    " --no-update --flat-playlist --dump-single-json --no-warnings --yes-playlist -- "};

// What yt-dlp prints for a field that it does not have.
constexpr QLatin1String missingField{"NA"};

bool isWebAddress(const QString& line) {
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral(R"(https?://\S+)")),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    return form.match(line).hasMatch();
}

bool isDuration(const QString& line) {
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral("[0-9]+(?::[0-9]+){0,2}")));
    return line == missingField || form.match(line).hasMatch();
}

bool isThumbnail(const QString& line) {
    return line == missingField || isWebAddress(line);
}

// The index of the duration's line. A title may hold line breaks, printed as they are, so that the
// fields stand further down than on the lines that they were asked for; they are told by their
// form.
qsizetype durationLine(const QStringList& lines) {
    for (qsizetype i = 1; i + 2 < lines.size(); ++i) {
        if (isDuration(lines.at(i)) && isThumbnail(lines.at(i + 1)) &&
            isWebAddress(lines.at(i + 2)))
            return i;
    }
    return 1;
}

QString presentField(const QString& field) {
    return field == missingField ? QString() : field;
}

QString entryAddress(const QJsonObject& entry) {
    QString address = stringValue(entry.value(u"webpage_url"));
    if (address.isEmpty())
        address = stringValue(entry.value(u"url"));
    if (address.startsWith(u"http"))
        return address;
    const QString id = stringValue(entry.value(u"id"));
    const QString& identifier = id.isEmpty() ? address : id;
    return identifier.isEmpty() ? QString() : watchPagePrefix + identifier;
}

}  // namespace

QString mediaInfoCommand(const QString& tool, const QString& link) {
    return shellQuoted(tool) + mediaInfoOptions + shellQuoted(link);
}

std::optional<MediaInfo> mediaInfoFromOutput(const QString& output, const QString& link) {
    QStringList lines = trimmedLines(output);
    lines.removeAll(QString());
    if (lines.isEmpty())
        return std::nullopt;
    const qsizetype duration = durationLine(lines);
    const QString page = lines.value(duration + 2);
    return MediaInfo{.title = lines.first(duration).join(u' '),
                     .duration = presentField(lines.value(duration)),
                     .thumbnailURL = presentField(lines.value(duration + 1)),
                     .resolvedURL = isWebAddress(page) ? page : link};
}

QString playlistCommand(const QString& tool, const QString& link) {
    return shellQuoted(tool) + playlistOptions + shellQuoted(link);
}

QList<PlaylistEntry> playlistEntriesFromOutput(const QString& output) {
    const QJsonDocument document = QJsonDocument::fromJson(output.toUtf8());
    const QJsonArray listed = document.object().value(u"entries").toArray();
    const bool allAreObjects = std::all_of(
        listed.begin(), listed.end(), [](const QJsonValue& value) { return value.isObject(); });
    if (!allAreObjects)
        return {};

    QList<PlaylistEntry> entries;
    for (const QJsonValue value : listed) {
        const QJsonObject entry = value.toObject();
        const QString title = stringValue(entry.value(u"title"));
        const QString address = entryAddress(entry);
        if (title.isEmpty() || address.isEmpty())
            continue;
        entries.append(PlaylistEntry{.url = address,
                                     .source = SourceType::youtube,
                                     .title = title,
                                     .duration = durationText(entry),
                                     .thumbnailURL = thumbnailURL(entry)});
    }
    return entries;
}

}  // namespace reelcrate
