#include "library/event_library.h"

#include "library/file_names.h"
#include "library/place_file.h"

#include <QDir>
#include <QFileInfo>

namespace reelcrate {

namespace {

using Outcome = Arrival::Outcome;

// Somebody who has so many songs of one name has made them by a fault.
constexpr int mostOfOneName = 999;

}  // namespace

QList<std::optional<QString>> EventLibrary::existingDownloadedFiles(
    const QList<PlaylistEntry>& entries, const EventTarget& target) const {
    const FinishedFileIndex index(target.folder, target.mode, [this] { return writers(); });
    QList<std::optional<QString>> files;
    files.reserve(entries.size());
    for (const PlaylistEntry& entry : entries)
        files.append(index.existingDownloadedFile(entry));
    return files;
}

FileWriters EventLibrary::writers() const {
    const std::lock_guard lock(m_mutex);
    FileWriters copy = m_writers;
    // One that is shared would be read by its owner's thread while others write to it.
    copy.detach();
    return copy;
}

void EventLibrary::distrust(const QString& path) {
    const std::lock_guard lock(m_mutex);
    m_writers.insert(path, QString());  // no song's key
}

std::optional<QString> EventLibrary::writerOf(const QString& path) const {
    const std::lock_guard lock(m_mutex);
    const auto writer = m_writers.constFind(path);
    return writer == m_writers.cend() ? std::nullopt : std::optional(*writer);
}

/// Nobody learns whose songs there are between the two steps: who sees the file knows its writer.
Placement EventLibrary::placeAs(const QString& file, const QString& path, const QString& songKey) {
    const std::lock_guard lock(m_mutex);
    Placement placement = placeFile(file, path);
    if (placement.outcome == Placement::Outcome::placed)
        m_writers.insert(path, songKey);
    return placement;
}

Arrival EventLibrary::enter(const QString& file, const QString& songKey, const QString& eventFolder,
                            const IsSameSong& isSameSong) {
    const QDir folder(QFileInfo(eventFolder).absoluteFilePath());
    const QString name = visibleFileName(QFileInfo(file).fileName());
    if (const QString reason = writeThrough(file); !reason.isEmpty())
        return {Outcome::notPlaced, {}, reason};
    for (int number = 1; number <= mostOfOneName; ++number) {
        const QString path = folder.filePath(number == 1 ? name : numberedFileName(name, number));
        const Placement placement = placeAs(file, path, songKey);
        if (placement.outcome == Placement::Outcome::failed)
            return {Outcome::notPlaced, {}, placement.reason};
        if (placement.outcome == Placement::Outcome::placed)
            return {Outcome::entered, path, {}};
        const auto writer = writerOf(path);
        if (writer == songKey || isSameSong(file, path, writer.has_value()))
            return {Outcome::wasThere, path, {}};
    }
    return {Outcome::notPlaced, {}, QStringLiteral("There are too many songs of this name.")};
}

}  // namespace reelcrate
