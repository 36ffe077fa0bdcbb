#!/usr/bin/env python3
"""Setup installs missing tools from a web server, replaces old ones, and never leaves half a tool."""

import os
import shutil
import signal
import subprocess
import unittest

from mirror import DENO, NEWEST, YT_DLP, Mirror, breaks_off, leads_to, stalls, tool
from stage import EndToEnd

ALL = {"yt-dlp", "ffmpeg", "ffprobe", "deno"}
CORE = ALL - {"deno"}


class SetupTest(EndToEnd):
    def setUp(self):
        super().setUp()
        self.use(Mirror())
        # The system has a Spotify helper: making an environment for one takes its time.
        spotdl = self.stage.home / ".local" / "bin" / "spotdl"
        spotdl.parent.mkdir(parents=True)
        spotdl.write_bytes(tool("spotdl"))
        spotdl.chmod(0o755)

    def use(self, mirror):
        self.mirror = mirror
        self.addCleanup(mirror.close)
        self.stage.environment["REELCRATE_TOOL_MIRROR"] = mirror.address

    def set_up(self, status=0):
        outcome = self.stage.run("--setup")
        self.assertStatus(outcome, status)
        return outcome.out

    @property
    def environments(self):
        """Setup's environments of spotdl."""
        return {path.name for path in self.stage.tools.parent.glob("spotdl-venv*")}

    @property
    def builds(self):
        """Setup's copies of yt-dlp; nothing else but them stands beside the tools."""
        names = {path.name for path in self.stage.tools.parent.iterdir()} - {"bin", ".lock"} - self.environments
        self.assertEqual({name for name in names if not name.startswith("yt-dlp-")}, set())
        return {name.removeprefix("yt-dlp-") for name in names}

    def installed(self):
        """What stands in the private folder, each of it a working tool."""
        names = {path.name for path in self.stage.tools.iterdir()}
        for name in names:
            self.assertNotEqual(self.version(name), "")
        return names

    def version(self, name="yt-dlp"):
        run = subprocess.run([self.stage.tools / name], capture_output=True, text=True, check=True)
        return run.stdout.split()[-1]

    def remove_tools(self):
        shutil.rmtree(self.stage.tools.parent)
        self.stage.tools.mkdir(parents=True)


