"""Runs a compiler-like command on many files, a few at a time, and remembers in the user's cache which passed, by content:
another checkout of the same sources need not look again."""

import concurrent.futures
import hashlib
import json
import os
import shlex
import subprocess
import sys
import time
from pathlib import Path

import tree

BUILD = tree.ROOT / "build" / "check"
REMEMBERED_FOR = 30 * 24 * 3600


def store_folder(kind):
    """Where passes of one kind are kept, made when missing; under the build where there is no home to write to."""
    home = os.environ.get("XDG_CACHE_HOME") or os.path.expanduser("~/.cache")
    for folder in (Path(home) / "framekeeper-checks" / kind, BUILD / kind):
        try:
            folder.mkdir(parents=True, exist_ok=True)
        except OSError:
            continue
        if os.access(folder, os.W_OK):
            return folder
    sys.exit(f"{BUILD} cannot be written")


def commands():
    """{file: the compiler's arguments} for every source that the build knows, the file and its output left out."""
    database = BUILD / "compile_commands.json"
    if not database.exists():
        sys.exit(f"{database} is missing; scripts/check makes it (cmake --preset check)")
    known = {}
    for entry in json.loads(database.read_text()):
        path = os.path.relpath(entry["file"], tree.ROOT)
        arguments = shlex.split(entry["command"])
        arguments = arguments[next(i for i, a in enumerate(arguments) if "clang" in os.path.basename(a)) + 1:]
        kept, skip = [], False
        for argument in arguments:
            if not skip and argument not in ("-c", "-o", entry["file"]):
                kept.append(argument)
            skip = argument == "-o"
        known[path] = kept
    return known


def contents_key(path, *more):
    """A digest of a file, of every header of the tree it reaches, and of whatever else decides the outcome."""
    digest = hashlib.sha256()
    for text in more:
        digest.update(str(text).replace(str(tree.ROOT), ".").encode() + b"\0")
    for name in sorted({path, *tree.reached(path)}):
        digest.update(name.encode() + b"\0" + (tree.ROOT / name).read_bytes() + b"\0")
    return digest.hexdigest()


def run_on_changed(kind, jobs):
    """jobs: {path: (key, arguments, standard input)}. Yields (path, output) of those that failed; passes are remembered."""
    store = store_folder(kind)
    for old in store.iterdir():
        if old.stat().st_mtime < time.time() - REMEMBERED_FOR:
            old.unlink(missing_ok=True)

    def run(path):
        key, arguments, text = jobs[path]
        done = subprocess.run(arguments, input=text, text=True, errors="replace", cwd=BUILD,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if done.returncode == 0:
            (store / key).touch()
            return None
        return done.stdout.replace(f"{tree.ROOT}/", "") or f"{path}:1: {arguments[0]} ended with {done.returncode}"

    changed = []
    for path, job in jobs.items():
        if (store / job[0]).exists():
            (store / job[0]).touch()
        else:
            changed.append(path)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for path, output in zip(changed, pool.map(run, changed)):
            if output is not None:
                yield path, output
