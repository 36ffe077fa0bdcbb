#include "base/duration_text.h"

#include <QRegularExpression>

#include <cmath>

namespace reelcrate {

namespace {

QString twoDigits(qint64 number) {
    return QStringLiteral("%1").arg(number, 2, 10, QChar(u'0'));
}

}  // namespace

std::optional<double> secondsOfDuration(const QString& text) {
    static const QRegularExpression form(QStringLiteral(
        R"(^(?:([0-9]{1,4}):(?=[0-9]{2}:))?([0-9]{1,4}):([0-5][0-9](?:\.[0-9]+)?)$)"));
    const QRegularExpressionMatch match = form.match(text.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    const double seconds = match.captured(1).toDouble() * 3600 + match.captured(2).toDouble() * 60 +
                           match.captured(3).toDouble();
    return seconds > 0 ? std::optional(seconds) : std::nullopt;
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
