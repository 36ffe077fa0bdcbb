#include "library/finished_files.h"

#include "library/song_key.h"
#include "queue/links.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <system_error>

namespace reelcrate {

namespace {

namespace fs = std::filesystem;

constexpr std::array audioExtensions{"mp3", "m4a", "aac", "flac", "wav", "aiff", "aif"};
constexpr std::array videoExtensions{"mp4", "mov", "m4v", "mkv", "webm"};
constexpr std::array unfinishedExtensions{"part", "ytdl"};

fs::path nativePath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

QStringView lastComponent(QStringView path) {
    return path.sliced(path.lastIndexOf(u'/') + 1);
}

// Where the extension's dot stands, or the name's size. A dot at the start only hides the file.
qsizetype extensionDot(QStringView name) {
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? dot : name.size();
}

template <std::size_t count>
bool hasAnyExtension(const QString& path, const std::array<const char*, count>& extensions) {
    return std::any_of(extensions.begin(), extensions.end(), [&](const char* candidate) {
        return hasExtension(path, QString::fromLatin1(candidate));
    });
}

QString withoutBracketedParts(const QString& text) {
    QString rest;
    qsizetype begin = 0;
    while (true) {
        const qsizetype opening = text.indexOf(u'[', begin);
        // One character at least stands in the brackets: an empty pair is no bracketed part.
        const qsizetype closing = opening < 0 ? -1 : text.indexOf(u']', opening + 1);
        if (closing < 0)
            return rest.append(QStringView(text).sliced(begin));
        if (closing == opening + 1) {
            rest += QStringView(text).sliced(begin, closing - begin);
            begin = closing;
        } else {
            rest += QStringView(text).sliced(begin, opening - begin);
            rest += u' ';
            begin = closing + 1;
        }
    }
}

// By code points, not by UTF-16 units: of a mark beyond the first plane, neither half is one.
template <typename Keeps>
QString filtered(const QString& text, Keeps keeps) {
    QString kept;
    kept.reserve(text.size());
    for (const char32_t scalar : text.toUcs4()) {
        if (keeps(scalar))
            kept += QChar::fromUcs4(scalar);
    }
    return kept;
}

}  // namespace

QStringList regularFiles(const QString& folder) {
    QStringList paths;
    const QString top = QFileInfo(folder).absoluteFilePath();
    const QString unfinished = top + u'/' + workFolderName + u'/';
    QDirIterator files(top, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!hasAnyExtension(path, unfinishedExtensions) && !path.startsWith(unfinished))
            paths.append(path);
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

fs::file_time_type modificationDate(const QString& path) {
    std::error_code error;
    const fs::file_time_type date = fs::last_write_time(nativePath(path), error);
    return error ? fs::file_time_type::min() : date;
}

bool hasFinishedExtension(const QString& path, DownloadMode mode) {
    return mode == DownloadMode::audio ? hasAnyExtension(path, audioExtensions)
                                       : hasAnyExtension(path, videoExtensions);
}

bool hasExtension(const QString& path, const QString& extension) {
    const QStringView name = lastComponent(path);
    const QStringView own = name.sliced(std::min(extensionDot(name) + 1, name.size()));
    return own.compare(extension, Qt::CaseInsensitive) == 0;
}

QString nameWithoutExtension(const QString& path) {
    const QStringView name = lastComponent(path);
    return name.first(extensionDot(name)).toString();
}

QString normalizedDownloadKey(const QString& text) {
    const QString decomposed = withoutBracketedParts(text).normalized(QString::NormalizationForm_D);
    const QString plain = filtered(decomposed, [](char32_t scalar) {
        return QChar::category(scalar) != QChar::Mark_NonSpacing;
    });
    return filtered(plain.toCaseFolded(), [](char32_t scalar) {
        return QChar::isLetterOrNumber(scalar) || QChar::isMark(scalar);
    });
}

std::optional<QString> existingDownloadID(const PlaylistEntry& entry) {
    // A link to a list names the video that it begins with, too.
    if (entry.source != SourceType::youtube || entry.playlistItem != 0 || !mayNameVideo(entry.url))
        return std::nullopt;
    const QString id = videoID(entry.url).trimmed();
    if (id.isEmpty() || id.startsWith(u"http"))
        return std::nullopt;
    return id;
}

}  // namespace reelcrate
