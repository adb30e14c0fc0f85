#!/usr/bin/env python3
"""Compares the program with cmp and with what else tells two DICOM files apart, on pairs that make_pairs writes.

usage: compare.py PROGRAM MAKE_PAIRS FOLDER [--rounds N] [--no-peers] [PAIR...]

PAIR is a letter of the table below, or t: the trace of pair (b) at level 5, in lines a second.

cmp of equal copies is the limit: it reads both files once and does nothing else. In a round every command runs once, so
that other work on the machine meets all of them; a figure is the median of the rounds' ratios to the limit of the same
round. Beside the ratio of times on the clock stands that of processor time, which other work disturbs less. The peak
memory of a small process is that of this script, from which it begins.
"""
import os
import shutil
import signal
import statistics
import sys
import time

NULL = os.open(os.devnull, os.O_RDWR)
PEER_PAIRS = 20    # Of the many small ones: peers start a process for each pair.
TRACE_ROUNDS = 3
TRACE_SECONDS = 10    # After which a trace is ended; the lines written until then are complete.
TRACE_TARGET = 200000    # Lines a second of processor time.

# name, kind and number for make_pairs, the target, the pairs
PAIRS = [
    ("a", "300-element CT", "ct", 300, 3),
    ("b", "multi-frame, 120,000 elements", "frames", 2000, 15),
    ("c", "512 MB of pixels", "pixel", 536870912, 1.5),
    ("d", "2,000 small pairs", "small", 2000, 5),
    ("e", "50,000 private", "private", 50000, 10),
    ("E", "500,000 private", "private", 500000, None),
    ("f", "9 deep", "deep", 10, 4),
]


def wait(process, end):
    """For a process, which is killed when it hasn't ended by then. What it has used."""
    while True:
        ended, _, usage = os.wait4(process, os.WNOHANG)
        if ended:
            return usage
        if time.perf_counter() >= end:
            os.kill(process, signal.SIGKILL)
            return os.wait4(process, 0)[2]
        time.sleep(0.02)


class Run:
    """What one command or several of them cost together."""

    def __init__(self):
        self.clock = self.processor = 0.0
        self.kib = 0

    def add(self, command, output=NULL, environment=os.environ, limit=None):
        start = time.perf_counter()
        actions = [(os.POSIX_SPAWN_DUP2, output, 1), (os.POSIX_SPAWN_DUP2, NULL, 2)]
        process = os.posix_spawn(command[0], command, environment, file_actions=actions)
        usage = wait(process, start + limit) if limit else os.wait4(process, 0)[2]
        self.clock += time.perf_counter() - start
        self.processor += usage.ru_utime + usage.ru_stime
        self.kib = max(self.kib, usage.ru_maxrss)
        return self


def file(folder, name):
    return os.path.join(folder, name)


def make(make_pairs, folder, kind, number):
    """The pairs' names without "_a.dcm"."""
    stem = file(folder, f"{kind}_{number}")
    stems = [f"{stem}_{10000 + i}" for i in range(number)] if kind == "small" else [stem]
    if not os.path.exists(stems[-1] + "_b.dcm"):
        if os.spawnv(os.P_WAIT, make_pairs, [make_pairs, folder, kind, str(number)]):
            sys.exit("compare.py: make_pairs failed")
    return stems


def copies(folder, stems, stem):
    """All first files behind one another, twice."""
    names = stem + "_all.dcm", stem + "_copy.dcm"
    if not os.path.exists(names[1]):
        with open(names[0], "wb") as together:
            for one in stems:
                with open(one + "_a.dcm", "rb") as source:
                    shutil.copyfileobj(source, together)
        shutil.copyfile(names[0], names[1])
    return names


def gdcmdiff(tools, stems, _):
    run = Run()
    for stem in stems[:PEER_PAIRS]:
        run.add([tools["gdcmdiff"], stem + "_a.dcm", stem + "_b.dcm"])
    return run


def dcmdump(tools, stems, folder):
    run = Run()
    texts = [file(folder, "a.txt"), file(folder, "b.txt")]
    for stem in stems[:PEER_PAIRS]:
        for text, side in zip(texts, "ab"):
            output = os.open(text, os.O_WRONLY | os.O_CREAT | os.O_TRUNC)
            run.add([tools["dcmdump"], f"{stem}_{side}.dcm"], output)
            os.close(output)
        run.add([tools["diff"], *texts])
    return run


