#!/usr/bin/env python3
"""Whatever a title holds, it runs nothing and writes nothing elsewhere."""

import json
import os
import unittest
from pathlib import Path

import songs
from songs import Song
from stage import FAKES, EndToEnd

TITLES = (
    "It's \"quoted\" 'twice'",
    "$(touch pwned) `touch pwned` ${HOME}",
    "'; touch pwned; echo '",
    "%(id)s %(title)s %d 100%",
    "\U0001f389 F\u00eate \U0001f469\u200d\U0001f469\u200d\U0001f467",
    "\u97f3" * 300,
    "../../../pwned",
    "-o pwned --exec 'touch pwned'",
    "\u2b50" * 500,
    "\u202e3pm.pwned\u2066",
    "RCR_PROGRESS:100%",
    "[ExtractAudio] Destination: /etc/x.mp3",
    "Destination: /etc/x.mp3",
    "One line\nand another\r\n--exec touch pwned",
)
SHORT = {"lead": 0.5, "tone": 1.5, "tail": 0.5}
HOSTILE = tuple(Song(f"title{number}", title, **SHORT) for number, title in enumerate(TITLES))
VICTIM = Song("victim", "Victim", **SHORT)


class Titles(EndToEnd):
    def assertHarmless(self, rows):
        """Each complete row has a file of its own in the event folder, and
        there is nothing else, nor anything outside of it."""
        folder = self.stage.output / "Party"
        paths = [Path(row["outputPath"]) for row in rows if row["status"] == "Complete"]
        self.assertEqual(len(set(paths)), len(paths))
        for path in paths:
            self.assertEqual(path.parent, folder, "the path is the folder's, without detours")
            self.assertGreater(path.stat().st_size, 0)
        self.assertEqual(set(folder.iterdir()), set(paths))
        self.assertEqual(os.listdir(self.stage.output), ["Party"])
        self.assertEqual(list(self.stage.working.iterdir()), [])
        self.assertEqual(list(self.stage.scratch.rglob("pwned*")), [])
        self.assertFalse(Path("/etc/x.mp3").exists())


class RealTool(Titles):
    album = HOSTILE
    # A feed is one link to read; the last two titles are read from their pages.
    playlists = {"hostile": tuple(song.name for song in HOSTILE[:-2])}

    def test_all_titles_are_filed(self):
        pages = [self.site.link(song.name) for song in HOSTILE[-2:]]
        outcome = self.stage.run("--json", self.site.playlist_link("hostile"), *pages)
        self.assertStatus(outcome, 0)
        self.assertEqual(len(outcome.rows), len(TITLES))
        self.assertEqual([row["title"] for row in outcome.rows[:-1]], list(TITLES[:-1]))
        self.assertEqual(outcome.rows[-1]["title"], " ".join(TITLES[-1].splitlines()))
        self.assertEqual(outcome.rows[-1]["url"], pages[-1])
        self.assertHarmless(outcome.rows)
        for row, song in zip(outcome.rows, HOSTILE):
            with self.subTest(song.title):
                self.assertIsTrimmedSong(row["outputPath"], song)


class StandIn(Titles):
    album = (VICTIM,)

    def setUp(self):
        super().setUp()
        self.stage.install("yt-dlp", FAKES / "e2e_yt-dlp")
        self.song = self.stage.scratch / "song.mp3"
        songs.convert(self.site.media_file("victim"), self.song)
        self.stage.environment["REELCRATE_E2E_SONG"] = str(self.song)

    def run_titles(self, titles):
        links = {f"http://127.0.0.1/song/title{each}": title for each, title in enumerate(titles)}
        file = self.stage.scratch / "titles.json"
        file.write_text(json.dumps(links))
        self.stage.environment["REELCRATE_E2E_TITLES"] = str(file)
        return self.stage.run("--json", *links)

    def test_all_titles_are_filed(self):
        outcome = self.run_titles(TITLES)
        self.assertStatus(outcome, 0)
        self.assertEqual(len(outcome.rows), len(TITLES))
        self.assertHarmless(outcome.rows)
        for row, link in zip(outcome.rows, range(len(TITLES))):
            self.assertEqual(row["url"], f"http://127.0.0.1/song/title{link}")

    def test_announced_paths_elsewhere_are_left_alone(self):
        before = self.song.read_bytes()
        event = self.stage.output / "Party"
        outcome = self.run_titles(
            (
                f"Destination: {self.song}",
                f"Destination: {event}/../../song.mp3",
                f"Look\nMerging formats into \"{self.song}\"",
                f"Look\n[download] {self.song} has already been downloaded",
            )
        )
        self.assertStatus(outcome, 0)
        self.assertHarmless(outcome.rows)
        self.assertEqual(self.song.read_bytes(), before)


if __name__ == "__main__":
    unittest.main()
