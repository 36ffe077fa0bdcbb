#include "library/folder_check.h"

#include "library/replay_gain.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace reelcrate {

namespace {

using Finding = CheckedFile::Finding;
using Kind = EventFile::Kind;

/// The positions of the files to decode, the largest first, so that none that takes long is left
/// for the end, when the other processors have nothing more to do.
std::vector<qsizetype> workOrder(const QList<CheckedFile>& files, const QDir& folder) {
    std::vector<std::pair<qint64, qsizetype>> sizes;
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (files.at(i).isPlayable() && !files.at(i).finding)
            sizes.emplace_back(-QFileInfo(folder.filePath(files.at(i).file.name)).size(), i);
    }
    std::sort(sizes.begin(), sizes.end());
    std::vector<qsizetype> order;
    order.reserve(sizes.size());
    for (const auto& [size, position] : sizes)
        order.push_back(position);
    return order;
}

}  // namespace

FolderCheck::FolderCheck(ShellRunner& shell, const ToolDiscovery& discovery,
                         MeasureLoudness loudness)
    : m_loudness(loudness), m_songs(shell, discovery), m_videos(shell, discovery) {}

CheckedFile FolderCheck::checked(const EventFile& file, const QString& path) const {
    if (QFileInfo(path).size() == 0) {
        CheckedFile empty = checkedByName(file);
        empty.finding = Finding::empty;
        return empty;
    }
    if (file.kind == Kind::song) {
        SongMeasure song = m_songs.measure(path, m_loudness);
        if (m_loudness == MeasureLoudness::no)
            song.loudness = taggedLoudness(path);
        return checkedSong(file, song);
    }
    const VideoMeasure video = m_videos.measure(path);
    std::optional<SongMeasure> sound;
    if (video.hasSound())
        sound = m_songs.measure(path, m_loudness);
    return checkedVideo(file, video, sound);
}

QList<CheckedFile> FolderCheck::check(const QString& folder, const std::stop_token& stop,
                                      const Progress& progress) const {
    const QDir top(folder);
    QList<CheckedFile> files;
    for (const EventFile& file : eventFiles(folder))
        files.append(checkedByName(file));
    const std::vector<qsizetype> order = workOrder(files, top);
    const auto all = static_cast<qsizetype>(order.size());
    std::atomic<size_t> next = 0;
    std::atomic<qsizetype> done = 0;
    CheckedFile* const records = files.data();
    const auto work = [&] {
        for (size_t i = next++; i < order.size() && !stop.stop_requested(); i = next++) {
            CheckedFile& record = records[order[i]];
            record = checked(record.file, top.absoluteFilePath(record.file.name));
            progress(++done, all);
        }
    };
    progress(0, all);
    {
        std::vector<std::jthread> workers;
        const size_t processors = std::max(1U, std::thread::hardware_concurrency());
        while (workers.size() < std::min(processors, order.size()))
            workers.emplace_back(work);
    }
    findDoubles(files);
    findOddLoudness(files);
    return files;
}

}  // namespace reelcrate
