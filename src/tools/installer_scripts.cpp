#include "tools/installer_scripts.h"

#include "tools/shell_quote.h"

#include <QStringList>
#include <QSysInfo>

#include <utility>

namespace reelcrate {

namespace {

const QString releases =
    QStringLiteral("https://github.com/yt-dlp/yt-dlp/releases/latest/download/");

InstallerSources macSources() {
    const QString builds = QStringLiteral("https://evermeet.cx/ffmpeg/getrelease/");
    return {
        .ytDlp = releases + QStringLiteral("yt-dlp_macos"),
        .ytDlpSums = releases + QStringLiteral("SHA2-256SUMS"),
        .ffmpeg = builds + QStringLiteral("ffmpeg/zip"),
        .ffprobe = builds + QStringLiteral("ffprobe/zip"),
        .executablePermission = QStringLiteral("+111"),
        .sha256 = QStringLiteral("/usr/bin/shasum -a 256"),
        .mktemp = QStringLiteral("/usr/bin/mktemp"),
        .sed = QStringLiteral("/usr/bin/sed"),
    };
}

InstallerSources linuxSources(bool isArm) {
    const QString builds =
        QStringLiteral("https://ffmpeg.martin-riedl.de/redirect/latest/linux/%1/release/")
            .arg(isArm ? QStringLiteral("arm64") : QStringLiteral("amd64"));
    return {
        .ytDlp = releases +
                 (isArm ? QStringLiteral("yt-dlp_linux_aarch64") : QStringLiteral("yt-dlp_linux")),
        .ytDlpSums = releases + QStringLiteral("SHA2-256SUMS"),
        .ffmpeg = builds + QStringLiteral("ffmpeg.zip"),
        .ffprobe = builds + QStringLiteral("ffprobe.zip"),
        .executablePermission = QStringLiteral("/111"),
        .sha256 = QStringLiteral("/usr/bin/sha256sum"),
        .mktemp = QStringLiteral("/bin/mktemp"),
        .sed = QStringLiteral("/bin/sed"),
    };
}

// sed instead of head for a first line: head would cut the writer off, and pipefail count that as
// a failure.
constexpr const char* coreBody = R"bash(
TMP="$("$MKTEMP" -d)"
cleanup() {
    /bin/rm -rf "$TMP"
    /bin/rm -f "$BIN/.new-$$-"*
}
trap cleanup EXIT
/bin/mkdir -p "$BIN"
/usr/bin/find "$BIN" -maxdepth 1 -name '.new-*' -mmin +60 -exec /bin/rm -f '{}' +
echo "Installing private downloader tools in $BIN"

is_tool() { [ -f "$1" ] && [ -x "$1" ]; }

# fetch FILE ADDRESS
fetch() { /usr/bin/curl -fL --retry 3 --connect-timeout 20 -o "$1" "$2"; }

# place NAME VERSION-OPTION: gives the new file its name if it works
place() {
    /bin/chmod +x "$BIN/.new-$$-$1"
    "$BIN/.new-$$-$1" "$2" > "$TMP/version" 2>&1 < /dev/null || return 1
    /bin/mv -f "$BIN/.new-$$-$1" "$BIN/$1"
}

# unpack NAME ADDRESS: the archive's file of that name as a new file; fails when it has none
unpack() {
    fetch "$TMP/$1.zip" "$2" || exit 1
    /usr/bin/unzip -qo "$TMP/$1.zip" -d "$TMP/$1" || exit 1
    local found
    found="$(/usr/bin/find "$TMP/$1" -type f -name "$1" -perm "$EXECUTABLE" | "$SED" -n 1p)"
    if [ -z "$found" ]; then
        found="$(/usr/bin/find "$TMP/$1" -type f -name "$1" | "$SED" -n 1p)"
    fi
    [ -n "$found" ] && /bin/cp "$found" "$BIN/.new-$$-$1"
}

# Compares the new yt-dlp with its published sum, when that can be had.
check_sum() {
    fetch "$TMP/sums" "$YTDLP_SUMS" > /dev/null 2>&1 || return 0
    local published actual
    published="$("$SED" -n "s/^\([0-9a-fA-F]*\) [ *]*${YTDLP##*/}\$/\1/p" "$TMP/sums" | "$SED" -n 1p)"
    actual="$($SHA256 "$BIN/.new-$$-yt-dlp" | "$SED" 's/ .*//')"
    if [ -n "$published" ] && [ "$published" != "$actual" ]; then
        echo "The downloaded yt-dlp does not match its published checksum."
        exit 1
    fi
}

if ! is_tool "$BIN/yt-dlp"; then
    echo "Downloading yt-dlp..."
    fetch "$BIN/.new-$$-yt-dlp" "$YTDLP"
    check_sum
    if ! place yt-dlp --version; then
        echo "The downloaded yt-dlp does not run on this machine."
        exit 1
    fi
else
    echo "yt-dlp already installed privately."
fi

if ! is_tool "$BIN/ffmpeg"; then
    echo "Downloading ffmpeg..."
    if ! unpack ffmpeg "$FFMPEG"; then
        echo "Could not find ffmpeg in the downloaded package."
        exit 1
    fi
    if ! place ffmpeg -version; then
        echo "The downloaded ffmpeg does not run on this machine."
        exit 1
    fi
else
    echo "ffmpeg already installed privately."
fi

if ! is_tool "$BIN/ffprobe"; then
    echo "Downloading ffprobe..."
    if unpack ffprobe "$FFPROBE"; then
        place ffprobe -version || true
    fi
fi

"$BIN/yt-dlp" --version | "$SED" 's/^/yt-dlp: /'
"$BIN/ffmpeg" -version | "$SED" -n 1p
echo "Private downloader tools are ready."
)bash";

constexpr const char* spotifyBody = R"bash(
PYTHON="$(PATH="/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin" command -v python3 || true)"
if [ -z "$PYTHON" ]; then
    echo "Python 3 was not found, so the optional Spotify helper was skipped."
    exit 1
fi
/bin/mkdir -p "$TOOLS" "$BIN"
echo "Installing optional Spotify helper..."
"$PYTHON" -m venv "$TOOLS/spotdl-venv"
"$TOOLS/spotdl-venv/bin/python" -m pip install --upgrade pip
"$TOOLS/spotdl-venv/bin/python" -m pip install --upgrade spotdl
/bin/ln -sf "$TOOLS/spotdl-venv/bin/spotdl" "$BIN/spotdl"
"$BIN/spotdl" --version || true
echo "Optional Spotify helper is ready."
)bash";

QString script(const QList<std::pair<QString, QString>>& variables, const char* body) {
    QString text = QStringLiteral("set -euo pipefail");
    for (const auto& [name, value] : variables)
        text += u'\n' + name + u'=' + shellQuoted(value);
    return text + QString::fromLatin1(body);
}

}  // namespace

