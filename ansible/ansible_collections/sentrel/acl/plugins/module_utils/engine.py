# -*- coding: utf-8 -*-
"""sentrel.acl.acls over the sentrel-acl engine: what to ask it and how to read its answer.

Everything here is plain data in, plain data out, so that the module itself only runs the
engine. The engine reads the switch, plans, writes, reads back and verifies; the module never
builds a request of its own.
"""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

import copy

from ansible_collections.sentrel.acl.plugins.module_utils.argspec import ACL_KINDS

# The environment variables through which the engine takes the communities: they never go on
# its command line, where any user of the controller could read them.
READ_ENV = "SENTREL_READ_COMMUNITY"
WRITE_ENV = "SENTREL_WRITE_COMMUNITY"

# A change that the switch must be sent something for; "unchanged" and "kept" send nothing.
WRITING_ACTIONS = ("create", "delete", "replace")
FAILED_RESULTS = ("failed", "unreachable", "interrupted")
# A closing request that went out, answered or not ("held_back" ones were not sent).
SENT_CLOSING = ("sent", "failed")


def strip_unset(value):
    """The config without the options left unset: the engine reads a present field as set."""
    if isinstance(value, dict):
        return dict((k, strip_unset(v)) for k, v in value.items() if v is not None)
    if isinstance(value, list):
        return [strip_unset(v) for v in value]
    return value


def switch_state(config, state):
    """One switch's desired state in the engine's format, from the module's `config`.

    `overridden` means the switch holds exactly `config`, both ACL kinds included: a kind the
    config leaves out is emptied, as other vendors' resource modules do.
    """
    wanted = strip_unset(config or {})
    out = {}
    for kind in ACL_KINDS:
        if wanted.get(kind) is not None:
            out[kind] = wanted[kind]
        elif state == "overridden":
            out[kind] = []
    return out


def after_deletion(current, config):
    """What the switch holds once the records named in `config` are gone.

    No config: everything of both kinds. A kind given as an empty list: everything of it. A
    profile named without rules: the profile with its rules. A profile named with rules: only
    those rules. Records the switch does not hold are ignored. The result, applied as
    `overridden`, leaves every other record as the switch holds it; a kind not named is left
    out of it, so the engine neither reads nor writes that kind.
    """
    wanted = strip_unset(config or {})
    named_kinds = [k for k in ACL_KINDS if wanted.get(k) is not None] or list(ACL_KINDS)
    out = {}
    for kind in ACL_KINDS:
        if kind not in named_kinds:
            continue
        held = copy.deepcopy((current or {}).get(kind) or [])
        named = wanted.get(kind)
        if not named:
            out[kind] = []
            continue
        by_id = dict((p["id"], p) for p in named)
        kept = []
        for profile in held:
            target = by_id.get(profile.get("id"))
            if target is None:
                kept.append(profile)
            elif target.get("rules"):
                gone = set(r["access_id"] for r in target["rules"])
                profile["rules"] = [r for r in profile.get("rules") or [] if r.get("access_id") not in gone]
                kept.append(profile)
        out[kind] = kept
    return out


def document(name, switch):
    """The desired-state file for one switch."""
    return {"switches": {name: switch}}


def command_text(request):
    """One SET as the engine sends it: OID, type and value, as net-snmp's snmpset takes them."""
    return "%s %s %s" % (request["oid"], request["type"], request["value"])


def commands_of(switch, only_done=False):
    """Every SET of a switch's changes in the order sent, its closing requests last.

    `only_done`: of an apply, only what was sent (a failed switch's later changes were not).
    """
    out = []
    for change in switch.get("changes") or []:
        if change.get("action") not in WRITING_ACTIONS:
            continue
        sets = change.get("sets") or []
        if only_done and change.get("result") == "deleted_only":
            sets = sets[:1]  # the old record's delete went out, its new one did not
        elif only_done and change.get("result") not in ("done", "failed"):
            continue
        out.extend(command_text(s) for s in sets)
    for closing in switch.get("closing") or []:
        if not only_done or closing.get("result") in SENT_CLOSING:
            out.append(command_text(closing))
    return out


def is_changed(switch, applied):
    """Whether the switch was (or, planned, would be) changed."""
    for change in switch.get("changes") or []:
        if change.get("action") not in WRITING_ACTIONS:
            continue
        if not applied or change.get("result") in ("done", "failed", "deleted_only"):
            return True
    # A closing request alone changes the switch: it puts the records that landed to work.
    return any(not applied or c.get("result") in SENT_CLOSING for c in switch.get("closing") or [])


def kept_records(switch):
    """The records `merged` left as the switch holds them although the config differs."""
    out = []
    for change in switch.get("changes") or []:
        if change.get("action") != "kept":
            continue
        name = "%s %s %s" % (change.get("owner", ""), change.get("kind", ""), change.get("profile_id", ""))
        if change.get("access_id") is not None:
            name += "/%s" % change["access_id"]
        out.append("%s: %s" % (name, change.get("note") or "differs on the switch; state replaced replaces it"))
    return out


def failures_of(switch):
    """The records the switch refused, each with the switch's answer."""
    out = []
    for change in switch.get("changes") or []:
        if change.get("result") not in ("failed", "deleted_only"):
            continue
        item = dict((k, change.get(k)) for k in ("action", "owner", "kind", "profile_id", "access_id")
                    if change.get(k) is not None)
        item["record"] = change.get("after") if change.get("after") is not None else change.get("before")
        item["error"] = change.get("error", "")
        out.append(item)
    return out


def record_error(failure):
    """A refused record and the switch's answer, e.g. "acl rule 5/2: badValue"."""
    record = "%s %s %s" % (failure.get("owner", ""), failure.get("kind", ""), failure.get("profile_id", ""))
    if failure.get("access_id") is not None:
        record += "/%s" % failure["access_id"]
    return "%s: %s" % (record.strip(), failure.get("error", ""))


def find_switch(report, name):
    """The one switch of a plan or apply report (or a show document's entry)."""
    switches = report.get("switches")
    if isinstance(switches, dict):
        return switches.get(name)
    for switch in switches or []:
        if switch.get("name") == name:
            return switch
    return None


def switch_result(switch, applied):
    """The module's result for one switch of a plan (check mode) or an apply.

    Returns (result, error): `error` is None when the switch did everything asked.
    """
    result = {
        "changed": is_changed(switch, applied),
        "before": switch.get("before") or {},
        # None when the switch was not read back: nothing is known of what it holds now.
        "after": switch.get("after"),
        "commands": commands_of(switch, only_done=applied),
    }
    error = None
    if switch.get("result") in FAILED_RESULTS:
        result["failures"] = failures_of(switch)
        why = switch.get("error") or "; ".join(record_error(f) for f in result["failures"])
        error = "%s %s: %s" % (switch.get("name", "the switch"), switch.get("result"), why or "no reason given")
    return result, error


def engine_args(path, command, params):
    """The engine's command line for one switch: never a community on it."""
    args = [path]
    for option in ("timeout", "retries"):
        if params.get(option) is not None:
            args += ["--" + option, str(params[option])]
    args += [command, "--json", "--switch", params["address"], "--model", params["model"],
             "--name", params["name"]]
    return args


def engine_environment(params):
    """The communities for the engine's environment, only those given."""
    env = {}
    if params.get("read_community") is not None:
        env[READ_ENV] = params["read_community"]
    if params.get("write_community") is not None:
        env[WRITE_ENV] = params["write_community"]
    return env
