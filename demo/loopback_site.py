#!/usr/bin/env python3
"""A small media site on 127.0.0.1 for the demo and the end-to-end tests.

Each song has a page with Open Graph tags, as media sites have them, so that
yt-dlp's generic extractor finds its audio or video and its picture. A playlist
is an RSS feed whose link names the video site in its query.

Run by hand it makes an album of eight songs and serves it until interrupted.
"""

import argparse
import html
import re
import shutil
import socket
import struct
import tempfile
import threading
from http import HTTPStatus
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path
from urllib.parse import urlsplit

import songs

TYPES = {
    ".m4a": "audio/mp4",
    ".mp3": "audio/mpeg",
    ".mp4": "video/mp4",
    ".jpg": "image/jpeg",
    ".m3u8": "application/vnd.apple.mpegurl",
    ".ts": "video/mp2t",
}
PIECE = 8192

# How a transfer may fail: the connection is closed before all is sent that was
# announced, or reset, or falls silent, or it ends without a word on what is missing.
CUT, RESET, STALL, END = "cut", "reset", "stall", "end"


def attribute(text):
    """The text as the value of an HTML attribute; line breaks survive as entities."""
    return html.escape(text).replace("\n", "&#10;").replace("\r", "&#13;")


class LoopbackSite:
    """Serves the given songs' files from a folder; a context manager.

    The knobs may be turned while the site serves:
    rate        bytes per second of each media transfer, None for no limit
    hold_after  media transfers stop after so many bytes until let_go()
    faults      by path: a status to answer with, or how transfers fail, which
                then do not get beyond the file's middle; or a list of these, one
                for each request, after which all is well
    direct      by query: whose media file a link to /media/audio.m4a with that query gives
    """

    def __init__(self, folder, album, playlists=None, port=0):
        self.folder = Path(folder)
        self.album = {song.name: song for song in album}
        self.playlists = dict(playlists or {})
        self.rate = None
        self.hold_after = None
        self.faults = {}
        self.direct = {}
        self.requests = []
        self.ranges = []  # (path, first byte) of what was asked for from further on
        self.held = 0
        self._changed = threading.Condition()
        self._let_go = threading.Event()
        self._closing = threading.Event()
        self._handler = type("Handler", (_Handler,), {"site": self})
        self._server = _Server(("127.0.0.1", port), self._handler)
        self.port = self._server.server_address[1]

    def __enter__(self):
        self._serve()
        return self

    def __exit__(self, *_):
        self.vanish()

    def _serve(self):
        self._thread = threading.Thread(target=self._server.serve_forever, args=(0.05,))
        self._thread.start()

    def vanish(self):
        """Breaks off what is being sent, and closes the port."""
        self._closing.set()
        self._let_go.set()
        self._server.shutdown()
        self._server.server_close()
        self._thread.join()

    def come_back(self):
        """Serves again after vanish(), at the same port."""
        self._closing.clear()
        self.let_go()
        self._server = _Server(("127.0.0.1", self.port), self._handler)
        self._serve()

    @property
    def address(self):
        return f"http://127.0.0.1:{self.port}"

    def link(self, name):
        """The page of a song, as a user would copy it."""
        return f"{self.address}/song/{name}"

    def playlist_link(self, name):
        return self.feed_link(name) + "?from=youtube.com"

    def feed_link(self, name):
        """The same playlist, of a site of no name."""
        return f"{self.address}/playlist/{name}.xml"

    def gallery_link(self, name):
        """A playlist's songs, all on one page."""
        return f"{self.address}/gallery/{name}"

    def direct_link(self, query):
        """One of many links to media files of one name."""
        return f"{self.address}/media/audio.m4a?{query}"

    def missing_link(self):
        return f"{self.address}/song/no-such-song"

    def stalled_link(self):
        """A page whose answer never comes."""
        return f"{self.address}/stalled"

    def media_file(self, name):
        return self.folder / self.album[name].media

    def hold(self, after):
        """Lets no media transfer go beyond so many bytes."""
        self._let_go.clear()
        self.held = 0
        self.hold_after = after

    def let_go(self):
        """Lets the held transfers, and all later ones, run to their end."""
        self.hold_after = None
        self._let_go.set()

    def wait_held(self, count, timeout):
        """Waits until so many transfers are held; says whether they are."""
        with self._changed:
            return self._changed.wait_for(lambda: self.held >= count, timeout)

    def wait_requested(self, path, timeout):
        """Waits until the path was asked for; says whether it was."""
        with self._changed:
            return self._changed.wait_for(
                lambda: any(each == path for _, each in self.requests), timeout
            )

    def media_requests(self):
        """How many media transfers were asked for so far."""
        with self._changed:
            return sum(path.startswith("/media/") for _, path in self.requests)

    # What follows is called by the handler, on a thread per connection.

    def note(self, method, path):
        with self._changed:
            self.requests.append((method, path))
            self._changed.notify_all()

    def next_fault(self, path):
        fault = self.faults.get(path)
        if isinstance(fault, list):
            return fault.pop(0) if fault else None
        return fault

    def pace(self, sent):
        """Called between the pieces of a media transfer."""
        if self.rate:
            self._closing.wait(PIECE / self.rate)
        if self.hold_after is not None and sent >= self.hold_after:
            with self._changed:
                self.held += 1
                self._changed.notify_all()
            self._let_go.wait()

    def stall(self):
        self._closing.wait()

    def is_closing(self):
        return self._closing.is_set()

    def page(self, song):
        kind = "video" if song.video else "audio"
        return f"""<!DOCTYPE html>
<html>
<head>
<meta charset="utf-8">
<title>{attribute(song.title)}</title>
<meta property="og:title" content="{attribute(song.title)}">
<meta property="og:image" content="{self.address}/cover/{song.cover}">
<meta property="og:{kind}" content="{self.address}/media/{song.media}">
</head>
<body></body>
</html>
"""

    def gallery(self, name):
        players = "".join(
            f'<audio controls src="{self.address}/media/{self.album[each].media}"></audio>\n'
            for each in self.playlists[name]
        )
        return f"""<!DOCTYPE html>
<html>
<head><meta charset="utf-8"><title>{attribute(name)}</title></head>
<body>
{players}</body>
</html>
"""

    def feed(self, name):
        items = "".join(
            f"""<item>
<title>{attribute(song.title)}</title>
<link>{self.link(song.name)}</link>
<guid isPermaLink="false">{song.name}</guid>
<itunes:duration>{round(song.seconds)}</itunes:duration>
<itunes:image href="{self.address}/cover/{song.cover}"/>
</item>
"""
            for song in (self.album[each] for each in self.playlists[name])
        )
        return f"""<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:itunes="http://www.itunes.com/dtds/podcast-1.0.dtd">
<channel>
<title>{attribute(name)}</title>
{items}</channel>
</rss>
"""


