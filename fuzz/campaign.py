"""Runs fuzz targets and keeps the inputs that they find for the next run.

  campaign.py [target...] [minutes]   runs all targets, or these, for one minute each or for as many minutes as given
  campaign.py hours N                 runs all targets for N hours altogether; a restart resumes an interrupted run

Each target has a directory in --found with these entries:
  corpus/     inputs that reach new code, merged with the seeds and minimized at the end of a run
  artifacts/  inputs that failed; one that no longer fails moves to the corpus
  log         the output of the fuzzer
"""
import argparse
import concurrent.futures
import fcntl
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import threading
import time

MAX_LENGTH = 256 * 1024
SECONDS_PER_INPUT = 60
# An interrupted campaign loses only the statistics of its current slices.
SECONDS_PER_SLICE = 600
# A target with this many failing inputs is not fuzzed further, because they must be fixed first.
MOST_ARTIFACTS = 10

stopping = threading.Event()
running = set()


def stop(*_):
    stopping.set()
    for process in list(running):
        process.send_signal(signal.SIGINT)


class Target:
    def __init__(self, name, options):
        self.name = name
        self.program = options.programs / f"{name}_fuzz"
        self.seeds = options.seeds / name
        self.folder = options.found / name
        self.corpus = self.folder / "corpus"
        self.artifacts = self.folder / "artifacts"
        self.log = self.folder / "log"
        dictionaries = [options.seeds / f"{word}.dict" for word in (name, name.split("_")[0])]
        self.dictionary = next((path for path in dictionaries if path.exists()), None)

    def prepare(self):
        """Also restores the corpus if an earlier run ended during minimise()."""
        before = self.folder / "corpus.before"
        if before.exists() and not self.corpus.exists():
            before.rename(self.corpus)
        for left in (before, self.folder / "corpus.new"):
            shutil.rmtree(left, ignore_errors=True)
        for folder in (self.corpus, self.artifacts):
            folder.mkdir(parents=True, exist_ok=True)
        self.log.write_bytes(b"")

    def run(self, *arguments):
        """Returns the exit code and the output, which is also appended to the log."""
        command = [self.program, f"-max_len={MAX_LENGTH}", f"-timeout={SECONDS_PER_INPUT}",
                   f"-artifact_prefix={self.artifacts}/", *arguments]
        process = subprocess.Popen([str(part) for part in command], stdout=subprocess.DEVNULL,
                                   stderr=subprocess.PIPE, start_new_session=True)
        running.add(process)
        if stopping.is_set():
            process.send_signal(signal.SIGINT)
        written = process.communicate()[1]
        running.discard(process)
        with self.log.open("ab") as log:
            log.write(written)
        return process.returncode, written.decode(errors="replace")

    def failing(self):
        return sorted(self.artifacts.iterdir())

    def has_enough(self):
        return len(self.failing()) >= MOST_ARTIFACTS

    def retry_artifacts(self):
        for artifact in self.failing():
            if self.run(artifact)[0] == 0 and not stopping.is_set():
                artifact.rename(self.corpus / artifact.name)

    def inputs(self):
        return [folder for folder in (self.seeds, self.corpus) if folder.is_dir()]

    def fuzz(self, seconds, result):
        """Fuzzes for this time, and continues after inputs that fail."""
        end = time.monotonic() + seconds
        while not self.has_enough() and not stopping.is_set() and (left := round(end - time.monotonic())) > 0:
            dictionary = [f"-dict={self.dictionary}"] if self.dictionary else []
            found_first = [folder for folder in reversed(self.inputs())]
            code, written = self.run("-print_final_stats=1", f"-max_total_time={left}", *dictionary, *found_first)
            result.add(written)
            if stopping.is_set() or code == 0:
                return
            if "Test unit written to" not in written:
                raise RuntimeError(f"{self.name}: ended with {code} without a failing input, see {self.log}")

    def minimise(self):
        new, before = self.folder / "corpus.new", self.folder / "corpus.before"
        new.mkdir()
        code, _ = self.run("-merge=1", new, *self.inputs())
        if code != 0 or not any(new.iterdir()):
            shutil.rmtree(new)
            if not stopping.is_set():
                print(f"{self.name}: not minimised, see {self.log}", file=sys.stderr)
            return
        self.corpus.rename(before)
        new.rename(self.corpus)
        shutil.rmtree(before)


class Result:
    """The statistics of a target over all runs of a campaign."""

    def __init__(self, seconds=0.0, executions=0, features=0, minimised=False):
        self.seconds, self.executions, self.features, self.minimised = seconds, executions, features, minimised

    def add(self, written):
        counts = re.findall(r"^stat::number_of_executed_units: *(\d+)", written, re.M)
        self.executions += sum(map(int, counts))
        self.features = max([self.features, *map(int, re.findall(r" ft: (\d+) ", written))])


