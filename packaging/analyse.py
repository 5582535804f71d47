#!/usr/bin/env python3
"""Runs clang-tidy over the sources of build trees, in parallel.

    analyse.py BUILD[,BUILD...] STAMPS [--all | FILE...]

A source is analysed as the first BUILD that has it compiles it, with that tree's precompiled headers
if they are clang's. One that was found clean gets a stamp below STAMPS: how it was compiled and
checked, and what was in every file that it includes. It is not analysed again as long as all of that
stays.
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


def sources(builds):
    """The first compile command of every source of our own, by its path from the root."""
    found = {}
    for build in builds:
        with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
            commands = json.load(file)
        for entry in commands:
            path = os.path.relpath(os.path.join(entry["directory"], entry["file"]), ROOT)
            if not path.startswith(("..", "build" + os.sep)) and path not in GENERATED:
                command = FOREIGN_PRECOMPILED.sub("", entry["command"])
                found.setdefault(path, entry | {"command": command})
    return dict(sorted(found.items()))


def write_json(path, what):
    """At once or not at all: another analysis may be reading."""
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path + ".new", "w", encoding="utf-8") as file:
        json.dump(what, file)
    os.replace(path + ".new", path)


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

    def _stamp(self, path):
        return os.path.join(self._stamps, path + ".stamp")

    def _key(self, path, entry):
        configuration = [self._before.of(file) for file in configuration_files(path)]
        parts = [self._tidy, self._own, entry.get("command", ""), entry["directory"], configuration]
        return hashlib.sha256(json.dumps(parts).encode()).hexdigest()

    def is_clean(self, path, entry):
        try:
            with open(self._stamp(path), encoding="utf-8") as file:
                stamp = json.load(file)
            return stamp["key"] == self._key(path, entry) and all(
                self._before.of(file) == print_ for file, print_ in stamp["files"].items()
            )
        except (OSError, ValueError, KeyError):
            return False

    def run(self, path, entry):
        """The findings, and what else clang-tidy said if it failed without any."""
        full = os.path.join(ROOT, path)
        began = time.time()
        process = subprocess.run(
            ["clang-tidy", "-quiet", "-p", self._stamps, "--extra-arg=-H", full],
            capture_output=True,
            text=True,
            errors="replace",
            check=False,
        )
        output = re.sub(r"\x1b\[[0-9;]*m", "", process.stdout + process.stderr)
        findings = set()
        # What comes from a precompiled header is not listed.
        files = {full, *PRECOMPILED.findall(entry["command"])}
        for line in output.splitlines():
            if found := FINDING.match(line):
                file = os.path.relpath(found["file"], ROOT)
                findings.add(f"{file}:{found['place']}: {found['text']}")
            elif included := INCLUDED.match(line):
                files.add(os.path.normpath(os.path.join(entry["directory"], included["file"])))
        if not findings and process.returncode == 0:
            self._write_stamp(path, entry, files, began)
        elif not findings:
            return {f"{path}: clang-tidy failed: {output.strip()[-500:]}"}
        return findings

    def _write_stamp(self, path, entry, files, began):
        # Somebody may be editing meanwhile: what is newer than the analysis counts as not analysed.
        if any(os.path.exists(file) and os.path.getmtime(file) >= began for file in files):
            return
        now = Fingerprints()
        stamp = {"key": self._key(path, entry), "files": {f: now.of(f) for f in sorted(files)}}
        write_json(self._stamp(path), stamp)


def progress(text):
    if sys.stderr.isatty():
        print(f"\r\x1b[K{text}", end="", file=sys.stderr, flush=True)


def analyse_all(analysis, chosen):
    findings = set()
    pool = concurrent.futures.ThreadPoolExecutor(os.cpu_count())
    try:
        jobs = {pool.submit(analysis.run, path, entry): path for path, entry in chosen.items()}
        for done, job in enumerate(concurrent.futures.as_completed(jobs), 1):
            progress(f"[{done}/{len(jobs)}] {jobs[job]}")
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
    known = sources([os.path.abspath(build) for build in trees.split(",")])
    stamps = os.path.abspath(stamps)
    write_json(os.path.join(stamps, "compile_commands.json"), list(known.values()))
    analysis = Analysis(stamps)
    if arguments == ["--all"]:
        chosen = known
    elif arguments:
        wanted = [os.path.relpath(argument, ROOT) for argument in arguments]
        if unknown := [path for path in wanted if path not in known]:
            print(f"No static analysis: {trees} does not compile {', '.join(unknown)}.")
            return 77
        chosen = {path: known[path] for path in wanted}
    else:
        chosen = {p: entry for p, entry in known.items() if not analysis.is_clean(p, entry)}

    findings = analyse_all(analysis, chosen)
    if missing := sorted({m["name"] for f in findings if (m := MISSING.search(f))}):
        print(f"No static analysis: {', '.join(missing)} is not there; build {trees} first.")
        return 77
    counts = f"{len(chosen)} of {len(known)} sources analysed"
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
