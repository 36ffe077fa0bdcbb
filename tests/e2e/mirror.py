"""The folder of tools on a web server of this machine; a test changes what is in it."""

import functools
import hashlib
import http.server
import shutil
import ssl
import tempfile
import threading
import zipfile
from pathlib import Path

YT_DLP = "yt-dlp_linux.zip"
DENO = "deno-x86_64-unknown-linux-gnu.zip"
NEWEST = "2099.01.01"


def tool(name, version=NEWEST):
    """A tool that tells its version."""
    words = "" if name == "yt-dlp" else f"{name} "
    return f"#!/bin/bash\necho {words}{version}\n".encode()


class Mirror:
    def __init__(self, certificate=None):
        self.folder = Path(tempfile.mkdtemp(prefix="reelcrate-mirror-"))
        self.requests = []
        self.answers = {}  # of a file: a function that answers in place of the server
        mirror = self

        class Handler(http.server.SimpleHTTPRequestHandler):
            def do_GET(self):
                name = self.path.strip("/")
                mirror.requests.append(name)
                answer = mirror.answers.get(name)
                return answer(self, mirror.folder / name) if answer else super().do_GET()

            def log_message(self, *_):
                pass

        handler = functools.partial(Handler, directory=str(self.folder))
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        self.server.daemon_threads = True
        self.server.block_on_close = False
        self.address = f"http://127.0.0.1:{self.server.server_address[1]}"
        if certificate:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(certificate)
            self.server.socket = context.wrap_socket(self.server.socket, server_side=True)
            self.address = self.address.replace("http:", "https:")
        threading.Thread(target=self.server.serve_forever, kwargs={"poll_interval": 0.05}).start()
        self.fill()

    def fill(self):
        """All as it should be."""
        self.answers.clear()
        for file in self.folder.iterdir():
            file.unlink()
        self.release(NEWEST)
        self.put_zip("ffmpeg.zip", {"build/ffmpeg": tool("ffmpeg")})
        self.put_zip("ffprobe.zip", {"build/ffprobe": tool("ffprobe")})
        self.put_zip(DENO, {"deno": tool("deno")})
        self.put(f"{DENO}.sha256sum", f"{self.digest(DENO)}  {DENO}\n")

    def release(self, version, program=None):
        """A newest yt-dlp."""
        files = {"yt-dlp_linux": program or tool("yt-dlp", version), "_internal/lib": b"#" * 50_000}
        self.put_zip(YT_DLP, files)
        self.put("latest", f"{version}\n")
        self.put("SHA2-256SUMS", f"{'0' * 64}  yt-dlp\n{self.digest(YT_DLP)}  {YT_DLP}\n")

    def put(self, name, text):
        (self.folder / name).write_text(text)

    def put_zip(self, name, files):
        with zipfile.ZipFile(self.folder / name, "w") as archive:
            for path, content in files.items():
                info = zipfile.ZipInfo(path)
                info.external_attr = 0o755 << 16
                archive.writestr(info, content)

    def put_spotdl(self, version):
        """A newest spotdl in an index for pip."""
        wheel = f"spotdl-{version}-py3-none-any.whl"
        info = f"spotdl-{version}.dist-info"
        self.put_zip(wheel, {
            "spotdl_stand_in.py": f"def main():\n    print('{version}')\n".encode(),
            f"{info}/METADATA": f"Metadata-Version: 2.1\nName: spotdl\nVersion: {version}\n".encode(),
            f"{info}/WHEEL": b"Wheel-Version: 1.0\nRoot-Is-Purelib: true\nTag: py3-none-any\n",
            f"{info}/entry_points.txt": b"[console_scripts]\nspotdl = spotdl_stand_in:main\n",
            f"{info}/RECORD": b"",
        })
        page = "".join(
            f'<a href="/{each.name}">{each.name}</a>\n' for each in self.folder.glob("spotdl-*.whl"))
        self.answers["simple/spotdl"] = says(f"<!DOCTYPE html><html><body>{page}</body></html>")

    def digest(self, name):
        return hashlib.sha256((self.folder / name).read_bytes()).hexdigest()

    def close(self):
        self.server.shutdown()
        self.server.server_close()
        shutil.rmtree(self.folder)


def says(page):
    def answer(request, _):
        request.send_response(200)
        request.send_header("Content-Type", "text/html")
        request.end_headers()
        request.wfile.write(page.encode())

    return answer


# Answers that are none.


def breaks_off(request, file):
    content = file.read_bytes()
    request.send_response(200)
    request.send_header("Content-Length", str(len(content)))
    request.end_headers()
    request.wfile.write(content[: len(content) // 2])
    request.close_connection = True


def stalls(request, _):
    """Until the other side has had enough."""
    request.rfile.read()


def leads_to(address):
    def redirect(request, _):
        request.send_response(302)
        request.send_header("Location", address)
        request.end_headers()

    return redirect
