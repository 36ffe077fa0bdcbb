#!/usr/bin/env python3
"""The program with its window, on a display that nobody sees: it downloads the
links of its command line, and ended meanwhile it leaves nothing behind."""

import signal
import unittest

from songs import ALBUM
from stage import EndToEnd, eventually

THREE = ALBUM[:3]


class Window(EndToEnd):
    album = THREE

    def setUp(self):
        super().setUp()
        self.stage.environment |= {
            "QT_QPA_PLATFORM": "offscreen",
            "QT_QUICK_BACKEND": "software",
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere",
        }

    def open(self):
        links = [self.site.link(song.name) for song in THREE]
        return self.stage.start("--download", *links, front_end=())

    def end(self, process):
        process.send_signal(signal.SIGTERM)
        outcome = self.stage.finish(process)
        self.assertStatus(outcome, 143)
        for line in outcome.err.splitlines():
            self.assertNotIn("qrc:", line, "the window complains of itself")

    def test_downloads_the_links_it_was_given(self):
        process = self.open()
        files = [self.stage.output / "Party" / f"{song.title} [{song.name}].mp3" for song in THREE]
        self.assertTrue(eventually(lambda: all(file.exists() for file in files), 90))
        for file, song in zip(files, THREE):
            self.assertIsTrimmedSong(file, song)
        self.end(process)

    def test_ended_meanwhile_it_leaves_nothing(self):
        process = self.open()
        self.assertTrue(eventually(lambda: (self.stage.output / "Party").exists(), 60))
        self.end(process)
        self.assertNothingRuns()
        for name in self.stage.finished():
            song = next(song for song in THREE if song.name in name)
            self.assertIsTrimmedSong(self.stage.output / "Party" / name, song)

    def test_without_a_display_it_says_so(self):
        for name in ("QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"):
            self.stage.environment.pop(name, None)
        outcome = self.stage.finish(self.stage.start(front_end=()))
        self.assertStatus(outcome, 2)
        self.assertIn("There is no display", outcome.err)


if __name__ == "__main__":
    unittest.main()
