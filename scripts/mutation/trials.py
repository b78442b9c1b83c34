"""Builds the programs with one change and runs the tests on them, for scripts/mutate.

The unchanged programs are built once. For each change, only the objects that read the changed
file are compiled, and the programs are linked in a folder of their own. So several changes can
be tried at the same time.
"""

import collections
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import time

PROGRAMS = ("addrtool", "print_inventory", "unit_tests", "system_tests")
MEMORY_BYTES = 4_000_000_000  # stops a change that allocates without end
FILE_BYTES = 100_000_000  # stops a change that writes without end
COMMAND_SECONDS, WHOLE_BUILD_SECONDS = 300, 3600


def run(*command, seconds=COMMAND_SECONDS, **how):
    """Gives (status, output). The status is None if the command takes longer than this."""
    with subprocess.Popen(
        [*map(str, command)],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        errors="replace",
        start_new_session=True,
        **how,
    ) as process:
        try:
            output, _ = process.communicate(timeout=seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, 9)
            process.wait()
            return None, ""
    return process.returncode, output


def require(*command, **how):
    """The output of a command that must succeed."""
    status, output = run(*command, **how)
    if status != 0:
        sys.exit(f"scripts/mutate: {' '.join(map(str, command))} failed:\n{output}")
    return output


def archive_of(built):
    """The static library into which CMake puts an object."""
    return re.sub(r"CMakeFiles/([^/]+)\.dir/.*", r"lib\1.a", built)


@functools.lru_cache(maxsize=None)
def optimised(source, *include_folders):
    """A digest of the code that the compiler generates with the release's optimisation."""
    folders = [word for folder in include_folders for word in ("-iquote", folder)]
    code = require("c++", "-std=c++20", "-O3", "-w", *folders, "-S", "-o", "-", source)
    return hashlib.sha1(code.encode()).digest()


class Build:
    """The unchanged programs of a tree, built in one way, and the commands that build them."""

    def __init__(self, tree, folder, memory, *options):
        self.tree, self.folder, self.memory = tree, folder, memory
        settings = [
            "-DCMAKE_BUILD_TYPE=",
            "-DCMAKE_CXX_FLAGS=-O0 -w -D_GLIBCXX_ASSERTIONS",
            "-DCMAKE_EXE_LINKER_FLAGS=" + ("-fuse-ld=lld" if shutil.which("ld.lld") else ""),
        ]
        require("cmake", "-G", "Ninja", "-S", tree, "-B", folder, *settings, *options)
        require("cmake", "--build", folder, "--target", *PROGRAMS, seconds=WHOLE_BUILD_SECONDS)
        entries = json.loads((folder / "compile_commands.json").read_text())
        commands = [shlex.split(entry["command"]) for entry in entries]
        self.compilations = {words[words.index("-o") + 1]: words for words in commands}
        # Ninja has the link command as ": && c++ ... && :".
        self.links = {
            program: shlex.split(self.ninja("commands", program).splitlines()[-1])[2:-2]
            for program in PROGRAMS
        }
        # For each object the files that it was made from, its source first. Ninja prints blocks:
        # the object, a colon and a remark, then a line for each file.
        self.inputs = {}
        for block in self.ninja("deps").strip().split("\n\n"):
            built, *files = block.splitlines()
            paths = [os.path.normpath(folder / file.strip()) for file in files]
            self.inputs[built.split(":")[0]] = paths

    def ninja(self, tool, *arguments):
        return require("ninja", "-C", self.folder, "--quiet", "-t", tool, *arguments)

    def readers(self, path):
        """The objects that are made from the file: a source has one, a header has many."""
        file = str(self.tree / path)
        count = 1 if path.endswith(".cpp") else None
        found = [built for built, files in self.inputs.items() if file in files[:count]]
        return found or sys.exit(f"scripts/mutate: no object is built from {path}")

    def new_objects(self, folder, path):
        """For each object that is built from the changed file, the object that replaces it."""
        readers = enumerate(self.readers(path))
        return {built: str(folder / f"{number}.o") for number, built in readers}

    def compile(self, folder, path):
        """Compiles the changed file, which is in the folder. False if that fails."""
        for built, new in self.new_objects(folder, path).items():
            replaced = {built: new, str(self.tree / path): folder / path}
            words = [replaced.get(word, word) for word in self.compilations[built]]
            # The compiler looks in the folder first for what is included in quotes.
            if run(*words, "-iquote", folder / "src", cwd=self.folder)[0] != 0:
                return False
        return True

    def link(self, folder, path, *programs):
        objects = self.new_objects(folder, path)
        for program in programs:
            words = [objects.get(word, word) for word in self.links[program]]
            # An object in front of its archive keeps the archive's own copy out.
            added = [new for built, new in objects.items() if archive_of(built) in words]
            output = words.index("-o")
            words[output : output + 2] = [*added, "-o", folder / program]
            require(*words, cwd=self.folder)

    def test(self, folder, program, tests, seconds):
        """Runs tests in a sandbox with the programs of the folder, which takes what a stopped test
        leaves behind. Stops at the first failure."""
        return run(
            "prlimit",
            f"--as={self.memory}",
            f"--fsize={FILE_BYTES}",
            self.tree / "scripts" / "sandbox",
            folder / program,
            "--gtest_brief=1",
            "--gtest_fail_fast",
            f"--gtest_filter={tests}",
            seconds=seconds,
            env=dict(os.environ, ADDRTOOL_BIN_DIR=str(folder), TMPDIR=str(folder)),
        )

    def test_names(self, program):
        names, suite = [], ""
        for line in require(self.folder / program, "--gtest_list_tests").splitlines():
            if line.startswith("  "):
                names.append(suite + line.split()[0])
            elif line.split("  #")[0].endswith("."):
                suite = line.split()[0]
        return names


