#include "update/update_manifest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace reelcrate {

namespace {

/// Beyond this, a number in JSON does not tell whole numbers apart.
constexpr double largestWhole = 9'007'199'254'740'992.0;

std::optional<qint64> wholeNumber(const QJsonValue& value) {
    const double number = value.toDouble();
    if (!value.isDouble() || std::trunc(number) != number || std::abs(number) > largestWhole)
        return std::nullopt;
    return value.toInteger();
}

std::optional<QStringList> texts(const QJsonValue& value) {
    if (!value.isArray())
        return std::nullopt;
    QStringList texts;
    const QJsonArray array = value.toArray();
    for (const auto& each : array) {
        if (!each.isString())
            return std::nullopt;
        texts.append(each.toString());
    }
    return texts;
}

/// Whether the value is a text or missing; a missing one leaves `text` absent.
bool readOptional(const QJsonValue& value, std::optional<QString>& text) {
    if (value.isString())
        text = value.toString();
    return value.isString() || value.isUndefined() || value.isNull();
}

QString build(qint64 number) {
    return QStringLiteral(" build %1").arg(number);
}

}  // namespace

std::optional<AppUpdateManifest> AppUpdateManifest::decode(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();
    const QJsonValue version = object.value(QStringLiteral("latest_version"));
    const auto build = wholeNumber(object.value(QStringLiteral("latest_build")));
    const auto notes = texts(object.value(QStringLiteral("release_notes")));
    if (!version.isString() || !build || !notes)
        return std::nullopt;

    AppUpdateManifest manifest;
    manifest.latestVersion = version.toString();
    manifest.latestBuild = *build;
    manifest.releaseNotes = *notes;
    if (!readOptional(object.value(QStringLiteral("release_date")), manifest.releaseDate) ||
        !readOptional(object.value(QStringLiteral("download_url")), manifest.downloadURL))
        return std::nullopt;
    return manifest;
}

UpdateOutcome judgeUpdate(const AppUpdateManifest& manifest, const QString& ownVersion,
                          qint64 ownBuild) {
    const QString latest = manifest.latestVersion + build(manifest.latestBuild) + u'.';
    if (manifest.latestBuild < ownBuild) {
        return {QStringLiteral("This test build is newer than the website notes: v") + ownVersion +
                    build(ownBuild) + QStringLiteral(". Website latest is v") + latest,
                QStringLiteral("Local build newer than update notes"), true};
    }
    const QString date = manifest.releaseDate
                             ? QStringLiteral(" Released ") + *manifest.releaseDate + u'.'
                             : QString();
    const QString dateAndNotes = date + releaseNoteSummary(manifest.releaseNotes);
    if (manifest.latestBuild == ownBuild) {
        return {QStringLiteral("You are up to date: v") + ownVersion + build(ownBuild) + u'.' +
                    dateAndNotes,
                QStringLiteral("Reelcrate is current"), true};
    }
    const bool hasAddress = manifest.downloadURL && !manifest.downloadURL->isEmpty();
    return {
        QStringLiteral("Update available: v") + latest + dateAndNotes +
            (hasAddress ? QStringLiteral(" Open your purchase download link to install it.")
                        : QStringLiteral(" Open your purchase email/download page to install it.")),
        QStringLiteral("Update available"), true};
}

UpdateOutcome updateCheckFailed(const QString& errorDescription) {
    return {
        QStringLiteral("Could not check updates. Connect to Wi-Fi or internet and try again. ") +
            errorDescription,
        QStringLiteral("Update scan failed")};
}

UpdateOutcome updateNotesRefused(int httpStatus) {
    return {QStringLiteral("Could not read update notes from the website yet. Website status: %1.")
                .arg(httpStatus),
            QStringLiteral("Update notes unavailable")};
}

UpdateOutcome updateNotesUnreadable() {
    return {QStringLiteral("The website update notes could not be read. Try again later after the "
                           "update file is published."),
            QStringLiteral("Update notes unavailable")};
}

QString releaseNoteSummary(const QStringList& notes) {
    constexpr qsizetype mostNotes = 2;
    QStringList shown;
    for (const QString& note : notes) {
        if (shown.size() < mostNotes && !note.trimmed().isEmpty())
            shown.append(note.trimmed());
    }
    return shown.isEmpty() ? QString() : QStringLiteral(" Notes: ") + shown.join(u' ');
}

}  // namespace reelcrate
