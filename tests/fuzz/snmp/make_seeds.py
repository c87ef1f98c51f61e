#!/usr/bin/env python3
"""Writes the seed corpus of the SNMP fuzz targets: valid SNMPv1 messages and one file per
malformed class that broke other SNMP decoders (issue 3). Run: make_seeds.py <folder>."""
import os
import sys


def length(n):
    if n < 0x80:
        return bytes([n])
    b = n.to_bytes((n.bit_length() + 7) // 8, "big")
    return bytes([0x80 | len(b)]) + b


def tlv(tag, content):
    return bytes([tag]) + length(len(content)) + content


def integer(v):
    n = max(1, (v.bit_length() + 8) // 8)
    return tlv(0x02, v.to_bytes(n, "big", signed=True))


def b128(v):
    out = [v & 0x7F]
    v >>= 7
    while v:
        out.append(0x80 | (v & 0x7F))
        v >>= 7
    return bytes(reversed(out))


def oid(text):
    arcs = [int(a) for a in text.strip(".").split(".")]
    body = b128(arcs[0] * 40 + arcs[1]) + b"".join(b128(a) for a in arcs[2:])
    return tlv(0x06, body)


def varbind(name, value):
    return tlv(0x30, oid(name) + value)


def message(pdu_tag, varbinds, community=b"public", reqid=0x1234, status=0, index=0, version=0):
    pdu = integer(reqid) + integer(status) + integer(index) + tlv(0x30, b"".join(varbinds))
    return tlv(0x30, integer(version) + tlv(0x04, community) + tlv(pdu_tag, pdu))


PROF = "1.3.6.1.4.1.32473.12.9.2.1.1"
RULE = "1.3.6.1.4.1.32473.12.9.3.1.1"
NULL = b"\x05\x00"
seeds = {
    "valid_getnext": message(0xA1, [varbind(PROF + ".1", NULL), varbind(PROF + ".8", NULL)]),
    "valid_get": message(0xA0, [varbind("1.3.6.1.4.1.32473.12.1.2.6.0", NULL)]),
    "valid_set_create": message(0xA3, [varbind(PROF + ".2.5", integer(1)),
                                       varbind(PROF + ".4.5", tlv(0x04, b"\x00\x00\x00\xff\xff\xff")),
                                       varbind(PROF + ".8.5", integer(4))], community=b"private"),
    "valid_set_rule": message(0xA3, [varbind(RULE + ".3.1.2", tlv(0x04, b"vlan")),
                                     varbind(RULE + ".14.1.2", tlv(0x04, b"\xff\xc0\x00\x00")),
                                     varbind(RULE + ".15.1.2", integer(4))], community=b"private"),
    "valid_set_destroy": message(0xA3, [varbind(RULE + ".15.1.2", integer(6))], community=b"private"),
    "valid_response_all_types": message(0xA2, [
        varbind("1.3.6.1.2.1.1.1.0", tlv(0x04, b"Linux")),
        varbind("1.3.6.1.2.1.1.2.0", oid("1.3.6.1.4.1.8072.3.2.10")),
        varbind("1.3.6.1.2.1.1.3.0", tlv(0x43, b"\x01\x02")),
        varbind("1.3.6.1.2.1.2.2.1.10.1", tlv(0x41, b"\x00\xff\xff\xff\xff")),
        varbind("1.3.6.1.2.1.2.2.1.5.1", tlv(0x42, b"\x05")),
        varbind("1.3.6.1.2.1.4.20.1.1.127.0.0.1", tlv(0x40, b"\x7f\x00\x00\x01")),
        varbind("1.3.6.1.2.1.99.1", tlv(0x44, b"\x9f\x78\x04\x3f\xc0\x00\x00")),
        varbind("1.3.6.1.2.1.99.2", integer(-123456)),
    ], status=0),
    "valid_response_error": message(0xA2, [varbind(PROF + ".8.5", integer(4))], status=3, index=1),
    "valid_long_octets": message(0xA3, [varbind(RULE + ".14.1.2", tlv(0x04, bytes(96)))], community=b"private"),
    "valid_v2c": message(0xA1, [varbind("1.3.6.1", NULL)], version=1),
    # Malformed classes.
    "empty": b"",
    "empty_sequence": b"\x30\x00",
    "length_beyond_buffer": b"\x30\x7f" + integer(0) + tlv(0x04, b"public"),
    "long_form_5_bytes": b"\x30\x85\x00\x00\x00\x00\x10" + bytes(16),
    "long_form_negative": b"\x30\x84\xff\xff\xff\xf0" + integer(0),
    "indefinite_length": b"\x30\x80" + integer(0) + tlv(0x04, b"public") + b"\x00\x00",
    "zero_length_integer": tlv(0x30, b"\x02\x00" + tlv(0x04, b"public")),
    "over_long_integer": message(0xA1, [varbind("1.3.6.1", tlv(0x02, b"\x01" * 12))]),
    "over_long_request_id": tlv(0x30, integer(0) + tlv(0x04, b"p") + tlv(0xA1, tlv(0x02, b"\x01" * 9) + integer(0) + integer(0) + tlv(0x30, b""))),
    "oid_subid_overflow": message(0xA1, [tlv(0x30, tlv(0x06, b"\x2b\x90\x80\x80\x80\x80\x00") + NULL)]),
    "oid_dangling_continuation": message(0xA1, [tlv(0x30, tlv(0x06, b"\x2b\x06\x81") + NULL)]),
    "oid_over_128_arcs": message(0xA1, [tlv(0x30, tlv(0x06, b"\x2b" + b"\x01" * 200) + NULL)]),
    "oid_empty": message(0xA1, [tlv(0x30, tlv(0x06, b"") + NULL)]),
    "multi_byte_tag": message(0xA1, [tlv(0x30, oid("1.3.6.1") + b"\x1f\x81\x00\x01\x00")]),
    "multi_byte_tag_top": b"\x3f\x81\x00" + bytes(4),
    "wrong_tag_pdu": message(0xA7, [varbind("1.3.6.1", NULL)]),
    "wrong_tag_community": tlv(0x30, integer(0) + tlv(0x02, b"\x01") + tlv(0xA1, b"")),
    "varbind_longer_than_list": message(0xA1, [b"\x30\x20" + oid("1.3.6.1") + NULL]),
    "trailing_bytes": message(0xA1, [varbind("1.3.6.1", NULL)]) + b"\x00\x00",
    "trailing_in_varbind": message(0xA1, [tlv(0x30, oid("1.3.6.1") + NULL + NULL)]),
    "deep_nesting": b"\x30\x82\x01\x90" + b"\x30\x82\x01\x8c" * 100,
    "nested_value": message(0xA1, [tlv(0x30, oid("1.3.6.1") + tlv(0x30, tlv(0x30, tlv(0x30, NULL))))]),
    "null_with_content": message(0xA1, [tlv(0x30, oid("1.3.6.1") + b"\x05\x01\x00")]),
    "ipaddress_3_bytes": message(0xA2, [tlv(0x30, oid("1.3.6.1") + b"\x40\x03\x01\x02\x03")]),
    "counter_too_big": message(0xA2, [tlv(0x30, oid("1.3.6.1") + b"\x41\x05\x01\x00\x00\x00\x00")]),
    "trap_pdu": tlv(0x30, integer(0) + tlv(0x04, b"public") + tlv(0xA4, oid("1.3.6.1") + tlv(0x40, b"\x7f\x00\x00\x01"))),
}

os.makedirs(sys.argv[1], exist_ok=True)
for name, data in seeds.items():
    with open(os.path.join(sys.argv[1], name), "wb") as f:
        f.write(data)
