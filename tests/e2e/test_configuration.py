#!/usr/bin/env python3
"""What a configuration file of the user's, which the real yt-dlp honours, does to rows."""

import os
import unittest

from songs import Song
from stage import EndToEnd

CAFE = Song("cafe-del-mar", "Café del Mar", lead=0.3, tone=1.0, tail=0.3)
DRIVE = Song("night-drive", "Night Drive", lead=0.3, tone=1.0, tail=0.3)

# Options after which all is as it would be without, lines of one file each.
HARMLESS = (
    ("-o elsewhere/%(id)s.%(ext)s", "--paths elsewhere", "-q", "--no-progress"),
    ("-s", "-j", "-v", "--print %(title)s", "--print after_move:filepath"),
    ("--exec rm", "--exec pre_process:false"),
    ("--download-archive {archive}", "--no-part", "-k", "--flat-playlist", "--write-info-json"),
    ("--cookies {cookies}", "--sponsorblock-remove music_offtopic"),
)

# Options that nothing overrides.
BREAKING = ("-f worstvideo", "--skip-download", "-a {links}")


class Configuration(EndToEnd):
    album = (CAFE, DRIVE)
    playlists = {"party": ("night-drive",)}

    def configure(self, *lines):
        folder = self.stage.home / ".config" / "yt-dlp"
        folder.mkdir(parents=True, exist_ok=True)
        files = {
            "archive": "generic cafe-del-mar\ngeneric night-drive\n",
            "cookies": "# Netscape HTTP Cookie File\n",
            "links": self.site.missing_link() + "\n",
        }
        for name, text in files.items():
            (self.stage.home / name).write_text(text)
        paths = {name: self.stage.home / name for name in files}
        (folder / "config").write_text("".join(f"{line}\n" for line in lines).format(**paths))

    def test_songs_arrive_whatever_it_says(self):
        expected = {f"{song.title} [{song.name}].mp3" for song in self.album}
        for number, lines in enumerate(HARMLESS):
            with self.subTest(lines):
                self.configure(*lines)
                event = f"Party {number}"
                links = self.site.link(CAFE.name), self.site.playlist_link("party")
                outcome = self.stage.run("--json", *links, event=event)
                self.assertStatus(outcome, 0)
                self.assertEqual([row["title"] for row in outcome.rows], [CAFE.title, DRIVE.title])
                self.assertEqual({str(path) for path in self.stage.paths(event)}, expected)
                self.assertEqual(os.listdir(self.stage.working), [])

    def test_rows_that_it_breaks_are_not_complete(self):
        for line in BREAKING:
            with self.subTest(line):
                self.configure(line)
                outcome = self.stage.run("--json", self.site.link(CAFE.name))
                self.assertStatus(outcome, 1)
                self.assertEqual(outcome.rows[0]["status"], "Needs Attention")
                self.assertEqual(self.stage.files(), set())

    def test_a_proxy_is_used(self):
        self.configure("--proxy http://127.0.0.1:9")
        outcome = self.stage.run("--json", self.site.link(CAFE.name))
        self.assertStatus(outcome, 1)
        self.assertEqual(outcome.rows[0]["cause"], "no-connection")


if __name__ == "__main__":
    unittest.main()
