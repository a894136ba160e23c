#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes TypedCalls.cpp from the lock of the wire contract, never from the table of operations.

With --check nothing is written, and the exit status is 1 when the file is not what the lock gives.
"""

import argparse
import pathlib
import sys

import operations_lock

FILE = pathlib.Path(__file__).with_name("TypedCalls.cpp")

FRAME = """\
// SPDX-License-Identifier: MIT
// Written by tests/contract/typed_calls.py from tests/contract/operations.lock: do not edit.

#include "TypedCalls.h"

// One line an operation:
// clang-format off

namespace {{

constexpr Declaration allDeclarations[] = {{
{declarations}
}};

constexpr TypedCall allTypedCalls[] = {{
{calls}
}};

}} // namespace

QVector<Declaration> declarations()
{{
    return {{std::begin(allDeclarations), std::end(allDeclarations)}};
}}

QVector<TypedCall> typedCalls()
{{
    return {{std::begin(allTypedCalls), std::end(allTypedCalls)}};
}}
"""

SAMPLES = {"int": "number", "double": "real", "bool": "flag", "QString": "text",
           "QVariantMap": "map"}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--check", action="store_true", help="write nothing, say whether it is stale")
    check = parser.parse_args().check

    operations = operations_lock.load()
    text = FRAME.format(declarations="\n".join(map(declaration, operations)),
                        calls="\n".join(calls(operations)))
    if not check:
        FILE.write_text(text, encoding="utf-8")
    elif FILE.read_text(encoding="utf-8") != text:
        sys.exit(f"{FILE} is stale: run {__file__}")


def declaration(operation):
    types = ", ".join(p.type for p in operation.parameters)
    in_facade, in_private = (f"{operation.result}({types}){' const' if const else ''}"
                             for const in (operation.facade_const, operation.private_const))
    name, signature = operation.name, slot(operation.name, operation.parameters)
    return (f'    declared<{in_facade}, {in_private}>("{signature}", '
            f"&Facade::{name}, &Private::{name}),")


def calls(operations):
    for operation in operations:
        yield call(operation, operation.parameters)
        if operation.default_form is not None:
            yield call(operation, operation.default_form)


def call(operation, parameters):
    arguments = ", ".join(f"in.{SAMPLES[p.value_type]}({position})"
                          for position, p in enumerate(parameters))
    expression = f"f.{operation.name}({arguments})"
    body = (f"{expression}; return QVariant();" if operation.result == "void"
            else f"return plain({expression});")
    samples = "In in" if parameters else "In"
    return f'    {{"{slot(operation.name, parameters)}", [](Facade &f, {samples}) {{ {body} }}}},'


def slot(name, parameters):
    return f"{name}({','.join(p.value_type for p in parameters)})"


if __name__ == "__main__":
    main()
