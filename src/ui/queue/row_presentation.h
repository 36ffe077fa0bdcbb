#pragma once

#include "records/download_item.h"

#include <QColor>
#include <QString>

#include <optional>

/// How a row of the queue shows itself: its texts, its colours and the one thing that it offers to
/// do, all told from the row alone. Symbols go by the names of system symbols. Pure functions; any
/// thread.
namespace reelcrate {

/// What a row shows is cut to so many UTF-16 units before it is laid out, which takes long for long
/// texts; what is read at leisure, to so many more.
constexpr qsizetype longestShownText = 300;
constexpr qsizetype longestReadText = 2000;

/// The text, or its beginning with an ellipsis.
QString shortened(const QString& text, qsizetype most);

/// The row's title, or its link while it has none; always one line.
QString queueRowTitle(const DownloadItem& item);
/// The same, to be read at leisure.
QString queueRowWholeTitle(const DownloadItem& item);

/// Why the row needs attention, whole; empty when it does not.
QString queueRowError(const DownloadItem& item);

/// The status window's first line.
QString queueStatusHeadline(const DownloadItem& item);
QColor queueDetailColor(const DownloadItem& item);

/// The status window's second line, if any: a complete row's note, where it has one.
std::optional<QString> queueStatusSubtitle(const DownloadItem& item);

/// What the note is about, to be read at leisure; empty for a row without one.
QString queueRowNoteHelp(const DownloadItem& item);

QString queueStatusIcon(const DownloadItem& item);

/// The small word beside the row's source.
QString queueStatusLabel(const DownloadItem& item);
QColor queueStatusLabelColor(const DownloadItem& item);

/// The bar at the row's leading edge.
QColor queueAccentColor(const DownloadItem& item, bool selected);

/// A gradient from the top-leading to the bottom-trailing corner.
struct QueueStatusBackground {
    QColor from;
    QColor to;

    friend bool operator==(const QueueStatusBackground&, const QueueStatusBackground&) = default;
};

QueueStatusBackground queueStatusBackground(QueueStatus status);
QColor queueStatusShadowColor(QueueStatus status);
QColor queueStatusStrokeColor(QueueStatus status);

/// What the control at the row's trailing end does.
enum class RowAction {
    busy,       ///< nothing: it shows that work is under way
    reveal,     ///< shows the finished file
    readAgain,  ///< reads the link once more
    tryAgain,   ///< downloads once more
    download,
};

/// `shouldRetryInfo` tells of a failed row whether its link has still to be read.
RowAction queueRowAction(const DownloadItem& item, bool shouldRetryInfo);

/// Empty for a busy row, which has no button.
QString rowActionSymbol(RowAction action);
QString rowActionHelp(RowAction action);

/// Whether a press does anything.
bool rowActionEnabled(RowAction action, bool canDownload);

/// Whether work on the row lifts its card above the others.
bool rowIsRaised(const DownloadItem& item);

/// The row as a screen reader says it.
QString rowAccessibleName(const DownloadItem& item);
/// What has no place in the name: all of a title that is cut, and the whole error.
QString rowAccessibleDescription(const DownloadItem& item);

}  // namespace reelcrate
