#include "update/update_scan.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace reelcrate {

namespace {

constexpr qint64 largestBody = qint64{1024} * 1024;  // bytes

// Why a reply was given up, where the network's own error does not say it.
constexpr const char* insecureProperty = "insecureRedirect";
constexpr const char* tooLargeProperty = "tooLarge";
constexpr const char* tooLateProperty = "tooLate";

void giveUp(QNetworkReply* reply, const char* why) {
    reply->setProperty(why, true);
    reply->abort();
}

}  // namespace

QString UpdateScanSetup::defaultManifestURL() {
    return QStringLiteral("https://" REELCRATE_UPDATE_HOST "/desk-tools/updates/reelcrate.json");
}

UpdateScan::UpdateScan(QString ownVersion, qint64 ownBuild, UpdateScanSetup setup)
    : m_ownVersion(std::move(ownVersion)), m_ownBuild(ownBuild), m_setup(std::move(setup)) {}

void UpdateScan::scanForUpdate() {
    if (m_isScanning)
        return;
    const QUrl address(m_setup.manifestURL, QUrl::StrictMode);
    if (!address.isValid() || address.host().isEmpty()) {
        m_message = QStringLiteral("Update scan is not configured yet.");
        Q_EMIT updateChanged();
        return;
    }
    m_isScanning = true;
    m_message = QStringLiteral("Checking %1 for Reelcrate updates...").arg(address.host());
    Q_EMIT updateChanged();
    Q_EMIT summaryChanged(QStringLiteral("Checking for updates"));

    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::UserVerifiedRedirectPolicy);
    // Left alone, Qt tells the site the language of the user's desktop.
    request.setRawHeader("Accept-Language", "en");
    watch(m_network.get(request));
}

void UpdateScan::watch(QNetworkReply* reply) {
    // Over the whole request: a server that sends a byte now and then is too late as well.
    auto* limit = new QTimer(reply);
    limit->setSingleShot(true);
    connect(limit, &QTimer::timeout, reply, [reply] { giveUp(reply, tooLateProperty); });
    limit->start(m_setup.timeLimit);
    connect(reply, &QNetworkReply::redirected, reply, [reply](const QUrl& target) {
        if (target.scheme() == QStringLiteral("https"))
            Q_EMIT reply->redirectAllowed();
        else
            giveUp(reply, insecureProperty);
    });
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > largestBody)
            giveUp(reply, tooLargeProperty);
    });
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        finish(outcomeOf(*reply));
        reply->deleteLater();
    });
}

UpdateOutcome UpdateScan::outcomeOf(QNetworkReply& reply) const {
    if (reply.property(insecureProperty).toBool())
        return updateCheckFailed(QStringLiteral("The website redirects to an insecure address."));
    if (reply.property(tooLateProperty).toBool())
        return updateCheckFailed(QStringLiteral("The request timed out."));

    // A status first: Qt counts one that is no success as an error of the network. After a redirect
    // that led nowhere, though, the reply still has the redirect's.
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const int number = status.toInt();
    const bool isSuccess = number >= 200 && number <= 299;
    const bool isRedirect = number >= 300 && number <= 399;
    const bool failed = reply.error() != QNetworkReply::NoError;
    if (status.isValid() && !isSuccess && !(isRedirect && failed))
        return updateNotesRefused(number);
    if (reply.property(tooLargeProperty).toBool())
        return updateNotesUnreadable();
    if (failed)
        return updateCheckFailed(reply.errorString());
    const auto manifest = AppUpdateManifest::decode(reply.readAll());
    return manifest ? judgeUpdate(*manifest, m_ownVersion, m_ownBuild) : updateNotesUnreadable();
}

void UpdateScan::finish(const UpdateOutcome& outcome) {
    m_message = outcome.message;
    m_isScanning = false;
    Q_EMIT summaryChanged(outcome.title);
    Q_EMIT updateChanged();
    Q_EMIT finished(outcome);
}

}  // namespace reelcrate
