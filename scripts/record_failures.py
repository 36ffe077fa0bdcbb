#!/usr/bin/env python3
"""Records how the real yt-dlp fails, as samples for the tests that judge why.

Usage: record_failures.py [VERSION...], by default the machine's yt-dlp and the newest, which
scripts/setup puts beside the builds. Needs a root who may mount. Writes, for each,
tests/data/yt-dlp_failures_VERSION.txt, where a line "== NAME" begins a failure.

Nothing leaves the machine: the video site is played by a proxy on 127.0.0.1, whose answers say
what that site's own answers say. Of what changes from run to run, folders become /music/Event,
and ports 8000.
"""

import http.server
import json
import os
import re
import shutil
import socket
import ssl
import subprocess
import sys
import tempfile
import threading
from pathlib import Path
from urllib.parse import quote, urlsplit

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "demo"))

import loopback_site  # noqa: E402
import songs  # noqa: E402

NEWEST = ROOT / "build" / "newest-yt-dlp" / "usr"
SONG = songs.ALBUM[0]
VIDEO = "dQw4w9WgXcQ"
PLAIN = "HTTP%20Error%20429%20private"  # a page without media

# As the program has them, but for the patience.
AUDIO = "--no-update --newline --no-colors --no-abort-on-error --retries 0".split()
AUDIO += "--socket-timeout 2 -x --audio-format mp3 --audio-quality 0 --embed-thumbnail".split()
AUDIO += "--add-metadata --postprocessor-args ExtractAudio:-xerror".split()

# What the video site answers in place of a player's data: a status, the reason, and more of it.
REASONS = {
    "age": (
        "LOGIN_REQUIRED",
        "Sign in to confirm your age",
        "This video may be inappropriate for some users.",
    ),
    "bot": (
        "LOGIN_REQUIRED",
        "Sign in to confirm you’re not a bot",
        "This helps protect our community. Learn more",
    ),
    "private": (
        "LOGIN_REQUIRED",
        "Private video",
        "Sign in if you've been granted access to this video",
    ),
    "members": (
        "UNPLAYABLE",
        "Join this channel to get access to members-only content like this video, and other "
        "exclusive perks.",
        "",
    ),
    "removed": ("ERROR", "Video unavailable", "This video has been removed by the uploader"),
    "terminated": (
        "ERROR",
        "This video is no longer available because the YouTube account associated with this video "
        "has been terminated.",
        "",
    ),
    "unavailable": ("ERROR", "Video unavailable", "This video is not available"),
    "country": (
        "UNPLAYABLE",
        "Video unavailable",
        "The uploader has not made this video available in your country",
    ),
    "hour": ("UNPLAYABLE", "This content isn't available, try again later.", ""),
}

FORMAT = {
    "itag": 140,
    "mimeType": 'audio/mp4; codecs="mp4a.40.2"',
    "bitrate": 130000,
    "contentLength": "100000",
    "quality": "tiny",
    "audioQuality": "AUDIO_QUALITY_MEDIUM",
    "approxDurationMs": "10000",
    "audioSampleRate": "44100",
    "audioChannels": 2,
}

CLIENT = json.dumps(
    {
        "PLAYER_JS_URL": "/s/player/01234567/player_ias.vflset/en_US/base.js",
        "INNERTUBE_CONTEXT": {"client": {"clientName": "WEB", "clientVersion": "2.20250101"}},
        "INNERTUBE_CONTEXT_CLIENT_VERSION": "2.20250101",
    }
)


def player(kind):
    details = {"videoId": VIDEO, "title": "A Song", "lengthSeconds": "10"}
    if kind in REASONS:
        status, reason, more = REASONS[kind]
        screen = {"playerErrorMessageRenderer": {"reason": {"simpleText": reason}}}
        if more:
            screen["playerErrorMessageRenderer"]["subreason"] = {"simpleText": more}
        return {
            "videoDetails": details,
            "playabilityStatus": {"status": status, "reason": reason, "errorScreen": screen},
        }
    url = f"https://media.googlevideo.com/{kind}?itag=140&c=IOS"
    media = {"url": url}
    if kind == "signature":
        media = {"signatureCipher": f"s=abcdefghij&sp=sig&url={quote(url, safe='')}"}
    elif kind == "challenge":
        media["url"] += "&n=abcdefghij"
    return {
        "videoDetails": details,
        "playabilityStatus": {"status": "OK"},
        "streamingData": {"adaptiveFormats": [FORMAT | media]},
    }


