#!/usr/bin/env python3
"""The site fails, the tools are killed, the program is killed: what counts as
finished is whole, and everything else needs attention."""

import os
import shutil
import signal
import subprocess
import unittest

from faults import (
    COMPLETE,
    FAILED,
    LIMIT,
    NO_CONNECTION,
    NO_SUCH_PAGE,
    REPEATED,
    TOO_OLD,
    TRIMMED,
    FaultTest,
    slow,
)
from loopback_site import CUT, END, RESET, STALL
from songs import ALBUM, Song
from stage import FAKES, PATIENCE, eventually

SIX = ALBUM[:6]
SHORT = Song("encore", "Encore", lead=0.8, tone=4.0, tail=0.6)
HELD_AFTER = 30_000

# By what goes wrong: where, of the song's media file and its page, and how; and what the row says.
# The machine's yt-dlp is an old one.
FAULTS = {
    "each transfer is reset half-way": ("media", RESET, NO_CONNECTION),
    "each transfer ends half-way, though more was announced": ("media", CUT, NO_CONNECTION),
    "403 for the media file": ("media", 403, TOO_OLD),
    "404 for the media file": ("media", 404, NO_SUCH_PAGE),
    "429 for the media file": ("media", 429, LIMIT),
    "503 for the media file": ("media", 503, FAILED),
    "403 for the page": ("song", 403, FAILED),
    "404 for the page": ("song", 404, NO_SUCH_PAGE),
    "429 for the page": ("song", 429, LIMIT),
}


class WebFaultTest(FaultTest):
    def tearDown(self):
        self.site.faults.clear()
        self.site.let_go()
        super().tearDown()

    def start_held(self, *links):
        """Starts, and waits until each link's download has come to a stand."""
        self.site.hold(HELD_AFTER)
        process = self.start_event(*links)
        self.assertTrue(self.site.wait_held(len(links), PATIENCE))
        self.wait_for_parts(len(links))
        return process

    def wait_for_parts(self, count):
        self.assertTrue(eventually(lambda: len(self.stage.parts()) == count, PATIENCE))

    def put(self, song, fault):
        area, what, _ = FAULTS[fault]
        self.site.faults[f"/{area}/{song.media if area == 'media' else song.name}"] = what

    def be_impatient(self):
        """The user's own settings of yt-dlp, which are in force in all its runs."""
        folder = self.stage.home / ".config" / "yt-dlp"
        folder.mkdir(parents=True)
        (folder / "config").write_text("--socket-timeout 1 --retries 1\n")


class Tools(WebFaultTest):
    album = (SHORT,)

    def setUp(self):
        super().setUp()
        self.link = self.site.link(SHORT.name)

    def kill(self, name):
        """Kills the tool, and it alone."""
        (pid,) = (pid for pid in self.stage.running() if self.status(pid, "Name") == name)
        os.kill(pid, signal.SIGKILL)

    def kill_when_it_writes(self, file, tool, fault, ffmpeg="e2e_slow_ffmpeg"):
        """`tool` is killed while ffmpeg, which takes its time, writes the file."""
        slow_one = self.stage.install("ffmpeg", FAKES / ffmpeg)
        (self.stage.tools / "ffprobe").symlink_to(shutil.which("ffprobe"))
        process = self.start_event(self.link)
        begun = eventually(
            lambda: any(path.name.startswith(file) for path in self.stage.work()), PATIENCE
        )
        self.assertTrue(begun)
        self.kill(tool)
        outcome = self.stage.finish(process)
        slow_one.unlink()
        self.survived(outcome, fault, rerun=True)

    def test_downloader_killed_as_it_downloads(self):
        process = self.start_held(self.link)
        self.kill("yt-dlp")
        outcome = self.stage.finish(process)
        self.site.let_go()
        self.survived(outcome, "yt-dlp is killed as it downloads", rerun=True)
        self.assertNotEqual(self.site.ranges, [], "the next run goes on with the .part file")

    def test_converter_killed_as_it_converts(self):
        self.kill_when_it_writes("Encore [encore].mp3", "ffmpeg", "ffmpeg is killed as it converts")

    @slow
    def test_downloader_killed_as_it_converts(self):
        self.kill_when_it_writes("Encore [encore].mp3", "yt-dlp", "yt-dlp is killed as it converts")

    def test_converter_killed_as_it_trims(self):
        self.stage.environment["REELCRATE_E2E_BEFORE_TRIM"] = 'set -- -re "$@"'
        fault = "ffmpeg is killed as it trims"
        self.kill_when_it_writes(".trim-", "ffmpeg", fault, ffmpeg="e2e_hooked_ffmpeg")


