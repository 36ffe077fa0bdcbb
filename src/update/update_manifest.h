#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// The small file that the vendor publishes about the latest release, and what it means beside the
/// program's own build. Pure functions of values; any thread.
namespace reelcrate {

struct AppUpdateManifest {
    QString latestVersion;
    qint64 latestBuild = 0;
    std::optional<QString> releaseDate;
    QStringList releaseNotes;
    std::optional<QString> downloadURL;

    /// Nothing when the text is no such file: a required value is missing, or one is of another
    /// kind.
    static std::optional<AppUpdateManifest> decode(const QByteArray& json);
};

/// What a check has found: a sentence, and a title for the summary line.
struct UpdateOutcome {
    QString message;
    QString title;
    bool wasChecked = false;  ///< the manifest was read

    friend bool operator==(const UpdateOutcome&, const UpdateOutcome&) = default;
};

/// Compares builds only; the version is for people.
UpdateOutcome judgeUpdate(const AppUpdateManifest& manifest, const QString& ownVersion,
                          qint64 ownBuild);

UpdateOutcome updateCheckFailed(const QString& errorDescription);
UpdateOutcome updateNotesRefused(int httpStatus);
UpdateOutcome updateNotesUnreadable();

/// The part of a message that quotes the first two notes with text in them; empty without any.
QString releaseNoteSummary(const QStringList& notes);

}  // namespace reelcrate
