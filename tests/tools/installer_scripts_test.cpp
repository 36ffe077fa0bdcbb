#include "tools/installer_scripts.h"

#include "support/machine.h"
#include "support/printers.h"

#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

TEST(InstallerScripts, AreCleanBash) {
    const QString shellcheck = QStandardPaths::findExecutable(QStringLiteral("shellcheck"));
    if (shellcheck.isEmpty())
        GTEST_SKIP() << "there is no shellcheck here";
    Machine machine;
    const InstallerSources sources = InstallerSources::ofThisPlatform();
    const QString bin = QStringLiteral("/home/o'neil/my tools/bin");
    const QString scripts[] = {coreInstallScript(bin, sources, {QStringLiteral("yt-dlp")}),
                               spotifyInstallScript(bin, sources)};
    for (const QString& script : scripts) {
        const QString file = machine.path(QStringLiteral("script"));
        writeFile(file, script.toUtf8());
        QProcess check;
        check.start(shellcheck, {QStringLiteral("--shell=bash"), file});
        ASSERT_TRUE(check.waitForFinished());
        EXPECT_EQ(check.exitCode(), 0) << check.readAllStandardOutput().toStdString();
    }
}

TEST(InstallerSources, OnlyAMirrorMayBeWithoutEncryption) {
    const InstallerSources web = InstallerSources::ofThisPlatform();
    for (const QString& address : {web.ytDlpLatest, web.ytDlp, web.ytDlpSums, web.ffmpeg,
                                   web.ffprobe, web.deno, web.denoSum})
        EXPECT_TRUE(address.startsWith(QStringLiteral("https://"))) << address.toStdString();
    EXPECT_EQ(web.protocols, QStringLiteral("=https"));
    EXPECT_EQ(web.fromMirror(QStringLiteral("https://mirror")).protocols, QStringLiteral("=https"));
    EXPECT_EQ(web.fromMirror(QStringLiteral("http://127.0.0.1:1")).protocols,
              QStringLiteral("=http,https"));
}

}  // namespace
}  // namespace reelcrate
