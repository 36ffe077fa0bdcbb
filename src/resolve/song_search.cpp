#include "resolve/song_search.h"

#include "base/duration_text.h"
#include "resolve/media_probe_output.h"
#include "resolve/search_match.h"
#include "resolve/spotify_songs.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

namespace reelcrate {

namespace {

constexpr double limitSeconds = 60;

QString described(const SearchHit& hit) {
    return QStringLiteral("%1 (%2, %3) %4")
        .arg(hit.title, hit.channel, formatDuration(hit.seconds.value_or(0)), hit.link);
}

}  // namespace

SongSearch::SongSearch(ShellRunner& shell, const ToolDiscovery& discovery)
    : m_shell(shell), m_discovery(discovery) {}

FoundSong SongSearch::find(const DownloadItem& item, DownloadMode mode) const {
    const QString command = QStringLiteral("yt-dlp");
    const ProbeTool tool{m_discovery.toolPath(command).value_or(command),
                         m_discovery.toolSearchPath()};
    const CommandResult result =
        m_shell.runShellApart(playlistCommand(tool, spotifyHitsQuery(item, mode)), limitSeconds);
    const QList<SearchHit> hits =
        result.status == 0 ? hitsFromOutput(result.output) : QList<SearchHit>();
    if (hits.isEmpty())
        return {.link = {},
                .remark = QStringLiteral("The search listed nothing: its first hit is taken.\n") +
                          result.errors};
    const auto best = bestHit({item.title, secondsOfDuration(item.duration)}, hits);
    if (!best)
        return {.link = {},
                .remark = QStringLiteral("No hit of the search is %1 long: the first is taken.")
                              .arg(item.duration)};
    const SearchHit& hit = hits.at(best->hit);
    return {.link = hit.link,
            .remark = QStringLiteral("%1 of %2 hits%3: ")
                          .arg(best->hit + 1)
                          .arg(hits.size())
                          .arg(best->isCertain ? QString()
                                               : QStringLiteral(" (best match is uncertain)")) +
                      described(hit)};
}

}  // namespace reelcrate
