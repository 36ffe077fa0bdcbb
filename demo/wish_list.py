"""What the demo asks for in words instead of by links: a Spotify link and a message with four
songs, and for each of them five hits of a search, of which one is right."""

import json
import os
import shutil
from pathlib import Path

from songs import Song

STAND_INS = Path(__file__).with_name("stand_ins")
SPOTIFY_LINK = "https://open.spotify.com/track/4uLU6hMCjMI75M1A2tKUQC"

# What is found, in the order of the message below; the Spotify link's song is the first.
SONGS = (
    Song("golden-hour", "The Lanterns - Golden Hour", 294, lead=1.0, tone=6.0, tail=1.0),
    Song("vals-triste", "Ana Río - Vals triste", 349, lead=1.5, tone=5.0, tail=1.5),
    Song("yozora", "夜空 - 星の歌", 415, lead=1.0, tone=5.5, tail=1.5),
    Song("midnight", "DJ Kobold - Midnight (Remix)", 466, lead=1.2, tone=6.0, tail=0.8),
    Song("encore", "The Lanterns - Encore", 494, lead=1.0, tone=6.0, tail=1.0),
)
MESSAGE = """Hi! Here is what we would love to hear:
1. “Vals triste” by Ana Río (0:08)
2) 夜空 – 星の歌 (0:08)
3. DJ Kobold - Midnight (Remix) (0:08)
* The Lanterns – Encore (0:20)
Thank you so much!
"""
OTHER_VERSIONS = (" (Live)", " karaoke version", " 1 hour loop", " (sped up)")


def _hits(song, site):
    """The song behind its other versions, which lead to another song of the site."""
    right = {"url": site.link(song.name), "title": song.title, "duration": song.seconds,
             "channel": song.title.split(" - ")[0] + " - Topic"}
    wrong = [{"url": site.link("slow-river"), "title": song.title + words, "channel": "Some Channel",
              "duration": 3600 if "hour" in words else song.seconds} for words in OTHER_VERSIONS]
    return [*wrong[:3], right, wrong[3]]


def prepare(scratch, site):
    """Stand-ins for search and listing in the program's private folder, which wins; what to add to
    its environment, and the message's file."""
    folder = Path(scratch, ".local/share/Reelcrate/Tools/bin")
    folder.mkdir(parents=True)
    for stand_in in STAND_INS.iterdir():
        shutil.copy(stand_in, folder)
    first = SONGS[0]
    artist, name = first.title.split(" - ")
    listing, hits, message = (Path(scratch, name) for name in ("listing", "hits", "message.txt"))
    listing.write_text(json.dumps([{"name": name, "artist": artist, "artists": [artist],
                                    "duration": round(first.seconds), "url": SPOTIFY_LINK}]))
    hits.write_text(json.dumps({song.title: _hits(song, site) for song in SONGS}))
    message.write_text(MESSAGE, encoding="utf-8")
    environment = {
        "REELCRATE_DEMO_YTDLP": shutil.which("yt-dlp"),
        "REELCRATE_DEMO_HITS": str(hits),
        "REELCRATE_DEMO_LISTING": str(listing),
    }
    return os.environ | environment, message
