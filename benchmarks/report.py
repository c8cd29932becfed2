#!/usr/bin/env python3
"""report.py goals|growth TIMES MEMORY: tables from the JSON of converters_benchmark and peak_memory.

Times are CPU times of the one thread, the least of all rounds: what else the machine does only ever
adds to them. The exit status of "goals" says whether every goal is met.
"""

import json
import re
import sys

MIB = 1 << 20


class Times:
    """Least milliseconds of each benchmark, with the spread of its rounds."""

    def __init__(self, path):
        with open(path, encoding="utf-8") as file:
            document = json.load(file)
        self.context = document["context"]
        self._rounds = {}
        for run in document["benchmarks"]:
            if run.get("error_occurred"):
                sys.exit(f"{run['name']}: {run['error_message']}")
            if run["run_type"] == "iteration":
                # Without how often, which some names end in.
                name = re.sub(r"/(iterations|repeats):\d+", "", run["run_name"])
                self._rounds.setdefault(name, []).append(run["cpu_time"])

    def least(self, name, size=None):
        return min(self._rounds[name if size is None else f"{name}/{size}"])

    def has(self, name, size):
        return f"{name}/{size}" in self._rounds

    def sizes(self, name):
        return sorted(int(key.rpartition("/")[2]) for key in self._rounds
                      if key.rpartition("/")[0] == name)

    def single(self, prefix, suffix=""):
        """Names of benchmarks without sizes: those of ours, or of the peer that the suffix names."""
        return [key for key in self._rounds if key.startswith(prefix)
                and (key.endswith(suffix) if suffix
                     else not key.endswith(("-VTK", "-Open3D", "-memory", "-loop")))]

    def names(self):
        return list(dict.fromkeys(key.rpartition("/")[0] for key in self._rounds if "/" in key))


def print_table(title, heads, rows):
    """A table in Markdown with aligned columns."""
    rows = [[str(cell) for cell in row] for row in rows]
    widths = [max(len(row[i]) for row in [heads, *rows]) for i in range(len(heads))]
    print(f"\n{title}\n")
    for row in [heads, ["-" * width for width in widths], *rows]:
        print("| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |")


def milliseconds(value):
    return f"{value:,.1f} ms" if value >= 10 else f"{value:.2f} ms"


class Goals:
    """Rows of the table of goals."""

    def __init__(self):
        self.rows = []
        self.met = True

    def _add(self, what, ours, peer, peer_time, ratio, goal, met):
        self.met = self.met and met
        self.rows.append([what, milliseconds(ours), peer, milliseconds(peer_time), f"{ratio:,.2f}",
                          goal, "yes" if met else "NO"])

    def faster(self, what, ours, peer, peer_time, least):
        ratio = peer_time / ours
        self._add(what, ours, peer, peer_time, ratio, f"at least {least}", ratio >= least)

    def within(self, what, ours, peer, peer_time, most):
        ratio = ours / peer_time
        self._add(what, ours, peer, peer_time, ratio, f"at most {most}", ratio <= most)

    def other(self, what, ours, peer, peer_time):
        self.rows.append([what, milliseconds(ours), peer, milliseconds(peer_time),
                          f"{peer_time / ours:,.2f}", "", ""])

    def alone(self, what, ours):
        self.rows.append([what, milliseconds(ours), "", "", "", "", ""])


def goals_of_time(times):
    goals = Goals()
    size = times.sizes("pack")[-1]
    drawing = times.sizes("toDxf")[-1]

    def ply(name, least, pack_most=None, vtk=False):
        ours = times.least(name, size)
        if pack_most is not None:
            goals.within(name, ours, "pack", times.least("pack", size), pack_most)
        goals.faster(name, ours, "PCL", times.least(f"{name}-PCL", size), least)
        if vtk:
            goals.other(name, ours, "VTK", times.least(f"{name}-VTK", size))

    ply("toPlyBinary", 25, 1.5)
    ply("fromPlyBinary", 12, 2.5, vtk=True)
    ply("toPlyAscii", 25)
    ply("fromPlyAscii", 25, vtk=True)
    written = f"toDxf, {drawing:,} points"
    goals.faster(written, times.least("toDxf", drawing), "dxflib",
                 times.least("toDxf-dxflib", drawing), 10)
    goals.within(written, times.least("toDxf", drawing), "file alone",
                 times.least("toDxf-file", drawing), 1.5)
    read = f"fromDxf, {drawing:,} POINTs"
    goals.faster(read, times.least("fromDxf", drawing), "dxflib",
                 times.least("fromDxf-dxflib", drawing), 16)
    goals.within(read, times.least("fromDxf", drawing), "one pass",
                 times.least("fromDxf-pass", drawing), 1.4)
    goals.faster("fromDxf, 100,000 LINEs", times.least("fromDxfLines", 100000), "dxflib",
                 times.least("fromDxfLines-dxflib", 100000), 8)
    goals.faster("ordinary drawing, parse", times.least("readOrdinary"), "dxflib",
                 times.least("readOrdinary-dxflib"), 12)
    goals.alone("freeing 100,000 LINEs", times.least("freeLines", 100000))

    # The scan's time grows at least with the square of the runs.
    scanned = times.sizes("stitching-scan")[-1]
    goals.faster("stitching 100,000 runs", times.least("stitching", 100000),
                 "scan" if scanned == 100000 else f"scan, from {scanned:,} runs",
                 times.least("stitching-scan", scanned) * (100000 / scanned) ** 2, 500)
    goals.within("stitching 1,000,000 runs", times.least("stitching", 1000000),
                 "100 × 10,000 runs", 100 * times.least("stitching", 10000), 2)
    goals.within("sampling", times.least("sampling", size), "loop",
                 times.least("sampling-loop", size), 1.3)
    goals.within("from_file", times.least("from_file"), "buffer",
                 times.least("from_file-buffer"), 1.2)
    add_goals_of_scans(goals, times)
    return goals