class Installing(SetupTest):
    def test_missing_tools_are_installed_once(self):
        log = self.set_up()
        self.assertEqual(self.installed(), ALL)
        self.assertEqual(self.builds, {NEWEST})
        self.assertEqual(os.readlink(self.stage.tools / "yt-dlp"), f"../yt-dlp-{NEWEST}/yt-dlp_linux")
        for line in (
            f"Installing private downloader tools in {self.stage.tools}\n"
            "Downloading yt-dlp...\nDownloaded yt-dlp: 51 kB.\n"
            "Downloading ffmpeg...\nDownloaded ffmpeg: 1 kB.\n",
            f"yt-dlp: {NEWEST}\nffmpeg {NEWEST}\nPrivate downloader tools are ready.\n",
            "OK: Audio/Video Converter - Ready - installed privately\n",
            "OK: YouTube Script Runner - Ready - installed privately\n",
            f"yt-dlp {NEWEST}, installed privately\n",
        ):
            self.assertIn(line, log)
        self.assertNotIn("\r", log)
        self.assertNotIn("%", log)

        self.mirror.requests.clear()
        log = self.set_up()
        self.assertIn("yt-dlp already installed privately.\n", log)
        self.assertIn("ffmpeg already installed privately.\n", log)
        self.assertIn(f"yt-dlp {NEWEST} is the newest.\n", log)
        self.assertEqual(self.mirror.requests, ["latest"])

    def test_what_cannot_be_installed_is_told_and_leaves_nothing(self):
        broken = {
            "Could not find ffmpeg in the downloaded package.":
                (lambda m: m.put_zip("ffmpeg.zip", {"build/README": b"text"}), {"yt-dlp"}),
            "The downloaded ffmpeg does not run on this machine.":
                (lambda m: m.put_zip("ffmpeg.zip", {"ffmpeg": b"#!/bin/false\n"}), {"yt-dlp"}),
            "ffmpeg: it ended with status 3 and said nothing.":
                (lambda m: m.put_zip("ffmpeg.zip", {"ffmpeg": b"#!/bin/sh\nexit 3\n"}), {"yt-dlp"}),
            "Could not unpack the downloaded ffmpeg.":
                (lambda m: m.put("ffmpeg.zip", "no archive"), {"yt-dlp"}),
            "404\nCould not download ffmpeg.":
                (lambda m: (m.folder / "ffmpeg.zip").unlink(), {"yt-dlp"}),
            "curl: (18)":
                (lambda m: m.answers.update({YT_DLP: breaks_off}), set()),
            "The downloaded yt-dlp does not match its published checksum.":
                (lambda m: m.put("SHA2-256SUMS", f"{'0' * 64}  {YT_DLP}\r\n"), set()),
            "Could not find yt-dlp in the downloaded package.":
                (lambda m: (m.put_zip(YT_DLP, {"x": b""}), (m.folder / "SHA2-256SUMS").unlink()), set()),
            "yt-dlp: version `GLIBC_2.99' not found":
                (lambda m: m.release("2099.01.02", b"#!/bin/sh\necho version \\`GLIBC_2.99\\' not found >&2\n"
                                     b"exit 1\n"), set()),
        }
        for text, (spoil, left) in broken.items():
            with self.subTest(text):
                self.mirror.fill()
                self.remove_tools()
                spoil(self.mirror)
                self.assertIn(text, self.set_up(status=0 if self.has_tools(left) else 3))
                self.assertEqual(self.installed(), left)

    def has_tools(self, private):
        """Whether the machine has the rest of what is needed itself."""
        return all(name in private or shutil.which(name) for name in ("yt-dlp", "ffmpeg"))

    def test_optional_tools_may_be_missing(self):
        broken = {
            "ffprobe was not installed.":
                (lambda m: m.put_zip("ffprobe.zip", {"ffprobe": b"#!/bin/false\n"}), ALL - {"ffprobe"}),
            "Deno was not installed.": (lambda m: (m.folder / DENO).unlink(), CORE),
            "The downloaded deno does not match its published checksum.":
                (lambda m: m.put(f"{DENO}.sha256sum", "1" * 64), CORE),
        }
        for text, (spoil, left) in broken.items():
            with self.subTest(text):
                self.mirror.fill()
                self.remove_tools()
                spoil(self.mirror)
                self.assertIn(text, self.set_up())
                self.assertEqual(self.installed(), left)

    def test_a_checksum_that_cannot_be_compared_is_told(self):
        sums = self.mirror.folder / "SHA2-256SUMS"
        unnamed = f"The published checksums do not name {YT_DLP}"
        missing = "The checksum of yt-dlp could not be had"
        cases = (
            # what the log says, and what makes it so
            (missing, lambda: sums.unlink()),
            (missing, lambda: self.mirror.answers.update({"SHA2-256SUMS": stalls})),
            (unnamed, lambda: sums.write_text(f"{'0' * 64}  yt-dlp\n")),
            (unnamed, lambda: sums.write_text("<html>\n")),
            (None, lambda: sums.write_bytes(sums.read_bytes().replace(b"\n", b"\r\n"))),
            (None, lambda: sums.write_text(sums.read_text().upper().replace(YT_DLP.upper(), YT_DLP))),
        )
        for number, (text, spoil) in enumerate(cases):
            with self.subTest(number):
                self.mirror.fill()
                self.remove_tools()
                spoil()
                log = self.set_up()
                self.assertIn(text or "Private downloader tools are ready.", log)
                self.assertEqual("checksum" in log, text is not None, log)
                self.assertEqual(self.installed(), ALL)

    def test_a_folder_in_a_tools_place_stays_and_is_told(self):
        for name, left in (("yt-dlp", set()), ("ffmpeg", {"yt-dlp"}), ("deno", CORE)):
            with self.subTest(name):
                self.remove_tools()
                folder = self.stage.tools / name
                folder.mkdir()
                self.assertIn(f"{folder} is a folder.", self.stage.run("--setup").out)
                self.assertEqual(list(folder.iterdir()), [])
                folder.rmdir()
                self.assertEqual(self.installed(), left)

    def test_nothing_comes_from_a_less_safe_address(self):
        certificate = self.stage.scratch / "certificate"
        subprocess.run(
            ["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
             "-nodes", "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
             "-keyout", certificate, "-out", self.stage.scratch / "public"],
            check=True, capture_output=True)
        with open(certificate, "ab") as file:
            file.write((self.stage.scratch / "public").read_bytes())
        unsafe = self.mirror
        self.use(Mirror(certificate))
        self.stage.environment["CURL_CA_BUNDLE"] = str(certificate)
        self.mirror.answers[YT_DLP] = leads_to(f"{unsafe.address}/{YT_DLP}")
        log = self.stage.run("--setup").out
        self.assertRegex(log, 'Protocol "http" (not supported|disabled)')
        self.assertEqual(unsafe.requests, [])
        self.assertEqual(self.installed(), set())
        self.mirror.answers.clear()
        self.set_up()
        self.assertEqual(self.installed(), ALL)


