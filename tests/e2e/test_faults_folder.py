#!/usr/bin/env python3
"""Faults of the drive and of the folder."""

import json
import os
import shlex
import subprocess
import sys
import time
import unittest
from pathlib import Path

from faults import CANNOT_WRITE, TRIMMED, UNTRIMMED, FaultTest, needs, slow
from songs import Song
from stage import PATIENCE
from stand_in import EVENING, VICTIM, StandIn

FAMILY = "\U0001f389 \U0001f469\u200d\U0001f469\u200d\U0001f467"
HELD_AFTER = 20_000

# Kilobytes that a full drive has left: for half of the evening's source; for source and picture,
# but no song beside; for some of a trimmed song, which a converter may take for success.
LEFT_TO_DOWNLOAD, LEFT_TO_CONVERT, LEFT_TO_TRIM = 48, 116, 4

# Drives are mounted in a namespace of this test's own, which takes them along when it ends.
OWN_NAMESPACE = "REELCRATE_FAULTS_NAMESPACE"
MAY_MOUNT = OWN_NAMESPACE in os.environ
needs_drives = needs(MAY_MOUNT, "nothing can be mounted here")


def run_in_own_namespace():
    unshare = ["unshare", "--mount", *([] if os.geteuid() == 0 else ["--map-root-user"])]
    trial = [*unshare, "mount", "-t", "tmpfs", "none", "/mnt"]
    if subprocess.run(trial, stderr=subprocess.DEVNULL).returncode == 0:
        os.environ[OWN_NAMESPACE] = "yes"
        os.execvp(unshare[0], [*unshare, sys.executable, "-B", *sys.argv])


def shell(command):
    subprocess.run(["bash", "-ec", command], check=True)


class Drives:
    """For tests that mount drives."""

    def mount(self, folder):
        folder.mkdir(parents=True, exist_ok=True)
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=8m", "none", folder], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", folder], stderr=subprocess.DEVNULL)


class FullDisk(Drives, StandIn):
    """A neighbour fills the drive or, where none can be mounted, no file may grow beyond a size."""

    album = (EVENING, VICTIM)

    def setUp(self):
        super().setUp()
        self.neighbour = self.stage.output / "neighbour"
        if MAY_MOUNT:
            self.mount(self.stage.output)

    def fill(self, left):
        file = self.neighbour
        return f"head -c 16M /dev/zero > {file} 2> /dev/null || truncate -s -{left}K {file}"

    def run_real(self, left):
        (self.stage.tools / "yt-dlp").unlink()
        limit = ()
        if MAY_MOUNT:
            shell(self.fill(left))
        else:
            limit = ("prlimit", f"--fsize={left}000")
        outcome = self.run_event(self.site.link("evening"), wrapper=limit)
        self.neighbour.unlink(missing_ok=True)
        return outcome

    def test_during_the_download(self):
        outcome = self.run_real(LEFT_TO_DOWNLOAD)
        self.assertDetails(outcome, CANNOT_WRITE)
        self.survived(outcome, "disk full during the download", rerun=True)

    # ffmpeg would report success by itself, and the source's deletion make room again.
    @needs_drives
    def test_during_the_conversion(self):
        outcome = self.run_real(LEFT_TO_CONVERT)
        self.assertDetails(outcome, CANNOT_WRITE)
        self.assertIn(".m4a", {path.suffix for path in self.stage.work()}, "it was downloaded")
        self.survived(outcome, "disk full during the conversion", rerun=True)

    def test_during_the_trim(self):
        self.before_trim(self.fill(LEFT_TO_TRIM) if MAY_MOUNT else f"ulimit -f {LEFT_TO_TRIM}")
        outcome = self.run_event(self.link())
        self.assertDetails(outcome, UNTRIMMED)
        self.survived(outcome, "disk full during the trim")


class FolderLost:
    """What happens to the folder, and what makes it good again."""

    folders = {
        "removed": ("rm -r {}", "true"),
        "replaced by a file": ("rm -r {0}; touch {0}", "rm {}"),
    }
    drives = {
        "made read-only": ("mount --bind {0} {0}; mount -o remount,bind,ro {0}", "umount {0}"),
        "on a drive that is pulled out": ("umount -l {}", "true"),
    }

    def start(self, how, link):
        self.folder(how).mkdir(parents=True)
        if "drive" in how:
            self.mount(self.folder(how))
        return self.start_event(link, event=how)

    def command(self, template, how):
        return template.format(shlex.quote(str(self.folder(how))))

    def check_all(self, running, losses, when):
        outcomes = {how: self.stage.finish(process) for how, process in running.items()}
        for how, outcome in outcomes.items():
            with self.subTest(how):
                self.assertDetails(outcome, CANNOT_WRITE)
                self.check(outcome, how)
                left = self.on_disk(how)
                shell(self.command(losses[how][1], how))
                again = self.run_again(outcome, how)
                self.record(f"event folder {how} {when}", outcome, left, again)

    def test_folder(self):
        self.lose(self.folders)

    @needs_drives
    def test_drive(self):
        self.lose(self.drives)


