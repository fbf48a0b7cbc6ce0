#!/usr/bin/env python3
"""Makes the tables of docs/performance.md from the JSON report of orzcore_bench."""

import argparse
import collections
import json
import math
import re
import typing

import facts


class Work(typing.NamedTuple):
    name: str
    peer: str = ""  # the ratio compares with "peer" or "work/peer"; an empty peer is the fastest
    aim: str = ""  # "at most N x", "N x faster", or nothing


FASTER_PARSER = ("parse Jan 5, 1999/", "5 x faster")
PLAIN_DATE = ("parse Jan 5, 1999/ours", "at most 1 x")
SYSTEM_CALLS = ("", "at most 1.15 x")
RULE = ("", "100 x faster")

COMPARISONS = [
    Work("weekday and day number", "", "at most 1.5 x"),
    Work("move forward by days", "", "at most 1.1 x"),
    Work("move back by days", "", "at most 1.1 x"),
    Work("move forward by months", "", "at most 1.5 x"),
    Work("move back by months", "", "at most 1.5 x"),
    Work("move forward by years", "", "at most 1.5 x"),
    Work("move back by years", "", "at most 1.5 x"),
    Work("read the clock"),
    Work("next mon, wed, fri", *RULE),
    Work("next odd mon, wed, fri", *RULE),
    Work("next monthly 15", *RULE),
    Work("next monthly 2nd tue", *RULE),
    Work("next monthly last tue", *RULE),
    Work("next quarterly day 10", *RULE),
    Work("next quarterly 2nd tue", *RULE),
    Work("next yearly 4 jul", *RULE),
    Work("next yearly 4th thu nov", *RULE),
    Work("parse Jan 5, 1999", "", "5 x faster"),
    Work("parse next fri", *FASTER_PARSER),
    Work("parse +3 d", *FASTER_PARSER),
    Work("parse 1:05pm", *PLAIN_DATE),
    Work("parse 12345", *PLAIN_DATE),
    Work("parse 123.456", *PLAIN_DATE),
    Work("parse 1.5 h", *PLAIN_DATE),
    Work("parse 30 d", *PLAIN_DATE),
    Work("parse priority c3", *PLAIN_DATE),
    Work("write Fri-Mar 15", "strftime", "at most 0.7 x"),
    Work("write Mar 15,2024", "strftime", "at most 0.7 x"),
    Work("write Fri-Mar 15,2024", "strftime", "at most 0.7 x"),
    Work("write 1:05pm"),
    Work("lock and unlock a byte", *SYSTEM_CALLS),
    Work("lock and unlock 767 bytes", *SYSTEM_CALLS),
    Work("virtual lock, whole range", *SYSTEM_CALLS),
    Work("virtual lock, shared byte", *SYSTEM_CALLS),
    Work("read 64 B", *SYSTEM_CALLS),
    Work("read 1 KiB", *SYSTEM_CALLS),
    Work("read 64 KiB", *SYSTEM_CALLS),
    Work("read 1 KiB, open to nobody else", *SYSTEM_CALLS),
    Work("write 64 B", *SYSTEM_CALLS),
    Work("write 1 KiB", *SYSTEM_CALLS),
    Work("write 64 KiB", *SYSTEM_CALLS),
    Work("write 1 KiB, open to nobody else", *SYSTEM_CALLS),
    Work("open and close a shared file", "open + fcntl", "at most 1.15 x"),
    Work("create and close a new file", "open + fcntl + linkat"),
    Work("rename a file, and back", "open + fcntl + rename"),
    Work("write and flush 1 KiB", *SYSTEM_CALLS),
    Work("list of 1000, add and remove at the head", "boost", "at most 1 x"),
    Work("list of 1000, add and remove at the tail", "boost", "at most 1 x"),
    Work("list of 1000, add at the tail, remove at the head", "boost", "at most 1 x"),
    Work("list of 1000, walk", "boost"),
]
# Many inputs of one kind. The aim is for the slowest, beside a peer of another work.
SPREADS = [
    Work("next occurrence, every form of a rule"),
    Work("next occurrence, around the calendar's edges"),
    Work("next occurrence, random rules and dates"),
    Work("parse a date, every form"),
]
# One work at several sizes. The aim is for the largest size.
GROWTHS = [
    Work("parse a date in a text of n characters"),
    Work("write a date, n variables in the environment", "strftime", "at most 0.7 x"),
    Work("lock and unlock a byte beside n users", "fcntl and marks"),
    Work("RemoveItem of the first of n nodes"),
    Work("RemoveItem of the last of n nodes"),
    Work("make and destroy an OZFile beside n"),
    Work("destroy the oldest of n OZFile, make a new one"),
    Work("FlushAllFiles, 10 of n files marked"),
]
JUDGED = ["ours by peer", "aim", "met"]

# The median times in nanoseconds by work and who; in growths who is "who/n".
times = collections.defaultdict(dict)
failures = {}
verdicts = []


def read(runs):
    for run in runs:
        name = run["run_name"]
        # Other programs disturb the processor's time less, but waiting does not count in it.
        is_real = name.endswith("/real_time")
        name = re.sub(r"/(real_time|iterations:\d+)$", "", name)
        work, _, who = name.partition("/")
        if run.get("error_occurred"):
            failures[work] = f"{who} failed: {run['error_message']}"
        elif run.get("aggregate_name") == "median":
            times[work][who] = run["real_time" if is_real else "cpu_time"]
    known = {work.name for work in COMPARISONS + SPREADS + GROWTHS}
    if unknown := (times.keys() | failures) - known:
        raise SystemExit(f"tables.py: no table has a row for {', '.join(sorted(unknown))}")


