#include "library/playlist_file.h"

#include "base/duration_text.h"
#include "base/text.h"
#include "library/file_names.h"
#include "library/finished_files.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace reelcrate {

namespace {

constexpr QLatin1String extension{".m3u8"};
constexpr qsizetype longestFileName = 255;  // bytes

/// A name that readers take for a comment, for an address, or cut at its start, goes by way of the
/// folder itself.
QString readableName(const QString& name) {
    static const QRegularExpression misread(QStringLiteral(R"(^([#\s\x{FEFF}]|[^/]*:))"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return misread.match(name).hasMatch() ? QStringLiteral("./") + name : name;
}

QString titleOf(const DownloadItem& row) {
    static const QRegularExpression identifier(QStringLiteral(R"(\s*\[[^\[\]]*\]$)"));
    const QString title = row.title.simplified();
    return title.isEmpty() ? nameWithoutExtension(row.outputPath).remove(identifier).simplified()
                           : title;
}

QString entryOf(const DownloadItem& row, const QString& name) {
    const auto seconds = secondsOfDuration(row.duration);
    const qint64 shown = seconds ? std::llround(*seconds) : -1;
    return QStringLiteral("#EXTINF:") + QString::number(shown) + u',' + titleOf(row) + u'\n' +
           readableName(name) + u'\n';
}

}  // namespace

QString playlistName(const QString& eventFolder) {
    const QString name = visibleFileName(QDir(eventFolder).dirName());
    return firstBytes(name, longestFileName - extension.size()) + extension;
}

QList<DownloadItem> rowsForPlaylist(const QList<DownloadItem>& rows, const QString& eventFolder) {
    const QString start = QDir::cleanPath(eventFolder) + u'/';
    QSet<QString> paths;
    QList<DownloadItem> listed;
    for (const DownloadItem& row : rows) {
        const bool isThere = row.status == QueueStatus::complete &&
                             row.outputPath.startsWith(start) && !paths.contains(row.outputPath);
        if (!isThere)
            continue;
        paths.insert(row.outputPath);
        listed.append(row);
    }
    return listed;
}

QString playlistText(const QList<DownloadItem>& rows, const QString& eventFolder) {
    static const QRegularExpression lineBreak(QStringLiteral("[\\r\\n]"));
    const QString start = QDir::cleanPath(eventFolder) + u'/';
    QString text = QStringLiteral("#EXTM3U\n");
    for (const DownloadItem& row : rowsForPlaylist(rows, eventFolder)) {
        const QString name = row.outputPath.mid(start.size());
        if (!name.contains(lineBreak))
            text += entryOf(row, name);
    }
    return text;
}

PlaylistSaving savePlaylist(const QList<DownloadItem>& rows, const QString& eventFolder) {
    QList<DownloadItem> listed = rowsForPlaylist(rows, eventFolder);
    listed.removeIf([](const DownloadItem& row) { return !QFileInfo(row.outputPath).isFile(); });
    PlaylistSaving saving{QDir(eventFolder).filePath(playlistName(eventFolder)), listed.size(), {}};
    if (listed.isEmpty())
        return saving;
    QSaveFile file(saving.path);
    const QByteArray text = playlistText(listed, eventFolder).toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
        saving.failure = file.errorString();
    return saving;
}

QString playlistSummary(const PlaylistSaving& saving) {
    if (!saving.failure.isEmpty())
        return QStringLiteral("Could not save the playlist: ") + saving.failure;
    if (saving.songs == 0)
        return QStringLiteral("No complete songs for a playlist");
    return QStringLiteral("Saved playlist of %1 song").arg(saving.songs) +
           pluralSuffix(saving.songs);
}

}  // namespace reelcrate
