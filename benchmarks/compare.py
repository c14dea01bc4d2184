#!/usr/bin/env python3
"""Runs tvbench and prints our times beside memset and the peers, a table for each kind of work.

    benchmarks/compare.py out/bench/bin/tvbench [--filter REGEX] [--repetitions N]
                          [--core C] [--baseline] [--numpy] [--update FILE]

All benchmarks run in one process on one core, but for those of two threads, which run in another
on two cores; in random order within each repetition. The tables give medians in nanoseconds a value. A ratio is the fastest peer's time over ours: above 1 we are
faster. --update puts the tables into FILE between the lines "<!-- table -->" and "<!-- end of table -->".
"""

import argparse
import collections
import datetime
import json
import os
import pathlib
import re
import shlex
import statistics
import subprocess
import sys
import tempfile

OURS = "tvmathrng"
ANY = "any"
BEGIN, END = "<!-- table -->", "<!-- end of table -->"
Name = collections.namedtuple("Name", "work generator who n")


def run(command, cores):
    """Runs a benchmark program on these cores and returns its JSON report."""
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder, "out.json")
        done = subprocess.run(
            [*command, f"--benchmark_out={out}", "--benchmark_out_format=json"],
            capture_output=True,
            text=True,
            preexec_fn=lambda: os.sched_setaffinity(0, cores),
        )
        if done.returncode != 0:
            sys.exit(f"{command[0]} failed:\n{done.stderr}")
        return json.loads(out.read_text())


def times(report):
    """Nanoseconds a value of each repetition, by Name, in the order of the program's list."""
    found = collections.defaultdict(list)
    for entry in sorted(report["benchmarks"], key=lambda entry: entry.get("family_index", 0)):
        if entry.get("run_type") == "iteration":
            assert entry["time_unit"] == "ns", entry
            work, generator, who, n, *clock = entry["run_name"].split("/")
            name = Name(work, generator, who, int(n))
            time = entry["real_time"] if clock == ["real_time"] else entry["cpu_time"]
            found[name].append(time / entry["values"])
    return found


def spread(values):
    """Distance of the quartiles in percent of the median."""
    low, middle, high = statistics.quantiles(values, n=4)
    return 100 * (high - low) / middle


def peers_of(name, medians):
    """The times of the peers that do the same work as `name`; memset does less."""
    return [
        time
        for other, time in medians.items()
        if (other.work, other.n) == (name.work, name.n)
        and other.who != OURS
        and not other.who.startswith("memset")
        and other.generator in (name.generator, ANY)
    ]


def cell(name, medians):
    """The time of `name`; for ours with the ratio to the fastest peer, if there is one."""
    if name not in medians:
        return ""
    text = number(medians[name])
    peers = peers_of(name, medians) if name.who == OURS else []
    return f"{text} ({ratio(min(peers) / medians[name])})" if peers else text


def rows(names, medians):
    """The rows of one kind of work: each generator of ours with its peers below, then the others."""
    sizes = sorted({name.n for name in names})
    # Singles are half as many bytes to write; jumps and single values write nothing.
    kind = "memset single" if "single" in names[0].work else "memset double"
    yardstick = Name(kind, ANY, "memset", sizes[-1])
    ours = list(dict.fromkeys(name.generator for name in names if name.who == OURS))
    order = {generator: place for place, generator in enumerate([*ours, ANY])}
    labels = dict.fromkeys(
        (name.generator, name.who) for name in names if name.generator in order
    )
    head = "".join(f" {n:,} |" for n in sizes)
    yield "| values a call |" + head, "|---|" + "---:|" * len(sizes)
    for generator, who in sorted(labels, key=lambda label: (order[label[0]], label[1] != OURS)):
        times_of = [cell(Name(names[0].work, generator, who, n), medians) for n in sizes]
        label = f"**{generator}**" if who == OURS else who
        yield (f"| {label} | " + " | ".join(times_of) + " |",)
    if yardstick in medians:
        times_of = [cell(yardstick._replace(n=n), medians) for n in sizes]
        yield ("| memset | " + " | ".join(times_of) + " |",)


