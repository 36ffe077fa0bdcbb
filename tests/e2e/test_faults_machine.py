#!/usr/bin/env python3
"""A clock that is set back, tools that misbehave, and many rows."""

import filecmp
import json
import os
import shutil
import signal
import subprocess
import time
import unittest
from pathlib import Path

from faults import ATTENTION, COMPLETE, FAILED, TRIMMED, needs, slow
from songs import Song
from stage import PATIENCE, PROGRAM, eventually
from stand_in import EVENING, VICTIM, StandIn

FILM = Song("film", "Film", lead=0.5, tone=1.5, tail=0.5, video=True)
HELD_AFTER = 20_000
SANITIZED = b"__asan_init" in Path(PROGRAM).read_bytes()  # takes memory for its own ends


@needs(shutil.which("faketime"), "faketime is not installed")
class ClockSetBack(StandIn):
    """The system's clock: the one that only ever runs on is not touched."""

    album = (EVENING, VICTIM)
    steps = {"one hour": 3600, "one year": 365 * 24 * 3600}

    def setUp(self):
        super().setUp()
        ask = ["faketime", "-m", "-f", "+0", "printenv", "LD_PRELOAD"]
        library = subprocess.check_output(ask, text=True)
        self.stage.environment |= {
            "LD_PRELOAD": library.strip(),
            "FAKETIME_NO_CACHE": "1",
            "FAKETIME_DONT_FAKE_MONOTONIC": "1",
            "ASAN_OPTIONS": "verify_asan_link_order=0",
        }

    def clock(self, step):
        return {"FAKETIME_TIMESTAMP_FILE": str(self.stage.scratch / step)}

    def start_all(self, *links):
        """One program for each step, with a clock of its own."""
        running = {}
        for step in self.steps:
            self.stage.environment |= self.clock(step)
            running[step] = self.start_event(*links, event=step)
        return running

    def set_clocks(self, back):
        for step, seconds in self.steps.items():
            behind = seconds if back else 0
            (self.stage.scratch / step).write_text(f"{-behind:+}")
            environment = self.stage.environment | self.clock(step)
            shown = subprocess.check_output(["date", "+%s"], env=environment)
            self.assertAlmostEqual(int(shown), time.time() - behind, delta=60)

    def check_all(self, running, when, *details):
        outcomes = {step: self.stage.finish(process) for step, process in running.items()}
        for step, outcome in outcomes.items():
            with self.subTest(step):
                self.assertDetails(outcome, *details)
                self.survived(outcome, f"clock set back {step} {when}", step)

    def test_between_two_runs(self):
        link = self.link(title="Earlier")
        self.set_clocks(back=False)
        for process in self.start_all(link).values():
            self.assertStatus(self.stage.finish(process), 0)
        self.set_clocks(back=True)
        for step, seconds in self.steps.items():
            for file in self.folder(step).iterdir():
                # Faked clocks date no files, but these must be later than those of the next run.
                later = file.stat().st_mtime + seconds
                os.utime(file, (later, later))
        running = self.start_all(link, self.link(title="Afterwards"))
        self.check_all(running, "between two runs", "Already Downloaded", TRIMMED)

    @slow
    def test_in_mid_run(self):
        (self.stage.tools / "yt-dlp").unlink()
        self.set_clocks(back=False)
        self.site.hold(HELD_AFTER)
        self.addCleanup(self.site.let_go)
        running = self.start_all(self.site.link("evening"))
        self.assertTrue(self.site.wait_held(len(running), PATIENCE))
        self.set_clocks(back=True)
        self.site.let_go()
        self.check_all(running, "during the download", TRIMMED)


