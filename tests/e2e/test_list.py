#!/usr/bin/env python3
"""A list of songs without links: what a message or a table names is searched
for and downloaded, and what it does not name is said."""

import json
import shutil
import unittest

from songs import Song
from stage import FAKES, EndToEnd

SHORT = {"lead": 0.5, "tail": 0.5}
WALTZ = Song("waltz", "The Band - Waltz", tone=4, **SHORT)
LONG = Song("long", "The Band - Waltz (1 hour)", tone=1.5, **SHORT)

MESSAGE = """Hi! Here is our list
1. “Waltz” by The Band (0:05)
2) the band – waltz
"""


class List(EndToEnd):
    album = (WALTZ, LONG)

    def setUp(self):
        super().setUp()
        self.stage.install("yt-dlp", FAKES / "e2e_search_yt-dlp")
        hits = self.stage.scratch / "hits.json"
        entries = [
            {"url": self.site.link(song.name), "title": song.title, "duration": seconds}
            for song, seconds in ((LONG, 3600), (WALTZ, 5))
        ]
        hits.write_text(json.dumps({"entries": entries}))
        self.stage.environment |= {
            "REELCRATE_E2E_YTDLP": shutil.which("yt-dlp"),
            "REELCRATE_E2E_HITS": str(hits),
            "REELCRATE_E2E_FOUND": self.site.link("long"),
        }
        self.list = self.stage.scratch / "list.txt"

    def test_a_message_becomes_a_folder_of_songs(self):
        outcome = self.stage.run("--json", "--playlist", "--list", "-", text=MESSAGE)
        self.assertStatus(outcome, 0)
        [row] = outcome.rows
        self.assertEqual(row["source"], "Song")
        self.assertEqual(row["url"], "song:the-band/waltz")
        self.assertEqual(row["duration"], "0:05")
        self.assertIsTrimmedSong(row["outputPath"], WALTZ)
        self.assertRegex(row["outputPath"], r"/The Band - Waltz \[.+\]\.mp3$")
        self.assertIn("No song, line 1: Hi! Here is our list", outcome.err)
        self.assertIn("line 3: the band - waltz (as in line 2)", outcome.err)
        self.assertIn("#EXTINF:5,The Band - Waltz", (self.stage.output / "Party" / "Party.m3u8").read_text())

        # The same as a spreadsheet's table, beside a link: it is there already.
        self.list.write_text("Titel;Interpret\r\nWaltz;The Band\r\n", encoding="utf-16")
        outcome = self.stage.run("--json", "--list", str(self.list), self.site.link("long"))
        self.assertStatus(outcome, 0)
        self.assertEqual([row["source"] for row in outcome.rows], ["Song", "Link"])
        self.assertEqual(outcome.rows[0]["detail"], "Already Downloaded")
        self.assertEqual(outcome.rows[0]["outputPath"], row["outputPath"])

    def test_what_is_no_list_is_said_before_anything_is_done(self):
        texts = {
            b"": "is empty.",
            b"ABBA - Waterloo\n" * 100_000: "is larger than 1 MB, which no list of songs is.",
            b"a - b\n" * 100_000: "has more than 5000 lines, which no list of songs has.",
            bytes(range(256)): "is no text: save a table as CSV, a document as plain text.",
        }
        for text, word in texts.items():
            self.list.write_bytes(text)
            outcome = self.stage.run("--json", "--list", str(self.list), self.site.link("waltz"))
            self.assertStatus(outcome, 2)
            self.assertEqual(outcome.rows, [])
            self.assertEqual(outcome.err.strip().splitlines()[-1], f"list.txt {word}")
        self.list.unlink()
        outcome = self.stage.run("--list", str(self.list))
        self.assertStatus(outcome, 2)
        self.assertIn("list.txt cannot be read: No such file or directory", outcome.err)
        self.assertFalse(self.stage.output.exists())


if __name__ == "__main__":
    unittest.main()
