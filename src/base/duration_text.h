#pragma once

#include <QString>

#include <optional>

/// Play times as they are shown. Pure functions; any thread.
namespace reelcrate {

/// The seconds that a text such as 3:45 or 1:02:03 stands for, also one with a fraction at its end;
/// absent for any other text, and for nothing at all (0:00).
std::optional<double> secondsOfDuration(const QString& text);

/// 3:45 or 1:02:03, rounded to the nearest second; empty unless the number is finite, above zero
/// and fits 64 bits.
QString formatDuration(double seconds);

}  // namespace reelcrate
