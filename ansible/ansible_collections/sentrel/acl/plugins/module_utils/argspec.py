# -*- coding: utf-8 -*-
"""The argument_spec of sentrel.acl.acls.

`config` has the shape of one switch in the engine's desired-state format: the ordinary ACL and
the CPU ACL, each a list of profiles with their rules, under the field names the engine reads.
A test holds these options against the desired-state JSON Schema the engine ships, so the two
cannot drift apart.

Numbers that the engine also takes as text (ports, codes, rates) are `raw`, so that YAML's
22 and "22" both reach the engine unchanged, as in a desired-state file. Only `id` and
`access_id` are required here: `deleted` names records by them alone, and the engine itself
says which other fields a profile or rule of a given type needs.
"""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

TYPES = ["ethernet", "ipv4", "ipv6", "packet_content"]
PROTOCOLS = ["none", "icmp", "igmp", "tcp", "udp", "protocol_id"]
TCP_FLAGS = ["urg", "ack", "psh", "rst", "syn", "fin"]
ACTIONS = ["permit", "deny", "mirror"]
STATES = ["merged", "replaced", "overridden", "deleted", "gathered", "rendered"]


def _text():
    return {"type": "str"}


def _flag():
    return {"type": "bool"}


def _number():
    return {"type": "raw"}


RULE_OPTIONS = {
    "access_id": {"type": "int", "required": True},
    "action": {"type": "str", "choices": ACTIONS},
    "ports": _text(),
    "vlan": _text(),
    "src_mac": _text(),
    "dst_mac": _text(),
    "802.1p": _number(),
    "ethertype": _text(),
    "src_ip": _text(),
    "dst_ip": _text(),
    "dscp": _number(),
    "class": _number(),
    "flow_label": _text(),
    "src_ipv6": _text(),
    "dst_ipv6": _text(),
    "priority": _number(),
    "replace_dscp": _number(),
    "replace_tos": _number(),
    "rx_rate": _number(),
    "icmp_type": _number(),
    "icmp_code": _number(),
    "igmp_type": _number(),
    "src_port": _number(),
    "dst_port": _number(),
    "tcp_flags": _number(),
    "protocol_id": _number(),
    "user_mask": _text(),
    # Packet-content items, keyed by block ("0-15" .. "64-79") or item number ("1" ..):
    # which one a model takes is the engine's to say.
    "blocks": {"type": "dict"},
    "chunks": {"type": "dict"},
    "items": {"type": "dict"},
}

PROFILE_OPTIONS = {
    "id": {"type": "int", "required": True},
    "type": {"type": "str", "choices": TYPES},
    "name": _text(),
    "vlan": _flag(),
    "802.1p": _flag(),
    "ethertype": _flag(),
    "dscp": _flag(),
    "class": _flag(),
    "flow_label": _flag(),
    "src_mac_mask": _text(),
    "dst_mac_mask": _text(),
    "src_ip_mask": _text(),
    "dst_ip_mask": _text(),
    "src_ipv6_mask": _text(),
    "dst_ipv6_mask": _text(),
    "user_mask": _text(),
    "protocol": {"type": "str", "choices": PROTOCOLS},
    "icmp_type": _flag(),
    "icmp_code": _flag(),
    "igmp_type": _flag(),
    "src_port_mask": _text(),
    "dst_port_mask": _text(),
    "tcp_flags": {"type": "list", "elements": "str", "choices": TCP_FLAGS},
    "protocol_id_mask": _number(),
    "blocks": {"type": "dict"},
    "chunks": {"type": "dict"},
    "rules": {"type": "list", "elements": "dict", "options": RULE_OPTIONS},
}

ACL_KINDS = ("acl", "cpu_acl")

ARGUMENT_SPEC = {
    "config": {
        "type": "dict",
        "options": {
            kind: {"type": "list", "elements": "dict", "options": PROFILE_OPTIONS}
            for kind in ACL_KINDS
        },
    },
    "state": {"type": "str", "default": "merged", "choices": STATES},
    "address": {"type": "str"},
    "model": {"type": "str"},
    "name": {"type": "str"},
    "read_community": {"type": "str", "no_log": True},
    "write_community": {"type": "str", "no_log": True},
    "timeout": {"type": "int"},
    "retries": {"type": "int"},
    "audit_log": {"type": "path"},
    "sentrel_acl_path": {"type": "path", "default": "sentrel-acl"},
}