class Series:
    """The rounds of one command, as ratios to the limit."""

    def __init__(self):
        self.clock, self.processor, self.seconds, self.kib = [], [], [], 0

    def add(self, run, limit, share=1):
        self.clock.append(run.clock / share / limit.clock)
        self.processor.append(run.processor / share / limit.processor)
        self.seconds.append(run.clock / share)
        self.kib = max(self.kib, run.kib)

    def text(self):
        median = statistics.median
        return f"{median(self.clock):8.2f} {median(self.processor):8.2f} {median(self.seconds):9.4f} s {self.kib / 1024:7.1f} MiB"


def measure(program, tools, folder, stems, stem, rounds, with_peers):
    names = [name for one in stems for name in (one + "_a.dcm", one + "_b.dcm")]
    all_copies = copies(folder, stems, stem)
    share = min(len(stems), PEER_PAIRS) / len(stems)
    peers = [peer for peer, tool in ((gdcmdiff, "gdcmdiff"), (dcmdump, "dcmdump")) if with_peers and tools[tool]]
    series = {"tagwright": Series(), **{peer.__name__: Series() for peer in peers}, "cmp": Series()}
    for name in names + list(all_copies):
        Run().add([tools["cmp"], name, os.devnull])    # Into the memory of the system, as far as cmp reads.
        with open(name, "rb") as source:
            while source.read(1 << 20):
                pass
    for number in range(rounds):
        limit = Run().add([tools["cmp"], *all_copies])
        series["cmp"].add(limit, limit)
        series["tagwright"].add(Run().add([program, *names]), limit)
        if number < 3:    # They differ by so much that three rounds are enough.
            for peer in peers:
                series[peer.__name__].add(peer(tools, stems, folder), limit, share)
    return series


def trace(program, make_pairs, folder):
    """Lines a second of a trace at level 5, which goes to a file and to the console, here nowhere.

    The whole trace has several million lines, so it is ended after a while."""
    stem = make(make_pairs, folder, "frames", 2000)[0]
    user, logs = os.path.abspath(file(folder, "trace_user")), os.path.abspath(file(folder, "trace_logs"))
    settings = os.path.join(user, "Kestrelbay", "Tagwright.ini")
    os.makedirs(os.path.dirname(settings), exist_ok=True)
    with open(settings, "w") as text:
        text.write(f"scratch = {logs}/\n")
    clock, processor = [], []
    for _ in range(TRACE_ROUNDS):
        shutil.rmtree(logs, ignore_errors=True)
        command = [program, "-t", "5", stem + "_a.dcm", stem + "_b.dcm"]
        run = Run().add(command, NULL, {**os.environ, "APPDATA": user}, TRACE_SECONDS)
        with open(os.path.join(logs, "Tagwright_trace.dat"), "rb") as lines:
            count = sum(1 for _ in lines)
        clock.append(count / run.clock)
        processor.append(count / run.processor)
    shutil.rmtree(logs, ignore_errors=True)
    print(f"(t) trace of (b) at level 5, {count} lines: {statistics.median(clock):.0f} a second on the clock, "
          f"{statistics.median(processor):.0f} of processor time   (target {TRACE_TARGET})", flush=True)


def main(words):
    rounds, with_peers = 15, True
    if "--rounds" in words:
        at = words.index("--rounds")
        rounds = int(words[at + 1])
        del words[at:at + 2]
    if "--no-peers" in words:
        words.remove("--no-peers")
        with_peers = False
    program, make_pairs, folder, *wanted = words
    tools = {name: shutil.which(name) for name in ("cmp", "diff", "gdcmdiff", "dcmdump")}
    print(f"{'':36}   clock     cpu   (ratios to cmp)  time     peak memory   target")
    seconds = {}
    for letter, title, kind, number, target in PAIRS:
        if wanted and letter not in wanted:
            continue
        stems = make(make_pairs, folder, kind, number)
        stem = file(folder, f"{kind}_{number}")
        few = max(5, rounds // 3) if kind == "pixel" or number == 500000 else rounds
        series = measure(program, tools, folder, stems, stem, few, with_peers)
        for name, one in series.items():
            label = f"({letter}) {title}" if name == "tagwright" else ""
            goal = f"   {target}" if name == "tagwright" and target else ""
            if kind == "pixel" and goal:
                goal += ", 64 MiB"
            print(f"{label:36} {one.text()} {goal}  {name}", flush=True)
        seconds[letter] = statistics.median(series["tagwright"].seconds)
    if not wanted or "t" in wanted:
        trace(program, make_pairs, folder)
    if "e" in seconds and "E" in seconds:
        print(f"ten times the private elements: {seconds['E'] / seconds['e']:.2f} times the time   (target 11)")


main(sys.argv[1:])
