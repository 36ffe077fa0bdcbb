#pragma once

#include <QString>
#include <QStringList>

/// What the downloader has fetched, or merged of what it has fetched, kept as it came. What it
/// makes of that, tags and conversions, gets a new header, with which half a song looks whole. The
/// file NAME.EXTENSION is kept beside it as "NAME.EXTENSION.fetched".
namespace reelcrate {

/// The downloader's post-processor that keeps the files, as an option of its command line: under a
/// second name where the drive knows such, else as a copy. It never fails a download. Pure.
QString keepFetchedOption();

/// The names, without their extensions, of the files in a folder of which it was kept what was
/// fetched. Any thread; so below.
QStringList fetchedNames(const QString& folder);

/// The path of what was fetched for a file, which may have another extension since; empty where
/// none was kept.
QString fetchedFor(const QString& file);

}  // namespace reelcrate
