#include "download/row_download.h"

#include "base/background_tasks.h"
#include "base/duration_text.h"
#include "base/main_queue.h"
#include "download/download_command.h"
#include "download/failure_judgement.h"
#include "download/marked_lines.h"
#include "download/output_reader.h"
#include "download/row_stages.h"
#include "download/run_log.h"
#include "download/song_note.h"
#include "download/working_folder.h"
#include "library/song_key.h"
#include "records/row_texts.h"
#include "resolve/song_search.h"
#include "tools/tool_discovery.h"

#include <QFile>

#include <atomic>
#include <memory>
#include <utility>

namespace reelcrate {

namespace {

using namespace std::chrono_literals;

constexpr qsizetype mostUnshown = 1 << 20;  // UTF-16 units of a tool's output
constexpr auto shortWhile = 2ms;

/// Text that names the user's home folder is shown with "~" instead.
QString withoutHome(QString text, const QString& home) {
    if (!home.isEmpty() && home != QStringLiteral("/"))
        text.replace(home, QStringLiteral("~"));
    return text;
}

/// Of a conversion that could not be written to its end the downloader does not say why.
FailureCause causeWithoutWords(const WorkingFolder& folder) {
    return folder.takesMore() ? FailureCause::other : FailureCause::cannotWrite;
}

}  // namespace

QString downloadCommandFor(const DownloadItem& item, const QString& folder, DownloadMode mode,
                           const ToolDiscovery& discovery, Conversion conversion,
                           const QString& found) {
    return downloadCommand(
        item, folder, mode,
        {discovery.toolPath(QStringLiteral("yt-dlp")), discovery.toolPath(QStringLiteral("ffmpeg")),
         discovery.toolSearchPath()},
        conversion, found);
}

/// Follows the downloader's output of one row: logs it, shows it on the row, and keeps what it says
/// of its end. On the thread that runs the command.
class RowDownload::Output {
public:
    Output(const RowDownload& download, const WorkingFolder& folder, const std::stop_token& stop)
        : m_download(download), m_folder(folder), m_stop(stop), m_lines(download.m_number) {}

    void read(const QString& piece) {
        const bool knewFormats = !m_reader.formats().isEmpty();
        m_reader.read(piece);
        if (!knewFormats && !m_reader.formats().isEmpty())
            m_folder.noteFormats(m_reader.formats());
        m_unshown->fetch_add(piece.size());
        m_download.post([&log = m_download.m_parts.log, &stages = m_download.m_parts.stages,
                         item = m_download.m_item, mode = m_download.m_plan.target.mode, piece,
                         lines = m_lines.add(piece), unshown = m_unshown] {
            if (!lines.isEmpty())
                log.append(lines);
            if (const QString trimmed = piece.trimmed(); !trimmed.isEmpty())
                stages.applyDownloadOutput(item, mode, trimmed);
            unshown->fetch_sub(piece.size());
        });
        // A tool that prints faster than it can be shown has to wait: its output would pile up.
        while (m_unshown->load() > mostUnshown && pauseFor(m_stop, shortWhile)) {
        }
    }

    /// The tool has ended, perhaps in the middle of a line.
    void end() {
        if (const QString rest = m_lines.takeRest(); !rest.isEmpty())
            m_download.post([&log = m_download.m_parts.log, rest] { log.append(rest); });
    }

