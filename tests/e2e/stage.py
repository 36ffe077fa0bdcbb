"""Where one end-to-end test plays: the program, a home of its own, the site."""

import json
import os
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
import uuid
from dataclasses import dataclass
from pathlib import Path

import loopback_site
import songs

ROOT = Path(__file__).resolve().parents[2]
FAKES = ROOT / "tests" / "fakes"
PROGRAM = os.environ.get("REELCRATE", str(ROOT / "build" / "dev" / "bin" / "reelcrate"))

# Unpacked there by scripts/setup, where Debian's unstable suite can be reached.
NEWEST_YT_DLP = ROOT / "build" / "newest-yt-dlp"

# What the program counts as a finished song.
FINISHED = {".mp3", ".m4a", ".aac", ".flac", ".wav", ".aiff", ".aif"}

# Where downloads work, inside the event folder: nothing in it counts as a song.
WORK = ".reelcrate"

# Far more than any run here takes, so that a hanging one ends the test.
PATIENCE = 150


def eventually(condition, seconds):
    """Asks again and again until the condition holds; says whether it did."""
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(0.05)
    return True


def size(path):
    try:
        return path.stat().st_size
    except OSError:
        return 0  # it has gone


@dataclass(frozen=True)
class Outcome:
    status: int
    out: str
    err: str

    @property
    def rows(self):
        """The queue that --json printed: the whole of standard output."""
        return json.loads(self.out)


class Stage:
    """A scratch folder with a home, a data folder, an empty working folder and
    an output folder. What the program starts is known by a variable that all
    of its children inherit."""

    def __init__(self):
        self.scratch = Path(tempfile.mkdtemp(prefix="reelcrate-e2e-"))
        self.home = self.scratch / "home"
        self.data = self.scratch / "data"
        self.working = self.scratch / "working"
        self.output = self.scratch / "output"
        self.tools = self.data / "Reelcrate" / "Tools" / "bin"
        for folder in (self.home, self.working, self.tools):
            folder.mkdir(parents=True)
        self.mark = f"REELCRATE_STAGE={uuid.uuid4()}"
        self.environment = {
            name: value for name, value in os.environ.items() if not name.startswith("XDG_")
        }
        self.environment |= {"HOME": str(self.home), "XDG_DATA_HOME": str(self.data)}
        self.environment |= [self.mark.split("=")]

    def close(self):
        for pid in self.running():
            try:
                os.kill(pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
        shutil.rmtree(self.scratch)

    def install(self, name, source):
        """Puts a stand-in into the program's private tool folder."""
        tool = self.tools / name
        shutil.copy(source, tool)
        tool.chmod(0o755)
        return tool

    def install_newest_yt_dlp(self):
        modules = NEWEST_YT_DLP / "usr" / "lib" / "python3" / "dist-packages"
        tool = self.tools / "yt-dlp"
        tool.write_text(
            "#!/bin/sh\n"
            f"PYTHONPATH='{modules}' exec python3 '{NEWEST_YT_DLP}/usr/bin/yt-dlp' \"$@\"\n"
        )
        tool.chmod(0o755)

    def start(self, *arguments, event="Party", wrapper=(), front_end=("--headless",)):
        return subprocess.Popen(
            [*wrapper, PROGRAM, *front_end, "--event", event, "--output", str(self.output), *arguments],
            cwd=self.working,
            env=self.environment,
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
        )

    def finish(self, process, text=""):
        """Gives the program its standard input and waits for its end."""
        try:
            out, err = process.communicate(text, timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            process.kill()
            out, err = process.communicate()
            raise AssertionError(f"The program did not end.\n{out}\n{err}") from None
        return Outcome(process.returncode, out, err)

    def run(self, *arguments, event="Party", text=""):
        return self.finish(self.start(*arguments, event=event), text)

    def running(self):
        """The processes that the program left, itself included."""
        found = []
        for folder in Path("/proc").iterdir():
            if folder.name.isdigit():
                try:
                    environment = (folder / "environ").read_bytes()
                except OSError:
                    continue  # it has ended meanwhile
                if self.mark.encode() in environment.split(b"\0"):
                    found.append(int(folder.name))
        return found

    def paths(self, event="Party"):
        """All that is in the event folder, by its path below it."""
        folder = self.output / event
        return {path.relative_to(folder) for path in folder.rglob("*")}

    def files(self, event="Party"):
        """What the event folder holds, but for what downloads are at work on."""
        return {str(path) for path in self.paths(event) if path.parts[0] != WORK}

    def work(self, event="Party"):
        """The files that downloads are at work on: absolute paths."""
        work = self.output / event / WORK
        return [path for path in work.glob("*/*") if path.name != "lock"]

    def parts(self, event="Party"):
        """The transfers that have begun."""
        return [path for path in self.work(event) if path.suffix == ".part" and size(path)]

    def finished(self, event="Party"):
        return {name for name in self.files(event) if Path(name).suffix in FINISHED}


class EndToEnd(unittest.TestCase):
    """Serves `album` and `playlists` to all tests of a class, and gives each
    test a stage, of which nothing may still run when the test ends."""

    album = ()
    playlists = {}

    @classmethod
    def setUpClass(cls):
        media = tempfile.mkdtemp(prefix="reelcrate-media-")
        cls.addClassCleanup(shutil.rmtree, media)
        songs.make(cls.album, media)
        site = loopback_site.LoopbackSite(media, cls.album, cls.playlists)
        cls.site = cls.enterClassContext(site)

    def setUp(self):
        self.stage = Stage()
        self.addCleanup(self.stage.close)

    def tearDown(self):
        self.assertNothingRuns()

    def assertNothingRuns(self):
        """No process of the program's is there after five seconds."""
        gone = eventually(lambda: not self.stage.running(), 5)
        self.assertTrue(gone, f"still running: {self.commands()}")

    def commands(self):
        lines = []
        for pid in self.stage.running():
            try:
                lines.append(Path(f"/proc/{pid}/cmdline").read_bytes().replace(b"\0", b" "))
            except OSError:
                continue
        return lines

    def assertStatus(self, outcome, status):
        self.assertEqual(outcome.status, status, f"{outcome.out}\n{outcome.err}")

    def assertIsTrimmedSong(self, path, song):
        """The file holds the song's sound, whole, without the silence around it."""
        media = self.site.media_file(song.name)
        self.assertAlmostEqual(songs.seconds(media), song.seconds, delta=0.1)
        edges = (song.lead > 0) + (song.tail > 0)
        self.assertEqual(len(songs.silences(media)), edges + song.pauses, "the source")
        self.assertAlmostEqual(songs.seconds(path), song.tone, delta=0.25)
        self.assertEqual(len(songs.silences(path)), song.pauses, "its pauses, and no other silence")
