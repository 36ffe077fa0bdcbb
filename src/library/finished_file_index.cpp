#include "library/finished_file_index.h"

#include "base/text.h"
#include "library/file_names.h"
#include "library/finished_files.h"
#include "library/mp3_look.h"
#include "library/song_key.h"

#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace reelcrate {

namespace {

// In characters: a shorter key would match too many others.
constexpr qsizetype shortestKey = 6;
constexpr qsizetype shortestKeyAroundAnother = 12;
constexpr qsizetype shortestCutKey = 30;

QStringList finishedFilesNewestFirst(const QString& folder, DownloadMode mode) {
    std::vector<std::pair<std::filesystem::file_time_type, QString>> files;
    for (const QString& path : regularFiles(folder)) {
        if (hasFinishedExtension(path, mode) && QFileInfo(path).size() > 0)
            files.emplace_back(modificationDate(path), path);
    }
    std::stable_sort(files.begin(), files.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    QStringList paths;
    for (const auto& file : files)
        paths.append(file.second);
    return paths;
}

QStringList loweredNames(const QStringList& paths) {
    QStringList names;
    for (const QString& path : paths)
        names.append(nameWithoutExtension(path).toLower());
    return names;
}

std::optional<QString> usableKey(const QString& text) {
    const QString key = normalizedDownloadKey(text);
    return hasAtLeastCharacters(key, shortestKey) ? std::optional(key) : std::nullopt;
}

bool isDigitAt(const QString& text, qsizetype at) {
    return at >= 0 && at < text.size() && text.at(at).isDigit();
}

/// "track1" does not stand in "track12": that is another track.
bool containsWhole(const QString& text, const QString& part) {
    for (qsizetype at = text.indexOf(part); at >= 0; at = text.indexOf(part, at + 1)) {
        const qsizetype end = at + part.size();
        const bool cutsBefore = isDigitAt(text, at - 1) && isDigitAt(text, at);
        const bool cutsBehind = isDigitAt(text, end - 1) && isDigitAt(text, end);
        if (!cutsBefore && !cutsBehind)
            return true;
    }
    return false;
}

/// "Title [id]": the whole title stands before the brackets, as the downloader writes it.
bool endsInBrackets(const QString& name) {
    return name.endsWith(u']') && name.contains(u'[');
}

/// Whether a file of this name and key may be the song of the title with that key.
bool isOfTitle(const QString& fileName, const QString& fileKey, const QString& title) {
    if (fileKey == title)
        return true;
    // What stands in another title is another song, such as a remix of it, unless somebody has
    // named the file himself. The downloader's own names are at most cut.
    if (endsInBrackets(fileName))
        return title.startsWith(fileKey) && hasAtLeastCharacters(fileKey, shortestCutKey);
    return containsWhole(fileKey, title) ||
           (hasAtLeastCharacters(title, shortestKeyAroundAnother) && containsWhole(title, fileKey));
}

QString keyOf(const PlaylistEntry& entry) {
    return songKey(entry.url, entry.playlistItem);
}

}  // namespace

FinishedFileIndex::FinishedFileIndex(const QString& eventFolder, DownloadMode mode,
                                     const std::function<FileWriters()>& writers)
    : m_paths(finishedFilesNewestFirst(eventFolder, mode)),
      m_loweredNames(loweredNames(m_paths)),
      m_writers(writers ? writers() : FileWriters()) {
    for (const QString& path : m_paths)
        m_titleKeys.push_back(usableKey(nameWithoutExtension(path)));
}

std::optional<QString> FinishedFileIndex::existingDownloadedFile(const PlaylistEntry& entry) const {
    std::optional<qsizetype> file;
    if (!m_writers.isEmpty())
        file =
            firstFile(entry, [&](qsizetype each) { return m_writers.contains(m_paths.at(each)); });
    if (const auto id = existingDownloadID(entry); !file && id) {
        const QString needle = u'[' + id->toLower() + u']';
        file = firstFile(entry,
                         [&](qsizetype each) { return m_loweredNames.at(each).contains(needle); });
    }
    if (!file)
        file = findByTitle(entry);
    return file ? std::optional(m_paths.at(*file)) : std::nullopt;
}

/// The first of the files that are not known to be another song's, and may be a song at all.
std::optional<qsizetype> FinishedFileIndex::firstFile(const PlaylistEntry& entry,
                                                      const IsAnswer& isAnswer) const {
    const QString key = keyOf(entry);
    for (qsizetype file = 0; file < m_paths.size(); ++file) {
        if (isAnswer(file) && m_writers.value(m_paths.at(file), key) == key &&
            canBeSong(m_paths.at(file), entry.duration))
            return file;
    }
    return std::nullopt;
}

std::optional<qsizetype> FinishedFileIndex::findByTitle(const PlaylistEntry& entry) const {
    if (entry.title.trimmed().isEmpty())
        return std::nullopt;
    QStringList titles;
    for (const QString& text : {entry.title, safeOutputStem(entry.title)}) {
        const std::optional<QString> title = usableKey(text);
        if (title && !titles.contains(*title))
            titles.append(*title);
    }
    if (titles.isEmpty())
        return std::nullopt;
    return firstFile(entry, [&](qsizetype file) {
        const std::optional<QString>& fileTitle = m_titleKeys[static_cast<std::size_t>(file)];
        return fileTitle && std::any_of(titles.begin(), titles.end(), [&](const QString& title) {
                   return isOfTitle(m_loweredNames.at(file), *fileTitle, title);
               });
    });
}

}  // namespace reelcrate