    const OutputReader& reader() const { return m_reader; }

private:
    const RowDownload& m_download;
    const WorkingFolder& m_folder;
    const std::stop_token& m_stop;
    MarkedLines m_lines;
    const std::shared_ptr<std::atomic<qsizetype>> m_unshown =
        std::make_shared<std::atomic<qsizetype>>(0);
    OutputReader m_reader;
};

/// What one run of the downloader came to.
struct RowDownload::ToolRun {
    bool succeeded = false;
    OutputReader output;
};

RowDownload::RowDownload(DownloadParts parts, RunPlan plan, DownloadItem item, qsizetype position)
    : m_parts(parts),
      m_plan(std::move(plan)),
      m_item(std::move(item)),
      m_songKey(songKey(m_item.url, m_item.playlistItem)),
      m_number(QStringLiteral("%1/%2").arg(position + 1).arg(m_plan.rowCount)),
      m_shell(parts.shell, m_stop.get_token()),
      m_finisher(m_shell, parts.discovery, parts.library) {}

RowDownload::End RowDownload::run(const std::stop_token& programEnds) {
    const std::stop_callback stopToo(programEnds, [this] { m_stop.request_stop(); });
    const std::stop_token stop = m_stop.get_token();
    // What a song and what a film is made from can have one name: neither goes on with the other's.
    WorkingFolder folder(m_plan.target.folder,
                         m_songKey + u'.' + rawValue(m_plan.target.mode).toLower());
    switch (folder.lock()) {
        case WorkingFolder::Lock::inUse:
            return End::elsewhere;
        case WorkingFolder::Lock::failed:
            logLine(QStringLiteral("Cannot work in %1: %2").arg(folder.path(), folder.failure()));
            fail(FailureCause::cannotWrite);
            return End::ended;
        case WorkingFolder::Lock::held:
            break;
    }
    // Now that nobody else can be about to put it there.
    while (const auto path = fileThatIsThere()) {
        const SongFinisher::Look look = m_finisher.lookAt(*path, m_plan.target.mode);
        // A look that was broken off says nothing against the song.
        if (stop.stop_requested())
            return End::ended;
        if (look.fault) {
            logLine(QStringLiteral("%1 is there, but no whole song (%2): it is downloaded again.")
                        .arg(*path, *look.fault));
            m_parts.library.distrust(*path);
            continue;
        }
        folder.remove();
        complete(
            {.path = *path, .detail = row_text::alreadyDownloaded, .playingSeconds = look.seconds});
        return End::ended;
    }
    if (isSearchedFor(m_item.source))
        search();
    if (!stop.stop_requested())
        download(folder, stop);
    return End::ended;
}

void RowDownload::search() {
    const SongSearch songSearch(m_shell, m_parts.discovery);
    const FoundSong found = songSearch.find(m_item, m_plan.target.mode);
    m_found = found.link;
    m_isUncertain = !found.isCertain;
    logLine(found.remark);
}

std::optional<QString> RowDownload::fileThatIsThere() const {
    const PlaylistEntry entry{
        .url = m_item.url,
        .source = m_item.source,
        .title = m_item.reading == LinkReading::song ? m_item.title : QString(),
        .duration = m_item.duration,
        .thumbnailURL = {},
        .playlistItem = m_item.playlistItem};
    return m_parts.library.existingDownloadedFiles({entry}, m_plan.target).first();
}

void RowDownload::download(WorkingFolder& folder, const std::stop_token& stop) {
    const auto log = [this](const QString& line) { logLine(line); };
    folder.keepResumable(m_plan.target.mode);
    removeWhatIsNotWhole(folder, stop);
    const QString formats = folder.formatsOfParts();
    ToolRun tool = runTool(folder, Conversion::strict, stop);
    const bool isOther =
        !formats.isEmpty() && !tool.output.formats().isEmpty() && formats != tool.output.formats();
    if ((isOther || tool.output.cannotResume()) && !stop.stop_requested()) {
        logLine(QStringLiteral("What was there of the download cannot be gone on with: again."));
        if (isOther)
            folder.empty();
        else
            folder.removeParts();
        tool = runTool(folder, Conversion::strict, stop);
    }
    const auto isDone = [&] { return tool.succeeded || tool.output.onlyCoversFailed(); };
    const bool isSong = m_plan.target.mode == DownloadMode::audio;
    const QString sourceFile = isSong && !isDone() ? folder.unconvertedSource() : QString();
    SongFinisher::SourceLook source;
    if (!sourceFile.isEmpty() && !stop.stop_requested())
        source = m_finisher.lookAtSource(sourceFile, log);
    if (source.isDamaged && source.seconds && tool.output.conversionFailed() &&
        !stop.stop_requested()) {
        folder.keepResumable(m_plan.target.mode);
        tool = runTool(folder, Conversion::lenient, stop);
    }
    if (stop.stop_requested())
        return;
    if (isDone() && !tool.output.foundNothing()) {
        finish(folder, source.seconds, stop);
        return;
    }
    const FailureCause cause = causeOf(tool.output, folder);
    // It would be taken for the song's source the next time, too, and not be fetched again.
    if (source.isDamaged)
        QFile::remove(sourceFile);
    fail(cause);
}

/// What an earlier start left under its final name is gone on with: a page that was sent in the
/// place of a picture or its sound, and what lost its end with the power, would stay for ever.
void RowDownload::removeWhatIsNotWhole(const WorkingFolder& folder,
                                       const std::stop_token& stop) const {
    for (const QString& file : folder.fetchedMedia()) {
        const SongFinisher::Look look = m_finisher.lookAt(file, DownloadMode::video);
        if (stop.stop_requested())
            return;
        if (look.fault) {
            logLine(QStringLiteral("%1 was fetched, but is not whole (%2): again.")
                        .arg(file, *look.fault));
            QFile::remove(file);
        }
    }
}

/// What broke off is fetched once more. Where that breaks off at the very same place, the site has
/// no more of it, whatever its header tells; anywhere else, it is the connection's fault.
bool RowDownload::takesOrFetchesAgain(const SongFinisher::Prepared& song, WorkingFolder& folder,
                                      const std::stop_token& stop) {
    if (!song.brokenOff || song.brokenOff == m_brokenOff)
        return true;
    logLine(song.path.section(u'/', -1) + QStringLiteral(": ") + song.brokenOff->reason);
    folder.empty();
    if (m_brokenOff) {
        fail(FailureCause::noConnection);
    } else {
        m_brokenOff = song.brokenOff;
        download(folder, stop);
    }
    return false;
}

FailureCause RowDownload::causeOf(const OutputReader& output, const WorkingFolder& folder) const {
    if (output.foundNothing())
        return FailureCause::noMatch;
    const FailureCause cause = judgedCause(output.complaints(), !m_plan.oldToolNotice.isEmpty());
    return cause == FailureCause::other ? causeWithoutWords(folder) : cause;
}

RowDownload::ToolRun RowDownload::runTool(const WorkingFolder& folder, Conversion conversion,
                                          const std::stop_token& stop) {
    Output output(*this, folder, stop);
    const QString command = downloadCommandFor(m_item, folder.path(), m_plan.target.mode,
                                               m_parts.discovery, conversion, m_found);
    post([&log = m_parts.log, line = QStringLiteral("Running %1: ").arg(m_number) +
                                     withoutHome(command, m_parts.discovery.places().home)] {
        log.append(line);
    });
    const CommandResult result = m_shell.runShellPassingOn(
        command, [&output](const QString& piece) { output.read(piece); }, folder.descriptor());
    output.end();
    if (!result.output.isEmpty() && !stop.stop_requested())
        logLine(result.output);
    return {result.status == 0, output.reader()};
}

void RowDownload::finish(WorkingFolder& folder, std::optional<double> sourceSeconds,
                         const std::stop_token& stop) {
    const auto log = [this](const QString& line) { logLine(line); };
    const bool isSong = m_plan.target.mode == DownloadMode::audio;
    if (const QString page = folder.textAmongFragments(); !page.isEmpty()) {
        log(QStringLiteral("A piece of the stream is a text: ") + page);
        folder.empty();
        fail(FailureCause::noConnection);
        return;
    }
    if (isSong) {
        enterStage(row_text::examiningSong, 0.9, 2);
        if (!pauseFor(stop, m_plan.timing.examining))
            return;
        enterStage(row_text::trimmingSong, 0.96, 5);
    }
    const QStringList files = folder.finishedFiles(m_plan.target.mode);
    if (files.isEmpty())
        log(QStringLiteral("The downloader reported success, but there is no file."));
    QList<SongFinisher::Prepared> songs;
    for (const QString& file : files) {
        auto song = m_finisher.prepare(file, m_plan.target,
                                       {sourceSeconds, m_plan.loudness, m_item.duration}, log);
        if (stop.stop_requested() || (song && !takesOrFetchesAgain(*song, folder, stop)))
            return;
        if (song)
            songs.append(*std::move(song));
        else
            QFile::remove(file);  // or the next time it would be taken for what was fetched
    }
    enterStage(isSong ? row_text::savingSong : row_text::savingVideo, 0.99, 1);
    if (!pauseFor(stop, isSong ? m_plan.timing.savingAudio : m_plan.timing.savingVideo))
        return;
    // A link that was not read before may have stood for several. What enters is compared with what
    // is there, so a stop does not reach so far: half of them, or one under two names, helps
    // nobody.
    SavedSong saved;
    qsizetype entered = 0;
    for (const SongFinisher::Prepared& song : std::as_const(songs)) {
        if (auto path = m_parts.finisher.enter(song.path, m_songKey, m_plan.target, log)) {
            saved.path = *std::move(path);
            saved.detail = song.detail;
            saved.downloadedSeconds += song.downloadedSeconds;
            saved.playingSeconds += song.playingSeconds;
            ++entered;
        }
    }
    if (entered > 0 && entered == files.size()) {
        folder.remove();
        if (entered == 1)
            saved.note = noteOn(songs.first());
        complete(saved);
    } else {
        fail(causeWithoutWords(folder));
    }
}

/// Where nobody has listed a length, that counts which the song's own header told.
QString RowDownload::noteOn(const SongFinisher::Prepared& song) const {
    const bool isTold = song.brokenOff && song.brokenOff->toldSeconds;
    const QString listed = m_item.duration.isEmpty() && isTold
                               ? formatDuration(*song.brokenOff->toldSeconds)
                               : m_item.duration;
    return songNote({m_isUncertain, song.downloadedSeconds, listed, song.brokenOff.has_value()});
}

void RowDownload::complete(const SavedSong& saved) {
    m_saved = saved;
    post([&stages = m_parts.stages, id = m_item.id, saved] { stages.complete(id, saved); });
}

void RowDownload::fail(FailureCause cause) {
    m_cause = cause;
    post([&stages = m_parts.stages, id = m_item.id, cause] { stages.fail(id, cause); });
}

void RowDownload::logLine(const QString& line) const {
    post([&log = m_parts.log, text = markedText(m_number, line)] { log.append(text); });
}

void RowDownload::enterStage(const QString& detail, double target, double duration) const {
    post([&stages = m_parts.stages, id = m_item.id, detail, target, duration] {
        stages.enterStage(id, detail, target, duration);
    });
}

void RowDownload::post(std::function<void()> block) const {
    // The stop is requested on the main thread, so nothing of before comes after it.
    m_parts.mainQueue.post([stop = m_stop.get_token(), block = std::move(block)] {
        if (!stop.stop_requested())
            block();
    });
}

}  // namespace reelcrate
