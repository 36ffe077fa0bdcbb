#!/usr/bin/env python3
"""Takes pictures of the running program, step by step: window_check.py FOLDER [SEQUENCE...].

Each step prints what its picture should show. What can be told without eyes is
asserted."""

import os
import subprocess
import sys
import time
from pathlib import Path

import desktop
from stage import PROGRAM, Stage, eventually

# Places of the window at its preferred size on this screen, in pixels of it.
SCREEN = (1480, 1070)
LARGE, SMALL = (1920, 1200), (1020, 660)
ROW = (700, 205)
ROW_STEP = 90
LINK_FIELD = (140, 311)
NAME_FIELD = (200, 387)
CHOOSE_FOLDER = (338, 433)
STOP_ALL = (1046, 62)
LOG = (144, 1019)
LOG_OF_SMALL = (140, 624)
FAILURE = (810, 207)  # the first row's
LONG_TITLE = "x" * 400

# Places of the keyboard.
KEY_A, KEY_V, KEY_PERIOD = 38, 55, 60

# Of the entries of a row's menu.
STOP, COPY_ERROR, COPY_LINKS = 0, 2, 2


def link(kind, name):
    return f"http://site/{kind}/{name}"


def links(kind, count):
    return [link(kind, f"song{i}") for i in range(1, count + 1)]


class Check:
    def __init__(self, folder, first_picture, screen=SCREEN):
        self.folder = Path(folder)
        self.stage = Stage()
        desktop.install_stand_ins(self.stage)
        self.desktop = desktop.Desktop(self.stage.scratch, screen)
        self.step = first_picture

    def launch(self, *arguments):
        self.program = subprocess.Popen(
            [PROGRAM, "--event", "Party", "--output", str(self.stage.output), *arguments],
            env=self.stage.environment | self.desktop.environment | {"HOME": str(self.stage.home)},
            cwd=self.stage.working,
            stderr=subprocess.DEVNULL,
        )

    def start(self, *arguments, seconds=8):
        self.launch(*arguments)
        eventually(self.window, 30)
        time.sleep(seconds)

    def window(self):
        found = self.desktop.xdotool("search", "--onlyvisible", "--name", "Reelcrate")
        return found.splitlines()[-1] if found else None

    def picture(self, shows):
        self.step += 1
        file = self.folder / f"check-{self.step}.png"
        time.sleep(0.5)
        self.desktop.picture(file)
        print(f"{file.name}: {shows}", flush=True)

    def take(self, steps):
        """Steps are operations of this class or of the desktop, and what the picture then shows."""
        for operations, shows in steps:
            for name, *arguments in operations:
                (getattr(self, name, None) or getattr(self.desktop, name))(*arguments)
            self.picture(shows)

    def close(self):
        self.program.kill()
        self.program.wait()
        self.desktop.close()
        self.stage.close()

    # What steps are made of.

    def wait(self, seconds):
        time.sleep(seconds)

    def row(self, index, button=1, held=()):
        self.desktop.click(ROW[0], ROW[1] + index * ROW_STEP, button, held)

    def choose(self, index, entry):
        """From a row's menu."""
        self.row(index, button=3)
        time.sleep(0.4)
        self.desktop.click(ROW[0] + 60, ROW[1] + index * ROW_STEP + 20 + 30 * entry)

    def leave_and_return(self):
        window = self.window()
        self.desktop.xdotool("windowminimize", window)
        time.sleep(1)
        self.desktop.xdotool("windowactivate", "--sync", window)
        time.sleep(0.5)

    def hover(self, x, y):
        self.desktop.xdotool("mousemove", x, y)
        time.sleep(1.5)

    def shrink(self):
        """As far as the window lets itself be."""
        self.desktop.xdotool("windowsize", self.window(), 600, 400)
        time.sleep(1)
        size = self.desktop.xdotool("getwindowgeometry", self.window()).split()[-1]
        assert size == "1080x620", size

    def load(self, seconds=5):
        """Of a core, in percent, and megabytes."""

        def used():
            fields = Path(f"/proc/{self.program.pid}/stat").read_text().rsplit(")", 1)[1].split()
            return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

        before = used()
        time.sleep(seconds)
        status = Path(f"/proc/{self.program.pid}/status").read_text()
        memory = next(line.split()[1] for line in status.splitlines() if line.startswith("VmRSS"))
        return (used() - before) / seconds * 100, int(memory) / 1024


def first_frames(check):
    """The window of a large screen has nothing white in its dark column, from the start."""
    check.launch()
    for _ in range(100):
        white = [pixel for pixel in check.desktop.column(200) if min(pixel) > 240]
        assert len(white) < 20, f"{len(white)} white pixels"  # the frame has some
        time.sleep(0.03)
    check.picture("the window as high as a large screen")


