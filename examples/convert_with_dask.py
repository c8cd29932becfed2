#!/usr/bin/env python3
"""Converts every drawing or scan below a folder with cloudconv, on the workers of a Dask cluster.

    convert_with_dask.py FOLDER                         on all processors of this machine
    convert_with_dask.py FOLDER --scheduler tcp://host:8786
                                                        on a cluster, whose workers see the folder
                                                        under the same path and have cloudconv
    convert_with_dask.py FOLDER -- --order nearest      options behind -- are cloudconv's

The result lies beside each file. What is there already and not older than its file is not converted
again, so that a batch that was interrupted goes on. A file that fails is tried again; what fails in
the end is listed on standard error and, with the reasons, in the file failed.txt, and the exit
status is 1.
"""

import argparse
import logging
import subprocess
import sys
from pathlib import Path
from typing import Optional, Sequence

from distributed import Client, LocalCluster, as_completed


def convert(command: Sequence[str], source: str, target: str) -> Optional[str]:
    """Runs on a worker. Returns why the file was not converted, or None."""
    done = subprocess.run([*command, source, target], stderr=subprocess.PIPE, errors="replace")
    if done.returncode == 0:
        return None
    return done.stderr.strip() or f"{source}: exit status {done.returncode}"


def is_new(source: Path, target: Path) -> bool:
    """Whether there is a result. cloudconv leaves none that is not whole."""
    return target.exists() and target.stat().st_mtime >= source.stat().st_mtime


def convert_all(
    client: Client, command: Sequence[str], files: Sequence[tuple[Path, Path]]
) -> dict[tuple[Path, Path], str]:
    """Converts pairs of a file and its result. Returns the failed ones with the reasons."""
    futures = {
        # Results may be removed between two runs: nothing is remembered.
        client.submit(convert, command, str(source), str(target), pure=False): (source, target)
        for source, target in files
    }
    failed = {}
    for future in as_completed(futures):
        error = future.exception()  # of the cluster: a worker that was lost, say
        reason = future.result() if error is None else f"{futures[future][0]}: {error!r}"
        if reason is not None:
            failed[futures[future]] = reason
    return failed


def arguments_of(given: Sequence[str]) -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        description="Converts the files below a folder with Dask.",
        epilog="What stands behind -- are options of cloudconv.",
    )
    parser.add_argument("folder", type=Path)
    parser.add_argument("--from", dest="source", default=".dxf", help="extension of the files")
    parser.add_argument("--to", default=".ply", help="extension of the results")
    parser.add_argument("--scheduler", help="address of a cluster; by default this machine alone")
    parser.add_argument("--workers", type=int, help="on this machine; by default its processors")
    parser.add_argument("--tries", type=int, default=2, help="for each file")
    parser.add_argument("--cloudconv", default="cloudconv", help="the command, on each worker")
    end = given.index("--") if "--" in given else len(given)
    options = parser.parse_args(given[:end])
    options.options = given[end + 1 :]
    return options


def run(client: Client, options: argparse.Namespace) -> int:
    command = [options.cloudconv, "--quiet", *options.options]
    files = sorted(options.folder.resolve().rglob(f"*{options.source}"))
    pairs = [(file, file.with_suffix(options.to)) for file in files]
    waiting = [pair for pair in pairs if not is_new(*pair)]
    failed: dict[tuple[Path, Path], str] = {}
    for _ in range(options.tries):
        failed = convert_all(client, command, list(failed) or waiting)
        if not failed:
            break
    reasons = [failed[pair] for pair in sorted(failed)]
    (options.folder / "failed.txt").write_text("".join(f"{reason}\n" for reason in reasons))
    print(*reasons, sep="\n", end="\n" if reasons else "", file=sys.stderr)
    there = len(files) - len(waiting)
    print(f"{len(waiting) - len(failed)} converted, {there} already there, {len(failed)} failed")
    return 1 if failed else 0


def main(given: Optional[Sequence[str]] = None) -> int:
    options = arguments_of(sys.argv[1:] if given is None else given)
    # On a busy machine, a closing client leaves futures of its own behind, and asyncio complains of
    # each. What fails of the conversions is an exception or a result here.
    logging.getLogger("asyncio").setLevel(logging.CRITICAL)
    if options.scheduler:
        with Client(options.scheduler) as client:
            return run(client, options)
    # A conversion runs on one processor.
    with LocalCluster(
        n_workers=options.workers, threads_per_worker=1, dashboard_address="127.0.0.1:0"
    ) as cluster, Client(cluster) as client:
        return run(client, options)


if __name__ == "__main__":
    sys.exit(main())