class Web(WebFaultTest):
    album = (SHORT,)

    def setUp(self):
        super().setUp()
        self.link = self.site.link(SHORT.name)

    @slow
    def test_each(self):
        for fault in FAULTS:
            with self.subTest(fault):
                self.put(SHORT, fault)
                outcome = self.run_event(self.link, event=fault)
                self.site.faults.clear()
                self.survived(outcome, fault, event=fault, rerun=True)
                self.assertDetails(outcome, FAULTS[fault][-1])

    @slow
    def test_reset_for_a_while(self):
        self.site.faults[f"/media/{SHORT.media}"] = [RESET, RESET]
        outcome = self.run_event(self.link)
        self.survived(outcome, "two transfers are reset half-way")
        self.assertStatus(outcome, 0)

    def test_vanishes(self):
        process = self.start_held(self.link)
        self.site.vanish()
        outcome = self.stage.finish(process)
        self.site.come_back()
        self.survived(outcome, "the site is gone in the middle of a transfer", rerun=True)

    @slow
    def test_stalls(self):
        self.be_impatient()
        self.site.faults[f"/media/{SHORT.media}"] = STALL
        outcome = self.run_event(self.link)
        self.site.faults.clear()
        fault = "each transfer falls silent half-way (time limit and retries of yt-dlp set to 1)"
        self.survived(outcome, fault, rerun=True)

    @slow
    def test_stalls_once(self):
        self.site.faults[f"/media/{SHORT.media}"] = [STALL]
        outcome = self.run_event(self.link)
        self.survived(outcome, "a transfer falls silent half-way, once")
        self.assertStatus(outcome, 0)

    def test_same_link_twice(self):
        before = self.site.media_requests()
        outcome = self.run_event("-", text=f"{self.link}\n{self.link}")
        self.survived(outcome, "the same link twice")
        self.assertStatus(outcome, 0)
        self.assertDetails(outcome, TRIMMED, REPEATED)
        self.assertEqual(outcome.rows[1]["status"], "Ready")
        self.assertEqual(len(self.stage.files()), 1)
        self.assertEqual(self.site.media_requests() - before, 1)


@slow
class Mixed(WebFaultTest):
    bad = tuple(Song(f"bad-{n}", f"Bad {n}", tone=2.0) for n in range(len(FAULTS)))
    album = SIX + bad
    playlists = {"six": [song.name for song in SIX]}

    def test_one_of_each_among_six_good_ones(self):
        for song, fault in zip(self.bad, FAULTS):
            self.put(song, fault)
        links = [self.site.link(song.name) for song in self.bad]
        outcome = self.run_event(links[0], self.site.playlist_link("six"), *links[1:])
        self.survived(outcome, "each of these at once, among six good songs")
        self.assertEqual(len(outcome.rows), len(self.album))
        good = {row["url"] for row in outcome.rows if row["status"] == COMPLETE}
        self.assertEqual(len(good), len(SIX))
        self.assertEqual(good.intersection(links), set())
        self.assertEqual(len(self.stage.finished()), len(SIX))


class Streams(WebFaultTest):
    """HLS: a list of segments, each of about a second."""

    album = (SHORT,)

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        source, target = cls.site.media_file(SHORT.name), cls.site.folder / SHORT.name
        command = ["ffmpeg", "-loglevel", "error", "-i", source, "-c", "copy", "-f", "hls"]
        command += ["-hls_time", "1", "-hls_list_size", "0"]
        command += ["-hls_segment_filename", f"{target}-%d.ts", f"{target}.m3u8"]
        subprocess.run(command, check=True)

    def run_stream(self, fault):
        outcome = self.run_event(f"{self.site.address}/stream/{SHORT.name}.m3u8")
        self.site.faults.clear()
        self.survived(outcome, fault, rerun=True)

    @slow
    def test_whole(self):
        self.run_stream("none (a stream in segments)")

    def test_hole(self):
        self.site.faults[f"/stream/{SHORT.name}-2.ts"] = 404
        self.run_stream("404 for a segment of a stream")

    def test_page_in_place_of_a_segment(self):
        segment = self.site.folder / f"{SHORT.name}-2.ts"
        content = segment.read_bytes()
        segment.write_text("<!DOCTYPE html>\n<p>Welcome to the hotel.</p>\n" * 9)
        link = f"{self.site.address}/stream/{SHORT.name}.m3u8"
        outcome = self.run_event(link)
        segment.write_bytes(content)
        self.assertDetails(outcome, NO_CONNECTION)
        self.survived(outcome, "a page in place of a segment of a stream", rerun=True)

    @slow
    def test_cut_segment(self):
        self.site.faults[f"/stream/{SHORT.name}-2.ts"] = CUT
        self.run_stream("a segment of a stream ends half-way")


