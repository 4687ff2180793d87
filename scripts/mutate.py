#!/usr/bin/env python3
"""./dev mutate [--seed N] [--list] [COUNT] [PATH...]: breaks COUNT random lines of the product, one at a time, and runs
the tests concerned. A mutant that no test notices survives: the line can break without anybody knowing. COUNT is 20 if
not given; PATHs are folders or files of the product, all of it if not given.

All happens in a copy below build/mutate; the tree itself is only read, with its uncommitted changes. A mutant that
doesn't compile isn't counted and another one is drawn; one whose tests don't come to an end counts as caught. The first
run compiles everything. Exit status: 0, 1 if the tests fail without any mutant, 2 on wrong usage, 130 after Ctrl-C."""

import argparse
import json
import os
import random
import re
import secrets
import signal
import subprocess
import sys
import time
from collections import namedtuple
from pathlib import Path

from mutants import mutants_of
from mutation_tree import Timeout, Tree, adopt_orphans, end_children

ROOT = Path(__file__).resolve().parent.parent
PRODUCT = ["adapters", "engine", "hosts", "model", "platform", "plugin", "repository", "sourcecontrol", "spawner", "tools",
           "typelib", "ui", "workbench"]
INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)
# Of the time that a test program takes without mutants, what it may take with one.
SLOWER = 4
SLACK_S = 30

# How a mutant ended: "caught", "survived" or "uncompiled", and by what.
Result = namedtuple("Result", "outcome by")


class Usage(Exception):
    """What is asked for doesn't exist."""


class Progress:
    """What is going on, on a line that a terminal shows and a pipe never sees."""

    def __init__(self):
        self.terminal = sys.stdout.isatty()

    def show(self, text):
        if self.terminal:
            width = os.get_terminal_size().columns - 1
            print(f"\r\033[K{text[:width]}", end="", flush=True)

    def line(self, text):
        print(f"\r\033[K{text}" if self.terminal else text, flush=True)


class Concerned:
    """Which test programs a file of the product is part of, by ninja's graph: linked in, or started by the tests."""

    def __init__(self, tree, wanted):
        self.inputs = {}  # of a test program, the sources that go into it
        programs = tree.test_programs()
        if unknown := set(wanted or []) - set(programs):
            raise Usage(f"there is no test program '{min(unknown)}'; there are {', '.join(programs)}")
        for program in wanted or programs:
            names = tree.ninja_tool("inputs", f"bin/{program}").splitlines()
            self.inputs[program] = {tree.relative(name) for name in names if name.endswith(".cc")}
        self.includers = {}  # of a header, the files that name it
        for directory in [*PRODUCT, "tests"]:
            for path in (tree.place / directory).rglob("*.*"):
                if path.suffix in (".h", ".cc"):
                    for header in INCLUDE.findall(path.read_text()):
                        self.includers.setdefault(header, set()).add(str(path.relative_to(tree.place)))

    def _users(self, name):
        """The file itself and all that include it, directly or not."""
        found, new = set(), {name}
        while new:
            found |= new
            new = {user for header in new for user in self.includers.get(header, ())} - found
        return found

    def programs(self, name):
        """Those that are made of the least come first: they look closest, and build quickest."""
        users = self._users(name)
        found = [program for program, inputs in self.inputs.items() if inputs & users]
        return sorted(found, key=lambda program: (len(self.inputs[program]), program))


def product_files(tree, paths):
    wanted = [path.rstrip("/") for path in paths] or [part for part in PRODUCT if (tree.place / part).is_dir()]
    files = []
    for path in wanted:
        if path.split("/")[0] not in PRODUCT or not (tree.place / path).exists():
            raise Usage(f"'{path}' is no file or folder of the product")
        place = tree.place / path
        found = [place] if place.is_file() else [*place.rglob("*.cc"), *place.rglob("*.h")]
        files += [str(file.relative_to(tree.place)) for file in found]
    return sorted(set(files))


def drawn(tree, files, seed):
    """Mutants in random order: each line that has any is as likely as the others."""
    choice = random.Random(seed)
    lines = [line for name in files for line in mutants_of(name, tree.read(name))]
    choice.shuffle(lines)
    return [choice.choice(line) for line in lines]


class Measured:
    """How long each program's tests take without a mutant; measured once for each state of the tree."""

    def __init__(self, tree, digest):
        self.tree = tree
        self.record = tree.place / "build" / "measured.json"
        known = json.loads(self.record.read_text()) if self.record.exists() else {}
        self.times = known["times"] if known.get("digest") == digest else {}
        self.digest = digest

    def measure(self, program, show):
        """Builds and runs the program; ends the run where any of its tests fails."""
        show(f"building {program} without mutants")
        if output := self.tree.make(program):
            raise SystemExit(f"{output}\nmutate: {program} doesn't build without any mutant")
        show(f"running {program} without mutants")
        start = time.monotonic()
        if failed := self.tree.run_tests(program, 1800):
            raise SystemExit(f"mutate: {program} fails without any mutant: {' '.join(failed)}")
        self.times[program] = time.monotonic() - start
        self.record.write_text(json.dumps({"digest": self.digest, "times": self.times}))


