# SPDX-License-Identifier: MIT
"""Reads the lock of the wire contract."""

import pathlib
import re
from typing import List, NamedTuple

LOCK = pathlib.Path(__file__).with_name("operations.lock")
COLLECTION_ID = "<id>"

DECLARATION = re.compile(r"(?P<result>[\w:]+) (?P<name>\w+)\((?P<parameters>.*)\)")
PARAMETER = re.compile(r"(?P<type>.*?[ &])(?P<name>\w+)(?: = (?P<default>\w+))?")


class Parameter(NamedTuple):
    type: str
    name: str
    default: str  # or None

    @property
    def value_type(self):
        return self.type.replace("const ", "").rstrip(" &")


class Operation(NamedTuple):
    result: str
    name: str
    parameters: List[Parameter]
    facade_const: bool
    private_const: bool
    remote_method: str
    signature: str
    arguments: List[str]
    reply: str
    not_connected: str

    @property
    def default_form(self):
        """The parameters of the call that leaves out what has a default; None without any."""
        given = [p for p in self.parameters if p.default is None]
        return given if len(given) < len(self.parameters) else None

    @property
    def shape(self):
        """How the remote arguments follow from the parameters."""
        count = len(self.parameters)
        if COLLECTION_ID not in self.arguments:
            return {0: "nothing", 1: "value"}.get(count, "values")
        if self.parameters and self.parameters[-1].name == "flag":
            return {2: "value, id, flag", 3: "key, value, id, flag"}[count]
        return {0: "id", 1: "value, id", 2: "value, counter, id"}[count]


def load():
    rows = (line for line in LOCK.read_text(encoding="utf-8").splitlines()
            if line and not line.startswith("#"))
    return [parse(row) for row in rows]


def parse(row):
    declaration, const, remote_method, signature, arguments, reply, not_connected = row.split(" | ")
    result, name, parameters = DECLARATION.fullmatch(declaration).groups()
    facade, private = const.split()
    return Operation(
        result, name,
        [Parameter(type.strip(), name, default) for type, name, default in (
            PARAMETER.fullmatch(text).groups() for text in parameters.split(", ") if text)],
        facade == "const", private == "const", remote_method,
        "" if signature == "-" else signature,
        [] if arguments == "-" else arguments.split(),
        reply, not_connected)
