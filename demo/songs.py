"""Short songs with silence at both ends and a cover picture, made by ffmpeg."""

import json
import subprocess
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Song:
    """A tone between two stretches of silence; times in seconds.

    `name` is a plain word: the media file's name and so its identifier. What sounds instead of the
    tone may be given in ffmpeg's words, one expression of `t` for each channel, with its pauses
    counted. The format is the media file's extension, without its dot.
    """

    name: str
    title: str
    frequency: int = 440
    lead: float = 1.5
    tone: float = 6.0
    tail: float = 1.0
    video: bool = False
    sound: str = ""
    pauses: int = 0
    format: str = ""

    @property
    def seconds(self):
        return self.lead + self.tone + self.tail

    @property
    def media(self):
        return f"{self.name}.{self.format or ('mp4' if self.video else 'm4a')}"

    @property
    def cover(self):
        return f"{self.name}.jpg"


# Eight songs that differ in everything a listener or a test could mix up.
ALBUM = (
    Song("slow-river", "Slow River", 220, lead=1.0, tone=5.0, tail=1.5),
    Song("paper-lanterns", "Paper Lanterns (Live)", 262, lead=1.2, tone=6.5, tail=1.8),
    Song("cafe-del-mar", "Café Del Mar", 330, lead=2.0, tone=5.5, tail=1.0),
    Song("night-drive", "Night Drive", 392, lead=1.6, tone=7.0, tail=1.4),
    Song("first-dance", "First Dance", 440, lead=1.4, tone=6.0, tail=2.0),
    Song("confetti", "Confetti & Streamers", 523, lead=1.8, tone=5.2, tail=1.2),
    Song("long-way-home", "Long Way Home", 587, lead=1.1, tone=6.8, tail=1.7),
    Song("last-song", "Last Song of the Night", 659, lead=1.9, tone=5.8, tail=1.3),
)


def _make(song, folder):
    start, end = song.lead, song.lead + song.tone
    sounds = (song.sound or f"0.4*sin(2*PI*{song.frequency}*t)").split("|")
    # Half open, so that no sample is beyond the end.
    tone = "|".join(f"if(gte(t,{start})*lt(t,{end}),{each},0)" for each in sounds)
    command = ["ffmpeg", "-hide_banner", "-loglevel", "error", "-nostdin", "-y"]
    command += ["-f", "lavfi", "-i", f"aevalsrc='{tone}':d={song.seconds}:s=44100"]
    picture = f"testsrc=size=320x320:rate=10:duration={song.seconds},hue=h={song.frequency % 360}"
    command += ["-f", "lavfi", "-i", picture]
    if song.video:
        command += ["-map", "0:a", "-map", "1:v", "-c:v", "libx264", "-preset", "ultrafast"]
        command += ["-pix_fmt", "yuv420p"]
    else:
        command += ["-map", "0:a"]
    if not song.format:
        command += ["-c:a", "aac", "-movflags", "+faststart"]
    command += ["-b:a", "128k"]
    command += [str(folder / song.media)]
    command += ["-map", "1:v", "-frames:v", "1", "-update", "1", str(folder / song.cover)]
    subprocess.run(command, check=True)


def make(songs, folder):
    """Writes media and cover of each song into the folder."""
    with ThreadPoolExecutor(max_workers=2) as pool:
        list(pool.map(lambda song: _make(song, Path(folder)), songs))


def convert(source, target):
    """Converts a media file to the format that the target's name says."""
    command = ["ffmpeg", "-hide_banner", "-loglevel", "error", "-nostdin", "-y"]
    subprocess.run([*command, "-i", str(source), str(target)], check=True)


def probe(path):
    """What ffprobe says of a media file: its "format" and "streams"."""
    command = ["ffprobe", "-v", "error", "-of", "json", "-show_format", "-show_streams", str(path)]
    return json.loads(subprocess.run(command, check=True, capture_output=True).stdout)


def seconds(path):
    return float(probe(path)["format"]["duration"])


def silences(path):
    """The stretches below -50 dB that last a tenth of a second, as (start, end)."""
    command = ["ffmpeg", "-hide_banner", "-nostdin", "-nostats", "-i", str(path), "-map", "0:a:0"]
    command += ["-af", "silencedetect=noise=-50dB:duration=0.1", "-f", "null", "-"]
    report = subprocess.run(command, check=True, capture_output=True, text=True).stderr
    starts, ends = [], []
    for line in report.splitlines():
        if "silence_start: " in line:
            starts.append(float(line.split("silence_start: ")[1].split()[0]))
        elif "silence_end: " in line:
            ends.append(float(line.split("silence_end: ")[1].split()[0]))
    return list(zip(starts, ends))
