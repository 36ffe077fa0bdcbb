#include "tools/tool_discovery.h"

#include "support/machine.h"
#include "support/texts.h"
#include "tools/shell_runner.h"

#include <QDir>

namespace reelcrate {
namespace {

const QString tool = text("reelcrate-test-tool");  // of no machine's search path

class ToolDiscoveryTest : public testing::Test {
protected:
    ToolDiscoveryTest() {
        QDir().mkpath(resources + text("/DownloaderEngine/bin"));
        QDir().mkpath(resources + text("/Tools/bin"));
        QDir().mkpath(machine.path(text(".local/bin")));
        placesWithResources.resourceFolder = resources;
    }

    void put(const QString& path, bool executable) {
        writeFile(path, "#!/bin/sh\n");
        QFile::setPermissions(path, executable ? QFile::ReadOwner | QFile::ExeOwner
                                               : QFile::Permissions(QFile::ReadOwner));
    }

    Machine machine;
    ShellRunner shell{machine.supervisor};
    const QString resources = machine.path(text("lib/reelcrate"));
    ToolPlaces placesWithResources = machine.places();
};

TEST_F(ToolDiscoveryTest, PrefersTheShippedThenThePrivateThenTheSystemsCopy) {
    const ToolDiscovery discovery(shell, placesWithResources);
    EXPECT_EQ(discovery.resolvedTool(tool), std::nullopt);

    const struct {
        QString path;
        QString detail;
    } fromLastToFirst[] = {
        {machine.path(text(".local/bin/")) + tool, text("Ready - already on this Mac")},
        {machine.toolFolder() + u'/' + tool, text("Ready - installed privately")},
        {resources + text("/Tools/bin/") + tool, text("Ready - bundled with app")},
        {resources + text("/DownloaderEngine/bin/") + tool, text("Ready - bundled with app")},
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
    writeFile(machine.path(text(".bash_profile")),
              "PATH=/nowhere\necho Welcome\nown-tool() { :; }\n");
    put(machine.path(text(".local/bin/")) + tool, false);
    const ToolDiscovery discovery(shell, machine.places());
    EXPECT_EQ(discovery.systemToolPath(tool), machine.path(text(".local/bin/")) + tool);
    // No command of the program's would find the profile's function.
    EXPECT_EQ(discovery.systemToolPath(text("own-tool")), std::nullopt);
    EXPECT_EQ(discovery.systemToolPath(text("it's; echo x")), std::nullopt);
}

TEST_F(ToolDiscoveryTest, FindsWhatAShellWouldFind) {
    const QString first = machine.path(text("first"));
    const QString second = machine.path(text("second/"));
    const auto in = [](const QString& folder, const char* name) {
        return QDir(folder).filePath(text(name));
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
        {"folder", {relative, second}, relative + text("/folder")},
        {"link", {QString(), second}, in(second, "link")},
        {"../first/link", {second}, std::nullopt},
        {"only-plain", {first, second}, in(first, "only-plain")},
        {"none", {first, second}, std::nullopt},
    };
    for (const auto& [name, folders, path] : cases) {
        SCOPED_TRACE((text(name) + u' ' + folders.join(u' ')).toStdString());
        ToolPlaces places = machine.places();
        places.systemFolders = folders;
        EXPECT_EQ(ToolDiscovery(shell, places).systemToolPath(text(name)), path);
    }
}

TEST_F(ToolDiscoveryTest, TheSearchPathBeginsWithTheProgramsOwnFolders) {
    const QString system =
        text("/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin:%1/.local/bin");
    EXPECT_EQ(ToolDiscovery(shell, machine.places()).toolSearchPath(),
              machine.toolFolder() + u':' + system.arg(machine.places().home));

    ToolPlaces twice = placesWithResources;
    twice.appSupport = text("/usr");
    twice.home = text("/root");
    const QString own = text("/usr/Reelcrate/Tools/bin:%1/DownloaderEngine/bin:%1/Tools/bin:");
    EXPECT_EQ(ToolDiscovery(shell, twice).toolSearchPath(),
              own.arg(resources) + system.arg(twice.home));
}

TEST_F(ToolDiscoveryTest, ARelativeDataFolderIsIgnored) {
    const QString inHome = machine.path(text(".local/share"));
    const struct {
        QString folder;
        QString appSupport;
    } cases[] = {
        {machine.path(text("data")), machine.path(text("data"))},
        {text("data"), inHome},
        {text("./data"), inHome},
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

}  // namespace
}  // namespace reelcrate
