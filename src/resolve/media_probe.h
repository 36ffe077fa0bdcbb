#pragma once

#include "records/media_records.h"
#include "resolve/media_probe_output.h"

#include <QString>

#include <optional>

/// Reads what links stand for with the downloader, without downloading anything. Blocks for the
/// life of the tool's run: background threads only. What cannot be read is empty; what to say of
/// that is the caller's.
namespace reelcrate {

class ShellRunner;
class ToolDiscovery;

/// What one look at a link has yielded.
struct LinkProbe {
    ProbedMedia found;
    bool tookTooLong = false;
    bool isPartial = false;  ///< the tool reported a failure, of some of the media at least
    QString errors;          ///< what it printed on standard error
};

struct ListingProbe {
    Listing found;
    QString errors;
};

class MediaProbe {
public:
    MediaProbe(ShellRunner& shell, const ToolDiscovery& discovery);

    /// Title, duration, thumbnail and page address of what is behind a link, or of the one of the
    /// media there that is meant; takes up to 45 seconds.
    LinkProbe fetchMediaInfo(const QString& link, int playlistItem = 0) const;

    /// The songs of a list, in its order, without a look at each; takes up to 90 seconds.
    ListingProbe fetchPlaylistEntries(const QString& link, SourceType source) const;

private:
    ProbeTool tool() const;

    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
};

}  // namespace reelcrate
