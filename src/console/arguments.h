#pragma once

#include "records/download_mode.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What the command line asks for. Pure, but for the help text's use of the application's name.
namespace reelcrate {

struct Arguments {
    enum class Action { showHelp, showVersion, checkUpdate, setUp, checkFolder, download };

    Action action = Action::download;
    bool headless = false;
    bool json = false;
    bool startsDownloads = false;       ///< in the window: once the links have been read
    bool savesPlaylist = false;         ///< without a window: at the run's end
    std::optional<QString> reportPath;  ///< without a window: where the account goes
    std::optional<QString> eventName;
    std::optional<QString> outputFolder;
    QString checkedFolder;  ///< for checkFolder
    bool loudness = false;  ///< of songs: tagged after their download, measured by a check
    DownloadMode mode = DownloadMode::audio;
    QStringList texts;  ///< texts with links in them; "-" stands for standard input
    QStringList lists;  ///< files with songs in them; likewise

    QString usageError;  ///< empty unless the command line is wrong

    bool needsWindow() const { return action == Action::download && !headless; }
};

/// `commandLine` begins with the program's name.
Arguments parseArguments(const QStringList& commandLine);

QString helpText();

}  // namespace reelcrate
