#!/usr/bin/env python3
"""Links become finished, trimmed songs, with the real yt-dlp and ffmpeg: the
machine's yt-dlp, and the newest of Debian's."""

import os
import unittest

import songs
from songs import ALBUM, Song
from stage import NEWEST_YT_DLP, EndToEnd

FIELDS = {
    "id": str,
    "url": str,
    "source": str,
    "status": str,
    "detail": str,
    "outputPath": str,
    "title": str,
    "duration": str,
    "thumbnailURL": str,
    "isResolvingInfo": bool,
    "progress": (int, float),
    "hasRealProgress": bool,
    "cause": str,
}

CAFE, DRIVE, CONFETTI = (
    next(song for song in ALBUM if song.name == name)
    for name in ("cafe-del-mar", "night-drive", "confetti")
)
CITY = Song("city-lights", "City Lights", video=True)


class Mp3(EndToEnd):
    album = (CAFE, DRIVE, CONFETTI)
    playlists = {"party": ("night-drive", "confetti")}
    event = "Prom: 2026/27"
    folder = "Prom- 2026-27"

    def run_event(self):
        links = (self.site.link("cafe-del-mar"), self.site.playlist_link("party"))
        return self.stage.run("--json", *links, event=self.event)

    def test_songs_are_filed_and_found_again(self):
        first = self.run_event()
        self.assertStatus(first, 0)
        self.assertEqual([row["title"] for row in first.rows], [song.title for song in self.album])
        for row, song in zip(first.rows, self.album):
            with self.subTest(song.title):
                self.check_row(row, song)
                self.check_file(row["outputPath"], song)
        files = {f"{song.title} [{song.name}].mp3" for song in self.album}
        self.assertEqual(self.stage.files(self.folder), files)
        self.assertEqual(os.listdir(self.stage.output), [self.folder])

        times = self.modification_times()
        transfers = self.site.media_requests()
        second = self.run_event()
        self.assertStatus(second, 0)
        self.assertEqual({row["detail"] for row in second.rows}, {"Already Downloaded"})
        self.assertEqual({row["status"] for row in second.rows}, {"Complete"})
        self.assertEqual(
            [row["outputPath"] for row in second.rows], [row["outputPath"] for row in first.rows]
        )
        self.assertEqual(self.modification_times(), times)
        self.assertEqual(self.site.media_requests(), transfers)

    def modification_times(self):
        folder = self.stage.output / self.folder
        return {path.name: path.stat().st_mtime_ns for path in folder.iterdir()}

    def check_row(self, row, song):
        self.assertLessEqual(set(FIELDS), set(row))
        for field, kind in FIELDS.items():
            self.assertIsInstance(row[field], kind, field)
        listed = song.name in self.playlists["party"]
        self.assertEqual(row["source"], "YouTube" if listed else "Link")
        self.assertEqual(row["url"].partition("#")[0], self.site.link(song.name))
        self.assertEqual(row["duration"], f"0:{round(song.seconds):02}" if listed else "")
        self.assertEqual(row["thumbnailURL"], f"{self.site.address}/cover/{song.cover}")
        self.assertEqual(row["status"], "Complete")
        self.assertEqual(row["detail"], "Saved; trimmed silent start/end")
        self.assertEqual(row["progress"], 1)
        self.assertFalse(row["isResolvingInfo"])
        self.assertFalse(row["hasRealProgress"])

    def check_file(self, path, song):
        name = f"{song.title} [{song.name}].mp3"
        self.assertEqual(path, str(self.stage.output / self.folder / name))
        self.assertIsTrimmedSong(path, song)
        found = songs.probe(path)
        self.assertEqual(found["format"]["tags"]["title"], song.title)
        page = found["format"]["tags"]["comment"].partition("#")[0]
        self.assertEqual(page, self.site.link(song.name))
        audio, cover = found["streams"]
        self.assertEqual(audio["codec_name"], "mp3")
        self.assertEqual(cover["disposition"]["attached_pic"], 1)
        self.assertEqual((cover["width"], cover["height"]), (320, 320))


class Mp4(EndToEnd):
    album = (CITY,)

    def test_video_is_kept_whole(self):
        outcome = self.stage.run("--json", "--mode", "MP4", self.site.link("city-lights"))
        self.assertStatus(outcome, 0)
        (row,) = outcome.rows
        self.assertEqual((row["status"], row["detail"]), ("Complete", "Saved to Party"))
        self.assertEqual(self.stage.files(), {"City Lights [city-lights].mp4"})
        found = songs.probe(row["outputPath"])
        self.assertEqual({each["codec_name"] for each in found["streams"]}, {"h264", "aac"})
        self.assertEqual(found["format"]["tags"]["title"], CITY.title)
        self.assertAlmostEqual(songs.seconds(row["outputPath"]), CITY.seconds, delta=0.1)


class NeedsAttention(EndToEnd):
    album = (CAFE,)

    def test_missing_page_beside_a_good_one(self):
        text = f"First <{self.site.link('cafe-del-mar')}>, then ({self.site.missing_link()})."
        outcome = self.stage.run("--json", "-", text=text)
        self.assertStatus(outcome, 1)
        good, missing = outcome.rows
        self.assertEqual(good["status"], "Complete")
        self.assertIsTrimmedSong(good["outputPath"], CAFE)
        self.assertEqual(missing["status"], "Needs Attention")
        self.assertEqual(missing["url"], self.site.missing_link())
        self.assertEqual(missing["detail"], "No song at this address. Check the link.")
        self.assertEqual((missing["cause"], good["cause"]), ("no-such-page", ""))
        self.assertEqual(missing["outputPath"], "")
        self.assertEqual(len(self.stage.files()), 1)


@unittest.skipUnless(NEWEST_YT_DLP.is_dir(), "scripts/setup could not fetch the newest yt-dlp")
class WithNewestYtDlp:
    def setUp(self):
        super().setUp()
        self.stage.install_newest_yt_dlp()


class Mp3WithNewestYtDlp(WithNewestYtDlp, Mp3):
    pass


class Mp4WithNewestYtDlp(WithNewestYtDlp, Mp4):
    pass


class NeedsAttentionWithNewestYtDlp(WithNewestYtDlp, NeedsAttention):
    pass


class Usage(EndToEnd):
    def test_wrong_usage(self):
        for arguments in (
            [],
            ["--mode", "OGG", "http://127.0.0.1/song"],
            ["--no-such-option", "http://127.0.0.1/song"],
        ):
            with self.subTest(arguments):
                outcome = self.stage.run(*arguments)
                self.assertStatus(outcome, 2)
                self.assertEqual(outcome.out, "")
                self.assertNotEqual(outcome.err, "")

    def test_help_and_version(self):
        for option in ("--help", "--version"):
            outcome = self.stage.run(option)
            self.assertStatus(outcome, 0)
            self.assertIn("reelcrate", outcome.out.lower())
        for name in ("yt-dlp", "ffmpeg", "deno", "spotdl"):
            self.assertRegex(outcome.out, rf"\n{name} \S")


if __name__ == "__main__":
    unittest.main()
