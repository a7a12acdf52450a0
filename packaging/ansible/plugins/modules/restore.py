#!/usr/bin/python3
"""The module framekeeper.copies.restore."""

from __future__ import annotations

DOCUMENTATION = r"""
module: restore
short_description: Put copies of Mirror Frame back from the trash
description:
  - Puts the copies that came from these paths back there, each time the one that was trashed last. A path at which a copy is stays as it is.
  - The paths are those where the copies came from, not where they are in the trash.
  - In check mode a path without a copy counts as changed; whether the trash holds one from there is seen only when it is put back.
extends_documentation_fragment:
  - framekeeper.copies.command
  - framekeeper.copies.command.user
  - framekeeper.copies.command.paths
author:
  - The developers of Framekeeper (@framekeeper)
"""

EXAMPLES = r"""
- name: Put the copy back
  framekeeper.copies.restore:
    paths:
      - ~/Applications/Mirror Frame.app
"""

RETURN = r"""
results:
  description: What became of each path that was to be changed, as C(framekeeper-cli --json) tells it.
  type: list
  elements: dict
  returned: when something was to be changed, and not in check mode
  sample: [{path: /srv/Mirror Frame.app, uri: "file:///srv/Mirror%20Frame.app", status: done}]
"""

import os

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.framekeeper.copies.plugins.module_utils import command as cli


def work(module):
    paths = cli.given_paths(module)
    present = list(cli.known_existing(module, paths))
    for path in present:
        if cli.is_in_trash(path):
            raise cli.Problem("failed", f"{cli.text_of(path)} lies in the trash; name the path that the copy came from")
    missing = [path for path in paths if path not in present]
    for path in missing:
        if os.path.lexists(path):
            raise cli.Problem("failed", f"What is at {cli.text_of(path)} is no copy of Mirror Frame")
    result = {"changed": bool(missing), "diff": cli.diff_of("copies at the paths", present, paths)}
    if module.check_mode or not missing:
        module.exit_json(**result)
    cli.change(module, ["restore"], missing, result)


def main():
    options = {"command": cli.COMMAND_OPTION, "paths": cli.PATHS_OPTION}
    cli.carry_out(AnsibleModule(argument_spec=options, supports_check_mode=True), work)


if __name__ == "__main__":
    main()
