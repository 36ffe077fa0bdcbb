#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <map>
#include <mutex>

/// Which files belong to which of the downloads that go on side by side, so that none takes
/// another's file for its own. Any thread.
namespace reelcrate {

/// The claims of all downloads that are under way.
class ClaimedFiles {
private:
    friend class FileClaim;

    struct Download {
        QStringList own;
        QStringList endedNeighbours;  ///< of downloads that have ended since this one began
    };

    std::mutex m_mutex;
    std::map<quint64, Download> m_downloads;
    quint64 m_last = 0;
};

/// The files of one download, from before it writes the first one to its end.
class FileClaim {
public:
    explicit FileClaim(ClaimedFiles& files);
    ~FileClaim();
    Q_DISABLE_COPY_MOVE(FileClaim)

    void add(const QString& path);

    /// The download has failed: its files are nobody's.
    void withdraw();

    /// The files of all downloads that were under way at any time since this one began.
    QStringList ofOthers() const;

private:
    ClaimedFiles& m_files;
    quint64 m_number = 0;
};

/// The files that a download may write when it names this one as its destination: besides that one
/// the finished file, which it names later, and what it writes on the way there.
QStringList relatedFiles(const QString& destination);

}  // namespace reelcrate