def table(found):
    """The comparison as lines of Markdown: a table for each kind of work that we do."""
    medians = {name: statistics.median(values) for name, values in found.items()}
    lines = []
    for work in dict.fromkeys(name.work for name in found if name.who == OURS):
        lines += ["", f"### {work[0].upper()}{work[1:]}", ""]
        for row in rows([name for name in found if name.work == work], medians):
            lines += row
    spreads = [spread(values) for values in found.values() if len(values) >= 4]
    lines += ["", f"Distance of the quartiles: {statistics.median(spreads):.0f} % of the median "
              f"in the middle of all rows, {max(spreads):.0f} % at worst." if spreads else
              "Too few repetitions for quartiles."]
    return lines


def number(value):
    """Three significant digits, without an exponent."""
    return f"{value:.3g}" if value < 1000 else f"{value:,.0f}"


def ratio(value):
    return f"{value:.2f}x" if value < 10 else f"{value:.0f}x"


def machine(context, core, load):
    """What was measured on, as lines of text."""
    model = re.search(r"^model name\s*:\s*(.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.M)
    caches = ", ".join(
        f"L{cache['level']}{ {'Data': 'd', 'Instruction': 'i'}.get(cache['type'], '')} "
        f"{cache['size'] // 1024} KiB"
        for cache in context["caches"]
    )
    beside = "idle otherwise" if max(load) < 1.3 else "with other work beside"
    return [
        f"- Date: {datetime.date.today()}",
        f"- Machine: {model[1] if model else os.uname().machine}, {context['num_cpus']} cores, "
        f"{caches}; instruction sets: {instruction_sets()}; our kernels run {context['target']}",
        f"- Compiler: {context['compiler']}, {context['flags'].strip()} "
        "(the peers' headers too); system "
        + os.uname().release,
        f"- Options: {' '.join(map(shlex.quote, sys.argv[2:])) or 'none'}",
        f"- One thread on core {core}, but where two are told; load average {load[0]:.1f} before and {load[1]:.1f} after: "
        + beside,
    ]


def instruction_sets():
    flags = re.search(r"^flags\s*:\s*(.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.M)
    known = ("sse2", "ssse3", "sse4_2", "avx2", "fma", "avx512f", "avx512ifma")
    return " ".join(k for k in known if flags and k in flags[1].split()) or "unknown"


def update(path, lines):
    text = path.read_text()
    if text.count(BEGIN) != 1 or text.count(END) != 1:
        sys.exit(f"{path} has no lines {BEGIN} and {END}")
    head, rest = text.split(BEGIN)
    path.write_text(head + BEGIN + "\n" + "\n".join(lines) + "\n" + END + rest.split(END)[1])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", help="the built tvbench")
    parser.add_argument("--filter", default=".", help="only benchmarks that match this regex")
    parser.add_argument("--repetitions", type=int, default=9)
    parser.add_argument("--min-time", type=float, default=0.05, help="seconds a repetition")
    parser.add_argument("--core", type=int, default=max(os.sched_getaffinity(0)))
    parser.add_argument(
        "--baseline", action="store_true", help="our kernels on the lowest instruction set"
    )
    parser.add_argument("--numpy", action="store_true", help="numpy_peer.py as one more peer")
    parser.add_argument("--update", type=pathlib.Path, help="put the tables into this file")
    args = parser.parse_args()

    # memset is part of most tables.
    wanted = f"({args.filter})|^memset"
    load_before = os.getloadavg()[0]
    ours = [
        args.program,
        f"--benchmark_filter={wanted}",
        f"--benchmark_repetitions={args.repetitions}",
        f"--benchmark_min_time={args.min_time}",
        "--benchmark_enable_random_interleaving=true",
        *(["--baseline"] if args.baseline else []),
    ]
    report = run(ours, {args.core})
    found = times(report)
    others = os.sched_getaffinity(0) - {args.core}
    if others:
        threads = times(run([*ours, "--threads"], {args.core, max(others)}))
        found.update((name, values) for name, values in threads.items() if name not in found)
    if args.numpy:
        script = pathlib.Path(__file__).with_name("numpy_peer.py")
        peers = run(
            [sys.executable, script, f"--benchmark_repetitions={args.repetitions}"], {args.core}
        )
        found.update(times(peers))
    load = (load_before, os.getloadavg()[0])
    lines = [*machine(report["context"], args.core, load), "", *table(found)]
    print("\n".join(lines))
    if args.update:
        update(args.update, ["", *lines, ""])


if __name__ == "__main__":
    main()
