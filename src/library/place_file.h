#pragma once

#include <QString>

/// Gives files their places on the drive. Background threads: it waits for the drive.
namespace reelcrate {

struct Placement {
    enum class Outcome { placed, taken, failed };

    Outcome outcome = Outcome::placed;
    QString reason;  ///< the system's, when it failed
};

/// Waits until all of the file is on the drive. Comes back with the system's reason; empty when
/// done.
QString writeThrough(const QString& path);

/// Renames the file, in one step that never replaces another; both paths are on one drive. Two
/// programs that want one name at once get it in turn: one is placed, to the other it is taken.
Placement placeFile(const QString& from, const QString& to);

/// A hidden name beside the file, ".KIND-IDENTIFIER.EXTENSION", for what is made of it.
QString temporaryBeside(const QString& path, const QString& kind, const QString& extension);

/// Has one file take the place of another, or the name alone if there is none, in one step: under
/// the name there is always one whole file. Comes back with the system's reason; empty when done.
QString replaceFile(const QString& from, const QString& to);

}  // namespace reelcrate
