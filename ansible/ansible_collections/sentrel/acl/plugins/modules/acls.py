#!/usr/bin/python
# -*- coding: utf-8 -*-
"""sentrel.acl.acls: the ACL profiles and rules of one Sentrel switch."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

DOCUMENTATION = r"""
module: acls
short_description: ACL profiles and rules of a Sentrel switch
description:
  - Manages the ordinary ACL and the CPU ACL of one switch, each a list of profiles with their
    rules, in the field names of the C(sentrel-acl) desired-state format.
  - Runs on the controller (the C(local) connection), one invocation per switch, so that Ansible's
    forks work on many switches at once. It calls C(sentrel-acl --json), which reads the switch
    over SNMPv1, plans, writes, reads every change back and verifies it.
  - The switch's address, model and name default to the host variables C(ansible_host) (else
    the inventory name), C(sentrel_model) and the inventory name; the communities to
    C(sentrel_read_community) and C(sentrel_write_community), the engine's path to
    C(sentrel_acl_path).
  - The communities reach the engine only through its environment, never its command line, and
    never appear in results or logs. Turn on pipelining (C(ANSIBLE_PIPELINING=true)) so that
    the module's arguments are not written to a temporary file on the controller either.
version_added: 1.0.0
author: Sentrel developers
notes:
  - Supports check mode (the plan only; nothing is sent to the switch) and diff mode.
  - C(gathered) reads the switch; C(rendered) needs no switch and no community.
