#!/usr/bin/python
"""Adds and deletes IP addresses on managed servers by running addrtool-safe there."""

DOCUMENTATION = """
module: addrtool_address
short_description: Add and delete IP addresses with addrtool-safe
description:
  - Makes IP addresses present on an interface, or absent from the server, by running
    C(addrtool-safe). The addresses are saved in the network scripts.
  - If the command refuses a change, its message names the cause and the remedy, and nothing has
    changed.
requirements:
  - addrtool-safe and Python 3.6 or later on the managed server
options:
  address:
    description: The addresses, each as ADDRESS/LENGTH. The length may be missing if they are to be
      absent.
    type: list
    elements: str
    required: true
  interface:
    description: The interface that shall have the addresses. Required for C(state=present).
    type: str
  state:
    description: Whether the server shall have the addresses.
    type: str
    choices: [present, absent]
    default: present
  readd:
    description: Delete and add an address that is up but not saved. It is down for a moment.
    type: bool
    default: false
  routes:
    description: Delete an address even if a route needs it.
    type: bool
    default: false
  wait:
    description: How many seconds to wait for other callers.
    type: float
    default: 30
  executable:
    description: The path of addrtool-safe on the managed server.
    type: path
    default: /usr/sbin/addrtool-safe
attributes:
  check_mode:
    support: full
  diff_mode:
    support: full
author:
  - the addrtool project
"""

EXAMPLES = """
- name: Two more addresses on eth0
  addrtool_address:
    interface: eth0
    address: [192.0.2.10/24, "2001:db8::5/64"]

- name: One address less
  addrtool_address:
    address: 192.0.2.10
    state: absent
"""

RETURN = """
actions:
  description: What was done, or would be done in check mode.
  returned: always
  type: list
  sample: [{"action": "add", "interface": "eth0", "target": "192.0.2.10/24"}]
problems:
  description: What is not as asked, each with its remedy.
  returned: always
  type: list
  sample: []
"""

import json

from ansible.module_utils.basic import AnsibleModule


def command_of(parameters, check_mode):
    """Returns the command line for the parameters of the module."""
    state, addresses = parameters["state"], parameters["address"]
    command = [parameters["executable"], state, "--json", "--wait=%s" % parameters["wait"]]
    command += ["--check"] if check_mode else []
    command += ["--" + flag for flag in ("readd", "routes") if parameters[flag]]
    if state == "present":
        return command + ["--", parameters["interface"]] + addresses
    return command + ["--"] + [address.split("/")[0] for address in addresses]


def main():
    module = AnsibleModule(
        argument_spec={
            "address": {"type": "list", "elements": "str", "required": True},
            "interface": {"type": "str"},
            "state": {"choices": ["present", "absent"], "default": "present"},
            "readd": {"type": "bool", "default": False},
            "routes": {"type": "bool", "default": False},
            "wait": {"type": "float", "default": 30.0},
            "executable": {"type": "path", "default": "/usr/sbin/addrtool-safe"},
        },
        required_if=[("state", "present", ["interface"])],
        supports_check_mode=True,
    )
    status, output, errors = module.run_command(command_of(module.params, module.check_mode))
    try:
        result = json.loads(output)
    except ValueError:
        module.fail_json(msg=errors.strip() or output.strip() or "it printed nothing", rc=status)
    how = {key: result[key] for key in ("changed", "actions", "problems")}
    if module._diff:
        how["diff"] = {"prepared": result["diff"]}
    if status != 0:
        messages = [problem["message"] for problem in result["problems"]]
        module.fail_json(msg=" ".join(messages), rc=status, **how)
    module.exit_json(**how)


if __name__ == "__main__":
    main()
