"""Changes production code at random and lists the changes that no test detects.

  mutate.py [room...] [count]   tries this number of changes that have an effect (default 40) in each room
  mutate.py --again [room...]   tries those that survived before, after tests or other files have changed

Works in a copy in build/mutate and does not change the checkout. The same --seed makes the same changes. Results are
kept as long as no file changes, so an interrupted run can be resumed. A change does not count if it does not compile,
or if it compiles to the same object code. A test that hangs has detected the change. With --sanitize the surviving
changes are also tested in the build with sanitizers.
"""
import argparse
import collections
import fcntl
import json
import pathlib
import random
import re
import signal
import sys
import threading

import changes
import overlay

CHECKOUT = pathlib.Path(__file__).resolve().parent.parent
# The folders that the build declares as rooms.
ROOMS = [folder for folder in re.findall(r"^add_subdirectory\((\w+)\)", (CHECKOUT / "CMakeLists.txt").read_text(), re.M)
         if re.search(r"^vel_add_room", (CHECKOUT / folder / "CMakeLists.txt").read_text(), re.M)]
COUNTED = ("noticed", "noticed with sanitizers", "survived")

stop = threading.Event()


class Results:
    """A file with one line per change tried, after the digest of the tree in which it was tried."""

    def __init__(self, file, digest):
        self.file, self.digest, self.known, self.survived = file, digest, {}, {}
        for line in file.read_text().splitlines() if file.exists() else []:
            entry = json.loads(line)
            if entry["tree"] == digest:
                self.known[entry["key"]] = entry
            if entry["outcome"] == "survived":
                self.survived[tuple(entry[name] for name in ("room", "file", "kind", "old", "new"))] = entry

    def add(self, key, **values):
        self.known[key] = {"tree": self.digest, "key": key, **values}
        with self.file.open("a") as file:
            file.write(json.dumps(self.known[key]) + "\n")
        return self.known[key]


def is_production(name):
    """Returns the production sources that run on this system."""
    path = pathlib.PurePosixPath(name)
    return (path.suffix in (".cpp", ".h") and not path.stem.endswith("_test")
            and not {"test", "windows"} & set(path.parts[:-1]))


def candidates(tree, room, seed):
    """Yields changes of a room in random order, about the same number of each kind."""
    listed = overlay.check(["git", "ls-files", "-co", "--exclude-standard", room], CHECKOUT).splitlines()
    by_kind = collections.defaultdict(list)
    for name in filter(is_production, listed):
        for change in changes.find_changes((tree.folder / name).read_text()):
            by_kind[change.kind].append((name, change))
    chooser = random.Random(f"{seed} {room}")
    for kind in sorted(by_kind):
        chooser.shuffle(by_kind[kind])
    while by_kind:
        kind = chooser.choice(sorted(by_kind))
        yield by_kind[kind].pop()
        if not by_kind[kind]:
            del by_kind[kind]


class Trial:
    """The tree, the build and the tests with which changes are tried."""

    def __init__(self, tree, preset):
        print(f"building {preset} in {tree.folder}", flush=True)
        self.tree, self.build = tree, overlay.Build(tree, preset)
        self.build.make()
        self.suite = overlay.Suite(self.build, stop)
        print("running its tests without changes", flush=True)
        for name in self.suite.measure():
            print(f"left out, as it fails without changes: {name}", flush=True)
        if not self.suite.tests:
            sys.exit("no test passes: are mount and process namespaces allowed here?")
        self.hashes = {}

    def outcome(self, name, change, room):
        """Returns the outcome of a change, and the test that detected it."""
        near, others = self.suite.ordered(near_tests(room))
        source = (self.tree.folder / name).read_text()
        objects = self.build.objects(name)
        if name not in self.hashes:
            # Earlier changes were undone in this tree, but the originals may not have been rebuilt.
            self.build.compiles(objects)
            self.hashes[name] = self.build.hashes(objects)
        self.tree.write(name, changes.apply(source, change).encode())
        try:
            if not objects or not self.build.compiles(objects):
                return "does not compile", None
            if self.build.hashes(objects) == self.hashes[name]:
                return "no effect", None
            # Most changes are noticed nearby, and linking every program takes longer than those tests.
            for some, targets in ((near, self.suite.programs(near)), (others, [])):
                if not self.build.compiles(targets):
                    return "does not compile", None
                failing = self.suite.first_failing(some)
                if failing:
                    return "noticed", failing
            return "survived", None
        finally:
            self.tree.write(name, source.encode())


def near_tests(room):
    rows = [line.split("\t") for line in (overlay.HERE / "reach.tsv").read_text().splitlines() if line[0] != "#"]
    listed = {row[0]: row[1].split() for row in rows}
    return overlay.tests_of_room(CHECKOUT, room) + listed.get(room.split("/")[0], [])


