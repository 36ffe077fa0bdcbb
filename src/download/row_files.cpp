#include "download/row_files.h"

#include "library/finished_files.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace reelcrate {

namespace {

/// Where yt-dlp writes a file anew while it adds tags or a cover to it.
QString rewrittenPath(const QString& path) {
    const QFileInfo file(path);
    return file.path() + u'/' + file.completeBaseName() + QStringLiteral(".temp.") + file.suffix();
}

}  // namespace

RowFiles::RowFiles(const QString& eventFolder, ClaimedFiles& claimedFiles,
                   ProcessSupervisor& supervisor)
    : m_eventFolder(QDir::cleanPath(eventFolder)),
      m_claim(claimedFiles),
      m_beforeFiles(regularFiles(m_eventFolder)),
      m_unfinished(supervisor) {}

void RowFiles::take(const FileNews& news) {
    switch (news.kind) {
        case FileNews::Kind::downloads:
        case FileNews::Kind::wasThere:
            believe(QDir::cleanPath(news.path), news.kind == FileNews::Kind::downloads);
            break;
        case FileNews::Kind::converts:
            believe(QDir::cleanPath(news.path), true);
            m_converts = true;
            break;
        case FileNews::Kind::leavesOutPart:
            m_hasHole = true;
            break;
        case FileNews::Kind::hasConverted:
            m_converts = false;
            noteWhole();
            break;
        case FileNews::Kind::addsTags:
            noteWhole();
            break;
        case FileNews::Kind::nextItem:
            settleItem({});
            break;
    }
}

/// The tool goes on to the tags also when a conversion failed.
void RowFiles::noteWhole() {
    if (!m_converts && !m_hasHole)
        m_whole = m_written;
}

/// A title may hold any text, also one that looks like the line of a path.
void RowFiles::believe(const QString& path, bool isWritten) {
    if (!path.startsWith(m_eventFolder + u'/'))
        return;
    m_path = path;
    m_claim.add(path);
    if (isWritten && !std::binary_search(m_beforeFiles.begin(), m_beforeFiles.end(), path)) {
        m_written.append(path);
        m_unfinished.announce(path);
        m_unfinished.announce(rewrittenPath(path));
    }
}

QString RowFiles::finishedPath() {
    if (m_path.isEmpty()) {
        m_path = bestOutputPath(m_beforeFiles + ofNeighbours(), m_eventFolder);
        m_claim.add(m_path);
    }
    return m_path;
}

void RowFiles::removeUnfinished() {
    // Two links may lead to one song. The last of them that fails removes what none has finished.
    const QStringList alsoKept = ofNeighbours();
    m_claim.withdraw();
    settleItem(alsoKept);
}

void RowFiles::settleItem(const QStringList& alsoKept) {
    m_unfinished.keepOnly(m_whole + alsoKept);
    m_written.clear();
    m_whole.clear();
    m_converts = false;
    m_hasHole = false;
}

QStringList RowFiles::ofNeighbours() const {
    QStringList files;
    for (const QString& path : m_claim.ofOthers())
        files += relatedFiles(path);
    return files;
}

}  // namespace reelcrate