class Campaign:
    """The results of all targets. If there is a file for them, they are kept for the next run."""

    def __init__(self, names, seconds, file=None):
        self.seconds, self.file, self.lock = seconds, file, threading.Lock()
        self.results = {name: Result() for name in names}

    def load(self):
        if self.file is None or not self.file.exists():
            return
        kept = json.loads(self.file.read_text())
        if kept["seconds"] != self.seconds:
            return
        for name, values in kept["results"].items():
            if name in self.results:
                self.results[name] = Result(**values)
        print(f"going on: {100 * self.share_done():.0f} % of this campaign is done")

    def share_done(self):
        return sum(min(r.seconds, self.seconds) for r in self.results.values()) / self.seconds / len(self.results)

    def save(self):
        if self.file is None:
            return
        with self.lock:
            new = self.file.with_suffix(".new")
            new.write_text(json.dumps({"seconds": self.seconds,
                                       "results": {name: vars(r) for name, r in self.results.items()}}))
            new.replace(self.file)

    def finish(self):
        """Deletes the stored results, so that the next campaign starts from the beginning."""
        if self.file is not None:
            self.file.unlink(missing_ok=True)


def fuzz_slice(campaign, target):
    """Fuzzes one target for one slice. Returns whether the target needs more time."""
    result = campaign.results[target.name]
    if result.minimised or stopping.is_set():
        return False
    left = campaign.seconds - result.seconds
    start = time.monotonic()
    if left > 0:
        try:
            target.fuzz(min(left, SECONDS_PER_SLICE), result)
        finally:
            result.seconds += time.monotonic() - start
    # Less than a second cannot be used, because the fuzzer counts whole seconds.
    if (target.has_enough() or campaign.seconds - result.seconds < 1) and not stopping.is_set():
        target.minimise()
        result.minimised = not stopping.is_set()
    campaign.save()
    return not result.minimised


def run_all(campaign, targets, jobs):
    """Runs slices of all targets in turn, so that each target gets some time even if the campaign is interrupted.
    Returns whether the fuzzer worked for all of them."""
    worked = True
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        list(pool.map(Target.retry_artifacts, targets))
        waiting = {pool.submit(fuzz_slice, campaign, target): target for target in targets}
        while waiting:
            done, _ = concurrent.futures.wait(waiting, return_when=concurrent.futures.FIRST_COMPLETED)
            for future in done:
                target = waiting.pop(future)
                if error := future.exception():
                    worked = False
                    print(error, file=sys.stderr)
                elif future.result():
                    waiting[pool.submit(fuzz_slice, campaign, target)] = target
    return worked


def report(campaign, targets):
    """Prints a line per target. Returns the number of failing inputs."""
    print(f"{'target':24}{'minutes':>9}{'executions':>13}{'features':>10}{'corpus':>8}{'failing':>9}")
    failing = []
    for target in targets:
        result = campaign.results[target.name]
        files = len(list(target.corpus.iterdir()))
        failing += target.failing()
        print(f"{target.name:24}{result.seconds / 60:9.1f}{result.executions:13}{result.features:10}{files:8}"
              f"{len(target.failing()):9}")
    for artifact in failing:
        print(f"fails: {artifact}")
    return len(failing)


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--programs", type=pathlib.Path, required=True)
    parser.add_argument("--seeds", type=pathlib.Path, required=True)
    parser.add_argument("--found", type=pathlib.Path, required=True)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("words", nargs="*")
    return parser.parse_args()


def plan(options):
    """Returns the names of the targets, and the campaign."""
    every = sorted(path.name.removesuffix("_fuzz") for path in options.programs.glob("*_fuzz"))
    if options.words[:1] == ["hours"]:
        if len(options.words) != 2 or not re.fullmatch(r"\d+(\.\d+)?", options.words[1]):
            sys.exit("usage: hours N")
        seconds = float(options.words[1]) * 3600 * min(options.jobs, len(every)) / len(every)
        return every, Campaign(every, seconds, options.found / "campaign.json")
    numbers = [word for word in options.words if re.fullmatch(r"\d+", word)]
    # A target may also be given as the path of its source or the name of its program.
    names = [re.sub(r"_fuzz(\.cpp)?$", "", pathlib.Path(word).name) for word in options.words if word not in numbers]
    if unknown := set(names) - set(every):
        sys.exit(f"no fuzz target: {', '.join(sorted(unknown))}; there are: {', '.join(every)}")
    return names or every, Campaign(names or every, 60.0 * int(numbers[-1] if numbers else 1))


def main():
    options = parse_arguments()
    names, campaign = plan(options)
    if not names or campaign.seconds <= 0:
        sys.exit("nothing to fuzz")
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, stop)
    options.found.mkdir(parents=True, exist_ok=True)
    lock = (options.found / "lock").open("w")
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        sys.exit(f"another run is using {options.found}")
    targets = [Target(name, options) for name in names]
    for target in targets:
        target.prepare()
    campaign.load()
    worked = run_all(campaign, targets, options.jobs)
    failing = report(campaign, targets)
    if stopping.is_set():
        print("interrupted; run the same command to resume" if campaign.file else "interrupted")
        return 130
    if worked:
        campaign.finish()
    return 1 if failing or not worked else 0


if __name__ == "__main__":
    sys.exit(main())
