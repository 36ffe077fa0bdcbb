#!/usr/bin/env python3
"""Measures the program beside the bare tools and toolkit, and prints tables.

report.py BIN JSON [--pairs N]: BIN is the folder of the built benchmarks; what was
measured goes into the file JSON. What is compared takes turns in one run.
"""

import argparse
import json
import os
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import loopback_site
import songs

SONGS = [
    songs.Song(f"song-{i}", f"Song Number {i}", 200 + 10 * i, tone=20.0) for i in range(1, 25)
]
BYTES_PER_SECOND = 65536  # of each connection
NOISE_BYTES = 200_000_000


class Report:
    """Collects samples, and what is said of them."""

    def __init__(self):
        self.measured = {}
        self.lines = []

    def say(self, text):
        print(text, file=sys.stderr, flush=True)

    def table(self, heading, columns, rows):
        cells = [columns, ["---"] * len(columns), *rows]
        self.lines += [f"## {heading}", "", *(f"| {' | '.join(row)} |" for row in cells), ""]


def spread(values, form="{:.2f}"):
    """The median, and the least and the most."""
    median, least, most = statistics.median(values), min(values), max(values)
    return f"{form.format(median)} ({form.format(least)} to {form.format(most)})"


def verdict(value, goal):
    return "met" if value <= goal else "**missed**"


def compared(what, program, bare, unit, goal=None, form="{:.2f}"):
    """One row: both sides, and the ratio of each pair."""
    ratios = [ours / theirs for ours, theirs in zip(program, bare)]
    median = statistics.median(ratios)
    sides = [f"{form.format(statistics.median(side))} {unit}" for side in (program, bare)]
    goal_cells = [f"≤ {goal}", verdict(median, goal)] if goal else ["", ""]
    return [what, *sides, spread(ratios), *goal_cells]


COMPARISON = ["what", "program", "bare", "ratio: median (least to most)", "goal", ""]


