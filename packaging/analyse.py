#!/usr/bin/env python3
"""Runs clang-tidy over the sources of build trees, in parallel.

    analyse.py BUILD[,BUILD...] STAMPS [--all | FILE...]

A source is analysed as the first BUILD that has it compiles it, with that tree's precompiled headers
if they are clang's. Sources that are compiled at once are analysed at once, too: what takes so long
are the headers that they share. What was found clean gets a stamp below STAMPS: how it was compiled
and checked, and what was in every file that it includes. It is not analysed again as long as all of
that stays.
"""

import concurrent.futures
import hashlib
import json
import os
import re
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# Tables written by a program.
GENERATED = {"simulator/controller/rom/romfontdata.cpp"}
FINDING = re.compile(r"^(?P<file>/[^:]+):(?P<place>\d+:\d+): (warning|error): (?P<text>.*)$")
PRECOMPILED = re.compile(r"(?<= )/\S+\.pch(?= |$)")
# How g++ is told to use its own, which clang cannot read.
FOREIGN_PRECOMPILED = re.compile(r" -include \S+/cmake_pch\.hxx(?= )")
INCLUDED = re.compile(r"^\.+ (?P<file>/.*|\S.*)$")
# What CMake makes of sources that are compiled at once: a file that includes them.
AT_ONCE = re.compile(r"/CMakeFiles/(?P<target>[^/]+)\.dir/Unity/unity_(?P<number>\d+)_cxx\.cxx$")
MEMBER = re.compile(r'^#include "(?P<file>/[^"]+\.cpp)"$', re.M)
MISSING = re.compile(r"'(?P<name>[^']+)' file not found")


class Fingerprints:
    """What is in a file: its contents for ours, time and size for those of installed packages."""

    def __init__(self):
        self._known = {}

    def of(self, path):
        if path not in self._known:
            self._known[path] = self._read(path)
        return self._known[path]

    @staticmethod
    def _read(path):
        try:
            if not path.startswith(ROOT + os.sep):
                status = os.stat(path)
                return f"{status.st_mtime_ns} {status.st_size}"
            with open(path, "rb") as file:
                return hashlib.sha256(file.read()).hexdigest()
        except OSError:
            return ""


class Unit:
    """What is analysed in one go: a source, or several of a folder with a file that includes them,
    made below `stamps`. Those that are `known` already are left out."""

    def __init__(self, entry, stamps, build, known):
        self.file = os.path.normpath(os.path.join(entry["directory"], entry["file"]))
        self.sources = [os.path.relpath(self.file, ROOT)]
        self.entry = entry | {"command": FOREIGN_PRECOMPILED.sub("", entry["command"])}
        if at_once := AT_ONCE.search(self.file):
            self._gather(at_once, stamps, build, known)

    def _gather(self, at_once, stamps, build, known):
        with open(self.file, encoding="utf-8") as file:
            members = [os.path.relpath(member, ROOT) for member in MEMBER.findall(file.read())]
        members = [member for member in members if member not in known] or members
        self.sources = [member for member in members if member not in GENERATED] or members
        # In a folder where the same .clang-tidy files count: copies of these stand there. By this
        # name clang's analyzer knows that what is included are sources.
        folder = os.path.dirname(self.sources[0])
        name = f"UnifiedSource_{build}_{at_once['target']}_{at_once['number']}.cpp"
        file = os.path.join(stamps, folder, name)
        write(file, "".join(f'#include "{os.path.join(ROOT, each)}"\n' for each in self.sources))
        self.entry["command"] = self.entry["command"].replace(self.entry["file"], file)
        self.entry["file"] = self.file = file

    @property
    def name(self):
        others = len(self.sources) - 1
        return self.sources[0] + (f" and {others} more" if others else "")

    def is_ours(self):
        """What a program has made is not."""
        source = self.sources[0]
        return not source.startswith(("..", "build" + os.sep)) and source not in GENERATED


def units(builds, stamps):
    """Everything of our own, each source once."""
    found = {}
    for build in builds:
        with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
            entries = json.load(file)
        for entry in entries:
            unit = Unit(entry, stamps, os.path.basename(build), found)
            if unit.is_ours() and not any(source in found for source in unit.sources):
                found.update(dict.fromkeys(unit.sources, unit))
    return {source: found[source] for source in sorted(found)}


def write(path, text):
    """Only if it says something else; at once or not at all, for another analysis may be reading."""
    try:
        with open(path, encoding="utf-8") as file:
            if file.read() == text:
                return
    except OSError:
        os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path + ".new", "w", encoding="utf-8") as file:
        file.write(text)
    os.replace(path + ".new", path)


def copy_configuration(stamps):
    listed = subprocess.run(
        ["git", "ls-files", "*.clang-tidy"], cwd=ROOT, capture_output=True, text=True, check=True
    ).stdout
    for path in listed.splitlines():
        with open(os.path.join(ROOT, path), encoding="utf-8") as file:
            write(os.path.join(stamps, path), file.read())