class _Server(ThreadingHTTPServer):
    daemon_threads = True
    request_queue_size = 64  # six downloads may knock at once


class _Handler(BaseHTTPRequestHandler):
    site: LoopbackSite
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        self.site.note(self.command, self.path)
        if self.site.is_closing():
            self.close_connection = True
            return
        try:
            self._answer(urlsplit(self.path))
        except ConnectionError:
            self.close_connection = True  # one side has gone

    do_HEAD = do_GET

    def log_message(self, *_):
        pass

    def _answer(self, asked):
        path = asked.path
        _, area, *rest = path.split("/")
        name = rest[0] if len(rest) == 1 else ""
        stem = name.rpartition(".")[0]
        fault = self.site.next_fault(path)
        if isinstance(fault, int):
            self._text("There is something wrong.\n", "text/plain", fault)
        elif area == "song" and name in self.site.album:
            self._text(self.site.page(self.site.album[name]), "text/html")
        elif path == "/media/audio.m4a" and asked.query in self.site.direct:
            song = self.site.album[self.site.direct[asked.query]]
            self._file(self.site.folder / song.media, fault, paced=True)
        elif area == "gallery" and name in self.site.playlists:
            self._text(self.site.gallery(name), "text/html")
        elif area == "playlist" and stem in self.site.playlists:
            self._text(self.site.feed(stem), "application/rss+xml")
        elif area in ("media", "cover") and stem in self.site.album:
            self._file(self.site.folder / name, fault, paced=area == "media")
        elif area == "stream" and Path(name).suffix in (".m3u8", ".ts"):
            self._file(self.site.folder / name, fault, paced=False)
        elif area == "stalled":
            self.site.stall()
            self.close_connection = True
        else:
            self._text("There is no such page.\n", "text/plain", HTTPStatus.NOT_FOUND)

    def _head(self, status, headers):
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name, str(value))
        self.end_headers()
        return self.command != "HEAD"

    def _text(self, text, kind, status=HTTPStatus.OK):
        body = text.encode()
        headers = {"Content-Type": f"{kind}; charset=utf-8", "Content-Length": len(body)}
        if self._head(status, headers):
            self.wfile.write(body)

    def _file(self, path, fault, paced):
        size = path.stat().st_size
        asked = re.fullmatch(r"bytes=(\d*)-(\d*)", self.headers.get("Range", ""))
        headers = {"Content-Type": TYPES[path.suffix], "Accept-Ranges": "bytes"}
        start, end, status = 0, size, HTTPStatus.OK
        if asked and asked[0] != "bytes=-":
            if asked[1]:
                start, end = int(asked[1]), min(size, int(asked[2]) + 1 if asked[2] else size)
            else:
                start = max(0, size - int(asked[2]))
            if start >= end:
                self._head(
                    HTTPStatus.REQUESTED_RANGE_NOT_SATISFIABLE,
                    {"Content-Range": f"bytes */{size}", "Content-Length": 0},
                )
                return
            status = HTTPStatus.PARTIAL_CONTENT
            self.site.ranges.append((self.path, start))
            headers["Content-Range"] = f"bytes {start}-{end - 1}/{size}"
        if fault != END:
            headers["Content-Length"] = end - start
        if self._head(status, headers):
            sound = min(end, size // 2) if fault else end
            self._send(path, start, sound, paced)
            if fault:
                self._fail(fault)

    def _fail(self, fault):
        if fault == STALL:
            self.site.stall()
        if fault == RESET:
            self.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
            self.rfile.close()
            self.connection.close()
        self.close_connection = True

    def _send(self, path, start, end, paced):
        with open(path, "rb") as file:
            file.seek(start)
            position = start
            while position < end:
                if paced:
                    self.site.pace(position - start)
                if self.site.is_closing():
                    raise ConnectionAbortedError
                piece = file.read(min(PIECE, end - position))
                self.wfile.write(piece)
                position += len(piece)


def main():
    parser = argparse.ArgumentParser(description="Serve eight songs until interrupted.")
    parser.add_argument("--port", type=int, default=0, help="default: any free one")
    parser.add_argument("--rate", type=int, help="bytes per second of each media transfer")
    options = parser.parse_args()
    folder = tempfile.mkdtemp(prefix="reelcrate-site-")
    try:
        songs.make(songs.ALBUM, folder)
        names = [song.name for song in songs.ALBUM]
        with LoopbackSite(folder, songs.ALBUM, {"all-eight": names}, options.port) as site:
            site.rate = options.rate
            for link in [*map(site.link, names), site.playlist_link("all-eight")]:
                print(link, flush=True)
            site.stall()
    except KeyboardInterrupt:
        pass
    finally:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