options:
  config:
    description:
      - The switch's ACL state. A kind left out is not touched, except by C(overridden), which
        empties it, and by C(deleted) without any kind named, which empties both.
      - For C(deleted), profiles are named by C(id) alone (the profile with its rules goes), or
        with C(rules) naming C(access_id)s (only those rules go); an empty list deletes every
        record of that kind.
    type: dict
    suboptions:
      acl:
        description: Profiles of the ordinary ACL.
        type: list
        elements: dict
        suboptions: &profile
          id:
            description: Profile ID.
            type: int
            required: true
          type:
            description: Profile type. Required but for C(deleted).
            type: str
            choices: [ethernet, ipv4, ipv6, packet_content]
          name:
            description: Profile name, on models that keep one.
            type: str
          vlan:
            description: Rules match the VLAN (ethernet, ipv4).
            type: bool
          "802.1p":
            description: Rules match the 802.1p priority (ethernet).
            type: bool
          ethertype:
            description: Rules match the Ethernet type (ethernet).
            type: bool
          dscp:
            description: Rules match the DSCP (ipv4).
            type: bool
          class:
            description: Rules match the traffic class (ipv6).
            type: bool
          flow_label:
            description: Rules match the flow label (ipv6).
            type: bool
          src_mac_mask:
            description: Source MAC mask, 12 hexadecimal digits (ethernet).
            type: str
          dst_mac_mask:
            description: Destination MAC mask, 12 hexadecimal digits (ethernet).
            type: str
          src_ip_mask:
            description: Source IPv4 mask, dotted (ipv4).
            type: str
          dst_ip_mask:
            description: Destination IPv4 mask, dotted (ipv4).
            type: str
          src_ipv6_mask:
            description: Source IPv6 mask, 32 hexadecimal digits (ipv6).
            type: str
          dst_ipv6_mask:
            description: Destination IPv6 mask, 32 hexadecimal digits (ipv6).
            type: str
          user_mask:
            description: User-defined mask in hexadecimal (ipv4, protocol_id).
            type: str
          protocol:
            description: The protocol the rules match (ipv4).
            type: str
            choices: [none, icmp, igmp, tcp, udp, protocol_id]
          icmp_type:
            description: Rules match the ICMP type (protocol icmp).
            type: bool
          icmp_code:
            description: Rules match the ICMP code (protocol icmp).
            type: bool
          igmp_type:
            description: Rules match the IGMP type (protocol igmp).
            type: bool
          src_port_mask:
            description: Source port mask, up to 4 hexadecimal digits (tcp, udp).
            type: str
          dst_port_mask:
            description: Destination port mask, up to 4 hexadecimal digits (tcp, udp).
            type: str
          tcp_flags:
            description: TCP flags the rules match (tcp).
            type: list
            elements: str
            choices: [urg, ack, psh, rst, syn, fin]
          protocol_id_mask:
            description: Protocol ID mask, 0 to 255 (protocol_id).
            type: raw
          blocks:
            description: Packet-content masks by block, C("0-15") to C("64-79"), 32 hexadecimal digits each.
            type: dict
          chunks:
            description: Packet-content masks by chunk, C("1") to C("4"), each C({offset, mask}).
            type: dict
          rules:
            description: The profile's rules.
            type: list
            elements: dict
            suboptions:
              access_id:
                description: Access ID of the rule within its profile.
                type: int
                required: true
              action:
                description: What the switch does with a matching packet; the CPU ACL does not mirror.
                type: str
                choices: [permit, deny, mirror]
              ports:
                description: Port list, such as C(1-8,10).
                type: str
              vlan:
                description: VLAN name.
                type: str
              src_mac:
                description: Source MAC address, 12 hexadecimal digits.
                type: str
              dst_mac:
                description: Destination MAC address, 12 hexadecimal digits.
                type: str
              "802.1p":
                description: 802.1p priority.
                type: raw
              ethertype:
                description: Ethernet type, 4 hexadecimal digits.
                type: str
              src_ip:
                description: Source IPv4 address.
                type: str
              dst_ip:
                description: Destination IPv4 address.
                type: str
              dscp:
                description: DSCP value.
                type: raw
              class:
                description: IPv6 traffic class.
                type: raw
              flow_label:
                description: IPv6 flow label.
                type: str
              src_ipv6:
                description: Source IPv6 address, 32 hexadecimal digits.
                type: str
              dst_ipv6:
                description: Destination IPv6 address, 32 hexadecimal digits.
                type: str
              priority:
                description: Priority given to matching packets.
                type: raw
              replace_dscp:
                description: DSCP written into matching packets.
                type: raw
              replace_tos:
                description: Type of service written into matching packets.
                type: raw
              rx_rate:
                description: Rate limit of matching packets.
                type: raw
              icmp_type:
                description: ICMP type.
                type: raw
              icmp_code:
                description: ICMP code.
                type: raw
              igmp_type:
                description: IGMP type.
                type: raw
              src_port:
                description: Source port.
                type: raw
              dst_port:
                description: Destination port.
                type: raw
              tcp_flags:
                description: TCP flag bits.
                type: raw
              protocol_id:
                description: Protocol ID.
                type: raw
              user_mask:
                description: User-defined value in hexadecimal.
                type: str
              blocks:
                description: Packet-content data by block, C("0-15") to C("64-79").
                type: dict
              chunks:
                description: Packet-content data by chunk, C("1") to C("4"), each C({offset, data}).
                type: dict
              items:
                description: Packet-content data by item, C("1") to C("5"), each C({offset, data}).
                type: dict
      cpu_acl:
        description: Profiles of the CPU ACL, with the same options as I(acl).
        type: list
        elements: dict
        suboptions: *profile
  state:
    description:
      - C(merged) creates the records the switch lacks and leaves the rest. A record the switch
        holds differently (or a rule of a profile the switch holds with another type) is kept
        as it is, reported as a warning that lists each one; C(replaced) replaces them.
      - C(replaced) also deletes and creates again the records that differ (a replaced profile
        with its rules).
      - C(overridden) also deletes every record that I(config) does not name, in both kinds.
      - C(deleted) deletes the records I(config) names, or everything of the kinds it names, or
        everything. Only the kinds I(config) names are read and written; the other kind is not
        touched.
      - C(gathered) returns what the switch holds, in I(config) form.
      - C(rendered) returns the SETs that C(merged) would send to an empty switch, without one.
    type: str
    default: merged
    choices: [merged, replaced, overridden, deleted, gathered, rendered]
  address:
    description: The switch's address. Defaults to C(ansible_host), else the inventory name.
    type: str
  model:
    description: The switch's model, such as C(TVR4820). Defaults to C(sentrel_model).
    type: str
  name:
    description: The switch's name in the engine's output. Defaults to the inventory name.
    type: str
  read_community:
    description: The read community. Defaults to C(sentrel_read_community).
    type: str
  write_community:
    description: The write community. Defaults to C(sentrel_write_community).
    type: str
  timeout:
    description:
      - How long to wait for each answer, in milliseconds. Defaults to C(sentrel_timeout), else
        the engine's default.
    type: int
  retries:
    description:
      - How many times to ask again after a lost answer. Defaults to C(sentrel_retries), else
        the engine's default.
    type: int
  audit_log:
    description:
      - The JSON Lines audit log that the engine appends every SET and its answer to. Defaults
        to C(sentrel_audit_log), else the engine's own (C($XDG_STATE_HOME/sentrel/audit.jsonl)),
        beside which it also keeps its per-switch locks.
    type: path
  sentrel_acl_path:
    description: The engine. Defaults to C(sentrel_acl_path), else C(sentrel-acl) on the PATH.
    type: path
    default: sentrel-acl
