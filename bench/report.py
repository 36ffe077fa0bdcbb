#!/usr/bin/env python3
"""Measures the program beside the bare tools and toolkit, and prints tables.

report.py BIN JSON [--pairs N] [--quick]: BIN is the folder of the built benchmarks; what was
measured goes into the file JSON. What is compared takes turns in one run. The last line is that of
the paced downloads.
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


def evening(count, tone=20.0, edges=True):
    silent = {} if edges else {"lead": 0.0, "tail": 0.0}
    return [
        songs.Song(f"song-{i}", f"Song Number {i}", 200 + 10 * i, tone=tone, **silent)
        for i in range(1, count + 1)
    ]


BYTES_PER_SECOND = 65536  # of each connection
SONG_SECONDS = 200.0  # where the processor decides: what a song usually lasts
NOISE_BYTES = 200_000_000
QUANTITIES = {"seconds": "time", "cpu": "CPU"}


class Report:
    """Collects samples, and what is said of them."""

    def __init__(self):
        self.measured = {}
        self.lines = []
        self.last = ""

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


def check_downloads(folder, album):
    """Both sides must have done the whole work."""
    for song in album:
        seconds = songs.seconds(folder / f"{song.title} [{song.name}].mp3")
        if abs(seconds - song.tone) > 0.25:
            raise SystemExit(f"{song.title} lasts {seconds} s, not {song.tone} s")


def site_rows(report, options, album, rate, works):
    """Rows of what is done with the songs of a site of this machine, which paces its transfers."""
    rows = []
    with tempfile.TemporaryDirectory(prefix="reelcrate-bench-") as folder:
        scratch = Path(folder)
        home, media, queue = (scratch / name for name in ("home", "media", "songs.json"))
        home.mkdir()
        media.mkdir()
        songs.make(album, media)
        environment = os.environ | {"HOME": str(home), "XDG_DATA_HOME": str(home / "data")}
        with loopback_site.LoopbackSite(media, album) as site:
            site.rate = rate
            entries = [
                {"url": site.link(s.name), "title": s.title, "seconds": s.seconds, "id": s.name}
                for s in album
            ]
            queue.write_text(json.dumps(entries))

            def measure(work, kind):
                with tempfile.TemporaryDirectory(dir=scratch) as output:
                    command = [options.bin / "run_bench", work, kind, output, queue]
                    sample = json.loads(output_of(command, env=environment))
                    if work == "download":
                        check_downloads(Path(output, "Bench"), album)
                report.say(f"  {kind}: {sample['seconds']:.1f} s, CPU {sample['cpu']:.1f} s")
                return sample

            for work, what, goals in works:
                report.say(f"{what}, {options.pairs} pairs ...")
                samples = taking_turns(options.pairs, lambda kind: measure(work, kind))
                report.measured[what] = samples
                for (quantity, label), goal in zip(QUANTITIES.items(), goals):
                    sides = [[s[quantity] for s in samples[kind]] for kind in ("program", "bare")]
                    rows.append(compared(f"{what}: {label}", *sides, "s", goal))
    return rows


def bench_site(report, options):
    count, whole_count = (8, 4) if options.quick else (24, 12)
    paced = [("download", f"{count} songs downloaded and trimmed", (1.03, 1.05))]
    if not options.quick:
        paced.append(("read", f"{count} links read", (1.03, None)))
    at_once = f"{whole_count} whole songs from a site that sends at once"
    trimmed = [("download", f"{at_once}, trimmed", (1.0, 1.0))]
    whole = [("download", f"{at_once}, without silent edges", (0.99, 0.99))]
    rows = site_rows(report, options, evening(count), BYTES_PER_SECOND, paced)
    rows += site_rows(report, options, evening(whole_count, SONG_SECONDS), None, trimmed)
    rows += site_rows(report, options, evening(whole_count, SONG_SECONDS, False), None, whole)
    report.table(f"Runs, {options.pairs} pairs", COMPARISON, rows)
    pairs = report.measured[paced[0][1]]
    time, cpu = (
        statistics.median(
            ours[quantity] / theirs[quantity]
            for ours, theirs in zip(pairs["program"], pairs["bare"])
        )
        for quantity in QUANTITIES
    )
    report.last = f"time {time:.2f} cpu {cpu:.2f} beside xargs"


def bench_noise(report, options, scratch):
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
        return json.loads(output_of([options.bin / "noisy_bench", what, noise]))

    samples = taking_turns(options.pairs, measure)
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
    report.table(f"A child that prints {NOISE_BYTES // 10**6} MB, {options.pairs} pairs", COMPARISON, table)


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


def bench_start(report, options, scratch):
    commands = {
        "program": [options.bin / "reelcrate", "--headless", "--help"],
        "bare": [options.bin / "bare_start"],
    }
    helped = taking_turns(4 * options.pairs, lambda kind: started(commands[kind]))
    # Once without counting: what the first start of all leaves behind is there for the others.
    last = window_measured(options, scratch, "window")
    kinds = {"program": ["window"], "bare": ["bare", last["width"], last["height"]]}
    shown = taking_turns(6, lambda kind: window_measured(options, scratch, *kinds[kind]))
    report.measured["help"], report.measured["window start"] = helped, shown
    rows = []
    for what, unit, value in (
        ("to the first frame", "ms", lambda s: 1000 * (s["firstFrame"] - s["start"])),
        ("CPU to the first frame", "ms", lambda s: 1000 * s["cpu"]),
        ("PSS after 1 s", "MiB", lambda s: s["pss"] / 2**20),
        ("RSS after 1 s", "MiB", lambda s: s["rss"] / 2**20),
    ):
        sides = [list(map(value, shown[kind])) for kind in ("program", "bare")]
        rows.append(compared(f"window: {what}", *sides, unit, form="{:.0f}"))
    for quantity, label in QUANTITIES.items():
        sides = [[1000 * s[quantity] for s in helped[kind]] for kind in ("program", "bare")]
        rows.append(compared(f"`--headless --help`: {label}", *sides, "ms", form="{:.1f}"))
    renderer = f"{last['platform']}, {last['renderer']} renderer"
    report.table(f"Start, beside a bare program of the toolkit ({renderer})", COMPARISON, rows)


def microseconds(seconds):
    return f"{1e6 * seconds:.2f} µs"


def flat_row(what, sizes, seconds, goal=1.5):
    """What an item costs in queues of growing length; at most, as a multiple of the shortest."""
    ratio = max(seconds) / seconds[0]
    cells = [f"{microseconds(each)} at {size:,}" for size, each in zip(sizes, seconds)]
    return [what, *cells, f"{ratio:.2f}", f"≤ {goal}", verdict(ratio, goal)]


def bench_engine(report, options):
    report.say("The engine's steps ...")
    command = [options.bin / "engine_bench", "--benchmark_repetitions=5", "--benchmark_format=json"]
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


# A downloader that tells a percentage, and of a link "tick" five more each second.
STAND_IN = """#!/bin/bash
case " $* " in *" --version "*) echo 2030.01.01; exit ;; esac
exec 3<> <(:)
percent=1
while :; do
    echo "RCR_PROGRESS: $percent.0%"
    while :; do
        read -rt 0.2 -u 3
        case "${!#}" in */tick/*) break ;; esac
    done
    percent=$((percent + 1))
done
"""

SCREEN = {"name": "bench", "x": 0, "y": 0, "width": 1484, "height": 1074}
SCREEN |= {"logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}


def home_with_stand_ins(scratch):
    home = scratch / "window"
    tools = home / "share" / "Reelcrate" / "Tools" / "bin"
    tools.mkdir(parents=True)
    home.chmod(0o700)
    for name in ("yt-dlp", "ffmpeg", "spotdl"):
        (tools / name).write_text(STAND_IN)
        (tools / name).chmod(0o755)
    (home / "screen.json").write_text(json.dumps({"screens": [SCREEN]}))


def window_measured(options, scratch, kind, *arguments):
    """One measurement, on a screen in memory unless there is another; with its "start"."""
    home = scratch / "window"
    environment = os.environ | {"HOME": str(home), "XDG_RUNTIME_DIR": str(home)}
    environment |= {f"XDG_{each}_HOME": str(home / "share") for each in ("DATA", "CONFIG", "CACHE")}
    if not environment.keys() & {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}:
        environment["QT_QPA_PLATFORM"] = f"offscreen:configfile={home}/screen.json"
        environment["QT_QUICK_BACKEND"] = "software"
    command = [options.bin / "window_bench", kind, home, *map(str, arguments)]
    start = time.clock_gettime(time.CLOCK_MONOTONIC)
    return json.loads(output_of(command, env=environment, timeout=180)) | {"start": start}


def bench_queue(report, options, scratch):
    """What the window makes of work on the queue, in ms of the main thread."""
    labels = {
        "tick": "one row's progress",
        "add": "N links are added",
        "read": "a playlist of N songs is read",
        "select": "all are selected",
        "delete": "every other row is deleted",
        "scroll": "a scroll to another place",
    }
    measured = {
        size: [window_measured(options, scratch, "queue", size) for _ in range(2)]
        for size in (10, 1000, 10000)
    }
    report.measured["window queue"] = measured
    rows = []
    for name, label in labels.items():
        row = [label]
        for samples in measured.values():
            costs = [1000 * cost[0] for sample in samples for cost in sample["costs"][name]]
            row.append(f"{statistics.median(costs):.2f} ms" if costs else "")
        rows.append(row)
    report.table(
        "Until the window shows it, CPU of the main thread",
        ["what", "10 rows", "1,000 rows", "10,000 rows"],
        rows,
    )


def bench_idle(report, options, scratch):
    rows = []
    most_memory = 130
    for label, running, still, most_cpu in (
        ("idle", 0, 0, 1),
        ("6 running rows", 6, 0, 15),
        ("6 running rows, reduced motion", 6, 1, 15),
    ):
        sample = window_measured(options, scratch, "idle", running, still)
        report.measured[f"window, {label}"] = sample
        main_thread, whole = (100 * cpu / sample["seconds"] for cpu in sample["cpu"])
        memory = sample["rss"] / 2**20  # with the supervisor's
        is_met = verdict(max(whole / most_cpu, memory / most_memory), 1)
        row = [label, f"{whole:.1f} %", f"{main_thread:.1f} %", str(sample["frames"])]
        rows.append([*row, f"{memory:.0f} MiB", f"≤ {most_cpu:.0f} %, {most_memory} MiB", is_met])
    renderer = "{platform}, {renderer} renderer".format(**report.measured["window start"]["program"][0])
    report.table(
        f"A window of 100 rows that stands there for five seconds ({renderer})",
        ["rows", "of a core", "of it main thread", "frames", "RSS", "goal", ""],
        rows,
    )


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("bin", type=Path)
    parser.add_argument("json", type=Path)
    parser.add_argument("--pairs", type=int)
    parser.add_argument("--window", action="store_true", help="the window alone")
    parser.add_argument("--quick", action="store_true", help="two pairs of half the songs, no more")
    options = parser.parse_args()
    options.pairs = options.pairs or (2 if options.quick else 5)
    report = Report()
    if not options.window:
        bench_site(report, options)
    if not options.quick:
        with tempfile.TemporaryDirectory(prefix="reelcrate-bench-") as folder:
            scratch = Path(folder)
            if not options.window:
                bench_noise(report, options, scratch)
                bench_engine(report, options)
            report.say("The window ...")
            home_with_stand_ins(scratch)
            bench_start(report, options, scratch)
            bench_queue(report, options, scratch)
            bench_idle(report, options, scratch)
    options.json.write_text(json.dumps(report.measured, indent=1))
    print("\n".join([*report.lines, report.last]))


main()
