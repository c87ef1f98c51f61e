"""sentrel.acl.acls through ansible-playbook against a simulated fleet of every model.

Needs the simulator's UDP 161 on 127.0.19.x: run in a network namespace of its own (the ctest
entry does). SENTREL_SIM and SENTREL_ACL name the built programs.
"""

import json
import os
import re
import signal
import subprocess
import time

import pytest

REPO = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "..", ".."))
SIM = os.environ.get("SENTREL_SIM", os.path.join(REPO, "build/native/sim/sentrel-sim"))
ACL = os.environ.get("SENTREL_ACL", os.path.join(REPO, "build/native/cli/sentrel-acl"))
READ, WRITE = "rd-Zq7pub", "wr-K9xpriv"  # odd enough that no other text holds them by chance

MODELS = ["TVG5240-10", "TVG5470", "TVG5690", "TVR4060", "TVR4510", "TVR4820", "TVR4512"]
HEALTHY = dict(("sw-%s" % m, ("127.0.19.%d" % (i + 1), m, "")) for i, m in enumerate(MODELS))
# The refusing switch answers its 2nd SET with an error; the silent one never answers.
FAULTY = {"sw-refusing": ("127.0.19.20", "TVR4820", "refuse-set=2 refuse-status=badValue"),
          "sw-silent": ("127.0.19.21", "TVG5470", "silent")}
FLEET = dict(HEALTHY, **FAULTY)

CONFIG = {
    "acl": [
        {"id": 3, "type": "ethernet", "vlan": True, "rules": [
            {"access_id": 1, "action": "permit", "ports": "1-4", "vlan": "mgmt"},
            {"access_id": 7, "action": "deny", "ports": "2,9"}]},
        {"id": 5, "type": "ipv4", "dst_ip_mask": "255.255.255.0", "protocol": "udp", "dst_port_mask": "FFFF",
         "rules": [{"access_id": 2, "action": "mirror", "ports": "1-8,10", "dst_ip": "10.1.1.0", "dst_port": 53}]}],
    "cpu_acl": [{"id": 1, "type": "ethernet", "vlan": True,
                 "rules": [{"access_id": 4, "action": "deny", "ports": "5"}]}],
}



def config_of(model):
    """TVR4512 switches keep a name with each profile of the ordinary ACL, and need one."""
    if model != "TVR4512":
        return CONFIG
    return dict(CONFIG, acl=[dict(p, name="p%d" % p["id"]) for p in CONFIG["acl"]])


PLAYBOOK = """
- hosts: all
  gather_facts: false
  tasks:
    - sentrel.acl.acls:
        config: "{{ acls | default(omit) }}"
        state: "{{ acls_state }}"
"""


@pytest.fixture(scope="module")
def fleet(tmp_path_factory):
    work = tmp_path_factory.mktemp("ansible")
    with open(work / "fleet.txt", "w") as f:
        for address, model, options in FLEET.values():
            f.write("%s %s %s %s %s\n" % (address, model, READ, WRITE, options))
    sim_log = open(work / "sim.log", "w+")
    sim = subprocess.Popen([SIM, "--fleet", str(work / "fleet.txt")], stdout=sim_log, stderr=subprocess.STDOUT)
    for _ in range(100):
        if "ready" in (work / "sim.log").read_text():
            break
        time.sleep(0.05)
    # The collection as users install it: built into a tarball, installed from it.
    subprocess.run(["ansible-galaxy", "collection", "build", "--output-path", str(work),
                    os.path.join(REPO, "ansible/ansible_collections/sentrel/acl")], check=True, capture_output=True)
    tarball = [p for p in os.listdir(work) if p.endswith(".tar.gz")][0]
    subprocess.run(["ansible-galaxy", "collection", "install", "-p", str(work / "collections"), str(work / tarball)],
                   check=True, capture_output=True)
    hosts = dict((name, {"ansible_host": a, "sentrel_model": m, "acls": config_of(m)})
                 for name, (a, m, _) in FLEET.items())
    hosts["sw-silent"]["sentrel_timeout"] = 300  # the others keep the engine's own
    inventory = {"all": {"hosts": hosts, "vars": {
        "ansible_connection": "local", "ansible_python_interpreter": "{{ ansible_playbook_python }}",
        "sentrel_acl_path": ACL, "sentrel_audit_log": str(work / "audit.jsonl"),
        "sentrel_read_community": READ, "sentrel_write_community": WRITE}}}
    (work / "inventory.json").write_text(json.dumps(inventory))
    (work / "play.yml").write_text(PLAYBOOK)
    yield work, sim_log
    sim.send_signal(signal.SIGTERM)
    sim.wait()


def play(fleet, state, *flags, extra=None):
    """Runs the playbook; returns its output, each host's result and each host's recap counts."""
    work, _ = fleet
    out = work / ("out-%s-%d" % (state, time.monotonic_ns()))
    out.mkdir()
    env = dict(os.environ, XDG_STATE_HOME=str(work / "state"),
               ANSIBLE_COLLECTIONS_PATH=str(work / "collections"), ANSIBLE_PIPELINING="True",
               ANSIBLE_FORKS="10", ANSIBLE_NOCOLOR="1", ANSIBLE_LOCAL_TEMP=str(work / "tmp"),
               ANSIBLE_HOME=str(work / "home"), ANSIBLE_RETRY_FILES_ENABLED="False",
               # each host's result, as the module returned it, into a file of its own
               ANSIBLE_CALLBACKS_ENABLED="ansible.builtin.tree", ANSIBLE_CALLBACK_TREE_DIR=str(out))
    variables = dict({"acls_state": state}, **(extra or {}))
    run = subprocess.run(["ansible-playbook", "-i", str(work / "inventory.json"), str(work / "play.yml"),
                          "-e", json.dumps(variables)] + list(flags), env=env, capture_output=True, text=True)
    output = run.stdout + run.stderr
    results = dict((p, json.loads((out / p).read_text())) for p in os.listdir(out))
    recap = dict((m.group(1), dict((k, int(v)) for k, v in re.findall(r"(\w+)=(\d+)", m.group(2))))
                 for m in re.finditer(r"^(\S+)\s+:\s+(ok=.*)$", output, re.M))
    return output, results, recap


