# SPDX-License-Identifier: MIT
"""Reads and checks the table of operations."""

import re
from dataclasses import dataclass, field
from typing import Dict, List, NamedTuple, Optional

COLLECTION_ID = "@"

# C++ type -> D-Bus type
PARAMETER_TYPES = {
    "int": "i",
    "double": "d",
    "bool": "b",
    "const QString &": "s",
    "QString": "s",
    "QVariantMap": "a{sv}",
}


class Result(NamedTuple):
    signature: str
    failure: str  # what a failure returns, in words


RESULTS = {
    "void": Result("", ""),
    "int": Result("i", "0"),
    "double": Result("d", "0.0"),
    "bool": Result("b", "false"),
    "QString": Result("s", "a null string"),
    "QVariantMap": Result("a{sv}", "an empty map"),
    "ConfigurationList": Result("a(sa{sv})", "an empty list"),
    "lcm::PropList": Result("aa{sv}", "an empty list"),
    "lcm::EmbosserType": Result("i", "Undefined (0)"),
    "lcm::FeedType": Result("i", "Undefined (0)"),
    "lcm::HeadType": Result("i", "Undefined (0)"),
    "lcm::ModelMask": Result("i", "Undefined (0)"),
    "lcm::Orientation": Result("i", "Portrait (0)"),
}

CONSTNESS = {"both": (True, True), "private": (False, True), "none": (False, False)}

NOT_CONNECTED = ("Not connected.", "Not Connected.")


class TableError(Exception):
    """A row that cannot be: says where and why."""

    def __init__(self, path, line, reason):
        super().__init__(f"{path}:{line}: {reason}")


@dataclass(frozen=True)
class Parameter:
    type: str
    name: str
    default: Optional[str] = None

    @property
    def signature(self):
        return PARAMETER_TYPES[self.type]

    @property
    def value_type(self):
        """The type as the meta-object names it: without const and reference."""
        return self.type.replace("const ", "").rstrip(" &")

    @property
    def declaration(self):
        separator = "" if self.type.endswith("&") else " "
        return f"{self.type}{separator}{self.name}"


@dataclass
class Operation:
    line: int
    family: str
    result: str
    name: str
    parameters: List[Parameter]
    const_public: bool
    const_private: bool
    remote: str
    arguments: List[str]
    not_connected: str
    meaning: str

    @property
    def key(self):
        """The name and the parameter types: what tells overloads apart."""
        types = ", ".join(p.value_type for p in self.parameters)
        return f"{self.name}({types})"

    @property
    def inputs(self):
        """The name and the D-Bus type of each remote argument, in order."""
        types = {p.name: p.signature for p in self.parameters}
        return [("collectionId", "s") if a == COLLECTION_ID else (a, types[a])
                for a in self.arguments]

    @property
    def signature(self):
        return "".join(signature for _, signature in self.inputs)

    @property
    def setting(self):
        """X of a setX or getX."""
        return self.name[3:] if re.match(r"(set|get)[A-Z]", self.name) else None

    @property
    def sentence(self):
        """The meaning as a whole sentence."""
        if self.meaning[0].isupper():
            return self.meaning
        verb = "Sets" if self.name.startswith("set") else "Returns"
        return f"{verb} {self.meaning}."


@dataclass
class Table:
    operations: List[Operation] = field(default_factory=list)
    parameter_meanings: Dict[str, str] = field(default_factory=dict)

    def meaning_of(self, parameter):
        return self.parameter_meanings.get(parameter.name, "passed on unchanged")


def is_known(parameters, arguments):
    """Whether services know a call with such arguments from such parameters."""
    names = [p.name for p in parameters]
    types = [p.value_type for p in parameters]
    if arguments == names:
        return True
    if arguments == names + [COLLECTION_ID]:
        return types in ([], ["int"], ["double"], ["QString"], ["int", "int"])
    # A flag comes after the collection id; a key may come before the value.
    if names[-1:] != ["flag"] or arguments != names[:-1] + [COLLECTION_ID, "flag"]:
        return False
    return types[-1] == "bool" and (len(names) == 2 or (len(names) == 3 and types[0] == "QString"))