InstallerSources InstallerSources::ofThisPlatform() {
    if (QSysInfo::kernelType() == QStringLiteral("darwin"))
        return macSources();
    return linuxSources(QSysInfo::buildCpuArchitecture() == QStringLiteral("arm64"));
}

InstallerSources InstallerSources::fromMirror(const QString& address) const {
    InstallerSources sources = *this;
    sources.ytDlp = address + QStringLiteral("/yt-dlp");
    sources.ytDlpSums = address + QStringLiteral("/SHA2-256SUMS");
    sources.ffmpeg = address + QStringLiteral("/ffmpeg.zip");
    sources.ffprobe = address + QStringLiteral("/ffprobe.zip");
    return sources;
}

QString coreInstallScript(const QString& bin, const InstallerSources& sources) {
    return script({{QStringLiteral("BIN"), bin},
                   {QStringLiteral("YTDLP"), sources.ytDlp},
                   {QStringLiteral("YTDLP_SUMS"), sources.ytDlpSums},
                   {QStringLiteral("FFMPEG"), sources.ffmpeg},
                   {QStringLiteral("FFPROBE"), sources.ffprobe},
                   {QStringLiteral("EXECUTABLE"), sources.executablePermission},
                   {QStringLiteral("SHA256"), sources.sha256},
                   {QStringLiteral("MKTEMP"), sources.mktemp},
                   {QStringLiteral("SED"), sources.sed}},
                  coreBody);
}

QString spotifyInstallScript(const QString& tools, const QString& bin) {
    return script({{QStringLiteral("TOOLS"), tools}, {QStringLiteral("BIN"), bin}}, spotifyBody);
}

}  // namespace reelcrate
