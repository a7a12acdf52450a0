#!/usr/bin/python3 -B
"""scripts/packages.sh, with stand-ins for Debian's tools that write down how they were called."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPTS = Path(__file__).resolve().parents[2] / "scripts"

DPKG_QUERY = """#!/bin/sh
echo dpkg-query >>"$CALLS"
cat "$INSTALLED"
exit 1
"""
RECORD = """#!/bin/sh
echo "$(basename "$0") $*" >>"$CALLS"
"""


class Packages(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = Path(self.folder.name)
        (self.path / "list").write_text("# Why each is needed.\ncmake   # the build\ng++\n\nlibicu-dev\n")
        self.calls = self.path / "calls"
        self.calls.touch()

    def tool(self, name, text):
        (self.path / name).write_text(text)
        (self.path / name).chmod(0o755)

    def need(self, installed, as_root=True, **environment):
        (self.path / "installed").write_text(installed)
        self.tool("dpkg-query", DPKG_QUERY)
        self.tool("apt-get", RECORD)
        self.tool("id", f"#!/bin/sh\necho {0 if as_root else 1000}\n")
        return subprocess.run(
            ["bash", "-eu", "-o", "pipefail", "-c", f". '{SCRIPTS}/packages.sh'; need_packages '{self.path}/list'; echo went on"],
            env={"PATH": f"{self.path}:{os.environ['PATH']}", "CALLS": str(self.calls), "INSTALLED": str(self.path / "installed"), **environment},
            text=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def test_asks_once_and_installs_nothing_when_all_is_there(self):
        done = self.need("cmake installed\ng++ installed\nlibicu-dev:amd64 installed\n")
        self.assertEqual(done.stdout, "went on\n")
        self.assertEqual(self.calls.read_text(), "dpkg-query\n")

    def test_names_and_installs_what_is_missing_and_only_that(self):
        done = self.need("cmake installed\n")
        self.assertIn("Needed and not installed: g++ libicu-dev", done.stdout)
        self.assertIn("went on", done.stdout)
        calls = self.calls.read_text().splitlines()
        self.assertEqual(calls[1], "apt-get update -q")
        self.assertTrue(calls[2].startswith("apt-get install ") and calls[2].endswith(" g++ libicu-dev"), calls)

    def test_takes_a_removed_package_for_missing(self):
        done = self.need("cmake installed\ng++ config-files\nlibicu-dev:amd64 installed\n")
        self.assertIn("Needed and not installed: g++\n", done.stdout)

    def test_stops_when_the_installation_fails(self):
        (self.path / "list").write_text("cmake\n")
        self.tool("sudo", "#!/bin/sh\necho 'sudo: a password is required' >&2\nexit 1\n")
        done = self.need("", as_root=False)
        self.assertNotEqual(done.returncode, 0)
        self.assertNotIn("went on", done.stdout)

    def test_becomes_root_by_sudo_without_waiting_for_a_password_where_nobody_is(self):
        self.tool("sudo", RECORD)
        self.need("", as_root=False)
        self.assertIn("sudo -n apt-get update -q\n", self.calls.read_text())


if __name__ == "__main__":
    unittest.main()