def results(found):
    """What a search answers: one item."""
    for name, wrap in (
        ("contents", list),
        ("itemSectionRenderer", None),
        ("contents", list),
        ("sectionListRenderer", None),
        ("primaryContents", None),
        ("twoColumnSearchResultsRenderer", None),
        ("contents", None),
    ):
        found = {name: [found] if wrap else found}
    return found


NOTHING = {"backgroundPromoRenderer": {"title": {"runs": [{"text": "No results found"}]}}}
FOUND = {"videoRenderer": {"videoId": VIDEO, "title": {"runs": [{"text": "A Song"}]}}}


class VideoSite(http.server.ThreadingHTTPServer):
    """A proxy that ends the encryption itself, and answers for every host."""

    daemon_threads = True

    def __init__(self, scratch):
        certificate = str(scratch / "certificate.pem")
        subprocess.run(
            "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=site".split()
            + ["-keyout", certificate + ".key", "-out", certificate],
            check=True,
            stderr=subprocess.DEVNULL,
        )
        self.context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.context.load_cert_chain(certificate, certificate + ".key")
        self.kind = ""
        super().__init__(("127.0.0.1", 0), VideoSiteHandler)
        threading.Thread(target=self.serve_forever, args=(0.05,), daemon=True).start()


class VideoSiteHandler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def do_CONNECT(self):
        self.send_response(200)
        self.end_headers()
        self.close_connection = False  # though the client speaks HTTP/1.0 to a proxy
        try:
            self.connection = self.server.context.wrap_socket(self.connection, server_side=True)
        except OSError:
            self.close_connection = True
            return
        self.rfile = self.connection.makefile("rb")
        self.wfile = self.connection.makefile("wb", 0)

    def do_POST(self):
        self.rfile.read(int(self.headers.get("Content-Length", 0)))
        self.do_GET()

    def do_GET(self):
        kind, path = self.server.kind, urlsplit(self.path).path
        if kind.isdigit():
            self.answer({}, int(kind))
        elif path.startswith(("/media", f"/{kind}")):
            self.answer({}, 403)
        elif path == "/youtubei/v1/search":
            self.answer(results(NOTHING if kind == "nothing" else FOUND))
        elif path == "/youtubei/v1/next":
            self.answer({"contents": {"singleColumnWatchNextResults": {}}})
        elif path == "/youtubei/v1/player":
            self.answer(player(kind))
        elif path == "/watch" or path.startswith("/embed/"):
            data = json.dumps(player(kind))
            self.answer(
                f"<html><script>ytcfg.set({CLIENT});</script>"
                f"<script>var ytInitialPlayerResponse = {data};</script></html>"
            )
        elif path.endswith("base.js"):
            self.answer("var signatureTimestamp:20000; /* nothing that can be read */")
        else:
            self.answer({}, 404)

    def answer(self, body, status=200):
        body = (body if isinstance(body, str) else json.dumps(body)).encode()
        self.send_response(status)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)


class Recorder:
    def __init__(self, command, environment, scratch):
        self.command = command
        self.environment = environment
        self.scratch = scratch
        self.text = ""

    def record(self, name, link, *options, folder=None, wrapper=(), environment=None):
        folder = folder or self.scratch / name
        folder.mkdir(exist_ok=True)
        run = subprocess.run(
            [*wrapper, *self.command, *AUDIO, *options]
            + ["-o", f"{folder}/%(title).180B [%(id).40B].%(ext)s", link],
            env=self.environment | (environment or {}),
            cwd=folder,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            timeout=120,
        )
        text = run.stdout.decode()
        for pattern, replacement in (
            (re.escape(str(folder)), "/music/Event"),
            (re.escape(str(self.scratch)), "/scratch"),
            (r"127\.0\.0\.1:\d+", "127.0.0.1:8000"),
            (r"port=\d+", "port=8000"),
            (r"0x[0-9a-f]{6,}", "0x7f0000000000"),
            (r".*?(\d+\.\d%) of .*\n", ""),
            (r"\[info\] (Downloading v|V)ideo [tT]humbnail .*\n", ""),
        ):
            text = re.sub(pattern, replacement, text)
        errors = [line for line in text.splitlines() if "ERROR" in line]
        print(f"{name}: {run.returncode}", *errors, sep="\n    ")
        self.text += f"== {name}\n{text.rstrip()}\n"