def significant(number):
    return f"{number:.{2 if number < 10 else 1 if number < 100 else 0}f}"


def duration(nanoseconds):
    for unit in ("ns", "us", "ms"):
        if nanoseconds < 999.5:
            return f"{significant(nanoseconds)} {unit}"
        nanoseconds /= 1000
    return f"{significant(nanoseconds)} s"


def judge(work, ours, peers):
    """The cells of JUDGED."""
    other, slash, who = work.peer.rpartition("/")
    peers = times[other] if slash else peers
    found = [time for peer, time in peers.items() if peer == who or not who and peer != "ours"]
    if not found:
        return ["-", work.aim or "-", "-"]
    ratio = ours / min(found)
    is_faster = work.aim.endswith("faster")
    text = f"{significant(1 / ratio)} x faster" if is_faster else f"{ratio:.2f} x"
    if not work.aim:
        return [text, "-", "-"]
    limit = float(re.search(r"[\d.]+", work.aim)[0])
    verdicts.append("met" if ratio <= (1 / limit if is_faster else limit) else "missed")
    return [text, work.aim, verdicts[-1]]


def compare(work, measured):
    if not (ours := measured.pop("ours", None)):
        return
    other, slash, who = work.peer.rpartition("/")
    peers = ", ".join(f"{peer} {duration(time)}" for peer, time in measured.items())
    if slash:
        peers = f"none; {who or 'the fastest'} on *{other}*"
    yield [work.name, duration(ours), peers or "-", *judge(work, ours, measured)]


def spread(work, measured):
    cells = [f"{duration(time)}: {who}" for who, time in measured.items()]
    judged = judge(work, list(measured.values())[-1], {})
    yield [work.name, str(len(cells)), cells[0], cells[len(cells) // 2], cells[-1], *judged]


def law(sized):
    """How the time grows, seen by the last step."""
    noise, linear = 1.5, 1.35  # linear, and a bit more: a larger size no longer fits into a cache
    if len(sized) < 2:
        return "-"
    (size, time), (last_size, last_time) = list(sized.items())[-2:]
    if last_time < max(noise * next(iter(sized.values())), time):
        return "constant"
    power = math.log(last_time / time) / math.log(last_size / size)
    if power > linear:
        return f"n^{power:.1f}"
    return f"linear, {duration((last_time - time) / (last_size - size))} each"


def grow(work, measured):
    steps = collections.defaultdict(dict)
    for size, who in sorted((int(name.split("/")[1]), name.split("/")[0]) for name in measured):
        steps[who][size] = measured[f"{who}/{size}"]
    largest = {who: sized[max(sized)] for who, sized in steps.items()}
    for who, sized in sorted(steps.items(), key=lambda step: (step[0] != "ours", step[0])):
        cell = ", ".join(f"{size}: {duration(time)}" for size, time in sized.items())
        is_ours = who == "ours"
        judged = judge(work, largest[who], largest) if is_ours else ["-"] * len(JUDGED)
        yield [work.name if is_ours else f"{work.name}, {who}", cell, law(sized), *judged]


def rows(works, rows_of, width):
    """The rows of those works that ran. A failed one has what failed in its third cell."""
    for work in works:
        measured = dict(sorted(times[work.name].items(), key=lambda entry: entry[1]))
        if work.name in failures:
            yield [work.name, "-", failures[work.name], *["-"] * (width - 4), "failed"]
        elif measured:
            yield from rows_of(work, measured)


def table(title, headings, lines):
    """A table without the columns that have no value in any row."""
    columns = [column for column in zip(headings, *lines) if set(column[1:]) - {"-"}]
    if not columns:
        return ""
    for i, column in enumerate(columns):
        width = max(map(len, column))
        columns[i] = [cell.ljust(width) for cell in (column[0], "-" * width, *column[1:])]
    lines = [f"| {' | '.join(line)} |" for line in zip(*columns)]
    return "\n".join([f"### {title}", "", *lines, "\n"])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("report")
    parser.add_argument("--library", help="a shared library, for the table of its costs at rest")
    parser.add_argument("--write", metavar="PAGE", help="replaces the tables of this page, too")
    arguments = parser.parse_args()
    with open(arguments.report, encoding="utf-8") as file:
        report = json.load(file)
    read(report["benchmarks"])
    text = table("The machine", ["what", "which"], facts.machine(report["context"]))
    for title, works, rows_of, headings in (
        ("Compared with the alternatives", COMPARISONS, compare, ["work", "ours", "peers"]),
        ("How the cost depends on the input", SPREADS, spread,
         ["work", "inputs", "fastest", "median", "slowest"]),
        ("How the cost grows", GROWTHS, grow, ["work", "time at n", "growth"]),
    ):
        headings += JUDGED
        text += table(title, headings, rows(works, rows_of, len(headings)))
    if arguments.library:
        text += table("What the library costs before it is called", ["what", "how much"],
                      facts.at_rest(arguments.library))
    print(f"{text}{verdicts.count('missed')} of {len(verdicts)} aims missed")
    if arguments.write:
        with open(arguments.write, encoding="utf-8") as page:
            parts = re.split(r"(<!-- (?:end of )?tables -->\n)", page.read())
        if len(parts) != 5:
            raise SystemExit(f"tables.py: {arguments.write} has no place for the tables")
        parts[2] = text
        with open(arguments.write, "w", encoding="utf-8") as page:
            page.write("".join(parts))


if __name__ == "__main__":
    main()
