#!/usr/bin/python3 -B
"""The Ansible collection on three hosts: facts, actions, what check mode says, that a second run changes nothing, and the
report of hosts that answer, answer rubbish, late or never."""

import ast
import csv
import json
import os
import plistlib
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
import hosts as three_hosts  # noqa: E402

REAL = Path(__file__).resolve().parents[2]
COMMAND = os.environ.get("FRAMEKEEPER_CLI")
MODULES = sorted(path.stem for path in (REAL / "packaging/ansible/plugins/modules").glob("*.py"))
FIRST, SECOND, THIRD = three_hosts.ADDRESSES
# A host's search finds whatever runs on this machine, so what is done to a version must be done to one that nobody has.
OLD_VERSION = "0.0.7-collection-test"


class Collection(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if COMMAND is None:
            raise unittest.SkipTest("FRAMEKEEPER_CLI does not name the command")
        if shutil.which("ansible-galaxy") is None:
            raise unittest.SkipTest("Ansible is not installed (ansible-core)")
        cls.folder = tempfile.TemporaryDirectory(prefix="fk-hosts.")
        cls.addClassCleanup(cls.folder.cleanup)
        cls.path = Path(cls.folder.name)
        cls.environment = {
            "PATH": f"{Path(COMMAND).parent}:{os.environ['PATH']}", "HOME": cls.folder.name, "PWD": cls.folder.name, "LC_ALL": "C.UTF-8",
            "ANSIBLE_HOME": str(cls.path / "ansible"), "ANSIBLE_COLLECTIONS_PATH": str(cls.path / "collections"),
            "ANSIBLE_SSH_CONTROL_PATH_DIR": str(cls.path / "control"), "ANSIBLE_NOCOLOR": "1", "ANSIBLE_PIPELINING": "1",
            "ANSIBLE_SSH_ARGS": "-o ControlMaster=no",
        }
        cls.command("ansible-galaxy", "collection", "build", REAL / "packaging/ansible", "--output-path", cls.path)
        archive = next(cls.path.glob("framekeeper-copies-*.tar.gz"))
        cls.command("ansible-galaxy", "collection", "install", archive, "--offline", "-p", cls.path / "collections")
        try:
            cls.hosts = three_hosts.Hosts(cls.path, Path(COMMAND))
        except three_hosts.Missing as missing:
            raise unittest.SkipTest(str(missing)) from None
        cls.addClassCleanup(cls.hosts.stop)

    @classmethod
    def command(cls, *words, succeeds=True):
        done = subprocess.run([str(word) for word in words], env=cls.environment, text=True, errors="replace",
                              cwd=cls.folder.name, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if succeeds and done.returncode:
            raise AssertionError(f"{words[0]} ended with {done.returncode}: {done.stdout}")
        return done.stdout

    def setUp(self):
        self.homes = {host.address: host.home for host in self.hosts.hosts}
        for home in self.homes.values():
            shutil.rmtree(home)
            home.mkdir()

    def copy_at(self, address, name="a", version="2.1"):
        path = self.homes[address] / name / "Mirror Frame.app"
        three_hosts.make_copy(path, version)
        return path

    def results_of(self, address, *tasks):
        """The results of tasks on one host, one after the other in one run. A task is a module, its arguments, and whether it
        is only to say what it would do."""
        folder = Path(tempfile.mkdtemp(dir=self.path))
        steps = [{"name": f"Step {index}", f"framekeeper.copies.{module}": arguments, "register": f"result_{index}",
                  "check_mode": only_plans, "ignore_errors": True} for index, (module, arguments, only_plans) in enumerate(tasks)]
        registered = ", ".join(f"result_{index}" for index in range(len(tasks)))
        write = {"name": "Write down the results", "delegate_to": "localhost", "ansible.builtin.copy": {
            "content": "{{ [" + registered + "] | to_json }}", "dest": str(folder / "results"), "mode": "0644"}}
        play = [{"name": "Tasks", "hosts": address, "gather_facts": False, "tasks": [*steps, write]}]
        (folder / "play.json").write_text(json.dumps(play))
        said = self.command("ansible-playbook", "-i", self.hosts.inventory, folder / "play.json", succeeds=False)
        self.assertTrue((folder / "results").is_file(), said)
        return json.loads((folder / "results").read_text())

    def result_of(self, module, address, arguments=None):
        return self.results_of(address, (module, arguments or {}, False))[0]

    def facts(self, address):
        """What the host tells. Processes are the machine's, so copies of others that run besides are left out."""
        result = self.result_of("facts", address)
        self.assertEqual(result.get("answer"), "complete", result)
        facts = result["ansible_facts"]["framekeeper"]
        home = self.homes[address].as_uri() + "/"
        return {key: [copy for copy in value if copy["uri"].startswith(home)] if isinstance(value, list) else value
                for key, value in facts.items()}

    def assert_plans_then_does_then_rests(self, module, address, arguments):
        """Check mode announces the change, twice since it makes none; then the first run makes it and the second makes none."""
        planned, again, done, rests = self.results_of(
            address, *((module, arguments, only_plans) for only_plans in (True, True, False, False)))
        self.assertEqual([each.get("changed") for each in (planned, again, done, rests)], [True, True, True, False],
                         (planned, again, done, rests))
        self.assertFalse(done["failed"] or rests["failed"], (done, rests))
        self.assertNotEqual(planned["diff"]["before"], planned["diff"]["after"])
        self.assertEqual(done["diff"], planned["diff"])
        self.assertEqual(rests["diff"]["before"], rests["diff"]["after"])
        return done

    def test_documents_every_module(self):
        self.assertGreater(len(MODULES), 5)
        for name in MODULES:
            self.assertIn(f"framekeeper.copies.{name}".upper(), self.command("ansible-doc", f"framekeeper.copies.{name}").upper())
            source = (REAL / f"packaging/ansible/plugins/modules/{name}.py").read_text()
            # What the hosts' oldest Python understands.
            ast.parse(source, feature_version=(3, 9))
        self.assertIn("ANSWER", self.command("ansible-doc", "-t", "filter", "framekeeper.copies.answer").upper())

    def test_tells_facts_of_each_host(self):
        for index, address in enumerate(three_hosts.ADDRESSES):
            for number in range(index):
                self.copy_at(address, f"a{number}", f"1.{number}")
        self.assertEqual([len(self.facts(address)["copies"]) for address in three_hosts.ADDRESSES], [0, 1, 2])
        versions = self.result_of("facts", THIRD)["ansible_facts"]["framekeeper"]["versions"]
        self.assertEqual([versions.get("1.0 (99)"), versions.get("1.1 (99)")], [1, 1])

    def test_moves_copies_to_the_trash_and_back(self):
        copy = self.copy_at(FIRST, "ä b")
        done = self.assert_plans_then_does_then_rests("trash", FIRST, {"paths": [str(copy)]})
        self.assertFalse(copy.exists())
        self.assertTrue(Path(done["results"][0]["newPath"]).is_relative_to(self.homes[FIRST]), done)
        self.assert_plans_then_does_then_rests("restore", FIRST, {"paths": ["~/ä b/Mirror Frame.app"]})
        self.assertTrue((copy / "Contents/Info.plist").is_file())

    def test_reaches_every_byte_of_a_path_by_its_uri(self):
        copy = Path(os.fsdecode(os.fsencode(self.homes[SECOND]) + b"/\xff\n/Mirror Frame.app"))
        three_hosts.make_copy(copy, "1")
        uri = self.facts(SECOND)["copies"][0]["uri"]
        self.assertIn("%FF%0A", uri)
        self.assert_plans_then_does_then_rests("trash", SECOND, {"paths": [uri]})
        self.assertFalse(copy.exists())

    def test_leaves_copies_in_the_trash_where_they_are(self):
        self.result_of("trash", FIRST, {"paths": [str(self.copy_at(FIRST))]})
        uri = self.facts(FIRST)["copies"][0]["uri"]
        self.assertIs(self.result_of("trash", FIRST, {"paths": [uri]}).get("changed"), False)
        self.assertIn("lies in the trash", self.result_of("restore", FIRST, {"paths": [uri]}).get("msg", ""))

    def test_leaves_copies_in_trashed_folders_where_they_are(self):
        trash = self.homes[FIRST] / ".local/share/Trash"
        copy = trash / "files/ä/b/Mirror Frame.app"
        three_hosts.make_copy(copy, "1")
        (trash / "info").mkdir()
        (trash / "info/ä.trashinfo").write_text("[Trash Info]\nPath=/nowhere/%C3%A4\nDeletionDate=2026-01-02T03:04:05\n")
        trashed = self.result_of("trash", FIRST, {"paths": [str(copy)]})
        self.assertEqual([trashed.get("changed"), trashed.get("failed")], [False, False], trashed)
        self.assertTrue(copy.exists())
        self.assertIn("lies in the trash", self.result_of("restore", FIRST, {"paths": [str(copy)]}).get("msg", ""))

    def test_is_content_when_the_wanted_state_came_by_itself(self):
        copy = self.copy_at(FIRST)
        program = subprocess.Popen([copy / "Contents/Linux/Mirror Frame", "infinity"])
        self.addCleanup(program.kill)
        threading.Thread(target=program.wait, daemon=True).start()
        self.result_of("login", FIRST, {"paths": [str(copy)]})
        # Somebody else does it right before the module does.
        command = str(self.stand_in("overtaken", """case "$2 $3" in
            "quit --" | "trash --" | "login remove") framekeeper-cli "$@" > /dev/null || exit ;;
            esac
            exec framekeeper-cli "$@\""""))
        arguments = {"paths": [str(copy)], "command": command}
        for result in self.results_of(FIRST, ("quit", arguments, False), ("login", {**arguments, "state": "absent"}, False),
                                      ("trash", arguments, False)):
            self.assertEqual([each["status"] for each in result.get("results", [])], ["no-such-copy"], result)
            self.assertEqual([result.get("changed"), result.get("failed")], [False, False], result)
        self.assertIsNotNone(program.wait())
        self.assertFalse(copy.exists())

    def test_fails_for_what_is_no_copy_and_what_never_was(self):
        item = self.homes[FIRST] / "Mirror Frame.app"
        item.mkdir()
        for module in ("trash", "restore"):
            result = self.result_of(module, FIRST, {"paths": [str(item)]})
            self.assertIn("is no copy of Mirror Frame", result.get("msg", ""), result)
        self.assertTrue(item.is_dir())
        missing = self.result_of("restore", FIRST, {"paths": [str(self.homes[FIRST] / "b/Mirror Frame.app")]})
        self.assertIs(missing.get("failed"), True, missing)
        self.assertIn("no copy of Mirror Frame is in the trash", missing["msg"])
        self.assertIn("no absolute path", self.result_of("trash", FIRST, {"paths": ["a/Mirror Frame.app"]})["msg"])

    def test_sets_what_starts_at_login(self):
        first, second = self.copy_at(THIRD, "a"), self.copy_at(THIRD, "b")
        self.assert_plans_then_does_then_rests("login", THIRD, {"paths": [str(first)]})
        self.assert_plans_then_does_then_rests("login", THIRD, {"paths": [str(second)]})
        self.assertEqual([copy["path"] for copy in self.facts(THIRD)["login_items"]], [str(second)])
        self.assert_plans_then_does_then_rests("login", THIRD, {"paths": [str(first), str(second)], "state": "absent"})
        self.assertEqual(self.facts(THIRD)["login_items"], [])

    def test_asks_running_copies_to_quit(self):
        copy = self.copy_at(SECOND)
        program = subprocess.Popen([copy / "Contents/Linux/Mirror Frame", "infinity"])
        self.addCleanup(program.kill)
        # What has ended must not stay in the list of processes.
        threading.Thread(target=program.wait, daemon=True).start()
        self.assertEqual([each["path"] for each in self.facts(SECOND)["running"]], [str(copy)])
        self.assert_plans_then_does_then_rests("quit", SECOND, {"paths": [str(copy)]})
        self.assertIsNotNone(program.wait())

    def test_says_that_the_command_is_missing_or_answers_rubbish(self):
        missing = self.result_of("facts", FIRST, {"command": "framekeeper-cli-that-is-not-there"})
        self.assertEqual(missing.get("answer"), "failed", missing)
        self.assertIn("is not installed on this host", missing["msg"])
        rubbish = self.result_of("trash", FIRST, {"command": "/bin/echo", "paths": ["/a"]})
        self.assertEqual(rubbish.get("answer"), "rubbish", rubbish)
        self.assertIn("printed no JSON", rubbish["msg"])

    def assert_only_homes_have(self, version):
        for address, home in self.homes.items():
            result = self.result_of("facts", address)
            self.assertEqual(result.get("answer"), "complete", result)
            foreign = [copy["path"] for copy in result["ansible_facts"]["framekeeper"]["copies"]
                       if not copy["uri"].startswith(home.as_uri() + "/") and version in (copy["versionString"] or "")]
            self.assertEqual(foreign, [], "copies that are none of this test's would be cleaned up")

    def test_cleans_up_and_a_second_time_changes_nothing(self):
        old, new = self.copy_at(FIRST, "a", OLD_VERSION), self.copy_at(FIRST, "b", "2.1")
        # Another version that begins alike, and a copy that tells none.
        longer, without = self.copy_at(FIRST, "c", f"{OLD_VERSION}.1"), self.copy_at(FIRST, "d")
        (without / "Contents/Info.plist").write_bytes(plistlib.dumps(
            {"CFBundleIdentifier": "com.tidelark.mirrorframe", "CFBundleExecutable": "Mirror Frame"}))
        self.assert_only_homes_have(OLD_VERSION)
        words = ("ansible-playbook", "framekeeper.copies.clean_up", "-i", self.hosts.inventory, "-e",
                 f"framekeeper_version={OLD_VERSION}")
        other_build = (*words[:-1], json.dumps({"framekeeper_version": f"{OLD_VERSION} (98)"}))
        self.assertRegex(self.command(*other_build), rf"{FIRST} +: ok=4 +changed=0 ")
        self.assertRegex(self.command(*words, "--check"), rf"{FIRST} +: ok=4 +changed=1 ")
        self.assertTrue(old.exists())
        self.assertRegex(self.command(*words), rf"{FIRST} +: ok=4 +changed=1 ")
        self.assertFalse(old.exists())
        self.assertTrue(new.exists() and longer.exists() and without.exists())
        self.assertNotRegex(self.command(*words), r"changed=[1-9]")

    def stand_in(self, name, text):
        path = self.path / name
        path.write_text(f"#!/bin/sh\n{text}\n")
        path.chmod(0o755)
        return path

    def test_reports_hosts_that_answer_rubbish_late_or_never(self):
        copy = self.copy_at(FIRST, "<a>", "1.4")
        rubbish = self.stand_in("rubbish", "echo 'Welcome to room 7!'")
        late = self.stand_in("late", "exec sleep infinity")
        inventory = self.path / "report-inventory"
        inventory.write_text(self.hosts.inventory.read_text()
                             .replace(f"{SECOND} ", f"{SECOND} framekeeper_command={rubbish} ")
                             .replace(f"{THIRD} ", f"{THIRD} framekeeper_command={late} framekeeper_timeout=1 ")
                             .replace("[rooms]\n", "[rooms]\n127.0.0.5 ansible_port=1\n"))
        # One path is told from the folder in which the playbook is called.
        page, rows = self.path / "page.html", self.path / "rows.csv"
        said = self.command("ansible-playbook", "framekeeper.copies.report", "-i", inventory, "-e",
                            f"framekeeper_page={page} framekeeper_rows=rows.csv")
        self.assertTrue((self.path / "framekeeper-facts" / f"{FIRST}.json").is_file(), said)
        with rows.open(newline="", encoding="utf-8") as file:
            answers = {row["host"]: row for row in csv.DictReader(file) if row["host"] != FIRST or row["path"] == str(copy)}
        self.assertEqual({host: row["answer"] for host, row in answers.items()},
                         {FIRST: "complete", SECOND: "rubbish", THIRD: "late", "127.0.0.5": "never"}, said)
        self.assertEqual(answers[FIRST]["path"], str(copy))
        self.assertRegex(answers[FIRST]["gathered"], r"^\d{4}-\d\d-\d\dT")
        self.assertIn("printed no JSON", answers[SECOND]["reason"])
        self.assertIn("within 1 s", answers[THIRD]["reason"])
        self.assertIn("&lt;a&gt;/Mirror Frame.app", page.read_text())


if __name__ == "__main__":
    unittest.main()
