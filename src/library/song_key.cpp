#include "library/song_key.h"

#include "queue/links.h"

#include <QCryptographicHash>
#include <QRegularExpression>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>
#include <array>
#include <optional>

namespace reelcrate {

namespace {

constexpr std::array videoHosts{u"youtube.com", u"youtu.be", u"youtube-nocookie.com"};

/// Whether the host is the domain itself or one below it. That a link mentions a domain somewhere
/// says nothing of whose identifiers it holds.
bool isOfDomain(const QString& host, QStringView domain) {
    return host == domain ||
           (host.endsWith(domain) && host.at(host.size() - domain.size() - 1) == u'.');
}

bool isOfVideoSite(const QUrl& url) {
    const QString host = url.host();
    return std::any_of(videoHosts.begin(), videoHosts.end(),
                       [&](auto domain) { return isOfDomain(host, domain); });
}

std::optional<QString> trackIdentifier(const QUrl& url) {
    static const QRegularExpression form(QStringLiteral("/track/([A-Za-z0-9]{8,64})/?$"));
    if (!isOfDomain(url.host(), u"spotify.com"))
        return std::nullopt;
    const QRegularExpressionMatch match = form.match(url.path());
    return match.hasMatch() ? std::optional(match.captured(1)) : std::nullopt;
}

QString hashOf(const QString& link, int playlistItem) {
    const QString text = link + u'\n' + QString::number(playlistItem);
    return QString::fromLatin1(
        QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1).toHex());
}

/// QUrl lower-cases scheme and host; what is no address stays as it is.
QString withoutFragment(const QString& link, const QUrl& url) {
    if (!url.isValid() || url.host().isEmpty())
        return link.section(u'#', 0, 0);
    return QString::fromLatin1(url.adjusted(QUrl::RemoveFragment).toEncoded());
}

/// In the forms that name one video: what else the last part of a path may be, such as "videos", is
/// no identifier.
bool namesVideo(const QUrl& url) {
    static const QRegularExpression path(QStringLiteral("^/(shorts|embed|live|v)/[^/]+/?$"));
    return isOfDomain(url.host(), u"youtu.be") || path.match(url.path()).hasMatch() ||
           QUrlQuery(url).hasQueryItem(QStringLiteral("v"));
}

std::optional<QString> videoIdentifier(const QString& link) {
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral("[A-Za-z0-9_-]{11}")));
    const QUrl url(link);
    if (!isOfVideoSite(url) || !namesVideo(url) || isYouTubePlaylistLink(link))
        return std::nullopt;
    const QString id = videoID(link);
    return form.match(id).hasMatch() ? std::optional(id) : std::nullopt;
}

}  // namespace

bool mayNameVideo(const QString& link) {
    const QUrl url(link);
    return !isYouTubePlaylistLink(link) && (!isOfVideoSite(url) || namesVideo(url));
}

QString songKey(const QString& link, int playlistItem) {
    const QUrl url(link);
    const auto video = playlistItem == 0 ? videoIdentifier(link) : std::nullopt;
    if (video)
        return QStringLiteral("video-") + *video;
    if (const auto track = trackIdentifier(url))
        return QStringLiteral("track-") + *track;
    return QStringLiteral("link-") + hashOf(withoutFragment(link, url), playlistItem);
}

}  // namespace reelcrate
