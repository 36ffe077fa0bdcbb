#pragma once

#include "console/arguments.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <memory>
#include <optional>

/// The front end without a window: adds the links, waits until they are read, downloads all, ends.
/// Main thread.
namespace reelcrate {

class Controller;
class ProgressDisplay;
class StandardInput;

class HeadlessRun : public QObject {
    Q_OBJECT

public:
    enum ExitStatus { allComplete = 0, someNeedAttention = 1, wrongUsage = 2, toolsMissing = 3 };

    HeadlessRun(Controller& controller, const Arguments& arguments);
    ~HeadlessRun() override;

    void start();

    /// Ends everything that is under way, as on a signal of this number: 128 more is the exit
    /// status.
    void interrupt(int signalNumber);

Q_SIGNALS:
    void finished(int exitStatus);

private:
    enum class Phase { checkingTools, reading, downloading, ended };

    void advance();
    void readInput();
    void addSongs();
    bool addLists();
    bool isReading() const;
    void startDownloads();
    bool allRowsAreComplete() const;
    void addAccount();
    bool saveAccount();
    bool savePlaylist();
    void end(int exitStatus);

    Controller& m_controller;
    const bool m_json;
    const bool m_savesPlaylist;
    const std::optional<QString> m_reportPath;
    QStringList m_texts;  ///< what the links are taken from
    QStringList m_lists;  ///< files with songs in them
    QByteArray m_inputBytes;
    QStringList m_notes;  ///< for the user, at the end
    std::unique_ptr<StandardInput> m_input;
    std::unique_ptr<ProgressDisplay> m_display;
    Phase m_phase = Phase::checkingTools;
    QTimer m_advance;
};

/// Runs the program without a window from its arguments to its exit status. Needs a
/// QCoreApplication.
int runHeadless(Controller& controller, const Arguments& arguments);

}  // namespace reelcrate
