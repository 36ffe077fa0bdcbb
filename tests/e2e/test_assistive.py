#!/usr/bin/env python3
"""The running program, driven by assistive technology alone (AT-SPI), and by
keys alone under a window manager, on a display that nobody sees."""

import os
import signal
import subprocess
import sys
import time
import unittest

import desktop
from faults import ALL
from stage import PROGRAM, Stage, eventually

SYSTEM_PYTHON = "/usr/bin/python3"  # Debian's, whose packages pyatspi is one of


def link(kind, name):
    return f"http://site/{kind}/{name}"


class OnDesktop(unittest.TestCase):
    def setUp(self):
        if not ALL:
            self.skipTest("scripts/faults runs it: it needs a machine with time to spare")
        lacking = desktop.missing()
        if lacking:
            self.skipTest(f"missing: {', '.join(lacking)}")
        self.stage = Stage()
        self.addCleanup(self.stage.close)
        self.desktop = desktop.Desktop(self.stage.scratch)
        self.addCleanup(self.desktop.close)
        self.begin()

    def begin(self):
        desktop.install_stand_ins(self.stage)
        self.start()

    def start(self, *arguments):
        environment = self.stage.environment | self.desktop.environment
        environment |= {
            "HOME": str(self.stage.home),
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        }
        self.program = subprocess.Popen(
            [PROGRAM, "--event", "Party", "--output", str(self.stage.output), *arguments],
            env=environment,
            cwd=self.stage.working,
            stderr=subprocess.PIPE,
            text=True,
        )
        self.addCleanup(self.end)
        self.assertTrue(eventually(lambda: self.window(), 30), "no window")

    def window(self):
        found = self.desktop.xdotool("search", "--onlyvisible", "--name", "Reelcrate")
        return found.splitlines()[-1] if found else None

    def end(self):
        if self.program.poll() is None:
            self.program.send_signal(signal.SIGTERM)
        complaints = self.program.communicate(timeout=20)[1]
        for line in complaints.splitlines():
            if "QueueThumbnail" not in line:
                self.assertNotIn("qrc:", line, "the window complains of itself")

    def songs(self, event="Party"):
        return sorted(path.name for path in (self.stage.output / event).glob("song*.mp3"))


