"""What run.sh is the front of: see there."""

import argparse
import json
import os
import random
import re
import signal
import subprocess
import sys
import time

from mutants import find_mutants, squeeze
from workshop import Broken, Workshop

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))

APPLICATION = ["client", "platform", "eve_layer", "widgets", "startup.cpp", "screenflow.cpp",
               "main.cpp"]
VERDICTS = ["killed", "timed out", "survived", "did not compile"]


class Mistake(Exception):
    """Of whoever calls."""


# ---- Which mutants


def parse_place(place):
    """FILE, FILE:LINE or FILE:LINE..LINE as (file, first line, last line)."""
    file, _, lines = place.partition(":")
    if not lines:
        return file, 1, sys.maxsize
    match = re.fullmatch(r"(\d+)(?:\.\.(\d+))?", lines)
    if not match:
        raise Mistake(f"{place}: the lines are written FILE:LINE or FILE:LINE..LINE")
    return file, int(match.group(1)), int(match.group(2) or match.group(1))


def sources_of(place, listed, workshop):
    """The mutable sources of a file or folder."""
    place = os.path.normpath(place)
    if place in listed:
        files = [place]
    else:
        files = [file for file in listed if file.startswith(place + os.sep)]
    files = [file for file in files if file.endswith((".cpp", ".h"))]
    if not files:
        raise Mistake(f"{place}: no source of the project")
    return [file for file in files if not is_generated(workshop.read(file))]


def is_generated(text):
    return re.match(r"//[^\n]*\b(?:Made by|Generated)\b", text, re.IGNORECASE) is not None


def choose(options, workshop):
    """The mutants that the options ask for."""
    listed = workshop.files()
    chosen = []
    for place in options.files or APPLICATION:
        name, first, last = parse_place(place)
        if options.lines:
            first, last = options.lines
        for file in sources_of(name, listed, workshop):
            mutants = [mutant for mutant in find_mutants(file, workshop.read(file))
                       if first <= mutant.line <= last]
            chosen += sample(mutants, file, options)
    return list({mutant.name: mutant for mutant in chosen}.values())


def sample(mutants, file, options):
    if options.sample is None or options.sample >= len(mutants):
        return mutants
    picked = random.Random(f"{options.seed} {file}").sample(mutants, options.sample)
    return sorted(picked, key=lambda mutant: (mutant.start, mutant.end))


def read_equivalents(workshop):
    """equivalent.txt as (file, before, after) -> reason. Tells of lines that are no longer there."""
    known = {}
    path = os.path.join(HERE, "equivalent.txt")
    with open(path, encoding="utf-8") as listing:
        text = re.sub(r"^#.*\n", "", listing.read(), flags=re.M)
    for entry in filter(None, re.split(r"\n\s*\n", text.strip())):
        lines = [line.strip() for line in entry.split("\n")]
        if len(lines) < 4 or not lines[1].startswith("- ") or not lines[2].startswith("+ "):
            raise Mistake(f"{path}: not FILE, - BEFORE, + AFTER, reason: {lines}")
        known[lines[0], squeeze(lines[1][2:]), squeeze(lines[2][2:])] = " ".join(lines[3:])
    sources = {file: squeeze(workshop.read(file)) for file in workshop.files()
               if file in {entry[0] for entry in known}}
    for file, before, _ in known:
        if before not in sources.get(file, ""):
            print(f"equivalent.txt: {file} no longer has the line\n  - {before}")
    return known


def is_equivalent(mutant, known):
    return ((mutant.file, mutant.before, mutant.after) in known
            or (mutant.file, mutant.before, "*") in known)


# ---- A run


