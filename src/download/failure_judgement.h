#pragma once

#include "records/failure_cause.h"

#include <QStringList>

/// Judges why a download failed by what the downloader printed of errors. By their form: what an
/// error quotes of addresses, of files or of titles is no evidence. A pure function; any thread;
/// what says nothing known has the cause "other".
namespace reelcrate {

/// `complaints` are the lines that begin with "ERROR: " or "WARNING: ", oldest first. The last
/// error of a known form decides; warnings only tell why there was nothing to download. What a new
/// downloader would not fail with is blamed on an old one.
FailureCause judgedCause(const QStringList& complaints, bool toolIsOld);

}  // namespace reelcrate
