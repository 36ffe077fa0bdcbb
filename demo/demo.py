#!/usr/bin/env python3
"""The demo: thirteen songs on a site of this machine, four as links of their own, four in a
playlist, one by a Spotify link and four by their names in a message, are turned into finished
MP3 files by the real tools; only searches and Spotify's listing are stood in for.

REELCRATE is the program's path. Where there is a display, its window shows it
all; otherwise it works without one. Ends with status 0 when all songs are there,
with their covers, and each is shorter than its source by the silence around it.
"""

import os
import shlex
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

import loopback_site
import songs
import wish_list

EVENT = "Demo Party"


def say(text=""):
    print(text, flush=True)


def has_display():
    return bool(os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY"))


def run_program(arguments, links, environment, scratch):
    """Runs the program to its end; none is left when this is interrupted."""
    # A home of its own: neither the user's tools nor settings nor login profile play a part.
    environment = {name: value for name, value in environment.items() if not name.startswith("XDG_")}
    environment["HOME"] = scratch
    program = os.environ["REELCRATE"]
    shown = [os.path.basename(program), *arguments, *(["LINK..."] if links else [])]
    say(f"Running: {' '.join(word if word == 'LINK...' else shlex.quote(word) for word in shown)}")
    say()
    command = [program, *arguments, *links]
    process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL)
    try:
        return process.wait()
    finally:
        if process.poll() is None:
            process.terminate()
            process.wait()


def file_is_as_promised(path, song, source):
    """Prints the line of one song; says whether the file is what it should be."""
    name = path.name
    if not path.is_file():
        say(f"  {name:<44} is missing")
        return False
    length, before = songs.seconds(path), songs.seconds(source)
    has_cover = any(each["disposition"]["attached_pic"] for each in songs.probe(path)["streams"])
    say(
        f"  {name:<44} {length:5.2f} s, of {before:5.2f} s;"
        f" {before - length:4.2f} s of silence cut; {'with' if has_cover else 'no'} cover"
    )
    # An MP3 file's frames round its length by some hundredths of a second.
    return has_cover and abs(length - song.tone) < 0.25 and length < before


def demo(scratch):
    media = Path(scratch, "media")
    media.mkdir()
    album = songs.ALBUM + wish_list.SONGS
    say(f"Making {len(album)} short songs, each with silence at both ends and a cover picture ...")
    songs.make(album, media)
    alone, together = songs.ALBUM[:4], songs.ALBUM[4:]
    playlists = {"last-hour": [song.name for song in together]}
    with loopback_site.LoopbackSite(media, album, playlists) as site:
        links = [*(site.link(song.name) for song in alone), site.playlist_link("last-hour")]
        say(f"Serving {len(alone)} on {site.address}, and a playlist of {len(together)}:")
        for link in links:
            say(f"  {link}")
        links.append(wish_list.SPOTIFY_LINK)
        say(f"Asked for besides: {wish_list.SPOTIFY_LINK}, and a message:")
        for line in wish_list.MESSAGE.splitlines():
            say(f"  {line}")
        environment, message = wish_list.prepare(scratch, site)
        output = Path(tempfile.mkdtemp(prefix="reelcrate-demo-"))
        arguments = ["--download"] if has_display() else ["--headless", "--playlist"]
        arguments += ["--event", EVENT, "--output", str(output), "--list", str(message)]
        if has_display():
            say("They are read and downloaded in the window. Close it to end the demo.")
        status = run_program(arguments, links, environment, scratch)
    folder = output / EVENT
    say()
    say(f"The program ended with status {status}. The songs, and what was cut of each:")
    files = [folder / f"{song.title} [{song.name}].mp3" for song in album]
    good = [
        file_is_as_promised(path, song, media / song.media) for path, song in zip(files, album)
    ]
    if status == 0 and not all(good):
        say("Not all songs are as they should be.")
        status = 1
    say()
    if status == 0:
        status = run_program(["--check", str(folder)], [], environment, scratch)
    say(f"They are in {folder}")
    return status


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(128 + signal.SIGTERM))
    try:
        with tempfile.TemporaryDirectory(prefix="reelcrate-demo-media-") as scratch:
            sys.exit(demo(scratch))
    except KeyboardInterrupt:
        sys.exit(128 + signal.SIGINT)


main()
