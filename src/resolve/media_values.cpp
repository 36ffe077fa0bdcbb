#include "resolve/media_values.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace reelcrate {

namespace {

QString decimal(const QJsonValue& number) {
    const qint64 whole = number.toInteger(0);
    if (static_cast<double>(whole) == number.toDouble())
        return QString::number(whole);
    return QString::number(number.toDouble(), 'g', QLocale::FloatingPointShortest);
}

QString twoDigits(qint64 number) {
    return QStringLiteral("%1").arg(number, 2, 10, QChar(u'0'));
}

}  // namespace

QString stringValue(const QJsonValue& value) {
    switch (value.type()) {
        case QJsonValue::String:
            return value.toString().trimmed();
        case QJsonValue::Double:
            return decimal(value);
        case QJsonValue::Bool:
            return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
        default:
            return {};
    }
}

QString durationText(const QJsonObject& media) {
    QString text = stringValue(media.value(u"duration_string"));
    if (!text.isEmpty())
        return text;
    const QJsonValue duration = media.value(u"duration");
    return formatDuration(duration.isBool() && duration.toBool() ? 1.0 : duration.toDouble(0.0));
}

QString thumbnailURL(const QJsonObject& media) {
    const QJsonValue listed = media.value(u"thumbnails");
    const QJsonArray thumbnails = listed.toArray();
    const bool allAreObjects =
        listed.isArray() && std::all_of(thumbnails.begin(), thumbnails.end(),
                                        [](const QJsonValue& value) { return value.isObject(); });
    if (!allAreObjects)
        return stringValue(media.value(u"thumbnail"));
    return thumbnails.isEmpty() ? QString() : stringValue(thumbnails.last()[u"url"]);
}

QString formatDuration(double seconds) {
    constexpr double firstTooLarge = 0x1p63;
    if (!std::isfinite(seconds) || seconds <= 0 || seconds >= firstTooLarge)
        return {};
    const auto whole = static_cast<qint64>(std::round(seconds));
    const qint64 hours = whole / 3600;
    const qint64 minutes = whole % 3600 / 60;
    const QString secondsText = twoDigits(whole % 60);
    if (hours == 0)
        return QString::number(minutes) + u':' + secondsText;
    return QString::number(hours) + u':' + twoDigits(minutes) + u':' + secondsText;
}

}  // namespace reelcrate
