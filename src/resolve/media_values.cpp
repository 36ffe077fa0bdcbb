#include "resolve/media_values.h"

#include "base/duration_text.h"

#include <QJsonArray>

#include <algorithm>

namespace reelcrate {

namespace {

QString decimal(const QJsonValue& number) {
    const qint64 whole = number.toInteger(0);
    if (static_cast<double>(whole) == number.toDouble())
        return QString::number(whole);
    return QString::number(number.toDouble(), 'g', QLocale::FloatingPointShortest);
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

}  // namespace reelcrate
