#!/usr/bin/env python3
"""Prints the table of bench/asked.txt from results of benchmarks.

    bench/table.py asked.txt folder              reads folder/PROGRAM.json, which PROGRAM wrote by --benchmark_out
    bench/table.py --filter PROGRAM asked.txt    prints a --benchmark_filter for the benchmarks that the table needs

Ends with 0, also if a ratio is missed: times vary too much to fail for them.
"""

import json
import os
import pathlib
import re
import sys

# What follows a benchmark's own name and arguments.
SETTINGS = re.compile(r"(/(manual_time|real_time|process_time|(iterations|repeats|min_time|min_warmup_time):[^/]*))+$")
SECONDS = {"s": 1, "ms": 1e-3, "us": 1e-6, "ns": 1e-9}
TERM = re.compile(r"\{([^;{}]+);([^;{}]+)(?:;([^;{}]+))?\}")
ARITHMETIC = re.compile(r"[0-9.eE+*/() -]+")


class NotRun(Exception):
    """A benchmark is missing, with the reason if there is one."""


def read_results(folder):
    """By program and name: the best, median or only run of each benchmark."""
    results = {}
    for path in sorted(pathlib.Path(folder).glob("*.json")):
        try:
            document = json.loads(path.read_text())
        except ValueError:  # of a program that crashed or ran nothing
            continue
        for run in document["benchmarks"]:
            name = SETTINGS.sub("", run.get("run_name", run["name"]))
            rank = {"best": 0, "median": 1}.get(run.get("aggregate_name"), 3 if "aggregate_name" in run else 2)
            results.setdefault((path.stem, name), []).append((rank, run))
    return {key: min(runs, key=lambda ranked: ranked[0])[1] for key, runs in results.items()}


def value(expression, results, processors):
    def of_term(match):
        program, name, counter = match.groups()
        threads = re.search(r"threads:(\d+)", name)
        if threads and int(threads.group(1)) > processors:
            raise NotRun(f"{processors} processors")
        run = results.get((program, name))
        if run is None:
            raise NotRun()
        if run.get("error_occurred"):
            raise NotRun(run.get("error_message", ""))
        if counter is None:
            return repr(run["real_time"] * SECONDS[run["time_unit"]])
        if counter not in run:
            raise NotRun()
        return repr(float(run[counter]))

    numbers = TERM.sub(of_term, expression)
    if not ARITHMETIC.fullmatch(numbers):
        raise SystemExit(f"table.py: expected arithmetic of {{Program;Benchmark;counter}}, got \"{expression}\"")
    try:
        return eval(numbers)  # numbers and operators only
    except ZeroDivisionError:
        raise NotRun() from None


def compared(column, measured, results, processors):
    """The column of a limit or a peer."""
    if column == "-":
        return column
    name, expression = column.split(" = ", 1)
    try:
        return f"{value(expression.replace('measured', measured), results, processors):.3g} x {name}"
    except NotRun:
        return "-"


def row_of(line, results, processors):
    columns = [column.strip() for column in line.split(" | ")]
    if len(columns) != 5 or not re.fullmatch(r"-|[<>]= [0-9.]+", columns[2]):
        raise SystemExit(f"table.py: expected \"job | measured | asked | limit | peer\", got \"{line}\"")
    job, measured, asked, limit, peer = columns
    others = [compared(column, f"({measured})", results, processors) for column in (limit, peer)]
    try:
        number = value(measured, results, processors)
    except NotRun as reason:
        return [job, "not run", asked, str(reason), *others]
    verdict = ""
    if asked != "-":
        bound = float(asked[3:])
        verdict = "met" if (number <= bound if asked[0] == "<" else number >= bound) else "missed"
    return [job, f"{number:.3g}", asked, verdict, *others]


def rows_in(asked):
    lines = pathlib.Path(asked).read_text().splitlines()
    return [line for line in lines if line.strip() and not line.startswith("#")]


def print_filter(program, asked):
    terms = [match.group(1, 2) for line in rows_in(asked) for match in TERM.finditer(line)]
    names = sorted({benchmark for owner, benchmark in terms if owner == program})
    if not names:
        raise SystemExit(f"table.py: expected a program of {asked}, got \"{program}\"")
    print("^(" + "|".join(re.sub(r"([\\^$.*+?()\[\]{}|])", r"\\\1", name) for name in names) + ")(/|$)")


def main(asked, folder):
    results = read_results(folder)
    processors = len(os.sched_getaffinity(0)) if hasattr(os, "sched_getaffinity") else os.cpu_count() or 1
    rows = [["job", "measured", "asked", "", "times the limit", "times as fast as the peer"]]
    rows += [row_of(line, results, processors) for line in rows_in(asked)]
    widths = [max(len(row[i]) for row in rows) for i in range(len(rows[0]))]
    for row in rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())
    counts = {verdict: sum(row[3] == verdict for row in rows) for verdict in ("met", "missed")}
    print(f"{counts['met']} met, {counts['missed']} missed, {sum(row[1] == 'not run' for row in rows)} not run")


if __name__ == "__main__":
    if len(sys.argv) == 4 and sys.argv[1] == "--filter":
        print_filter(*sys.argv[2:])
    elif len(sys.argv) == 3:
        main(*sys.argv[1:])
    else:
        raise SystemExit("usage: table.py asked.txt folder, or table.py --filter program asked.txt")
