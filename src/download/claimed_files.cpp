#include "download/claimed_files.h"

#include "library/finished_files.h"

#include <QRegularExpression>

#include <array>

namespace reelcrate {

namespace {

// Of what a download ends with, and of its cover.
constexpr std::array writtenExtensions{"mp3", "mp4", "mkv", "webm", "webp", "jpg", "png"};

/// "a [id].f137" as "a [id]": picture and sound are fetched apart, and the name says in what
/// format.
QString withoutFormat(QString stem) {
    static const QRegularExpression format(QStringLiteral("\\.f[^.\\]/]*\\z"));
    return stem.remove(format);
}

}  // namespace

FileClaim::FileClaim(ClaimedFiles& files) : m_files(files) {
    const std::lock_guard lock(m_files.m_mutex);
    m_number = ++m_files.m_last;
    m_files.m_downloads[m_number];
}

FileClaim::~FileClaim() {
    const std::lock_guard lock(m_files.m_mutex);
    const auto ended = m_files.m_downloads.extract(m_number);
    for (auto& [number, download] : m_files.m_downloads)
        download.endedNeighbours += ended.mapped().own;
}

void FileClaim::add(const QString& path) {
    const std::lock_guard lock(m_files.m_mutex);
    QStringList& own = m_files.m_downloads[m_number].own;
    if (!own.contains(path))
        own.append(path);
}

void FileClaim::withdraw() {
    const std::lock_guard lock(m_files.m_mutex);
    m_files.m_downloads[m_number].own.clear();
}

QStringList FileClaim::ofOthers() const {
    const std::lock_guard lock(m_files.m_mutex);
    QStringList files = m_files.m_downloads[m_number].endedNeighbours;
    for (const auto& [number, download] : m_files.m_downloads) {
        if (number != m_number)
            files += download.own;
    }
    return files;
}

QStringList relatedFiles(const QString& destination) {
    const QString folder = destination.first(destination.lastIndexOf(u'/') + 1);
    const QString stem = folder + nameWithoutExtension(destination);
    QStringList files{destination};
    for (const QString& each : {stem, withoutFormat(stem)}) {
        for (const char* extension : writtenExtensions) {
            const QString ending = u'.' + QString::fromLatin1(extension);
            files.append(each + ending);
            files.append(each + QStringLiteral(".temp") + ending);
        }
    }
    return files;
}

}  // namespace reelcrate
