#!/usr/bin/env python3
"""Writes the compile commands of single sources, for tools that read one source at a time.

A build joins sources to one compilation and precompiles headers. Without both, a source that lacks an #include cannot be
read.

    compile_commands.py --build build/linux-sanitize --out build/lint
"""

import argparse
import json
import pathlib
import re

# Options that use a precompiled header; clang's own options have a prefix each.
PRECOMPILED = re.compile(r" -Xclang -include-pch -Xclang \S+| -Xclang -include -Xclang \S*cmake_pch\.hxx| -Winvalid-pch")


def single_commands(entry):
    """The entries of the sources that an entry compiles."""
    command = PRECOMPILED.sub("", entry["command"])
    joined = pathlib.Path(entry["file"])
    if joined.parent.name != "Unity":
        return [{**entry, "command": command}]
    sources = re.findall(r'^#include "(.*)"$', joined.read_text(encoding="utf-8"), re.MULTILINE)
    return [{**entry, "file": source, "command": command.replace(str(joined), source)} for source in sources]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--out", type=pathlib.Path, required=True)
    options = parser.parse_args()
    entries = json.loads((options.build / "compile_commands.json").read_text(encoding="utf-8"))
    singles = [single for entry in entries for single in single_commands(entry)]
    options.out.mkdir(parents=True, exist_ok=True)
    (options.out / "compile_commands.json").write_text(json.dumps(singles, indent=1), encoding="utf-8")


if __name__ == "__main__":
    main()
