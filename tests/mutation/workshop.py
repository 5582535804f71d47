"""A copy of the tree below build/mutation, with a build tree of its own, in which mutants are
built and tested. The developer's own files are only read."""

import fcntl
import hashlib
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import time

BUILD_LIMIT = 600  # seconds; the first build of everything has none
SESSION_PROGRAMS = ["bin/ownport", "bin/panelsim", "bin/frontpanel"]
GIGABYTE = 1 << 30


class Broken(Exception):
    """The unchanged sources do not build or do not pass."""


def tests_of(file, folders):
    """Which of these folders in tests/ has the tests of a file: that of the same name, or one
    further up."""
    folder = os.path.dirname(file) or "flow"
    while folder and folder not in folders:
        folder = os.path.dirname(folder)
    return folder


class Check:
    """A test program, or with `--system` a session of the shipped program."""

    def __init__(self, name, command, environment, targets, folder):
        self.name = name
        self.command = command
        self.environment = environment
        self.targets = targets  # of the build
        self.folder = folder  # whose tests these are
        self.limit = None  # seconds


class Workshop:
    def __init__(self, root):
        self.root = root
        self.base = os.path.join(root, "build", "mutation")
        self.tree = os.path.join(self.base, "tree")
        self.at_once = False  # whether several sources are compiled at once
        self.build_tree = os.path.join(self.base, "build")
        self.log = os.path.join(self.base, "last.log")
        self.checks = []
        self._users = {}  # source -> the names of the programs that are made of it
        self._folders = {}  # program -> the folder whose tests it holds
        self._lock = None

    def claim(self):
        """The copy is for one run at a time."""
        os.makedirs(self.base, exist_ok=True)
        self._lock = open(os.path.join(self.base, "lock"), "w", encoding="utf-8")
        try:
            fcntl.flock(self._lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError as error:
            raise Broken("another run is under way in build/mutation") from error

    # ---- The copy

    def files(self):
        """The sources of the project, as they are in the developer's tree."""
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            cwd=self.root, check=True, capture_output=True).stdout.decode().split("\0")
        return sorted(name for name in set(listed)
                      if name and os.path.isfile(os.path.join(self.root, name)))

    def read(self, file):
        with open(os.path.join(self.root, file), encoding="utf-8", newline="") as source:
            return source.read()

    def synchronise(self):
        """Makes the copy equal to the developer's tree; only what differs is written, so that only
        that is built again."""
        wanted = set(self.files())
        for file in sorted(wanted):
            source, copy = os.path.join(self.root, file), os.path.join(self.tree, file)
            if not _same(source, copy):
                os.makedirs(os.path.dirname(copy), exist_ok=True)
                shutil.copyfile(source, copy)
                shutil.copymode(source, copy)
        for folder, _, names in os.walk(self.tree):
            for name in names:
                path = os.path.join(folder, name)
                if os.path.relpath(path, self.tree) not in wanted:
                    os.remove(path)

    def write(self, file, text):
        with open(os.path.join(self.tree, file), "w", encoding="utf-8", newline="") as copy:
            copy.write(text)

    def restore(self, file):
        self.write(file, self.read(file))

    # ---- The build

    def configure(self):
        command = ["cmake", "-S", self.tree, "-B", self.build_tree, "-G", "Ninja",
                   # The model of the controller takes its time without any optimisation.
                   "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O1",
                   # A mutant that only earns a warning is to be found by a test. Of the sanitizers,
                   # under which the tests run otherwise, this one costs next to nothing.
                   "-DCMAKE_CXX_FLAGS=-w -fsanitize=bounds -fsanitize-undefined-trap-on-error",
                   "-DFRONTPANEL_SANITIZE=OFF", "-DFRONTPANEL_BENCH=OFF"]
        if self.at_once:
            command.append("-DFRONTPANEL_UNITY=application;simulator;tests")
        if shutil.which("mold"):
            command.append("-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=mold")
        if shutil.which("ccache"):
            command.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        if self._run(command, None) != 0:
            raise Broken(f"the build cannot be configured: see {self.log}")

    def builds(self, targets, limit=BUILD_LIMIT, environment=None):
        return self._run(["ninja", "-C", self.build_tree, *targets], limit, environment) == 0

    def builds_mutant(self, targets):
        """Past the compiler's cache: nobody compiles this again."""
        return self.builds(targets, environment={"CCACHE_DISABLE": "1"})

    def prepare(self, files, options):
        """Builds all that the files have a part in, finds the checks and how long each takes."""
        # A change of a header compiles all that include it: sooner done at once, in a tree of its own.
        self.at_once = all(file.endswith(".h") for file in files)
        if self.at_once:
            self.build_tree = os.path.join(self.base, "build-at-once")
        self.configure()
        programs = self._programs_of(files)
        if options.own:
            folders = {self._tests_of(file) for file in files}
            programs = {program for program in programs if self._folders[program] in folders}
        if options.system:
            programs.update(SESSION_PROGRAMS)
        if not self.builds(sorted(programs), None):
            raise Broken(f"the unchanged sources do not build: see {self.log}")
        self.checks = self._find_checks(programs, options.system)
        self._measure()

    def checks_of(self, file):
        """The checks that the file has a part in, its own folder's first."""
        folder = self._tests_of(file)
        sources = {file} if not file.endswith(".h") else set(self._includers(file))
        used_by = set().union(*(self._users.get(source, set()) for source in sources))
        mine = [check for check in self.checks if used_by.intersection(check.targets)]
        return sorted(mine, key=lambda check: (check.folder != folder, check.limit))

    def _tests_of(self, file):
        return tests_of(file, self._folders.values())

    def _programs_of(self, files):
        """The test programs that any of the files has a part in."""
        everything = subprocess.run(["ninja", "-C", self.build_tree, "-t", "targets", "all"],
                                    check=True, capture_output=True, text=True).stdout
        programs = sorted(set(re.findall(r"^(bin/\w+_test|bin/frontpanel):", everything, re.M)))
        for program in programs:
            inputs = subprocess.run(["ninja", "-C", self.build_tree, "-t", "inputs", program],
                                    check=True, capture_output=True, text=True).stdout
            name = os.path.basename(program)
            home = re.search(rf"^tests/(.+)/CMakeFiles/{name}\.dir/", inputs, re.M)
            self._folders[program] = home.group(1) if home else ""
            for path in (each for line in inputs.split("\n") for each in self._sources_in(line)):
                if path.startswith(self.tree + os.sep):
                    source = os.path.relpath(path, self.tree)
                    self._users.setdefault(source, set()).add(program)
        wanted = set()
        for file in files:
            for source in self._includers(file) if file.endswith(".h") else [file]:
                wanted |= self._users.get(source, set())
        return {program for program in wanted if program.endswith("_test")}

    def _sources_in(self, path):
        """What is compiled with this input of the build: itself, or several sources at once."""
        if not path.endswith("_cxx.cxx"):
            return [path]
        with open(os.path.join(self.build_tree, path), encoding="utf-8") as group:
            return re.findall(r'^#include "([^"]+)"', group.read(), re.M)

    def _includers(self, header):
        """The .cpp files that include a header, by way of others too. Headers go by their name
        alone, so some that only include a namesake may be among them."""
        texts = {file: self.read(file) for file in self.files() if file.endswith((".cpp", ".h"))}
        names = {os.path.basename(header)}
        found = set()
        grown = True
        while grown:
            grown = False
            for file, text in texts.items():
                included = set(re.findall(r'^\s*#include "([^"]+)"', text, re.M))
                if file not in found and included & names:
                    found.add(file)
                    names.add(os.path.basename(file))
                    grown = True
        return sorted(file for file in found if file.endswith(".cpp"))

    # ---- The checks

    def _find_checks(self, programs, system):
        """As CTest knows them, with what they need in the environment."""
        listed = subprocess.run(["ctest", "--show-only=json-v1"], cwd=self.build_tree, check=True,
                                capture_output=True, text=True).stdout
        checks = {}
        for test in json.loads(listed)["tests"]:
            properties = {each["name"]: each["value"] for each in test.get("properties", [])}
            labels = properties.get("LABELS", [])
            environment = dict(each.split("=", 1) for each in properties.get("ENVIRONMENT", [])
                               if not each.startswith("GTEST_"))
            command = test.get("command", [""])
            # Some are run by another program, which finds them a port. A program that has several
            # entries is run once and whole.
            program = os.path.relpath(command[-1], self.build_tree) if command[-1] else ""
            if program in programs and "unit" in labels:
                checks[program] = Check(
                    os.path.basename(program), [*command, "--gtest_fail_fast"], environment,
                    [program], self._folders[program])
            elif system and "--script" in command:
                checks[test["name"]] = Check(test["name"], command, environment,
                                             SESSION_PROGRAMS, "system")
        return list(checks.values())

    def _measure(self):
        """Runs each check on the unchanged sources; a mutant gets several times as long. The
        times of programs that have not changed since are taken from the last run."""
        notes = os.path.join(self.base, "times.json")
        known = _load(notes, {})
        times = {}
        for check in self.checks:
            digest = "".join(_digest(os.path.join(self.build_tree, target))
                             for target in check.targets)
            seconds = known.get(check.name + digest)
            if seconds is None:
                started = time.monotonic()
                if self.run(check, BUILD_LIMIT) != "passed":
                    raise Broken(f"{check.name} fails on the unchanged sources: see {self.log}")
                seconds = time.monotonic() - started
            times[check.name + digest] = seconds
            check.limit = 10 + 5 * seconds
        _store(notes, {**known, **times})

    def run(self, check, limit=None, tests=None):
        """`passed`, `failed` or `timed out`, of some tests of a program or of all."""
        only = ["--gtest_filter=" + ":".join(tests)] if tests else []
        try:
            status = self._run([*check.command, *only], limit or check.limit, check.environment)
        except subprocess.TimeoutExpired:
            return "timed out"
        return "passed" if status == 0 else "failed"

    def failed_test(self):
        """Of the program that was run last; None if it ended without a word."""
        with open(self.log, encoding="utf-8", errors="replace") as log:
            running = re.findall(r"^\[ +(?:RUN|FAILED) +\] ([^\s,]+)", log.read(), re.M)
        return running[-1] if running else None

    def _run(self, command, limit, environment=None):
        """In a process group of its own, which ends with the command, whatever it has started."""
        with open(self.log, "wb") as log:
            with subprocess.Popen(command, cwd=self.build_tree if os.path.isdir(self.build_tree)
                                  else self.base, stdin=subprocess.DEVNULL, stdout=log,
                                  stderr=subprocess.STDOUT, start_new_session=True,
                                  env={**os.environ, **(environment or {})},
                                  preexec_fn=_restrain) as process:
                try:
                    return process.wait(limit)
                finally:
                    try:
                        os.killpg(process.pid, signal.SIGKILL)
                    except ProcessLookupError:
                        pass


def _restrain():
    """What a mutant gone wild may take at most."""
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_AS, (8 * GIGABYTE, 8 * GIGABYTE))
    resource.setrlimit(resource.RLIMIT_FSIZE, (GIGABYTE, GIGABYTE))


def _same(one, other):
    try:
        with open(one, "rb") as first, open(other, "rb") as second:
            return first.read() == second.read()
    except FileNotFoundError:
        return False


def _digest(path):
    with open(path, "rb") as program:
        return hashlib.sha1(program.read()).hexdigest()


def _load(path, otherwise):
    try:
        with open(path, encoding="utf-8") as notes:
            return json.load(notes)
    except (FileNotFoundError, json.JSONDecodeError):
        return otherwise


def _store(path, value):
    with open(path + ".new", "w", encoding="utf-8") as notes:
        json.dump(value, notes, indent=1)
    os.replace(path + ".new", path)
