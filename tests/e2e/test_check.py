#!/usr/bin/env python3
"""The look at an event's folder: what it prints, and its exit status."""

import json
import os
import pty
import shutil
import signal
import subprocess
import unittest

import songs
from songs import Song
from stage import PROGRAM, EndToEnd, Outcome

FIRST = Song("first", "First", tone=3)
SECOND = Song("second", "Second", tone=4)
LONG = Song("long", "Long", tone=15)


class Check(EndToEnd):
    album = (FIRST, SECOND, LONG)

    def setUp(self):
        super().setUp()
        self.folder = self.stage.output / "Party"
        self.folder.mkdir(parents=True)
        for song in (FIRST, SECOND):
            songs.convert(self.site.media_file(song.name), self.folder / f"{song.title}.mp3")

    def check(self, *arguments, folder=None):
        done = subprocess.run(
            [PROGRAM, "--check", str(folder or self.folder), *arguments],
            cwd=self.stage.working,
            env=self.stage.environment,
            capture_output=True,
            text=True,
            timeout=100,
        )
        return Outcome(done.returncode, done.stdout, done.stderr)

    def test_whole_event(self):
        before = {path: path.stat().st_mtime_ns for path in self.folder.iterdir()}
        outcome = self.check()
        self.assertStatus(outcome, 0)
        self.assertRegex(outcome.out, r"^OK +0:\d\d  First\.mp3\nOK +0:\d\d  Second\.mp3\n2 songs, ")
        self.assertEqual(outcome.err, "")
        self.assertEqual(
            {path: path.stat().st_mtime_ns for path in self.folder.iterdir()}, before
        )

    def test_each_fault_alone_needs_attention(self):
        first = self.folder / "First.mp3"
        second = self.folder / "Second.mp3"
        faults = {
            "Cut off": lambda: os.truncate(second, second.stat().st_size // 2),
            "Empty file": lambda: os.truncate(second, 0),
            "The same recording": lambda: shutil.copy(first, second),
            "Half a download": lambda: second.rename(self.folder / "Second.mp3.part"),
        }
        whole = second.read_bytes()
        for finding, do in faults.items():
            with self.subTest(finding):
                do()
                outcome = self.check("--json")
                self.assertStatus(outcome, 1)
                found = json.loads(outcome.out)
                self.assertEqual(found["needAttention"], 1)
                (bad,) = [file for file in found["files"] if file["needsAttention"]]
                self.assertTrue(bad["finding"].startswith(finding), bad)
                second.write_bytes(whole)

    def test_what_a_run_leaves_is_well(self):
        links = [self.site.link(song.name) for song in (FIRST, SECOND)]
        missing = self.site.missing_link()
        outcome = self.stage.run("--playlist", links[1], missing, links[0], event="Другой")
        self.assertStatus(outcome, 1)
        folder = self.stage.output / "Другой"
        self.assertIn(f"Saved playlist of 2 songs: {folder}/Другой.m3u8\n", outcome.err)
        lines = (folder / "Другой.m3u8").read_text().splitlines()
        names = ["Second [second].mp3", "First [first].mp3"]
        self.assertEqual([line for line in lines if not line.startswith("#")], names)
        self.assertStatus(self.check(folder=folder), 0)

    def test_loudness_in_tags(self):
        self.assertStatus(self.stage.run("--loudness", self.site.link("long"), event="Loud"), 0)
        folder = self.stage.output / "Loud"
        outcome = self.check("--json", folder=folder)
        self.assertStatus(outcome, 0)
        told = {file["file"]: file["lufs"] for file in json.loads(outcome.out)["files"]}
        self.assertEqual(list(told), ["Long [long].mp3"])
        table = subprocess.run(
            ["loudgain", "-O", "-q", folder / "Long [long].mp3"], capture_output=True, text=True
        ).stdout
        measured = table.splitlines()[1].split("\t")[1]
        self.assertAlmostEqual(told["Long [long].mp3"], float(measured.split()[0]), delta=0.3)
        # Those of the folder that has no tags are told only if they are measured.
        self.assertNotIn("lufs", self.check("--json").out)
        self.assertEqual(self.check("--json", "--loudness").out.count("lufs"), 2)

    def test_what_is_no_event_folder(self):
        for folder, status in ((self.folder / "none", 2), (self.folder / "First.mp3", 2)):
            outcome = self.check(folder=folder)
            self.assertStatus(outcome, status)
            self.assertIn(str(folder), outcome.err)
            self.assertEqual(outcome.out, "")

    def test_progress_on_a_terminal_and_the_end_by_a_signal(self):
        (self.stage.scratch / "slow").write_text("#!/bin/bash\nsleep 1000\n")
        self.stage.install("ffmpeg", self.stage.scratch / "slow")
        master, slave = pty.openpty()
        process = subprocess.Popen(
            [PROGRAM, "--check", str(self.folder)],
            env=self.stage.environment,
            stdout=subprocess.PIPE,
            stderr=slave,
        )
        os.close(slave)
        shown = os.read(master, 100)
        self.assertIn(b"0 of 2 songs", shown)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(30), 130)
        os.close(master)
        process.stdout.close()


if __name__ == "__main__":
    unittest.main()
