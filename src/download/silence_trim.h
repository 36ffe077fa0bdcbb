#pragma once

#include "records/download_mode.h"

#include <QString>

/// Cuts the silence off both ends of a finished MP3 file and puts the result in its place.
namespace reelcrate {

class ClaimedFiles;
class ProcessSupervisor;
class ShellRunner;
class ToolDiscovery;

struct SilenceTrimResult {
    QString outputPath;  ///< always the path that was given: the trimmed file takes its name
    QString detail;      ///< the finished row's text
};

/// The command that writes a trimmed copy of `input` with its tags and cover. Pure.
QString silenceTrimCommand(const QString& ffmpeg, const QString& input, const QString& output);

/// Background threads: it blocks while the converter runs, up to 180 seconds. No failure reaches
/// the caller but in the text of the result, and none harms the downloaded file.
class SilenceTrimmer {
public:
    SilenceTrimmer(ShellRunner& shell, const ToolDiscovery& discovery,
                   ProcessSupervisor& supervisor, ClaimedFiles& claimedFiles);

    SilenceTrimResult trimEdgeSilenceIfNeeded(const QString& outputPath, DownloadMode mode) const;

private:
    bool replaceByTrimmed(const QString& ffmpeg, const QString& path) const;

    ShellRunner& m_shell;
    const ToolDiscovery& m_discovery;
    ProcessSupervisor& m_supervisor;
    ClaimedFiles& m_claimedFiles;
};

/// Removes the hidden files that trims have left in this folder, if the machine went down under
/// them: those older than any trim that may still be under way. Background threads.
void removeForgottenTrims(const QString& folder);

}  // namespace reelcrate