"""

EXAMPLES = r"""
# inventory (YAML):
#   switches:
#     hosts:
#       core-sw1: {ansible_host: 127.0.0.2, sentrel_model: TVR4820}
#     vars:
#       ansible_connection: local
#       sentrel_read_community: "{{ vault_read_community }}"
#       sentrel_write_community: "{{ vault_write_community }}"

- name: Create the profiles and rules the switch lacks
  sentrel.acl.acls:
    config:
      acl:
        - id: 10
          type: ipv4
          dst_ip_mask: 255.255.255.0
          protocol: tcp
          dst_port_mask: FFFF
          rules:
            - {access_id: 1, dst_ip: 10.1.1.0, dst_port: 22, action: permit, ports: 1-8}
    state: merged

- name: Make profile 10 exactly so, deleting and creating again what differs
  sentrel.acl.acls:
    config:
      acl:
        - id: 10
          type: ipv4
          dst_ip_mask: 255.255.255.0
          protocol: tcp
          dst_port_mask: FFFF
          rules:
            - {access_id: 1, dst_ip: 10.1.1.0, dst_port: 22, action: deny, ports: 1-8}
    state: replaced

- name: The switch holds this and nothing else, in both ACLs
  sentrel.acl.acls:
    config:
      cpu_acl:
        - id: 1
          type: ethernet
          src_mac_mask: FFFFFFFFFFFF
          rules:
            - {access_id: 1, src_mac: 0000AA000001, action: permit, ports: 1-4}
    state: overridden

- name: Delete rule 1 of profile 10, and CPU profile 1 with its rules
  sentrel.acl.acls:
    config:
      acl:
        - id: 10
          rules:
            - access_id: 1
      cpu_acl:
        - id: 1
    state: deleted

- name: Delete every record of the CPU ACL
  sentrel.acl.acls:
    config:
      cpu_acl: []
    state: deleted

- name: Read what the switch holds
  sentrel.acl.acls:
    state: gathered
  register: held

- name: The SETs that merged would send to an empty switch (no switch needed)
  sentrel.acl.acls:
    config:
      acl:
        - id: 11
          type: ethernet
          vlan: true
          rules:
            - {access_id: 1, vlan: mgmt, action: mirror, ports: 1-8}
    state: rendered
"""

RETURN = r"""
before:
  description: What the switch held, in I(config) form.
  returned: when state is merged, replaced, overridden or deleted
  type: dict
  sample: {"acl": [{"id": 10, "type": "ipv4", "dst_ip_mask": "255.255.255.0", "rules": []}]}
after:
  description:
    - What the switch holds afterwards, as read back; in check mode, what it would hold.
    - C(null) when the switch was not read back (interrupted) or did not answer: nothing is
      known of what it holds, and no diff is shown.
  returned: when state is merged, replaced, overridden or deleted
  type: dict
commands:
  description: Every SET sent (or, in check mode, to be sent), as OID, type and value.
  returned: when state is merged, replaced, overridden or deleted
  type: list
  elements: str
  sample: [".1.3.6.1.4.1.32473.12.9.1.1.2.10 INTEGER 4"]
gathered:
  description: What the switch holds, in I(config) form.
  returned: when state is gathered
  type: dict
rendered:
  description: The SETs that merged would send to a switch holding nothing.
  returned: when state is rendered
  type: list
  elements: str
