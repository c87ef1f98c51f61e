"""The module as Ansible runs it: its arguments, its documentation, and what it hands the engine."""

import ast
import io
import json
import os
import sys
import textwrap

import pytest
import yaml

from ansible.module_utils import basic
from ansible.module_utils.common.text.converters import to_bytes

from ansible_collections.sentrel.acl.plugins.module_utils.argspec import ARGUMENT_SPEC
from ansible_collections.sentrel.acl.plugins.modules import acls

REPO = os.path.abspath(os.path.join(os.path.dirname(__file__), *[".."] * 6))
SCHEMA = os.path.join(REPO, "cli", "schema", "desired-state.schema.json")


def documented_options():
    tree = ast.parse(open(acls.__file__).read())
    for node in tree.body:
        if isinstance(node, ast.Assign) and node.targets[0].id == "DOCUMENTATION":
            return yaml.safe_load(node.value.value)["options"]
    raise AssertionError("no DOCUMENTATION")


def differences(opts, doc, path="$"):
    """Where the argument_spec and the documentation disagree (names, types, choices, defaults)."""
    out = []
    for name in sorted(set(opts) | set(doc)):
        where = "%s.%s" % (path, name)
        if name not in opts or name not in doc:
            out.append("%s only in %s" % (where, "the argspec" if name in opts else "the documentation"))
            continue
        s, d = opts[name], doc[name]
        for key in ("type", "elements", "choices", "required", "default", "no_log"):
            if s.get(key) not in (d.get(key), None) or (key in d and s.get(key) != d.get(key)):
                if key == "no_log":
                    continue  # documented in prose, not a documentation key
                out.append("%s: %s %r vs %r" % (where, key, s.get(key), d.get(key)))
        out += differences(s.get("options") or {}, d.get("suboptions") or {}, where)
    return out


def test_documentation_agrees_with_the_argument_spec():
    assert differences(ARGUMENT_SPEC, documented_options()) == []


def schema_types(node, schema, seen=()):
    """The JSON types a schema node allows, through $ref, allOf/anyOf/oneOf and if/then/else."""
    node = resolve(node, schema)
    types = set()
    t = node.get("type")
    if t is not None:
        types |= set(t if isinstance(t, list) else [t])
    if "enum" in node or "const" in node:
        values = node.get("enum", [node.get("const")])
        types |= set(json_type(v) for v in values)
    for key in ("allOf", "anyOf", "oneOf"):
        for sub in node.get(key, []):
            types |= schema_types(sub, schema)
    return types


def json_type(value):
    return {bool: "boolean", int: "integer", float: "number", str: "string",
            list: "array", dict: "object"}[type(value)]


def resolve(node, schema):
    while isinstance(node, dict) and "$ref" in node:
        target = schema
        for part in node["$ref"].lstrip("#/").split("/"):
            target = target[part.replace("~1", "/").replace("~0", "~")]
        node = dict(target, **dict((k, v) for k, v in node.items() if k != "$ref"))
    return node


def properties(node, schema):
    """Every property a record may have, over all its variants (the types of profile and rule)."""
    node = resolve(node, schema)
    out = {}
    for name, sub in (node.get("properties") or {}).items():
        out.setdefault(name, []).append(sub)
    for key in ("allOf", "anyOf", "oneOf", "then", "else"):
        subs = node.get(key, [])
        for sub in subs if isinstance(subs, list) else [subs]:
            for name, defs in properties(sub, schema).items():
                out.setdefault(name, []).extend(defs)
    return out


def items_of(defs, schema):
    return [resolve(resolve(d, schema).get("items", {}), schema) for d in defs]


# What each argspec type takes of a JSON document: an int option also takes a whole number's
# digits as text, as the engine does for IDs.
ARGSPEC_TYPES = {"int": {"integer", "string"}, "str": {"string"}, "bool": {"boolean"}, "list": {"array"},
                 "dict": {"object"}, "raw": {"integer", "string"}}


