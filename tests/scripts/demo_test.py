#!/usr/bin/python3 -B
"""The sample home: what the program must list is there and is read as meant, and so is what it must not list."""

import os
import plistlib
import signal
import subprocess
import tempfile
import unittest
from pathlib import Path
from urllib.parse import unquote

SCRIPTS = Path(__file__).resolve().parents[2] / "scripts"
IDENTIFIER = "com.tidelark.mirrorframe"


def make(folder):
    return subprocess.run([SCRIPTS / "make-sample-home", folder], capture_output=True)


def version(bundle):
    data = (Path(bundle) / "Contents/Info.plist").read_bytes()
    if data.startswith(b"{"):  # old style, which plistlib does not read
        keys = dict(line.strip(" ;").split(" = ") for line in data.decode().splitlines() if " = " in line)
        keys = {key: value.strip('"') for key, value in keys.items()}
    else:
        keys = plistlib.loads(data)
    assert keys["CFBundleIdentifier"] == IDENTIFIER
    return f"{keys['CFBundleShortVersionString']} ({keys['CFBundleVersion']})"


class SampleHome(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.home = os.path.join(cls.folder.name, "home")
        done = make(cls.home)
        assert done.returncode == 0, done.stderr
        cls.copies = [os.fsdecode(line) for line in done.stdout.splitlines()]

    def test_has_copies_of_several_versions_in_every_place(self):
        self.assertGreaterEqual(len(self.copies), 6)
        for place in ("Applications", "Downloads", "Downloads/Old Versions", "media", ".local/share/Trash/files"):
            self.assertTrue(any(copy.startswith(f"{self.home}/{place}/") for copy in self.copies), place)
        versions = {version(copy) for copy in self.copies}
        self.assertLessEqual({"2.1 (210)", "1.9 (99)"}, versions)

    def test_has_a_copy_that_starts_at_login(self):
        entry = (Path(self.home) / ".config/autostart/mirror-frame.desktop").read_text()
        programs = [copy + "/Contents/Linux/Mirror Frame" for copy in self.copies]
        self.assertTrue(any(f'Exec="{program}"\n' in entry for program in programs), entry)

    def test_has_a_copy_among_the_places(self):
        lines = (Path(self.home) / ".config/gtk-3.0/bookmarks").read_text().splitlines()
        paths = [unquote(line.split(" ")[0].removeprefix("file://")) for line in lines]
        self.assertEqual(len([path for path in paths if path in self.copies]), 1, lines)
        self.assertTrue(all(os.path.isdir(path) for path in paths), lines)

    def test_has_property_lists_of_all_three_forms(self):
        starts = {(Path(copy) / "Contents/Info.plist").read_bytes()[:6] for copy in self.copies}
        self.assertEqual(starts, {b"<?xml ", b"bplist", b"{\n    "})

    def test_prints_every_bundle_that_counts_and_no_other(self):
        found = []
        for folder, folders, _ in os.walk(self.home):
            for name in [f for f in folders if f.endswith(".app")]:
                folders.remove(name)  # a package is not looked into
                path = os.path.join(folder, name)
                info = Path(path) / "Contents/Info.plist"
                counts = name == "Mirror Frame.app" and not os.path.islink(path) and info.exists()
                if counts and IDENTIFIER.encode() in info.read_bytes():
                    found.append(path)
        self.assertEqual(sorted(found), sorted(self.copies))

    def test_has_a_look_alike_of_another_identifier_and_a_name_that_is_no_utf8(self):
        with open(f"{self.home}/Projects/Mirror Frame.app/Contents/Info.plist", "rb") as f:
            self.assertNotEqual(plistlib.load(f)["CFBundleIdentifier"], IDENTIFIER)
        self.assertIn(b"Mirror Frame r\xe9pondeur.app", os.listdir(os.fsencode(self.home) + b"/Downloads"))

    def start(self, place):
        program = f"{self.home}/{place}/Mirror Frame.app/Contents/Linux/Mirror Frame"
        copy = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.assertIn(b"Mirror Frame", copy.stdout.readline())
        return copy

    def test_has_programs_that_run_until_they_are_asked_to_quit(self):
        copy = self.start("Applications")
        copy.terminate()
        self.assertEqual(copy.wait(), -signal.SIGTERM)
        copy.communicate()

    def test_has_a_program_that_refuses_to_quit_and_ends_with_its_input(self):
        copy = self.start("Downloads/Old Versions/1.9")
        copy.terminate()
        copy.communicate()
        self.assertGreaterEqual(copy.returncode, 0)

    def test_says_where_the_trashed_copy_came_from(self):
        info = Path(self.home, ".local/share/Trash/info/Mirror Frame.app.trashinfo").read_text()
        self.assertIn("/Downloads/Mirror%20Frame.app\n", info)
        self.assertTrue(info.startswith("[Trash Info]\nPath=/"))

    def test_writes_nothing_into_a_folder_that_holds_something(self):
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "mine").touch()
            done = make(folder)
            self.assertNotEqual(done.returncode, 0)
            self.assertIn(b"not empty", done.stderr)
            self.assertEqual(os.listdir(folder), ["mine"])


if __name__ == "__main__":
    unittest.main()
