#include "download/download_command.h"

#include "download/fetched_files.h"
#include "library/file_names.h"
#include "resolve/spotify_songs.h"
#include "tools/shell_quote.h"

#include <QFileInfo>

namespace reelcrate {

namespace {

QString outputTemplate(const DownloadItem& item, QString folder) {
    // In an output template a percent sign begins a field; doubled it stands for itself.
    folder.replace(u'%', QStringLiteral("%%"));
    if (!folder.endsWith(u'/'))
        folder += u'/';
    if (isSearchedFor(item.source))
        return folder + spotifyFileStem(item.title) + QStringLiteral(" [%(id)s].%(ext)s");
    return folder + QStringLiteral("%(title).180B [%(id).40B].%(ext)s");
}

QString target(const DownloadItem& item, DownloadMode mode, const QString& found) {
    if (!found.isEmpty())
        return found;
    return isSearchedFor(item.source) ? spotifySearchQuery(item, mode) : item.url;
}

QString progressOptions() {
    return QStringLiteral(
               "--no-update --newline --no-colors --progress --progress-delta 0.2 "
               "--progress-template ") +
           shellQuoted(QStringLiteral("download:RCR_PROGRESS:%(progress._percent_str)s"));
}

/// What a configuration file of the user's may not change: that songs are downloaded, told of and
/// left alone. What is still being sent would never end.
QString guards() {
    return QStringLiteral(
               " --no-simulate --no-quiet --no-download-archive --no-exec --match-filters ") +
           shellQuoted(QStringLiteral("!is_live"));
}

/// A file under its final name is to be whole, whatever a configuration file of the user's says: a
/// transfer that is cut off keeps another name, and a stream that lacks a piece fails. One of
/// several media that fails does not end the others; but after a conversion that failed the source
/// is left alone, and not given tags under which it looks whole. A stream's pieces are kept to be
/// looked at.
QString transferOptions() {
    return QStringLiteral(
        " --no-abort-on-error --part --abort-on-unavailable-fragments --keep-fragments "
        "--concurrent-fragments ");
}

QString conversionOptions(Conversion conversion) {
    // Without it ffmpeg (5.1) reports success also where a full disk cut the file's end off. Tags
    // and cover are written into a copy of the song, too, which takes its place.
    const QString copies = QStringLiteral(
        " --postprocessor-args Metadata:-xerror"
        " --postprocessor-args EmbedThumbnail+ffmpeg_o:-xerror");
    return conversion == Conversion::strict
               ? QStringLiteral(" --postprocessor-args ExtractAudio:-xerror") + copies
               : copies;
}

QString itemChoice(const DownloadItem& item) {
    return item.playlistItem > 0
               ? QStringLiteral(" --playlist-items ") + QString::number(item.playlistItem)
               : QString();
}

/// The best picture of at most 1080 lines; among equals the song's own language, a picture of
/// common range, and the codecs that every player has. A finished file of fewer lines does not win
/// over two streams of more.
QString formatChoice() {
    return QStringLiteral(" -f ") + shellQuoted(QStringLiteral("bv*+ba/b")) +
           QStringLiteral(" -S res:1080,lang,hdr:sdr,vcodec:h264,acodec:aac,ext:mp4:m4a") +
           // What MP4 holds at most with difficulty is merged into a container that holds all, and
           // made an MP4 afterwards.
           QStringLiteral(" --merge-output-format mp4/mkv");
}

QString converterLocation(const std::optional<QString>& ffmpeg) {
    if (!ffmpeg)
        return {};
    return QStringLiteral(" --ffmpeg-location ") + shellQuoted(QFileInfo(*ffmpeg).path());
}

}  // namespace

QString downloadCommand(const DownloadItem& item, const QString& folder, DownloadMode mode,
                        const DownloadTools& tools, Conversion conversion, const QString& found) {
    const QString tool = tools.ytDlp.value_or(QStringLiteral("yt-dlp"));
    const QString start = QStringLiteral("PATH=") + shellQuoted(tools.searchPath) +
                          QStringLiteral(":$PATH ") + shellQuoted(tool) + u' ' + progressOptions() +
                          guards() + keepFetchedOption() + transferOptions();
    const QString end = itemChoice(item) + QStringLiteral(" -o ") +
                        shellQuoted(outputTemplate(item, folder)) + u' ' +
                        shellQuoted(target(item, mode, found));
    const QString converter = converterLocation(tools.ffmpeg);

    if (mode == DownloadMode::audio) {
        return start + QString::number(concurrentFragmentDownloads) +
               QStringLiteral(
                   " -x --audio-format mp3 --audio-quality 0 --embed-thumbnail --add-metadata") +
               conversionOptions(conversion) + converter + end;
    }
    return start + QString::number(videoConcurrentFragmentDownloads) +
           QStringLiteral(" --embed-metadata") + converter + formatChoice() + end;
}

}  // namespace reelcrate
