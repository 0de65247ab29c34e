#!/usr/bin/python3
"""Ansible module: reads the FRU inventory of a server with fructl, and changes fields of one FRU device."""

import json

from ansible.module_utils.basic import AnsibleModule

DOCUMENTATION = r"""
module: fructl
short_description: Reads and changes the FRU inventory of a server
description:
  - Without O(values), reads every FRU device that the BMC names, and the BMC's own FRU where it names none.
  - With O(values), gives fields of one device these values. Only a field whose bytes differ is written; fructl keeps a
    backup on the server, reads back what it wrote and compares.
options:
  values:
    description: Field names, as C(fructl fields) lists them, and the values that they are to have.
    type: dict
  device:
    description: The device to change, C(system) for the BMC's own FRU, or a name or an address of C(fructl scan).
    type: str
    default: system
  backup:
    description: Directory on the server for the backup images. C(fructl)'s own choice where it is not given.
    type: path
  executable:
    description: The program.
    type: str
    default: fructl
  options:
    description: Options for every call, such as C(--interface), C(kcs).
    type: list
    elements: str
    default: []
attributes:
  check_mode:
    support: full
  diff_mode:
    support: full
"""

EXAMPLES = r"""
- name: Read all FRU devices
  fructl:
  register: inventory

- name: Set the asset tag
  fructl:
    values:
      product.asset-tag: RACK12-U30
"""

RETURN = r"""
frus:
  description: One report for each device, as C(fructl show --json) prints it. Without O(values).
  type: list
changes:
  description: The fields that differ, before and after. With O(values).
  type: list
backup:
  description: The image with the old contents, where something was written.
  type: str
"""

# fructl scan --load: some devices cannot be read; the report tells which.
PARTIAL = 6
# fructl show: the FRU is damaged; the report tells how.
DAMAGED = 4


def run(module, *arguments, accepted=(0,)):
    """Runs fructl and returns its document."""
    command = [module.params["executable"], *arguments, "--json", "--quiet", *module.params["options"]]
    status, output, errors = module.run_command(command)
    try:
        document = json.loads(output)
    except ValueError:
        document = None
    if status not in accepted or document is None:
        reason = errors.strip().removeprefix("fructl: ") or f"{command[0]} ended with status {status}"
        module.fail_json(msg=reason, rc=status, cmd=command)
    return document


def read_all(module):
    """The reports of all devices."""
    frus = run(module, "scan", "--load", accepted=(0, PARTIAL))["frus"]
    return frus or [run(module, "show", "--system", accepted=(0, DAMAGED))]


def lines(changes, side):
    """The changed fields as text, for Ansible's difference."""
    return "".join(f"{change['name']} = {(change[side] or {}).get('value', '')}\n" for change in changes)


def change(module):
    """Gives the device the values and returns what the module reports."""
    device = module.params["device"]
    arguments = ["commit", *(["--system"] if device == "system" else ["--at", device])]
    arguments += [f"{name}={value}" for name, value in module.params["values"].items()]
    if module.params["backup"]:
        arguments += ["--backup", module.params["backup"]]
    if module.check_mode:
        arguments.append("--dry-run")
    document = run(module, *arguments)
    changes = document["changes"]
    result = {"changed": bool(changes), "changes": changes}
    result["diff"] = {"before": lines(changes, "before"), "after": lines(changes, "after"), "before_header": device,
                      "after_header": device}
    if "backup" in document:
        result["backup"] = document["backup"]
    return result


def main():
    module = AnsibleModule(
        argument_spec={
            "values": {"type": "dict"},
            "device": {"type": "str", "default": "system"},
            "backup": {"type": "path"},
            "executable": {"type": "str", "default": "fructl"},
            "options": {"type": "list", "elements": "str", "default": []},
        },
        supports_check_mode=True,
    )
    if module.params["values"]:
        module.exit_json(**change(module))
    module.exit_json(changed=False, frus=read_all(module))


if __name__ == "__main__":
    main()
