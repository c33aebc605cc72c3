"""Reads the slots of the virtual function tables of a built library (ELF or PE) with nm and objdump."""
import bisect
import re
import struct
import subprocess

WORD = 8
LEADING_WORDS = 2  # the offset of the object and the type information


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


class Image:
    def __init__(self, library, nm, objdump):
        self.bytes = library.read_bytes()
        self.symbols = [(int(address, 16), name) for address, name in
                        re.findall(r"^([0-9a-f]+) \w (\S+)$", run(nm, "--defined-only", str(library)), re.MULTILINE)]
        self.addresses = sorted({address for address, _ in self.symbols})
        # Of several names for one place the shortest that the language made is the plainest.
        self.names = {}
        for address, name in sorted(self.symbols, key=lambda s: (not s[1].startswith("_Z"), len(s[1]), s[1])):
            self.names.setdefault(address, name)
        sections = re.findall(r"^ +\d+ \S+ +(\w+)  (\w+)  \w+  (\w+) ", run(objdump, "-h", str(library)), re.MULTILINE)
        self.sections = [tuple(int(number, 16) for number in section) for section in sections]
        self.relocations = {}
        if self.bytes.startswith(b"\x7fELF"):
            for place, target, addend in re.findall(
                    r"^(\w{16}) R_X86_64_\w+ +([^\s+@]+)\S*?(?:\+0x(\w+))?$", run(objdump, "-R", str(library)), re.MULTILINE):
                self.relocations[int(place, 16)] = self.names.get(int(addend or "0", 16)) if target == "*ABS*" else target

    def word(self, address):
        """The name of what the word points to, or its value."""
        if address in self.relocations:
            return self.relocations[address]
        for size, start, offset in self.sections:
            if start <= address < start + size:
                value, = struct.unpack_from("<q", self.bytes, offset + address - start)
                return self.names.get(value, value) if value else 0
        raise ValueError(f"{address:x} is in no section")

    def table(self, address):
        end = self.addresses[bisect.bisect_right(self.addresses, address)]
        words = [self.word(place) for place in range(address, end - WORD + 1, WORD)]
        while words and words[-1] == 0:
            words.pop()
        return words[LEADING_WORDS:]


def slots(library, nm, objdump):
    """Mangled table name -> what its slots hold, in order: mangled names, 0 for what an abstract class leaves empty,
    other numbers between two parts of a table. Zeros at the end cannot be told from padding; a PE file has zeros for
    pure virtual functions too, so that its abstract classes show in their derived classes only."""
    image = Image(library, nm, objdump)
    return {name: image.table(address) for address, name in image.symbols if name.startswith("_ZTV")}
