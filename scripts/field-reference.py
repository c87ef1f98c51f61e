#!/usr/bin/env python3
"""The README's field reference for sentrel-acl's desired-state files, made from
cli/schema/desired-state.schema.json so that the two never differ.

Usage: scripts/field-reference.py            print the reference (Markdown)
       scripts/field-reference.py --write    put it into README.md between its markers
       scripts/field-reference.py --check    exit 1 when README.md holds another text
"""
import json
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SCHEMA = ROOT / "cli" / "schema" / "desired-state.schema.json"
README = ROOT / "README.md"
BEGIN = "<!-- field reference: made by scripts/field-reference.py from cli/schema/desired-state.schema.json -->"
END = "<!-- end of field reference -->"


def kind(prop):
    """The JSON kind of a field as a reader wants it named."""
    if "const" in prop:
        return f'"{prop["const"]}"'
    if "enum" in prop:
        return " \\| ".join(f'"{v}"' for v in prop["enum"])
    if prop.get("type") == "boolean":
        return "true \\| false"
    if prop.get("type") == "array":
        return "list"
    if prop.get("type") == "object":
        return "object"
    if "oneOf" in prop:
        number = prop["oneOf"][0]
        if "maximum" in number:
            return f'{number["minimum"]}..{number["maximum"]}'
        return "number"
    return "text"


def table(title, definition, skip=()):
    about = definition["description"]
    heading = f"**{title}**" if about.lower() in (f"an {title.lower()}", f"a {title.lower()}") else f"**{title}**: {about}"
    lines = [heading, "", "| field | value | meaning |", "|---|---|---|"]
    required = set(definition.get("required", []))
    for name, prop in definition["properties"].items():
        if name in skip:
            continue
        mark = " (required)" if name in required else ""
        lines.append(f"| `{name}`{mark} | {kind(prop)} | {prop.get('description', '')} |")
    return lines + [""]


def models_table(models):
    lines = ["**Limits per model** (`x-models`; ACL / CPU ACL)", "",
             "| model | ports | profile IDs | Access IDs (ethernet, ipv4, ipv6, packet content) | rx_rate | packet content rules / profiles |",
             "|---|---:|---|---|---|---|"]
    for name, m in models.items():
        ids = " / ".join(f"1-{m['profile_id'][o]['maximum']}" for o in ("acl", "cpu_acl"))
        access = []
        for o in ("acl", "cpu_acl"):
            per = m["access_id"][o]
            access.append(", ".join(
                f"{per[t]['minimum']}-{per[t]['maximum']}" if t in per else "-"
                for t in ("ethernet", "ipv4", "ipv6", "packet_content")))
        rx = m.get("rx_rate")
        rx_text = "none" if rx is None else f"{rx['minimum']}-{rx['maximum']}" + (" or 0" if rx.get("zero_allowed") else "")
        pc = m["packet_content"]
        shapes = f"{pc.get('acl_rules', '-')} / {pc.get('acl_profiles', '-')}"
        lines.append(f"| {name} | {m['ports']} | {ids} | {' / '.join(access)} | {rx_text} | {shapes} |")
    return lines + [""]


def reference():
    schema = json.loads(SCHEMA.read_text())
    defs = schema["$defs"]
    lines = [BEGIN, "", schema["description"], ""]
    for name, title in (("ethernetProfile", "Ethernet profile"), ("ipv4Profile", "IPv4 profile"),
                        ("ipv6Profile", "IPv6 profile"), ("packetContentProfile", "Packet-content profile"),
                        ("ethernetRule", "Ethernet rule"), ("ipv4Rule", "IPv4 rule"), ("ipv6Rule", "IPv6 rule"),
                        ("packetContentRule", "Packet-content rule")):
        lines += table(title, defs[name])
    lines += models_table(schema["x-models"])
    return "\n".join(lines + [END]) + "\n"


def main(argv):
    text = reference()
    if len(argv) == 1:
        sys.stdout.write(text)
        return 0
    readme = README.read_text()
    start, stop = readme.find(BEGIN), readme.find(END)
    if start < 0 or stop < 0:
        print(f"{README}: the field reference markers are missing", file=sys.stderr)
        return 1
    current = readme[start:stop + len(END)] + "\n"
    if argv[1] == "--check":
        if current != text:
            print(f"{README}: the field reference differs from {SCHEMA.name}; run {argv[0]} --write", file=sys.stderr)
            return 1
        return 0
    if argv[1] == "--write":
        README.write_text(readme[:start] + text + readme[stop + len(END) + 1:])
        return 0
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv))
