#!/usr/bin/env python3
"""Songs that a careless trim destroys, and media files that are not what they claim to be."""

import subprocess
import time
import unittest
from dataclasses import replace

import songs
from faults import FAILED, TRIMMED, UNTRIMMED, FaultTest, slow
from songs import Song
from stand_in import StandIn

LOUD = "0.5*cos(2*PI*340*t)"
BROKEN = f"{LOUD}*(1-between(t,2,2.5)-between(t,3.2,3.6))"  # two pauses
SHORT = {"lead": 0.6, "tone": 3.0, "tail": 0.5}

SOUNDS = (
    Song("loud", "Loud Edges", lead=0, tone=5.0, tail=0, sound=LOUD),
    Song("pauses", "Loud Edges, Pauses", lead=0, tone=5.0, tail=0, sound=BROKEN, pauses=2),
    Song("edges", "Silent Edges, Pauses", lead=0.9, tone=4.0, tail=0.7, sound=BROKEN, pauses=2),
    Song("start", "Silent Start", lead=1.1, tone=3.0, tail=0, sound=LOUD),
    Song("end", "Silent End", lead=0, tone=3.0, tail=1.2, sound=LOUD),
    Song("right", "Right Channel Only", **SHORT, sound=f"0|{LOUD}"),
    Song("quiet", "Quiet Throughout", lead=0, tone=3.0, tail=0, sound=f"0.0016*{LOUD}", pauses=1),
)

DAMAGED = Song("damaged", "Damaged", **SHORT)
HALF = Song("half", "Half", **SHORT)
COVERLESS = Song("coverless", "Coverless", **SHORT)

HOUR = Song("hour", "Hour", lead=5.0, tone=3600.0, tail=4.0, format="mp3")


class Sounds(FaultTest):
    album = SOUNDS
    playlists = {"all": [song.name for song in SOUNDS]}

    def test_nothing_is_lost(self):
        outcome = self.run_event(self.site.playlist_link("all"))
        self.assertDetails(outcome, *[TRIMMED] * (len(SOUNDS) - 1), UNTRIMMED)
        self.survived(outcome, "loud edges, pauses, silence at one edge, one channel, a quiet song")
        self.assertEqual(len(self.stage.finished()), len(SOUNDS))


class Sources(FaultTest):
    album = (DAMAGED, HALF, COVERLESS)

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        media = cls.site.media_file(DAMAGED.name)
        content = bytearray(media.read_bytes())
        middle = len(content) // 2
        content[middle : middle + 60] = b"\xff" * 60
        media.write_bytes(content)
        # All that its beginning announces is not there, though the transfer is complete.
        media = cls.site.media_file(HALF.name)
        cls.whole = media.read_bytes()
        media.write_bytes(cls.whole[: len(cls.whole) // 2])
        (cls.site.folder / COVERLESS.cover).write_text("There is no picture.\n")

    def run_song(self, song, fault, detail):
        outcome = self.run_event(self.site.link(song.name))
        self.assertDetails(outcome, detail)
        self.survived(outcome, fault)
        return outcome

    def test_damaged(self):
        self.run_song(DAMAGED, "a source with some damaged bytes", TRIMMED)

    def test_half(self):
        self.run_song(HALF, "a source that ends half-way, though its transfer is complete", FAILED)

    def test_mended(self):
        """What could not be converted is not taken for the source when the site has a whole one."""
        media = self.site.media_file(HALF.name)
        for content in (self.whole[: len(self.whole) // 2], b"<p>Busy.</p>" * 3000):
            media.write_bytes(content)
            link = self.site.link(HALF.name)
            self.assertDetails(self.run_event(link, event=str(len(content))), FAILED)
            media.write_bytes(self.whole)
            self.assertDetails(self.run_event(link, event=str(len(content))), TRIMMED)

    def test_cover_that_is_no_picture(self):
        outcome = self.run_song(COVERLESS, "a cover that is no picture", TRIMMED)
        streams = songs.probe(outcome.rows[0]["outputPath"])["streams"]
        self.assertEqual([each["codec_type"] for each in streams], ["audio"])


@slow
class Hour(StandIn):
    """The memory that a song takes does not grow with its length."""

    album = ()
    played = HOUR

    @classmethod
    def setUpClass(cls):
        super(StandIn, cls).setUpClass()
        cls.song = cls.site.folder / HOUR.media
        cls.make_hour()
        # Each piece is a little longer than it was asked for.
        tone = songs.seconds(cls.song) - HOUR.lead - HOUR.tail
        cls.site.album[HOUR.name] = replace(HOUR, tone=tone)

    @classmethod
    def make_hour(cls):
        """A minute sixty times, between two silences: made in seconds."""
        encoder = ["-ac", "2", "-c:a", "libmp3lame", "-b:a", "128k", "-reservoir", "0"]
        lead, tail = (f"anullsrc=d={seconds}" for seconds in (HOUR.lead, HOUR.tail))
        ffmpeg = ["ffmpeg", "-loglevel", "error", "-nostdin"]
        for name, source in {"lead": lead, "minute": "sine=440:d=60", "tail": tail}.items():
            target = cls.site.folder / f"{name}.mp3"
            subprocess.run([*ffmpeg, "-f", "lavfi", "-i", source, *encoder, target], check=True)
        listing = cls.site.folder / "hour.txt"
        order = ["lead", *["minute"] * 60, "tail"]
        listing.write_text("".join(f"file {name}.mp3\n" for name in order))
        subprocess.run([*ffmpeg, "-f", "concat", "-i", listing, "-c", "copy", cls.song], check=True)

    def peak(self, pid):
        return int(self.status(pid, "VmHWM") or 0)

    def test_an_hour(self):
        process = self.start_event(self.link())
        peaks = {"reelcrate": 0, "ffmpeg": 0}
        while process.poll() is None:
            for pid in self.stage.running():
                name = self.status(pid, "Name")
                if name in peaks:
                    peaks[name] = max(peaks[name], self.peak(pid))
            time.sleep(0.2)
        outcome = self.stage.finish(process)
        self.assertDetails(outcome, TRIMMED)
        self.check(outcome)
        for name, peak in peaks.items():
            self.assertGreater(peak, 0, name)
            self.assertLess(peak, 300_000, f"kilobytes of {name}")
        megabytes = ", ".join(f"{name} {peak // 1000} MB" for name, peak in peaks.items())
        self.record("an hour's song", outcome, self.on_disk("Party"), says=f"at most {megabytes}")


if __name__ == "__main__":
    unittest.main()
