#pragma once

#include "records/download_item.h"
#include "records/failure_cause.h"

#include <QHash>
#include <QString>

#include <optional>

/// Which sites a run asks no more, since they have said too often that they limit downloads: going
/// on would fail all rows and prolong the block. A plain value; one thread at a time.
namespace reelcrate {

/// What a row's download asks: a host, or the video site, by whatever of its names, and also for
/// what is searched for.
QString siteOf(const DownloadItem& item);

class SiteLimits {
public:
    /// So many rows of a site in a row that it refused; others do not count.
    static constexpr int mostRefusals = 3;

    /// A row that was downloaded, or failed for the cause.
    void rowEnded(const QString& site, std::optional<FailureCause> failure);

    bool asksToWait(const QString& site) const { return m_refusals.value(site) >= mostRefusals; }

private:
    QHash<QString, int> m_refusals;
};

}  // namespace reelcrate
