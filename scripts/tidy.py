#!/usr/bin/env python3
"""Runs clang-tidy on this tree's sources, as many at a time as there are cores.

Usage: tidy.py BUILD_FOLDER

Nearly all of the time goes into the headers of others, which every source file reads again. So
sources that are compiled alike are looked at together, as one file. Sources
that use one name for different things of their own stay apart; where a group does not compile
all the same, or has findings, its files are looked at singly, and what is found then counts.

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
from collections import defaultdict
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
SETTINGS = (ROOT / ".clang-tidy", ROOT / "tests" / ".clang-tidy", Path(__file__))
FOLDERS = ("src", "tests", "bench", "packaging")
MOST_TOGETHER = 12

# A line that begins a declaration: "constexpr double limit = 3;", "bool isOpen(", "class Site {".
DECLARATION = re.compile(r"^(?!namespace|using namespace|return|case)[A-Za-z][^;{}()=]*?\b(\w+)"
                         r"(?:\[\w*\])?(?: final)?(?: : [^;{]*)?\s*[({=;]")
OUTSIDE = re.compile(r"::\w+\(")  # "void Site::open(": of a class that a header declares


class Source:
    def __init__(self, path, command, item):
        self.path = path
        self.item = item
        self.stamp = Path(f"{item}.tidy")
        words = shlex.split(command)
        output = words.index("-o")
        # What is left is the same for all that are compiled alike.
        self.flags = tuple(word for at, word in enumerate(words)
                           if at not in (0, output, output + 1) and word not in ("-c", str(path)))
        lines = path.read_text(encoding="utf-8").splitlines()
        self.names = {match[1] for line in lines
                      if not OUTSIDE.search(line) and (match := DECLARATION.match(line))}

    def is_known_clean(self):
        newest = max(each.stat().st_mtime for each in (self.item, *SETTINGS))
        return self.stamp.exists() and self.stamp.stat().st_mtime > newest


def sources(build):
    """Each own source file that was compiled."""
    for entry in json.loads((build / "compile_commands.json").read_text()):
        path = Path(entry["file"])
        if any(path.is_relative_to(ROOT / folder) for folder in FOLDERS):
            words = shlex.split(entry["command"])
            item = build / words[words.index("-o") + 1]
            if item.exists():
                yield Source(path, entry["command"], item)


def groups_of(sources):
    """Groups of what is compiled alike and shares no name."""
    alike = defaultdict(list)
    for source in sources:
        groups = alike[source.flags, source.path.parent]
        for group in groups:
            if len(group) < MOST_TOGETHER and all(source.names.isdisjoint(other.names)
                                                  for other in group):
                group.append(source)
                break
        else:
            groups.append([source])
    # The large ones first, so that all cores end together.
    return sorted((group for groups in alike.values() for group in groups), key=len, reverse=True)


def clang_tidy(build, path, *more):
    command = ["clang-tidy", "--quiet", "--warnings-as-errors=*", str(path), *more]
    return subprocess.run(command, capture_output=True, text=True, cwd=build)


def is_clean_alone(build, source):
    run = clang_tidy(build, source.path, "-p", str(build))
    if run.returncode == 0:
        source.stamp.touch()
        return True
    # The count of what the headers of others hold is no finding.
    remarks = re.sub(r"^\d+ warnings?.* generated\.\n", "", run.stderr, flags=re.MULTILINE)
    print(run.stdout, remarks, sep="", end="", flush=True)
    return False


def is_clean_together(build, group):
    together = Path(f"{group[0].item}.tidy.cpp")
    # Put one behind the other, since of included files less is looked at.
    together.write_text("\n".join(source.path.read_text(encoding="utf-8") for source in group))
    settings = clang_tidy(build, group[0].path, "--dump-config").stdout
    run = clang_tidy(build, together, f"--config={settings}", "--",
                     f"-iquote{group[0].path.parent}", *group[0].flags)
    together.unlink()
    if run.returncode == 0:
        for source in group:
            source.stamp.touch()
    return run.returncode == 0


def is_clean(build, group):
    return len(group) > 1 and is_clean_together(build, group) or all(
        [is_clean_alone(build, source) for source in group])


def main():
    build = Path(sys.argv[1]).resolve()
    groups = groups_of(source for source in sources(build) if not source.is_known_clean())
    with ThreadPoolExecutor(max_workers=len(os.sched_getaffinity(0))) as pool:
        clean = list(pool.map(lambda group: is_clean(build, group), groups))
    sys.exit(not all(clean))


main()