class FullDrive(SetupTest):
    def test_a_full_drive_is_told(self):
        own = ("unshare", "--mount", *([] if os.geteuid() == 0 else ["--map-root-user"]))
        script = 'mount -t tmpfs -o size=$0 none "$XDG_DATA_HOME" && exec "$@"'
        if subprocess.run([*own, "sh", "-c", script, "1m", "true"], env=self.stage.environment,
                          stderr=subprocess.DEVNULL).returncode:
            self.skipTest("nothing can be mounted here")
        for name, size, text in (
            ("ffmpeg", "2m", "Could not download ffmpeg. The drive with"),
            ("ffmpeg", "5m", "Could not unpack the downloaded ffmpeg. The drive with"),
            ("ffprobe", "5m", "Could not unpack the downloaded ffprobe. The drive with"),
        ):
            with self.subTest(f"{name} {size}"):
                self.mirror.fill()
                self.mirror.put_zip(f"{name}.zip", {name: tool(name) + os.urandom(3_000_000)})
                process = self.stage.start("--setup", wrapper=(*own, "sh", "-c", script, size))
                self.assertIn(text, self.stage.finish(process).out)


class Renewing(SetupTest):
    def setUp(self):
        super().setUp()
        self.mirror.release("2026.08.19")
        self.set_up()

    def test_an_old_one_is_replaced_and_stays_until_the_next_time(self):
        self.mirror.release("2026.10.26")
        self.mirror.requests.clear()
        self.assertIn("yt-dlp: 2026.08.19 -> 2026.10.26\n", self.set_up())
        self.assertEqual(self.mirror.requests, ["latest", YT_DLP, "SHA2-256SUMS"])
        self.assertEqual(self.version(), "2026.10.26")
        self.assertEqual(self.builds, {"2026.08.19", "2026.10.26"})
        self.set_up()
        self.assertEqual(self.builds, {"2026.10.26"})

    def test_only_a_higher_version_is_fetched(self):
        for newest, fetched in (
            ("2026.08.19", False), ("2026.8.19", False), ("2026.08.18", False), ("2025.12.31", False),
            ("2026.08.19.1", True), ("2026.10.01", True),
        ):
            with self.subTest(newest):
                self.mirror.release(newest)
                self.mirror.requests.clear()
                before = self.version()
                log = self.set_up()
                self.assertEqual(YT_DLP in self.mirror.requests, fetched)
                self.assertEqual(self.version(), newest if fetched else before)
                self.assertEqual(f"yt-dlp {before} is the newest.\n" in log, not fetched)

    def test_the_tag_is_where_the_address_leads(self):
        self.mirror.release("2026.10.26")
        self.mirror.answers["latest"] = leads_to("https://127.0.0.1:9/releases/tag/2026.10.26")
        self.assertIn("yt-dlp: 2026.08.19 -> 2026.10.26\n", self.set_up())

    def test_the_old_one_stays_where_no_newer_can_be_had(self):
        stays = "could not be asked for, so 2026.08.19 stays:"
        cases = (
            (stays, lambda: (self.mirror.folder / "latest").unlink()),
            (stays, lambda: self.mirror.answers.update(latest=stalls)),
            (stays, lambda: self.mirror.put("latest", "<html>Log in 2099.01.01\n")),
            (stays, lambda: self.mirror.answers.update(latest=leads_to("http://127.0.0.1:9/login"))),
            ("checksum.\nyt-dlp 2026.08.19 stays.",
             lambda: self.mirror.put("SHA2-256SUMS", f"{'0' * 64}  {YT_DLP}\n")),
            ("Could not download yt-dlp.\nyt-dlp 2026.08.19 stays.",
             lambda: self.mirror.answers.update({YT_DLP: breaks_off})),
            ("does not run on this machine.",
             lambda: self.mirror.release("2026.10.26", b"#!/bin/false\n")),
            ("is 2026.08.01, which is no newer.\nyt-dlp 2026.08.19 stays.",
             lambda: self.mirror.release("2026.10.26", tool("yt-dlp", "2026.08.01"))),
        )
        for number, (text, spoil) in enumerate(cases):
            with self.subTest(number):
                self.mirror.fill()
                self.mirror.release("2026.10.26")
                spoil()
                self.assertIn(text, self.set_up())
                self.assertEqual(self.version(), "2026.08.19")
                self.assertEqual(self.builds, {"2026.08.19"})

    def test_without_a_connection_all_stays_as_it_was(self):
        self.stage.environment["REELCRATE_TOOL_MIRROR"] = "http://127.0.0.1:9"
        before = self.installed()
        log = self.set_up()
        self.assertIn("The newest version of yt-dlp could not be asked for, so 2026.08.19 stays:", log)
        self.assertIn("YouTube, Facebook, and Spotify helpers are ready.", log)
        self.assertEqual(self.installed(), before)
        self.assertEqual(self.builds, {"2026.08.19"})

    def test_a_private_one_of_one_file_is_replaced(self):
        (self.stage.tools / "yt-dlp").unlink()
        old = self.stage.tools / "yt-dlp"
        old.write_bytes(tool("yt-dlp", "2025.01.01"))
        old.chmod(0o755)
        self.mirror.release("2026.10.26")
        self.assertIn("yt-dlp: 2025.01.01 -> 2026.10.26\n", self.set_up())
        self.assertEqual(self.version(), "2026.10.26")

    def test_a_private_one_that_is_broken_is_replaced(self):
        (self.stage.tools.parent / "yt-dlp-2026.08.19" / "yt-dlp_linux").write_text("#!/bin/false\n")
        self.set_up()
        self.assertEqual(self.version(), "2026.08.19")

    def test_what_runs_from_an_old_folder_keeps_it(self):
        old = self.stage.tools.parent / "yt-dlp-2026.01.01"
        old.mkdir()
        shutil.copy(shutil.which("sleep"), old / "yt-dlp_linux")
        running = subprocess.Popen([old / "yt-dlp_linux", "3600"])
        self.addCleanup(running.kill)
        self.set_up()
        self.assertTrue((old / "yt-dlp_linux").exists())
        running.kill()
        running.wait()
        self.set_up()
        self.assertEqual(self.builds, {"2026.08.19"})


