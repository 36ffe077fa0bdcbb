#pragma once

#include "records/download_item.h"
#include "records/download_mode.h"

#include <QSet>
#include <QString>

#include <chrono>
#include <functional>
#include <stop_token>

/// The download of one row, from its command to its finished file.
namespace reelcrate {

class ClaimedFiles;
class MainQueue;
class ProcessSupervisor;
class RowFiles;
class RowStages;
class RunLog;
class ShellRunner;
class SilenceTrimmer;
class ToolDiscovery;
struct CommandResult;

/// The parts that a download works with; all outlive it.
struct DownloadParts {
    ShellRunner& shell;
    const ToolDiscovery& discovery;
    ProcessSupervisor& supervisor;
    const SilenceTrimmer& trimmer;
    ClaimedFiles& claimedFiles;
    MainQueue& mainQueue;
    RowStages& stages;
    RunLog& log;
};

/// How long a finished row shows its last stages.
struct DownloadTiming {
    using Seconds = std::chrono::duration<double>;

    Seconds examining{0.18};
    Seconds savingAudio{0.3};
    Seconds savingVideo{0.15};
};

/// What all rows of a run have in common, fixed at its start.
struct RunPlan {
    DownloadMode mode = DownloadMode::audio;
    QString eventFolder;
    qsizetype rowCount = 0;
    DownloadTiming timing;
};

/// The command line that downloads the row into the event folder. Background threads: it looks the
/// tools up.
QString downloadCommandFor(const DownloadItem& item, const QString& eventFolder, DownloadMode mode,
                           const ToolDiscovery& discovery);

class RowDownload {
public:
    /// `position` counts from 0 among the run's rows.
    RowDownload(DownloadParts parts, RunPlan plan, DownloadItem item, qsizetype position);

    /// Background threads, with a row that is marked as running. Blocks until the row is complete
    /// or failed; how it went arrives in the row. After a stop request it returns early and reports
    /// nothing more.
    void run(const std::stop_token& stop);

private:
    class Output;

    void finish(RowFiles& files, const std::stop_token& stop);
    void logCommand(const QString& command);
    void enterStage(const QString& detail, double target, double duration);
    void post(std::function<void()> block);

    const DownloadParts m_parts;
    const RunPlan m_plan;
    const DownloadItem m_item;
    const qsizetype m_position;
};

}  // namespace reelcrate
