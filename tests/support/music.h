#pragma once

#include "support/machine.h"
#include "tools/shell_runner.h"
#include "tools/tool_discovery.h"

#include <QString>
#include <QTemporaryDir>

/// A folder with songs that the real ffmpeg makes, and what it takes to look at them.
namespace reelcrate {

class Music {
public:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    /// Runs ffmpeg in the folder; the words are a shell's.
    CommandResult ffmpeg(const QString& words);

    /// A song or film of this name; the words tell ffmpeg what to write. Its path.
    QString make(const QString& name, const QString& words);

    /// How many bytes ffmpeg writes on standard output.
    qint64 bytesFrom(const QString& words);

    Machine machine;
    ShellRunner shell{machine.supervisor};
    ToolDiscovery discovery{shell, machine.places()};

private:
    QTemporaryDir m_folder;
};

}  // namespace reelcrate
