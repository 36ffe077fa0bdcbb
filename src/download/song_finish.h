#pragma once

#include "download/edge_trim.h"
#include "download/mp4_finish.h"
#include "library/event_library.h"
#include "library/song_measure.h"
#include "library/video_measure.h"

#include <QString>

#include <functional>
#include <optional>

/// What becomes of a file that the downloader has finished: it is looked at, trimmed, tagged or
/// made an MP4, and enters the event folder if it is a whole song. Background threads: each step
/// blocks. Nothing here fails a program: what is no song stays where it is, and the log says why.
namespace reelcrate {

class ShellRunner;
class ToolDiscovery;

class SongFinisher {
public:
    using Log = std::function<void(const QString& line)>;

    /// What was fetched and is not there to its end. Where nobody has said how long a transfer is,
    /// a connection that is lost looks like its end.
    struct BrokenOff {
        QString reason;                     ///< where it ends, for the log
        std::optional<double> toldSeconds;  ///< how long its header says that it is

        friend bool operator==(const BrokenOff&, const BrokenOff&) = default;
    };

    /// A file that may enter, unless it is made of what broke off.
    struct Prepared {
        QString path;
        QString detail;                ///< the complete row's text
        double downloadedSeconds = 0;  ///< before its silent edges were cut
        double playingSeconds = 0;     ///< as it is now
        std::optional<BrokenOff> brokenOff = {};
    };

    /// What a look at a file of the event folder tells.
    struct Look {
        std::optional<QString> fault;  ///< why it is no whole song or video; absent when it is one
        double seconds = 0;            ///< how long it is, if it is whole
    };

    SongFinisher(ShellRunner& shell, const ToolDiscovery& discovery, EventLibrary& library);

    /// What is asked of a song beside that it is whole.
    struct Demands {
        std::optional<double> sourceSeconds;             ///< where known: it has to be as long
        MeasureLoudness loudness = MeasureLoudness::no;  ///< and written into its tags
        QString listedLength;                            ///< such as 3:45; may be empty
    };

    /// Absent when the file is no whole song or video.
    std::optional<Prepared> prepare(const QString& file, const EventTarget& target,
                                    const Demands& demands, const Log& log) const;

    /// The path in the event folder of the prepared file, or of the same song that was there
    /// already. Absent when it cannot be moved there.
    std::optional<QString> enter(const QString& file, const QString& songKey,
                                 const EventTarget& target, const Log& log) const;

    Look lookAt(const QString& file, DownloadMode mode) const;

    /// What a source is worth that was not converted.
    struct SourceLook {
        bool isDamaged = false;         ///< somewhere, or throughout
        std::optional<double> seconds;  ///< of a damaged one of which something can be heard
    };

    /// The log says what is damaged.
    SourceLook lookAtSource(const QString& source, const Log& log) const;

private:
    std::optional<Prepared> prepareSong(const QString& file, const EventTarget& target,
                                        const Demands& demands, const Log& log) const;
    std::optional<Prepared> prepareVideo(const QString& file, const EventTarget& target,
                                         const Demands& demands, const Log& log) const;
    std::optional<SongMeasure> wholeSong(const QString& file, MeasureLoudness loudness,
                                         const Log& log) const;
    std::optional<BrokenOff> brokenOff(const QString& file, double seconds,
                                       const QString& listedLength) const;
    bool isSameSong(const QString& file, const QString& there, bool isOfThisRun) const;

    EventLibrary& m_library;
    const SongMeasurer m_measurer;
    const VideoMeasurer m_videoMeasurer;
    const EdgeTrimmer m_trimmer;
    const Mp4Finisher m_mp4Finisher;
};

}  // namespace reelcrate
