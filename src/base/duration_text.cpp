#include "base/duration_text.h"

#include <QRegularExpression>

namespace reelcrate {

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

}  // namespace reelcrate
