// What is found on a machine, and what Setup makes of it.

#include "tools/tool_readiness.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "support/machine.h"
#include "support/texts.h"
#include "tools/shell_runner.h"
#include "tools/tool_installer.h"

#include <QDir>

#include <algorithm>

namespace reelcrate {
namespace {

class ToolReadinessTest : public testing::Test {
protected:
    ToolReadinessTest() {
        QDir().mkpath(systemFolder);
        QObject::connect(&readiness, &ToolReadiness::summaryChanged,
                         [this](const QString& text) { summary = text; });
        QObject::connect(&readiness, &ToolReadiness::toolLogAppended,
                         [this](const QString& text) { told += text; });
        QObject::connect(&installer, &ToolInstaller::progressChanged,
                         [this](const QString& shown) { told += text("progress ") + shown; });
    }
    ~ToolReadinessTest() override {
        shell.endEverything();
        background.join();
    }

    ToolPlaces places() const {
        ToolPlaces places = machine.places();
        places.systemFolders = {systemFolder};
        return places;
    }

    /// Files of this machine instead of the web's.
    InstallerSources sources() const {
        const QString web = text("file://") + machine.path(text("web"));
        InstallerSources sources = InstallerSources::ofThisPlatform().fromMirror(web);
        sources.protocols = text("=file");
        return sources;
    }

    static QByteArray saying(const char* answer) {
        return QByteArray("#!/bin/bash\necho '") + answer + "'\n";
    }

    /// Gives the system a tool that answers so.
    void put(const char* tool, const char* answer) const {
        const QString path = systemFolder + u'/' + text(tool);
        writeFile(path, saying(answer));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void check() {
        readiness.checkTools();
        EXPECT_TRUE(readiness.isCheckingTools());
        waitForEnd();
    }

    void waitForEnd() {
        ASSERT_TRUE(waitUntil(
            [this] { return !readiness.isCheckingTools() && !installer.isInstallingTools(); }));
    }

    /// All that Setup tells.
    QString setUp() {
        told.clear();
        installer.performSetup();
        installer.performSetup();  // which changes nothing
        waitForEnd();
        return told;
    }

    Machine machine;
    const QString systemFolder = machine.path(text("bin"));
    ShellRunner shell{machine.supervisor};
    const ToolDiscovery discovery{shell, places()};
    MainQueue mainQueue;
    BackgroundTasks background;
    ToolReadiness readiness{shell, discovery, background, mainQueue};
    ToolInstaller installer{shell, discovery, readiness, background, mainQueue, sources()};
    QString summary;
    QString told;
};

TEST_F(ToolReadinessTest, AUsersBareMachineNamesWhatIsMissing) {
    EXPECT_FALSE(readiness.coreToolsReady());
    EXPECT_EQ(readiness.setupDetailText(), text("Check downloader tools before adding songs."));
    machine.install(text("yt-dlp"));
    machine.linkConverter();
    check();
    EXPECT_TRUE(readiness.coreToolsReady());
    EXPECT_EQ(summary, text("Downloader tools are ready"));
    EXPECT_TRUE(readiness.missingRequiredTools().isEmpty());
    EXPECT_EQ(readiness.setupDetailText(),
              text("YouTube and Facebook are ready. Spotify matching is optional."));
    EXPECT_EQ(readiness.toolLog(),
              text("Checking required tools...\n"
                   "OK: YouTube/Facebook Engine - Ready - installed privately\n"
                   "OK: Audio/Video Converter - Ready - installed privately\n"
                   "Missing: Spotify Link Resolver - Optional - install only if using "
                   "Spotify links\n"
                   "Missing: YouTube Script Runner - Optional - click Setup, some YouTube "
                   "videos need it\n"
                   "yt-dlp stand-in, installed privately\n"));
    const QStringList versions = toolVersionLines(discovery, shell);
    EXPECT_FALSE(versions.at(1).contains(text("unknown"))) << versions.at(1).toStdString();
    EXPECT_EQ(versions.last(), text("spotdl not found"));
}

TEST_F(ToolReadinessTest, ASystemsToolThatIsTooOldCountsAsMissing) {
    put("ffmpeg", "");
    const struct {
        const char* tool;
        const char* answer;
        bool isReady;
    } cases[] = {
        {"yt-dlp", "2023.03.04", false},          {"yt-dlp", "2024.04.08.1", false},
        {"yt-dlp", "2024.04.09", true},           {"yt-dlp", "nightly", true},
        {"yt-dlp", "2023.03.04'; exit '1", true}, {"deno", "deno 1.46.3 (stable, release)", false},
        {"deno", "deno 2.2.9 (stable)", false},   {"deno", "deno 2.3.0 (stable)", true},
        {"deno", "deno 2.10.1 (stable)", true},   {"deno", "something else", true},
        {"yt-dlp", "2023.03.04", false},
    };
    for (const auto& [tool, answer, isReady] : cases) {
        SCOPED_TRACE(answer);
        put(tool, answer);
        check();
        const auto& states = readiness.toolStates();
        EXPECT_EQ(std::any_of(states.begin(), states.end(),
                              [tool = text(tool)](const ToolState& state) {
                                  return state.command == tool && state.isReady;
                              }),
                  isReady);
        EXPECT_EQ(summary == text("Downloader tools are ready"), readiness.coreToolsReady());
        EXPECT_EQ(readiness.toolLog().contains(text(" or newer is needed")), !isReady);
    }
    EXPECT_TRUE(readiness.toolLog().contains(text("2024.04.09 or newer is needed")));
    EXPECT_EQ(summary, text("Setup needs attention"));

    // A private copy counts, whatever its age: Setup has a newer one.
    machine.installScript(text("yt-dlp"), saying("2023.03.04"));
    check();
    EXPECT_TRUE(readiness.coreToolsReady());
}

TEST_F(ToolReadinessTest, SetupTellsItsNewsAgainAndLeavesTheMachinesOwnToolsAlone) {
    QDir().mkpath(machine.path(text("web")));
    writeFile(machine.path(text("web/latest")), "2026.10.26\n");
    machine.installScript(text("yt-dlp"), saying("2026.10.26"));
    machine.linkConverter();
    put("spotdl", "4.4.3");
    EXPECT_FALSE(setUp().contains(text("installer"))) << "first, what is missing is looked for";
    const QString news = text("yt-dlp 2026.10.26 is the newest.\n");
    const QString first = setUp();
    EXPECT_EQ(first.count(text("Starting private tool installer")), 1);
    EXPECT_EQ(first.count(news), 2);
    EXPECT_TRUE(first.contains(text("Could not download deno.")));
    EXPECT_TRUE(readiness.toolLog().startsWith(text("Checking"))) << "without the installer's";
    EXPECT_TRUE(readiness.toolLog().contains(news));
    EXPECT_FALSE(first.contains(text("Spotify helper")) || first.contains(text("progress")));

    ASSERT_TRUE(QFile::remove(machine.toolFolder() + text("/yt-dlp")));
    put("deno", "deno 2.3.0");
    for (const bool isFresh : {true, false}) {
        put("yt-dlp", isFresh ? "2999.01.01" : "2025.04.30");
        check();
        EXPECT_EQ(setUp().contains(text("Downloading yt-dlp")), !isFresh) << told.toStdString();
    }
    ASSERT_TRUE(QFile::remove(systemFolder + text("/spotdl")));
    check();
    EXPECT_FALSE(setUp().contains(text("Spotify helper"))) << "without a yt-dlp";
}

}  // namespace
}  // namespace reelcrate