def load(path):
    """The table at path, checked; TableError names the first row that is wrong, and why."""
    table = Table()
    family = None
    in_parameters = False
    with open(path, encoding="utf-8") as lines:
        for number, text in enumerate(lines, 1):
            text = text.strip()
            try:
                if not text or text.startswith("#"):
                    continue
                if text == "(parameters)":
                    in_parameters = True
                elif text.startswith("[") and text.endswith("]"):
                    family, in_parameters = text[1:-1], False
                elif in_parameters:
                    name, meaning = _fields(text, 2)
                    if name in table.parameter_meanings:
                        raise ValueError(f"parameter {name!r} has a meaning already")
                    table.parameter_meanings[name] = meaning
                elif family is None:
                    raise ValueError("a row before the first [family]")
                else:
                    table.operations.append(_operation(number, family, text))
            except ValueError as error:
                raise TableError(path, number, error) from None
    _check_unique(path, table.operations)
    _share_meanings(path, table.operations)
    return table


def _fields(text, count):
    fields = [f.strip() for f in text.split("|")]
    if len(fields) != count:
        raise ValueError(f"{len(fields)} fields instead of {count}")
    return fields


def _operation(line, family, text):
    declaration, const, remote, arguments, not_connected, meaning = _fields(text, 6)
    match = re.fullmatch(r"(\S+) (\w+)\((.*)\)", declaration)
    if not match:
        raise ValueError(f"not a declaration: {declaration!r}")
    result, name, parameter_texts = match.groups()
    if result not in RESULTS:
        raise ValueError(f"unknown result type {result!r}")
    parameters = [_parameter(t) for t in parameter_texts.split(", ") if t]
    if any(p.default is not None for p in parameters[:-1]):
        raise ValueError("only the last parameter may have a default")
    if const not in CONSTNESS:
        raise ValueError(f"const is {', '.join(CONSTNESS)}; not {const!r}")
    if remote == "=":
        remote = name
    elif not re.fullmatch(r"[A-Za-z_]\w*", remote, re.ASCII):
        raise ValueError(f"not a remote method: {remote!r}")
    argument_names = [] if arguments == "-" else arguments.split(", ")
    for argument in argument_names:
        if argument != COLLECTION_ID and argument not in (p.name for p in parameters):
            raise ValueError(f"remote argument {argument!r} is no parameter")
    if not is_known(parameters, argument_names):
        raise ValueError(f"services know no call with ({arguments}) for ({parameter_texts})")
    if not_connected not in NOT_CONNECTED:
        raise ValueError(f"not-connected text {not_connected!r}")
    if not meaning:
        raise ValueError("no meaning")
    public, private = CONSTNESS[const]
    return Operation(line, family, result, name, parameters, public, private,
                     remote, argument_names, not_connected, meaning)


def _parameter(text):
    match = re.fullmatch(r"(const QString &|\S+ )(\w+)(?: = (\w+))?", text)
    if not match:
        raise ValueError(f"not a parameter: {text!r}")
    type_name, name, default = match.groups()
    type_name = type_name if type_name.endswith("&") else type_name.rstrip()
    if type_name not in PARAMETER_TYPES:
        raise ValueError(f"unknown parameter type {type_name!r}")
    return Parameter(type_name, name, default)


def _check_unique(path, operations):
    for what, value_of in (("operation", lambda o: o.key),
                           ("remote method", lambda o: o.remote)):
        seen = {}
        for operation in operations:
            first = seen.setdefault(value_of(operation), operation)
            if first is not operation:
                raise TableError(path, operation.line, f"{what} {value_of(operation)} "
                                                       f"stands already in line {first.line}")


def _share_meanings(path, operations):
    """Gives = the meaning of the other operation of the family's setX/getX pair."""
    stated = {(o.family, o.setting): o.meaning for o in operations if o.meaning != "="}
    for operation in operations:
        if operation.meaning == "=":
            pair = (operation.family, operation.setting)
            if operation.setting is None or pair not in stated:
                raise TableError(path, operation.line,
                                 f"no counterpart gives {operation.name} a meaning")
            operation.meaning = stated[pair]
