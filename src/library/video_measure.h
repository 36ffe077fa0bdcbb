#pragma once

#include "library/ffmpeg_words.h"

#include <QList>
#include <QString>

#include <optional>

/// Tells of a video on disk what it holds, whether that plays, and whether it is there to its end.
/// Failures stand in the record that comes back.
namespace reelcrate {

class ShellRunner;
class ToolDiscovery;
struct CommandResult;

struct VideoMeasure {
    QString format;  ///< names of the container, separated by commas; empty for what is none
    QList<MediaStream> streams;
    bool pictureDecodes = false;  ///< its first frames
    bool soundDecodes = false;
    bool readToEnd = false;               ///< the container, not decoded
    double packetSeconds = 0;             ///< where its last packet ends
    std::optional<double> headerSeconds;  ///< what the file says of itself, if it does
    QString complaint;                    ///< the first error that was met

    bool hasPicture() const;
    bool hasSound() const;
};

/// Why the video is not a whole one, for the log; absent when it is. One with sound alone is, and
/// so is a silent one, but whatever it has must play. Pure.
std::optional<QString> whyNoWholeVideo(const VideoMeasure& measure);

/// Why the file is not there to its end, for the log; absent when it is. Nothing need have been
/// decoded. Pure.
std::optional<QString> whyBrokenOff(const VideoMeasure& measure);

/// Background threads: it blocks while the file's first frames are decoded and all of it is read,
/// and 180 seconds at least before that is given up. Any number of threads.
class VideoMeasurer {
public:
    VideoMeasurer(ShellRunner& shell, const ToolDiscovery& discovery);

    /// The path is absolute.
    VideoMeasure measure(const QString& path) const;

    /// Reads all packets, of a song as well, and decodes nothing: enough for whyBrokenOff().
    VideoMeasure measurePackets(const QString& path) const;

private:
    void lookAtStart(VideoMeasure& measure, const QString& path) const;
    FfmpegWords decodeStart(VideoMeasure& measure, const QString& path,
                            const QString& streams) const;
    CommandResult run(const QString& ofInput, const QString& path, const QString& output,
                      double timeLimit) const;
    FfmpegWords readToEnd(VideoMeasure& measure, const QString& path) const;

    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
};

}  // namespace reelcrate
