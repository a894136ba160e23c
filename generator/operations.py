# SPDX-License-Identifier: MIT
"""Reads and checks the table of operations."""

import re
from dataclasses import dataclass, field
from typing import Dict, FrozenSet, List, NamedTuple, Optional

COLLECTION_ID = "@"
FIELDS = 7

# C++ type -> D-Bus type
PARAMETER_TYPES = {
    "int": "i",
    "double": "d",
    "bool": "b",
    "const QString &": "s",
    "QString": "s",
    "QVariantMap": "a{sv}",
}

DEFAULTS = {"int": r"-?\d+", "bool": r"true|false"}


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

ROLES = ("value", "flag", "key", "setting", "paper", "other")
TRAITS = ("secret", "identity")
ENUMERATION = re.compile(r"lcm::([A-Z]\w*)", re.ASCII)

# The types of the parameters before the collection id that services know, by their roles.
ONE = {("int",), ("double",), ("QString",)}
NAMED = {("QString", "int", "bool"), ("QString", "bool", "bool")}
FLAGGED_SHAPES = {
    ("value", "flag"): {(t, "bool") for t in ("int", "double", "bool", "QString")},
    ("key", "value", "flag"): NAMED,
    ("setting", "value", "flag"): NAMED,
}


class TableError(Exception):
    """A row that cannot be: says where and why."""

    def __init__(self, path, line, reason):
        super().__init__(f"{path}:{line}: {reason}")


class Role(NamedTuple):
    name: str
    enumeration: Optional[str] = None  # the one whose values a plain int takes


@dataclass(frozen=True)
class Parameter:
    type: str
    name: str
    default: Optional[str]
    role: Role

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
class Setting:
    """What holds for a setting, whichever operation reads or writes it."""

    name: str
    traits: FrozenSet[str] = frozenset()
    enumeration: Optional[str] = None


class Input(NamedTuple):
    """A remote argument."""

    name: str
    signature: str
    role: Role
    default: Optional[str] = None  # what is sent for a parameter that is left out


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
    sends_collection_id: bool
    not_connected: str
    setting: Optional[Setting]
    meaning: str

    @property
    def key(self):
        """The name and the parameter types: what tells overloads apart."""
        types = ", ".join(p.value_type for p in self.parameters)
        return f"{self.name}({types})"

    @property
    def ends_in_flag(self):
        return any(p.role.name == "flag" for p in self.parameters)

    @property
    def inputs(self):
        """The remote arguments, in order: the collection id is the last one before a flag."""
        inputs = [Input(p.name, p.signature, p.role, p.default) for p in self.parameters]
        if self.sends_collection_id:
            inputs.insert(len(inputs) - self.ends_in_flag,
                          Input("collectionId", "s", Role("collectionId")))
        return inputs

    @property
    def signature(self):
        return "".join(i.signature for i in self.inputs)

    @property
    def writes(self):
        return self.setting and any(p.role.name == "value" for p in self.parameters)

    @property
    def bare_meaning(self):
        """What is set or returned; nothing for a command."""
        if self.meaning[0].isupper():
            return ""
        enumeration = self.setting and self.setting.enumeration
        return self.meaning + (f", in the numbers of lcm::{enumeration}" if enumeration else "")

    @property
    def sentence(self):
        """The meaning as a whole sentence."""
        verb = "Sets" if self.name.startswith("set") else "Returns"
        return f"{verb} {self.bare_meaning}." if self.bare_meaning else self.meaning


@dataclass
class Table:
    operations: List[Operation] = field(default_factory=list)
    parameter_meanings: Dict[str, str] = field(default_factory=dict)

    def meaning_of(self, parameter):
        return self.parameter_meanings.get(parameter.name, "passed on unchanged")


def is_known(parameters, sends_collection_id):
    """Whether services know a call with such parameters; the head of the table says the same."""
    roles = tuple(p.role.name for p in parameters)
    types = tuple(p.value_type for p in parameters)
    if not sends_collection_id:
        return "flag" not in roles
    if "flag" in roles:
        return types in FLAGGED_SHAPES.get(roles, ())
    return types in ONE | {(), ("int", "int")}


def load(path):
    """The table at path, checked; TableError names the first row that is wrong, and why."""
    table = Table()
    settings = {}
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
                    table.operations.append(_operation(number, family, settings, text))
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