def output_of(command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


def taking_turns(pairs, measure):
    """`measure(kind)` for "program" and "bare", each first as often as the other."""
    samples = {"program": [], "bare": []}
    for pair in range(pairs):
        kinds = ["program", "bare"] if pair % 2 else ["bare", "program"]
        for kind in kinds:
            samples[kind].append(measure(kind))
    return samples


def check_downloads(folder):
    """Both sides must have done the whole work."""
    for song in SONGS:
        seconds = songs.seconds(folder / f"{song.title} [{song.name}].mp3")
        if abs(seconds - song.tone) > 0.25:
            raise SystemExit(f"{song.title} lasts {seconds} s, not {song.tone} s")


def bench_site(report, bin_folder, scratch, pairs):
    """Downloads and reads the songs of a site of this machine."""
    media = scratch / "media"
    media.mkdir()
    report.say(f"Making {len(SONGS)} songs ...")
    songs.make(SONGS, media)
    rows = []
    with loopback_site.LoopbackSite(media, SONGS) as site:
        site.rate = BYTES_PER_SECOND
        queue = scratch / "songs.json"
        entries = [{"url": site.link(s.name), "title": s.title, "id": s.name} for s in SONGS]
        queue.write_text(json.dumps(entries))
        home = scratch / "home"
        home.mkdir()
        environment = os.environ | {"HOME": str(home), "XDG_DATA_HOME": str(home / "data")}

        def measure(work, kind):
            with tempfile.TemporaryDirectory(dir=scratch) as folder:
                command = [bin_folder / "run_bench", work, kind, folder, queue]
                sample = json.loads(output_of(command, env=environment))
                if work == "download":
                    check_downloads(Path(folder, "Bench"))
            report.say(f"  {work}, {kind}: {sample['seconds']:.1f} s, CPU {sample['cpu']:.1f} s")
            return sample

        count = len(SONGS)
        for work, what, goals in (
            ("download", f"{count} songs downloaded and trimmed", {"seconds": 1.03, "cpu": 1.05}),
            ("read", f"{count} links read", {"seconds": 1.03, "cpu": None}),
        ):
            report.say(f"{what}, {pairs} pairs ...")
            samples = taking_turns(pairs, lambda kind: measure(work, kind))
            report.measured[work] = samples
            for quantity, label in (("seconds", "time"), ("cpu", "CPU")):
                sides = [[s[quantity] for s in samples[kind]] for kind in ("program", "bare")]
                rows.append(compared(f"{what}: {label}", *sides, "s", goals[quantity]))
    report.table(f"Runs, {pairs} pairs", COMPARISON, rows)


def bench_noise(report, bin_folder, scratch, pairs):
    """A downloader that prints 200 MB in short lines."""
    report.say(f"A child that prints {NOISE_BYTES // 10**6} MB ...")
    noise = scratch / "noise"
    with open(noise, "w", encoding="ascii") as file:
        number = 0
        while file.tell() < NOISE_BYTES:
            for number in range(number, number + 10000):
                progress = f"RCR_PROGRESS:{number % 1000 / 10:5.1f}%\n"
                file.write(progress if number % 4 else f"[debug] Fragment {number} is there\n")

    def measure(kind):
        what = "row" if kind == "program" else "bare"
        return json.loads(output_of([bin_folder / "noisy_bench", what, noise]))

    samples = taking_turns(pairs, measure)
    report.measured["noise"] = samples
    rows = samples["program"]
    if not all(row["status"] == "Complete" and row["logBytes"] >= 2 * NOISE_BYTES for row in rows):
        raise SystemExit("The row did not come to its end, or lost output.")
    if not all(bare["characters"] >= NOISE_BYTES for bare in samples["bare"]):
        raise SystemExit("The reader lost output.")
    seconds = [[s["seconds"] for s in samples[kind]] for kind in ("program", "bare")]
    growth = [row["grownBytes"] / row["logBytes"] for row in rows]
    turns, waits = ([1000 * row[name] for row in rows] for name in ("longestTurn", "longestWait"))
    table = [compared("a row, beside `cat` through the same reader", *seconds, "s", 2)]
    # What must never be is judged by the worst.
    for what, values, goal, form in (
        ("memory taken, as a multiple of the log (with 1 % for all else)", growth, 1.01, "{:.3f}"),
        ("longest turn of the main thread, CPU ms", turns, 16, "{:.1f}"),
        ("longest wait of its event loop, ms by the clock", waits, 16, "{:.1f}"),
    ):
        table.append([what, "", "", spread(values, form), f"≤ {goal}", verdict(max(values), goal)])
    report.table(f"A child that prints {NOISE_BYTES // 10**6} MB, {pairs} pairs", COMPARISON, table)


def started(command):
    """Seconds by the clock and of CPU from a start to the end."""
    begin = time.perf_counter()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"{command} failed")
    seconds = time.perf_counter() - begin
    return {"seconds": seconds, "cpu": usage.ru_utime + usage.ru_stime}


def bench_start(report, bin_folder, window, pairs):
    commands = {
        "program": [bin_folder / "reelcrate", "--headless", "--help"],
        "bare": [bin_folder / "bare_start"],
    }
    samples = taking_turns(pairs, lambda kind: started(commands[kind]))
    report.measured["help"] = samples
    rows = []
    for what, side in window["start"].items():
        if isinstance(side, dict):
            label, _, unit = what.partition(", ")
            rows.append(compared(f"window: {label}", side["program"], side["bare"], unit, form="{:.0f}"))
    for quantity, label in (("seconds", "time"), ("cpu", "CPU")):
        sides = [[1000 * s[quantity] for s in samples[kind]] for kind in ("program", "bare")]
        rows.append(compared(f"`--headless --help`: {label}", *sides, "ms", form="{:.1f}"))
    renderer = f"{window['start']['platform']}, {window['start']['renderer']} renderer"
    report.table(f"Start, beside a bare program of the toolkit ({renderer})", COMPARISON, rows)


def microseconds(seconds):
    return f"{1e6 * seconds:.2f} µs"


def flat_row(what, sizes, seconds, goal=1.5):
    """What an item costs in queues of growing length; at most, as a multiple of the shortest."""
    ratio = max(seconds) / seconds[0]
    cells = [f"{microseconds(each)} at {size:,}" for size, each in zip(sizes, seconds)]
    return [what, *cells, f"{ratio:.2f}", f"≤ {goal}", verdict(ratio, goal)]