class Run:
    """A list of mutants and what has come of those that were tried, on disk so that it can go on
    after an interruption."""

    def __init__(self, folder):
        self._plan = os.path.join(folder, "plan.json")
        self._results = os.path.join(folder, "results.jsonl")
        self.report = os.path.join(folder, "report.txt")

    def begin(self, mutants):
        with open(self._plan, "w", encoding="utf-8") as plan:
            json.dump([[mutant.file, mutant.name] for mutant in mutants], plan)
        with open(self._results, "w", encoding="utf-8"):
            pass

    def planned(self, workshop):
        """The mutants of the last run; those of sources that have changed since are gone."""
        try:
            with open(self._plan, encoding="utf-8") as plan:
                names = json.load(plan)
        except FileNotFoundError as error:
            raise Mistake("there is no run to go on with") from error
        by_name = {}
        for file in {file for file, _ in names}:
            if os.path.exists(os.path.join(ROOT, file)):
                by_name.update({each.name: each for each in find_mutants(file, workshop.read(file))})
        found = [by_name[name] for _, name in names if name in by_name]
        if len(found) < len(names):
            print(f"{len(names) - len(found)} mutants of sources that have changed are left out.")
        return found

    def results(self):
        try:
            with open(self._results, encoding="utf-8") as results:
                return {each["name"]: each for each in map(json.loads, results)}
        except FileNotFoundError as error:
            raise Mistake("there was no run yet") from error

    def add(self, mutant, verdict, by, seconds):
        with open(self._results, "a", encoding="utf-8") as results:
            json.dump({"name": mutant.name, "file": mutant.file, "line": mutant.line,
                       "kind": mutant.kind, "before": mutant.before, "after": mutant.after,
                       "verdict": verdict, "by": by, "seconds": round(seconds, 1)}, results)
            results.write("\n")


def stages(checks):
    """Checks in groups that are built together: the most promising one first and alone."""
    own = [check for check in checks if check.folder == checks[0].folder]
    others = [check for check in checks if check.folder != checks[0].folder]
    return [group for group in ([own[0]], own[1:], others) if group]


class Favourites:
    """The tests that noticed mutants of a file: likely to notice its next one, too."""

    MOST = 12

    def __init__(self):
        self.check = {}  # file -> the program
        self._tests = {}  # file and program -> names, the latest first

    def tests(self, file, check):
        return self._tests.get((file, check.name), [])

    def add(self, file, check, test):
        self.check[file] = check
        if test:
            others = [each for each in self.tests(file, check) if each != test]
            self._tests[file, check.name] = [test, *others][:self.MOST]


def run_check(workshop, check, file, favourites):
    """The outcome; the favourites come before the rest."""
    likely = favourites.tests(file, check)
    outcome = workshop.run(check, tests=likely) if likely else "passed"
    if outcome == "passed":
        outcome = workshop.run(check)
    if outcome != "passed":
        favourites.add(file, check, workshop.failed_test())
    return outcome


def try_mutant(workshop, mutant, favourites):
    """(verdict, the check that noticed)"""
    checks = workshop.checks_of(mutant.file)
    if not checks:
        raise Mistake(f"{mutant.file}: no test program is made of it")
    favourite = favourites.check.get(mutant.file)
    if favourite in checks and favourite.folder == checks[0].folder:
        checks = [favourite] + [check for check in checks if check is not favourite]
    workshop.write(mutant.file, mutant.apply(workshop.read(mutant.file)))
    for group in stages(checks):
        try:
            if not workshop.builds_mutant(sorted({each for check in group for each in check.targets})):
                return "did not compile", None
        except subprocess.TimeoutExpired:
            return "did not compile", None
        for check in group:
            outcome = run_check(workshop, check, mutant.file, favourites)
            if outcome != "passed":
                return ("killed" if outcome == "failed" else "timed out"), check.name
    return "survived", None


def run_all(workshop, run, mutants, options):
    done = run.results()
    left = [mutant for mutant in mutants if mutant.name not in done]
    if not left:
        return
    print(f"{len(left)} mutants to try; preparing the build of the unchanged sources ...", flush=True)
    workshop.synchronise()
    workshop.prepare(sorted({mutant.file for mutant in left}), options)
    ends = time.monotonic() + options.minutes * 60 if options.minutes else None
    favourites = Favourites()
    for number, mutant in enumerate(left, 1):
        if ends and time.monotonic() > ends:
            print(f"Time is up with {len(left) - number + 1} mutants left; --resume goes on.")
            return
        started = time.monotonic()
        try:
            verdict, by = try_mutant(workshop, mutant, favourites)
        finally:
            workshop.restore(mutant.file)
        seconds = time.monotonic() - started
        run.add(mutant, verdict, by, seconds)
        print(f"[{number}/{len(left)}] {verdict:15} {seconds:5.1f} s  {mutant.file}:{mutant.line}"
              f"  {mutant.kind}  {by or ''}", flush=True)


