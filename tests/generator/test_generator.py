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
sys.path.insert(0, str(PROJECT / "interface"))

import operations

HEADER = "include/libconfigurationmanager/ConfigurationManager.h"
FACADE = "src/ConfigurationManager.cpp"
PRIVATE_HEADER = "src/ConfigurationManager_p.h"
PRIVATE = "src/ConfigurationManager_p.cpp"
XML = "interface/com.tavelornbraille.ConfigurationManager.xml"
OUTPUTS = (HEADER, FACADE, PRIVATE_HEADER, PRIVATE, XML)
TABLE = "interface/operations.table"


def generate(project, *arguments):
    return subprocess.run([sys.executable, "-B", project / "interface/generate.py", *arguments],
                          capture_output=True, text=True, check=False)


class Copy(unittest.TestCase):
    """A test that works on a copy of the project."""

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.project = pathlib.Path(directory.name)
        for folder in ("include", "interface", "src"):
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
                self.write(path, good[path].replace("getTabSize", "getTabWidth"))
                check = generate(self.project, "--check")
                self.assertEqual(check.returncode, 1)
                self.assertIn(f"--- {path}\n", check.stdout)
                self.assertIn("getTabWidth", check.stdout)

                written = generate(self.project)
                self.assertEqual((written.returncode, written.stdout), (0, f"wrote {path}\n"))
                self.assertEqual(self.outputs(), good)

    def test_are_left_alone_when_a_marker_is_missing(self):
        self.write(FACADE, self.read(FACADE).replace("// END generated\n", ""))
        before = self.outputs()
        written = generate(self.project)
        self.assertEqual(written.returncode, 1)
        self.assertIn(f"{FACADE}: the lines", written.stderr)
        self.assertEqual(self.outputs(), before)

    def test_are_left_alone_when_the_table_is_wrong(self):
        before = self.outputs()
        self.write(TABLE, self.read(TABLE) + "nonsense\n")
        line = len(self.read(TABLE).splitlines())
        written = generate(self.project)
        self.assertEqual(written.returncode, 1)
        self.assertEqual(written.stderr,
                         f"{self.project / TABLE}:{line}: 1 fields instead of 6\n")
        self.assertEqual(self.outputs(), before)


GOOD_ROW = "int getLevel() | both | = | @ | Not connected. | the level"

