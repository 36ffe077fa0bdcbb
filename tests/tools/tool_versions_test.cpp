#include "tools/tool_versions.h"

#include "support/machine.h"
#include "support/texts.h"
#include "tools/shell_runner.h"

#include <QDir>

namespace reelcrate {
namespace {

TEST(ToolVersions, TheAgeIsThatOfTheRelease) {
    const QDate today(2026, 11, 23);
    const struct {
        const char* version;
        std::optional<qint64> days;
    } cases[] = {
        {"2025.04.30", 572},          {"2026.11.23", 0},
        {"2026.11.22.1", 1},          {"2026.08.25", 90},
        {"2026.10.26.232850", 28},    {"2026.11.24", std::nullopt},
        {"2026.13.01", std::nullopt}, {"2026.08.251", std::nullopt},
        {"4.4.3", std::nullopt},      {"", std::nullopt},
    };
    for (const auto& [version, days] : cases)
        EXPECT_EQ(ageInDays(text(version), today), days) << version;
}

TEST(ToolVersions, AnOldOneSaysWhatToDo) {
    const auto line = [](const char* version, std::optional<qint64> days, const QString& detail) {
        return versionLine({text("yt-dlp"), text(version), days, text("/x/yt-dlp"), detail})
            .toStdString();
    };
    const QString system = ResolvedTool::readyOnSystem;
    EXPECT_EQ(line("2025.04.30", 572, system),
              "yt-dlp 2025.04.30, 572 days old, from the system: Setup brings the newest");
    EXPECT_EQ(line("2026.08.25", 90, system), "yt-dlp 2026.08.25, 90 days old, from the system");
    EXPECT_EQ(line("2026.08.24", 91, ResolvedTool::readyPrivately),
              "yt-dlp 2026.08.24, 91 days old, installed privately: Setup asks for a newer one");
    EXPECT_EQ(line("2026.08.24", 91, ResolvedTool::readyBundled),
              "yt-dlp 2026.08.24, 91 days old, bundled with the program");
    EXPECT_EQ(line("2026.11.22", 1, system), "yt-dlp 2026.11.22, 1 day old, from the system");
    EXPECT_EQ(line("", std::nullopt, system), "yt-dlp of unknown version, from the system");
}

TEST(ToolVersions, EachToolSaysItInItsOwnWay) {
    const struct {
        const char* command;
        const char* output;
        const char* version;
    } cases[] = {
        {"yt-dlp", "Welcome\nDeprecated Feature: old Python\n2025.04.30\n", "2025.04.30"},
        {"ffmpeg",
         "Welcome\nffmpeg version 5.1.7-0+deb12u1 Copyright (c) 2000-2025\nbuilt with gcc 12\n",
         "5.1.7-0+deb12u1"},
        {"deno", "deno 2.5.6 (stable, release, x86_64-unknown-linux-gnu)\nv8 14.0\n", "2.5.6"},
        {"deno", "bash: no such thing\n", ""},
        {"spotdl", "4.4.3\n", "4.4.3"},
    };
    for (const auto& [command, output, version] : cases) {
        EXPECT_EQ(versionIn(text(command), text(output)), text(version));
    }
}

TEST(ToolVersions, SetupsFolderTellsItWithoutStartingTheTool) {
    Machine machine;
    ShellRunner shell(machine.supervisor);
    const QString tools = QDir::cleanPath(machine.toolFolder() + text("/.."));
    const QString link = machine.toolFolder() + text("/yt-dlp");
    const ToolDiscovery discovery(shell, machine.places());
    for (const char* folder : {"yt-dlp-2026.10.26", "yt-dlp-2026.10.26-2"}) {
        const QString build = tools + u'/' + text(folder);
        QDir().mkpath(build);
        machine.installScript(text("../%1/yt-dlp_linux").arg(QLatin1String(folder)),
                              "#!/bin/bash\necho asked\n");
        QFile::remove(link);
        QFile::link(text("../%1/yt-dlp_linux").arg(QLatin1String(folder)), link);
        const auto tool = discovery.resolvedTool(text("yt-dlp"));
        ASSERT_TRUE(tool);
        EXPECT_EQ(askedVersion(text("yt-dlp"), *tool, shell).version, text("2026.10.26"));
    }
    QFile::remove(link);
    machine.installScript(text("yt-dlp"), "#!/bin/bash\necho 2024.08.06\n");
    const auto tool = discovery.resolvedTool(text("yt-dlp"));
    ASSERT_TRUE(tool);
    const ToolVersion found = askedVersion(text("yt-dlp"), *tool, shell);
    EXPECT_EQ(found.version, text("2024.08.06"));
    EXPECT_TRUE(found.isStale());
}

}  // namespace
}  // namespace reelcrate
