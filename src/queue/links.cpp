#include "queue/links.h"

#include <QRegularExpression>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>
#include <array>

namespace reelcrate {

namespace {

constexpr QStringView shortLinkDomain = u"youtu.be";

struct SourceDomains {
    SourceType source;
    std::array<QStringView, 2> domains;
};

constexpr std::array sourceDomains{
    SourceDomains{SourceType::youtube, {shortLinkDomain, u"youtube.com"}},
    SourceDomains{SourceType::facebook, {u"facebook.com", u"fb.watch"}},
    SourceDomains{SourceType::spotify, {u"spotify.com", u"spotify.link"}},
};

// A single half of a surrogate pair, as a careless copy leaves it, makes every pattern fail on the
// whole text.
QString withoutLoneSurrogates(QString text) {
    if (text.isValidUtf16())
        return text;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text.at(i).isSurrogate())
            continue;
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (isPair)
            ++i;
        else
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

QStringView withoutClosingPunctuation(QStringView link) {
    constexpr QStringView punctuation = u".,);]}>\"'";
    while (!link.isEmpty() && punctuation.contains(link.back()))
        link.chop(1);
    return link;
}

// The host as it is written: QUrl::host() would lower-case it.
QStringView writtenHost(QStringView link) {
    constexpr QStringView schemeEnd = u"://";
    const qsizetype scheme = link.indexOf(schemeEnd);
    if (scheme < 0)
        return {};
    QStringView host = link.sliced(scheme + schemeEnd.size());
    const auto* const end = std::find_if(host.cbegin(), host.cend(),
                                         [](QChar c) { return QStringView(u"/?#").contains(c); });
    host = host.first(end - host.cbegin());
    return host.sliced(host.lastIndexOf(u'@') + 1);
}

// The decoded parts of the path, after the root. Split first: an encoded slash is no separator.
QStringList pathComponents(const QUrl& url) {
    const QStringList encoded = url.path(QUrl::FullyEncoded).split(u'/', Qt::SkipEmptyParts);
    QStringList components;
    components.reserve(encoded.size());
    for (const QString& component : encoded)
        components.append(QUrl::fromPercentEncoding(component.toLatin1()));
    return components;
}

// The decoded values of the query's items of exactly this name, in order; a null text where an item
// has no equals sign.
QStringList queryValues(const QUrl& url, const QString& name) {
    return QUrlQuery(url.query(QUrl::FullyEncoded)).allQueryItemValues(name, QUrl::FullyDecoded);
}

}  // namespace

QStringList extractLinks(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral(R"(https?://[^\s]+)"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    const QString subject = withoutLoneSurrogates(text);
    QRegularExpressionMatchIterator matches =
        pattern.globalMatch(subject, 0, QRegularExpression::NormalMatch,
                            QRegularExpression::DontCheckSubjectStringMatchOption);
    QStringList links;
    while (matches.hasNext())
        links.append(withoutClosingPunctuation(matches.next().capturedView()).toString());
    return links;
}

SourceType classifySource(const QString& link) {
    for (const SourceDomains& row : sourceDomains) {
        const bool found = std::any_of(
            row.domains.begin(), row.domains.end(),
            [&](QStringView domain) { return link.contains(domain, Qt::CaseInsensitive); });
        if (found)
            return row.source;
    }
    return SourceType::link;
}

bool isYouTubePlaylistLink(const QString& link) {
    // Spares most links being taken apart, which is slow.
    if (!link.contains(u"list", Qt::CaseInsensitive) && !link.contains(u'%'))
        return false;
    const QUrl url(link);
    if (!url.isValid())
        return false;
    if (url.path(QUrl::FullyDecoded).toLower().contains(u"/playlist"))
        return true;
    const QStringList lists = queryValues(url, QStringLiteral("list"));
    return std::any_of(lists.begin(), lists.end(),
                       [](const QString& list) { return !list.isEmpty(); });
}

bool playlistLike(const QString& link, SourceType source) {
    if (source == SourceType::youtube)
        return isYouTubePlaylistLink(link);
    if (source != SourceType::spotify)
        return false;
    const QString lowered = link.toLower();
    return lowered.contains(u"/playlist/") || lowered.contains(u"/album/");
}

QString videoID(const QString& link) {
    const QUrl url(link);
    if (!url.isValid())
        return link;
    const QStringList components = pathComponents(url);
    if (writtenHost(link).contains(shortLinkDomain))
        return components.isEmpty() ? link : components.first();
    for (const QString& value : queryValues(url, QStringLiteral("v"))) {
        if (!value.isNull())
            return value;
    }
    if (!components.isEmpty())
        return components.last();
    return url.path(QUrl::FullyEncoded).isEmpty() ? link : QStringLiteral("/");
}

}  // namespace reelcrate
