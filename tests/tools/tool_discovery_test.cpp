#include "tools/tool_discovery.h"

#include "base/background_tasks.h"
#include "base/main_queue.h"
#include "support/machine.h"
#include "support/printers.h"
#include "tools/shell_runner.h"
#include "tools/tool_readiness.h"

#include <QDir>

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

const QString tool = QStringLiteral("reelcrate-test-tool");  // of no machine's search path

class ToolDiscoveryTest : public testing::Test {
protected:
    ToolDiscoveryTest() {
        QDir().mkpath(resources + QStringLiteral("/DownloaderEngine/bin"));
        QDir().mkpath(resources + QStringLiteral("/Tools/bin"));
        QDir().mkpath(machine.path(QStringLiteral(".local/bin")));
        placesWithResources.resourceFolder = resources;
    }

    void put(const QString& path, bool executable) {
        writeFile(path, "#!/bin/sh\n");
        QFile::setPermissions(path, executable ? QFile::ReadOwner | QFile::ExeOwner
                                               : QFile::Permissions(QFile::ReadOwner));
    }

    Machine machine;
    ShellRunner shell{machine.supervisor};
    const QString resources = machine.path(QStringLiteral("lib/reelcrate"));
    ToolPlaces placesWithResources = machine.places();
};

TEST_F(ToolDiscoveryTest, PrefersTheShippedThenThePrivateThenTheSystemsCopy) {
    const ToolDiscovery discovery(shell, placesWithResources);
    EXPECT_EQ(discovery.resolvedTool(tool), std::nullopt);

    const struct {
        QString path;
        QString detail;
    } fromLastToFirst[] = {
        {machine.path(QStringLiteral(".local/bin/")) + tool,
         QStringLiteral("Ready - already on this Mac")},
        {machine.toolFolder() + u'/' + tool, QStringLiteral("Ready - installed privately")},
        {resources + QStringLiteral("/Tools/bin/") + tool,
         QStringLiteral("Ready - bundled with app")},
        {resources + QStringLiteral("/DownloaderEngine/bin/") + tool,
         QStringLiteral("Ready - bundled with app")},
    };
    std::optional<ResolvedTool> former;
    for (const auto& [path, detail] : fromLastToFirst) {
        SCOPED_TRACE(path.toStdString());
        if (former) {
            put(path, false);
            EXPECT_EQ(discovery.resolvedTool(tool), former) << "not executable";
        }
        put(path, true);
        former = ResolvedTool{path, detail};
        EXPECT_EQ(discovery.resolvedTool(tool), former);
    }
}

TEST_F(ToolDiscoveryTest, TheProfileDoesNotDecideWhatTheSystemHas) {
    // A login shell reads this first; neither its path nor its chatter may be taken for the answer.
    writeFile(machine.path(QStringLiteral(".bash_profile")),
              "PATH=/nowhere\necho Welcome\nown-tool() { :; }\n");
    put(machine.path(QStringLiteral(".local/bin/")) + tool, false);
    const ToolDiscovery discovery(shell, machine.places());
    EXPECT_EQ(discovery.systemToolPath(tool), machine.path(QStringLiteral(".local/bin/")) + tool);
    // No command of the program's would find the profile's function.
    EXPECT_EQ(discovery.systemToolPath(QStringLiteral("own-tool")), std::nullopt);
    EXPECT_EQ(discovery.systemToolPath(QStringLiteral("it's; echo x")), std::nullopt);
}

