#!/usr/bin/env python3
"""Compares the times of the library with those of its peers. Prints the ratios of the medians of one or more runs of
vel_bench together with the goals in goals.tsv, and writes them, without absolute times, to a table for the manual. A
description of the machine is written beside that table, as machine.tsv.

  ratios.py goals.tsv ratios.tsv results.json...

A row of goals.tsv names benchmarks. A "*" at the end of the library's benchmark means every argument that was run; in
the peers' names it means the same argument. Benchmarks that were not run are left out."""
import json
import pathlib
import re
import statistics
import sys

import machine

COLUMNS = ("job", "own", "peer", "goal", "limit", "note")


def median_times(files):
    """Returns the nanoseconds per benchmark name: processor time, or the time that the benchmark itself measured."""
    units = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    runs = {}
    for file in files:
        with open(file, encoding="utf-8") as text:
            for run in json.load(text)["benchmarks"]:
                if run["run_type"] != "iteration":
                    continue
                if run.get("error_occurred"):
                    sys.exit(f"{run['name']}: {run['error_message']}")
                name = run["run_name"]
                time = run["real_time" if "/manual_time" in name else "cpu_time"]
                name = re.sub("/manual_time|/iterations:[0-9]+", "", name)
                runs.setdefault(name, []).append(time * units[run["time_unit"]])
    return {name: statistics.median(times) for name, times in runs.items()}


def read_goals(file):
    with open(file, encoding="utf-8") as lines:
        for line in lines:
            if line.strip() and not line.startswith("#"):
                fields = line.rstrip("\n").split("\t")
                yield dict(zip(COLUMNS, fields + [""] * (len(COLUMNS) - len(fields))))


def expand(row, times):
    if not row["own"].endswith("*"):
        yield row
        return
    start = row["own"][:-1]
    arguments = (name.removeprefix(start) for name in times if name.startswith(start))
    for argument in sorted(arguments, key=int):
        fields = {key: row[key].replace("*", argument) for key in ("own", "peer", "limit")}
        yield {**row, **fields, "job": f"{row['job']} {argument}"}


def describe(row, times):
    own, peer, limit = (times.get(row[key]) for key in ("own", "peer", "limit"))
    if own is None or peer is None:
        return None
    ratio = own / peer
    verdict = "" if not row["goal"] else "met" if ratio <= float(row["goal"]) else "MISSED"
    to_limit = f"{own / limit:.2f}" if limit else ""
    peer_name = row["peer"].split("/")[1]
    return (row["job"], peer_name, f"{own:.4g}", f"{ratio:.3f}", row["goal"], verdict, to_limit, row["note"])


def main():
    goals, table, *files = sys.argv[1:]
    times = median_times(files)
    rows = [line for row in read_goals(goals) for one in expand(row, times) if (line := describe(one, times))]
    layout = "{:<37} {:<16} {:>10} {:>8} {:>6} {:<7} {:>6}  {}"
    print(layout.format("job", "peer", "own ns", "ratio", "goal", "", "/limit", "note"))
    for row in rows:
        print(layout.format(*row).rstrip())
    with open(table, "w", encoding="utf-8") as out:
        print("job", "peer", "ratio", "goal", "limit", "note", sep="\t", file=out)
        for job, peer, _, ratio, goal, _, to_limit, note in rows:
            print(job, peer, ratio, goal, to_limit, note, sep="\t", file=out)
    description = machine.describe((job, peer, ratio) for job, peer, _, ratio, *_ in rows)
    pathlib.Path(table).with_name("machine.tsv").write_text(
        "what\tversion\n" + "".join(f"{what}\t{version}\n" for what, version in description), encoding="utf-8")
    verdicts = [row[5] for row in rows]
    print(f"goals: {verdicts.count('met')} met, {verdicts.count('MISSED')} missed")


main()