class Endings(WebFaultTest):
    """Transfers that end half-way, of which nobody has said how long they are."""

    film = Song("film", "Film", lead=0.8, tone=6.0, tail=0.6, video=True)
    song = Song("song", "Song", lead=0.8, tone=15.0, tail=0.6, format="mp3")
    album = (film, song)

    def run_ending(self, song, fault):
        before = self.site.media_requests()
        self.site.faults[f"/media/{song.media}"] = fault
        outcome = self.run_event(self.site.link(song.name))
        self.site.faults.clear()
        self.assertEqual(self.site.media_requests() - before, 2)
        return outcome

    def begin_film(self):
        """Its link, and what there is of it after the program was killed."""
        link = self.site.link(self.film.name)
        process = self.start_held(link)
        process.kill()
        self.stage.finish(process)
        self.site.let_go()
        (part,) = self.stage.parts()
        return link, part

    def test_once(self):
        for self.mode, song in (("MP3", self.song), ("MP4", self.film)):
            outcome = self.run_ending(song, [END])
            self.survived(outcome, f"the transfer of a {song.name} ends half-way without a word")
            self.assertStatus(outcome, 0)

    def test_always(self):
        """The site may have no more of it: a row that is complete says so."""
        outcome = self.run_ending(self.song, END)
        self.assertDetails(outcome, TRIMMED)
        self.assertEqual(outcome.rows[0]["note"], "8 s shorter than listed")

    def test_at_different_places(self):
        media = self.site.media_file(self.song.name)
        whole = media.read_bytes()
        self.site.faults[f"/media/{self.song.media}"] = END
        self.site.hold(HELD_AFTER)
        process = self.start_event(self.site.link(self.song.name))
        self.assertTrue(self.site.wait_held(1, PATIENCE))
        media.write_bytes(whole[: len(whole) * 3 // 4])
        self.site.let_go()
        outcome = self.stage.finish(process)
        media.write_bytes(whole)
        self.site.faults.clear()
        self.assertDetails(outcome, NO_CONNECTION)
        self.survived(outcome, "transfers end without a word, each elsewhere", rerun=True)

    def test_gone_on_with_in_another_format(self):
        """The site may offer others meanwhile: one is not written behind the other."""
        link, part = self.begin_film()
        part.write_bytes(b"\0" * part.stat().st_size)
        (formats,) = part.parent.glob("formats")
        self.assertEqual(formats.read_text(), "0")
        formats.write_text("1")
        outcome = self.run_event(link)
        self.survived(outcome, "a transfer that was cut off was of another format")
        self.assertStatus(outcome, 0)

    def test_lost_with_the_power(self):
        """What lies under its final name is not taken for whole."""
        link, part = self.begin_film()
        whole = self.site.media_file(self.film.name).read_bytes()
        part.with_suffix("").write_bytes(whole[: len(whole) // 2])
        part.unlink()
        before = self.site.media_requests()
        outcome = self.run_event(link)
        self.assertEqual(self.site.media_requests() - before, 1)
        self.survived(outcome, "what lay under its final name lost its end with the power")
        self.assertStatus(outcome, 0)


class Nameless(WebFaultTest):
    """Success, without a word on where the file is, or without a file."""

    album = SIX
    playlists = {"six": [song.name for song in SIX], "three": [song.name for song in SIX[:3]]}

    def start_with(self, kind, playlist):
        self.gate = self.stage.scratch / "gate"
        self.stage.install("yt-dlp", FAKES / "e2e_nameless_yt-dlp")
        self.stage.environment |= {
            "REELCRATE_E2E_YT_DLP": shutil.which("yt-dlp"),
            "REELCRATE_E2E_GATE": str(self.gate),
            f"REELCRATE_E2E_{kind}": self.site.link(SIX[1].name),
        }
        return self.start_event(self.site.playlist_link(playlist))

    @slow
    def test_names_no_file_among_five_that_do(self):
        self.site.hold(HELD_AFTER)
        process = self.start_with("SILENT", "six")
        self.assertTrue(self.site.wait_held(len(SIX), PATIENCE), "six side by side")
        self.site.let_go()
        outcome = self.stage.finish(process)
        self.survived(outcome, "one tool of six does not say what its file is called")
        self.assertEqual(len({row["outputPath"] for row in outcome.rows}), len(SIX))

    def test_leaves_no_file_beside_two_that_do(self):
        process = self.start_with("IDLE", "three")
        self.assertTrue(eventually(lambda: len(self.stage.finished()) >= 2, PATIENCE))
        self.gate.touch()
        outcome = self.stage.finish(process)
        self.assertDetails(outcome, TRIMMED, FAILED, TRIMMED)
        self.survived(outcome, "one tool of three reports success, but leaves no file")
        self.assertEqual(len(self.stage.finished()), 2)


class Killed(WebFaultTest):
    album = ALBUM
    playlists = {"all": [song.name for song in ALBUM]}

    def test_amid_finished_running_and_waiting_rows(self):
        first, *stalled, _ = ALBUM
        paths = {f"/media/{song.media}" for song in stalled}
        self.site.faults = dict.fromkeys(paths, STALL)
        link = self.site.playlist_link("all")
        process = self.start_event(link)
        # The first is done, its slot has gone to the seventh, and the eighth still waits.
        self.wait_for_parts(len(stalled))
        process.kill()
        self.stage.finish(process)
        self.assertNothingRuns()
        self.assertEqual(self.stage.files(), {f"{first.title} [{first.name}].mp3"})
        self.site.faults.clear()
        self.site.ranges.clear()
        outcome = self.run_event(link)
        self.survived(outcome, "the program is killed amid its work, and started again")
        self.assertStatus(outcome, 0)
        self.assertEqual(outcome.rows[0]["detail"], "Already Downloaded")
        self.assertEqual({path for path, _ in self.site.ranges}, paths, "resumed")


if __name__ == "__main__":
    unittest.main()
