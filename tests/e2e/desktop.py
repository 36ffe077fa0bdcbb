"""A desktop of its own for the program: a display that nobody sees (Xvfb), a
small window manager, a message bus, and assistive technology's way in."""

import os
import shutil
import struct
import subprocess
import sys
import time
from pathlib import Path

from stage import FAKES, ROOT, eventually

TOOLS = ("Xvfb", "openbox", "xdotool", "dbus-daemon", "setxkbmap")
ACCESSIBILITY = Path("/usr/share/dbus-1/services/org.a11y.Bus.service")


def missing():
    """What a desktop needs and this machine has not."""
    lacking = [tool for tool in TOOLS if not shutil.which(tool)]
    return lacking + ([] if ACCESSIBILITY.exists() else ["at-spi2-core"])


def install_stand_ins(stage):
    """Puts the downloader whose behaviour each link tells into the program's tool folder."""
    stage.install("yt-dlp", FAKES / "e2e_window_yt-dlp")
    for tool in ("ffmpeg", "ffprobe"):
        (stage.tools / tool).symlink_to(shutil.which(tool))
    sound = "sine=frequency=440:duration=1,adelay=500:all=1,apad=pad_dur=0.5"
    subprocess.run(
        ["ffmpeg", "-v", "error", "-nostdin", "-f", "lavfi", "-i", sound, stage.tools / "song.mp3"],
        check=True,
    )


class Desktop:
    """Runs from its making to `close`; whatever it starts ends with it."""

    def __init__(self, folder, size=(1480, 1070), opengl=True):
        self.folder = Path(folder)
        self.processes = []
        self.environment = {
            name: value
            for name, value in os.environ.items()
            if not name.startswith(("XDG_", "WAYLAND_", "QT_", "DBUS_"))
        }
        self.environment |= {"HOME": str(self.folder), "XDG_RUNTIME_DIR": str(self.folder)}
        self._start_display(size, opengl)
        self._start_bus()
        self._start("openbox", "--sm-disable")
        eventually(lambda: "_NET_SUPPORTING_WM_CHECK" in self._root_properties(), 10)

    def close(self):
        for process in reversed(self.processes):
            process.terminate()
        for process in self.processes:
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()

    def _start(self, *command, **more):
        process = subprocess.Popen(
            command,
            env=self.environment,
            stdin=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            **{"stdout": subprocess.DEVNULL, **more},
        )
        self.processes.append(process)
        return process

    def _start_display(self, size, opengl):
        reading, writing = os.pipe()
        extension = [] if opengl else ["-extension", "GLX"]
        screen = "{}x{}x24".format(*size)
        self._start(
            *["Xvfb", "-displayfd", str(writing), "-screen", "0", screen, "-nolisten", "tcp"],
            *["-noreset", "-fbdir", str(self.folder), *extension],
            pass_fds=(writing,),
        )
        os.close(writing)
        with os.fdopen(reading) as answer:
            self.environment["DISPLAY"] = f":{answer.readline().strip()}"

    def _start_bus(self):
        bus = self._start(
            *["dbus-daemon", "--session", "--nofork", "--print-address=1"],
            stdout=subprocess.PIPE,
            text=True,
        )
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def _root_properties(self):
        return subprocess.run(
            ["xprop", "-root"], env=self.environment, capture_output=True, text=True
        ).stdout

    def xdotool(self, *words):
        return subprocess.run(
            ["xdotool", *map(str, words)], env=self.environment, capture_output=True, text=True
        ).stdout.strip()

    def keys(self, *keys):
        for key in keys:
            self.xdotool("key", key)
            time.sleep(0.15)

    def write(self, text):
        self.xdotool("type", "--delay", "5", text)

    def shortcut(self, place):
        """Control with the key at a place of the keyboard, whatever its layout has there."""
        self.xdotool("keydown", "Control_L", "key", place, "keyup", "Control_L")
        time.sleep(0.15)

    def layout(self, name):
        subprocess.run(["setxkbmap", name], env=self.environment, check=True)
        time.sleep(0.3)

    def click(self, x, y, button=1, held=()):
        self.xdotool("mousemove", x, y)
        for key in held:
            self.xdotool("keydown", key)
        self.xdotool("click", button)
        for key in held:
            self.xdotool("keyup", key)
        time.sleep(0.15)

    def column(self, x):
        """The screen's pixels from top to bottom: blue, green, red."""
        screen = (self.folder / "Xvfb_screen0").read_bytes()
        header = struct.unpack(">25I", screen[:100])
        height, line = header[5], header[12]
        first = header[0] + header[19] * 12 + x * 4
        return [screen[at : at + 3] for at in range(first, first + height * line, line)]

    def picture(self, file):
        subprocess.run(
            [sys.executable, ROOT / "packaging" / "look_at_screen.py", self.folder / "Xvfb_screen0", file],
            stderr=subprocess.DEVNULL,
        )
