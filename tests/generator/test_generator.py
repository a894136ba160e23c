# SPDX-License-Identifier: MIT
"""The table of operations, its loader and what the generator writes from it."""

import difflib
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(PROJECT / "generator"))

import operations

HEADER = "include/libconfigurationmanager/ConfigurationManager.h"
ASYNC = "async/include/libconfigurationmanager-async/AsyncConfigurationManager.h"
FACADE = "src/ConfigurationManager_operations.cpp"
PRIVATE_HEADER = "src/ConfigurationManager_p.h"
PRIVATE = "src/ConfigurationManager_p.cpp"
SLOTS = "src/Slot.h"
XML = "interface/com.tavelornbraille.ConfigurationManager.xml"
PROTOCOL = "docs/protocol.md"
SETTINGS = "docs/settings.md"
ENUMERATIONS = "docs/enumerations.md"
OUTPUTS = (HEADER, PRIVATE_HEADER, ASYNC, FACADE, PRIVATE, SLOTS, XML, PROTOCOL, SETTINGS,
           ENUMERATIONS)
TABLE = "interface/operations.table"


def generate(project, *arguments):
    return subprocess.run([sys.executable, "-B", project / "generator/generate.py", *arguments],
                          capture_output=True, text=True, check=False)


class Copy(unittest.TestCase):
    """A test that works on a copy of the project."""

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.project = pathlib.Path(directory.name)
        for folder in ("async", "docs", "generator", "include", "interface", "src"):
            shutil.copytree(PROJECT / folder, self.project / folder)

    def read(self, path):
        return (self.project / path).read_text(encoding="utf-8")

    def write(self, path, text):
        (self.project / path).write_text(text, encoding="utf-8")

    def outputs(self):
        return {path: self.read(path) for path in OUTPUTS}


class CheckedInFiles(Copy):
    def test_are_what_the_table_gives(self):
        check = generate(PROJECT, "--check")
        self.assertEqual((check.returncode, check.stdout, check.stderr), (0, "", ""))

    def test_are_found_out_when_they_are_not_and_can_be_written_anew(self):
        good = self.outputs()
        for path in OUTPUTS:
            with self.subTest(path):
                name = "getType" if path == ENUMERATIONS else "getTabSize"
                self.write(path, good[path].replace(name, "getNothing"))
                check = generate(self.project, "--check")
                self.assertEqual(check.returncode, 1)
                self.assertIn(f"--- {path}\n", check.stdout)
                self.assertIn("getNothing", check.stdout)

                written = generate(self.project)
                self.assertEqual((written.returncode, written.stdout), (0, f"wrote {path}\n"))
                self.assertEqual(self.outputs(), good)

    def test_are_left_alone_when_a_marker_is_missing(self):
        self.write(HEADER, self.read(HEADER).replace("// END generated\n", ""))
        before = self.outputs()
        written = generate(self.project)
        self.assertEqual(written.returncode, 1)
        self.assertIn(f"{HEADER}: the lines", written.stderr)
        self.assertEqual(self.outputs(), before)

    def test_are_left_alone_when_the_table_is_wrong(self):
        before = self.outputs()
        self.write(TABLE, self.read(TABLE) + "nonsense\n")
        line = len(self.read(TABLE).splitlines())
        written = generate(self.project)
        self.assertEqual(written.returncode, 1)
        self.assertEqual(written.stderr,
                         f"{self.project / TABLE}:{line}: 1 fields instead of 7\n")
        self.assertEqual(self.outputs(), before)


def unknown_call(arguments, parameters):
    return (f"services know no call with ({arguments}) for ({parameters}); "
            "the head of the table lists what they know")


GOOD_ROW = "int getLevel() | both | = | @ | Not connected. | = | the level"