# What is wrong: the rows below a family and GOOD_ROW, in whose last line it is, and the reason.
BAD_ROWS = {
    "a field too few":
        ("int getX() | both | = | @ | Not connected.",
         "5 fields instead of 6"),
    "a field too many":
        ("int getX() | both | = | @ | Not connected. | the x | more",
         "7 fields instead of 6"),
    "no declaration":
        ("getX() | both | = | @ | Not connected. | the x",
         "not a declaration: 'getX()'"),
    "an unknown result type":
        ("long getX() | both | = | @ | Not connected. | the x",
         "unknown result type 'long'"),
    "an unknown parameter type":
        ("void setX(float value) | both | = | value, @ | Not connected. | the x",
         "unknown parameter type 'float'"),
    "a parameter without a name":
        ("void setX(int) | both | = | value, @ | Not connected. | the x",
         "not a parameter: 'int'"),
    "a default that is not last":
        ("void setX(int value = 1, bool flag) | none | = | value, @, flag | Not connected. | the x",
         "only the last parameter may have a default"),
    "an unknown const word":
        ("int getX() | public | = | @ | Not connected. | the x",
         "const is both, private, none; not 'public'"),
    "no remote method":
        ("int getX() | both | | @ | Not connected. | the x",
         "not a remote method: ''"),
    "an impossible remote method":
        ("int getX() | both | get-x | @ | Not connected. | the x",
         "not a remote method: 'get-x'"),
    "an unknown remote argument":
        ("void setX(int value) | both | = | valeu, @ | Not connected. | the x",
         "remote argument 'valeu' is no parameter"),
    "no remote argument":
        ("int getX() | both | = | | Not connected. | the x",
         "remote argument '' is no parameter"),
    "the collection id before the value":
        ("void setX(int value) | both | = | @, value | Not connected. | the x",
         "services know no call with (@, value) for (int value)"),
    "the collection id twice":
        ("int getX() | both | = | @, @ | Not connected. | the x",
         "services know no call with (@, @) for ()"),
    "a flag that is not sent":
        ("void setX(int value, bool flag = false) | none | = | value, @ | Not connected. | the x",
         "services know no call with (value, @) for (int value, bool flag = false)"),
    "the collection id sent beside several parameters":
        ("int getX(double a, int b) | both | = | a, b, @ | Not connected. | the x",
         "services know no call with (a, b, @) for (double a, int b)"),
    "an unknown not-connected text":
        ("int getX() | both | = | @ | Not connected | the x",
         "not-connected text 'Not connected'"),
    "no meaning":
        ("int getX() | both | = | @ | Not connected. | ",
         "no meaning"),
    "a meaning taken from nobody":
        ("int getX() | both | = | @ | Not connected. | =",
         "no counterpart gives getX a meaning"),
    "a meaning taken from another family":
        ("[Other]\nvoid setLevel(int value) | both | = | value, @ | Not connected. | =",
         "no counterpart gives setLevel a meaning"),
    "a meaning taken without being a getter or a setter":
        ("bool isX() | both | = | @ | Not connected. | =",
         "no counterpart gives isX a meaning"),
    "the same operation again":
        ("int getLevel() | both | getX | @ | Not connected. | the x",
         "operation getLevel() stands already in line 2"),
    "the same remote method again":
        ("int getX() | both | getLevel | @ | Not connected. | the x",
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
                   "Not Connected. | the level for a paper"
        table = self.load(f"[Family]\n{GOOD_ROW}\n{overload}")
        self.assertEqual([o.key for o in table.operations], ["getLevel()", "getLevel(QString)"])

    def test_gives_a_pair_its_one_meaning(self):
        setter = "void setLevel(int value) | both | = | value, @ | Not connected. | ="
        table = self.load(f"[Family]\n{setter}\n{GOOD_ROW}")
        self.assertEqual([o.sentence for o in table.operations],
                         ["Sets the level.", "Returns the level."])


class AnAddedRow(Copy):
    # One that fills no line of the C++ files, so that the expectation does not depend on wrapping.
    ROW = ("double scaleFor(const QString &paper, bool exact = true) | private | scaleForPaper | "
           "paper, exact | Not Connected. | Returns the scale & size for a paper.\n")

    ADDED = {
        HEADER: """
    /// Returns the scale & size for a paper.
    ///
    /// \\param paper QString: the service's own name of the paper format
    /// \\param exact bool: passed on unchanged
    /// \\return double; 0.0 on failure
    /// \\par Remote method
    /// scaleForPaper(paper, exact), sb
    /// \\par On failure
    /// logs "Not Connected." or the message of the error
    double scaleFor(const QString &paper, bool exact = true);
""",
        FACADE: """
double ConfigurationManager::scaleFor(const QString &paper, bool exact)
{
    return d->scaleFor(paper, exact);
}
""",
        PRIVATE_HEADER: """\
    double scaleFor(const QString &paper, bool exact = true) const;
""",
        PRIVATE: """
double ConfigurationManagerPrivate::scaleFor(const QString &paper, bool exact) const
{
    return call<double>({"scaleForPaper", "Not Connected.", Q_FUNC_INFO, __LINE__}, paper, exact);
}
""",
        XML: """\
    <method name="scaleForPaper">
      <annotation name="org.gtk.GDBus.DocString" value="Returns the scale &amp; size for a paper."/>
      <annotation name="com.tavelornbraille.ConfigurationManager.Family" value="Service commands"/>
      <annotation name="com.tavelornbraille.ConfigurationManager.Operation" value="scaleFor(QString, bool)"/>
      <arg name="paper" type="s" direction="in"/>
      <arg name="exact" type="b" direction="in"/>
      <arg name="result" type="d" direction="out"/>
    </method>
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
    unittest.main()
