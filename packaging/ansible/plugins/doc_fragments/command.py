"""What the documentation of several modules of this collection has in common."""

from __future__ import annotations


class ModuleDocFragment:
    # Every module.
    DOCUMENTATION = r"""
options:
  command:
    description:
      - The program C(framekeeper-cli), as a path, or as a name that is looked for in the path.
    type: str
    default: framekeeper-cli
attributes:
  check_mode:
    description: Tells what would change, and changes nothing.
    support: full
requirements:
  - framekeeper-cli on the host
  - Python 3.9 or later on the host
"""

    # Modules that ask for the copies of a user.
    USER = r"""
attributes:
  platform:
    description: Where the module can work.
    support: full
    platforms: linux
notes:
  - The task speaks of the user as whom it runs on the host. Use C(become_user) for another user.
"""

    # Modules that change the copies at some paths.
    PATHS = r"""
options:
  paths:
    description:
      - The paths of the copies.
      - Each is an absolute path, which may begin with C(~), or the C(uri) of a copy, in which every byte of a path can be
        written.
    type: list
    elements: str
    required: true
attributes:
  diff_mode:
    description: Tells the paths before and after the change.
    support: full
"""
