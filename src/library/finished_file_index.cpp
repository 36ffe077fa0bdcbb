#include "library/finished_file_index.h"

#include "base/text.h"
#include "library/file_names.h"
#include "library/finished_files.h"

#include <QSet>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace reelcrate {

namespace {

// In characters: a shorter key would match too many others.
constexpr qsizetype shortestKey = 6;
constexpr qsizetype shortestKeyAroundAnother = 12;
static_assert(shortestKey >= KeyIndex::shortest);

QStringList finishedFilesNewestFirst(const QString& folder, DownloadMode mode) {
    std::vector<std::pair<std::filesystem::file_time_type, QString>> files;
    for (const QString& path : regularFiles(folder)) {
        if (hasFinishedExtension(path, mode))
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

bool isBracket(QChar c) {
    return c == u'[' || c == u']';
}

// Every text that stands between an opening bracket and the closing one that comes next.
QStringList bracketedTexts(const QString& name) {
    QStringList texts;
    qsizetype opening = -1;
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (!isBracket(name.at(i)))
            continue;
        if (name.at(i) == u']' && opening >= 0)
            texts.append(name.sliced(opening + 1, i - opening - 1));
        opening = name.at(i) == u'[' ? i : -1;
    }
    return texts;
}

QHash<QString, qsizetype> filesByBracketedText(const QStringList& names) {
    QHash<QString, qsizetype> files;
    for (qsizetype file = 0; file < names.size(); ++file) {
        for (const QString& text : bracketedTexts(names.at(file))) {
            if (!files.contains(text))
                files.insert(text, file);
        }
    }
    return files;
}

std::optional<QString> usableKey(const QString& text) {
    const QString key = normalizedDownloadKey(text);
    return hasAtLeastCharacters(key, shortestKey) ? std::optional(key) : std::nullopt;
}

// Of files with the same key only the first can be the answer, so that it alone is indexed.
std::vector<QString> distinctKeys(const QStringList& paths, std::vector<qsizetype>& fileByKey) {
    std::vector<QString> keys;
    QSet<QString> seen;
    for (qsizetype file = 0; file < paths.size(); ++file) {
        const std::optional<QString> key = usableKey(nameWithoutExtension(paths.at(file)));
        if (!key || seen.contains(*key))
            continue;
        seen.insert(*key);
        keys.push_back(*key);
        fileByKey.push_back(file);
    }
    return keys;
}

}  // namespace

FinishedFileIndex::FinishedFileIndex(const QString& eventFolder, DownloadMode mode)
    : m_paths(finishedFilesNewestFirst(eventFolder, mode)),
      m_loweredNames(loweredNames(m_paths)),
      m_fileByBracketed(filesByBracketedText(m_loweredNames)),
      m_keys(distinctKeys(m_paths, m_fileByKey)) {}

std::optional<QString> FinishedFileIndex::existingDownloadedFile(const PlaylistEntry& entry) const {
    if (m_paths.isEmpty())
        return std::nullopt;
    std::optional<qsizetype> file = findByIdentifier(entry);
    if (!file)
        file = findByTitle(entry);
    return file ? std::optional(m_paths.at(*file)) : std::nullopt;
}

std::optional<qsizetype> FinishedFileIndex::findByIdentifier(const PlaylistEntry& entry) const {
    const std::optional<QString> id = existingDownloadID(entry);
    if (!id)
        return std::nullopt;
    const QString lowered = id->toLower();
    if (std::none_of(lowered.begin(), lowered.end(), isBracket)) {
        const auto found = m_fileByBracketed.constFind(lowered);
        return found == m_fileByBracketed.cend() ? std::nullopt : std::optional(*found);
    }
    const QString needle = u'[' + lowered + u']';
    const auto found = std::find_if(m_loweredNames.begin(), m_loweredNames.end(),
                                    [&](const QString& name) { return name.contains(needle); });
    return found == m_loweredNames.end() ? std::nullopt
                                         : std::optional(found - m_loweredNames.begin());
}

std::optional<qsizetype> FinishedFileIndex::findByTitle(const PlaylistEntry& entry) const {
    QStringList keys;
    for (const QString& text : {entry.title, safeOutputStem(entry.title)}) {
        const std::optional<QString> key = usableKey(text);
        if (key && !keys.contains(*key))
            keys.append(*key);
    }
    std::optional<std::size_t> first;
    const auto consider = [&](std::optional<std::size_t> found) {
        if (found && (!first || *found < *first))
            first = found;
    };
    for (const QString& key : std::as_const(keys)) {
        consider(m_keys.firstContaining(key));
        if (hasAtLeastCharacters(key, shortestKeyAroundAnother))
            consider(m_keys.firstContainedIn(key));
    }
    return first ? std::optional(m_fileByKey[*first]) : std::nullopt;
}

}  // namespace reelcrate
