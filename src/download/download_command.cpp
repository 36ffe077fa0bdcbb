#include "download/download_command.h"

#include "library/file_names.h"
#include "resolve/spotify_songs.h"
#include "tools/shell_quote.h"

#include <QFileInfo>

namespace reelcrate {

namespace {

QString outputTemplate(const DownloadItem& item, QString eventFolder) {
    // In an output template a percent sign begins a field; doubled it stands for itself.
    eventFolder.replace(u'%', QStringLiteral("%%"));
    if (!eventFolder.endsWith(u'/'))
        eventFolder += u'/';
    if (item.source == SourceType::spotify)
        return eventFolder + spotifyFileStem(item.title) + QStringLiteral(" [%(id)s].%(ext)s");
    return eventFolder + QStringLiteral("%(title).180B [%(id)s].%(ext)s");
}

QString target(const DownloadItem& item, DownloadMode mode) {
    return item.source == SourceType::spotify ? spotifySearchQuery(item, mode) : item.url;
}

QString progressOptions() {
    return QStringLiteral(
               "--no-update --newline --no-colors --progress --progress-delta 0.2 "
               "--progress-template ") +
           shellQuoted(QStringLiteral("download:RCR_PROGRESS:%(progress._percent_str)s"));
}

QString formatSelector() {
    return shellQuoted(
        QStringLiteral("b[ext=mp4][height<=1080]/bv*[ext=mp4][height<=1080]+ba[ext=m4a]/"
                       "b[ext=mp4]/bv*[ext=mp4]+ba[ext=m4a]/bv*+ba/b"));
}

QString converterLocation(const std::optional<QString>& ffmpeg) {
    if (!ffmpeg)
        return {};
    return QStringLiteral(" --ffmpeg-location ") + shellQuoted(QFileInfo(*ffmpeg).path());
}

}  // namespace

QString downloadCommand(const DownloadItem& item, const QString& eventFolder, DownloadMode mode,
                        const DownloadTools& tools) {
    const QString tool = tools.ytDlp.value_or(QStringLiteral("yt-dlp"));
    const QString start = QStringLiteral("PATH=") + shellQuoted(tools.searchPath) +
                          QStringLiteral(":$PATH ") + shellQuoted(tool) + u' ' + progressOptions() +
                          QStringLiteral(" --ignore-errors --concurrent-fragments ");
    const QString end = QStringLiteral(" -o ") + shellQuoted(outputTemplate(item, eventFolder)) +
                        u' ' + shellQuoted(target(item, mode));
    const QString converter = converterLocation(tools.ffmpeg);

    if (mode == DownloadMode::audio) {
        return start + QString::number(concurrentFragmentDownloads) +
               QStringLiteral(
                   " -x --audio-format mp3 --audio-quality 0 --embed-thumbnail --add-metadata") +
               converter + end;
    }
    return start + QString::number(videoConcurrentFragmentDownloads) +
           QStringLiteral(" --embed-metadata") + converter + QStringLiteral(" -f ") +
           formatSelector() + QStringLiteral(" --merge-output-format mp4") + end;
}

}  // namespace reelcrate
