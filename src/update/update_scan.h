#pragma once

#include "update/update_manifest.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QString>

#include <chrono>

class QNetworkReply;

/// Fetches the update manifest on request and says what it means. Main thread; a scan goes on
/// beside it. Every failure is an outcome like any other.
namespace reelcrate {

struct UpdateScanSetup {
    /// The host is chosen when the program is built, the path is fixed.
    QString manifestURL = defaultManifestURL();
    std::chrono::milliseconds timeLimit{15'000};

    static QString defaultManifestURL();
};

class UpdateScan : public QObject {
    Q_OBJECT

public:
    UpdateScan(QString ownVersion, qint64 ownBuild, UpdateScanSetup setup);

    bool isScanningForUpdate() const { return m_isScanning; }
    const QString& updateMessage() const { return m_message; }

    /// Starts a scan, unless one is under way.
    void scanForUpdate();

Q_SIGNALS:
    /// Of the message, or of whether a scan is under way.
    void updateChanged();
    void summaryChanged(const QString& text);
    void finished(const reelcrate::UpdateOutcome& outcome);

private:
    void watch(QNetworkReply* reply);
    UpdateOutcome outcomeOf(QNetworkReply& reply) const;
    void finish(const UpdateOutcome& outcome);

    const QString m_ownVersion;
    const qint64 m_ownBuild;
    const UpdateScanSetup m_setup;
    QNetworkAccessManager m_network;
    bool m_isScanning = false;
    QString m_message;
};

}  // namespace reelcrate
