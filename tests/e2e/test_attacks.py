#!/usr/bin/env python3
"""Songs of a list that a stranger wrote, and links that a stranger sent: they
run nothing, write nothing outside of the event folder, and lead to the web
alone."""

import json
import shutil
import unittest

import songs
import test_titles
from songs import Song
from stage import FAKES

SHORT = {"lead": 0.5, "tone": 1.5, "tail": 0.5}

# The names of Spotify songs become the beginnings of files.
NAMES = (
    "../../pwned",
    "; touch pwned",
    "$(touch pwned) `touch pwned`",
    "$HOME ${HOME} $$HOME x$\0HOME",
    "%(id)s %%(title)s",
    "-o pwned --exec 'touch pwned'",
    "..",
    "~/pwned",
    "\U0001f389" * 500,
    "\u0e2d" + "\U0001f3b5" * 100,
    "\u202e3pm.pwned\u2066",
    "One line\nRCR_PROGRESS:100%\r\n[ExtractAudio] Destination: /etc/x.mp3",
)

# What follows a page's address; none has a blank, which would end the link.
ENDS = (
    "?x='\"$(touch${IFS}pwned)`touch${IFS}pwned`;touch${IFS}pwned",
    "?x=\\'&--exec=touch${IFS}pwned|touch${IFS}pwned",
    "#../../../pwned%00%2e%2e%2f%(id)s",
)
VICTIMS = tuple(Song(f"victim{number}", f"Victim {number}", **SHORT) for number in range(4))


class Names(test_titles.Titles):
    album = VICTIMS[:1]

    def test_songs_of_a_list_are_filed(self):
        stage = self.stage
        stage.install("spotdl", FAKES / "spotdl")
        stage.install("yt-dlp", FAKES / "e2e_search_yt-dlp")
        stage.environment["REELCRATE_E2E_YTDLP"] = shutil.which("yt-dlp")
        stage.environment["REELCRATE_E2E_FOUND"] = self.site.link("victim0")
        listed = [
            {"name": name, "url": f"--config-location=pwned{number}", "cover_url": "file:///pwned"}
            for number, name in enumerate(NAMES)
        ]
        (stage.tools / "spotdl.txt").write_text(json.dumps(listed, indent=4))
        outcome = stage.run("--json", "https://open.spotify.com/playlist/x")
        self.assertStatus(outcome, 0)
        self.assertEqual(len(outcome.rows), len(NAMES))
        self.assertHarmless(outcome.rows)
        for row in outcome.rows:
            self.assertIsTrimmedSong(row["outputPath"], VICTIMS[0])


class Links(test_titles.Titles):
    album = VICTIMS

    def test_only_the_web_is_asked(self):
        secret = self.stage.scratch / "secret.mp3"
        songs.convert(self.site.media_file("victim0"), secret)
        bad = f"file://{secret} javascript:touch FILE://{secret} --exec=touch HTTP://127.0.0.1/ -o"
        with_user = self.site.link("victim3").replace("//", "//user:pa'$(touch)@")
        good = [self.site.link(song.name) + end for song, end in zip(VICTIMS, ENDS)] + [with_user]
        outcome = self.stage.run("--json", "-", text="\n".join([bad, *good]))
        self.assertStatus(outcome, 0)
        self.assertEqual(len(outcome.rows), len(good))
        for row in outcome.rows:
            self.assertRegex(row["url"], f"^http://(.+@)?127.0.0.1:{self.site.port}/song/victim")
        self.assertHarmless(outcome.rows)


if __name__ == "__main__":
    unittest.main()