def _operation(line, family, settings, text):
    declaration, const, remote, arguments, not_connected, setting, meaning = _fields(text, FIELDS)
    match = re.fullmatch(r"(\S+) (\w+)\((.*)\)", declaration, re.ASCII)
    if not match:
        raise ValueError(f"not a declaration: {declaration!r}")
    result, name, parameter_texts = match.groups()
    if result not in RESULTS:
        raise ValueError(f"unknown result type {result!r}")
    if const not in CONSTNESS:
        raise ValueError(f"const is {', '.join(CONSTNESS)}; not {const!r}")
    if remote == "=":
        remote = name
    elif not re.fullmatch(r"[A-Za-z_]\w*", remote, re.ASCII):
        raise ValueError(f"not a remote method: {remote!r}")
    parameters, sends_collection_id = _parameters(parameter_texts, arguments)
    if not_connected not in NOT_CONNECTED:
        raise ValueError(f"not-connected text {not_connected!r}")
    if not meaning:
        raise ValueError("no meaning")
    public, private = CONSTNESS[const]
    return Operation(line, family, result, name, parameters, public, private, remote,
                     sends_collection_id, not_connected, _setting(setting, name, settings),
                     meaning)


def _parameters(texts, arguments):
    """The parameters of a declaration with their roles, and whether the collection id is sent."""
    texts = [t for t in texts.split(", ") if t]
    roles = [] if arguments == "-" else [_role(a) for a in arguments.split(", ")]
    positions = [i for i, role in enumerate(roles) if role.name == COLLECTION_ID]
    roles = [role for role in roles if role.name != COLLECTION_ID]
    if len(roles) != len(texts) or len(positions) > 1:
        raise ValueError(f"({arguments}) is not one role for each of ({', '.join(texts)})")
    parameters = [_parameter(t, role) for t, role in zip(texts, roles)]
    if any(p.default is not None for p in parameters[:-1]):
        raise ValueError("only the last parameter may have a default")
    flags = sum(p.role.name == "flag" for p in parameters)
    if not is_known(parameters, bool(positions)) or \
            positions not in ([], [len(parameters) - flags]):
        raise ValueError(f"services know no call with ({arguments}) for ({', '.join(texts)}); "
                         "the head of the table lists what they know")
    return parameters, bool(positions)


def _role(text):
    name, _, enumeration = text.partition(" ")
    if name not in ROLES + (COLLECTION_ID,):
        raise ValueError(f"a role is {', '.join(ROLES)} or {COLLECTION_ID}; not {name!r}")
    return Role(name, _enumeration(enumeration) if enumeration else None)


def _enumeration(text):
    match = ENUMERATION.fullmatch(text)
    if not match:
        raise ValueError(f"not an enumeration: {text!r}")
    return match[1]


def _parameter(text, role):
    match = re.fullmatch(r"(const QString &|\S+ )(\w+)(?: = (\S+))?", text, re.ASCII)
    if not match:
        raise ValueError(f"not a parameter: {text!r}")
    type_name, name, default = match.groups()
    type_name = type_name if type_name.endswith("&") else type_name.rstrip()
    if type_name not in PARAMETER_TYPES:
        raise ValueError(f"unknown parameter type {type_name!r}")
    if default is not None and not re.fullmatch(DEFAULTS.get(type_name, "(?!)"), default):
        raise ValueError(f"{default!r} is no default for {type_name!r}")
    if role.name == "flag" and default != "false":
        raise ValueError("the default of a flag is false")
    if role.enumeration and type_name != "int":
        raise ValueError(f"only an int is a value of an enumeration, not {text!r}")
    return Parameter(type_name, name, default, role)


def _setting(text, operation, settings):
    """The setting that a row names, with what all its rows say of it."""
    name, *facts = text.split(" ")
    if name == "-" and not facts:
        return None
    if name == "=":
        match = re.fullmatch(r"[gs]et([A-Z]\w*)", operation)
        if not match:
            raise ValueError(f"= names no setting for {operation!r}")
        name = match[1]
    elif not re.fullmatch(r"[A-Z]\w*", name, re.ASCII):
        raise ValueError(f"not a setting: {text!r}")
    setting = settings.setdefault(name, Setting(name))
    if facts and (setting.traits or setting.enumeration):
        raise ValueError(f"another row says already what holds for {name}")
    setting.traits = setting.traits | frozenset(f for f in facts if f in TRAITS)
    for fact in facts:
        if fact not in TRAITS:
            setting.enumeration = _enumeration(fact)
    return setting


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
    def pair(operation):
        return operation.family, operation.name[3:]

    pairs = [o for o in operations if re.match(r"[gs]et[A-Z]", o.name)]
    stated = {pair(o): o.meaning for o in pairs if o.meaning != "="}
    for operation in operations:
        if operation.meaning == "=":
            if operation not in pairs or pair(operation) not in stated:
                raise TableError(path, operation.line,
                                 f"no counterpart gives {operation.name} a meaning")
            operation.meaning = stated[pair(operation)]
