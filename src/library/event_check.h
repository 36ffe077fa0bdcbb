#pragma once

#include "library/event_files.h"
#include "library/song_measure.h"
#include "library/video_measure.h"

#include <QList>
#include <QString>

#include <optional>

/// What is to be said of the files of an event folder after each of its songs was decoded. Pure
/// functions; any thread; none fails.
namespace reelcrate {

struct CheckedFile {
    enum class Finding {
        fault,        ///< see the file's own
        empty,        ///< no byte in it
        undecodable,  ///< `detail` is what the decoder says
        breaksOff,    ///< cannot be read to its end; `detail` likewise
        cutOff,       ///< less decodes than its header tells
        longer,       ///< more does, so that a player may stop too early
        tooShort,     ///< less than a tenth of a second
        silent,       ///< nothing above -55 dB
        doubled,      ///< the same recording as the file named by `detail`
        halfDownload,
    };

    EventFile file;
    std::optional<Finding> finding = std::nullopt;  ///< absent where all is well
    QString detail = {};
    double seconds = 0;  ///< what decodes
    std::optional<double> headerSeconds = std::nullopt;
    quint64 soundPrint = 0;
    std::optional<double> lufs = std::nullopt;  ///< its loudness, where it is known
    /// By how many LU it is louder than the middle song; absent where that is not remarkable.
    std::optional<double> offMedian = std::nullopt;

    bool isPlayable() const {
        return file.kind == EventFile::Kind::song || file.kind == EventFile::Kind::video;
    }
};

/// Of a file as it was listed, before anything was decoded.
CheckedFile checkedByName(const EventFile& file);

CheckedFile checkedSong(const EventFile& file, const SongMeasure& measure);

/// `sound` is what the video's sound decodes to, from start to end; absent when it has none.
CheckedFile checkedVideo(const EventFile& file, const VideoMeasure& video,
                         const std::optional<SongMeasure>& sound);

/// Names the same recording among the files that are well otherwise: the same sound; one video's
/// identifier in both names; or one title and a length within a second. Songs are compared with
/// songs, videos with videos. The one with the shortest name is what the others double.
void findDoubles(QList<CheckedFile>& files);

/// Marks the playable files that stand more than 6 LU off the median of those whose loudness is
/// known. Of fewer than three nothing is told.
void findOddLoudness(QList<CheckedFile>& files);

/// What is there in all.
struct CheckTotals {
    qsizetype songs = 0;  ///< videos included
    double seconds = 0;
    qsizetype needAttention = 0;
    qsizetype foreign = 0;

    bool isAllWell() const { return songs > 0 && needAttention == 0; }
};

CheckTotals totalsOf(const QList<CheckedFile>& files);

}  // namespace reelcrate