def configuration_files(path):
    """The .clang-tidy files that may count for a source."""
    directory = os.path.dirname(os.path.join(ROOT, path))
    files = []
    while directory.startswith(ROOT):
        files.append(os.path.join(directory, ".clang-tidy"))
        directory = os.path.dirname(directory)
    return files


class Analysis:
    def __init__(self, stamps):
        self._stamps = stamps
        self._tidy = subprocess.run(
            ["clang-tidy", "--version"], capture_output=True, text=True, check=True
        ).stdout
        with open(os.path.abspath(__file__), "rb") as file:
            self._own = hashlib.sha256(file.read()).hexdigest()
        self._before = Fingerprints()

    def _stamp(self, unit):
        return os.path.join(self._stamps, os.path.relpath(unit.file, ROOT) + ".stamp")

    def _key(self, unit):
        configuration = [self._before.of(file) for file in configuration_files(unit.sources[0])]
        entry = unit.entry
        parts = [self._tidy, self._own, entry["command"], entry["directory"], configuration]
        return hashlib.sha256(json.dumps(parts).encode()).hexdigest()

    def is_clean(self, unit):
        try:
            with open(self._stamp(unit), encoding="utf-8") as file:
                stamp = json.load(file)
            return stamp["key"] == self._key(unit) and all(
                self._before.of(file) == print_ for file, print_ in stamp["files"].items()
            )
        except (OSError, ValueError, KeyError):
            return False

    def run(self, unit):
        """The findings, and what else clang-tidy said if it failed without any."""
        began = time.time()
        process = subprocess.run(
            ["clang-tidy", "-quiet", "-p", self._stamps, "--extra-arg=-H", unit.file],
            capture_output=True,
            text=True,
            errors="replace",
            check=False,
        )
        output = re.sub(r"\x1b\[[0-9;]*m", "", process.stdout + process.stderr)
        findings = set()
        # What comes from a precompiled header is not listed.
        files = {unit.file, *PRECOMPILED.findall(unit.entry["command"])}
        for line in output.splitlines():
            if found := FINDING.match(line):
                file = os.path.relpath(found["file"], ROOT)
                findings.add(f"{file}:{found['place']}: {found['text']}")
            elif included := INCLUDED.match(line):
                directory = unit.entry["directory"]
                files.add(os.path.normpath(os.path.join(directory, included["file"])))
        if not findings and process.returncode == 0:
            self._write_stamp(unit, files, began)
        elif not findings:
            return {f"{unit.name}: clang-tidy failed: {output.strip()[-500:]}"}
        return findings

    def _write_stamp(self, unit, files, began):
        # Somebody may be editing meanwhile: what is newer than the analysis counts as not analysed.
        if any(os.path.exists(file) and os.path.getmtime(file) >= began for file in files):
            return
        now = Fingerprints()
        stamp = {"key": self._key(unit), "files": {f: now.of(f) for f in sorted(files)}}
        write(self._stamp(unit), json.dumps(stamp))


def progress(text):
    if sys.stderr.isatty():
        print(f"\r\x1b[K{text}", end="", file=sys.stderr, flush=True)


def analyse_all(analysis, chosen):
    findings = set()
    pool = concurrent.futures.ThreadPoolExecutor(os.cpu_count())
    try:
        jobs = {pool.submit(analysis.run, unit): unit for unit in chosen}
        for done, job in enumerate(concurrent.futures.as_completed(jobs), 1):
            progress(f"[{done}/{len(jobs)}] {jobs[job].name}")
            for finding in sorted(job.result() - findings):
                progress("")
                print(finding, flush=True)
                findings.add(finding)
    finally:
        pool.shutdown(cancel_futures=True)
        progress("")
    return findings


def main():
    trees, stamps, *arguments = sys.argv[1:]
    stamps = os.path.abspath(stamps)
    copy_configuration(stamps)
    known = units([os.path.abspath(build) for build in trees.split(",")], stamps)
    everything = list(dict.fromkeys(known.values()))
    write(os.path.join(stamps, "compile_commands.json"),
          json.dumps([unit.entry for unit in everything]))
    analysis = Analysis(stamps)
    if arguments == ["--all"]:
        chosen = everything
    elif arguments:
        wanted = [os.path.relpath(argument, ROOT) for argument in arguments]
        if unknown := [path for path in wanted if path not in known]:
            print(f"No static analysis: {trees} does not compile {', '.join(unknown)}.")
            return 77
        chosen = list(dict.fromkeys(known[path] for path in wanted))
    else:
        chosen = [unit for unit in everything if not analysis.is_clean(unit)]

    findings = analyse_all(analysis, chosen)
    if missing := sorted({m["name"] for f in findings if (m := MISSING.search(f))}):
        print(f"No static analysis: {', '.join(missing)} is not there; build {trees} first.")
        return 77
    counts = f"{sum(len(unit.sources) for unit in chosen)} of {len(known)} sources analysed"
    if findings:
        print(f"clang-tidy found {len(findings)} things: {counts}.")
        return 1
    print(f"clang-tidy found nothing: {counts}, the others are as they were when last found clean.")
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        print("Static analysis was interrupted.")
        sys.exit(130)
