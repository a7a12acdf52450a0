"""Runs framekeeper-cli on a host for the modules of this collection. Paths are bytes here, as they are on disk."""

from __future__ import annotations

import json
import os
import select
import subprocess
import time
from urllib.parse import unquote_to_bytes

# What a command may print, in bytes; more is no answer.
LARGEST_ANSWER = 8 << 20
UNDERSTOOD_FORM = 1
DONE = 0
NO_SUCH_COPY = 3
# How results call a path with which all went well, and one whose change the file browser did not take up.
WELL = ("done", "not-shown")
# The status of a path at which nothing is left to do: something else has done it since the module looked.
SETTLED = "no-such-copy"

COMMAND_OPTION = {"type": "str", "default": "framekeeper-cli"}
PATHS_OPTION = {"type": "list", "elements": "str", "required": True}


class Problem(Exception):
    """Why there is no answer. `answer` is one of late, rubbish and failed, as in the files of framekeeper-cli report."""

    def __init__(self, answer, reason):
        super().__init__(reason)
        self.answer = answer
        self.reason = reason


class Answer:
    """What a command printed: its exit status, its JSON document (None if it printed nothing), and what it complained of."""

    def __init__(self, status, document, complaint):
        self.status = status
        self.document = document
        self.complaint = complaint

    def records(self, key):
        """The list of objects under the key; empty if nothing was printed."""
        if self.document is None:
            return []
        records = self.document.get(key)
        if not isinstance(records, list) or not all(isinstance(record, dict) for record in records):
            raise Problem("rubbish", f"framekeeper-cli printed no list of {key}")
        return records


def _kill(process):
    process.kill()
    process.wait()


def _collect(process, seconds):
    """The bytes of standard output and standard error."""
    end = None if seconds is None else time.monotonic() + seconds
    collected = {process.stdout: bytearray(), process.stderr: bytearray()}
    waiting = list(collected)
    while waiting:
        left = None if end is None else end - time.monotonic()
        ready = select.select(waiting, [], [], None if left is None else max(left, 0))[0]
        if not ready:
            _kill(process)
            raise Problem("late", f"framekeeper-cli gave no answer within {seconds} s")
        for stream in ready:
            piece = os.read(stream.fileno(), 1 << 16)
            collected[stream] += piece
            if not piece:
                waiting.remove(stream)
        if any(len(text) > LARGEST_ANSWER for text in collected.values()):
            _kill(process)
            raise Problem("rubbish", f"framekeeper-cli printed more than {LARGEST_ANSWER} bytes")
    try:
        process.wait(None if end is None else max(end - time.monotonic(), 0.1))
    except subprocess.TimeoutExpired:
        _kill(process)
        raise Problem("late", f"framekeeper-cli did not end within {seconds} s") from None
    return bytes(collected[process.stdout]), bytes(collected[process.stderr])


def _document(output):
    if not output.strip():
        return None
    try:
        document = json.loads(output.decode("utf-8"))
    except (ValueError, RecursionError) as error:
        raise Problem("rubbish", f"framekeeper-cli printed no JSON: {error}") from None
    if not isinstance(document, dict) or document.get("framekeeper") != UNDERSTOOD_FORM:
        raise Problem("rubbish", "framekeeper-cli printed JSON of another form than this collection knows")
    return document


def start(module, words):
    """Starts the command with these words, texts or bytes."""
    command = module.params["command"]
    program = module.get_bin_path(command) if "/" not in command else command
    if program is None:
        raise Problem("failed", f"{command} is not installed on this host, or not in the path")
    try:
        return subprocess.Popen([program, *words], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    except OSError as error:
        raise Problem("failed", f"{command} could not be started: {error.strerror}") from None


def run(module, words, seconds=None):
    """Runs the command for its JSON document, for so many seconds at most if they are given."""
    process = start(module, ["--json", *words])
    with process.stdout, process.stderr:
        output, errors = _collect(process, seconds)
    complaint = errors.decode("utf-8", "replace").strip()
    try:
        return Answer(process.returncode, _document(output), complaint)
    except Problem as problem:
        ending = f"; it ended with {process.returncode}" if process.returncode else ""
        raise Problem(problem.answer, problem.reason + ending + (f": {complaint}" if complaint else "")) from None


def path_of_uri(uri):
    if not isinstance(uri, str) or not uri.startswith("file:///"):
        raise Problem("rubbish", "framekeeper-cli told a path that is no URI of a file")
    return unquote_to_bytes(uri[len("file://"):])


def physical(path):
    """The path by which framekeeper-cli knows the item: its folder without symbolic links."""
    stripped = path.rstrip(b"/") or b"/"
    folder, name = os.path.split(stripped)
    return os.path.join(os.path.realpath(folder), name)


def given_paths(module):
    """The paths that the task names, each once."""
    paths = []
    for text in module.params["paths"]:
        path = path_of_uri(text) if text.startswith("file:///") else os.fsencode(os.path.expanduser(text))
        if not path.startswith(b"/"):
            raise Problem("failed", f"{text} is no absolute path")
        if physical(path) not in paths:
            paths.append(physical(path))
    return paths


def known_copies(module, paths):
    """What is known of the copies at these paths: records by path. A path without a copy is missing."""
    if not paths:
        return {}
    answer = run(module, ["info", "--", *paths])
    if answer.status not in (DONE, NO_SUCH_COPY):
        raise Problem("failed", answer.complaint or f"framekeeper-cli info ended with {answer.status}")
    records = {physical(path_of_uri(record.get("uri"))): record for record in answer.records("copies")}
    return {path: records[path] for path in paths if path in records}


def known_existing(module, paths):
    """The records of copies at these paths that are on the disk; of others a process or a login item may be left."""
    return {path: copy for path, copy in known_copies(module, paths).items() if copy.get("exists")}


def is_in_trash(path):
    """Whether the item, or a folder that holds it at any depth, was put into a trash: the desktop keeps a record beside the
    folder of what was trashed."""
    files, name = os.path.split(path)
    while name:
        if os.path.lexists(os.path.join(os.path.dirname(files), b"info", name + b".trashinfo")):
            return True
        files, name = os.path.split(files)
    return False


def text_of(path):
    return path.decode("utf-8", "backslashreplace")


def lines_of(paths):
    return "".join(text_of(path) + "\n" for path in paths)


def diff_of(what, before, after):
    return {"before_header": what, "after_header": what, "before": lines_of(before), "after": lines_of(after)}


def change(module, words, paths, result, well_without_change=()):
    """Runs a verb that changes something on these paths and ends the module. The diff is of the plan: what could not be
    done is told by the results. Statuses that are well without a change mean that the wanted state came by itself."""
    answer = run(module, [*words, "--", *paths])
    results = answer.records("results")
    result["results"] = results
    result["changed"] = any(each.get("status") in WELL for each in results)
    failed = [each for each in results if each.get("status") not in (*WELL, *well_without_change)]
    if failed or len(results) != len(paths):
        module.fail_json(msg=answer.complaint or f"framekeeper-cli {words[0]} ended with {answer.status}", **result)
    if answer.status != DONE and answer.complaint:
        module.warn(answer.complaint)
    module.exit_json(**result)


def carry_out(module, work):
    """Calls the function with the module and tells a problem as the module's failure."""
    try:
        work(module)
    except Problem as problem:
        module.fail_json(msg=problem.reason, answer=problem.answer)
