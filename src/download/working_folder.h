#pragma once

#include "records/download_mode.h"

#include <QLockFile>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <memory>

/// The folder in which one song is downloaded, converted and trimmed, before it enters the event
/// folder as a whole: EVENT FOLDER/.reelcrate/KEY. One download at a time works in it, whatever
/// program that belongs to. Background threads; an object is used by one of them at a time.
namespace reelcrate {

class WorkingFolder {
public:
    enum class Lock {
        held,
        inUse,   ///< by another download, or by what a killed program has left running
        failed,  ///< the folder cannot be made or written to; see failure()
    };

    /// `name` tells the songs of an event folder apart, and what they are downloaded as.
    WorkingFolder(const QString& eventFolder, const QString& name);
    /// Gives the folder free. What is in it stays, for the next start to go on with.
    ~WorkingFolder();
    Q_DISABLE_COPY_MOVE(WorkingFolder)

    Lock lock();

    const QString& path() const { return m_path; }
    /// An open descriptor; while any process has it open, the folder is in use.
    int descriptor() const { return m_descriptor; }
    const QString& failure() const { return m_failure; }

    /// Removes what an earlier download left and the next one would take for more than it is: half
    /// conversions, covers, trims, streams in fragments. Other transfers that were cut off stay,
    /// and sources that are whole.
    void keepResumable(DownloadMode mode) const;

    /// The name of a stream's piece that is text: a page that a network or a busy site has sent in
    /// its place. Empty where there is none.
    QString textAmongFragments() const;

    /// What was fetched or merged in whole, as the names have it; absolute paths.
    QStringList fetchedMedia() const;

    /// Removes transfers that were cut off.
    void removeParts() const;

    /// Notes which of the site's formats the transfers are. The next start may choose others, and
    /// what it fetches would be written behind what is there.
    void noteFormats(const QString& formats) const;

    /// What was noted last, if transfers are there that were cut off; otherwise empty.
    QString formatsOfParts() const;

    /// Removes everything that is in the folder.
    void empty() const;

    /// The files that the downloader has finished, in the order of their names: no pieces of them,
    /// and of what it has converted not the source.
    QStringList finishedFiles(DownloadMode mode) const;

    /// The sound or film that a conversion, which failed, was to be made from; empty if there is
    /// none.
    QString unconvertedSource() const;

    /// Whether more can be written: the folder is there, may be written to, and its drive has room.
    bool takesMore() const;

    /// Removes the folder and gives it free.
    void remove();

private:
    bool open();
    bool isStillThere() const;
    bool isIdle() const;
    Lock lockFile(bool nobodyOfThisMachine);
    void release();

    const QString m_path;
    int m_descriptor = -1;
    std::unique_ptr<QLockFile> m_lockFile;
    QString m_failure;
};

/// Removes the working folders of this event folder that nobody has touched for three days and
/// nobody is at work in, and then what holds them, when that is empty.
void removeAbandonedWork(const QString& eventFolder);

/// Removes what holds the working folders, when there are none.
void removeWorkFolderIfEmpty(const QString& eventFolder);

}  // namespace reelcrate