def full_folder(scratch):
    folder = scratch / "full"
    folder.mkdir()
    subprocess.run(["mount", "-t", "tmpfs", "-o", "size=8m", "none", folder], check=True)
    fill = 'head -c 16M /dev/zero > "$0"; truncate -s -32K "$0"'
    subprocess.run(["sh", "-c", fill, folder / "neighbour"], stderr=subprocess.DEVNULL)
    return folder


def record_everything(recorder, site, proxy, scratch):
    audio = site.link(SONG.name)
    page, media = f"/song/{SONG.name}", f"/media/{SONG.media}"
    for status in (401, 403, 404, 410, 429, 451, 500, 503):
        site.faults = {page: status}
        recorder.record(f"page {status}", audio)
    for status in (403, 404, 429, 503):
        site.faults = {media: status}
        recorder.record(f"media {status}", audio)
    site.faults = {media: loopback_site.CUT}
    recorder.record("media cut", audio)
    site.faults = {media: loopback_site.STALL}
    recorder.record("media stalled", audio)
    site.faults = {}
    recorder.record("no media", site.gallery_link(PLAIN))
    recorder.record("no name", "http://no-such-site.invalid/song")
    with socket.socket() as closed:
        closed.bind(("127.0.0.1", 0))
        recorder.record("refused", f"http://127.0.0.1:{closed.getsockname()[1]}/song")
    recorder.record("timed out", site.stalled_link())
    recorder.record("proxy refused", audio, "--proxy", "http://127.0.0.1:9")

    folder = full_folder(scratch)
    try:
        recorder.record("full drive", audio, folder=folder)
        room = site.media_file(SONG.name).stat().st_size + 24_000
        subprocess.run(["truncate", "-s", f"-{room - 32_000}", folder / "neighbour"])
        for part in folder.glob("*.part"):
            part.unlink()
        recorder.record("full drive, converting", audio, folder=folder)
    finally:
        subprocess.run(["umount", "-l", folder])
    recorder.record("file size limit", audio, wrapper=("prlimit", "--fsize=20000"))
    locked = scratch / "locked"
    locked.mkdir()
    locked.chmod(0o555)
    scratch.chmod(0o755)
    nobody = ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups")
    recorder.record("read-only folder", audio, folder=locked, wrapper=nobody)
    recorder.record("no ffmpeg", audio, environment={"PATH": "/nowhere"})

    proxied = f"--extractor-retries 0 --proxy http://127.0.0.1:{proxy.server_address[1]}".split()
    proxied += ["--no-check-certificates"]
    for kind in (*REASONS, "403", "429", "forbidden", "signature", "challenge"):
        proxy.kind = kind
        recorder.record(f"video {kind}", f"https://www.youtube.com/watch?v={VIDEO}", *proxied)
    search = "ytsearch1:Login - Try again later official audio"
    for kind in ("nothing", "429", "bot", "forbidden"):
        proxy.kind = kind
        recorder.record(f"search {kind}", search, *proxied)
    offline = "--extractor-retries 0 --proxy http://127.0.0.1:9".split()
    recorder.record("search offline", search, *offline)


def version(command, environment):
    asked = [*command, "--version"]
    return subprocess.run(asked, env=environment, text=True, stdout=subprocess.PIPE).stdout.strip()


def main():
    plain = {key: value for key, value in os.environ.items() if "proxy" not in key.lower()}
    tools = [(["/usr/bin/python3", "/usr/bin/yt-dlp"], plain)]
    if NEWEST.is_dir():
        modules = str(NEWEST / "lib/python3/dist-packages")
        newest = plain | {"PYTHONPATH": modules, "PYTHONDONTWRITEBYTECODE": "1"}
        tools.append((["/usr/bin/python3", str(NEWEST / "bin/yt-dlp")], newest))
    for command, environment in tools:
        found = version(command, environment)
        if sys.argv[1:] and found not in sys.argv[1:]:
            continue
        with tempfile.TemporaryDirectory() as folder:
            scratch = Path(folder)
            home = scratch / "home"
            home.mkdir()
            environment = environment | {"HOME": str(home)}
            media = scratch / "media"
            media.mkdir()
            songs.make([SONG], media)
            proxy = VideoSite(scratch)
            recorder = Recorder(command, environment, scratch)
            with loopback_site.LoopbackSite(media, [SONG], {PLAIN: ()}) as site:
                record_everything(recorder, site, proxy, scratch)
            proxy.shutdown()
        sample = ROOT / "tests" / "data" / f"yt-dlp_failures_{found}.txt"
        sample.write_bytes(recorder.text.encode())  # with the carriage returns


main()
