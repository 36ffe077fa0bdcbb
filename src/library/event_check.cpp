#include "library/event_check.h"

#include "library/finished_files.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace reelcrate {

namespace {

using Finding = CheckedFile::Finding;
using Kind = EventFile::Kind;

constexpr double sameLengthSeconds = 1.0;

std::optional<Finding> findingOf(const SongMeasure& measure) {
    if (!measure.decoded)
        return measure.decodedSeconds > 0 ? Finding::breaksOff : Finding::undecodable;
    const double header = measure.headerSeconds.value_or(measure.decodedSeconds);
    if (header - measure.decodedSeconds > headerToleranceSeconds)
        return Finding::cutOff;
    if (measure.decodedSeconds - header > headerToleranceSeconds)
        return Finding::longer;
    if (measure.decodedSeconds < shortestSongSeconds)
        return Finding::tooShort;
    if (!measure.sound)
        return Finding::silent;
    return std::nullopt;
}

/// As the video site forms them and the file names of downloads end with them; other words in
/// brackets are parts of a title.
QString videoIdentifierIn(const QString& name) {
    static const QRegularExpression form(
        QStringLiteral(R"(\[((?=[A-Za-z0-9_-]*[0-9_-])[A-Za-z0-9_-]{11})\]$)"));
    return form.match(nameWithoutExtension(name)).captured(1);
}

/// What remains of a title, without the number that a second song of a name gets.
QString titleKey(const QString& name) {
    static const QRegularExpression number(QStringLiteral(R"( \(\d+\)(?=( \[[^\[\]]*\])?$))"));
    QString title = nameWithoutExtension(name);
    return normalizedDownloadKey(title.remove(number));
}

/// The files seen so far, by all that two of one recording can have in common.
class Recordings {
public:
    /// The first file of the recording that this one holds, if it is not the first itself.
    const CheckedFile* find(const CheckedFile& file) const {
        if (const CheckedFile* same = m_bySound.value(file.soundPrint))
            return same;
        if (const CheckedFile* same = m_byIdentifier.value(videoIdentifierIn(file.file.name)))
            return same;
        const auto [begin, end] = m_byTitle.equal_range(titleKey(file.file.name));
        const auto same = std::find_if(begin, end, [&](const Titled& other) {
            return std::abs(other.seconds - file.seconds) <= sameLengthSeconds;
        });
        return same == end ? nullptr : same->first;
    }

    void add(const CheckedFile& file, const CheckedFile* first) {
        m_bySound.insert(file.soundPrint, first);
        if (const QString id = videoIdentifierIn(file.file.name); !id.isEmpty())
            m_byIdentifier.insert(id, first);
        if (const QString title = titleKey(file.file.name); !title.isEmpty())
            m_byTitle.insert(title, {first, file.seconds});
    }

private:
    struct Titled {
        const CheckedFile* first;
        double seconds;
    };

    QHash<quint64, const CheckedFile*> m_bySound;
    QHash<QString, const CheckedFile*> m_byIdentifier;
    QMultiHash<QString, Titled> m_byTitle;
};

/// The shortest name first: copies get something added.
QList<CheckedFile*> byNameLength(QList<CheckedFile>& files) {
    QList<CheckedFile*> ordered;
    for (CheckedFile& file : files)
        ordered.append(&file);
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const CheckedFile* a, const CheckedFile* b) {
                         return a->file.name.size() < b->file.name.size();
                     });
    return ordered;
}

}  // namespace

CheckedFile checkedByName(const EventFile& file) {
    CheckedFile checked{file};
    if (file.fault)
        checked.finding = Finding::fault;
    else if (file.kind == Kind::halfDownload)
        checked.finding = Finding::halfDownload;
    return checked;
}

CheckedFile checkedSong(const EventFile& file, const SongMeasure& measure) {
    CheckedFile checked = checkedByName(file);
    checked.seconds = measure.decodedSeconds;
    checked.headerSeconds = measure.headerSeconds;
    checked.soundPrint = measure.soundPrint;
    if (measure.loudness)
        checked.lufs = measure.loudness->lufs;
    if (checked.finding)
        return checked;
    checked.finding = findingOf(measure);
    if (checked.finding == Finding::undecodable || checked.finding == Finding::breaksOff)
        checked.detail = measure.complaint;
    return checked;
}

CheckedFile checkedVideo(const EventFile& file, const VideoMeasure& video,
                         const std::optional<SongMeasure>& sound) {
    CheckedFile checked = checkedByName(file);
    if (sound) {
        // Sound and picture may end a little apart; whether the file is there to its end, its
        // packets tell.
        SongMeasure measure = *sound;
        measure.headerSeconds.reset();
        checked = checkedSong(file, measure);
    } else if (!checked.finding) {
        checked.finding = Finding::silent;
    }
    checked.seconds = std::max(video.packetSeconds, checked.seconds);
    checked.headerSeconds = video.headerSeconds;
    if (checked.file.fault)
        return checked;
    if (const auto reason = whyNoWholeVideo(video)) {
        checked.finding = video.packetSeconds > 0 ? Finding::breaksOff : Finding::undecodable;
        checked.detail = *reason;
    }
    return checked;
}

void findDoubles(QList<CheckedFile>& files) {
    QHash<Kind, Recordings> seen;
    for (CheckedFile* file : byNameLength(files)) {
        if (!file->isPlayable() || file->finding)
            continue;
        Recordings& recordings = seen[file->file.kind];
        const CheckedFile* first = recordings.find(*file);
        if (first != nullptr) {
            file->finding = Finding::doubled;
            file->detail = first->file.name;
        }
        recordings.add(*file, first != nullptr ? first : file);
    }
}

void findOddLoudness(QList<CheckedFile>& files) {
    constexpr qsizetype fewest = 3;
    constexpr double remarkable = 6;
    QList<double> known;
    for (const CheckedFile& file : std::as_const(files)) {
        if (file.lufs)
            known.append(*file.lufs);
    }
    if (known.size() < fewest)
        return;
    std::sort(known.begin(), known.end());
    const double median = (known.at((known.size() - 1) / 2) + known.at(known.size() / 2)) / 2;
    for (CheckedFile& file : files) {
        if (file.lufs && std::abs(*file.lufs - median) > remarkable)
            file.offMedian = *file.lufs - median;
    }
}

CheckTotals totalsOf(const QList<CheckedFile>& files) {
    CheckTotals totals;
    for (const CheckedFile& file : files) {
        totals.songs += file.isPlayable() ? 1 : 0;
        totals.seconds += file.seconds;
        totals.needAttention += file.finding ? 1 : 0;
        totals.foreign += file.file.kind == Kind::foreign && !file.finding ? 1 : 0;
    }
    return totals;
}

}  // namespace reelcrate
