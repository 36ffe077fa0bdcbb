#pragma once

#include <QString>

/// Cuts the silence off both ends of a finished MP3 file, by the positions that its measure tells,
/// and puts the result in its place once that is known for whole. No failure harms the song.
namespace reelcrate {

class ShellRunner;
class ToolDiscovery;
struct SongMeasure;

struct TrimOutcome {
    enum class Kind {
        trimmed,  ///< its edges are not silent; perhaps they never were
        skipped,  ///< left as it was
        noMp3,    ///< left as it was: nothing else is trimmed
    };

    Kind kind = Kind::skipped;
    QString remark;      ///< for the log: why it was skipped, or what the converter met in it
    double seconds = 0;  ///< how long the song is now
};

/// The part of a song that is kept, in seconds. Pure.
struct TrimPlan {
    enum class Kind { leave, cut, silent };

    Kind kind = Kind::leave;
    double start = 0;
    double end = 0;
    bool hasChapters = false;  ///< to be shifted with it

    static TrimPlan of(const SongMeasure& measure);
    double seconds() const { return end - start; }
};

/// The command that writes the kept part of `input` with its tags and cover. Pure.
QString edgeTrimCommand(const QString& ffmpeg, const QString& input, const TrimPlan& plan,
                        const QString& output);

/// Background threads: it blocks while the converter runs, 180 seconds or half the song's length
/// more at most.
class EdgeTrimmer {
public:
    EdgeTrimmer(ShellRunner& shell, const ToolDiscovery& discovery);

    /// `measure` is of the file that lies there. While it works, a hidden file
    /// ".trim-IDENTIFIER.mp3" lies beside the song.
    TrimOutcome trim(const QString& path, const SongMeasure& measure) const;

private:
    TrimOutcome cut(const QString& path, const TrimPlan& plan, const QString& temporary) const;

    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
};

}  // namespace reelcrate
