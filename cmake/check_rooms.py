"""Fails if a file of a room includes a header of a room that its own room does not list in USES.

--rooms is a table with a line for each room: its name, the rooms that it uses, and its public headers. For a directory
of programs, the second column contains the word "public", which means all public headers, and the third column lists
single files of other rooms that it may include. Files that are compiled only on another system are checked as well.
"""
import argparse
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
PUBLIC = "vel_include"
# These headers include all others and do not belong to a room.
GATHERING = {"vel.h", "vel_c.h"}


class Room:
    def __init__(self, uses, headers):
        self.is_programs = "public" in uses
        self.uses = set(uses) - {"public"}
        self.single_files = set(headers) if self.is_programs else set()
        self.public = set() if self.is_programs else set(headers)


class Rooms:
    def __init__(self, table):
        self.rooms = {}
        for line in table.splitlines():
            name, uses, headers = line.split("\t")
            self.rooms[name] = Room(uses.split(), headers.split())
        self.owners = {header: name for name, room in self.rooms.items() for header in room.public}

    def faults_of_table(self, public):
        """A room may use only rooms that are declared before it, so that there is no cycle."""
        known = set()
        for name, room in self.rooms.items():
            for other in sorted(room.uses - known):
                yield f"{name} uses {other}, which is not declared before it"
            known.add(name)
        for header in sorted(public - set(self.owners) - GATHERING):
            yield f"{PUBLIC}/{header} belongs to no room"

    def fault(self, name, included):
        """Returns the reason why a file of this room must not include that one, or None if it may."""
        folder, _, rest = included.partition("/")
        room = self.rooms[name]
        if included in room.single_files or (folder == PUBLIC and room.is_programs and rest not in GATHERING):
            return None
        owner = self.owners.get(rest) if folder == PUBLIC else folder if folder in self.rooms else None
        if owner is None:
            return "it belongs to no room"
        return None if owner == name or owner in room.uses else f"{name} does not use {owner}"

    def faults_of_file(self, room, path, text):
        for included in INCLUDE.findall(text):
            # Public headers include each other without a directory; so do includes of generated tables.
            whole = included if "/" in included else f"{path.partition('/')[0]}/{included}"
            if (why := self.fault(room, whole)) is not None:
                yield f"{path}: includes {included}: {why}"


def is_production(path):
    return path.suffix in (".cpp", ".h") and not path.stem.endswith("_test") and "test" not in path.parts


def faults(rooms, root):
    public = {path.name for path in (root / PUBLIC).glob("*.h")}
    yield from rooms.faults_of_table(public)
    for header, room in sorted(rooms.owners.items()):
        name = f"{PUBLIC}/{header}"
        yield from rooms.faults_of_file(room, name, (root / name).read_text())
    for room in rooms.rooms:
        for path in sorted((root / room).rglob("*")):
            name = path.relative_to(root)
            if is_production(name):
                yield from rooms.faults_of_file(room, name.as_posix(), path.read_text())


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--rooms", type=pathlib.Path, required=True)
    parser.add_argument("--root", type=pathlib.Path, required=True)
    options = parser.parse_args()
    found = list(faults(Rooms(options.rooms.read_text()), options.root))
    for fault in found:
        print(fault, file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