class Assistive(OnDesktop):
    """All that a blind person does, and hears."""

    def setUp(self):
        super().setUp()
        # The library looks for its bus where the environment says.
        names = ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "HOME", "XDG_RUNTIME_DIR")
        os.environ |= {name: self.desktop.environment[name] for name in names}
        import pyatspi

        self.atspi = pyatspi
        self.assertTrue(eventually(lambda: self.application(), 20), "not on the bus")

    def application(self):
        for each in self.atspi.Registry.getDesktop(0):
            if each and each.name == "reelcrate":
                return each
        return None

    def all(self, root=None):
        root = root or self.application()
        yield root
        for child in root:
            if child:
                yield from self.all(child)

    def find(self, role, name):
        def look():
            self.found = next(
                (
                    each
                    for each in self.all()
                    if each.getRoleName() == role
                    and each.name.startswith(name)
                    and self.has(each, "showing")
                ),
                None,
            )
            return self.found

        self.assertTrue(eventually(look, 20), f"no {role} named {name}")
        return self.found

    def has(self, each, state):
        return each.getState().contains(getattr(self.atspi, f"STATE_{state.upper()}"))

    def press(self, role, name):
        self.do(self.find(role, name), "Press")

    def do(self, each, action):
        actions = each.queryAction()
        names = [actions.getName(i) for i in range(actions.nActions)]
        self.assertIn(action, names, each.name)
        actions.doAction(names.index(action))

    def write(self, name, text):
        self.do(self.find("text", name), "SetFocus")
        self.desktop.keys("ctrl+a")
        self.desktop.write(text)

    def rows(self):
        return [each.name.split(",")[0] for each in self.find("list", "Queue")]

    def waitForRows(self, *names):
        self.assertTrue(eventually(lambda: self.rows() == list(names), 30), self.rows())

    def waitForState(self, name, state):
        def there():
            return any(each.name.startswith(f"{name}, {state}") for each in self.find("list", "Queue"))

        self.assertTrue(eventually(there, 40), [each.name for each in self.find("list", "Queue")])

    def test_from_link_to_song(self):
        eventually(lambda: self.has(self.find("push button", "Add Songs"), "enabled"), 20)
        self.assertFalse(self.has(self.find("push button", "Download All"), "enabled"))
        self.write("Paste Link", f"{link('song', 'song1')} {link('broken', 'song2')}")
        self.press("push button", "Add Songs")
        self.waitForState("song1", "Ready to Download")
        self.waitForState("song2", "Ready to Download")
        self.write("Name Folder", "Gala")
        self.assertTrue(self.has(self.find("radio button", "MP3"), "checked"))
        self.press("radio button", "MP4")
        self.assertTrue(eventually(lambda: self.has(self.find("radio button", "MP4"), "checked"), 5))
        self.press("radio button", "MP3")

        self.press("push button", "Download All")
        self.waitForState("song1", "Saved")
        self.waitForState("song2", "Needs Attention")
        self.assertEqual(self.songs("Gala"), ["song1 [song1].mp3"])
        failed = self.find("list", "Queue")[1]
        self.assertTrue(failed.description, "what failed")
        self.do(failed, "Press")  # once more
        self.waitForState("song2", "Needs Attention")

        self.do(self.find("list", "Queue")[0], "SetFocus")
        self.assertTrue(
            eventually(lambda: self.has(self.find("list", "Queue")[0], "focused"), 5)
        )
        self.desktop.keys("Delete")
        self.waitForRows("song2")
        self.press("push button", "Clear queue")
        self.waitForRows()
        many = [f"more{i}" for i in range(30)]
        self.write("Paste Link", " ".join(link("hold", name) for name in many))
        self.press("push button", "Add Songs")
        eventually(lambda: len(self.rows()) == 30, 20)
        self.desktop.keys("End", "Home")
        self.assertEqual(len(self.rows()), 30)
        self.waitForState("more0", "Ready to Download")
        self.assertEqual(self.rows()[0], "more0")

        self.do(self.find("list", "Queue")[0], "Press")
        self.waitForState("more0", "Downloading")
        self.desktop.keys("alt+F4")
        self.find("label", "1 song is unfinished.")
        from gi.repository import GLib

        try:
            self.press("push button", "Quit")
        except GLib.Error:
            pass  # it has ended before it answered
        self.assertTrue(eventually(lambda: self.program.poll() is not None, 15), "it goes on")


class KeysAlone(OnDesktop):
    """Of the controls that are enabled, Tab reaches the third first that takes a link."""

    def test_from_link_to_song(self):
        self.desktop.xdotool("windowactivate", "--sync", self.window())
        time.sleep(4)  # the tools are looked for, and nothing outside tells when that is done
        self.desktop.keys("Tab", "Tab", "Tab")
        self.desktop.write(link("song", "song1"))
        self.desktop.keys("Return")
        time.sleep(2)  # it is read
        self.desktop.keys(*["Tab"] * 10)  # past the controls, to the queue
        self.desktop.keys("Home", "Return")
        self.assertTrue(eventually(lambda: self.songs() == ["song1 [song1].mp3"], 30))
        self.desktop.keys("alt+F4")
        self.assertTrue(eventually(lambda: self.program.poll() is not None, 15), "it goes on")


if __name__ == "__main__":
    try:
        import pyatspi  # noqa: F401
    except ImportError:
        if sys.executable != SYSTEM_PYTHON and os.path.exists(SYSTEM_PYTHON):
            os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON, "-B", *sys.argv])
    unittest.main()
