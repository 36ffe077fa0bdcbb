#!/usr/bin/env python3
"""A site that lets no more be downloaded is left alone, with the real yt-dlp."""

import unittest

from faults import LIMIT, TRIMMED, FaultTest
from songs import Song

MANY = tuple(Song(f"song-{n}", f"Song {n}", lead=0.3, tone=1.0, tail=0.3) for n in range(15))
OTHER = Song("encore", "Encore", lead=0.3, tone=1.0, tail=0.3)

# As many as run side by side, and one for each of the first two that failed.
ASKED = 8


class Limits(FaultTest):
    album = (*MANY, OTHER)
    playlists = {"many": [song.name for song in MANY]}

    def test_the_rows_that_have_not_begun_are_ready_again(self):
        self.site.faults = {f"/media/{song.media}": 429 for song in MANY}
        # The same site by another name is another host.
        other = self.site.link(OTHER.name).replace("127.0.0.1", "localhost")
        outcome = self.run_event(self.site.playlist_link("many"), other)
        self.assertStatus(outcome, 1)
        failed, ready, encore = outcome.rows[:ASKED], outcome.rows[ASKED:-1], outcome.rows[-1]
        for rows, expected in (
            (failed, ("Needs Attention", LIMIT, "site-limit")),
            (ready, ("Ready", "Ready to download", "")),
            ([encore], ("Complete", TRIMMED, "")),
        ):
            seen = {(row["status"], row["detail"], row["cause"]) for row in rows}
            self.assertEqual(seen, {expected})
        self.assertEqual(len(ready), len(MANY) - ASKED)
        asked = {path for _, path in self.site.requests if path.startswith("/media/song")}
        self.assertEqual(len(asked), ASKED)
        said = "127.0.0.1 asks to wait: try again in an hour (7 songs not started)"
        self.assertIn(said, outcome.err)


if __name__ == "__main__":
    unittest.main()
