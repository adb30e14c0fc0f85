#!/usr/bin/env python3
"""Compares the program with cmp and with what else tells two DICOM files apart, on pairs that make_pairs writes.

usage: compare.py PROGRAM MAKE_PAIRS FOLDER [--rounds N] [--no-peers] [PAIR...]

PAIR is a letter of the table below, or t: the trace of pair (b) at level 5, in lines a second.

cmp of equal copies is the limit: it reads both files once and does nothing else. In a round every command runs once, so
that other work on the machine meets all of them; a figure is the median of the rounds' ratios to the limit of the same
round. Beside the ratio of times on the clock stands that of processor time, which other work disturbs less. The peak
memory of a small process is that of this script, from which it begins.

Before a pair is measured one run must find each difference; the measured ones must end with the same status. The status is
1 when one doesn't, or when a target is missed.
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

PIXEL_MIB = 64    # The most memory for 512 MB of pixels.
TENFOLD = 11    # The most time for ten times the elements.
MOST_COUNTED = 254    # Differences that a status can tell.

# letter, title, kind and number for make_pairs, differences of each pair, the target
PAIRS = [
    ("a", "300-element CT", "ct", 300, 3, 3),
    ("b", "multi-frame, 120,000 elements", "frames", 2000, 101, 15),
    ("c", "512 MB of pixels", "pixel", 536870912, 1, 1.5),
    ("d", "2,000 small pairs", "small", 2000, 2, 5),
    ("e", "50,000 private", "private", 50000, 50, 10),
    ("E", "500,000 private", "private", 500000, 500, None),
    ("f", "9 deep", "deep", 10, 10, 4),
]

missed = []


def wait(process, end):
    """As os.wait4 for a process, which is killed when it hasn't ended by then."""
    while True:
        result = os.wait4(process, os.WNOHANG)
        if result[0]:
            return result
        if time.perf_counter() >= end:
            os.kill(process, signal.SIGKILL)
            return os.wait4(process, 0)
        time.sleep(0.02)


class Run:
    """What one command or several of them cost together."""

    def __init__(self):
        self.clock = self.processor = 0.0
        self.kib = 0

    def add(self, command, output=NULL, environment=os.environ, limit=None, status=None):
        """limit: seconds after which it is killed. status: the one that it must end with, when that matters."""
        start = time.perf_counter()
        actions = [(os.POSIX_SPAWN_DUP2, output, 1), (os.POSIX_SPAWN_DUP2, NULL, 2)]
        process = os.posix_spawn(command[0], command, environment, file_actions=actions)
        _, ended, usage = wait(process, start + limit) if limit else os.wait4(process, 0)
        self.clock += time.perf_counter() - start
        self.processor += usage.ru_utime + usage.ru_stime
        self.kib = max(self.kib, usage.ru_maxrss)
        if status is not None and os.waitstatus_to_exitcode(ended) != status:
            sys.exit(f"compare.py: {command[0]} ended with {os.waitstatus_to_exitcode(ended)} instead of {status}")
        return self


class User:
    """Whom the program runs for: settings and logs of its own, so that nobody else's audit file grows."""

    def __init__(self, folder):
        home, self.logs = os.path.abspath(file(folder, "user")), os.path.abspath(file(folder, "logs"))
        settings = os.path.join(home, "Kestrelbay", "Tagwright.ini")
        os.makedirs(os.path.dirname(settings), exist_ok=True)
        with open(settings, "w") as text:
            text.write(f"audit = audit.dat\nscratch = {self.logs}/\n")
        self.environment = {**os.environ, "APPDATA": home}
        self.forget()

    def forget(self):
        shutil.rmtree(self.logs, ignore_errors=True)

    def log(self, name):
        return open(os.path.join(self.logs, name), "rb")


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


def check(program, user, names, differences):
    """One run must find each pair's differences. Returns the status of a run that does."""
    pairs = len(names) // 2
    status = min(pairs * differences, MOST_COUNTED)
    user.forget()
    Run().add([program, *names], environment=user.environment, status=status)
    with user.log("audit.dat") as lines:
        found = [line.split()[1] for line in lines if line.startswith(b"Found ")]
    if found != [str(differences).encode()] * pairs:
        sys.exit(f"compare.py: the audit file of {names[0]} doesn't tell {pairs} times {differences} differences")
    return status


def measure(program, user, tools, folder, stems, stem, differences, rounds, with_peers):
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
    status = check(program, user, names, differences)
    for number in range(rounds):
        limit = Run().add([tools["cmp"], *all_copies], status=0)
        series["cmp"].add(limit, limit)
        user.forget()
        series["tagwright"].add(Run().add([program, *names], environment=user.environment, status=status), limit)
        if number < 3:    # They differ by so much that three rounds are enough.
            for peer in peers:
                series[peer.__name__].add(peer(tools, stems, folder), limit, share)
    return series


def trace(program, user, make_pairs, folder):
    """Lines a second of a trace at level 5, which goes to a file and to the console, here nowhere.

    The whole trace has several million lines, so it is ended after a while."""
    stem = make(make_pairs, folder, "frames", 2000)[0]
    clock, processor = [], []
    for _ in range(TRACE_ROUNDS):
        user.forget()
        command = [program, "-t", "5", stem + "_a.dcm", stem + "_b.dcm"]
        run = Run().add(command, environment=user.environment, limit=TRACE_SECONDS)
        with user.log("Tagwright_trace.dat") as lines:
            count = sum(1 for _ in lines)
        clock.append(count / run.clock)
        processor.append(count / run.processor)
    user.forget()
    print(f"(t) trace of (b) at level 5, {count} lines: {statistics.median(clock):.0f} a second on the clock, "
          f"{statistics.median(processor):.0f} of processor time   (target {TRACE_TARGET})", flush=True)
    if statistics.median(processor) < TRACE_TARGET:
        missed.append("t")


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
    user = User(folder)
    for letter, title, kind, number, differences, target in PAIRS:
        if wanted and letter not in wanted:
            continue
        stems = make(make_pairs, folder, kind, number)
        stem = file(folder, f"{kind}_{number}")
        few = max(5, rounds // 3) if kind == "pixel" or number == 500000 else rounds
        series = measure(program, user, tools, folder, stems, stem, differences, few, with_peers)
        for name, one in series.items():
            label = f"({letter}) {title}" if name == "tagwright" else ""
            goal = f"   {target}" if name == "tagwright" and target else ""
            if kind == "pixel" and goal:
                goal += f", {PIXEL_MIB} MiB"
            print(f"{label:36} {one.text()} {goal}  {name}", flush=True)
        own = series["tagwright"]
        if target and statistics.median(own.clock) > target or kind == "pixel" and own.kib > PIXEL_MIB * 1024:
            missed.append(letter)
        seconds[letter] = statistics.median(own.seconds)
    if not wanted or "t" in wanted:
        trace(program, user, make_pairs, folder)
    if "e" in seconds and "E" in seconds:
        tenfold = seconds["E"] / seconds["e"]
        print(f"ten times the private elements: {tenfold:.2f} times the time   (target {TENFOLD})")
        if tenfold > TENFOLD:
            missed.append("ten times (e)")
    if missed:
        sys.exit("missed: " + ", ".join(missed))


main(sys.argv[1:])
