#include "console/account_report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

namespace reelcrate {

namespace {

QJsonArray remarksAsJson(const QList<EventAccount::Remark>& remarks) {
    QJsonArray array;
    for (const auto& [title, text] : remarks)
        array.append(
            QJsonObject{{QStringLiteral("title"), title}, {QStringLiteral("remark"), text}});
    return array;
}

}  // namespace

QJsonObject accountAsJson(const EventAccount& account) {
    return {
        {QStringLiteral("event"), account.eventName},
        {QStringLiteral("asked"), account.asked},
        {QStringLiteral("complete"), account.complete},
        {QStringLiteral("needAttention"), account.needAttention},
        {QStringLiteral("playingSeconds"), account.playingSeconds},
        {QStringLiteral("missing"), remarksAsJson(account.missing)},
        {QStringLiteral("notes"), remarksAsJson(account.notes)},
        {QStringLiteral("cutListings"), QJsonArray::fromStringList(account.cutListings)},
        {QStringLiteral("doubles"), remarksAsJson(account.doubles)},
    };
}

QString saveReport(const EventAccount& account, const QString& path) {
    QSaveFile file(path);
    const QByteArray text = QJsonDocument(accountAsJson(account)).toJson();
    const bool isSaved =
        file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
    return isSaved ? QString() : file.errorString();
}

}  // namespace reelcrate