class Tester:
    """Tries changes of a tree, any number at the same time."""

    def __init__(self, tree, work):
        self.tree, self.work = tree, work
        self.plain = Build(tree, work / "plain", MEMORY_BYTES)
        # The address sanitizer reserves more memory than any limit would leave it.
        self.sanitized = Build(
            tree, work / "sanitized", "unlimited", "-DADDRTOOL_SANITIZE=address,undefined"
        )
        self.system_tests = self.plain.test_names("system_tests")
        self.noticed = collections.Counter()  # (program, path, test): changes of the file
        self.limits = {}  # (build, tests): seconds
        with concurrent.futures.ThreadPoolExecutor() as pool:
            list(pool.map(self.try_unchanged, (self.plain, self.sanitized)))

    def try_unchanged(self, build):
        """Sets the time limits. A test must pass here, or it would kill every change."""
        runs = [("unit_tests", "*"), *(("system_tests", name) for name in self.system_tests)]
        for program, tests in runs:
            start = time.monotonic()
            status, output = build.test(build.folder, program, tests, COMMAND_SECONDS)
            if status != 0:
                sys.exit(f"scripts/mutate: {program} {tests} fails without a change:\n{output}")
            self.limits[build, tests] = 10 + 5 * (time.monotonic() - start)

    def try_change(self, change):
        """Gives (result, test): the kind of tests that killed the change, and the first test."""
        with tempfile.TemporaryDirectory(dir=self.work) as name:
            folder = pathlib.Path(name)
            changed = folder / change.path
            changed.parent.mkdir(parents=True)
            changed.write_text(change.apply((self.tree / change.path).read_text()))
            return (
                self.unit_result(self.plain, folder, change.path)
                or self.equal_result(folder, change.path)
                or self.system_result(self.plain, folder, change.path)
                or self.sanitized_result(folder, change.path)
                or ("survived", "")
            )

    def unit_result(self, build, folder, path):
        if not build.compile(folder, path):
            return "invalid", ""
        build.link(folder, path, "unit_tests")
        return self.tests_result(build, folder, path, "unit_tests", self.unit_filters(path))

    def system_result(self, build, folder, path):
        build.link(folder, path, "addrtool", "print_inventory", "system_tests")
        return self.tests_result(build, folder, path, "system_tests", self.system_order(path))

    def unit_filters(self, path):
        """First the tests that noticed other changes of the file, then all."""
        known = [key[2] for key in dict(self.noticed) if key[:2] == ("unit_tests", path)]
        return [":".join(known), "*"] if known else ["*"]

    def system_order(self, path):
        """The order of the system tests; each runs alone in a fresh sandbox. The tests that most
        likely kill a change of the file come first: those that killed one before, then those named
        like the file, then those that killed changes of other files, then the quick ones."""
        here, anywhere = collections.Counter(), collections.Counter()
        for (_, file, test), count in dict(self.noticed).items():
            anywhere[test] += count
            here[test] += count if file == path else 0
        words = pathlib.Path(path).stem.split("_")

        def rank(test):
            named = sum(word in test.lower() for word in words)
            return -here[test], -named, -anywhere[test], self.limits[self.plain, test]

        return sorted(self.system_tests, key=rank)

    def tests_result(self, build, folder, path, program, filters):
        for tests in filters:
            limit = self.limits[build, tests if program == "system_tests" else "*"]
            status, output = build.test(folder, program, tests, limit)
            if status == 0:
                continue
            failed = re.search(r"\[  FAILED  \] ([^\s,]+)", output)
            if failed:
                self.noticed[program, path, failed.group(1)] += 1
            result = "time-out" if status is None else program.removesuffix("_tests")
            return result, failed.group(1) if failed else tests
        return None

    def equal_result(self, folder, path):
        """Gives "equal" if the optimiser makes the same code with and without the change."""
        src, own = self.tree / "src", str(self.tree / path)
        sources = [self.plain.inputs[built][0] for built in self.plain.readers(path)]
        for source in sources:
            changed = folder / path if source == own else source
            if source.startswith(str(src)) and (
                optimised(changed, folder / "src", src) != optimised(source, src)
            ):
                return None
        return "equal", ""

    def sanitized_result(self, folder, path):
        result = self.unit_result(self.sanitized, folder, path) or self.system_result(
            self.sanitized, folder, path
        )
        return result and ("sanitizers", result[1])
