#include "console/account_report.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

namespace reelcrate {

namespace {

constexpr qint64 largestReport = 64 << 20;
const QString missing = QStringLiteral("missing");

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
        {missing, remarksAsJson(account.missing)},
        {QStringLiteral("notes"), remarksAsJson(account.notes)},
        {QStringLiteral("cutListings"), QJsonArray::fromStringList(account.cutListings)},
        {QStringLiteral("unreadLines"), QJsonArray::fromStringList(account.unreadLines)},
        {QStringLiteral("doubles"), remarksAsJson(account.doubles)},
    };
}

QString whyNoReport(const QString& path) {
    const QFileInfo info(path);
    if (!QFileInfo(info.absolutePath()).isDir())
        return QStringLiteral("its folder is not there");
    if (info.isDir())
        return QStringLiteral("it is a folder");
    QFile file(path);
    if (!info.isFile() || info.size() == 0)
        return {};
    const bool isAccount =
        file.open(QIODevice::ReadOnly) &&
        QJsonDocument::fromJson(file.read(largestReport)).object().contains(missing);
    return isAccount ? QString() : QStringLiteral("there is a file of another kind");
}

QString saveReport(const EventAccount& account, const QString& path) {
    if (QString reason = whyNoReport(path); !reason.isEmpty())
        return reason;
    const QByteArray text = QJsonDocument(accountAsJson(account)).toJson();
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {  // a device or a pipe stays what it is
        QFile file(path);
        const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                               file.write(text) == text.size();
        return isWritten ? QString() : file.errorString();
    }
    QSaveFile file(path);
    const bool isSaved =
        file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
    return isSaved ? QString() : file.errorString();
}

}  // namespace reelcrate