TEST_F(ToolDiscoveryTest, FindsWhatAShellWouldFind) {
    const QString first = machine.path(QStringLiteral("first"));
    const QString second = machine.path(QStringLiteral("second/"));
    const auto in = [](const QString& folder, const char* name) {
        return QDir(folder).filePath(QString::fromLatin1(name));
    };
    for (const QString& folder : {first, second, in(first, "folder")})
        QDir().mkpath(folder);
    for (const char* name : {"folder", "dangling", "plain", "link"})
        put(in(second, name), true);
    put(in(first, "plain"), false);
    put(in(first, "only-plain"), false);
    QFile::link(in(second, "plain"), in(first, "link"));
    QFile::link(in(second, "gone"), in(first, "dangling"));

    const QString relative = QDir().relativeFilePath(second);
    const struct {
        const char* name;
        QStringList folders;
        std::optional<QString> path;
    } cases[] = {
        {"folder", {first, second}, in(second, "folder")},
        {"dangling", {first, second}, in(second, "dangling")},
        {"plain", {first, second}, in(second, "plain")},
        {"link", {first, second}, in(first, "link")},
        {"link", {first + u':' + second}, in(first, "link")},
        {"link", {first, relative}, in(first, "link")},
        {"folder", {relative, second}, relative + QStringLiteral("/folder")},
        {"link", {QString(), second}, in(second, "link")},
        {"../first/link", {second}, std::nullopt},
        {"only-plain", {first, second}, in(first, "only-plain")},
        {"none", {first, second}, std::nullopt},
    };
    for (const auto& [name, folders, path] : cases) {
        SCOPED_TRACE((QString::fromLatin1(name) + u' ' + folders.join(u' ')).toStdString());
        ToolPlaces places = machine.places();
        places.systemFolders = folders;
        EXPECT_EQ(ToolDiscovery(shell, places).systemToolPath(QString::fromLatin1(name)), path);
    }
}

TEST_F(ToolDiscoveryTest, TheSearchPathBeginsWithTheProgramsOwnFolders) {
    const QString system = QStringLiteral(
        "/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin:%1/.local/bin");
    EXPECT_EQ(ToolDiscovery(shell, machine.places()).toolSearchPath(),
              machine.toolFolder() + u':' + system.arg(machine.places().home));

    ToolPlaces twice = placesWithResources;
    twice.appSupport = QStringLiteral("/usr");
    twice.home = QStringLiteral("/root");
    const QString own =
        QStringLiteral("/usr/Reelcrate/Tools/bin:%1/DownloaderEngine/bin:%1/Tools/bin:");
    EXPECT_EQ(ToolDiscovery(shell, twice).toolSearchPath(),
              own.arg(resources) + system.arg(twice.home));
}

TEST_F(ToolDiscoveryTest, ARelativeDataFolderIsIgnored) {
    const QString inHome = machine.path(QStringLiteral(".local/share"));
    const struct {
        QString folder;
        QString appSupport;
    } cases[] = {
        {machine.path(QStringLiteral("data")), machine.path(QStringLiteral("data"))},
        {QStringLiteral("data"), inHome},
        {QStringLiteral("./data"), inHome},
        {QString(), inHome},
    };
    const QByteArray former = qgetenv("XDG_DATA_HOME");
    for (const auto& [folder, appSupport] : cases) {
        qputenv("XDG_DATA_HOME", QFile::encodeName(folder));
        EXPECT_EQ(ToolPlaces::ofThisMachine().appSupport, appSupport) << folder.toStdString();
    }
    if (former.isNull())
        qunsetenv("XDG_DATA_HOME");
    else
        qputenv("XDG_DATA_HOME", former);
}

TEST_F(ToolDiscoveryTest, AUsersBareMachineNamesWhatIsMissing) {
    const ToolDiscovery discovery(shell, machine.places());
    MainQueue mainQueue;
    BackgroundTasks background;
    ToolReadiness readiness(shell, discovery, background, mainQueue);
    EXPECT_FALSE(readiness.coreToolsReady());
    EXPECT_EQ(readiness.setupDetailText(),
              QStringLiteral("Check downloader tools before adding songs."));

    machine.install(QStringLiteral("yt-dlp"));
    machine.linkConverter();
    QString summary;
    QObject::connect(&readiness, &ToolReadiness::summaryChanged,
                     [&](const QString& text) { summary = text; });
    readiness.checkTools();
    EXPECT_TRUE(readiness.isCheckingTools());
    ASSERT_TRUE(waitUntil([&] { return !readiness.isCheckingTools(); }));
    background.join();

    EXPECT_TRUE(readiness.coreToolsReady());
    EXPECT_EQ(summary, QStringLiteral("Downloader tools are ready"));
    EXPECT_TRUE(readiness.missingRequiredTools().isEmpty());
    EXPECT_EQ(readiness.setupDetailText(),
              QStringLiteral("YouTube and Facebook are ready. Spotify matching is optional."));
    EXPECT_EQ(
        readiness.toolLog(),
        QStringLiteral("Checking required tools...\n"
                       "OK: YouTube/Facebook Engine - Ready - installed privately\n"
                       "OK: Audio/Video Converter - Ready - installed privately\n"
                       "Missing: Spotify Link Resolver - Optional - install only if using "
                       "Spotify links\n"
                       "Missing: YouTube Script Runner - Optional - click Setup, some YouTube "
                       "videos need it\n"
                       "yt-dlp stand-in, installed privately\n"));
}

