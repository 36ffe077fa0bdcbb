#include "ui/queue/row_presentation.h"

#include "base/duration_text.h"
#include "queue/links.h"
#include "records/progress_text.h"
#include "records/row_texts.h"
#include "theme/tech_theme.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace reelcrate {

namespace {

using namespace Qt::StringLiterals;

struct StatusLook {
    QLatin1String headline;  // where the detail tells nothing better
    QLatin1String icon;
    QColor labelColor;
    QColor headlineColor;
};

QColor amber() {
    return rgb(0.55, 0.36, 0.06);
}

/// How a row looks whose link is not being read.
const StatusLook& lookOf(QueueStatus status) {
    // In the order of the enumeration.
    static const std::array looks{
        StatusLook{"Ready to Download"_L1, "arrow.down.circle.fill"_L1, TechTheme::queueMuted,
                   TechTheme::queueText},
        StatusLook{"Waiting to Download"_L1, "clock.fill"_L1, TechTheme::queueMuted,
                   TechTheme::queueText},
        StatusLook{"Downloading"_L1, "bolt.fill"_L1, TechTheme::gold, amber()},
        StatusLook{"Complete"_L1, "checkmark.circle.fill"_L1, TechTheme::queueGreen,
                   rgb(0.10, 0.47, 0.25)},
        StatusLook{"Needs Attention"_L1, "exclamationmark.triangle.fill"_L1, TechTheme::queueOrange,
                   rgb(0.60, 0.24, 0.10)},
    };
    return looks.at(static_cast<std::size_t>(status));
}

struct TextRule {
    QLatin1String detail;
    QLatin1String text;
};

const QString noteSign = QStringLiteral("\u26A0 ");

// By a part of the lower-cased detail; the first that applies decides.
constexpr std::array completeHeadlines{
    TextRule{"already downloaded"_L1, "Already Downloaded"_L1},
    TextRule{"trimmed"_L1, "Saved & Trimmed"_L1},
    TextRule{"silence trim skipped"_L1, "Saved"_L1},
};

// By the whole detail.
constexpr std::array runningSubtitles{
    TextRule{row_text::preparingSong, "Finding the best source"_L1},
    TextRule{row_text::preparingVideo, "Finding the best video source"_L1},
    TextRule{row_text::downloadingSong, "Getting the audio file"_L1},
    TextRule{row_text::downloadingVideo, "Getting the video file"_L1},
    TextRule{row_text::examiningSong, "Checking start/end silence"_L1},
    TextRule{row_text::trimmingSong, "Removing silent edges"_L1},
    TextRule{row_text::savingSong, "Writing final file"_L1},
    TextRule{row_text::savingVideo, "Writing final video"_L1},
};

QString completeHeadline(const DownloadItem& item) {
    const QString lowered = item.detail.toLower();
    for (const TextRule& rule : completeHeadlines) {
        if (lowered.contains(rule.detail))
            return rule.text;
    }
    return lookOf(item.status).headline;
}

std::optional<QString> runningSubtitle(const QString& detail) {
    for (const TextRule& rule : runningSubtitles) {
        if (detail == rule.detail)
            return rule.text;
    }
    return std::nullopt;
}

QString completeSubtitle(const QString& detail) {
    return detail.toLower().contains("trimmed"_L1) ? QStringLiteral("Silent start/end removed")
                                                   : QStringLiteral("Ready in folder");
}

QString readingSubtitle(const DownloadItem& item, const QString& detail) {
    const QString lowered = detail.toLower();
    if (lowered.contains("trying again"_L1) || lowered.contains("temporary read issue"_L1))
        return detail;
    return playlistLike(item.url, item.source) ? QStringLiteral("Reading playlist songs")
                                               : QStringLiteral("Loading song info");
}

struct WindowColors {
    QueueStatusBackground background;
    QColor shadow;
    QColor stroke;
};

WindowColors windowColors(QueueStatus status) {
    switch (status) {
        case QueueStatus::failed:
            return {{rgb(1.0, 0.93, 0.86), rgb(0.94, 0.82, 0.72)},
                    rgb(0.60, 0.24, 0.10, 0.14),
                    rgb(0.80, 0.40, 0.20, 0.42)};
        case QueueStatus::complete:
            return {{rgb(0.93, 0.98, 0.94), rgb(0.80, 0.92, 0.84)},
                    rgb(0.20, 0.56, 0.30, 0.16),
                    rgb(0.36, 0.70, 0.44, 0.45)};
        case QueueStatus::waiting:
        case QueueStatus::queued:
        case QueueStatus::running:
            break;
    }
    return {{white(0.94), rgb(0.94, 0.91, 0.84)},
            faded(TechTheme::gold, 0.14),
            faded(TechTheme::gold, 0.42)};
}

struct ActionLook {
    QLatin1String symbol;
    QLatin1String help;
};

// In the order of the enumeration.
constexpr std::array actionLooks{
    ActionLook{{}, "Loading song info"_L1},
    ActionLook{"magnifyingglass"_L1, "Show downloaded file"_L1},
    ActionLook{"arrow.clockwise"_L1, "Read link again"_L1},
    ActionLook{"arrow.clockwise"_L1, "Try download again"_L1},
    ActionLook{"arrow.down"_L1, "Download this song"_L1},
};

const ActionLook& lookOf(RowAction action) {
    return actionLooks.at(static_cast<std::size_t>(action));
}

bool breaksLine(QChar c) {
    return c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
           c.category() == QChar::Separator_Paragraph;
}

}  // namespace

QString shortened(const QString& text, qsizetype most) {
    if (text.size() <= most)
        return text;
    qsizetype end = most;
    if (text.at(end - 1).isHighSurrogate())
        --end;
    return text.first(end) + QChar(u'\u2026');
}

