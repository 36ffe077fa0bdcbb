#!/usr/bin/env python3
"""What is behind a link is read whole: whatever a login profile prints, wherever the link leads."""

import json
import shutil
import unittest

from faults import ATTENTION, COMPLETE, TRIMMED, FaultTest, needs
from songs import Song
from stage import FAKES
from stand_in import StandIn

SHORT = {"lead": 0.4, "tone": 1.5, "tail": 0.3}
THREE = tuple(Song(f"song{n}", f"Song {n}", 300 + 70 * n, **SHORT) for n in range(3))
NAMES = [song.name for song in THREE]

CHATTER = """echo "A line from the profile"
echo "Deprecated Feature: a notice from the profile" >&2
echo run >> ~/profile-runs
sleep 0.5
"""


class Feeds(FaultTest):
    album = THREE
    playlists = {"three": NAMES}

    def tearDown(self):
        self.site.faults.clear()
        super().tearDown()

    def run_three(self, fault, *links):
        outcome = self.run_event(*links)
        self.survived(outcome, fault)
        self.assertEqual(len(outcome.rows), 3)
        return outcome

    def assertThreeSongs(self, outcome):
        self.assertStatus(outcome, 0)
        self.assertDetails(outcome, *[TRIMMED] * 3)
        self.assertEqual([row["title"] for row in outcome.rows], [song.title for song in THREE])
        self.assertEqual(self.stage.files(), {f"{song.title} [{song.name}].mp3" for song in THREE})

    def test_profile_that_prints(self):
        (self.stage.home / ".bash_profile").write_text(CHATTER)
        links = self.site.playlist_link("three"), self.site.link(NAMES[0])
        outcome = self.run_three("a login profile that prints, and takes its time", links[0])
        self.assertThreeSongs(outcome)
        self.assertEqual({row["duration"] for row in outcome.rows}, {"0:02"})
        runs = (self.stage.home / "profile-runs").read_text().split()
        self.assertEqual(len(runs), 1, "it costs once, not once for each command")

    def test_feed_of_a_site_of_no_name(self):
        outcome = self.run_three("a feed of a site of no name", self.site.feed_link("three"))
        self.assertThreeSongs(outcome)

    def test_dead_item(self):
        self.site.faults[f"/song/{NAMES[1]}"] = 404
        outcome = self.run_three("one item of a feed is dead", self.site.feed_link("three"))
        self.assertStatus(outcome, 1)
        statuses = [row["status"] for row in outcome.rows]
        self.assertEqual(statuses, [COMPLETE, ATTENTION, COMPLETE])
        self.assertIn("2", outcome.rows[1]["title"].partition(self.site.address)[0])


class Gallery(FaultTest):
    """Three songs on one page, each as long as no other."""

    album = tuple(Song(f"part{n}", f"Part {n}", 440, 0.4, 1.0 + n, 0.3) for n in range(3))
    playlists = {"gallery": [song.name for song in album]}

    def song_called(self, path):
        return next((s for n, s in enumerate(self.album, 1) if f"-{n}]" in path.name), None)

    def source_of(self, row):
        return next((s for n, s in enumerate(self.album, 1) if f"({n})" in row["title"]), None)

    def test_each_is_its_own(self):
        outcome = self.run_event(self.site.gallery_link("gallery"))
        self.survived(outcome, "one page with three songs")
        self.assertStatus(outcome, 0)
        self.assertDetails(outcome, *[TRIMMED] * 3)
        self.assertEqual(len(self.stage.files()), 3)
        for song in self.album:
            count = sum(path == f"/media/{song.media}" for _, path in self.site.requests)
            self.assertEqual(count, 1, f"{song.title} is downloaded once")


class Listings(StandIn):
    def test_cut(self):
        links = [self.link(title=f"Song {each}") for each in range(3)]
        entries = [{"url": link, "title": link.split("/")[4]} for link in links]
        listing = {"entries": entries, "playlist_count": 206}
        (self.stage.tools / "playlist.json").write_text(json.dumps(listing))
        outcome = self.run_event("http://127.0.0.1/playlist?from=youtube.com")
        self.survived(outcome, "a listing that is cut short")
        self.assertDetails(outcome, *[TRIMMED] * 3)
        self.assertEqual(outcome.err.count("3 of 206 listed"), 1, outcome.err)


@needs(not shutil.which("spotdl"), "spotdl is installed here")
class NoSpotdl(FaultTest):
    def test_nothing_is_searched(self):
        self.stage.install("yt-dlp", FAKES / "e2e_logged_yt-dlp")
        for kind in ("playlist", "track"):
            link = f"https://open.spotify.com/{kind}/37i9dQZF1DXcBWIGoYBM5M"
            outcome = self.run_event(link)
            self.survived(outcome, f"no spotdl, and a Spotify {kind}")
            self.assertStatus(outcome, 1)
            self.assertEqual([row["status"] for row in outcome.rows], [ATTENTION])
            self.assertEqual(self.stage.files(), set())
        calls = self.stage.tools / "calls"
        asked = calls.read_text().splitlines() if calls.exists() else []
        self.assertEqual([call for call in asked if "--version" not in call], [])


if __name__ == "__main__":
    unittest.main()
