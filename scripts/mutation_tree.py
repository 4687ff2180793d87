"""The copy of the project that mutants are built and tested in. It is kept between runs, so that only what has changed
is built again; the tree that it is copied from is only read."""

import ctypes
import hashlib
import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

PR_SET_CHILD_SUBREAPER = 36
GIB = 1 << 30
BUILD_LIMIT_S = 1800


class Timeout(Exception):
    """A program ran longer than it may."""


def adopt_orphans():
    """From here on, processes whose parents have ended become children of this one, which can end them."""
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def descendants(pid):
    found = []
    for task in Path(f"/proc/{pid}/task").glob("*/children"):
        try:
            children = [int(word) for word in task.read_text().split()]
        except OSError:
            continue
        for child in children:
            found += [child, *descendants(child)]
    return found


def end_children():
    """Ends and reaps every process that this one has started, directly or not."""
    while left := descendants(os.getpid()):
        for pid in left:
            try:
                os.kill(pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
        try:
            while os.waitpid(-1, os.WNOHANG)[0]:
                pass
        except ChildProcessError:
            return
        time.sleep(0.01)


def bounded():
    """Limits of a tested program: a mutant may ask for memory or write files without end."""
    resource.setrlimit(resource.RLIMIT_AS, (8 * GIB, 8 * GIB))
    resource.setrlimit(resource.RLIMIT_FSIZE, (GIB, GIB))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Tree:
    """A copy of the project below `place`, with its build directory."""

    def __init__(self, origin, place):
        self.origin = origin
        self.place = place
        self.build = place / "build" / "release"
        self.jobs = len(os.sched_getaffinity(0))
        self.environment = dict(os.environ, CCACHE_BASEDIR=str(place), CCACHE_NOHASHDIR="1",
                                CCACHE_SLOPPINESS="pch_defines,time_macros")

    # The copy

    def update(self):
        """Makes the copy equal to the origin, uncommitted changes included. Returns a digest of all contents."""
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                                cwd=self.origin, capture_output=True, text=True, check=True).stdout
        wanted = sorted({name for name in listed.split("\0") if name and os.path.lexists(self.origin / name)})
        digest = hashlib.sha256()
        for name in wanted:
            digest.update(name.encode() + b"\0" + self._copy(name) + b"\0")
        self._remove_all_but(set(wanted))
        return digest.hexdigest()

    def _copy(self, name):
        source, target = self.origin / name, self.place / name
        if source.is_symlink():
            target.parent.mkdir(parents=True, exist_ok=True)
            if not target.is_symlink() or os.readlink(target) != os.readlink(source):
                target.unlink(missing_ok=True)
                target.symlink_to(os.readlink(source))
            return os.readlink(source).encode()
        content = source.read_bytes()
        # Contents decide, not times: what an interrupted run has left mutated is put right, and rebuilt.
        if not target.is_file() or target.read_bytes() != content:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)
        shutil.copymode(source, target)
        return content

    def _remove_all_but(self, wanted):
        for directory, subdirectories, files in os.walk(self.place):
            if Path(directory) == self.place and "build" in subdirectories:
                subdirectories.remove("build")
            for name in files:
                path = Path(directory) / name
                if str(path.relative_to(self.place)) not in wanted:
                    path.unlink()

    def read(self, name):
        return (self.place / name).read_text()

    def write(self, name, text):
        """Leaves a file that holds the text already untouched, so that it isn't built again."""
        if self.read(name) != text:
            (self.place / name).write_text(text)

    def relative(self, name):
        """A path of ninja's as one below the project's root."""
        return os.path.relpath(os.path.join(self.build, name), self.place)

    # Building

    def configure(self):
        self.build.mkdir(parents=True, exist_ok=True)
        done = subprocess.run(["cmake", "-S", str(self.place), "-B", str(self.build), "-G", "Ninja",
                               "-DCMAKE_BUILD_TYPE=Release"], env=self.environment, capture_output=True, text=True)
        if done.returncode != 0:
            raise SystemExit(f"{done.stdout}{done.stderr}\nmutate: the copy could not be configured")

    def make(self, *targets):
        """Builds the targets. Returns None, or what ninja wrote when it failed."""
        done = subprocess.run(["ninja", "-C", str(self.build), "-j", str(self.jobs), *targets], env=self.environment,
                              capture_output=True, text=True, timeout=BUILD_LIMIT_S)
        return None if done.returncode == 0 else done.stdout

    def ninja_tool(self, *words):
        return subprocess.run(["ninja", "-C", str(self.build), "-t", *words], capture_output=True, text=True,
                              check=True).stdout

    # Tests

    def test_programs(self):
        # A build directory that is kept may have lists of programs that are gone.
        listed = {re.sub(r"\[\d+\]_include\.cmake$", "", path.name)
                  for path in (self.build / "tests").rglob("*_include.cmake")}
        return sorted(listed & set(re.findall(r"^bin/(\S+):", self.ninja_tool("targets", "all"), re.MULTILINE)))

    def run_tests(self, program, limit_s):
        """Runs the program's cases, split over all cores, until the first fails. Returns the names of those that
        failed, ["(crash)"] where a program ended without naming one; raises Timeout. Each run has a home, a
        registry and temporary files of its own, removed with what it leaves."""
        with tempfile.TemporaryDirectory(prefix="mutant-", ignore_cleanup_errors=True) as scratch:
            shards = [self._start_shard(program, index, Path(scratch)) for index in range(self.jobs)]
            try:
                return self._await(shards, time.monotonic() + limit_s)
            finally:
                end_children()

    def _start_shard(self, program, index, scratch):
        home = scratch / str(index)
        for name in ("config", "data", "runtime", "tmp"):
            (home / name).mkdir(parents=True, mode=0o700)
        environment = dict(self.environment, GTEST_TOTAL_SHARDS=str(self.jobs), GTEST_SHARD_INDEX=str(index),
                           HOME=str(home), TMPDIR=str(home / "tmp"),
                           FORGEYARD_REGISTRY=str(home / "config" / "registry"),
                           FORGEYARD_WORKSPACE=str(home / "data" / "workspace"),
                           FORGEYARD_RUNTIME_DIR=str(home / "runtime"), XDG_RUNTIME_DIR=str(home / "runtime"),
                           XDG_CONFIG_HOME=str(home / "config"), XDG_DATA_HOME=str(home / "data"),
                           XDG_STATE_HOME=str(home / "data"))
        output = open(home / "output", "w+b")
        child = subprocess.Popen([str(self.build / "bin" / program), "--gtest_brief=1", "--gtest_fail_fast"],
                                 cwd=home, env=environment, stdin=subprocess.DEVNULL, stdout=output,
                                 stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=bounded)
        return child, output

    @staticmethod
    def _await(shards, deadline):
        waiting = list(shards)
        while waiting:
            if time.monotonic() > deadline:
                raise Timeout
            for child, output in list(waiting):
                if child.poll() is None:
                    continue
                waiting.remove((child, output))
                if child.returncode != 0:
                    output.seek(0)
                    text = output.read().decode(errors="replace")
                    failed = re.findall(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", text, re.MULTILINE)
                    return list(dict.fromkeys(failed)) or ["(crash)"]
            time.sleep(0.02)
        return []
