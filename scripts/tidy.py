#!/usr/bin/env python3
"""Runs clang-tidy on this tree's sources, as many at a time as there are cores.

Usage: tidy.py BUILD_FOLDER

Only what the build compiles is looked at; a test's sample that must not compile
has no object file. A clean file is remembered by a stamp beside its object file. Since the object
is rebuilt whenever the file or a header of it changes, a stamp that is newer
than the object and the settings means that there is nothing new to look at.
"""

import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
SETTINGS = (ROOT / ".clang-tidy", ROOT / "tests" / ".clang-tidy")
FOLDERS = ("src", "tests", "bench", "packaging")


def sources(build):
    """Each own source file that was compiled, with its object file."""
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = Path(entry["file"])
        if any(source.is_relative_to(ROOT / folder) for folder in FOLDERS):
            words = shlex.split(entry["command"])
            item = build / words[words.index("-o") + 1]
            if item.exists():
                yield source, item


def is_known_clean(stamp, item):
    newest = max(each.stat().st_mtime for each in (item, *SETTINGS))
    return stamp.exists() and stamp.stat().st_mtime > newest


def tidy(build, source, item):
    stamp = Path(f"{item}.tidy")
    if is_known_clean(stamp, item):
        return True
    command = ["clang-tidy", "-p", str(build), "--quiet", "--warnings-as-errors=*", str(source)]
    run = subprocess.run(command, capture_output=True, text=True)
    if run.returncode == 0:
        stamp.touch()
        return True
    # The count of what the headers of others hold is no finding.
    remarks = re.sub(r"^\d+ warnings?.* generated\.\n", "", run.stderr, flags=re.MULTILINE)
    print(run.stdout, remarks, sep="", end="", flush=True)
    return False


def main():
    build = Path(sys.argv[1]).resolve()
    with ThreadPoolExecutor(max_workers=len(os.sched_getaffinity(0))) as pool:
        clean = list(pool.map(lambda pair: tidy(build, *pair), sources(build)))
    sys.exit(not all(clean))


main()
