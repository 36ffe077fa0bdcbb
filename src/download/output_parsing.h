#pragma once

#include "records/download_item.h"
#include "records/download_mode.h"

#include <QList>
#include <QString>

#include <optional>
#include <variant>

/// What the output of a download says: where the file is, and what to show on the row. Pure
/// functions of pieces of output as they arrive, each holding one line, several, or a part of one.
/// Any thread; text that says nothing known is no failure.
namespace reelcrate {

/// The path that the last telling line of the piece names, as it is printed.
std::optional<QString> outputPath(const QString& piece);

/// The row's text for the piece: the stage that its last line tells, or that line, shortened.
QString downloadDetail(const QString& piece, DownloadMode mode);

/// The tool's own percentage.
struct RealProgress {
    double progress = 0;  ///< of the whole row; never below what it had
    QString detail;

    friend bool operator==(const RealProgress&, const RealProgress&) = default;
};

/// A stage without a percentage: the row's progress crawls to the target.
struct StageBegun {
    QString detail;
    double target = 0;
    double durationSeconds = 0;

    friend bool operator==(const StageBegun&, const StageBegun&) = default;
};

struct DetailOnly {
    QString detail;

    friend bool operator==(const DetailOnly&, const DetailOnly&) = default;
};

/// What a piece of output does to its row; the first alternative: nothing.
using OutputEffect = std::variant<std::monostate, RealProgress, StageBegun, DetailOnly>;

/// Of `row` the id, title, source and progress count. `piece` is trimmed and not empty.
OutputEffect outputEffect(const DownloadItem& row, DownloadMode mode, const QString& piece);

/// What a line of output says that the tool does about files.
struct FileNews {
    enum class Kind {
        downloads,      ///< a file, under its final name once it is whole
        converts,       ///< into a file, straight under its final name
        wasThere,       ///< a file, already
        leavesOutPart,  ///< of the stream, since it is not to be had: the song has a hole
        hasConverted,   ///< all of it
        addsTags,       ///< to a file, beside it; the cover comes after that
        nextItem,       ///< the link stands for several, and what follows is of another
    };

    Kind kind = Kind::downloads;
    QString path;  ///< with the first three

    friend bool operator==(const FileNews&, const FileNews&) = default;
};

/// Reads a stream of pieces, also where a line is split between two. One thread at a time.
class OutputReader {
public:
    /// Takes the next piece, with its line breaks. Returns what its lines say, in their order; a
    /// path in a line that is not complete yet may be a beginning of what it will be.
    QList<FileNews> read(const QString& piece);

    /// The link may be private or ask for a login.
    bool mentionsLogin() const { return m_mentionsLogin; }

    /// Of any item.
    bool leavesOutParts() const { return m_leavesOutParts; }

private:
    QList<FileNews> readBlock(const QString& text);

    QString m_unfinishedLine;
    bool m_mentionsLogin = false;
    bool m_leavesOutParts = false;
};

}  // namespace reelcrate
