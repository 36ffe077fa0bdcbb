#include "download/song_finish.h"

#include "base/duration_text.h"
#include "download/fetched_files.h"
#include "library/finished_files.h"
#include "library/mp3_look.h"
#include "library/replay_gain.h"
#include "records/row_texts.h"

#include <QFileInfo>

#include <cmath>

namespace reelcrate {

namespace {

constexpr double sameLengthSeconds = 1.0;
constexpr double sourceToleranceSeconds = 0.5;
constexpr double listedToleranceSeconds = 1.5;  // what is listed is in whole seconds

QString inSeconds(double seconds) {
    return QString::number(seconds, 'f', 1) + QStringLiteral(" s");
}

/// A line of the log that says which file it is about.
QString about(const QString& file, const QString& remark) {
    return QFileInfo(file).fileName() + QStringLiteral(": ") + remark;
}

QString savedText(const EventTarget& target) {
    return QStringLiteral("Saved to ") + QFileInfo(target.folder).fileName();
}

QString savedText(const TrimOutcome& trim, const EventTarget& target) {
    switch (trim.kind) {
        case TrimOutcome::Kind::trimmed:
            return row_text::trimmed;
        case TrimOutcome::Kind::skipped:
            return row_text::trimSkipped;
        case TrimOutcome::Kind::noMp3:
            break;
    }
    return savedText(target);
}

/// Of a song that is going to be cut, which decodes all that is kept of it: once is enough.
std::optional<SongMeasure> endsToCut(const QString& file) {
    auto ends = hasExtension(file, QStringLiteral("mp3")) ? measureEnds(file) : std::nullopt;
    const bool isToBeCut =
        ends && !whyNoWholeSong(*ends) && TrimPlan::of(*ends).kind == TrimPlan::Kind::cut;
    return isToBeCut ? ends : std::nullopt;
}

}  // namespace

SongFinisher::SongFinisher(ShellRunner& shell, const ToolDiscovery& discovery,
                           EventLibrary& library)
    : m_library(library),
      m_measurer(shell, discovery),
      m_videoMeasurer(shell, discovery),
      m_trimmer(shell, discovery),
      m_mp4Finisher(shell, discovery, m_videoMeasurer) {}

std::optional<SongFinisher::Prepared> SongFinisher::prepare(const QString& file,
                                                            const EventTarget& target,
                                                            const Demands& demands,
                                                            const Log& log) const {
    return target.mode == DownloadMode::audio ? prepareSong(file, target, demands, log)
                                              : prepareVideo(file, target, demands, log);
}

std::optional<SongFinisher::Prepared> SongFinisher::prepareSong(const QString& file,
                                                                const EventTarget& target,
                                                                const Demands& demands,
                                                                const Log& log) const {
    const auto ends = demands.loudness == MeasureLoudness::no ? endsToCut(file) : std::nullopt;
    const auto measure = ends ? ends : wholeSong(file, demands.loudness, log);
    if (!measure)
        return std::nullopt;
    const double expected = demands.sourceSeconds.value_or(measure->decodedSeconds);
    if (std::abs(expected - measure->decodedSeconds) > sourceToleranceSeconds) {
        log(about(file, QStringLiteral("%1 of %2 were converted.")
                            .arg(inSeconds(measure->decodedSeconds), inSeconds(expected))));
        return std::nullopt;
    }
    const auto broken = brokenOff(file, measure->decodedSeconds, demands.listedLength);
    const TrimOutcome trim = m_trimmer.trim(file, *measure);
    if (!trim.remark.isEmpty() && trim.remark != measure->complaint)
        log(about(file, trim.remark));
    const bool isLookedAt = !ends || trim.kind == TrimOutcome::Kind::trimmed;
    if (!isLookedAt && !wholeSong(file, demands.loudness, log))
        return std::nullopt;
    // That of the whole, edges included, which are too quiet to count: it is the cut song's to a
    // tenth of a decibel from ten seconds on.
    const QString failure = measure->loudness && hasExtension(file, QStringLiteral("mp3"))
                                ? tagLoudness(file, *measure->loudness)
                                : QString();
    if (!failure.isEmpty())
        log(about(file, QStringLiteral("its loudness is not in its tags: ") + failure));
    return Prepared{file, savedText(trim, target), measure->decodedSeconds, trim.seconds, broken};
}

/// Absent unless it is one.
std::optional<SongMeasure> SongFinisher::wholeSong(const QString& file, MeasureLoudness loudness,
                                                   const Log& log) const {
    SongMeasure measure = m_measurer.measure(file, loudness);
    if (const auto reason = whyNoWholeSong(measure)) {
        log(about(file, *reason));
        return std::nullopt;
    }
    if (!measure.complaint.isEmpty())
        log(about(file, measure.complaint));
    return measure;
}

std::optional<SongFinisher::Prepared> SongFinisher::prepareVideo(const QString& file,
                                                                 const EventTarget& target,
                                                                 const Demands& demands,
                                                                 const Log& log) const {
    const Mp4Outcome video = m_mp4Finisher.finish(file);
    if (!video.reason.isEmpty())
        log(about(file, video.reason));
    if (video.path.isEmpty())
        return std::nullopt;
    return Prepared{video.path, savedText(target), video.seconds, video.seconds,
                    brokenOff(video.path, video.seconds, demands.listedLength)};
}

/// What is as long as listed needs no second look.
std::optional<SongFinisher::BrokenOff> SongFinisher::brokenOff(const QString& file, double seconds,
                                                               const QString& listedLength) const {
    const auto listed = secondsOfDuration(listedLength);
    const QString fetched = fetchedFor(file);
    if (fetched.isEmpty() || (listed && std::abs(*listed - seconds) <= listedToleranceSeconds))
        return std::nullopt;
    const VideoMeasure measure = m_videoMeasurer.measurePackets(fetched);
    const auto reason = whyBrokenOff(measure);
    return reason ? std::optional(BrokenOff{*reason, measure.headerSeconds}) : std::nullopt;
}

std::optional<QString> SongFinisher::enter(const QString& file, const QString& songKey,
                                           const EventTarget& target, const Log& log) const {
    const Arrival arrival =
        m_library.enter(file, songKey, target.folder,
                        [this](const QString& own, const QString& there, bool isOfThisRun) {
                            return isSameSong(own, there, isOfThisRun);
                        });
    switch (arrival.outcome) {
        case Arrival::Outcome::wasThere:
            log(about(file, QStringLiteral("The song is there already.")));
            break;
        case Arrival::Outcome::notPlaced:
            log(about(file, arrival.reason));
            return std::nullopt;
        case Arrival::Outcome::entered:
            break;
    }
    return arrival.path;
}

SongFinisher::SourceLook SongFinisher::lookAtSource(const QString& source, const Log& log) const {
    const SongMeasure measure = m_measurer.measure(source);
    if (measure.complaint.isEmpty())
        return {};
    if (measure.decodedSeconds <= 0) {
        log(about(source,
                  QStringLiteral("What was downloaded is no song (%1).").arg(measure.complaint)));
        return {true, std::nullopt};
    }
    log(about(source, QStringLiteral("The source is damaged (%1); what can be heard of it is "
                                     "converted.")
                          .arg(measure.complaint)));
    return {true, measure.headerSeconds.value_or(measure.decodedSeconds)};
}

SongFinisher::Look SongFinisher::lookAt(const QString& file, DownloadMode mode) const {
    if (mode == DownloadMode::video) {
        const VideoMeasure video = m_videoMeasurer.measure(file);
        return {whyNoWholeVideo(video), video.packetSeconds};
    }
    const SongMeasure song = m_measurer.measure(file);
    return {whyNoWholeSong(song), song.decodedSeconds};
}

/// Of what came in this run, different links are known for different songs: as long is not enough.
bool SongFinisher::isSameSong(const QString& file, const QString& there, bool isOfThisRun) const {
    if (isOfThisRun) {
        const QString own = m_measurer.soundHash(file);
        return !own.isEmpty() && own == m_measurer.soundHash(there);
    }
    const auto look = [this](const QString& path) {
        return lookAt(path, hasFinishedExtension(path, DownloadMode::video) ? DownloadMode::video
                                                                            : DownloadMode::audio);
    };
    const Look own = look(file);
    const Look other = look(there);
    return !own.fault && !other.fault && std::abs(own.seconds - other.seconds) <= sameLengthSeconds;
}

}  // namespace reelcrate