QString queueRowTitle(const DownloadItem& item) {
    // A page's whole source may have been taken for a link.
    QString title = shortened(item.title.isEmpty() ? item.url : item.title, longestShownText);
    std::replace_if(title.begin(), title.end(), breaksLine, QChar(u' '));
    return title;
}

QString queueRowWholeTitle(const DownloadItem& item) {
    return shortened(item.title.isEmpty() ? item.url : item.title, longestReadText);
}

QString queueRowError(const DownloadItem& item) {
    return item.status == QueueStatus::failed ? item.detail.trimmed() : QString();
}

QString queueStatusHeadline(const DownloadItem& item) {
    if (item.isResolvingInfo)
        return QStringLiteral("Reading Link");
    if (item.status == QueueStatus::running && !item.detail.isEmpty())
        return shortened(item.detail, longestShownText);
    if (item.status == QueueStatus::complete)
        return completeHeadline(item);
    return lookOf(item.status).headline;
}

QColor queueDetailColor(const DownloadItem& item) {
    const bool isReading = item.isResolvingInfo && item.status != QueueStatus::complete;
    return isReading ? amber() : lookOf(item.status).headlineColor;
}

std::optional<QString> queueStatusSubtitle(const DownloadItem& item) {
    const QString detail = shortened(item.detail.trimmed(), longestShownText);
    // What has ended says how, even while its link is read once more.
    if (item.status == QueueStatus::failed)
        return detail.isEmpty() ? std::nullopt : std::optional(detail);
    if (item.status == QueueStatus::complete)
        return item.note.isEmpty() ? completeSubtitle(detail) : noteSign + item.note;
    if (item.isResolvingInfo)
        return readingSubtitle(item, detail);
    if (item.status == QueueStatus::running)
        return runningSubtitle(detail);
    if (item.reading == LinkReading::repeated)
        return std::nullopt;
    return item.status == QueueStatus::waiting ? QStringLiteral("Click gold arrow to download")
                                               : QStringLiteral("Starts when a slot opens");
}

QString queueRowNoteHelp(const DownloadItem& item) {
    if (item.note.isEmpty())
        return {};
    QString help = item.note + u'.';
    if (!item.duration.isEmpty() && item.downloadedSeconds > 0)
        help += QStringLiteral(" Listed: %1. Downloaded: %2.")
                    .arg(item.duration, formatDuration(item.downloadedSeconds));
    return help;
}

QString queueStatusIcon(const DownloadItem& item) {
    return item.isResolvingInfo ? "arrow.triangle.2.circlepath"_L1 : lookOf(item.status).icon;
}

QString queueStatusLabel(const DownloadItem& item) {
    return item.isResolvingInfo ? QStringLiteral("Reading") : rawValue(item.status);
}

QColor queueStatusLabelColor(const DownloadItem& item) {
    return item.isResolvingInfo ? TechTheme::gold : lookOf(item.status).labelColor;
}

QColor queueAccentColor(const DownloadItem& item, bool selected) {
    switch (item.status) {
        case QueueStatus::running:
            return TechTheme::gold;
        case QueueStatus::failed:
            return rgb(0.80, 0.43, 0.16);
        case QueueStatus::complete:
            return rgb(0.22, 0.64, 0.32);
        case QueueStatus::waiting:
        case QueueStatus::queued:
            break;
    }
    if (item.isResolvingInfo)
        return TechTheme::gold;
    return selected ? faded(TechTheme::gold, 0.86) : faded(TechTheme::queueInset, 0.80);
}

QueueStatusBackground queueStatusBackground(QueueStatus status) {
    return windowColors(status).background;
}

QColor queueStatusShadowColor(QueueStatus status) {
    return windowColors(status).shadow;
}

QColor queueStatusStrokeColor(QueueStatus status) {
    return windowColors(status).stroke;
}

RowAction queueRowAction(const DownloadItem& item, bool shouldRetryInfo) {
    if (item.isResolvingInfo)
        return RowAction::busy;
    switch (item.status) {
        case QueueStatus::queued:
        case QueueStatus::running:
            return RowAction::busy;
        case QueueStatus::complete:
            return RowAction::reveal;
        case QueueStatus::failed:
            return shouldRetryInfo ? RowAction::readAgain : RowAction::tryAgain;
        case QueueStatus::waiting:
            break;
    }
    return item.reading == LinkReading::repeated ? RowAction::readAgain : RowAction::download;
}

QString rowActionSymbol(RowAction action) {
    return lookOf(action).symbol;
}

QString rowActionHelp(RowAction action) {
    return lookOf(action).help;
}

bool rowActionEnabled(RowAction action, bool canDownload) {
    if (action == RowAction::download)
        return canDownload;
    return action != RowAction::busy;
}

bool rowIsRaised(const DownloadItem& item) {
    return item.isResolvingInfo || item.status == QueueStatus::running;
}

QString rowAccessibleName(const DownloadItem& item) {
    QStringList parts{queueRowTitle(item), queueStatusHeadline(item)};
    if (const std::optional<QString> subtitle = queueStatusSubtitle(item))
        parts.append(*subtitle);
    if (item.status == QueueStatus::running)
        parts.append(progressPercentage(item.progress));
    return parts.join(QStringLiteral(", "));
}

QString rowAccessibleDescription(const DownloadItem& item) {
    QStringList parts;
    const QString& whole = item.title.isEmpty() ? item.url : item.title;
    if (whole.size() > longestShownText)
        parts.append(queueRowWholeTitle(item));
    if (const QString error = queueRowError(item); !error.isEmpty())
        parts.append(shortened(error, longestReadText));
    if (!item.note.isEmpty())
        parts.append(queueRowNoteHelp(item));
    return parts.join(u'\n');
}

}  // namespace reelcrate
