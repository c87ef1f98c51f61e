"""How the module turns config into the engine's desired state, and the engine's reports into results."""

import pytest

from ansible_collections.sentrel.acl.plugins.module_utils import engine

RULE_1 = {"access_id": 1, "action": "permit", "ports": "1-8"}
RULE_2 = {"access_id": 2, "action": "deny", "ports": "9"}
HELD = {
    "acl": [
        {"id": 10, "type": "ethernet", "vlan": True, "rules": [RULE_1, RULE_2]},
        {"id": 11, "type": "ethernet", "vlan": True, "rules": []},
    ],
    "cpu_acl": [{"id": 1, "type": "ethernet", "vlan": True, "rules": [RULE_1]}],
}


@pytest.mark.parametrize("config, left", [
    # nothing named: both kinds emptied
    (None, {"acl": [], "cpu_acl": []}),
    ({"acl": None, "cpu_acl": None}, {"acl": [], "cpu_acl": []}),
    # one kind as an empty list: that kind only
    ({"acl": [], "cpu_acl": None}, {"acl": []}),
    # a profile by id: it goes with its rules; rules: [] is the same as naming the profile
    ({"acl": [{"id": 10, "rules": None}]}, {"acl": [HELD["acl"][1]]}),
    ({"acl": [{"id": 10, "rules": []}]}, {"acl": [HELD["acl"][1]]}),
    # a rule by access_id: only that rule, the profile stays
    ({"acl": [{"id": 10, "rules": [{"access_id": 2}]}]},
     {"acl": [dict(HELD["acl"][0], rules=[RULE_1]), HELD["acl"][1]]}),
    # the same ids in the other kind are other records; a kind not named is not sent at all
    ({"cpu_acl": [{"id": 10}]}, {"cpu_acl": HELD["cpu_acl"]}),
    # records the switch does not hold are no error
    ({"acl": [{"id": 99}, {"id": 11, "rules": [{"access_id": 5}]}]}, {"acl": HELD["acl"]}),
])
def test_deleted_leaves_everything_not_named(config, left):
    before = repr(HELD)
    assert engine.after_deletion(HELD, config) == left
    assert repr(HELD) == before, "the switch's state as read must not be changed in place"


def test_overridden_names_both_kinds_and_unset_options_are_not_sent():
    config = {"acl": [{"id": 3, "type": "ethernet", "vlan": True, "802.1p": None, "name": None,
                       "rules": [{"access_id": 1, "action": "deny", "ports": "1", "vlan": None}]}],
              "cpu_acl": None}
    wanted = [{"id": 3, "type": "ethernet", "vlan": True, "rules": [{"access_id": 1, "action": "deny", "ports": "1"}]}]
    assert engine.switch_state(config, "overridden") == {"acl": wanted, "cpu_acl": []}
    assert engine.switch_state(config, "merged") == {"acl": wanted}
    # false is a value the engine must see (a flag switched off), not an unset option
    assert engine.switch_state({"acl": [{"id": 1, "vlan": False}]}, "merged") == {"acl": [{"id": 1, "vlan": False}]}


def set_(oid, value):
    return {"oid": oid, "type": "INTEGER", "value": value}


def change(action, result, sets, **extra):
    c = {"action": action, "owner": "acl", "kind": "rule", "profile_id": 10, "access_id": 1,
         "before": None, "after": RULE_1, "sets": sets, "result": result}
    c.update(extra)
    return c


def report(result, changes, **extra):
    sw = {"name": "sw1", "address": "127.0.0.2", "model": "TVR4820", "result": result,
          "before": {"acl": []}, "after": {"acl": HELD["acl"]}, "changes": changes}
    sw.update(extra)
    return sw


def test_plan_result_lists_every_set_of_the_changes_and_closing_requests_last():
    sw = report("changes", [
        change("unchanged", "planned", [set_(".1.9", "4")]),
        change("create", "planned", [set_(".1.1", "4"), set_(".1.2", "7")]),
        change("delete", "planned", [set_(".1.3", "6")]),
    ], closing=[dict(set_(".1.100", "1"), owner="acl", kind="rule", result="planned")])
    result, error = engine.switch_result(sw, applied=False)
    assert error is None
    assert result["changed"] is True
    assert result["commands"] == [".1.1 INTEGER 4", ".1.2 INTEGER 7", ".1.3 INTEGER 6", ".1.100 INTEGER 1"]
    assert result["before"] == {"acl": []} and result["after"] == {"acl": HELD["acl"]}
    # an apply that only sent the closing request an earlier one owed changed the switch
    owed_only = report("changed", [change("unchanged", "done", [])],
                       closing=[dict(set_(".1.100", "1"), result="sent"), dict(set_(".1.101", "1"), result="held_back")])
    result, _ = engine.switch_result(owed_only, applied=True)
    assert result["changed"] is True and result["commands"] == [".1.100 INTEGER 1"]
        # not read back: nothing is known of the end state, which is not an empty switch
    assert engine.switch_result(report("interrupted", [], after=None), applied=True)[0]["after"] is None


@pytest.mark.parametrize("applied", [False, True])
def test_a_switch_not_read_whole_fails_the_task_and_reports_no_holdings(applied):
    why = "not read: the switch stopped answering while its acl ethernet profile table was read (1 row read)"
    sw = report("unreachable", [], before=None, after=None, error=why)
    result, error = engine.switch_result(sw, applied=applied)
    assert error == "sw1 unreachable: " + why
    assert result["changed"] is False and result["commands"] == []
    assert result["before"] == {} and result["after"] is None  # nothing known of it now


def test_refused_switch_fails_with_its_answer_the_record_and_only_what_was_sent():
    sw = report("failed", [
        change("create", "done", [set_(".1.1", "4")]),
        change("create", "failed", [set_(".1.2", "4")], error="badValue", access_id=2, after=RULE_2),
        change("create", "skipped", [set_(".1.3", "4")], error="not sent: profile 10 failed"),
        # the old rule's delete went out, its new one did not
        change("replace", "deleted_only", [set_(".1.4", "6"), set_(".1.5", "4")], access_id=3,
               error="deleted, not created again: interrupted"),
    ])
    result, error = engine.switch_result(sw, applied=True)
    assert error == "sw1 failed: acl rule 10/2: badValue; acl rule 10/3: deleted, not created again: interrupted"
    assert result["changed"] is True  # the first rule was written before the refusal
    assert result["commands"] == [".1.1 INTEGER 4", ".1.2 INTEGER 4", ".1.4 INTEGER 6"]
    assert [f["access_id"] for f in result["failures"]] == [2, 3]
    assert result["failures"][0] == {"action": "create", "owner": "acl", "kind": "rule", "profile_id": 10,
                                     "access_id": 2, "record": RULE_2, "error": "badValue"}
