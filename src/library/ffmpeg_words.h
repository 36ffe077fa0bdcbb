#pragma once

#include <QList>
#include <QString>

#include <optional>

/// What ffmpeg says on standard error, told with `-loglevel level+info`, of the file that it reads.
/// Pure functions; any thread. What is not said is absent.
namespace reelcrate {

struct MediaStream {
    enum class Kind { picture, cover, sound, other };

    Kind kind = Kind::other;
    QString codec;  ///< in ffmpeg's short name, such as "h264"

    friend bool operator==(const MediaStream&, const MediaStream&) = default;
};

struct FfmpegWords {
    std::optional<double> headerSeconds;  ///< the length that the file itself tells
    QString format;                       ///< names of the container, separated by commas
    QList<MediaStream> streams;           ///< of the file that is read
    bool hasChapters = false;             ///< so has it
    QString complaint;                    ///< the first error, otherwise empty
    bool cutOff = false;                  ///< the file ends before its content does
    bool writeFailed = false;             ///< whatever the exit status
};

FfmpegWords readFfmpegWords(const QString& errors);

}  // namespace reelcrate
