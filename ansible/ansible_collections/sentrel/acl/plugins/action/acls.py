# -*- coding: utf-8 -*-
"""Fills sentrel.acl.acls's switch and communities from the host's variables.

The module runs on the controller, where it cannot see the inventory: the address, model and
communities that the inventory (or a vault) keeps per host are handed to it here, unless the
task gives them itself.
"""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

from ansible.plugins.action import ActionBase

# module option -> host variables tried in turn
HOST_VARIABLES = (
    ("address", ("ansible_host", "inventory_hostname")),
    ("model", ("sentrel_model",)),
    ("name", ("inventory_hostname",)),
    ("read_community", ("sentrel_read_community",)),
    ("write_community", ("sentrel_write_community",)),
    ("timeout", ("sentrel_timeout",)),
    ("retries", ("sentrel_retries",)),
    ("audit_log", ("sentrel_audit_log",)),
    ("sentrel_acl_path", ("sentrel_acl_path",)),
)


class ActionModule(ActionBase):
    def run(self, tmp=None, task_vars=None):
        task_vars = task_vars or {}
        result = super(ActionModule, self).run(tmp, task_vars)
        args = dict(self._task.args)
        for option, variables in HOST_VARIABLES:
            if args.get(option) is not None:
                continue
            for variable in variables:
                if task_vars.get(variable) is not None:
                    args[option] = self._templar.template(task_vars[variable])
                    break
        result.update(self._execute_module(module_name="sentrel.acl.acls", module_args=args,
                                           task_vars=task_vars))
        return result
