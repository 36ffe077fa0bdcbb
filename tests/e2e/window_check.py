#!/usr/bin/env python3
"""Takes pictures of the running program, step by step: window_check.py FOLDER.

Each step prints what its picture should show."""

import os
import subprocess
import sys
import time
from pathlib import Path

import desktop
from stage import PROGRAM, Stage, eventually

# Places of the window at its preferred size on this screen, in pixels of it.
SCREEN = (1480, 1070)
ROW = (700, 200)
ROW_STEP = 92


def link(kind, name):
    return f"http://site/{kind}/{name}"


class Check:
    def __init__(self, folder):
        self.folder = Path(folder)
        self.stage = Stage()
        desktop.install_stand_ins(self.stage)
        self.desktop = desktop.Desktop(self.stage.scratch, SCREEN)
        self.step = 0

    def start(self, *arguments, seconds=8):
        self.program = subprocess.Popen(
            [PROGRAM, "--event", "Party", "--output", str(self.stage.output), *arguments],
            env=self.stage.environment | self.desktop.environment | {"HOME": str(self.stage.home)},
            cwd=self.stage.working,
            stderr=subprocess.DEVNULL,
        )
        eventually(lambda: self.desktop.xdotool("search", "--onlyvisible", "--name", "Reelcrate"), 30)
        time.sleep(seconds)

    def picture(self, shows):
        self.step += 1
        file = self.folder / f"check-{self.step}.png"
        time.sleep(0.5)
        self.desktop.picture(file)
        print(f"{file.name}: {shows}")

    def row(self, index, **more):
        self.desktop.click(ROW[0], ROW[1] + index * ROW_STEP, **more)

    def close(self):
        self.program.kill()
        self.program.wait()
        self.desktop.close()
        self.stage.close()

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


def keyboard_and_menu(check):
    check.start(link("song", "song1"), link("broken", "song2"), link("song", "x" * 400))
    check.row(0)
    # To another window and back.
    check.desktop.xdotool("search", "--name", "Reelcrate", "windowminimize")
    time.sleep(1)
    window = check.desktop.xdotool("search", "--name", "Reelcrate").splitlines()[-1]
    check.desktop.xdotool("windowactivate", "--sync", window)
    check.picture("the first row is selected; no golden ring around the queue")
    check.desktop.keys("Down")
    check.picture("the second row is selected; a golden ring around the queue")
    check.desktop.keys("Return")
    time.sleep(6)
    check.picture("the second row needs attention")
    check.desktop.keys("shift+F10")
    check.picture("its menu, with the first entry highlighted and entries that begin at the left")
    check.desktop.keys("Escape")
    check.desktop.xdotool("mousemove", 1150, 300)
    time.sleep(1.5)
    check.picture("the whole error in a tooltip")
    check.desktop.keys("ctrl+a", "Delete")
    check.picture("an empty queue")
    check.desktop.click(330, 435)
    time.sleep(1)
    check.desktop.keys("Down")
    check.picture("the folder dialog in the window's own colours; what is highlighted is named above")


def running(check):
    names = [f"song{i}" for i in range(1, 8)]
    check.start("--download", *[link("hold", name) for name in names], seconds=20)
    load, memory = check.load()
    check.picture(f"six rows run, one waits ({load:.1f} % of a core, {memory:.0f} MB)")
    check.desktop.keys("alt+F4")
    check.picture("the question before quitting; its golden button has a ring")


def main():
    lacking = desktop.missing()
    if lacking:
        sys.exit(f"missing: {', '.join(lacking)}")
    for steps in (keyboard_and_menu, running):
        check = Check(sys.argv[1])
        check.step = 0 if steps is keyboard_and_menu else 20
        try:
            steps(check)
        finally:
            check.close()


main()
