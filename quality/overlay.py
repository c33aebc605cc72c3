"""Manages the copy of the checkout in which changes are tried: its builds, and its tests in the sandbox."""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import threading
import time

HERE = pathlib.Path(__file__).resolve().parent
# Changed code may have an unused parameter or lack brackets, which must not be an error.
WARNINGS = (b"-Werror", b"-Werror -Wno-error")
# A test counts as hanging if it uses this many times its normal processor time, or runs or idles for this long.
MOST_COMPUTING, MOST_SECONDS, IDLE_SECONDS = 10, 300, 30
# Files that have no effect on tests.
BESIDE = re.compile(r"docs/|quality/|bench/|dev$|.*\.md$")


def run(command, folder, **options):
    return subprocess.run([str(part) for part in command], cwd=folder, capture_output=True, text=True, **options)


def check(command, folder):
    result = run(command, folder)
    if result.returncode != 0:
        raise SystemExit(f"{' '.join(map(str, command))}\n{result.stdout}{result.stderr}")
    return result.stdout


class Tree:
    """The copy. Unchanged files keep their time stamps, so that little is rebuilt."""

    def __init__(self, checkout, folder):
        self.checkout, self.folder = checkout, folder
        self.digest = self.refresh()

    def refresh(self):
        """Copies the files that differ. Returns a digest of the contents on which tests depend."""
        listed = check(["git", "ls-files", "-z", "-co", "--exclude-standard"], self.checkout).split("\0")
        names = sorted(name for name in listed if name and (self.checkout / name).is_file())
        digest = hashlib.sha256()
        for name in names:
            contents = self.wanted(name)
            if not BESIDE.match(name):
                digest.update(f"{name} {hashlib.sha256(contents).hexdigest()}\n".encode())
            self.write(name, contents)
            shutil.copymode(self.checkout / name, self.folder / name)
        self.remove_others(set(names))
        return digest.hexdigest()

    def wanted(self, name):
        contents = (self.checkout / name).read_bytes()
        if name == "cmake/CompileOptions.cmake":
            assert contents.count(WARNINGS[0]) == 1
            contents = contents.replace(*WARNINGS)
        return contents

    def write(self, name, contents):
        path = self.folder / name
        if path.exists() and path.read_bytes() == contents:
            return
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(contents)

    def remove_others(self, names):
        for path in self.folder.rglob("*"):
            name = path.relative_to(self.folder).as_posix()
            if not name.startswith("build/") and path.is_file() and name not in names:
                path.unlink()


class Build:
    """The build of one preset in the tree."""

    def __init__(self, tree, preset):
        self.tree, self.preset = tree, preset
        self.folder = tree.folder / "build" / preset

    def make(self):
        launcher = []
        if shutil.which("ccache"):
            launcher = [f"-DCMAKE_{language}_COMPILER_LAUNCHER=ccache" for language in ("C", "CXX")]
            # Shares the compiler cache with the builds of the checkout.
            os.environ.update(CCACHE_BASEDIR=str(self.tree.folder), CCACHE_NOHASHDIR="1",
                              CCACHE_IGNOREOPTIONS="-Wno-error")
        # The interface of the shared library does not change, so programs need not be linked again.
        check(["cmake", "--preset", self.preset, "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", *launcher], self.tree.folder)
        check(["ninja"], self.folder)
        self.dependents = self.read_dependents()

    def read_dependents(self):
        """Returns a dictionary from each file of the tree to the objects that depend on it."""
        dependents, target = {}, None
        for line in check(["ninja", "-t", "deps"], self.folder).splitlines():
            if line.startswith("    "):
                path = os.path.normpath(self.folder / line.strip())
                dependents.setdefault(os.path.relpath(path, self.tree.folder), []).append(target)
            else:
                target = line.split(":")[0]
        return dependents

    def objects(self, name):
        return sorted(set(self.dependents.get(name, [])))

    def compiles(self, targets):
        return run(["ninja", *targets], self.folder).returncode == 0

    def hashes(self, objects):
        """Returns the hash of each object without its debugging information."""
        stripped, found = self.folder / "stripped.o", []
        for path in objects:
            check(["objcopy", "--strip-debug", path, stripped], self.folder)
            found.append(hashlib.sha256(stripped.read_bytes()).hexdigest())
        return found