def try_one(trial, results, room, name, change):
    source = (trial.tree.folder / name).read_text()
    key = f"{name} {change.start} {change.end} {change.new}"
    if key in results.known:
        return results.known[key]
    outcome, by = trial.outcome(name, change, room)
    if stop.is_set():
        return None
    line, old, new = changes.line_of(source, change)
    return results.add(key, room=room, file=name, line=line, kind=change.kind, old=old, new=new, outcome=outcome,
                       by=by)


def run_room(trial, results, room, options):
    """Tries changes until the required number of them counts."""
    tried, counted = [], 0
    for name, change in candidates(trial.tree, room, options.seed):
        if counted == options.count or stop.is_set():
            break
        entry = try_one(trial, results, room, name, change)
        if entry is None:
            break
        tried.append((name, change, entry))
        counted += entry["outcome"] in COUNTED
        if entry["outcome"] in COUNTED:
            print(f"{room} {counted}: {entry['file']}:{entry['line']} {entry['kind']}: {entry['outcome']}"
                  f"{' by ' + entry['by'] if entry['by'] else ''}", flush=True)
    return tried


def run_again(trial, results, rooms):
    """Tries the changes of these rooms that survived in any tree, where the code still has them."""
    tried = []
    for room, name, kind, old, new in sorted(results.survived):
        path = trial.tree.folder / name
        if stop.is_set():
            break
        if room not in rooms or not path.exists():
            continue
        source = path.read_text()
        same = [change for change in changes.find_changes(source)
                if change.kind == kind and changes.line_of(source, change)[1:] == (old, new)]
        if not same:
            print(f"gone: {name}: {old}", flush=True)
        for change in same:
            entry = try_one(trial, results, room, name, change)
            if entry is None:
                break
            print(f"{name}:{entry['line']} {kind}: {entry['outcome']}{' by ' + entry['by'] if entry['by'] else ''}",
                  flush=True)
            tried.append((name, change, entry))
    return tried


def sanitize(tree, results, tried):
    """Runs the tests with sanitizers on the surviving changes."""
    survivors = [row for row in tried if row[2]["outcome"] == "survived" and not row[2].get("sanitized")]
    if not survivors or stop.is_set():
        return
    trial = Trial(tree, "linux-sanitize")
    for name, change, entry in survivors:
        outcome, by = trial.outcome(name, change, entry["room"])
        if stop.is_set():
            return
        values = {**entry, "sanitized": True, "by": by}
        if outcome == "noticed":
            values["outcome"] = "noticed with sanitizers"
        entry.update(values)
        results.add(**{key: value for key, value in values.items() if key != "tree"})


def report(tried):
    by_room = collections.defaultdict(collections.Counter)
    for _, _, entry in tried:
        by_room[entry["room"]][entry["outcome"]] += 1
    print(f"\n{'room':16}{'noticed':>9}{'sanitizers':>12}{'survived':>10}{'no effect':>11}{'score':>8}")
    for room, counts in by_room.items():
        native, sanitized, survived = (counts[outcome] for outcome in COUNTED)
        score = f"{100 * (native + sanitized) / max(native + sanitized + survived, 1):.0f} %"
        print(f"{room:16}{native:9}{sanitized:12}{survived:10}{counts['no effect']:11}{score:>8}")
    for _, _, entry in tried:
        if entry["outcome"] == "survived":
            print(f"survived: {entry['file']}:{entry['line']}: {entry['kind']}")
            print(f"  - {entry['old']}\n  + {entry['new']}")


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--sanitize", action="store_true")
    parser.add_argument("--again", action="store_true")
    parser.add_argument("words", nargs="*", help="rooms, and the count")
    options = parser.parse_args()
    numbers = [word for word in options.words if re.fullmatch(r"\d+", word)]
    options.count = int(numbers[-1]) if numbers else 40
    options.rooms = [word.rstrip("/") for word in options.words if word not in numbers] or ROOMS
    for room in options.rooms:
        if room.split("/")[0] not in ROOMS or not (CHECKOUT / room).is_dir():
            parser.error(f"no room: {room}; there are: {' '.join(ROOMS)}")
    return options


def main():
    options = parse_arguments()
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, lambda *_: stop.set())
    place = CHECKOUT / "build" / "mutate"
    place.mkdir(parents=True, exist_ok=True)
    lock = (place / "lock").open("w")
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        sys.exit("another run is at work in build/mutate")
    tree = overlay.Tree(CHECKOUT, place / "tree")
    results = Results(place / "results.jsonl", tree.digest)
    trial = Trial(tree, "linux")
    if options.again:
        tried = run_again(trial, results, options.rooms)
    else:
        tried = [entry for room in options.rooms for entry in run_room(trial, results, room, options)]
    if options.sanitize:
        sanitize(tree, results, tried)
    report(tried)
    if stop.is_set():
        print("ended early; the same command goes on")
        return 130
    return 0


if __name__ == "__main__":
    sys.exit(main())
