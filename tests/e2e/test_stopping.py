#!/usr/bin/env python3
"""A download by the real tools, stopped in the window by its key, and gone on with later."""

import unittest

from songs import Song
from stage import PATIENCE, EndToEnd, eventually
from test_assistive import OnDesktop

SONG = Song("song", "Song", 440, 0.5, 20.0, 0.4)
HALF = 100_000  # bytes
ROW = (700, 200)  # in the window at its preferred size


class Stopping(OnDesktop, EndToEnd):
    album = (SONG,)

    def begin(self):
        self.site.hold(HALF)
        self.start("--download", self.site.link(SONG.name))

    def tools(self):
        return [line for line in self.commands() if b"yt-dlp" in line or b"ffmpeg" in line]

    def test_goes_on_where_it_was(self):
        self.assertTrue(self.site.wait_held(1, PATIENCE))
        self.assertTrue(eventually(self.stage.parts, PATIENCE))
        self.desktop.click(*ROW)
        self.desktop.keys("ctrl+period")
        self.assertTrue(eventually(lambda: not self.tools(), 5), self.tools())
        (part,) = self.stage.parts()
        self.assertEqual(part.parent.suffix, ".mp3")
        self.assertFalse(self.stage.files())
        self.site.ranges.clear()
        self.site.let_go()
        self.desktop.keys("Return")
        self.assertTrue(eventually(self.stage.finished, PATIENCE))
        self.assertTrue(eventually(lambda: not part.parent.exists(), 5))
        self.assertTrue(any(path.startswith("/media/") for path, _ in self.site.ranges))
        (song,) = self.stage.finished()
        self.assertIsTrimmedSong(self.stage.output / "Party" / song, SONG)
        self.end()


if __name__ == "__main__":
    unittest.main()
