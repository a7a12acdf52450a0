#!/usr/bin/python3
"""The module framekeeper.copies.login."""

from __future__ import annotations

DOCUMENTATION = r"""
module: login
short_description: Set which copy of Mirror Frame starts at login
description:
  - Makes one copy the one that starts at login, in place of all others, or removes copies from the login items.
  - With I(state=present) a single path is given.
options:
  state:
    description:
      - Whether the copies are to start at login.
    type: str
    choices: [present, absent]
    default: present
extends_documentation_fragment:
  - framekeeper.copies.command
  - framekeeper.copies.command.user
  - framekeeper.copies.command.paths
author:
  - The developers of Framekeeper (@framekeeper)
"""

EXAMPLES = r"""
- name: Start this copy at login, and no other one
  framekeeper.copies.login:
    paths:
      - /opt/Mirror Frame.app

- name: Start no copy at login
  framekeeper.copies.login:
    paths: "{{ ansible_facts.framekeeper.login_items | map(attribute='uri') | list }}"
    state: absent
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


def login_items(module):
    answer = cli.run(module, ["login"])
    if answer.status != cli.DONE:
        raise cli.Problem("failed", answer.complaint or f"framekeeper-cli login ended with {answer.status}")
    return [cli.physical(cli.path_of_uri(copy.get("uri"))) for copy in answer.records("copies")]


def work(module):
    paths = cli.given_paths(module)
    adds = module.params["state"] == "present"
    if adds and len(paths) != 1:
        raise cli.Problem("failed", "One copy alone can be made the one that starts at login")
    before = login_items(module)
    after = paths if adds else [path for path in before if path not in paths]
    result = {"changed": before != after, "diff": cli.diff_of("copies that start at login", before, after)}
    if adds and not cli.known_existing(module, paths):
        raise cli.Problem("failed", f"No copy of Mirror Frame is at {cli.text_of(paths[0])}")
    if module.check_mode or before == after:
        module.exit_json(**result)
    if adds:
        cli.change(module, ["login", "add"], paths, result)
    leaving = [path for path in before if path in paths]
    cli.change(module, ["login", "remove"], leaving, result, well_without_change=[cli.SETTLED])


def main():
    options = {"command": cli.COMMAND_OPTION, "paths": cli.PATHS_OPTION,
               "state": {"type": "str", "choices": ["present", "absent"], "default": "present"}}
    cli.carry_out(AnsibleModule(argument_spec=options, supports_check_mode=True), work)


if __name__ == "__main__":
    main()
