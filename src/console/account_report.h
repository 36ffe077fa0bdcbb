#pragma once

#include "library/event_account.h"

#include <QJsonObject>
#include <QString>

/// The event's account for programs. Any thread.
namespace reelcrate {

/// Pure.
QJsonObject accountAsJson(const EventAccount& account);

/// Why no account can be written there: an earlier account is replaced, another file is not. Empty
/// when it can, as far as can be told beforehand.
QString whyNoReport(const QString& path);

/// Writes it as JSON; an account that was there is replaced whole, or stays as it was. The reason
/// for a failure; empty when all went well.
QString saveReport(const EventAccount& account, const QString& path);

}  // namespace reelcrate
