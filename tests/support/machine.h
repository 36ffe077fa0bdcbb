#pragma once

#include "tools/process_supervisor.h"
#include "tools/tool_discovery.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

namespace reelcrate {

/// Waits in the event loop until the condition holds; false when that takes too long.
bool waitUntil(const std::function<bool()>& condition);

/// The pace of the tests' waiting for other processes, where there is no event to wait for.
bool pollUntil(const std::function<bool()>& condition);

bool writeFile(const QString& path, const QByteArray& content);
QByteArray readFile(const QString& path);

/// An MP3 of so many silent frames, 26 ms each.
QByteArray silentMp3(int frames = 20);

/// A machine for one test: a home of its own, no tools but those that the test installs, and
/// nothing left of it afterwards.
class Machine {
public:
    Machine();
    ~Machine();
    Q_DISABLE_COPY_MOVE(Machine)

    QString path(const QString& name) const { return m_folder.filePath(name); }
    ToolPlaces places() const;
    QString toolFolder() const;

    /// Puts a stand-in from tests/fakes into the private tool folder.
    void install(const QString& tool);
    void installScript(const QString& tool, const QByteArray& script);
    /// Puts the real converter there.
    void linkConverter();
    /// Puts a real song there, as song.mp3: half a second of silence, a tone of this length in
    /// seconds, half a second of silence.
    void installSong(double tone = 1.0);

    /// What the stand-ins were asked, a line each; a file that the stand-ins know.
    QStringList calls() const;
    void tell(const QString& file, const QByteArray& content = {});

    ProcessSupervisor supervisor;

private:
    QTemporaryDir m_folder;
    QByteArray m_formerHome;
};

}  // namespace reelcrate