class OddTool(StandIn):
    odd = {
        "binary": "a tool that prints a megabyte of binary",
        "closing": "a tool that closes its output and lives on",
        "leaving": "a tool that ends, but its child lives on and prints",
    }

    def start_odd(self, oddity):
        return self.start_event(self.link(oddity, "Odd"), self.link("good", "Other"), event=oddity)

    def test_odd_tools(self):
        running = {oddity: self.start_odd(oddity) for oddity in self.odd}
        outcomes = {oddity: self.stage.finish(process) for oddity, process in running.items()}
        for oddity, outcome in outcomes.items():
            with self.subTest(oddity):
                self.assertDetails(outcome, TRIMMED, TRIMMED)
                self.survived(outcome, self.odd[oddity], oddity)

    def test_endless_line(self):
        process = self.start_odd("endless")
        peak = 0
        while process.poll() is None:
            peak = max(peak, int(self.status(process.pid, "VmHWM") or 0))
            time.sleep(0.02)
        outcome = self.stage.finish(process)
        self.assertDetails(outcome, TRIMMED, TRIMMED)
        if not SANITIZED:
            self.assertLess(peak, 200_000, "kilobytes, not many times what was printed")
        self.survived(outcome, "a tool that prints 10 MB without a line break", "endless")

    def test_silent_tool(self):
        process = self.start_odd("silent")
        other = self.folder("silent") / "Other [victim].mp3"
        self.assertTrue(eventually(other.exists, PATIENCE), "the other row goes on")
        self.kill_sleeper()
        outcome = self.stage.finish(process)
        self.assertDetails(outcome, FAILED, TRIMMED)
        self.survived(outcome, "a tool that prints nothing for long, then killed", "silent")

    @slow
    def test_silent_tool_that_reads(self):
        process = self.start_event(self.link("unreadable"))
        # These are cut short by hand, the third and last reading by its time limit.
        for _ in range(2):
            self.kill_sleeper()
        outcome = self.stage.finish(process)
        self.assertIn("Could not load link info.", outcome.err)
        self.assertDetails(outcome, TRIMMED)
        self.survived(outcome, "a tool that prints nothing while it reads")

    def sleepers(self):
        """What the stand-in has become where it prints nothing."""
        return [pid for pid in self.stage.running() if self.status(pid, "Name") == "sleep"]

    def kill_sleeper(self):
        self.assertTrue(eventually(lambda: len(self.sleepers()) == 1, PATIENCE))
        (sleeper,) = self.sleepers()
        os.kill(sleeper, signal.SIGKILL)
        self.assertTrue(eventually(lambda: sleeper not in self.sleepers(), PATIENCE))

    def test_program_ended_beside_hanging_tools(self):
        links = self.link("silent", "Silent"), self.link("stubborn", "Stubborn")
        process = self.start_event(*links)
        self.assertTrue(eventually(lambda: len(self.sleepers()) == 2, PATIENCE))
        process.terminate()
        outcome = self.stage.finish(process)
        self.assertStatus(outcome, 143)
        self.assertNoReport(outcome)
        self.assertNothingRuns()
        fault = "the program asked to end while two tools hang, one of which ignores that"
        self.record(fault, outcome, self.on_disk("Party"))


class ManyRows(StandIn):
    album = (FILM,)
    played = FILM
    mode = "MP4"

    @classmethod
    def is_whole(cls, path, song):
        return filecmp.cmp(path, cls.song, shallow=False)

    def run_rows(self, count):
        kinds = ["good" if each % 3 else "failing" for each in range(count)]
        links = [self.link(kind, f"Song {each}") for each, kind in enumerate(kinds)]
        entries = [{"url": link, "title": link.split("/")[4]} for link in links]
        (self.stage.tools / "playlist.json").write_text(json.dumps({"entries": entries}))
        outcome = self.run_event("http://127.0.0.1/playlist?from=youtube.com")
        self.assertEqual([row["url"] for row in outcome.rows], links)
        expected = {"good": (COMPLETE, "Saved to Party"), "failing": (ATTENTION, FAILED)}
        for row, kind in zip(outcome.rows, kinds):
            self.assertEqual((row["status"], row["detail"]), expected[kind])
        self.assertEqual(len(self.stage.files()), kinds.count("good"))
        self.survived(outcome, f"{count} rows of which every third fails")

    def test_sixty(self):
        self.run_rows(60)

    @slow
    def test_thousand(self):
        self.run_rows(1000)


if __name__ == "__main__":
    unittest.main()