@slow
class FolderLostInDownload(FolderLost, Drives, FaultTest):
    album = (EVENING,)

    def lose(self, losses):
        self.site.hold(HELD_AFTER)
        self.addCleanup(self.site.let_go)
        running = {how: self.start(how, self.site.link("evening")) for how in losses}
        self.assertTrue(self.site.wait_held(len(running), PATIENCE))
        for how, (loss, _) in losses.items():
            shell(self.command(loss, how))
        self.site.let_go()
        self.check_all(running, losses, "during the download")


class FolderLostBeforeTrim(FolderLost, Drives, StandIn):
    def lose(self, losses):
        running = {}
        for how, (loss, _) in losses.items():
            self.before_trim(self.command(loss, how))
            running[how] = self.start(how, self.link())
        self.before_trim("")
        self.check_all(running, losses, "before the trim")


class NoFolder(Drives, StandIn):
    def refuse(self, output, fault, reason):
        self.stage.output = output
        outcome = self.run_event(self.link())
        self.refused(outcome, fault, f"Could not create output folders: {reason}")

    def test_in_its_place_a_file(self):
        self.stage.output.mkdir()
        self.folder().touch()
        self.refuse(self.stage.output, "event folder is a file", "Not a directory")

    def test_output_folder_below_a_file(self):
        file = self.stage.scratch / "file"
        file.touch()
        self.refuse(file / "Music", "output folder below a file", "Not a directory")

    @needs_drives
    def test_read_only_drive(self):
        drive = self.stage.scratch / "drive"
        self.mount(drive)
        (drive / "Old" / "Party").mkdir(parents=True)
        shell(f"mount -o remount,bind,ro {drive}")
        self.refuse(drive / "New", "output folder on a read-only drive", "Read-only file system")
        self.stage.output = drive / "Old"
        outcome = self.run_event(self.link())
        self.assertDetails(outcome, CANNOT_WRITE)
        self.survived(outcome, "event folder on a read-only drive")

    def test_missing_drive(self):
        self.stage.output = self.stage.scratch / "media" / "no-such-drive" / "Music"
        outcome = self.run_event(self.link())
        self.assertDetails(outcome, TRIMMED)
        self.survived(outcome, "output folder on a missing drive")


class EventNames(StandIn):
    """Whatever the event's name, there is one folder for it in the output folder."""

    names = {
        ".": "-",
        "..": "--",
        "...": "...",
        "Prom / 2026": "Prom - 2026",
        "/etc": "-etc",
        "../../escape": "..-..-escape",
        "Line\nbreak": "Line\nbreak",
        FAMILY: FAMILY,
        "   ": time.strftime("%-m-%-d-%y Playlist"),
    }

    @staticmethod
    def quoted(name):
        return json.dumps(name, ensure_ascii=False)

    def check_names(self, names, link, tool=""):
        around = set(os.listdir(self.stage.scratch))
        running = {name: self.start_event(link, event=name) for name in names}
        outcomes = {name: self.stage.finish(process) for name, process in running.items()}
        for name, outcome in outcomes.items():
            with self.subTest(name):
                self.check(outcome, names[name])
                self.assertDetails(outcome, TRIMMED)
                path = Path(outcome.rows[0]["outputPath"])
                self.assertEqual(set(self.folder(names[name]).iterdir()), {path})
                left = f"folder {self.quoted(path.parent.name)}: {self.on_disk(names[name])}"
                self.record(f"event name {self.quoted(name)}{tool}", outcome, left)
        self.assertEqual(set(os.listdir(self.stage.output)), set(names.values()))
        self.assertEqual(set(os.listdir(self.stage.scratch)), around | {"output"})
        self.assertEqual(os.listdir(self.stage.working), [])

    def test_names(self):
        self.check_names(self.names, self.link())

    @slow
    def test_names_with_the_real_tool(self):
        (self.stage.tools / "yt-dlp").unlink()
        names = {name: self.names[name] for name in ("..", "Line\nbreak")}
        self.check_names(names, self.site.link(VICTIM.name), ", real tool")

    def test_long_name(self):
        outcome = self.run_event(self.link(), event="n" * 300)
        self.refused(outcome, "event name of 300 characters", "File name too long")
        self.assertEqual(os.listdir(self.stage.output), [])


if __name__ == "__main__":
    if not MAY_MOUNT:
        run_in_own_namespace()
    unittest.main()
