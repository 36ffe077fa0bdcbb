#include "download/song_note.h"

#include "base/duration_text.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace reelcrate {

namespace {

constexpr double smallSeconds = 5;
constexpr double smallPart = 0.03;
constexpr double minute = 60;

QString lengthNote(double downloaded, double listed) {
    const double difference = downloaded - listed;
    const double amount = std::round(std::abs(difference));
    if (downloaded <= 0 || std::abs(difference) <= std::max(smallSeconds, smallPart * listed))
        return {};
    const QString shown =
        amount < minute ? QStringLiteral("%1 s").arg(amount) : formatDuration(amount);
    return shown + (difference > 0 ? QStringLiteral(" longer than listed")
                                   : QStringLiteral(" shorter than listed"));
}

}  // namespace

QString songNote(const SongOrigin& origin) {
    QStringList notes;
    if (origin.isUncertain)
        notes.append(QStringLiteral("Best match is uncertain"));
    if (const auto listed = secondsOfDuration(origin.listedLength))
        notes.append(lengthNote(origin.downloadedSeconds, *listed));
    notes.removeAll(QString());
    if (origin.breaksOff && notes.isEmpty())
        notes.append(QStringLiteral("Source ends early"));
    return notes.join(QStringLiteral("; "));
}

}  // namespace reelcrate