def ring_and_menu(check):
    check.start(link("song", "song1"), link("broken", "song2"), link("song", LONG_TITLE))
    check.take(
        [
            (
                [("row", 0), ("leave_and_return",)],
                "the first row is selected; no golden ring around the queue",
            ),
            (
                [("row", 0, 3), ("wait", 0.5), ("keys", "Escape")],
                "the same: neither a menu nor a ring",
            ),
            ([("keys", "Down")], "the second row is selected; a golden ring around the queue"),
            ([("keys", "Return"), ("wait", 6)], "the second row needs attention"),
            (
                [("keys", "shift+F10")],
                "its menu, with the first entry highlighted that can be chosen; entries lead",
            ),
            (
                [("keys", "Escape"), ("click", 1400, 1000, 3), ("wait", 0.5)],
                "the queue's menu, whole, at its corner",
            ),
            (
                [("keys", "Escape"), ("shrink",), ("click", 1000, 590, 3), ("wait", 0.5)],
                "the same in a window of 1080 x 620",
            ),
            ([("keys", "Escape"), ("row", 1, 3), ("wait", 0.5)], "the second row's menu, whole"),
        ]
    )


def small_screen(check):
    check.start(link("private", "song1"), *links("song", 3))
    check.take(
        [
            (
                [("row", 0), ("keys", "Return"), ("wait", 6), ("hover", *FAILURE)],
                "an error whose end is cut off, and the whole of it in a tooltip",
            ),
            (
                [("choose", 0, COPY_ERROR), ("click", *NAME_FIELD), ("keys", "ctrl+a", "ctrl+v")],
                "the folder's name is the error: its end is in sight",
            ),
            ([("click", *LOG_OF_SMALL), ("wait", 1)], "a short log, apart from the queue"),
        ]
    )


def links_and_layouts(check):
    check.start(*links("song", 4))
    check.take(
        [
            (
                [("row", 0), ("keys", "ctrl+a"), ("choose", 0, COPY_LINKS), ("keys", "Delete")],
                "an empty queue",
            ),
            ([("keys", "ctrl+v"), ("wait", 8)], "the four songs again"),
            ([("keys", "Down")], "the first row is selected: the keys are still the queue's"),
            (
                [("keys", "Escape"), ("layout", "ru"), ("shortcut", KEY_A)],
                "all rows are selected, on a Russian keyboard",
            ),
            (
                [("keys", "Escape"), ("layout", "gr"), ("shortcut", KEY_A)],
                "the same on a Greek one",
            ),
            ([("click", *LINK_FIELD), ("shortcut", KEY_V)], "the four links in the field"),
            (
                [("layout", "us"), ("row", 0), ("keys", "ctrl+a", "Delete")],
                "an empty queue; its tray has an arrow",
            ),
        ]
    )


def folder_dialog(check):
    (check.stage.home / "Desktop" / "Music").mkdir(parents=True)
    check.start()
    check.take(
        [
            (
                [("click", *CHOOSE_FOLDER), ("wait", 1), ("keys", "Down")],
                "the dialog in the window's own colours; what is highlighted is named above",
            ),
            (
                [("keys", "Tab"), ("write", "New one"), ("keys", "Return"), ("wait", 0.5)],
                "the new folder is named above, and has none in it",
            ),
            (
                [("keys", "Tab", "Tab", "Return"), ("wait", 0.5)],
                "no dialog; the new folder is the output location",
            ),
        ]
    )


def running(check):
    check.start("--download", *links("hold", 8), seconds=20)
    load, memory = check.load()
    check.picture(f"six rows run, two wait ({load:.1f} % of a core, {memory:.0f} MB)")
    check.take(
        [
            ([("wait", 3)], "the same, further on; each card has kept its height"),
            ([("choose", 0, STOP), ("wait", 1)], "the first row is ready, the seventh runs"),
            (
                [("row", 1), ("row", 2, 1, ("shift",)), ("shortcut", KEY_PERIOD), ("wait", 1)],
                "the second and the third are ready, the eighth runs",
            ),
            ([("click", *LOG), ("wait", 1)], "the log, whose lines begin with the row's number"),
            (
                [("shrink",), ("keys", "alt+F4")],
                "a small window with a shorter log; the question before quitting, with its ring",
            ),
        ]
    )


def stopping_all(check):
    check.start("--download", *links("hold", 8), seconds=20)
    check.take([([("click", *STOP_ALL), ("wait", 2)], "all rows are ready; no button to stop")])


SEQUENCES = {
    first_frames: LARGE,
    ring_and_menu: SCREEN,
    small_screen: SMALL,
    links_and_layouts: SCREEN,
    folder_dialog: SCREEN,
    running: SCREEN,
    stopping_all: SCREEN,
}


def main():
    lacking = desktop.missing()
    if lacking:
        sys.exit(f"missing: {', '.join(lacking)}")
    for number, (sequence, screen) in enumerate(SEQUENCES.items()):
        if sys.argv[2:] and sequence.__name__ not in sys.argv[2:]:
            continue
        check = Check(sys.argv[1], 20 * number, screen)
        try:
            sequence(check)
        finally:
            check.close()


main()