class Run:
    """Tries mutants until enough have compiled."""

    def __init__(self, tree, concerned, measured, count, progress):
        self.tree = tree
        self.concerned = concerned
        self.measured = measured
        self.count = count
        self.progress = progress
        self.survivors = []
        self.caught = 0
        self.uncompiled = 0

    @property
    def done(self):
        return self.caught + len(self.survivors)

    def run(self, mutants):
        for mutant in mutants:
            if self.done == self.count:
                break
            self._try(mutant)

    def _try(self, mutant):
        text = self.tree.read(mutant.path)
        place = f"[{self.done + 1:{len(str(self.count))}}/{self.count}]"
        start = time.monotonic()
        try:
            result = self._result(mutant, text, lambda step: self.progress.show(f"{place} {step}: {mutant}"))
        finally:
            self.tree.write(mutant.path, text)
        if result.outcome == "uncompiled":
            self.uncompiled += 1
            return
        if result.outcome == "caught":
            self.caught += 1
        else:
            self.survivors.append((mutant, text.split("\n")[mutant.line].strip()))
        self.progress.line(f"{place} {result.outcome:8} {mutant}, {result.by} ({time.monotonic() - start:.0f} s)")

    def _result(self, mutant, text, show):
        programs = self.concerned.programs(mutant.path)
        for program in programs:
            if program not in self.measured.times:
                self.tree.write(mutant.path, text)
                self.measured.measure(program, show)
            self.tree.write(mutant.path, mutant.apply(text))
            if result := self._tried(program, show):
                return result
        return Result("survived", f"all of {len(programs)} test programs" if programs else "no test program")

    def _tried(self, program, show):
        """Builds and runs the program with the mutant that is in the tree; None if it notices nothing."""
        show(f"building {program}")
        try:
            output = self.tree.make(program)
        except subprocess.TimeoutExpired:
            return Result("caught", "by the build, which doesn't end")
        if output is not None:
            compiling = re.search(r"^FAILED: \S+\.o\b", output, re.MULTILINE) or "ld returned" in output
            return Result("uncompiled", "") if compiling else Result("caught", "by the build")
        show(f"running {program}")
        try:
            failed = self.tree.run_tests(program, self.measured.times[program] * SLOWER + SLACK_S)
        except Timeout:
            return Result("caught", f"by {program}, which doesn't end")
        return Result("caught", f"by {program}: {failed[0]}") if failed else None

    def summary(self):
        lines = []
        if self.survivors:
            lines += ["", "Survivors:"]
            for mutant, source in self.survivors:
                lines += [f"  {mutant}", f"      {source}"]
        share = f" ({100 * self.caught / self.done:.0f} %)" if self.done else ""
        lines += ["", f"{self.caught} of {self.done} mutants caught{share}; {self.uncompiled} more didn't compile"]
        return "\n".join(lines)


def arguments():
    parser = argparse.ArgumentParser(prog="./dev mutate", description=__doc__.split("\n\n")[0].split(": ", 1)[1],
                                     epilog=__doc__.split("\n\n")[1])
    parser.add_argument("--seed", type=int, help="draw the same mutants as the run that printed this number")
    parser.add_argument("--list", action="store_true", help="print the mutants that would be tried, and try none")
    parser.add_argument("--tests", metavar="PROGRAM[,...]", help="run these test programs alone, where they are concerned")
    parser.add_argument("words", nargs="*", metavar="[COUNT] [PATH...]", help="how many mutants, and where")
    options = parser.parse_args()
    numbers = [word for word in options.words[:1] if re.fullmatch(r"[1-9]\d*", word)]
    options.count = int(numbers[0]) if numbers else 20
    options.paths = options.words[len(numbers):]
    options.tests = options.tests.split(",") if options.tests else None
    options.seed = secrets.randbelow(10**6) if options.seed is None else options.seed
    return options


def main():
    options = arguments()
    progress = Progress()
    tree = Tree(ROOT, ROOT / "build" / "mutate")
    tree.place.mkdir(parents=True, exist_ok=True)
    digest = tree.update()
    files = product_files(tree, options.paths)
    mutants = drawn(tree, files, options.seed)
    progress.line(f"{len(mutants)} lines to break in {len(files)} files; seed {options.seed}")
    if options.list:
        print("\n".join(map(str, mutants[:options.count])))
        return 0

    adopt_orphans()
    progress.show("configuring the copy")
    tree.configure()
    run = Run(tree, Concerned(tree, options.tests), Measured(tree, digest), options.count, progress)
    try:
        run.run(mutants)
    finally:
        end_children()
        progress.line(run.summary())
    return 0


if __name__ == "__main__":
    # Ends like Ctrl-C, so that everything is put back.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    try:
        sys.exit(main())
    except Usage as wrong:
        print(f"mutate: {wrong}", file=sys.stderr)
        sys.exit(2)
    except KeyboardInterrupt:
        end_children()
        sys.exit(130)
