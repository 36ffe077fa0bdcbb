#!/usr/bin/env python3
"""Whatever titles, lists and links of strangers hold: it runs nothing, writes nothing
elsewhere, and leads to the web alone."""

import json
import os
import shutil
import unittest
from pathlib import Path

import songs
from songs import Song
from stage import FAKES, EndToEnd

# "$HOME" and a NUL, dots and a home: the names of searched songs become the beginnings of files.
NAMES = (
    "$HOME ${HOME} $$HOME x$\0HOME",
    "%(id)s %%(title)s",
    "..",
    "~/pwned",
    "\u0e2d" + "\U0001f3b5" * 100,
)
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
# What follows a page's address; none has a blank, which would end the link.
ENDS = (
    "?x='\"$(touch${IFS}pwned)`touch${IFS}pwned`;touch${IFS}pwned",
    "?x=\\'&--exec=touch${IFS}pwned|touch${IFS}pwned",
    "#../../../pwned%00%2e%2e%2f%(id)s",
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

    def test_announced_paths_elsewhere_are_left_alone(self):
        stage = self.stage
        song = stage.scratch / "song.mp3"
        songs.convert(self.site.media_file("victim"), song)
        event = stage.output / "Party"
        titles = (
            f"Destination: {song}",
            f"Destination: {event}/../../song.mp3",
            f"Look\nMerging formats into \"{song}\"",
            f"Look\n[download] {song} has already been downloaded",
        )
        links = {f"http://127.0.0.1/song/title{each}": title for each, title in enumerate(titles)}
        file = stage.scratch / "titles.json"
        file.write_text(json.dumps(links))
        stage.install("yt-dlp", FAKES / "e2e_yt-dlp")
        stage.environment |= {"REELCRATE_E2E_SONG": str(song), "REELCRATE_E2E_TITLES": str(file)}
        before = song.read_bytes()
        outcome = stage.run("--json", *links)
        self.assertStatus(outcome, 0)
        self.assertHarmless(outcome.rows)
        self.assertEqual(song.read_bytes(), before)


class Names(Titles):
    album = (VICTIM,)

    def test_songs_of_a_list_are_filed(self):
        stage = self.stage
        stage.install("spotdl", FAKES / "spotdl")
        stage.install("yt-dlp", FAKES / "e2e_search_yt-dlp")
        stage.environment["REELCRATE_E2E_YTDLP"] = shutil.which("yt-dlp")
        stage.environment["REELCRATE_E2E_FOUND"] = self.site.link(VICTIM.name)
        listed = [
            {"name": name, "url": f"--config-location=pwned{number}", "cover_url": "file:///pwned"}
            for number, name in enumerate(NAMES + TITLES)
        ]
        (stage.tools / "spotdl.txt").write_text(json.dumps(listed, indent=4))
        outcome = stage.run("--json", "https://open.spotify.com/playlist/x")
        self.assertStatus(outcome, 0)
        self.assertEqual(len(outcome.rows), len(NAMES + TITLES))
        self.assertHarmless(outcome.rows)
        for row in outcome.rows:
            self.assertIsTrimmedSong(row["outputPath"], VICTIM)


class Links(Titles):
    album = HOSTILE[:4]

    def test_only_the_web_is_asked(self):
        secret = self.stage.scratch / "secret.mp3"
        songs.convert(self.site.media_file("title0"), secret)
        bad = f"file://{secret} javascript:touch FILE://{secret} --exec=touch HTTP://127.0.0.1/ -o"
        with_user = self.site.link("title3").replace("//", "//user:pa'$(touch)@")
        good = [self.site.link(song.name) + end for song, end in zip(HOSTILE, ENDS)] + [with_user]
        outcome = self.stage.run("--json", "-", text="\n".join([bad, *good]))
        self.assertStatus(outcome, 0)
        self.assertEqual(len(outcome.rows), len(good))
        for row in outcome.rows:
            self.assertRegex(row["url"], f"^http://(.+@)?127.0.0.1:{self.site.port}/song/title")
        self.assertHarmless(outcome.rows)


if __name__ == "__main__":
    unittest.main()