TEST_F(ToolDiscoveryTest, ASystemsYtDlpThatIsTooOldCountsAsMissing) {
    ToolPlaces places = machine.places();
    places.systemFolders = {machine.path(QStringLiteral("bin"))};
    QDir().mkpath(places.systemFolders.first());
    const QString ytDlp = places.systemFolders.first() + QStringLiteral("/yt-dlp");
    put(places.systemFolders.first() + QStringLiteral("/ffmpeg"), true);
    const ToolDiscovery discovery(shell, places);
    MainQueue mainQueue;
    BackgroundTasks background;
    ToolReadiness readiness(shell, discovery, background, mainQueue);
    QString summary;
    QObject::connect(&readiness, &ToolReadiness::summaryChanged,
                     [&](const QString& text) { summary = text; });
    const struct {
        const char* answer;
        bool isReady;
    } cases[] = {
        {"echo 2023.03.04", false}, {"echo 2024.04.08.1", false},      {"echo 2024.04.09", true},
        {"echo nightly", true},     {"echo 2023.03.04; exit 1", true},
    };
    for (const auto& [answer, isReady] : cases) {
        SCOPED_TRACE(answer);
        writeFile(ytDlp, QByteArray("#!/bin/bash\n") + answer + '\n');
        QFile::setPermissions(ytDlp, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        readiness.checkTools();
        ASSERT_TRUE(waitUntil([&] { return !readiness.isCheckingTools(); }));
        EXPECT_EQ(readiness.coreToolsReady(), isReady);
        EXPECT_EQ(summary, isReady ? QStringLiteral("Downloader tools are ready")
                                   : QStringLiteral("Setup needs attention"));
        EXPECT_EQ(readiness.toolLog().contains(QStringLiteral("2024.04.09 or newer is needed")),
                  !isReady);
        EXPECT_EQ(discovery.toolPath(QStringLiteral("yt-dlp")), ytDlp);
    }

    // A private copy counts, whatever its age: Setup has a newer one.
    writeFile(ytDlp, "#!/bin/bash\necho 2023.03.04\n");
    machine.installScript(QStringLiteral("yt-dlp"), "#!/bin/bash\necho 2023.03.04\n");
    readiness.checkTools();
    ASSERT_TRUE(waitUntil([&] { return !readiness.isCheckingTools(); }));
    EXPECT_TRUE(readiness.coreToolsReady());
}

TEST_F(ToolDiscoveryTest, ASystemsDenoThatYtDlpPassesOverCountsAsMissing) {
    ToolPlaces places = machine.places();
    places.systemFolders = {machine.path(QStringLiteral("bin"))};
    QDir().mkpath(places.systemFolders.first());
    const ToolDiscovery discovery(shell, places);
    MainQueue mainQueue;
    BackgroundTasks background;
    ToolReadiness readiness(shell, discovery, background, mainQueue);
    for (const auto& [answer, isReady] : {std::pair{"deno 1.46.3 (stable, release)", false},
                                          {"deno 2.2.9 (stable)", false},
                                          {"deno 2.3.0 (stable)", true},
                                          {"deno 2.10.1 (stable)", true},
                                          {"something else", true}}) {
        SCOPED_TRACE(answer);
        const QString deno = places.systemFolders.first() + QStringLiteral("/deno");
        writeFile(deno, QByteArray("#!/bin/bash\necho '") + answer + "'\n");
        QFile::setPermissions(deno, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        readiness.checkTools();
        ASSERT_TRUE(waitUntil([&] { return !readiness.isCheckingTools(); }));
        EXPECT_EQ(readiness.toolStates().last().isReady, isReady);
    }
}

}  // namespace
}  // namespace reelcrate
