#!/usr/bin/env python3
"""tidy.py [--deep] BUILD_DIRECTORY [PATH...]: runs clang-tidy over the project's sources, or over those below PATHs;
with --deep its static analyzer too.

Parsing the standard library costs far more than checking a file of ours, so the files of a folder are checked
several at a time, as one; where that finds anything, or the files don't go together, each is checked by itself, and
only that is reported. A file that passed is remembered by the contents of all that it is made of, and is not checked
again until one of these changes. TIDY_CACHE names the directory for that; otherwise it is in the user's cache."""

import hashlib
import json
import os
import shlex
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from functools import cache
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BATCH = 8
DEEP = "--deep" in sys.argv[1:]
DEEP_CHECKS = ["--checks=clang-analyzer-*"] if DEEP else []
# Functions of included files are analysed too, not only those of the file that includes them.
ANALYSE_INCLUDED = ["--extra-arg=-Xclang", "--extra-arg=-analyzer-opt-analyze-headers"] if DEEP else []


@cache
def digest(path):
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()


@cache
def checker():
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True, check=True).stdout
    return version + digest(ROOT / ".clang-tidy") + digest(Path(__file__)) + " ".join(DEEP_CHECKS)


class Source:
    """One entry of the compilation database."""

    def __init__(self, entry):
        words = shlex.split(entry["command"])
        if Path(words[0]).name == "ccache":
            words = words[1:]
        self.directory = entry["directory"]
        self.path = str((Path(self.directory) / entry["file"]).resolve())
        self.name = os.path.relpath(self.path, ROOT)
        # The flags are another compiler's, whose warnings clang doesn't all know.
        self.flags = [*self._without_outputs(words[1:], entry["file"]), "-Wno-unknown-warning-option"]
        self.compiler = words[0]

    # Nor precompiled headers, which are another compiler's too: each source has to include what it needs.
    @staticmethod
    def _without_outputs(words, file):
        kept, skip = [], False
        for word in words:
            if skip or word in ("-c", "-MD", "-Winvalid-pch", file):
                skip = False
            elif word in ("-o", "-MT", "-MF", "-include"):
                skip = True
            else:
                kept.append(word)
        return kept

    def key(self):
        """Names everything that the result depends on; None if the source doesn't even preprocess."""
        rule = subprocess.run([self.compiler, *self.flags, "-M", self.path], cwd=self.directory,
                              capture_output=True, text=True)
        if rule.returncode != 0:
            return None
        files = shlex.split(rule.stdout.replace("\\\n", " "))[1:]
        parts = [checker(), *[flag.replace(str(ROOT), "") for flag in self.flags]]
        parts += [digest(os.path.join(self.directory, file)) for file in files]
        return hashlib.sha256("\0".join(parts).encode()).hexdigest()


def tidy(source_path, flags, directory, *options):
    done = subprocess.run(["clang-tidy", "--quiet", *DEEP_CHECKS, *options, source_path, "--", *flags], cwd=directory,
                          capture_output=True, text=True)
    return done.returncode == 0 and "warning:" not in done.stdout, done.stdout + done.stderr


def check_together(batch, scratch):
    """True if the files of the batch hold as one."""
    if len(batch) == 1:
        return False
    # The name must be one that the header filter takes.
    with tempfile.NamedTemporaryFile("w", suffix=".cc", dir=scratch) as unit:
        unit.write("".join(f'#include "{source.path}"\n' for source in batch))
        unit.flush()
        return tidy(unit.name, batch[0].flags, batch[0].directory, *ANALYSE_INCLUDED)[0]


def check_batch(batch, scratch, remember):
    """Reports of the files that don't hold, by name."""
    if check_together(batch, scratch):
        for source in batch:
            remember(source)
        return {}
    reports = {}
    for source in batch:
        holds, report = tidy(source.path, source.flags, source.directory)
        if holds:
            remember(source)
        else:
            reports[source.name] = report
    return reports


def sources_of(build, wanted):
    entries = json.loads((Path(build) / "compile_commands.json").read_text())
    unique = {}
    for entry in entries:
        source = Source(entry)
        below = any(source.name == path or source.name.startswith(path.rstrip("/") + "/") for path in wanted)
        if not source.name.startswith("..") and source.name.endswith(".cc") and (below or not wanted):
            unique.setdefault(source.name, source)
    return [unique[name] for name in sorted(unique)]


def batches_of(sources):
    """Files of one folder that are compiled alike, at most BATCH at a time."""
    groups = {}
    for source in sources:
        groups.setdefault((str(Path(source.name).parent), *source.flags), []).append(source)
    return [group[i:i + BATCH] for group in groups.values() for i in range(0, len(group), BATCH)]


def main():
    build, *wanted = [word for word in sys.argv[1:] if word != "--deep"]
    default = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache") / "forgeyard-tidy"
    passed = Path(os.environ.get("TIDY_CACHE") or default)
    passed.mkdir(parents=True, exist_ok=True)
    jobs = len(os.sched_getaffinity(0))

    sources = sources_of(build, wanted)
    with ThreadPoolExecutor(jobs) as pool:
        keys = dict(zip((source.name for source in sources), pool.map(Source.key, sources)))

        def known(source):
            return keys[source.name] is not None and (passed / keys[source.name]).exists()

        def remember(source):
            if keys[source.name] is not None:
                (passed / keys[source.name]).touch()

        to_check = [source for source in sources if not known(source)]
        print(f"{len(sources)} files, {len(sources) - len(to_check)} of them known to pass", flush=True)
        failed = {}
        with tempfile.TemporaryDirectory(dir=build) as scratch:
            check = lambda batch: check_batch(batch, scratch, remember)
            for reports in pool.map(check, batches_of(to_check)):
                failed |= reports
                for name, report in reports.items():
                    print(f"--- {name}\n{report}", flush=True)
    if failed:
        print(f"{len(failed)} files don't pass: {' '.join(failed)}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
