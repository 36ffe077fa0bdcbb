#!/usr/bin/env python3
"""Setup installs missing tools from a web server, and never half a tool."""

import functools
import hashlib
import http.server
import signal
import subprocess
import tempfile
import threading
import unittest
import zipfile
from pathlib import Path

from stage import EndToEnd

FILES = ("yt-dlp", "ffmpeg.zip", "ffprobe.zip", "SHA2-256SUMS")


def tool(name, size=0):
    """A tool that tells its version, of at least so many bytes."""
    return f"#!/bin/bash\necho {name} 2099.01.01 \"$@\"\nexit 0\n".encode() + b"#" * size


class Mirror:
    """The folder of tools on a web server; a test changes what is in it."""

    def __init__(self):
        self.folder = Path(tempfile.mkdtemp(prefix="reelcrate-mirror-"))
        self.put_tool("yt-dlp", tool("yt-dlp"))
        self.put_zip("ffmpeg", tool("ffmpeg"))
        self.put_zip("ffprobe", tool("ffprobe"))
        self.cut = None  # a file whose transfer breaks off half-way
        self.requests = []
        mirror = self

        class Handler(http.server.SimpleHTTPRequestHandler):
            def do_GET(self):
                mirror.requests.append(self.path.strip("/"))
                if self.path.strip("/") != mirror.cut:
                    return super().do_GET()
                content = (mirror.folder / mirror.cut).read_bytes()
                self.send_response(200)
                self.send_header("Content-Length", str(len(content)))
                self.end_headers()
                self.wfile.write(content[: len(content) // 2])
                self.close_connection = True

            def log_message(self, *_):
                pass

        handler = functools.partial(Handler, directory=str(self.folder))
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        self.address = f"http://127.0.0.1:{self.server.server_address[1]}"
        threading.Thread(target=self.server.serve_forever, kwargs={"poll_interval": 0.05}).start()

    def put_tool(self, name, content):
        (self.folder / name).write_bytes(content)
        digest = hashlib.sha256(content).hexdigest()
        (self.folder / "SHA2-256SUMS").write_text(f"{'0' * 64}  other\n{digest}  {name}\n")

    def put_zip(self, name, content, path=None):
        with zipfile.ZipFile(self.folder / f"{name}.zip", "w") as archive:
            info = zipfile.ZipInfo(path or f"build/{name}")
            info.external_attr = 0o755 << 16
            archive.writestr(info, content)

    def close(self):
        self.server.shutdown()
        self.server.server_close()
        for file in self.folder.iterdir():
            file.unlink()
        self.folder.rmdir()


class Setup(EndToEnd):
    def setUp(self):
        super().setUp()
        self.mirror = Mirror()
        self.addCleanup(self.mirror.close)
        # Installing the Spotify helper fails here without asking anybody.
        self.stage.environment |= {
            "REELCRATE_TOOL_MIRROR": self.mirror.address,
            "PIP_INDEX_URL": "http://127.0.0.1:9/",
            "PIP_RETRIES": "0",
        }

    def installed(self):
        """What stands in the private folder, each file of it a working tool."""
        files = {path.name for path in self.stage.tools.iterdir()}
        for name in files - {"spotdl"}:
            run = subprocess.run([self.stage.tools / name, "-v"], capture_output=True, text=True, check=True)
            self.assertIn("2099.01.01", run.stdout)
        return files

    def test_missing_tools_are_installed_once(self):
        outcome = self.stage.run("--setup")
        self.assertStatus(outcome, 0)
        self.assertEqual(self.installed(), {"yt-dlp", "ffmpeg", "ffprobe"})
        for line in (
            f"Installing private downloader tools in {self.stage.tools}\nDownloading yt-dlp...\n",
            "Downloading ffmpeg...\n",
            "yt-dlp: yt-dlp 2099.01.01 --version\nffmpeg 2099.01.01 -version\n"
            "Private downloader tools are ready.\n",
            "Spotify helper was not installed. YouTube and Facebook downloads can still work.\n",
            "OK: Audio/Video Converter - Ready - installed privately\n",
        ):
            self.assertIn(line, outcome.out)

        self.mirror.requests.clear()
        self.stage.install("spotdl", self.stage.tools / "yt-dlp")
        (self.stage.tools / "spotdl").chmod(0o644)
        again = self.stage.run("--setup").out
        self.assertIn("yt-dlp already installed privately.\nffmpeg already installed privately.\n", again)
        self.assertEqual(self.mirror.requests, [])

    def test_what_cannot_be_installed_is_told_and_leaves_nothing(self):
        broken = (
            # what is wrong, what the log says, what is installed all the same
            (lambda m: m.put_zip("ffmpeg", b"text", "build/README"),
             "Could not find ffmpeg in the downloaded package.", {"yt-dlp"}),
            (lambda m: m.put_zip("ffmpeg", b"#!/bin/false\n"),
             "The downloaded ffmpeg does not run on this machine.", {"yt-dlp"}),
            (lambda m: (m.folder / "ffmpeg.zip").write_bytes(b"no archive"), "ffmpeg.zip", {"yt-dlp"}),
            (lambda m: (m.folder / "ffmpeg.zip").unlink(), "404", {"yt-dlp"}),
            (lambda m: (m.folder / "yt-dlp").write_bytes(tool("yt-dlp", 1)),
             "The downloaded yt-dlp does not match its published checksum.", set()),
            (lambda m: m.put_tool("yt-dlp", b"#!/bin/false\n"),
             "The downloaded yt-dlp does not run on this machine.", set()),
        )
        for spoil, text, left in broken:
            with self.subTest(text):
                self.mirror.close()
                self.mirror.__init__()
                self.stage.environment["REELCRATE_TOOL_MIRROR"] = self.mirror.address
                for file in self.stage.tools.iterdir():
                    file.unlink()
                spoil(self.mirror)
                self.assertIn(text, self.stage.run("--setup").out)
                self.assertEqual(self.installed(), left)

    def test_optional_parts_may_be_missing(self):
        (self.mirror.folder / "SHA2-256SUMS").unlink()
        self.mirror.put_zip("ffprobe", b"#!/bin/false\n")
        self.assertStatus(self.stage.run("--setup"), 0)
        self.assertEqual(self.installed(), {"yt-dlp", "ffmpeg"})

    def test_a_transfer_that_breaks_off_leaves_no_tool(self):
        self.mirror.put_tool("yt-dlp", tool("yt-dlp", 100_000))
        self.mirror.cut = "yt-dlp"
        outcome = self.stage.run("--setup")
        self.assertIn("curl: (18)", outcome.out)
        self.assertEqual(list(self.stage.tools.iterdir()), [])
        self.mirror.cut = None
        self.assertStatus(self.stage.run("--setup"), 0)
        self.assertEqual(self.installed(), {"yt-dlp", "ffmpeg", "ffprobe"})

    def installed_names(self):
        return {path.name for path in self.stage.tools.iterdir() if not path.name.startswith(".")}

    def test_killed_at_any_moment_it_leaves_whole_tools(self):
        for number in (signal.SIGKILL, signal.SIGTERM):
            for step in range(10):
                for file in self.stage.tools.iterdir():
                    file.unlink()
                process = self.stage.start("--setup")
                try:
                    process.wait(0.03 * (step + 1) ** 1.5)
                except subprocess.TimeoutExpired:
                    process.send_signal(number)
                self.stage.finish(process)
                self.assertNothingRuns()
                for name in self.installed_names():
                    run = subprocess.run([self.stage.tools / name, "-v"], capture_output=True, check=True)
                    self.assertIn(b"2099.01.01", run.stdout)


if __name__ == "__main__":
    unittest.main()
