#!/usr/bin/env python3
"""Records what the real yt-dlp prints, as samples for the parsers' tests.

Usage: record_samples.py [FOLDER], by default tests/data. The command lines are
those that the program runs; both output streams are merged, as the program
reads them while it downloads. Of what changes from run to run the download folder becomes
/music/Event and the site's address http://127.0.0.1:8000.
"""

import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "demo"))

import loopback_site  # noqa: E402
import songs  # noqa: E402

ALBUM = songs.ALBUM[:4] + (songs.Song("city-lights", "City Lights", video=True),)

PROBE = "--no-update --skip-download --no-warnings --no-playlist --print".split()
PROBE += [
    "RCR_MEDIA:%(.{title,duration_string,duration,thumbnail,webpage_url,playlist_index,n_entries})j"
]

LISTING = "--no-update --flat-playlist --dump-single-json --no-warnings --yes-playlist".split()

PROGRESS = "--no-update --newline --no-colors --progress --progress-delta 0.2".split()
PROGRESS += ["--progress-template", "download:RCR_PROGRESS:%(progress._percent_str)s"]

MP3 = [*PROGRESS, *"--ignore-errors --concurrent-fragments 8 -x --audio-format mp3".split()]
MP3 += "--audio-quality 0 --embed-thumbnail --add-metadata --ffmpeg-location /usr/bin".split()

SORT = "res:1080,lang,hdr:sdr,vcodec:h264,acodec:aac,ext:mp4:m4a"
MP4 = [*PROGRESS, *"--ignore-errors --concurrent-fragments 12 --embed-metadata".split()]
MP4 += ["--ffmpeg-location", "/usr/bin", "-f", "bv*+ba/b", "-S", SORT]
MP4 += ["--merge-output-format", "mp4/mkv"]


def main():
    samples = Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "tests" / "data")
    with tempfile.TemporaryDirectory() as scratch:
        media, event = Path(scratch, "media"), Path(scratch, "event")
        media.mkdir()
        songs.make(ALBUM, media)
        names = [song.name for song in ALBUM[:4]]
        with loopback_site.LoopbackSite(media, ALBUM, {"party": names}) as site:
            site.rate = 100_000
            audio, video = site.link("cafe-del-mar"), site.link("city-lights")
            into = ["-o", f"{event}/%(title).180B [%(id)s].%(ext)s"]
            for name, arguments in (
                ("probe.txt", [*PROBE, "--", audio]),
                ("playlist.json", [*LISTING, "--", site.playlist_link("party")]),
                ("mp3.txt", [*MP3, *into, audio]),
                ("mp4.txt", [*MP4, *into, video]),
                ("again.txt", [*MP3, *into, audio]),
                ("404.txt", [*MP3, *into, site.missing_link()]),
            ):
                run = subprocess.run(
                    ["yt-dlp", *arguments],
                    stdout=subprocess.PIPE,
                    stderr=subprocess.STDOUT,
                    text=True,
                )
                text = run.stdout.replace(str(event), "/music/Event")
                text = text.replace(site.address.removeprefix("http://"), "127.0.0.1:8000")
                (samples / f"yt-dlp_{name}").write_text(text)


main()
