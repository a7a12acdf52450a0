#!/usr/bin/python3
"""The module framekeeper.copies.quit."""

from __future__ import annotations

DOCUMENTATION = r"""
module: quit
short_description: Ask running copies of Mirror Frame to quit
description:
  - Asks the copies at these paths to quit, all processes of each, and waits until they have. A copy that does not run stays as it is.
  - A copy that does not quit makes the task fail; none is killed.
options:
  command:
    description:
      - The program C(framekeeper-cli), as a path, or as a name that is looked for in the path.
    type: str
    default: framekeeper-cli
  paths:
    description:
      - The copies that are to quit.
      - Each is an absolute path, which may begin with C(~), or the C(uri) of a copy, in which every byte of a path can be
        written.
    type: list
    elements: str
    required: true
author:
  - The developers of Framekeeper (@framekeeper)
requirements:
  - framekeeper-cli on the host
  - Python 3.9 or later on the host
notes:
  - The task speaks of the user as whom it runs on the host. Use C(become_user) for somebody else.
  - Supports check mode and diffs.
"""

EXAMPLES = r"""
- name: Ask for the copies
  framekeeper.copies.facts:

- name: Ask all that run to quit
  framekeeper.copies.quit:
    paths: "{{ ansible_facts.framekeeper.running | map(attribute='uri') | list }}"
"""

RETURN = r"""
results:
  description: What became of each path that was to be changed, as C(framekeeper-cli --json) tells it.
  type: list
  elements: dict
  returned: when something was to be changed, and not in check mode
  sample: [{path: /srv/Mirror Frame.app, uri: "file:///srv/Mirror%20Frame.app", status: done}]
"""

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.framekeeper.copies.plugins.module_utils import command as cli


def work(module):
    paths = cli.given_paths(module)
    running = [path for path, copy in cli.known_copies(module, paths).items() if copy.get("isRunning")]
    result = {"changed": bool(running), "diff": cli.diff_of("running copies", running, [])}
    if module.check_mode or not running:
        module.exit_json(**result)
    cli.change(module, ["quit"], running, result, well_without_change=[cli.SETTLED])


def main():
    options = {"command": cli.COMMAND_OPTION, "paths": cli.PATHS_OPTION}
    cli.carry_out(AnsibleModule(argument_spec=options, supports_check_mode=True), work)


if __name__ == "__main__":
    main()