def add_goals_of_scans(goals, times):
    for name in times.single("readScan-"):
        ours = times.least(name)
        peers = {peer: times.least(f"{name}-{peer}") for peer in ("VTK", "Open3D")}
        best = min(peers, key=peers.get)
        goals.faster(name, ours, best, peers[best], 5)
    for name in times.single("readScan-", "-loop"):
        kind = name.removesuffix("-loop")
        goals.within(f"{kind} in memory", times.least(f"{kind}-memory"), "loop",
                     times.least(name), 3)


def goals_of_memory(measured):
    rows = []
    met = True
    for entry in measured:
        if "conversion" not in entry:
            continue
        # Of the sum that a conversion may take, the input was there before.
        limit = entry["output"] + entry["model"] + 64 * MIB
        limit += (entry["input"] + entry["output"]) // 10
        met = met and entry["added"] <= limit
        rows.append([re.sub(r"\d{4,}", lambda number: f"{int(number[0]):,}", entry["conversion"])]
                    + [f"{entry[key] / MIB:,.1f}" for key in ("input", "output", "model", "added")]
                    + [f"{limit / MIB:,.1f}", "yes" if entry["added"] <= limit else "NO"])
    return rows, met


def within_most(entry):
    return not entry["most"] or entry["bytes"] <= entry["most"]


def report_goals(times, memory):
    goals = goals_of_time(times)
    size = times.sizes("pack")[-1]
    print_table(f"Time, {size:,} points. Ratio: how many times faster than the peer, or how many "
                "times the peer's time.",
                ["what", "time", "peer", "peer's time", "ratio", "goal", "met"], goals.rows)
    rows, memory_met = goals_of_memory(memory)
    print_table(f"Memory in MiB, {memory[-1]['size']:,} points or entities. Added: most beside the "
                "input. Limit: output, model, 64 MiB and a tenth of input and output.",
                ["what", "input", "output", "model", "added", "limit", "met"], rows)
    held = [entry for entry in memory if "held" in entry]
    held_met = all(within_most(entry) for entry in held)
    print_table("What the drawing model holds", ["entity", "bytes", "goal", "met"],
                [[entry["held"], entry["bytes"]]
                 + ([f"at most {entry['most']}", "yes" if within_most(entry) else "NO"]
                    if entry["most"] else ["", ""]) for entry in held])
    return goals.met and memory_met and held_met


def report_growth(times, memory):
    sizes = sorted({size for name in times.names() for size in times.sizes(name)})
    rows = []
    for name in times.names():
        rows.append([name] + [f"{times.least(name, size) * 1e6 / size:,.1f}"
                              if times.has(name, size) else "" for size in sizes])
    print_table("Nanoseconds for each point, or run",
                ["what", *(f"{size:,}" for size in sizes)], rows)
    rows, met = goals_of_memory(memory)
    print_table(f"Memory in MiB, {memory[-1]['size']:,} points or entities",
                ["what", "input", "output", "model", "added", "limit", "met"], rows)
    return met


def main():
    report, times_path, memory_path = sys.argv[1:]
    times = Times(times_path)
    with open(memory_path, encoding="utf-8") as file:
        memory = json.load(file)
    load = times.context.get("load_avg", ["?"])[0]
    print(f"{times.context['date']}, {times.context['num_cpus']} processors of "
          f"{times.context['mhz_per_cpu']} MHz, load at the start {load}")
    return 0 if {"goals": report_goals, "growth": report_growth}[report](times, memory) else 1


if __name__ == "__main__":
    sys.exit(main())
