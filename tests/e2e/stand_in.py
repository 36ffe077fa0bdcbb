"""A quick stand-in for yt-dlp, and songs for the tests that use it."""

import shutil

import songs
from faults import FaultTest
from songs import Song
from stage import FAKES

EVENING = Song("evening", "Evening")
VICTIM = Song("victim", "Victim", lead=0.5, tone=1.5, tail=0.5)


class StandIn(FaultTest):
    """A quick yt-dlp, which does what the link says."""

    album = (VICTIM,)
    played = VICTIM

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        source = cls.site.media_file(cls.played.name)
        cls.song = source if cls.played.video else source.with_suffix(".mp3")
        if cls.song != source:
            songs.convert(source, cls.song)

    def setUp(self):
        super().setUp()
        self.stage.install("yt-dlp", FAKES / "e2e_odd_yt-dlp")
        self.stage.environment["REELCRATE_E2E_SONG"] = str(self.song)

    @classmethod
    def link(cls, oddity="good", title="Title"):
        return f"http://127.0.0.1/{oddity}/{title}/{cls.played.name}"

    def before_trim(self, command):
        """Lets something happen when a song was downloaded and is about to be trimmed."""
        self.stage.install("ffmpeg", FAKES / "e2e_hooked_ffmpeg")
        ffprobe = self.stage.tools / "ffprobe"
        if not ffprobe.exists():
            ffprobe.symlink_to(shutil.which("ffprobe"))
        self.stage.environment["REELCRATE_E2E_BEFORE_TRIM"] = command
