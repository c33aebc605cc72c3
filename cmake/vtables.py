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
        # If several symbols have the same address, prefer the shortest mangled C++ name.
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
        """Returns the name of the symbol that the word points to, or the value of the word."""
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
    """Returns a dictionary from the mangled name of each table to the contents of its slots, in order: mangled names, 0
    for functions that an abstract class does not define, and other numbers between two parts of a table. Zeros at the
    end are left out, because they may be padding. A PE file has zeros for pure virtual functions too, so changes of its
    abstract classes show only in their derived classes."""
    image = Image(library, nm, objdump)
    return {name: image.table(address) for address, name in image.symbols if name.startswith("_ZTV")}