failures:
  description: The records the switch refused, each with the switch's answer.
  returned: when the switch failed
  type: list
  elements: dict
  sample: [{"action": "create", "owner": "acl", "kind": "rule", "profile_id": 10, "access_id": 1,
            "record": {"action": "permit", "ports": "1-8"}, "error": "badValue"}]
"""

import json
import os

from ansible.module_utils.basic import AnsibleModule

from ansible_collections.sentrel.acl.plugins.module_utils import engine
from ansible_collections.sentrel.acl.plugins.module_utils.argspec import ARGUMENT_SPEC


class Engine(object):
    """Runs sentrel-acl for one switch."""

    def __init__(self, module):
        self.module = module
        self.params = module.params
        path = self.params["sentrel_acl_path"]
        self.path = path if os.sep in path else module.get_bin_path(path, required=True)

    def fail(self, command, rc, err, out=""):
        self.module.fail_json(msg="sentrel-acl %s failed: %s" % (command, err.strip() or out.strip()), rc=rc)

    def run(self, command, extra=(), stdin=None):
        """The engine's JSON report; a run that printed none fails the task with its errors."""
        args = engine.engine_args(self.path, command, self.params) + list(extra)
        rc, out, err = self.module.run_command(
            args, data=stdin, binary_data=True, environ_update=engine.engine_environment(self.params))
        try:
            report = json.loads(out)
        except ValueError:
            report = None
        if not isinstance(report, dict):
            self.fail(command, rc, err, out)
        return rc, report, err

    def show(self):
        """What the switch holds; a switch that did not answer fails (its silence is no empty ACL)."""
        rc, report, err = self.run("show")
        found = engine.find_switch(report, self.params["name"])
        if rc != 0 or found is None:
            self.fail("show", rc, err)
        return found

    def converge(self, state, switch):
        """plan (check mode) or apply the switch's desired state."""
        command = "plan" if self.module.check_mode else "apply"
        stdin = json.dumps(engine.document(self.params["name"], switch))
        # The task is the operator's confirmation: the engine would otherwise refuse to delete
        # without a terminal to ask on.
        options = ["--state", state]
        if not self.module.check_mode:
            options.append("--yes")
            if self.params.get("audit_log"):
                options += ["--audit-log", self.params["audit_log"]]
        rc, report, err = self.run(command, options + ["-"], stdin)
        found = engine.find_switch(report, self.params["name"])
        if found is None:
            self.module.fail_json(msg="sentrel-acl %s: no result for the switch: %s" % (command, err.strip()), rc=rc)
        kept = engine.kept_records(found)
        if kept:
            self.module.warn("merged left %d record(s) as the switch holds them although config differs: %s"
                             % (len(kept), "; ".join(kept)))
        return engine.switch_result(found, applied=not self.module.check_mode)


def main():
    module = AnsibleModule(
        argument_spec=ARGUMENT_SPEC,
        required_if=[
            ("state", "merged", ("config",)),
            ("state", "replaced", ("config",)),
            ("state", "overridden", ("config",)),
            ("state", "rendered", ("config",)),
        ],
        supports_check_mode=True,
    )
    params = module.params
    state = params["state"]
    missing = [k for k in ("address", "model", "name") if not params.get(k)]
    if missing:
        module.fail_json(msg="the switch's %s is missing (host variables ansible_host, sentrel_model)"
                         % ", ".join(missing))
    runner = Engine(module)

    if state == "gathered":
        module.exit_json(changed=False, gathered=runner.show())

    if state == "rendered":
        stdin = json.dumps(engine.document(params["name"], engine.switch_state(params["config"], "merged")))
        rc, report, err = runner.run("plan", ["--assume-empty", "-"], stdin)
        found = engine.find_switch(report, params["name"])
        if rc != 0 or found is None:
            runner.fail("plan", rc, err)
        module.exit_json(changed=False, rendered=engine.commands_of(found))

    if state == "deleted":
        switch = engine.after_deletion(runner.show(), params["config"])
        result, error = runner.converge("overridden", switch)
    else:
        result, error = runner.converge(state, engine.switch_state(params["config"], state))
    if module._diff and result["after"] is not None:
        result["diff"] = {"before": result["before"], "after": result["after"]}
    if error:
        module.fail_json(msg=error, **result)
    module.exit_json(**result)


if __name__ == "__main__":
    main()