class Test:
    def __init__(self, described):
        self.name, self.command = described["name"], described["command"]
        properties = {entry["name"]: entry["value"] for entry in described.get("properties", [])}
        self.folder = properties.get("WORKING_DIRECTORY", "/")
        self.variables = dict(entry.split("=", 1) for entry in properties.get("ENVIRONMENT", []))
        self.seconds = None


def descendants_ticks(process):
    """Returns the processor time of a process and its descendants."""
    times, parents = {}, {}
    for entry in pathlib.Path("/proc").iterdir():
        if not entry.name.isdigit():
            continue
        try:
            fields = (entry / "stat").read_text().rpartition(")")[2].split()
        except OSError:
            continue
        parents[int(entry.name)] = int(fields[1])
        times[int(entry.name)] = sum(map(int, fields[11:15]))

    def is_below(number):
        while number not in (process, 0, None):
            number = parents.get(number)
        return number == process
    return sum(ticks for number, ticks in times.items() if is_below(number))


class Suite:
    """The tests of a build."""

    def __init__(self, build, stop):
        self.build, self.stop = build, stop
        listed = json.loads(check(["ctest", "--show-only=json-v1"], build.folder))["tests"]
        programs = str(build.folder / "bin") + "/"
        self.tests = {entry["name"]: Test(entry) for entry in listed
                      if entry.get("command", [""])[0].startswith(programs)}

    def measure(self):
        """Measures the tests without changes. Leaves out those that fail and returns their names."""
        failing = []
        for test in list(self.tests.values()):
            start = os.times()
            # One attempt may fail because the machine is busy.
            if not any(self.passes(test, threading.Event()) for _ in range(2)):
                failing.append(test.name)
                del self.tests[test.name]
            end = os.times()
            test.seconds = end.children_user + end.children_system - start.children_user - start.children_system
        return failing

    def passes(self, test, ended):
        """Returns whether the test passes, which a hanging test does not. Returns True if `ended` is set first."""
        limit = int(MOST_COMPUTING * (test.seconds if test.seconds is not None else 60)) + 10
        environment = {**os.environ, **test.variables, "GTEST_FAIL_FAST": "1", "GTEST_BRIEF": "1"}
        process = subprocess.Popen([HERE / "sandbox", self.build.tree.folder, test.folder, str(limit), *test.command],
                                   env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, start_new_session=True)
        try:
            return self.wait(test, process, ended)
        finally:
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()

    def wait(self, test, process, ended):
        start = last_progress = time.monotonic()
        most = MOST_SECONDS + 60 * (test.seconds or 60)
        ticks = -1
        while True:
            try:
                return process.wait(timeout=0.2 if time.monotonic() - start < 5 else 2) == 0
            except subprocess.TimeoutExpired:
                pass
            if ended.is_set() or self.stop.is_set():
                return True
            now, before, ticks = time.monotonic(), ticks, descendants_ticks(process.pid)
            if ticks != before:
                last_progress = now
            if now - last_progress > IDLE_SECONDS or now - start > most:
                return False

    def first_failing(self, names):
        """Runs the tests in this order, several at a time. Returns the name of one that fails, or None."""
        failing, ended = [], threading.Event()

        def run_one(name):
            if not ended.is_set() and not self.stop.is_set() and not self.passes(self.tests[name], ended):
                failing.append(name)
                ended.set()
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            list(pool.map(run_one, names))
        return failing[0] if failing else None

    def ordered(self, near):
        """Returns the names of these tests and of the others, the fastest first."""
        others = sorted((test for test in self.tests.values() if test.name not in near),
                        key=lambda test: test.seconds)
        return [name for name in near if name in self.tests], [test.name for test in others]

    def programs(self, names):
        """Returns the names that the build gives the programs of these tests."""
        return [os.path.relpath(self.tests[name].command[0], self.build.folder) for name in names]


def tests_of_room(checkout, room):
    """Returns the names of the tests that the room's CMake file adds."""
    text = (checkout / room.split("/")[0] / "CMakeLists.txt").read_text()
    return re.findall(r"(?:vel_add_tests\(|add_test\(NAME )\s*(\w+)", text)
