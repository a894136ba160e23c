# SPDX-License-Identifier: MIT
"""A python-dbusmock template: the configuration service as its introspection data describe it.

Each method replies with the same value of its type; tst_dbusmock.cpp knows them as sample 1.
"""

import xml.etree.ElementTree

BUS_NAME = MAIN_IFACE = "com.tavelornbraille.ConfigurationManager"
MAIN_OBJ = "/"
SYSTEM_BUS = True

TEXT = "sample 1"
MAP = f"dbus.Dictionary({{'number': 1, 'text': '{TEXT}'}}, signature='sv')"
EMPTY_MAP = "dbus.Dictionary({}, signature='sv')"
VALUES = {
    "b": "False",
    "i": "1001",
    "d": "1.25",
    "s": f"'{TEXT}'",
    "a{sv}": MAP,
    "aa{sv}": f"[{MAP}, {EMPTY_MAP}]",
    "a(sa{sv})": f"[('{TEXT}', {MAP}), ('', {EMPTY_MAP})]",
}


def signature(method, direction):
    return "".join(arg.get("type") for arg in method.findall("arg")
                   if arg.get("direction") == direction)


def load(mock, parameters):
    methods = []
    for method in xml.etree.ElementTree.parse(parameters["xml"]).iter("method"):
        result = signature(method, "out")
        code = f"ret = {VALUES[result]}" if result else ""
        methods.append((method.get("name"), signature(method, "in"), result, code))
    mock.AddMethods(MAIN_IFACE, methods)
