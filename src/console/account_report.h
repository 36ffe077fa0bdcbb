#pragma once

#include "library/event_account.h"

#include <QJsonObject>
#include <QString>

/// The event's account for programs. Any thread.
namespace reelcrate {

/// Pure.
QJsonObject accountAsJson(const EventAccount& account);

/// Writes it as JSON; what was there is replaced whole, or stays as it was. The system's reason for
/// a failure; empty when all went well.
QString saveReport(const EventAccount& account, const QString& path);

}  // namespace reelcrate