# What is wrong: the rows below a family and GOOD_ROW, in whose last line it is, and the reason.
BAD_ROWS = {
    "a field too few":
        ("int getX() | both | = | @ | Not connected. | -",
         "6 fields instead of 7"),
    "a field too many":
        ("int getX() | both | = | @ | Not connected. | - | the x | more",
         "8 fields instead of 7"),
    "no declaration":
        ("getX() | both | = | @ | Not connected. | - | the x",
         "not a declaration: 'getX()'"),
    "an unknown result type":
        ("long getX() | both | = | @ | Not connected. | - | the x",
         "unknown result type 'long'"),
    "an unknown parameter type":
        ("void setX(float value) | both | = | value, @ | Not connected. | - | the x",
         "unknown parameter type 'float'"),
    "a parameter without a name":
        ("void setX(int) | both | = | value, @ | Not connected. | - | the x",
         "not a parameter: 'int'"),
    "a default that is not last":
        ("void setX(int value = 1, int y) | none | = | value, other | Not connected. | - | the x",
         "only the last parameter may have a default"),
    "an unknown const word":
        ("int getX() | public | = | @ | Not connected. | - | the x",
         "const is both, private, none; not 'public'"),
    "no remote method":
        ("int getX() | both | | @ | Not connected. | - | the x",
         "not a remote method: ''"),
    "an impossible remote method":
        ("int getX() | both | get-x | @ | Not connected. | - | the x",
         "not a remote method: 'get-x'"),
    "a remote method that is not ASCII":
        ("int getX() | both | getÄ | @ | Not connected. | - | the x",
         "not a remote method: 'getÄ'"),
    "an unknown role":
        ("void setX(int value) | both | = | valeu, @ | Not connected. | - | the x",
         "a role is value, flag, key, setting, paper, other or @; not 'valeu'"),
    "no remote argument":
        ("int getX() | both | = | | Not connected. | - | the x",
         "a role is value, flag, key, setting, paper, other or @; not ''"),
    "a parameter without a role":
        ("void setX(int value, int y) | both | = | value, @ | Not connected. | - | the x",
         "(value, @) is not one role for each of (int value, int y)"),
    "a role without a parameter":
        ("void setX(int value) | both | = | value, key, @ | Not connected. | - | the x",
         "(value, key, @) is not one role for each of (int value)"),
    "the collection id before the value":
        ("void setX(int value) | both | = | @, value | Not connected. | - | the x",
         unknown_call("@, value", "int value")),
    "the collection id twice":
        ("int getX() | both | = | @, @ | Not connected. | - | the x",
         "(@, @) is not one role for each of ()"),
    "the collection id after a flag":
        ("void setX(int value, bool flag = false) | none | = | value, flag, @ | Not connected. | - | x",
         unknown_call("value, flag, @", "int value, bool flag = false")),
    "the collection id after a bool":
        ("void setX(bool value) | both | = | value, @ | Not connected. | - | the x",
         unknown_call("value, @", "bool value")),
    "the collection id after a map":
        ("void setX(QVariantMap value) | both | = | value, @ | Not connected. | - | the x",
         unknown_call("value, @", "QVariantMap value")),
    "the collection id after two parameters of other types":
        ("int getX(double a, int b) | both | = | other, other, @ | Not connected. | - | the x",
         unknown_call("other, other, @", "double a, int b")),
    "a flag without the collection id":
        ("void setX(int value, bool flag = false) | none | = | value, flag | Not connected. | - | x",
         unknown_call("value, flag", "int value, bool flag = false")),
    "a flag that is no bool":
        ("void setX(int value, int flag) | none | = | value, @, flag | Not connected. | - | the x",
         "the default of a flag is false"),
    "a flag that is an int with a bool's default":
        ("void setX(int value, int flag = false) | none | = | value, @, flag | Not connected. | - | x",
         "'false' is no default for 'int'"),
    "a flag with another default":
        ("void setX(int v, bool flag = true) | none | = | value, @, flag | Not connected. | - | x",
         "the default of a flag is false"),
    "a flag without a default":
        ("void setX(int value, bool flag) | none | = | value, @, flag | Not connected. | - | the x",
         "the default of a flag is false"),
    "a flag beside a map":
        ("void setX(QVariantMap v, bool f = false) | none | = | value, @, flag | Not connected. | - | x",
         unknown_call("value, @, flag", "QVariantMap v, bool f = false")),
    "a key that is no text":
        ("bool setX(int k, int v, bool f = false) | none | = | key, value, @, flag | Not connected. "
         "| - | x",
         unknown_call("key, value, @, flag", "int k, int v, bool f = false")),
    "a double behind a key":
        ("bool setX(const QString &k, double v, bool f = false) | none | = | key, value, @, flag | "
         "Not connected. | - | x",
         unknown_call("key, value, @, flag", "const QString &k, double v, bool f = false")),
    "a default that is a text":
        ("void setX(const QString &v = none) | none | = | value | Not connected. | - | the x",
         "'none' is no default for 'const QString &'"),
    "a default that is a call":
        ("void setX(int v = now()) | none | = | value | Not connected. | - | the x",
         "'now()' is no default for 'int'"),
    "a default of another type":
        ("void setX(bool v = 0) | none | = | value | Not connected. | - | the x",
         "'0' is no default for 'bool'"),
    "an enumeration that is none":
        ("int getX(int row) | both | = | other Row | Not connected. | - | the x",
         "not an enumeration: 'Row'"),
    "an enumeration for a text":
        ("int getX(const QString &row) | both | = | other lcm::Row | Not connected. | - | the x",
         "only an int is a value of an enumeration, not 'const QString &row'"),
    "a setting that is no name":
        ("int getX() | both | = | @ | Not connected. | my x | the x",
         "not a setting: 'my x'"),
    "a setting named after no getter or setter":
        ("bool isX() | both | = | @ | Not connected. | = | the x",
         "= names no setting for 'isX'"),
    "an unknown fact of a setting":
        ("int getX() | both | = | @ | Not connected. | = hidden | the x",
         "not an enumeration: 'hidden'"),
    "a fact of a setting again":
        ("void setY(int value) | both | = | value | Not connected. | = secret | the y\n"
         "int getY() | both | = | - | Not connected. | = secret | =",
         "another row says already what holds for Y"),
    "an unknown not-connected text":
        ("int getX() | both | = | @ | Not connected | - | the x",
         "not-connected text 'Not connected'"),
    "no meaning":
        ("int getX() | both | = | @ | Not connected. | - | ",
         "no meaning"),
    "a meaning taken from nobody":
        ("int getX() | both | = | @ | Not connected. | - | =",
         "no counterpart gives getX a meaning"),
    "a meaning taken from another family":
        ("[Other]\nvoid setLevel(int value) | both | = | value, @ | Not connected. | - | =",
         "no counterpart gives setLevel a meaning"),
    "a meaning taken without being a getter or a setter":
        ("bool isX() | both | = | @ | Not connected. | - | =",
         "no counterpart gives isX a meaning"),
    "the same operation again":
        ("int getLevel() | both | getX | @ | Not connected. | - | the x",
         "operation getLevel() stands already in line 2"),
    "the same remote method again":
        ("int getX() | both | getLevel | @ | Not connected. | - | the x",
         "remote method getLevel stands already in line 2"),
    "a parameter's meaning with a bar":
        ("(parameters)\nvalue | the new | value",
         "3 fields instead of 2"),
    "a parameter's meaning again":
        ("(parameters)\nvalue | the new value\nvalue | another",
         "parameter 'value' has a meaning already"),
}