def schema_differences(opts, props, schema, path):
    out = []
    for name in sorted(set(opts) | set(props)):
        where = "%s.%s" % (path, name)
        if name not in opts or name not in props:
            out.append("%s only in %s" % (where, "the argspec" if name in opts else "the schema"))
            continue
        allowed = set()
        for d in props[name]:
            allowed |= schema_types(d, schema)
        allowed = set("integer" if t == "number" else t for t in allowed)
        if allowed and ARGSPEC_TYPES[opts[name]["type"]] != allowed:
            out.append("%s: argspec %s, schema %s" % (where, opts[name]["type"], sorted(allowed)))
        if name == "rules":
            rules = {}
            for item in items_of(props[name], schema):
                for rule_name, defs in properties(item, schema).items():
                    rules.setdefault(rule_name, []).extend(defs)
            out += schema_differences(opts[name]["options"], rules, schema, where + "[]")
    return out


@pytest.mark.skipif(not os.path.exists(SCHEMA), reason="the engine's desired-state schema is not in this tree")
def test_argument_spec_agrees_with_the_engines_desired_state_schema():
    schema = json.load(open(SCHEMA))
    switches = resolve(resolve(schema, schema)["properties"]["switches"], schema)
    switch = resolve(switches.get("additionalProperties") or list(switches["patternProperties"].values())[0], schema)
    kinds = properties(switch, schema)
    config = ARGUMENT_SPEC["config"]["options"]
    assert sorted(kinds) == sorted(config)
    for kind in config:
        profile = {}
        for item in items_of(kinds[kind], schema):
            for name, defs in properties(item, schema).items():
                profile.setdefault(name, []).extend(defs)
        assert schema_differences(config[kind]["options"], profile, schema, "$." + kind + "[]") == []


FAKE_ENGINE = textwrap.dedent("""\
    #!%s
    import json, os, sys
    calls = os.environ["FAKE_CALLS"]
    with open(calls, "a") as f:
        f.write(json.dumps({"argv": sys.argv[1:], "stdin": sys.stdin.read(),
                            "env": {k: v for k, v in os.environ.items() if k.startswith("SENTREL_")}}) + "\\n")
    answers = json.load(open(os.environ["FAKE_ANSWER"]))
    sys.stdout.write(answers.get(next(a for a in sys.argv[1:] if a in ("show", "plan", "apply")), ""))
    sys.exit(int(os.environ.get("FAKE_RC", "0")))
    """) % sys.executable

HELD = {"acl": [{"id": 10, "type": "ethernet", "vlan": True,
                 "rules": [{"access_id": 1, "action": "permit", "ports": "1-8"}]}]}


@pytest.fixture
def run_module(tmp_path, monkeypatch, capsys):
    engine_path = tmp_path / "sentrel-acl"
    engine_path.write_text(FAKE_ENGINE)
    engine_path.chmod(0o755)
    monkeypatch.setenv("FAKE_CALLS", str(tmp_path / "calls"))

    def run(args, answers, rc=0, check_mode=False):
        """answers: what the engine prints, by its command."""
        (tmp_path / "answer").write_text(json.dumps(dict((k, v if isinstance(v, str) else json.dumps(v))
                                                         for k, v in answers.items())))
        monkeypatch.setenv("FAKE_ANSWER", str(tmp_path / "answer"))
        monkeypatch.setenv("FAKE_RC", str(rc))
        full = dict({"address": "127.0.0.2", "model": "TVR4820", "name": "sw1",
                     "read_community": "r3ad-secret", "write_community": "wr1te-secret",
                     "sentrel_acl_path": str(engine_path)}, **args)
        full.update({"_ansible_check_mode": check_mode, "_ansible_diff": True,
                     "_ansible_remote_tmp": str(tmp_path), "_ansible_keep_remote_files": False})
        monkeypatch.setattr(basic, "_ANSIBLE_ARGS", to_bytes(json.dumps({"ANSIBLE_MODULE_ARGS": full})))
        (tmp_path / "calls").write_text("")
        with pytest.raises(SystemExit):
            acls.main()
        output = capsys.readouterr().out
        calls = [json.loads(line) for line in (tmp_path / "calls").read_text().splitlines()]
        return json.loads(output), output, calls
    return run


