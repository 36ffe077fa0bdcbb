#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

/// Readers of the values that the tools give as JSON. Pure functions; any thread. A missing value
/// and a value of another kind are no failure: they give the empty text.
namespace reelcrate {

/// A text without the white space at its ends; a number in decimal, without a point when it is
/// whole; a boolean as 1 or 0; else the empty text.
QString stringValue(const QJsonValue& value);

/// The play time for display: "duration_string", else "duration" in seconds.
QString durationText(const QJsonObject& media);

/// The address of the last of the "thumbnails", or else of the "thumbnail".
QString thumbnailURL(const QJsonObject& media);

}  // namespace reelcrate
