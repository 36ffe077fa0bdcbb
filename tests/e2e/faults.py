"""What must hold after each fault, whatever it was, and a table of what came of it.

REELCRATE_FAULTS=all runs the slow cases, too; REELCRATE_FAULT_TABLE names a file
that gets a line of JSON for each fault."""

import json
import os
import re
import subprocess
import unittest
from collections import Counter
from pathlib import Path
from urllib.parse import urlsplit

import songs
from stage import FINISHED, WORK, EndToEnd

COMPLETE, ATTENTION = "Complete", "Needs Attention"
FAILED = "Download failed. Check the link or try again."
CANNOT_WRITE = "Cannot write: check the folder and its free room."
NO_CONNECTION = "No connection to the site. Check the network."
NO_SUCH_PAGE = "No song at this address. Check the link."
LIMIT = "The site limits downloads. Try again in an hour."
TOO_OLD = "yt-dlp is too old for this site. Run Setup."
TRIMMED = "Saved; trimmed silent start/end"
UNTRIMMED = "Saved; silence trim skipped"
THERE = "Already Downloaded"
REPEATED = "Those songs are already in the queue."

SANITIZER_REPORT = re.compile(r"(Address|Leak|Thread|UndefinedBehavior)Sanitizer|runtime error:")

TABLE = os.environ.get("REELCRATE_FAULT_TABLE")

ALL = os.environ.get("REELCRATE_FAULTS") == "all"
slow = unittest.skipUnless(ALL, "scripts/faults runs it")


def needs(condition, reason):
    """Where all are asked for, none is left out in silence."""
    return unittest.skipUnless(condition or ALL, reason)


def counted(things):
    """Equal things once, with their number."""
    return "; ".join(f"{n} × {each}" if n > 1 else each for each, n in Counter(things).items())


def length(path):
    try:
        return songs.seconds(path)
    except (subprocess.CalledProcessError, KeyError):
        return 0  # no media at all