class TheLoader(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.path = pathlib.Path(directory.name) / "table"

    def load(self, text):
        self.path.write_text(text, encoding="utf-8")
        return operations.load(self.path)

    def assert_refused(self, text, reason):
        with self.assertRaises(operations.TableError) as refused:
            self.load(text)
        self.assertEqual(str(refused.exception),
                         f"{self.path}:{len(text.splitlines())}: {reason}")

    def test_refuses_a_bad_row_with_its_line_and_the_reason(self):
        for what, (rows, reason) in BAD_ROWS.items():
            with self.subTest(what):
                self.assert_refused(f"[Family]\n{GOOD_ROW}\n{rows}", reason)

    def test_refuses_a_row_before_the_first_family(self):
        self.assert_refused(f"# comment\n\n{GOOD_ROW}", "a row before the first [family]")

    def test_knows_overloads_by_their_parameters(self):
        overload = "int getLevel(const QString &paper) | both | getLevelForPaper | paper | " \
                   "Not Connected. | - | the level for a paper"
        table = self.load(f"[Family]\n{GOOD_ROW}\n{overload}")
        self.assertEqual([o.key for o in table.operations], ["getLevel()", "getLevel(QString)"])

    def test_gives_a_pair_its_one_meaning(self):
        setter = "void setLevel(int value) | both | = | value, @ | Not connected. | = | ="
        table = self.load(f"[Family]\n{setter}\n{GOOD_ROW}")
        self.assertEqual([o.sentence for o in table.operations],
                         ["Sets the level.", "Returns the level."])


class AnAddedRow(Copy):
    ROW = ("bool setScale(const QString &unit, int scale, bool keep = false) | private | setScaleOf | "
           "key, value, @, flag | Not Connected. | = secret lcm::Duplex | the scale & size\n")

    ADDED = {
        HEADER: """
    /// Sets the scale & size, in the numbers of lcm::Duplex.
    ///
    /// \\param unit QString: passed on unchanged
    /// \\param scale int: passed on unchanged
    /// \\param keep bool: passed on unchanged
    /// \\return bool; false on failure
    /// \\par Remote method
    /// setScaleOf(unit, scale, collection id, keep), sisb; "Not Connected." without the service
    bool setScale(const QString &unit, int scale, bool keep = false);
""",
        ASYNC: """\
    /// Sets the scale & size, in the numbers of lcm::Duplex.
    PendingReply<bool> setScale(const QString &unit, int scale, bool keep = false) { return call<bool>("setScaleOf", SendsCollectionId | EndsInFlag | SaysNotConnectedWithCapital, unit, scale, keep); }
""",
        FACADE: """\
bool ConfigurationManager::setScale(const QString &unit, int scale, bool keep) { return d->setScale(unit, scale, keep); }
""",
        PRIVATE_HEADER: """\
    bool setScale(const QString &unit, int scale, bool keep = false) const;
""",
        PRIVATE: """\
    case Slot::setScaleOf:
        return "setScaleOf";
bool ConfigurationManagerPrivate::setScale(const QString &unit, int scale, bool keep) const { return call<bool, const QString &, int, bool>({Slot::setScaleOf, __LINE__, IsConst | SendsCollectionId | EndsInFlag | SaysNotConnectedWithCapital}, unit, scale, keep); }
""",
        SLOTS: """\
    setScaleOf,
    setScaleOfWithDefault,
""",
        XML: """\
    <method name="setScaleOf">
      <annotation name="org.gtk.GDBus.DocString" value="Sets the scale &amp; size, in the numbers of lcm::Duplex."/>
      <annotation name="com.tavelornbraille.ConfigurationManager.Family" value="Service commands"/>
      <annotation name="com.tavelornbraille.ConfigurationManager.Operation" value="setScale(QString, int, bool)"/>
      <annotation name="com.tavelornbraille.ConfigurationManager.Meaning" value="the scale &amp; size, in the numbers of lcm::Duplex"/>
      <annotation name="com.tavelornbraille.ConfigurationManager.Roles" value="key value collectionId flag"/>
      <annotation name="com.tavelornbraille.ConfigurationManager.Default.In3" value="false"/>
      <annotation name="com.tavelornbraille.ConfigurationManager.Writes" value="Scale"/>
      <annotation name="com.tavelornbraille.ConfigurationManager.Secret" value="true"/>
      <annotation name="com.tavelornbraille.ConfigurationManager.Enumeration.In1" value="Duplex"/>
      <arg name="unit" type="s" direction="in"/>
      <arg name="scale" type="i" direction="in"/>
      <arg name="collectionId" type="s" direction="in"/>
      <arg name="keep" type="b" direction="in"/>
      <arg name="result" type="b" direction="out"/>
    </method>
""",
        PROTOCOL: """
| `setScaleOf` | unit, scale, *collection id*, *flag* | `sisb` | `b` | Sets the scale & size, in the numbers of lcm::Duplex. |
| `setScale(QString, int, bool)` | `setScaleOf` |
""",
        SETTINGS: """
| `Scale` | `int` | the scale & size |  | `setScale(unit, scale)` | `lcm::Duplex`, secret |
""",
        ENUMERATIONS: """
Taken or returned by `setScale(unit, scale)`.
""",
    }

    def test_adds_to_each_file_what_follows_from_it_and_changes_nothing_else(self):
        before = self.outputs()
        self.write(TABLE, self.read(TABLE) + self.ROW)
        written = generate(self.project)
        self.assertEqual(written.stdout, "".join(f"wrote {path}\n" for path in OUTPUTS))
        for path, after in self.outputs().items():
            with self.subTest(path):
                self.assertEqual(added(before[path], after), self.ADDED[path].strip("\n"))


class ARewordedRow(Copy):
    """What is only for people changes nothing that a program reads."""

    def test_changes_documentation_only(self):
        before = self.outputs()
        row = next(l for l in self.read(TABLE).splitlines() if l.startswith("void setArchitecture("))
        self.write(TABLE, self.read(TABLE).replace(
            row, row.replace("&value", "&level").replace("the architecture", "the lcm::Duplex set")))
        generate(self.project)
        after = self.outputs()
        for path in (PRIVATE, FACADE, PRIVATE_HEADER):
            after[path] = after[path].replace("level", "value")
        self.assertEqual([path for path in OUTPUTS if after[path] != before[path]],
                         [HEADER, ASYNC, XML, PROTOCOL, SETTINGS])
        self.assertEqual(facts(after[XML]), facts(before[XML]))


def facts(xml):
    """What programs read: everything but argument names, sentences and meanings."""
    return [(m.get("name"), [a.get("type") for a in m.findall("arg")],
             [(a.get("name"), a.get("value")) for a in m.findall("annotation")
              if not a.get("name").endswith(("DocString", "Meaning"))])
            for m in ElementTree.fromstring(xml).iter("method")]


def added(before, after):
    """The lines that are new, given that all others are as before."""
    lines = list(difflib.unified_diff(before.splitlines(), after.splitlines(), n=0, lineterm=""))
    changes = [line for line in lines[2:] if not line.startswith("@@")]
    removed = [line for line in changes if line.startswith("-")]
    assert not removed, removed
    # Which of the blank lines around them is the new one cannot be told.
    return "\n".join(line[1:] for line in changes).strip("\n")


class TheIntrospection(unittest.TestCase):
    def test_describes_every_remote_method(self):
        interfaces = ElementTree.parse(PROJECT / XML).getroot().findall("interface")
        self.assertEqual([i.get("name") for i in interfaces],
                         ["com.tavelornbraille.ConfigurationManager"])
        methods = interfaces[0].findall("method")
        table = operations.load(PROJECT / TABLE)
        self.assertEqual([(m.get("name"), signature(m, "in"), signature(m, "out"))
                          for m in methods],
                         [(o.remote, o.signature, operations.RESULTS[o.result].signature)
                          for o in table.operations])

    def test_is_accepted_by_qt(self):
        with tempfile.TemporaryDirectory() as directory:
            for kind in ("-p", "-a"):
                with self.subTest(kind):
                    run = subprocess.run(["qdbusxml2cpp", kind, "code", PROJECT / XML],
                                         cwd=directory, capture_output=True, text=True,
                                         check=False)
                    self.assertEqual((run.returncode, run.stdout, run.stderr), (0, "", ""))
            header = (pathlib.Path(directory) / "code.h").read_text(encoding="utf-8")
            self.assertIn("lcm::PropList getValueList(int row)", header)
            self.assertIn("ConfigurationList currentConfigurationCmd()", header)


def signature(method, direction):
    return "".join(a.get("type") for a in method.findall("arg")
                   if a.get("direction") == direction)


if __name__ == "__main__":
    unittest.main(verbosity=2)