# ---- Reports


def print_mutant(mutant, out):
    print(f"\n{mutant['file']}:{mutant['line']}  ({mutant['kind']})\n"
          f"  - {mutant['before']}\n  + {mutant['after']}", file=out)


def write_report(results, equivalents, out):
    tried = list(results.values())
    folders = sorted({os.path.dirname(each["file"]) or "." for each in tried})
    print(f"{'':22}{'mutants':>9}" + "".join(f"{verdict:>17}" for verdict in VERDICTS), file=out)
    for folder in [*folders, "all"]:
        mine = [each for each in tried
                if folder in ("all", os.path.dirname(each["file"]) or ".")]
        counts = [sum(each["verdict"] == verdict for each in mine) for verdict in VERDICTS]
        print(f"{folder:22}{len(mine):9}" + "".join(f"{count:17}" for count in counts), file=out)
    if equivalents:
        print(f"\n{equivalents} known equivalents were not tried.", file=out)
    survivors = [each for each in tried if each["verdict"] == "survived"]
    if survivors:
        print("\nSurvivors", file=out)
    for mutant in sorted(survivors, key=lambda each: (each["file"], each["line"])):
        print_mutant(mutant, out)


def list_mutants(mutants):
    for mutant in mutants:
        print_mutant(vars(mutant) | {"file": mutant.file}, sys.stdout)
    print(f"\n{len(mutants)} mutants")


# ---- The command line


def parse_arguments():
    parser = argparse.ArgumentParser(prog="run.sh", add_help=False, allow_abbrev=False)
    parser.add_argument("files", nargs="*")
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--from", dest="place")
    parser.add_argument("--own", action="store_true")
    parser.add_argument("--system", action="store_true")
    parser.add_argument("--minutes", type=float)
    parser.add_argument("--resume", action="store_true")
    parser.add_argument("--survivors", action="store_true")
    parser.add_argument("--report", action="store_true")
    options = parser.parse_args()
    options.lines = None
    if options.place and re.fullmatch(r"\d+\.\.\d+", options.place):
        options.lines = tuple(map(int, options.place.split("..")))
    elif options.place:
        options.files.append(options.place)
    return options


def mutants_for(options, workshop, run):
    if options.resume:
        return run.planned(workshop)
    if options.survivors:
        survived = {name for name, each in run.results().items() if each["verdict"] == "survived"}
        return [mutant for mutant in run.planned(workshop) if mutant.name in survived]
    return choose(options, workshop)


def main():
    options = parse_arguments()
    workshop = Workshop(ROOT)
    run = Run(workshop.base)
    if not options.report:
        everything = mutants_for(options, workshop, run)
        known = read_equivalents(workshop)
        mutants = [mutant for mutant in everything if not is_equivalent(mutant, known)]
        equivalents = len(everything) - len(mutants)
        if options.list:
            list_mutants(mutants)
            return 0
        workshop.claim()
        if not options.resume:
            run.begin(mutants)
        run_all(workshop, run, mutants, options)
    else:
        equivalents = 0
    with open(run.report, "w", encoding="utf-8") as report:
        write_report(run.results(), equivalents, report)
    write_report(run.results(), equivalents, sys.stdout)
    survived = any(each["verdict"] == "survived" for each in run.results().values())
    return 1 if survived else 0


def interrupted(_signal, _frame):
    raise KeyboardInterrupt


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, interrupted)
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        print("\nInterrupted; --resume goes on.", file=sys.stderr)
        sys.exit(130)
    except (Mistake, Broken) as problem:
        print(f"run.sh: {problem}", file=sys.stderr)
        sys.exit(2)
