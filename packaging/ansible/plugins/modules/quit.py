#!/usr/bin/python3
"""The module framekeeper.copies.quit."""

from __future__ import annotations

DOCUMENTATION = r"""
module: quit
short_description: Ask running copies of Mirror Frame to quit
description:
  - Asks the copies at these paths to quit, all processes of each, and waits until they have. A copy that does not run stays as it is.
  - A copy that does not quit makes the task fail; none is killed.
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
