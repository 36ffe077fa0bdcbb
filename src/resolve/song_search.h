#pragma once

#include "records/download_item.h"
#include "records/download_mode.h"

#include <QString>

/// Finds the song that a row names but does not link to, among the first hits of a search on the
/// video site. Blocks for the life of the tool's run: background threads only. What is not found is
/// no failure: the row can still be searched for by the downloader itself.
namespace reelcrate {

class ShellRunner;
class ToolDiscovery;

struct FoundSong {
    QString link;            ///< empty: no hit is long enough, or none was listed
    QString remark;          ///< for the log: what was chosen, and whether that is sure
    bool isCertain = false;  ///< false: it may well be another song
};

class SongSearch {
public:
    SongSearch(ShellRunner& shell, const ToolDiscovery& discovery);

    /// Takes up to 60 seconds.
    FoundSong find(const DownloadItem& item, DownloadMode mode) const;

private:
    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
};

}  // namespace reelcrate
