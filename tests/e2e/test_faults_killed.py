#!/usr/bin/env python3
"""The program and its supervisor are killed together, so that nobody ends or removes anything:
whenever that is, the event folder holds whole songs only, and the next run does the rest."""

import os
import signal
import time
import unittest

from faults import ALL, COMPLETE, FaultTest
from songs import Song
from stage import PATIENCE, eventually

SIX = tuple(Song(f"song{n}", f"Song {n}", 300 + 70 * n, 0.5, 3.0, 0.4) for n in range(6))
RATE = 60_000  # bytes per second and transfer, so that it takes as long as what follows

MOMENTS, SONGS = (range(1, 21), SIX) if ALL else ((3, 9, 15), SIX[:3])


class KilledTogether(FaultTest):
    album = SONGS
    playlists = {"songs": [song.name for song in SONGS]}

    def setUp(self):
        super().setUp()
        self.site.rate = RATE
        self.link = self.site.playlist_link("songs")

    def start_run(self, event):
        """The program, when it has begun to download."""
        process = self.start_event(self.link, event=event)
        self.assertTrue(eventually(self.folder(event).exists, PATIENCE))
        return process, time.monotonic()

    def kill(self, process):
        for pid in self.stage.running():
            # There is none when the run was quicker than the first one, and has ended.
            if self.status(pid, "Name") == "rc-guard":
                os.kill(pid, signal.SIGKILL)
        process.kill()
        process.communicate()

    def test_at_moments_of_a_run(self):
        process, start = self.start_run("whole run")
        self.assertStatus(self.stage.finish(process), 0)
        step = (time.monotonic() - start) / 21
        for moment in MOMENTS:
            event = f"moment {moment}"
            with self.subTest(event):
                process, start = self.start_run(event)
                time.sleep(max(0, start + moment * step - time.monotonic()))
                self.kill(process)
                self.check_folder(event)
                self.go_on(moment, event)

    def go_on(self, moment, event):
        there = self.stage.files(event)
        begun = set()
        # The orphans go on for a while. Half of the time the next run meets them.
        if moment % 2:
            self.assertTrue(eventually(lambda: not self.stage.running(), PATIENCE), self.commands())
            self.check_folder(event)
            self.assertEqual(self.stage.files(event), there, "nobody was there to file a song")
            begun = {self.song_called(path) for path in self.stage.parts(event)}
        self.site.ranges.clear()
        outcome = self.run_event(self.link, event=event)
        fault = f"program and supervisor killed at moment {moment} of 20, and the program started again"
        self.survived(outcome, fault, event)
        self.assertStatus(outcome, 0)
        self.assertEqual([row["status"] for row in outcome.rows], [COMPLETE] * len(SONGS))
        self.assertEqual(len(self.stage.files(event)), len(SONGS))
        resumed = {path for path, _ in self.site.ranges}
        self.assertLessEqual({f"/media/{song.media}" for song in begun}, resumed)


if __name__ == "__main__":
    unittest.main()
