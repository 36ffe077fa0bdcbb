#pragma once

#include "download/download_command.h"
#include "download/row_stages.h"
#include "download/song_finish.h"
#include "library/event_library.h"
#include "records/download_item.h"
#include "tools/shell_runner.h"

#include <QString>

#include <chrono>
#include <functional>
#include <optional>
#include <stop_token>

/// The download of one row, from its command to its song in the event folder.
namespace reelcrate {

class EventLibrary;
class MainQueue;
class OutputReader;
class RunLog;
class ToolDiscovery;
class WorkingFolder;

/// The parts that a download works with; all outlive it.
struct DownloadParts {
    ShellRunner& shell;
    const ToolDiscovery& discovery;
    EventLibrary& library;
    const SongFinisher& finisher;  ///< lets songs enter, which nothing stops
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
    Seconds lookAgain{0.5};  ///< between two looks at a song that another program is at
};

/// What all rows of a run have in common, fixed at its start.
struct RunPlan {
    EventTarget target;
    qsizetype rowCount = 0;
    DownloadTiming timing;
    QString oldToolNotice;  ///< what to say of a downloader that is old; empty for one that is not
    MeasureLoudness loudness = MeasureLoudness::no;
};

/// The command line that downloads the row into the folder. Background threads: it looks the tools
/// up.
QString downloadCommandFor(const DownloadItem& item, const QString& folder, DownloadMode mode,
                           const ToolDiscovery& discovery,
                           Conversion conversion = Conversion::strict, const QString& found = {});

class RowDownload {
public:
    enum class End {
        ended,      ///< complete or failed, as the row says; or stopped
        elsewhere,  ///< not begun: another program is at the same song
    };

    /// `position` counts from 0 among the run's rows.
    RowDownload(DownloadParts parts, RunPlan plan, DownloadItem item, qsizetype position);

    /// Background threads, with a row that is marked as running. Blocks until the row is complete
    /// or failed; how it went arrives in the row. It is also stopped when the program ends.
    End run(const std::stop_token& programEnds);

    /// Main thread. From now on nothing more of the download arrives in the row, and run() returns
    /// as soon as the child that it waits for has ended.
    void stop() { m_stop.request_stop(); }

    /// The row's among those of the run, such as "3/24".
    const QString& number() const { return m_number; }

    /// Why it failed, after run(); absent when it did not.
    std::optional<FailureCause> cause() const { return m_cause; }

    /// The song, after run(), also when the stop came too late for it.
    const std::optional<SavedSong>& saved() const { return m_saved; }

private:
    class Output;
    struct ToolRun;

    void search();
    void download(WorkingFolder& folder, const std::stop_token& stop);
    ToolRun runTool(const WorkingFolder& folder, Conversion conversion,
                    const std::stop_token& stop);
    void finish(WorkingFolder& folder, std::optional<double> sourceSeconds,
                const std::stop_token& stop);
    void removeWhatIsNotWhole(const WorkingFolder& folder, const std::stop_token& stop) const;
    bool takesOrFetchesAgain(const SongFinisher::Prepared& song, WorkingFolder& folder,
                             const std::stop_token& stop);
    QString noteOn(const SongFinisher::Prepared& song) const;
    std::optional<QString> fileThatIsThere() const;
    void complete(const SavedSong& saved);
    void fail(FailureCause cause);
    FailureCause causeOf(const OutputReader& output, const WorkingFolder& folder) const;
    void logLine(const QString& line) const;
    void enterStage(const QString& detail, double target, double duration) const;
    void post(std::function<void()> block) const;

    const DownloadParts m_parts;
    const RunPlan m_plan;
    const DownloadItem m_item;
    const QString m_songKey;
    const QString m_number;
    std::stop_source m_stop;
    ShellRunner m_shell;            ///< what it runs ends with the download
    const SongFinisher m_finisher;  ///< likewise
    std::optional<FailureCause> m_cause;
    std::optional<SavedSong> m_saved;
    std::optional<SongFinisher::BrokenOff> m_brokenOff;  ///< what was fetched first
    QString m_found;             ///< the link of the best hit, where the row has to be searched for
    bool m_isUncertain = false;  ///< the row had to be searched for, and nothing fitted well
};

}  // namespace reelcrate