def apply_report(result="changed"):
    return {"format_version": 1, "command": "apply", "state": "merged", "switches": [{
        "name": "sw1", "address": "127.0.0.2", "model": "TVR4820", "result": result,
        "before": {"acl": []}, "after": HELD,
        "changes": [{"action": "create", "owner": "acl", "kind": "profile", "profile_id": 10,
                     "before": None, "after": HELD["acl"][0], "result": "done",
                     "sets": [{"oid": ".1.3.6.1.4.1.32473.1", "type": "INTEGER", "value": "4"}]},
                    {"action": "kept", "owner": "acl", "kind": "rule", "profile_id": 10, "access_id": 2,
                     "before": None, "after": None, "result": "planned", "sets": [],
                     "note": "not sent: profile 10 on the switch is ipv4, the file says ethernet"}]}]}


@pytest.mark.parametrize("check_mode, command", [(False, "apply"), (True, "plan")])
def test_merged_hands_the_engine_one_switch_by_stdin_and_communities_by_environment(run_module, check_mode, command):
    result, output, calls = run_module({"config": {"acl": HELD["acl"]}, "timeout": 500, "retries": 2},
                                       {command: apply_report()}, check_mode=check_mode)
    assert len(calls) == 1
    argv = calls[0]["argv"]
    assert argv[:6] == ["--timeout", "500", "--retries", "2", command, "--json"] and argv[-1] == "-"
    assert argv[argv.index("--switch") + 1] == "127.0.0.2" and argv[argv.index("--model") + 1] == "TVR4820"
    assert argv[argv.index("--state") + 1] == "merged"
    assert ("--yes" in argv) == (command == "apply")
    assert json.loads(calls[0]["stdin"]) == {"switches": {"sw1": HELD}}
    assert calls[0]["env"] == {"SENTREL_READ_COMMUNITY": "r3ad-secret", "SENTREL_WRITE_COMMUNITY": "wr1te-secret"}
    assert "secret" not in output
    assert result["changed"] is True
    assert result["commands"] == [".1.3.6.1.4.1.32473.1 INTEGER 4"]
    assert result["diff"] == {"before": {"acl": []}, "after": HELD}
    # merged does not pass over a record it leaves alone in silence
    assert [w for w in result["warnings"] if "acl rule 10/2: not sent: profile 10 on the switch is ipv4" in w]


@pytest.mark.parametrize("args, message", [
    ({"state": "merged"}, "config"),
    ({"state": "overridden"}, "config"),
    ({"config": {"acl": [{"type": "ethernet"}]}}, "id"),
    ({"config": {"acl": [{"id": 1, "rules": [{"access_id": 1, "action": "drop"}]}]}}, "action"),
    ({"config": {"acl": [{"id": 1, "colour": "red"}]}}, "colour"),
    ({"config": {"acl": []}, "model": None}, "model"),
])
def test_bad_arguments_fail_before_the_engine_runs(run_module, args, message):
    result, output, calls = run_module(args, {})
    assert result["failed"] is True and message in result["msg"]
    assert calls == [] and "secret" not in output


@pytest.mark.parametrize("args, answers, command", [
    # a switch that did not answer is no empty switch
    ({"state": "gathered"}, {"show": {"switches": {}}}, "show"),
    ({"config": {"acl": HELD["acl"]}}, {"apply": ""}, "apply"),
])
def test_engine_failures_without_a_result_fail_the_task(run_module, args, answers, command):
    result, _, _ = run_module(args, answers, rc=2)
    assert result["failed"] is True and "sentrel-acl %s failed" % command in result["msg"]