def sets_sent(fleet):
    fleet[1].flush()
    return sum(1 for line in open(fleet[1].name) if line.startswith("SET "))


def show_json(name):
    address, model, _ = FLEET[name]
    env = dict(os.environ, SENTREL_READ_COMMUNITY=READ)
    run = subprocess.run([ACL, "show", "--json", "--switch", address, "--model", model, "--name", name],
                         env=env, capture_output=True, text=True, check=True)
    return json.loads(run.stdout)["switches"][name]


# What check mode planned for the empty switches, for rendered to be compared with.
FIRST_PLAN = {}


def assert_no_community(text):
    assert READ not in text and WRITE not in text


def test_merged_check_mode_then_apply_then_nothing_left_to_do(fleet):
    sent = sets_sent(fleet)
    output, planned, recap = play(fleet, "merged", "--check", "--diff", "-vvv")
    assert sets_sent(fleet) == sent, "check mode must send no SET"
    assert_no_community(output)
    for name in HEALTHY:
        assert planned[name]["changed"] and planned[name]["commands"], name
        FIRST_PLAN[name] = planned[name]["commands"]
    assert "+++ after" in output and "--- before" in output

    output, applied, recap = play(fleet, "merged", "--diff", "-vvv")
    assert_no_community(output)
    assert sets_sent(fleet) > sent
    for name in HEALTHY:
        assert recap[name]["failed"] == 0 and recap[name]["changed"] == 1, (name, output)
        assert applied[name]["commands"] == planned[name]["commands"], name
        assert applied[name]["after"] == applied[name]["diff"]["after"]
    for name in FAULTY:
        assert recap[name]["failed"] == 1, name
    refused = applied["sw-refusing"]
    assert "badValue" in json.dumps(refused["failures"]) and refused["failures"][0]["record"]
    assert "+++ after" in output
    assert_no_community((fleet[0] / "audit.jsonl").read_text())

    _, _, recap = play(fleet, "merged")
    for name in HEALTHY:
        assert (recap[name]["changed"], recap[name]["failed"]) == (0, 0), name


def test_gathered_is_what_show_prints(fleet):
    _, results, _ = play(fleet, "gathered")
    for name in HEALTHY:
        assert results[name]["gathered"] == show_json(name), name
        assert results[name]["gathered"]["acl"], name


def test_rendered_needs_no_switch_and_lists_the_sets_of_merged(fleet):
    sent = sets_sent(fleet)
    _, results, recap = play(fleet, "rendered", "--limit", "sw-silent,sw-TVR4820",
                             extra={"sentrel_read_community": None})
    assert sets_sent(fleet) == sent
    assert recap["sw-silent"]["failed"] == 0
    assert results["sw-TVR4820"]["rendered"] == FIRST_PLAN["sw-TVR4820"]


def snmpset_rule(name, rule):
    """Creates a rule on the switch by hand, with the SETs the engine plans for it."""
    address, model, _ = FLEET[name]
    desired = {"switches": {name: {"acl": [dict(config_of(model)["acl"][0], rules=[rule])]}}}
    plan = subprocess.run([ACL, "plan", "--json", "--assume-empty", "--switch", address, "--model", model,
                           "--name", name, "-"], input=json.dumps(desired), capture_output=True, text=True, check=True)
    change = [c for c in json.loads(plan.stdout)["switches"][0]["changes"] if c["kind"] == "rule"][0]
    letters = {"INTEGER": "i", "STRING": "s", "Hex-STRING": "x", "IpAddress": "a"}
    args = ["snmpset", "-v1", "-c", WRITE, "-t", "1", "-r", "0", address]
    for s in change["sets"]:
        args += [s["oid"], letters[s["type"]], s["value"]]
    subprocess.run(args, check=True, capture_output=True, env=dict(os.environ, MIBS=""))


# The tests below start from the state the merged runs above left on the switches.
def test_overridden_brings_back_a_switch_changed_by_hand(fleet):
    expected = show_json("sw-TVR4512")
    snmpset_rule("sw-TVR4512", {"access_id": 9, "action": "deny", "ports": "3"})
    assert show_json("sw-TVR4512") != expected
    _, results, recap = play(fleet, "overridden", "--limit", "sw-TVR4512")
    assert recap["sw-TVR4512"]["changed"] == 1
    assert len(results["sw-TVR4512"]["commands"]) >= 1
    assert show_json("sw-TVR4512") == expected


def test_deleted_removes_the_named_records_and_then_a_whole_kind(fleet):
    one_rule = {"acl": [{"id": 3, "rules": [{"access_id": 7}]}, {"id": 5}]}
    _, _, recap = play(fleet, "deleted", extra={"acls": one_rule})
    for name in HEALTHY:
        held = show_json(name)
        assert recap[name]["changed"] == 1, name
        assert [p["id"] for p in held["acl"]] == [3], name
        assert [r["access_id"] for r in held["acl"][0]["rules"]] == [1], name
        assert held["cpu_acl"], name
    _, _, recap = play(fleet, "deleted", "--limit", "sw-TVG5690", extra={"acls": {"cpu_acl": []}})
    held = show_json("sw-TVG5690")
    assert recap["sw-TVG5690"]["changed"] == 1
    assert not held.get("cpu_acl") and held["acl"]
