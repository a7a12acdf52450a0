#!/usr/bin/python3
"""The module framekeeper.copies.report."""

from __future__ import annotations

DOCUMENTATION = r"""
module: report
short_description: Make one page of the copies on many hosts
description:
  - Joins files of facts with C(framekeeper-cli report) and writes the page where the task runs, which is commonly the control node.
  - Hosts without a complete answer are in the page, and told as warnings.
options:
  facts:
    description:
      - The files of facts, or folders that hold them, as the playbook C(framekeeper.copies.report) writes them.
    type: list
    elements: path
    required: true
  dest:
    description:
      - The file to write. It is replaced whole, and only if it changes.
    type: path
    required: true
  form:
    description:
      - A page for people, or rows for a spreadsheet.
    type: str
    choices: [html, csv]
    default: html
extends_documentation_fragment:
  - framekeeper.copies.command
author:
  - The developers of Framekeeper (@framekeeper)
"""

EXAMPLES = r"""
- name: Make the page
  framekeeper.copies.report:
    facts:
      - /var/tmp/framekeeper-facts
    dest: /var/tmp/framekeeper.html
  delegate_to: localhost
  run_once: true
"""

RETURN = r"""
incomplete:
  description: The hosts without a complete answer, and why.
  type: list
  elements: str
  returned: always
"""

import filecmp
import os
import shutil
import tempfile
import threading

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.framekeeper.copies.plugins.module_utils import command as cli

# The exit status of a report that lists hosts without a complete answer.
INCOMPLETE = 1


def written_report(module, folder):
    """The path of a report newly made in the folder, and what the command complained of."""
    words = ["--csv"] if module.params["form"] == "csv" else []
    process = cli.start(module, [*words, "report", "--", *module.params["facts"]])
    path = os.path.join(folder, "report")
    with process.stdout, process.stderr, tempfile.TemporaryFile() as errors, open(path, "wb") as page:
        # One is read to its end while the other fills at most its pipe: complaints are drained by a thread.
        drain = threading.Thread(target=shutil.copyfileobj, args=(process.stderr, errors))
        drain.start()
        shutil.copyfileobj(process.stdout, page)
        drain.join()
        errors.seek(0)
        complaint = errors.read().decode("utf-8", "replace").strip()
    status = process.wait()
    if status not in (cli.DONE, INCOMPLETE) or os.path.getsize(path) == 0:
        raise cli.Problem("failed", complaint or f"framekeeper-cli report ended with {status}")
    return path, complaint.splitlines()


def work(module):
    dest = module.params["dest"]
    with tempfile.TemporaryDirectory(dir=module.tmpdir) as folder:
        page, incomplete = written_report(module, folder)
        changed = not os.path.isfile(dest) or not filecmp.cmp(page, dest, shallow=False)
        if changed and not module.check_mode:
            module.atomic_move(page, dest)
    for line in incomplete:
        module.warn(line)
    module.exit_json(changed=changed, incomplete=incomplete)


def main():
    options = {"command": cli.COMMAND_OPTION, "facts": {"type": "list", "elements": "path", "required": True},
               "dest": {"type": "path", "required": True},
               "form": {"type": "str", "choices": ["html", "csv"], "default": "html"}}
    cli.carry_out(AnsibleModule(argument_spec=options, supports_check_mode=True), work)


if __name__ == "__main__":
    main()
