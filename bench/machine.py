"""Describes the machine that runs the benchmarks: its processor, compiler and the versions of the peers. The description
contains a digest of the ratios, so that the manual can tell whether both come from the same run."""
import hashlib
import pathlib
import re
import subprocess

# The Debian packages of the peers, and what they provide.
PACKAGES = {"libc6": "C runtime: iconv, memmem, fnmatch, posix_spawn", "libstdc++6": "C++ runtime", "libicu-dev": "ICU",
            "libfmt-dev": "fmt", "libspdlog-dev": "spdlog", "libinih-dev": "inih", "libglib2.0-dev": "GLib",
            "gettext": "gettext", "xxd": "xxd", "libbenchmark-dev": "Google Benchmark"}


def output(*command):
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    return done.stdout.strip() if done.returncode == 0 else ""


def digest(rows):
    """Returns the digest of rows of job, peer and ratio."""
    return hashlib.sha256("\n".join("\t".join(row) for row in rows).encode()).hexdigest()[:16]


def processor():
    text = pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8")
    fields = dict(re.findall(r"^(model name|flags)\s*: (.*)$", text, re.M))
    vectors = [name for name in ("avx2", "avx512f", "avx512bw", "avx512vbmi") if name in fields.get("flags", "").split()]
    return ", ".join([" ".join(fields.get("model name", "unknown").split()), *vectors])


def describe(ratios):
    """Returns the rows of the description: what, and its version."""
    rows = [("ratios", digest(ratios)), ("Processor", processor()), ("Compiler", output("g++", "--version").split("\n")[0])]
    for package, words in PACKAGES.items():
        rows.append((words, output("dpkg-query", "-W", "-f=${Version}", package) or "not a package here"))
    return rows