class FaultTest(EndToEnd):
    mode = "MP3"

    def start_event(self, *links, event="Party", **options):
        return self.stage.start("--json", "--mode", self.mode, *links, event=event, **options)

    def run_event(self, *links, event="Party", text="", **options):
        return self.stage.finish(self.start_event(*links, event=event, **options), text)

    def survived(self, outcome, fault, event="Party", rerun=False):
        """Checks what holds after every fault, and records this one. With
        `rerun` the fault has gone: one more run completes every row."""
        self.check(outcome, event)
        left = self.on_disk(event)
        self.record(fault, outcome, left, self.run_again(outcome, event) if rerun else "")

    def refused(self, outcome, fault, explanation, event="Party"):
        """The run ended before it began: the rows are as they were, and it says why."""
        self.assertStatus(outcome, 1)
        self.assertEqual({row["status"] for row in outcome.rows}, {"Ready"})
        self.assertIn(explanation, outcome.err)
        self.assertNoReport(outcome)
        self.assertNothingRuns()
        self.record(fault, outcome, self.on_disk(event), says=explanation)

    def check(self, outcome, event="Party"):
        statuses = {row["status"] for row in outcome.rows if row["detail"] != REPEATED}
        self.assertLessEqual(statuses, {COMPLETE, ATTENTION}, outcome.err)
        self.assertStatus(outcome, 0 if statuses == {COMPLETE} else 1)
        self.assertNoReport(outcome)
        self.assertNothingRuns()
        complete = [row for row in outcome.rows if row["status"] == COMPLETE]
        for row in complete:
            self.check_file(row, event)
        self.check_folder(event, {row["outputPath"] for row in complete})
        if outcome.status == 0:
            self.assertFalse((self.folder(event) / WORK).exists(), "nothing is left of the work")

    def check_folder(self, event="Party", known=frozenset()):
        """Beside what downloads are at work on, there are whole songs and nothing else."""
        for path in {self.folder(event) / name for name in self.stage.files(event)}:
            if str(path) in known:
                continue
            self.assertTrue(path.is_file(), path)
            song = self.song_called(path)
            self.assertIsNotNone(song, f"{path} is nobody's")
            self.assertTrue(self.is_whole(path, song), f"{path} lasts {length(path)} s")

    def run_again(self, outcome, event):
        again = self.run_event(*(row["url"].partition("#")[0] for row in outcome.rows), event=event)
        self.check(again, event)
        self.assertStatus(again, 0)
        return f"{self.seen(again)}; {self.on_disk(event)}"

    def folder(self, event="Party"):
        return self.stage.output / event

    def song_called(self, path):
        """The song that a file's name stands for; None when the site has none."""
        return next((s for s in self.site.album.values() if f"[{s.name}]" in path.name), None)

    def source_of(self, row):
        """The song that the row's link stands for; None when the site has none."""
        return self.site.album.get(Path(urlsplit(row["url"]).path).stem)

    def check_file(self, row, event):
        """What counts as finished is as long as its source."""
        path, song = Path(row["outputPath"]), self.source_of(row)
        self.assertIsNotNone(song, row)
        self.assertTrue(path.is_file(), f"{path} is not there")
        self.assertEqual(path.parent, self.folder(event))
        if row["detail"] == TRIMMED:
            self.assertIsTrimmedSong(path, song)
        elif not self.is_whole(path, song):
            self.fail(f"{path} lasts {length(path)} s, but its source {song.seconds} s")

    @staticmethod
    def is_whole(path, song):
        """Whether the file holds all of the song, with its two silent ends or without."""
        found = length(path)
        silent = len(songs.silences(path)) if found else 0
        if silent == song.pauses and not song.video and abs(found - song.tone) < 0.25:
            return True
        edges = (song.lead > 0) + (song.tail > 0)
        return silent == song.pauses + edges and abs(found - song.seconds) < 0.25

    @staticmethod
    def status(pid, field):
        """What the system says of a process; nothing when it has ended."""
        try:
            lines = Path(f"/proc/{pid}/status").read_text().splitlines()
        except OSError:
            lines = []
        return next((line.split()[1] for line in lines if line.startswith(f"{field}:")), "")

    def assertDetails(self, outcome, *details):
        self.assertEqual([row["detail"] for row in outcome.rows], list(details))

    def assertNoReport(self, outcome):
        self.assertIsNone(SANITIZER_REPORT.search(outcome.err), outcome.err)

    # The table's row: composed of what has come, never written by hand.

    def record(self, fault, outcome, left, again="", says=""):
        if not TABLE:
            return
        seen = self.seen(outcome) + (f"; {says}" if says else "")
        cells = {"fault": fault, "seen": seen, "disk": left, "again": again}
        with open(TABLE, "a", encoding="utf-8") as file:
            file.write(json.dumps(cells) + "\n")

    @staticmethod
    def seen(outcome):
        def row_text(row):
            shown = row["outputPath"] and Path(row["outputPath"])
            note = "" if not shown or shown.is_file() else " (there is no file)"
            return f"{row['status']}: {row['detail']}{note}"

        return f"{counted(map(row_text, outcome.rows))} (status {outcome.status})"

    def on_disk(self, event):
        if not TABLE:
            return ""  # spares looking into each file
        folder = self.folder(event)
        if not folder.is_dir():
            return "a file in the folder's place" if folder.exists() else "no folder"
        kinds = counted(sorted(self.kind_of(folder / name) for name in self.stage.files(event)))
        work = counted(sorted(path.suffix or path.name for path in self.stage.work(event)))
        if work:
            kinds += ("; " if kinds else "") + f"at work: {work}"
        return kinds or "an empty folder"

    def kind_of(self, path):
        if path.suffix not in FINISHED | {".mp4"}:
            return path.suffix or path.name
        song = self.song_called(path)
        known = song is not None and self.is_whole(path, song)
        return f"whole {path.suffix}" if known else f"other {path.suffix}"
