#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The lock states the contract whole: how many operations of each kind there are."""

import unittest
from collections import Counter

import operations_lock


class TestOperationsLock(unittest.TestCase):
    operations = operations_lock.load()

    def count(self, key):
        return dict(Counter(map(key, self.operations)))

    def test_operations_and_remote_methods(self):
        self.assertEqual(len(self.operations), 517)
        self.assertEqual(len({o.remote_method for o in self.operations}), 517)
        renamed = [o for o in self.operations if o.remote_method != o.name]
        self.assertEqual(len(renamed), 18)

    def test_arguments(self):
        self.assertEqual(
            self.count(lambda o: o.shape),
            {"nothing": 58, "id": 205, "value, id": 90, "value, id, flag": 122, "value": 32,
             "key, value, id, flag": 4, "value, counter, id": 1, "values": 5})

    def test_results(self):
        enumerations = {"lcm::EmbosserType", "lcm::FeedType", "lcm::HeadType", "lcm::ModelMask",
                        "lcm::Orientation"}
        self.assertEqual(
            self.count(lambda o: "enum" if o.result in enumerations else o.result),
            {"void": 218, "int": 133, "enum": 8, "bool": 38, "double": 44, "QString": 66,
             "QVariantMap": 8, "ConfigurationList": 1, "lcm::PropList": 1})

    def test_not_connected_texts(self):
        self.assertEqual(self.count(lambda o: o.not_connected),
                         {"Not connected.": 350, "Not Connected.": 167})

    def test_default_arguments(self):
        with_default = [o for o in self.operations if o.default_form is not None]
        self.assertEqual(len(with_default), 130)
        others = {f"{o.name}: {o.parameters[-1].name} = {o.parameters[-1].default}"
                  for o in with_default if not o.shape.endswith("flag")}
        self.assertEqual(others, {"getCounter: counter = 1", "setCounter: counter = 1",
                                  "setKeepFormat: value = false",
                                  "setKeepCapitalization: value = false"})


if __name__ == "__main__":
    unittest.main(verbosity=2)
