#!/usr/bin/python3
"""The module framekeeper.copies.facts."""

from __future__ import annotations

DOCUMENTATION = r"""
module: facts
short_description: Tell which copies of Mirror Frame a host has
description:
  - Searches the host with C(framekeeper-cli list) and tells its copies as facts; changes nothing.
options:
  timeout:
    description:
      - How many seconds the search may take. Then it is ended, and the task fails with I(answer=late).
    type: int
    default: 60
extends_documentation_fragment:
  - framekeeper.copies.command
  - framekeeper.copies.command.user
author:
  - The developers of Framekeeper (@framekeeper)
"""

EXAMPLES = r"""
- name: Ask for the copies
  framekeeper.copies.facts:
    timeout: 120

- name: Show the versions
  ansible.builtin.debug:
    var: ansible_facts.framekeeper.versions
"""

RETURN = r"""
ansible_facts:
  description: What the host has.
  type: dict
  returned: success
  contains:
    framekeeper:
      description: The copies, and what is true of them.
      type: dict
      contains:
        copies:
          description: All copies, and the paths of those that run, start at login or stand in the places.
          type: list
          elements: dict
        versions:
          description: How many copies there are of each version; those that tell none are left out.
          type: dict
        running:
          description: Those of the copies that run.
          type: list
          elements: dict
        login_items:
          description: Those of the copies that start at login.
          type: list
          elements: dict
document:
  description: What C(framekeeper-cli list --json) printed, for the filter P(framekeeper.copies.answer#filter).
  type: dict
  returned: success
gathered:
  description: When the host was asked, in UTC.
  type: str
  returned: always
answer:
  description: C(complete); C(failed) if the command failed, or could read only a part; C(late) or C(rubbish).
  type: str
  returned: always
reason:
  description: Why the answer is not complete.
  type: str
  returned: when only a part could be read
"""

from datetime import datetime, timezone

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.framekeeper.copies.plugins.module_utils import command as cli


def count_versions(copies):
    versions = {}
    for copy in copies:
        version = copy.get("versionString") or copy.get("version")
        if version and copy.get("exists"):
            versions[version] = versions.get(version, 0) + 1
    return versions


def tell(module, gathered):
    answer = cli.run(module, ["list"], module.params["timeout"])
    if answer.document is None:
        raise cli.Problem("failed", answer.complaint or f"framekeeper-cli list printed nothing and ended with {answer.status}")
    copies = answer.records("copies")
    facts = {
        "copies": copies,
        "versions": count_versions(copies),
        "running": [copy for copy in copies if copy.get("isRunning")],
        "login_items": [copy for copy in copies if copy.get("isAutolaunched")],
    }
    result = {"changed": False, "ansible_facts": {"framekeeper": facts}, "document": answer.document, "gathered": gathered}
    if answer.status == cli.DONE:
        module.exit_json(answer="complete", **result)
    reason = answer.complaint or f"framekeeper-cli list ended with {answer.status}"
    module.warn(reason)
    module.exit_json(answer="failed", reason=reason, **result)


def work(module):
    gathered = datetime.now(timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    try:
        tell(module, gathered)
    except cli.Problem as problem:
        module.fail_json(msg=problem.reason, answer=problem.answer, gathered=gathered)


def main():
    options = {"command": cli.COMMAND_OPTION, "timeout": {"type": "int", "default": 60}}
    cli.carry_out(AnsibleModule(argument_spec=options, supports_check_mode=True), work)


if __name__ == "__main__":
    main()
