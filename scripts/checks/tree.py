"""What the checks share: the files of the tree, C++ text without its comments, includes, and how a finding is printed."""

import functools
import os
import re
import sys
from pathlib import Path

ROOT = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).parents[2]).resolve()

LIBRARY = ("coreutils", "pathutils", "scripting")
PROGRAMS = ("app", "command")
# The rooms that see platform through its interfaces alone.
UPPER_ROOMS = PROGRAMS + LIBRARY
CODE = UPPER_ROOMS + ("platform", "tests", "benchmarks", "fuzz")

_COMMENT = r"//(?:\\\n|[^\n])*|/\*.*?\*/"
_TEXT = (r'(?:u8|[uUL])?R"(?P<mark>[^\s()\\]{0,16})\(.*?\)(?P=mark)"'
         r'|"(?:\\.|[^"\\\n])*"'
         r"|(?:\b(?:u8|[uUL])|(?<![0-9A-Za-z_]))'(?:\\.|[^'\\\n])+'")
_COMMENT_OR_TEXT = re.compile(f"(?P<comment>{_COMMENT})|{_TEXT}", re.S)
_INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"\n]+)"|<([^>\n]+)>)', re.M)

_findings = 0


def finding(path, line, what, mend=""):
    """Prints one finding; `finish` then exits with 1."""
    global _findings
    _findings += 1
    print(f"{path}:{line}: {what}" + (f"\n    {mend}" if mend else ""))


def looked_at(count, what):
    """Prints how many things a check looked at. 0 is a finding: a check that looks at nothing finds nothing."""
    print(f"{count} {what}")
    if not count:
        finding(f"scripts/checks/{Path(sys.argv[0]).name}", 1, f"looked at no {what}")


def finish():
    sys.exit(1 if _findings else 0)


def _blank(text):
    return re.sub(r"[^\n]", " ", text)


def without_comments(text):
    """The same text, line for line, its comments blank."""
    return _COMMENT_OR_TEXT.sub(lambda m: _blank(m[0]) if m["comment"] else m[0], text)


def code_only(text):
    """The same text, line for line, its comments and its string and character literals blank."""
    return _COMMENT_OR_TEXT.sub(lambda m: _blank(m[0]), text)


@functools.lru_cache(maxsize=None)
def read(path):
    return (ROOT / path).read_text(encoding="utf-8", errors="replace")


@functools.lru_cache(maxsize=None)
def code(path):
    return code_only(read(path))


@functools.lru_cache(maxsize=None)
def files():
    """Every file of the tree, relative to ROOT, without what is built."""
    found = []
    for folder, folders, names in os.walk(ROOT):
        folders[:] = sorted(f for f in folders if f not in (".git", "build", "__pycache__"))
        # In a second worktree .git is a file.
        found += [os.path.relpath(os.path.join(folder, name), ROOT) for name in names if name != ".git"]
    return tuple(sorted(found))


def sources(*rooms):
    """The .h and .cpp files of these folders; of all that hold code when none is named."""
    wanted = tuple(f"{room}/" for room in rooms or CODE)
    return [f for f in files() if f.startswith(wanted) and f.endswith((".h", ".cpp"))]


def line_of(text, offset):
    return text.count("\n", 0, offset) + 1


@functools.lru_cache(maxsize=None)
def includes(path):
    """(line, name, whether in quotes) of every #include of a file."""
    text = without_comments(read(path))
    return tuple((line_of(text, m.start()), m[1] or m[2], m[1] is not None) for m in _INCLUDE.finditer(text))


@functools.lru_cache(maxsize=None)
def reached(path):
    """The headers of the tree that a file includes, also through others: {header: the file that includes it}."""
    found, waiting = {}, [path]
    while waiting:
        at = waiting.pop()
        for _, name, quoted in includes(at):
            if quoted and name not in found and (ROOT / name).is_file():
                found[name] = at
                waiting.append(name)
    return found


def room_of(path):
    """app, coreutils, …; of platform its room: platform/foundation."""
    parts = path.split("/")
    return "/".join(parts[:2]) if parts[0] == "platform" else parts[0]
