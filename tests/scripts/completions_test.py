#!/usr/bin/python3 -B
"""The completions of the three shells, the manual page and the usage text know every verb of the command line."""

import re
import subprocess
import unittest
from pathlib import Path

REAL = Path(__file__).resolve().parents[2]
SOURCE = (REAL / "command/CommandLine.cpp").read_text()
VERBS = re.findall(r'VerbRow\{"([\w-]+)"', SOURCE)
BASH = """source "$1"
COMP_WORDS=("${@:2}")
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
compopt() { :; }
_framekeeper_cli
printf '%s\\n' "${COMPREPLY[@]}"
"""


def completed(*words):
    """What bash offers for the last of the words."""
    done = subprocess.run(["bash", "-c", BASH, "bash", REAL / "packaging/completions/framekeeper-cli.bash", *words], text=True,
                          stdout=subprocess.PIPE, check=True)
    return done.stdout.split()


class Completions(unittest.TestCase):
    def test_are_compared_with_verbs(self):
        self.assertGreater(len(VERBS), 5)

    def test_of_bash_offer_verbs_lists_and_options(self):
        self.assertEqual(sorted(completed("framekeeper-cli", "")), sorted(VERBS))
        self.assertEqual(completed("framekeeper-cli", "--json", "swa"), ["swap-icon"])
        self.assertEqual(completed("framekeeper-cli", "login", ""), ["add", "remove"])
        self.assertEqual(completed("framekeeper-cli", "places", "r"), ["remove"])
        self.assertEqual(completed("framekeeper-cli", "list", ""), [])
        self.assertEqual(completed("framekeeper-cli", "--j"), ["--json"])

    def test_name_every_verb_in_every_shell_and_page(self):
        usage = SOURCE[SOURCE.index("usageText()"):]
        page = (REAL / "docs/man/framekeeper-cli.1").read_text().replace("\\-", "-")
        zsh = (REAL / "packaging/completions/_framekeeper-cli").read_text()
        fish = (REAL / "packaging/completions/framekeeper-cli.fish").read_text()
        for verb in VERBS:
            self.assertRegex(usage, rf"(?m)^  {verb}\b")
            self.assertRegex(page, rf'(?m)^\.B(I "?| ){verb}\b')
            self.assertIn(f"'{verb}:", zsh)
            self.assertIn(f" -a {verb} ", fish)


if __name__ == "__main__":
    unittest.main()
