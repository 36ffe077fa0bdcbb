#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// Makes of a downloaded video an ".mp4" that plays: leaves one that is that already, packs streams
/// that MP4 holds into it as they are, and converts what it does not hold or what players do not
/// take from it. What it made is measured before it takes the other's place.
namespace reelcrate {

class ShellRunner;
class ToolDiscovery;
class VideoMeasurer;
struct VideoMeasure;

struct Mp4Outcome {
    QString path;        ///< of the finished file; empty on failure
    QString reason;      ///< of the failure, for the log
    double seconds = 0;  ///< how long the video is
};

struct Mp4Plan {
    bool leave = false;  ///< all is well as it is
    bool copyPicture = false;
    bool copySound = false;
    bool tagsOfStream = false;  ///< as Ogg has them

    /// Pure; the path is looked at for its extension alone.
    static Mp4Plan of(const QString& path, const VideoMeasure& measure);
};

/// Pure.
QString mp4Command(const QString& ffmpeg, const QString& input, const Mp4Plan& plan,
                   const QString& output);

/// Background threads: it blocks while the video is measured, and where it is to be converted, for
/// ten minutes or ten times its length more at most.
class Mp4Finisher {
public:
    Mp4Finisher(ShellRunner& shell, const ToolDiscovery& discovery, const VideoMeasurer& measurer);

    /// The finished file lies beside the other, under its name with the extension "mp4"; the other
    /// is removed. On failure it stays as it was. While it works, a hidden file
    /// ".mp4-IDENTIFIER.mp4" lies there, too.
    Mp4Outcome finish(const QString& path) const;

private:
    std::optional<QString> whyNotMade(const QString& path, const VideoMeasure& source,
                                      const Mp4Plan& plan, const QString& output) const;

    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
    const VideoMeasurer& m_measurer;
};

}  // namespace reelcrate
