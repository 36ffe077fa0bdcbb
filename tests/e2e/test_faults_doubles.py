#!/usr/bin/env python3
"""One song by two ways, two songs of one name, and two programs at once."""

import array
import os
import subprocess
import time
import unittest
from collections import Counter
from pathlib import Path
from urllib.parse import urlsplit

from faults import ALL, COMPLETE, REPEATED, THERE, TRIMMED, FaultTest
from songs import Song
from stage import PATIENCE

SHORT = {"lead": 0.4, "tone": 1.5, "tail": 0.3}
SIX, OTHERS, TONES = (
    tuple(Song(f"{name}{n}", f"{name.title()} {n}", 300 + 70 * n, **SHORT) for n in range(6))
    for name in ("song", "other", "tone")
)
HELD_AFTER = 10_000
TRIALS = range(5 if ALL else 1)


class Doubles(FaultTest):
    album = SIX + OTHERS[:5]
    playlists = {"song": [song.name for song in SIX]} | {
        # Each but the first brings one song that is new, among others that are not.
        f"other{n}": [SIX[n].name, *(song.name for song in OTHERS[: n + 1])]
        for n in range(5)
    }

    def setUp(self):
        super().setUp()
        self.addCleanup(self.site.let_go)
        self.transfers = self.site.media_requests()

    def start_twice(self, *playlists, event="Party"):
        """The lists, and once more the first of them; six downloads come to a stand."""
        self.site.hold(HELD_AFTER)
        links = [self.site.playlist_link(name) for name in playlists]
        return self.start_event(*links, links[0], event=event)

    def downloading(self):
        """How many children download at the moment."""
        parents = {}
        for pid in self.stage.running():
            try:
                words = Path(f"/proc/{pid}/cmdline").read_bytes().split(b"\0")
            except OSError:
                continue
            if self.status(pid, "Name") == "yt-dlp" and b"-o" in words:
                parents[str(pid)] = self.status(pid, "PPid")
        # A child of theirs bears their name until it has begun its own program.
        return sum(parent not in parents for parent in parents.values())

    def check_all(self, process, fault, count, event="Party"):
        outcome = self.stage.finish(process)
        self.survived(outcome, fault, event)
        self.assertStatus(outcome, 0)
        details = Counter(row["detail"] for row in outcome.rows)
        self.assertEqual(details.pop(REPEATED, 0), 1)
        self.assertEqual(sum(details.values()), count)
        self.assertLessEqual(set(details), {TRIMMED, THERE})
        self.assertEqual(len(self.stage.files(event)), count)
        return details

    def test_six_lists_the_first_of_them_twice(self):
        process = self.start_twice(*self.playlists)
        self.assertTrue(self.site.wait_held(6, PATIENCE))
        most = self.downloading()
        self.assertEqual(most, 6)
        self.site.let_go()
        while process.poll() is None:
            most = max(most, self.downloading())
            time.sleep(0.2)
        self.assertEqual(most, 6, "never more than six download")
        count = len(self.album)
        details = self.check_all(process, "six playlists, and the first of them again", count)
        self.assertEqual(details[TRIMMED], count)
        self.assertEqual(self.site.media_requests() - self.transfers, count)

    def test_one_list_twice(self):
        for trial in TRIALS:
            with self.subTest(trial=trial):
                event = f"trial {trial}"
                process = self.start_twice("song", event=event)
                self.assertTrue(self.site.wait_held(6, PATIENCE))
                self.site.let_go()
                details = self.check_all(process, "a playlist, and again", 6, event)
                self.assertEqual(details[TRIMMED], 6)

    def test_two_programs(self):
        for trial in TRIALS:
            with self.subTest(trial=trial):
                self.check_two_programs(f"trial {trial}")

    def check_two_programs(self, event):
        transfers = self.site.media_requests()
        both = [self.start_twice("song", event=event) for _ in range(2)]
        self.assertTrue(self.site.wait_held(6, PATIENCE))
        self.site.let_go()
        details = Counter()
        for number, process in enumerate(both, 1):
            fault = f"two programs in one folder, each with a playlist twice: program {number}"
            details += self.check_all(process, fault, 6, event)
        self.assertEqual(details, {TRIMMED: 6, THERE: 6})
        self.assertEqual(self.site.media_requests() - transfers, 6)


def frequency(path):
    """How often the sound in the file swings in a second."""
    command = ["ffmpeg", "-loglevel", "error", "-nostdin", "-i", path]
    command += ["-map", "0:a", "-ac", "1", "-ar", "44100", "-f", "s16le", "-"]
    samples = array.array("h", subprocess.run(command, check=True, capture_output=True).stdout)
    rises = sum(before < 0 <= after for before, after in zip(samples, samples[1:]))
    return rises * 44100 / len(samples)


class OneName(FaultTest):
    """Links whose files come out with one name, and with equal length."""

    album = TONES
    queries = [f"n={n}" for n in range(1, 7)]

    def source_of(self, row):
        return self.site.album[self.site.direct[urlsplit(row["url"]).query]]

    def song_called(self, path):
        return TONES[0] if path.name.startswith("audio") else None

    def run_links(self, sources, fault):
        self.site.direct = dict(zip(self.queries, sources))
        outcome = self.run_event(*map(self.site.direct_link, self.site.direct))
        self.survived(outcome, fault)
        self.assertStatus(outcome, 0)
        self.assertEqual([row["status"] for row in outcome.rows], [COMPLETE] * len(sources))
        return outcome.rows

    def test_six_songs(self):
        rows = self.run_links([song.name for song in TONES], "six songs of one name and length")
        names = {"audio [audio].mp3"} | {f"audio ({n}) [audio].mp3" for n in range(2, 7)}
        self.assertEqual(self.stage.files(), names)
        self.assertEqual({os.path.basename(row["outputPath"]) for row in rows}, names)
        for row, song in zip(rows, TONES):
            self.assertAlmostEqual(frequency(row["outputPath"]), song.frequency, delta=30)

    def test_one_song(self):
        rows = self.run_links([TONES[0].name] * 3, "three links to one song")
        self.assertEqual(self.stage.files(), {"audio [audio].mp3"})
        self.assertEqual(len({row["outputPath"] for row in rows}), 1)


if __name__ == "__main__":
    unittest.main()
