#include "tools/installer_scripts.h"

#include "tools/shell_quote.h"

#include <QList>

#include <utility>

namespace reelcrate {

namespace {

// Functions are called in conditions, where bash ignores -e: each step of theirs says what follows
// when it fails. A first line is taken by sed: head would cut the writer off, and pipefail count
// that as a failure.
constexpr const char* sharedBody = R"bash(
TOOLS="${BIN%/*}"
/bin/mkdir -p "$BIN"

# One Setup at a time, where the system has flock: two would sweep away each other's work.
LOCKED=
# shellcheck disable=SC2034 # not all scripts sweep
if command -v flock > /dev/null; then
    exec 9> "$TOOLS/.lock"
    if ! flock -n 9; then
        echo "Another Setup is at work: waiting for it to end."
        flock 9
    fi
    LOCKED=yes
fi

TMP="$("$MKTEMP" -d "$TOOLS/.new-XXXXXX")"
cleanup() { /bin/rm -rf "$TMP"; }
trap cleanup EXIT

# tell TEXT: what is worth telling again at the end
tell() { printf '\036%s\n' "$*"; }

# failed TEXT: why a step failed, if it is for want of room
failed() {
    local room
    room="$(/bin/df -Pk "$TOOLS" | "$SED" -n '2s/.* \([0-9][0-9]*\)  *[0-9]*% .*/\1/p')" || room=
    if [ -n "$room" ] && [ "$room" -lt 1024 ]; then
        tell "$1 The drive with $TOOLS is full."
    else
        tell "$1"
    fi
    return 1
}

is_tool() { [ -f "$1" ] && [ -x "$1" ]; }

# is_newer VERSION VERSION: whether the first is higher
is_newer() {
    local one two i
    IFS=. read -r -a one <<< "$1"
    IFS=. read -r -a two <<< "$2"
    for ((i = 0; i < ${#one[@]} || i < ${#two[@]}; ++i)); do
        if ((10#${one[i]:-0} != 10#${two[i]:-0})); then
            ((10#${one[i]:-0} > 10#${two[i]:-0}))
            return
        fi
    done
    return 1
}

# version_in TEXT: its first version number; fails when it has none
version_in() {
    [[ "$1" =~ [0-9]{1,9}(\.[0-9]{1,9})+ ]] && echo "${BASH_REMATCH[0]}"
}

# last_words FILE TEXT: the last line of what a program said, or the text when it said nothing
last_words() {
    local words
    # shellcheck disable=SC2016 # the last line, for sed
    words="$("$SED" -n '/[^[:space:]]/h; ${x;p;}' "$1" 2> /dev/null)" || words=
    echo "${words:-$2}"
}

# works FILE OPTION NAME: whether the new tool tells its version
works() {
    local status=0
    "$1" "$2" > "$TMP/version" 2> "$TMP/words" < /dev/null || status=$?
    [ "$status" -ne 0 ] || return 0
    failed "The downloaded $3 does not run on this machine." || true
    /bin/cat "$TMP/version" >> "$TMP/words"
    tell "$3: $(last_words "$TMP/words" "it ended with status $status and said nothing.")"
    return 1
}

# has_place NAME: whether nothing but a file or a link stands where the tool belongs
has_place() {
    [ -d "$BIN/$1" ] || return 0
    tell "$BIN/$1 is a folder. Remove it, so that Setup can install $1 there."
    return 1
}

# free_name NAME: that name, or it with a number, of which there is nothing yet in TOOLS
free_name() {
    local name="$1" number=1
    while [ -e "$TOOLS/$name" ] || [ -L "$TOOLS/$name" ]; do
        number=$((number + 1))
        name="$1-$number"
    done
    echo "$name"
}

# link TARGET NAME: swaps the link in BIN
link() {
    /bin/ln -s "$1" "$TMP/link" && /bin/mv -f "$TMP/link" "$BIN/$2"
}
)bash";

constexpr const char* coreBody = R"bash(
wants() { [[ " $WANTED " == *" $1 "* ]]; }

# is_used FOLDER: whether a program runs from it, or the link in BIN leads there
is_used() {
    local name target real
    for name in yt-dlp spotdl; do
        target="$(/usr/bin/readlink "$BIN/$name")" || continue
        [[ "$target" == */"${1##*/}"/* ]] && return 0
    done
    real="$(cd "$1" && pwd -P)" || return 1
    { /usr/bin/readlink /proc/[0-9]*/exe || true; } 2> /dev/null |
        grep -F -e "$real/" > /dev/null && return 0
    # By a file, since grep's own command line is among those that it reads.
    printf '%s/\n' "$1" "$real" > "$TMP/folders"
    grep -lsF -f "$TMP/folders" /proc/[0-9]*/cmdline > /dev/null
}

# Removes what a killed Setup left, and builds that were replaced in an earlier one.
sweep() {
    local each
    for each in "$TOOLS"/.new-* "$BIN"/.new-* "$TOOLS"/yt-dlp-* "$TOOLS"/spotdl-venv*; do
        { [ -e "$each" ] && [ "$each" != "$TMP" ]; } || continue
        [ -n "$LOCKED" ] || [ -n "$(/usr/bin/find "$each" -maxdepth 0 -mmin +60)" ] || continue
        is_used "$each" || /bin/rm -rf "$each"
    done
}

size() {
    local bytes
    bytes="$(($(/usr/bin/wc -c < "$1")))"
    if [ "$bytes" -lt 1000000 ]; then
        echo "$(((bytes + 999) / 1000)) kB"
    else
        echo "$((bytes / 1000000)).$((bytes / 100000 % 10)) MB"
    fi
}

# fetch FILE ADDRESS NAME
fetch() {
    echo "Downloading $3..."
    /usr/bin/curl -fL# --proto "$PROTOCOLS" --proto-redir "$PROTOCOLS" --retry 3 \
        --connect-timeout 20 --speed-limit 1 --speed-time 60 -o "$1" "$2" ||
        { failed "Could not download $3."; return 1; }
    echo "Downloaded $3: $(size "$1")."
}

# fetch_small FILE ADDRESS OPTION...: what is no tool, and held up by no stalled server
fetch_small() {
    /usr/bin/curl -fsS --proto "$PROTOCOLS" --proto-redir "$PROTOCOLS" \
        --max-time "$SMALL_SECONDS" -o "$1" "${@:3}" "$2" 2> "$TMP/words"
}

# unpack NAME: the archive NAME.zip into the folder NAME
unpack() {
    /usr/bin/unzip -qo "$TMP/$1.zip" -d "$TMP/$1" < /dev/null ||
        { failed "Could not unpack the downloaded $1."; return 1; }
    /bin/rm -f "$TMP/$1.zip"
}

# program_in NAME FILE: where the file is in the unpacked archive NAME; fails when it has none
program_in() {
    local found
    found="$(/usr/bin/find "$TMP/$1" -type f -name "$2" -perm "$EXECUTABLE" | "$SED" -n 1p)"
    if [ -z "$found" ]; then
        found="$(/usr/bin/find "$TMP/$1" -type f -name "$2" | "$SED" -n 1p)"
    fi
    if [ -z "$found" ]; then
        tell "Could not find $1 in the downloaded package."
        return 1
    fi
    /bin/chmod +x "$found" && echo "$found"
}

# matches_sum NAME ADDRESS SUMS-ADDRESS: compares NAME.zip with its published sum, if there is one
matches_sum() {
    local file="${2##*/}" published actual
    if ! fetch_small "$TMP/sums" "$3" -L; then
        tell "The checksum of $1 could not be had, so $1 was not compared with it:" \
            "$(last_words "$TMP/words" "no reason given")"
        return 0
    fi
    published="$(/usr/bin/tr -d '\r' < "$TMP/sums" | /usr/bin/tr A-F a-f |
        "$SED" -n "s/^\([0-9a-f]\{64\}\)\( [ *]*$file\)\{0,1\} *\$/\1/p" | "$SED" -n 1p)"
    if [ -z "$published" ]; then
        tell "The published checksums do not name $file, so $1 was not compared with one."
        return 0
    fi
    actual="$($SHA256 < "$TMP/$1.zip" | "$SED" 's/ .*//')"
    [ "$published" = "$actual" ] && return 0
    tell "The downloaded $1 does not match its published checksum."
    return 1
}

# install_program NAME ADDRESS SUMS-ADDRESS VERSION-OPTION: a tool that is one file
install_program() {
    local program
    has_place "$1" || return 1
    fetch "$TMP/$1.zip" "$2" "$1" || return 1
    [ -z "$3" ] || matches_sum "$1" "$2" "$3" || return 1
    unpack "$1" || return 1
    program="$(program_in "$1" "$1")" || { echo "$program"; return 1; }
    works "$program" "$4" "$1" || return 1
    /bin/mv -f "$program" "$BIN/$1" || failed "Could not install $1."
}

# install_ytdlp PRIVATE-VERSION: into a folder named after its version, which INSTALLED holds then
install_ytdlp() {
    local program folder
    has_place yt-dlp || return 1
    fetch "$TMP/yt-dlp.zip" "$YTDLP" yt-dlp || return 1
    matches_sum yt-dlp "$YTDLP" "$YTDLP_SUMS" || return 1
    unpack yt-dlp || return 1
    folder="${YTDLP##*/}"
    program="$(program_in yt-dlp "${folder%.zip}")" || { echo "$program"; return 1; }
    works "$program" --version yt-dlp || return 1
    INSTALLED="$(version_in "$(last_words "$TMP/version" "")")" || INSTALLED=unknown
    if [ -n "$1" ] && ! { [ "$INSTALLED" != unknown ] && is_newer "$INSTALLED" "$1"; }; then
        tell "The downloaded yt-dlp is $INSTALLED, which is no newer."
        return 1
    fi
    folder="$(free_name "yt-dlp-$INSTALLED")"
    { /bin/mv "${program%/*}" "$TOOLS/$folder" && link "../$folder/${program##*/}" yt-dlp; } ||
        failed "Could not install yt-dlp."
}

# Prints the version of the newest yt-dlp: the tag that its address leads to, or that is there.
newest_ytdlp() {
    local leads
    leads="$(fetch_small "$TMP/latest" "$YTDLP_LATEST" -w '%{redirect_url}')" || return 1
    leads="${leads##*/}"
    [ -n "$leads" ] || leads="$("$SED" -n 1p "$TMP/latest")"
    echo "The answer names no version." > "$TMP/words"
    [[ "$leads" =~ ^[0-9.]+[[:space:]]*$ ]] && version_in "$leads"
}

setup_ytdlp() {
    local private='' newest=''
    if is_tool "$BIN/yt-dlp"; then
        echo "yt-dlp already installed privately."
        if "$BIN/yt-dlp" --version > "$TMP/version" 2> "$TMP/words" < /dev/null; then
            private="$(version_in "$(last_words "$TMP/version" "")")" || private=
        fi
        if [ -z "$private" ]; then
            tell "The private yt-dlp does not tell its version, so a new one is installed."
        fi
    elif ! wants yt-dlp; then
        return 0
    fi
    newest="$(newest_ytdlp)" || newest=
    if [ -n "$private" ] && [ -z "$newest" ]; then
        tell "The newest version of yt-dlp could not be asked for, so $private stays:" \
            "$(last_words "$TMP/words" "no reason given")"
    elif [ -n "$private" ] && ! is_newer "$newest" "$private"; then
        tell "yt-dlp $private is the newest."
    elif install_ytdlp "$private"; then
        if [ -n "$private" ]; then tell "yt-dlp: $private -> $INSTALLED"; fi
    elif [ -n "$private" ]; then
        tell "yt-dlp $private stays."
    else
        return 1
    fi
}

sweep
echo "Installing private downloader tools in $BIN"
setup_ytdlp || exit 1

if is_tool "$BIN/ffmpeg"; then
    echo "ffmpeg already installed privately."
elif wants ffmpeg; then
    install_program ffmpeg "$FFMPEG" "" -version || exit 1
fi

if wants ffprobe && ! is_tool "$BIN/ffprobe"; then
    install_program ffprobe "$FFPROBE" "" -version ||
        tell "ffprobe was not installed. Without one, yt-dlp cannot make MP3 files."
fi

if wants deno && ! is_tool "$BIN/deno"; then
    install_program deno "$DENO" "$DENO_SUM" --version ||
        tell "Deno was not installed. Downloads can still work, but some YouTube videos need it."
fi

if is_tool "$BIN/yt-dlp"; then "$BIN/yt-dlp" --version | "$SED" 's/^/yt-dlp: /'; fi
if is_tool "$BIN/ffmpeg"; then "$BIN/ffmpeg" -version | "$SED" -n 1p; fi
echo "Private downloader tools are ready."
)bash";

constexpr const char* spotifyBody = R"bash(
PYTHON="$(PATH="/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin" command -v python3 || true)"
if [ -z "$PYTHON" ]; then
    echo "Python 3 was not found, so the optional Spotify helper was skipped."
    exit 1
fi

# install_spotdl FOLDER
install_spotdl() {
    has_place spotdl &&
        "$PYTHON" -m venv "$1" &&
        "$1/bin/python" -m pip install --upgrade pip &&
        "$1/bin/python" -m pip install --upgrade spotdl &&
        works "$1/bin/spotdl" --version spotdl &&
        link "$1/bin/spotdl" spotdl
}

private=
if is_tool "$BIN/spotdl" && [ ! -L "$BIN/spotdl" ]; then
    echo "spotdl already installed privately."
    exit 0
fi
if is_tool "$BIN/spotdl"; then
    PRIVATE_PYTHON="$(/usr/bin/readlink "$BIN/spotdl")" || PRIVATE_PYTHON=
    PRIVATE_PYTHON="${PRIVATE_PYTHON%/*}/python"
    private="$(version_in "$("$PRIVATE_PYTHON" -c 'import importlib.metadata
print(importlib.metadata.version("spotdl"))' 2> "$TMP/words")")" || private=
fi
if [ -n "$private" ]; then
    newest="$("$PRIVATE_PYTHON" -m pip index versions spotdl --retries 1 --timeout 15 \
        2> "$TMP/words" | "$SED" -n '1s/^spotdl (\([0-9.]*\)).*/\1/p')" || newest=
    if [ -z "$newest" ]; then
        tell "The newest version of spotdl could not be asked for, so $private stays:" \
            "$(last_words "$TMP/words" "no reason given")"
        exit 0
    fi
    if ! is_newer "$newest" "$private"; then
        tell "spotdl $private is the newest."
        exit 0
    fi
fi

echo "Installing optional Spotify helper..."
ENVIRONMENT="$TOOLS/$(free_name spotdl-venv)"
if ! install_spotdl "$ENVIRONMENT"; then
    /bin/rm -rf "$ENVIRONMENT"
    [ -n "$private" ] || exit 1
    tell "spotdl $private stays."
    exit 0
fi
installed="$(version_in "$(last_words "$TMP/version" "")")" || installed=unknown
if [ -n "$private" ]; then tell "spotdl: $private -> $installed"; fi
"$BIN/spotdl" --version || true
echo "Optional Spotify helper is ready."
)bash";

using Variables = QList<std::pair<QString, QString>>;

QString script(const QString& bin, const InstallerSources& sources, Variables variables,
               const char* body) {
    variables.prepend({QStringLiteral("SED"), sources.sed});
    variables.prepend({QStringLiteral("MKTEMP"), sources.mktemp});
    variables.prepend({QStringLiteral("BIN"), bin});
    QString text = QStringLiteral("set -euo pipefail");
    for (const auto& [name, value] : variables)
        text += u'\n' + name + u'=' + shellQuoted(value);
    return text + QString::fromLatin1(sharedBody) + QString::fromLatin1(body);
}

}  // namespace

QString coreInstallScript(const QString& bin, const InstallerSources& sources,
                          const QStringList& wanted) {
    return script(bin, sources,
                  {{QStringLiteral("WANTED"), wanted.join(u' ')},
                   {QStringLiteral("YTDLP_LATEST"), sources.ytDlpLatest},
                   {QStringLiteral("YTDLP"), sources.ytDlp},
                   {QStringLiteral("YTDLP_SUMS"), sources.ytDlpSums},
                   {QStringLiteral("FFMPEG"), sources.ffmpeg},
                   {QStringLiteral("FFPROBE"), sources.ffprobe},
                   {QStringLiteral("DENO"), sources.deno},
                   {QStringLiteral("DENO_SUM"), sources.denoSum},
                   {QStringLiteral("PROTOCOLS"), sources.protocols},
                   {QStringLiteral("SMALL_SECONDS"), QString::number(sources.smallFileSeconds)},
                   {QStringLiteral("EXECUTABLE"), sources.executablePermission},
                   {QStringLiteral("SHA256"), sources.sha256}},
                  coreBody);
}

QString spotifyInstallScript(const QString& bin, const InstallerSources& sources) {
    return script(bin, sources, {}, spotifyBody);
}

}  // namespace reelcrate
