#!/usr/bin/env python3
"""The program ended in the middle of its work leaves nothing behind, neither a
process nor half a song, and does the rest when it is started again."""

import os
import shutil
import signal
import unittest
from pathlib import Path

from songs import ALBUM, Song
from stage import FAKES, PATIENCE, EndToEnd, eventually

SIX = ALBUM[:6]
LONG = Song("encore", "Encore", tone=12.0)

# What is held back of each song is more than the half of it.
HELD_AFTER = 30_000

STATUS = {signal.SIGINT: 130, signal.SIGTERM: 143, signal.SIGKILL: -signal.SIGKILL}


class Ending(EndToEnd):
    def end(self, process, number):
        """Ends the program, and it alone, as its user or the system would."""
        process.send_signal(number)
        outcome = self.stage.finish(process)
        self.assertStatus(outcome, STATUS[number])
        if number == signal.SIGKILL:
            self.assertEqual(outcome.out, "")
        else:
            self.assertNotIn("Complete", [row["status"] for row in outcome.rows])
        self.assertNothingRuns()
        self.assertEqual(self.stage.finished(), set(), "nothing may pass for a finished song")
        return outcome

    def writes(self, name):
        return any(path.name.startswith(name) for path in self.stage.work())

    def run_again(self, link, album):
        outcome = self.stage.run("--json", link)
        self.assertStatus(outcome, 0)
        self.assertEqual([row["title"] for row in outcome.rows], [song.title for song in album])
        for row, song in zip(outcome.rows, album):
            self.assertNotEqual(row["detail"], "Already Downloaded")
            self.assertIsTrimmedSong(row["outputPath"], song)
        self.assertEqual(self.stage.files(), {f"{song.title} [{song.name}].mp3" for song in album})


class EachWay:
    """Tests of a class that knows how to end_and_run_again."""

    def test_interrupt(self):
        self.end_and_run_again(signal.SIGINT)

    def test_terminate(self):
        self.end_and_run_again(signal.SIGTERM)

    def test_kill(self):
        self.end_and_run_again(signal.SIGKILL)


class DuringDownloads(EachWay, Ending):
    album = SIX
    playlists = {"six": tuple(song.name for song in SIX)}

    def end_and_run_again(self, number):
        self.site.hold(HELD_AFTER)
        link = self.site.playlist_link("six")
        process = self.stage.start("--json", link)
        self.assertTrue(self.site.wait_held(len(SIX), PATIENCE), "six downloads run side by side")
        outcome = self.end(process, number)
        if number != signal.SIGKILL:
            self.assertEqual(len(outcome.rows), len(SIX))
        self.site.let_go()
        self.run_again(link, SIX)


class DuringConversion(EachWay, Ending):
    album = (LONG,)

    def end_and_run_again(self, number):
        slow = self.stage.install("ffmpeg", FAKES / "e2e_slow_ffmpeg")
        (self.stage.tools / "ffprobe").symlink_to(shutil.which("ffprobe"))
        link = self.site.link("encore")
        process = self.stage.start("--json", link)
        begun = eventually(lambda: self.writes("Encore [encore].mp3"), PATIENCE)
        self.assertTrue(begun, "the conversion writes its file")
        self.end(process, number)
        slow.unlink()
        self.run_again(link, (LONG,))

    def test_kill_while_it_trims(self):
        slow = self.stage.install("ffmpeg", FAKES / "e2e_hooked_ffmpeg")
        self.stage.environment["REELCRATE_E2E_BEFORE_TRIM"] = 'set -- -re "$@"'
        (self.stage.tools / "ffprobe").symlink_to(shutil.which("ffprobe"))
        link = self.site.link("encore")
        process = self.stage.start("--json", link)
        begun = eventually(lambda: self.writes(".trim-"), PATIENCE)
        self.assertTrue(begun, "the trim writes its file")
        self.end(process, signal.SIGKILL)
        slow.unlink()
        self.run_again(link, (LONG,))


class WithoutWhatIsUsual(Ending):
    album = SIX[:1]

    def start_held(self, **options):
        self.site.hold(HELD_AFTER)
        process = self.stage.start("--json", self.site.link(SIX[0].name), **options)
        self.assertTrue(self.site.wait_held(1, PATIENCE))
        return process

    def tearDown(self):
        self.site.let_go()
        super().tearDown()

    def test_killed_without_standard_streams(self):
        process = self.start_held(wrapper=("bash", "-c", 'exec "$@" <&-', "bash"))
        self.end(process, signal.SIGKILL)

    def test_terminated_without_its_supervisor(self):
        process = self.start_held()
        for pid in self.stage.running():
            if Path(f"/proc/{pid}/comm").read_text() == "rc-guard\n":
                os.kill(pid, signal.SIGKILL)
        self.end(process, signal.SIGTERM)

    def finish_whole(self, process):
        self.site.let_go()
        outcome = self.stage.finish(process)
        self.assertStatus(outcome, 0)
        self.assertIsTrimmedSong(outcome.rows[0]["outputPath"], SIX[0])

    def test_hung_up_where_that_is_ignored(self):
        process = self.start_held(wrapper=("env", "--ignore-signal=HUP"))
        process.send_signal(signal.SIGHUP)
        self.finish_whole(process)

    def test_started_where_the_ends_of_children_are_ignored(self):
        self.finish_whole(self.start_held(wrapper=("env", "--ignore-signal=CHLD")))


class DuringReading(Ending):
    def end_reading(self, number):
        process = self.stage.start("--json", self.site.stalled_link())
        self.assertTrue(self.site.wait_requested("/stalled", PATIENCE))
        outcome = self.end(process, number)
        if number != signal.SIGKILL:
            self.assertEqual([row["url"] for row in outcome.rows], [self.site.stalled_link()])

    def test_interrupt(self):
        self.end_reading(signal.SIGINT)

    def test_kill(self):
        self.end_reading(signal.SIGKILL)

    def test_terminate_while_standard_input_is_read(self):
        process = self.stage.start("--json", "-")
        caught = eventually(lambda: self.catches(process.pid, signal.SIGTERM), PATIENCE)
        self.assertTrue(caught)
        process.send_signal(signal.SIGTERM)
        process.wait(PATIENCE)
        outcome = self.stage.finish(process)
        self.assertStatus(outcome, STATUS[signal.SIGTERM])
        self.assertEqual(outcome.rows, [])

    @staticmethod
    def catches(pid, number):
        status = Path(f"/proc/{pid}/status").read_text()
        caught = next(line for line in status.splitlines() if line.startswith("SigCgt:"))
        return int(caught.split()[1], 16) >> (number - 1) & 1


if __name__ == "__main__":
    unittest.main()
