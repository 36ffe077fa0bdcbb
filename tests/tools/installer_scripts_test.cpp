#include "tools/installer_scripts.h"

#include "support/machine.h"
#include "support/texts.h"

#include <QProcess>
#include <QStandardPaths>

namespace reelcrate {
namespace {

TEST(InstallerScripts, AreCleanBash) {
    const QString shellcheck = QStandardPaths::findExecutable(text("shellcheck"));
    if (shellcheck.isEmpty())
        GTEST_SKIP() << "there is no shellcheck here";
    Machine machine;
    const InstallerSources sources = InstallerSources::ofThisPlatform();
    const QString bin = text("/home/o'neil/my tools/bin");
    const QString scripts[] = {coreInstallScript(bin, sources, {text("yt-dlp")}),
                               spotifyInstallScript(bin, sources)};
    for (const QString& script : scripts) {
        const QString file = machine.path(text("script"));
        writeFile(file, script.toUtf8());
        QProcess check;
        check.start(shellcheck, {text("--shell=bash"), file});
        ASSERT_TRUE(check.waitForFinished());
        EXPECT_EQ(check.exitCode(), 0) << check.readAllStandardOutput().toStdString();
    }
}

TEST(InstallerSources, OnlyAMirrorMayBeWithoutEncryption) {
    const InstallerSources web = InstallerSources::ofThisPlatform();
    for (const QString& address : {web.ytDlpLatest, web.ytDlp, web.ytDlpSums, web.ffmpeg,
                                   web.ffprobe, web.deno, web.denoSum})
        EXPECT_TRUE(address.startsWith(text("https://"))) << address.toStdString();
    EXPECT_EQ(web.protocols, text("=https"));
    EXPECT_EQ(web.fromMirror(text("https://mirror")).protocols, text("=https"));
    EXPECT_EQ(web.fromMirror(text("http://127.0.0.1:1")).protocols, text("=http,https"));
}

}  // namespace
}  // namespace reelcrate
