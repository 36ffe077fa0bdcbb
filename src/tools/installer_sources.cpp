#include "tools/installer_sources.h"

#include <QSysInfo>

namespace reelcrate {

namespace {

const QString ytDlpReleases = QStringLiteral("https://github.com/yt-dlp/yt-dlp/releases/latest");
const QString denoReleases =
    QStringLiteral("https://github.com/denoland/deno/releases/latest/download/deno-");
const QString httpsOnly = QStringLiteral("=https");

InstallerSources commonSources(const QString& ytDlpBuild, const QString& denoBuild) {
    InstallerSources sources;
    sources.ytDlpLatest = ytDlpReleases;
    sources.ytDlp = ytDlpReleases + QStringLiteral("/download/") + ytDlpBuild;
    sources.ytDlpSums = ytDlpReleases + QStringLiteral("/download/SHA2-256SUMS");
    sources.deno = denoReleases + denoBuild + QStringLiteral(".zip");
    sources.denoSum = sources.deno + QStringLiteral(".sha256sum");
    sources.protocols = httpsOnly;
    return sources;
}

InstallerSources macSources(bool isArm) {
    const QString builds = QStringLiteral("https://evermeet.cx/ffmpeg/getrelease/");
    InstallerSources sources = commonSources(
        QStringLiteral("yt-dlp_macos.zip"),
        isArm ? QStringLiteral("aarch64-apple-darwin") : QStringLiteral("x86_64-apple-darwin"));
    sources.ffmpeg = builds + QStringLiteral("ffmpeg/zip");
    sources.ffprobe = builds + QStringLiteral("ffprobe/zip");
    sources.executablePermission = QStringLiteral("+111");
    sources.sha256 = QStringLiteral("/usr/bin/shasum -a 256");
    sources.mktemp = QStringLiteral("/usr/bin/mktemp");
    sources.sed = QStringLiteral("/usr/bin/sed");
    return sources;
}

InstallerSources linuxSources(bool isArm) {
    const QString builds =
        QStringLiteral("https://ffmpeg.martin-riedl.de/redirect/latest/linux/%1/release/")
            .arg(isArm ? QStringLiteral("arm64") : QStringLiteral("amd64"));
    InstallerSources sources = commonSources(
        isArm ? QStringLiteral("yt-dlp_linux_aarch64.zip") : QStringLiteral("yt-dlp_linux.zip"),
        isArm ? QStringLiteral("aarch64-unknown-linux-gnu")
              : QStringLiteral("x86_64-unknown-linux-gnu"));
    sources.ffmpeg = builds + QStringLiteral("ffmpeg.zip");
    sources.ffprobe = builds + QStringLiteral("ffprobe.zip");
    sources.executablePermission = QStringLiteral("/111");
    sources.sha256 = QStringLiteral("/usr/bin/sha256sum");
    sources.mktemp = QStringLiteral("/bin/mktemp");
    sources.sed = QStringLiteral("/bin/sed");
    return sources;
}

}  // namespace

InstallerSources InstallerSources::ofThisPlatform() {
    const bool isArm = QSysInfo::buildCpuArchitecture() == QStringLiteral("arm64");
    return QSysInfo::kernelType() == QStringLiteral("darwin") ? macSources(isArm)
                                                              : linuxSources(isArm);
}

InstallerSources InstallerSources::fromMirror(const QString& address) const {
    const auto onMirror = [&address](const QString& file) {
        return address + u'/' + file.section(u'/', -1);
    };
    constexpr int secondsNearby = 5;
    InstallerSources sources = *this;
    sources.ytDlpLatest = onMirror(QStringLiteral("latest"));
    sources.ytDlp = onMirror(ytDlp);
    sources.ytDlpSums = onMirror(ytDlpSums);
    sources.ffmpeg = onMirror(QStringLiteral("ffmpeg.zip"));
    sources.ffprobe = onMirror(QStringLiteral("ffprobe.zip"));
    sources.deno = onMirror(deno);
    sources.denoSum = onMirror(denoSum);
    if (address.startsWith(QStringLiteral("http:")))
        sources.protocols = QStringLiteral("=http,https");
    sources.smallFileSeconds = secondsNearby;
    return sources;
}

}  // namespace reelcrate