class Spotify(SetupTest):
    def setUp(self):
        super().setUp()
        (self.stage.home / ".local" / "bin" / "spotdl").unlink()
        self.stage.environment |= {
            "PIP_INDEX_URL": f"{self.mirror.address}/simple/",
            "PIP_RETRIES": "0",
            "PIP_DISABLE_PIP_VERSION_CHECK": "1",
        }

    def test_the_helper_is_installed_renewed_and_kept(self):
        self.assertIn("Spotify helper was not installed. YouTube and Facebook downloads can still work.\n",
                      self.set_up())
        self.assertEqual((self.installed(), self.environments), (ALL, set()))

        self.mirror.put_spotdl("4.4.2")
        self.assertIn("Optional Spotify helper is ready.\n", self.set_up())
        self.assertEqual((self.version("spotdl"), self.environments), ("4.4.2", {"spotdl-venv"}))
        self.assertIn("spotdl 4.4.2 is the newest.\n", self.set_up())

        self.mirror.put_spotdl("4.10.0")
        self.assertIn("spotdl: 4.4.2 -> 4.10.0\n", self.set_up())
        self.assertEqual(self.version("spotdl"), "4.10.0")
        self.assertEqual(self.environments, {"spotdl-venv", "spotdl-venv-2"})

        self.mirror.put_zip("spotdl-4.11.0-py3-none-any.whl", {"no": b"wheel"})
        self.mirror.put_spotdl("4.10.0")
        self.assertIn("spotdl 4.10.0 stays.\n", self.set_up())
        self.assertEqual((self.version("spotdl"), self.environments), ("4.10.0", {"spotdl-venv-2"}))

        self.mirror.answers.clear()
        self.assertIn("The newest version of spotdl could not be asked for, so 4.10.0 stays:", self.set_up())
        self.assertEqual(self.version("spotdl"), "4.10.0")


class Killed(SetupTest):
    def test_at_any_moment_it_leaves_one_whole_tool(self):
        """The old yt-dlp or the new one, and the folder of the old one for what runs from it."""
        before = ""
        for step in range(20):
            newest = f"2026.{step + 1:02}.01"
            self.mirror.release(newest)
            process = self.stage.start("--setup")
            try:
                process.wait(0.04 * (step // 2 + 1) ** 1.6)
            except subprocess.TimeoutExpired:
                process.send_signal((signal.SIGKILL, signal.SIGTERM)[step % 2])
            self.stage.finish(process)
            self.assertNothingRuns()
            there = self.installed()
            if before:
                old = self.stage.tools.parent / f"yt-dlp-{before}"
                self.assertTrue((old / "_internal" / "lib").is_file())
                self.assertIn(self.version(), (before, newest))
            before = self.version() if "yt-dlp" in there else ""
        self.set_up()
        self.assertEqual(self.version(), newest)
        self.set_up()
        self.assertEqual(self.builds, {newest})


if __name__ == "__main__":
    unittest.main()
