#!/usr/bin/python3
"""The module framekeeper.copies.trash."""

from __future__ import annotations

DOCUMENTATION = r"""
module: trash
short_description: Move copies of Mirror Frame to the trash
description:
  - Moves the copies at these paths to the trash of the user. A path at which nothing is stays as it is, and so
    does a copy that lies in a trash.
  - A path at which something else than a copy is makes the task fail before anything is moved.
extends_documentation_fragment:
  - framekeeper.copies.command
  - framekeeper.copies.command.user
  - framekeeper.copies.command.paths
author:
  - The developers of Framekeeper (@framekeeper)
"""

EXAMPLES = r"""
- name: Ask for the copies
  framekeeper.copies.facts:

- name: Move all copies of version 1.0 (1) to the trash
  framekeeper.copies.trash:
    paths: "{{ ansible_facts.framekeeper.copies | selectattr('exists') | selectattr('versionString', 'equalto', '1.0 (1)')
      | map(attribute='uri') | list }}"
"""

RETURN = r"""
results:
  description: What became of each path that was to be changed, as C(framekeeper-cli --json) tells it.
  type: list
  elements: dict
  returned: when something was to be changed, and not in check mode
  sample: [{path: /srv/Mirror Frame.app, uri: "file:///srv/Mirror%20Frame.app", status: done, newPath: /srv/trash/Mirror Frame.app, newUri: "file:///srv/trash/Mirror%20Frame.app"}]
"""

import os

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.framekeeper.copies.plugins.module_utils import command as cli


def work(module):
    paths = cli.given_paths(module)
    known = cli.known_existing(module, paths)
    present = [path for path in known if not cli.is_in_trash(path)]
    for path in paths:
        if path not in known and os.path.lexists(path):
            raise cli.Problem("failed", f"What is at {cli.text_of(path)} is no copy of Mirror Frame")
    result = {"changed": bool(present), "diff": cli.diff_of("copies at the paths", present, [])}
    if module.check_mode or not present:
        module.exit_json(**result)
    cli.change(module, ["trash"], present, result, well_without_change=[cli.SETTLED])


def main():
    options = {"command": cli.COMMAND_OPTION, "paths": cli.PATHS_OPTION}
    cli.carry_out(AnsibleModule(argument_spec=options, supports_check_mode=True), work)


if __name__ == "__main__":
    main()