def bench_engine(report, bin_folder):
    report.say("The engine's steps ...")
    command = [bin_folder / "engine_bench", "--benchmark_repetitions=5", "--benchmark_format=json"]
    runs = json.loads(output_of(command, stderr=subprocess.DEVNULL))["benchmarks"]
    report.measured["engine"] = runs
    steps = {}
    for run in runs:
        if run["run_type"] != "iteration":
            continue
        if run.get("error_occurred"):
            raise SystemExit(f"{run['name']}: {run['error_message']}")
        name, _, size = run["run_name"].partition("/manual_time")[0].rpartition("/")
        if name.startswith("tick/"):
            name, size = "tick", name.rpartition("/")[2]
        steps.setdefault(name, {}).setdefault(int(size), []).append(run)

    def median(step, size, counter):
        return statistics.median(run[counter] for run in steps[step][size])

    labels = {
        "intake/links": "a link is taken in",
        "intake/videos": "a video link is taken in",
        "outputPiece": "a piece of output",
        "tick": "a tick of a bar",
        "resolution": "a song of a playlist, beside as many files",
        "deletion": "a row, where every other is deleted",
        "selection": "a row: all selected, a range, all deleted",
    }
    rows = []
    for step, label in labels.items():
        sizes = sorted(steps[step])
        rows.append(flat_row(label, sizes, [median(step, s, "per_item") for s in sizes]))
    columns = ["what", "small", "middle", "large", "most / small", "goal", ""]
    report.table("What an item costs in queues of growing length, CPU time", columns, rows)

    rows = []
    for step, goal in (("intake/links", 3), ("intake/videos", 3), ("resolution", None)):
        largest = max(steps[step])
        ratios = [run["times_bare"] for run in steps[step][largest]]
        met = [f"≤ {goal}", verdict(statistics.median(ratios), goal)] if goal else ["", ""]
        rows.append([f"{labels[step]}, of {largest:,}", spread(ratios), *met])
    report.table(
        "Beside one bare pass over the same data (the link pattern's matches; the folder's listing)",
        ["what", "ratio: median (least to most)", "goal", ""],
        rows,
    )


def bench_window(report, bin_folder, scratch):
    report.say("The window ...")
    file = scratch / "window.json"
    output_of([bin_folder / "window_bench", "--json", file])
    window = json.loads(file.read_text())
    report.measured["window"] = window
    return window


def window_table(report, window):
    """What the window makes of it, in ms of the main thread."""
    labels = {
        "tick": "one row's progress",
        "add": "N links are added",
        "read": "a playlist of N songs is read",
        "select": "all are selected",
        "delete": "every other row is deleted",
        "scroll": "a scroll to another place",
    }
    rows = []
    for name, label in labels.items():
        sides = window["queue"]["mainThreadMs"][name]
        cells = [
            f"{statistics.median(sides[size]):.2f} ms" if sides.get(size) else ""
            for size in ("10", "1000", "10000")
        ]
        rows.append([label, *cells])
    report.table(
        "Until the window shows it, CPU of the main thread",
        ["what", "10 rows", "1,000 rows", "10,000 rows"],
        rows,
    )
    rows = [
        [
            each["case"],
            *(f"{100 * cpu / each['seconds']:.1f} %" for cpu in reversed(each["cpu"])),
            str(each["frames"]),
        ]
        for each in window["idle"]
    ]
    report.table(
        "A window of 100 rows that stands there for five seconds",
        ["rows", "of a core", "of it main thread", "frames"],
        rows,
    )


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("bin", type=Path)
    parser.add_argument("json", type=Path)
    parser.add_argument("--pairs", type=int, default=5)
    options = parser.parse_args()
    report = Report()
    with tempfile.TemporaryDirectory(prefix="reelcrate-bench-") as folder:
        scratch = Path(folder)
        bench_site(report, options.bin, scratch, options.pairs)
        bench_noise(report, options.bin, scratch, options.pairs)
        bench_engine(report, options.bin)
        window = bench_window(report, options.bin, scratch)
        bench_start(report, options.bin, window, 4 * options.pairs)
        window_table(report, window)
    options.json.write_text(json.dumps(report.measured, indent=1))
    print("\n".join(report.lines))


main()
