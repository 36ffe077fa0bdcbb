#pragma once

#include "download/claimed_files.h"
#include "download/output_parsing.h"
#include "tools/process_supervisor.h"

#include <QString>
#include <QStringList>

/// The files that the download of one row makes: which one is the song, and which may stay if the
/// row fails or the program ends in its midst. One thread at a time.
///
/// A conversion writes straight into a song's final name, where half of it would pass for a
/// finished song from then on. So each file that the tool says it writes counts as unfinished until
/// the row is complete, and goes if the program ends before. When the row fails, what the tool had
/// finished by then stays.
namespace reelcrate {

class RowFiles {
public:
    /// `eventFolder` is looked through: what is there before the download is none of its files.
    RowFiles(const QString& eventFolder, ClaimedFiles& claimedFiles, ProcessSupervisor& supervisor);

    void take(const FileNews& news);

    /// The file that the tool named or else, as far as can be told, the one that is new.
    QString finishedPath();

    /// The row is about to be complete.
    void keepAll() { m_unfinished.keep(); }

    /// The row has failed: half songs are removed, and songs with a hole.
    void removeUnfinished();

private:
    void believe(const QString& path, bool isWritten);
    void noteWhole();
    void settleItem(const QStringList& alsoKept);
    QStringList ofNeighbours() const;

    const QString m_eventFolder;
    // Before the listing: a neighbour that ends meanwhile is in the one or in the other.
    FileClaim m_claim;
    const QStringList m_beforeFiles;
    UnfinishedFiles m_unfinished;
    QString m_path;
    // Of the item that is being downloaded: a link may stand for several.
    QStringList m_written;
    QStringList m_whole;
    bool m_converts = false;
    bool m_hasHole = false;
};

}  // namespace reelcrate
