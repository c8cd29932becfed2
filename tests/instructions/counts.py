#!/usr/bin/env python3
"""Counts the instructions of small fixed workloads with callgrind.

counts.py WORKLOADS FILE            fails when one takes 15 % more than FILE says
counts.py WORKLOADS FILE --update   writes the counts to FILE
counts.py WORKLOADS FILE --functions [WORKLOAD...]
                                    shows the functions in which the instructions go

Instructions do not depend on how busy the machine is, so that this catches a loss of speed where
no clock could. They depend on the processor's instruction set and, by a few percent, on compiler
and C library; other causes of a difference are in the code.
"""

import argparse
import os
import platform
import re
import subprocess
import sys
import tempfile

TOLERANCE = 0.15
SKIPPED = 77


def count(workloads, directory):
    """Runs the workloads; returns a dictionary of name to (instructions, callgrind's file)."""
    subprocess.run(
        ["valgrind", "--quiet", "--tool=callgrind", "--instr-atstart=no",
         f"--callgrind-out-file={directory}/counts", workloads],
        check=True, env={**os.environ, "LC_ALL": "C", "LD_BIND_NOW": "1"})
    counts = {}
    # One file for each workload, "counts.1" and so on, and one for what is left.
    for entry in sorted(os.listdir(directory), key=lambda name: (len(name), name)):
        path = os.path.join(directory, entry)
        with open(path, encoding="utf-8", errors="replace") as file:
            text = file.read()
        trigger = re.search(r"^desc: Trigger: Client Request: (\S+)$", text, re.MULTILINE)
        total = re.search(r"^(?:totals|summary): (\d+)", text, re.MULTILINE)
        if trigger and total:
            counts[trigger[1]] = (int(total[1]), path)
    return counts


def read(path):
    """Returns the processor that the figures are for, and the figures."""
    figures = {}
    processor = None
    with open(path, encoding="utf-8") as file:
        for line in file:
            if line.startswith("#"):
                processor = processor or (re.match(r"# processor: (\S+)", line) or [None, None])[1]
            elif line.strip():
                name, figure = line.split()
                figures[name] = int(figure)
    return processor, figures


def update(path, counts):
    with open(path, "w", encoding="utf-8") as file:
        file.write("# Instructions of the workloads; written by counts.py --update.\n"
                   f"# processor: {platform.machine()}\n")
        for name, (figure, _) in counts.items():
            file.write(f"{name} {figure}\n")


def show_functions(counts, names):
    for name in names or counts:
        print(f"\n{name}: {counts[name][0]:,} instructions")
        annotated = subprocess.run(
            ["callgrind_annotate", "--threshold=95", "--show-percs=yes", counts[name][1]],
            check=True, capture_output=True, text=True).stdout
        for line in annotated.splitlines():
            function = re.match(r"\s*([\d,]+) \(\s*([\d.]+)%\)\s+\S*?:(.+?)(?: \[(\S+)\])?$", line)
            if function and float(function[2]) >= 1.0:
                print(f"  {function[2]:>6} %  {function[3]}")


def compare(counts, figures):
    """Prints every workload beside its figure; returns whether all are within the tolerance."""
    good = True
    if set(counts) != set(figures):
        print("the workloads are not those of the file:", *sorted(set(counts) ^ set(figures)))
        good = False
    for name in sorted(set(counts) & set(figures)):
        change = counts[name][0] / figures[name] - 1
        verdict = ""
        if change > TOLERANCE:
            verdict = "  SLOWER"
            good = False
        elif change < -TOLERANCE:
            verdict = "  faster: --update keeps it so"
        print(f"{name:24} {counts[name][0]:12,} {change:+7.1%}{verdict}")
    return good


def main():
    arguments = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    arguments.add_argument("workloads")
    arguments.add_argument("file")
    arguments.add_argument("--update", action="store_true")
    arguments.add_argument("--functions", nargs="*", metavar="WORKLOAD")
    given = arguments.parse_args()

    checking = not given.update and given.functions is None
    if checking:
        processor, figures = read(given.file)
        if processor != platform.machine():
            print(f"the figures are for {processor}, not for {platform.machine()}")
            return SKIPPED
    with tempfile.TemporaryDirectory() as directory:
        counts = count(given.workloads, directory)
        if given.functions is not None:
            show_functions(counts, given.functions)
        elif given.update:
            update(given.file, counts)
        return 0 if not checking or compare(counts, figures) else 1


if __name__ == "__main__":
    sys.exit(main())
