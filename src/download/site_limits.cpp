#include "download/site_limits.h"

#include <QUrl>

#include <algorithm>
#include <array>

namespace reelcrate {

namespace {

constexpr QLatin1String videoSite("youtube.com");
constexpr std::array videoHosts{videoSite, QLatin1String("youtu.be"),
                                QLatin1String("youtube-nocookie.com")};

}  // namespace

QString siteOf(const DownloadItem& item) {
    if (isSearchedFor(item.source))
        return videoSite;
    QString host = QUrl(item.url).host();
    const bool isVideoSite = std::any_of(
        videoHosts.begin(), videoHosts.end(),
        [&](QLatin1String domain) { return host == domain || host.endsWith(u'.' + domain); });
    if (isVideoSite)
        return videoSite;
    return host;
}

void SiteLimits::rowEnded(const QString& site, std::optional<FailureCause> failure) {
    if (failure == FailureCause::siteLimit)
        ++m_refusals[site];
    else if (!failure && !asksToWait(site))
        m_refusals.remove(site);
}

}  // namespace reelcrate
