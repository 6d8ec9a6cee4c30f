"""What ./bench does with the lines that benchmarks print: no benchmark is run here."""

import contextlib
import io
import os
import re
import sys
import tempfile
import unittest
from unittest import mock

SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(SOURCE, "scripts"))
from as_module import as_module  # noqa: E402

bench = as_module(os.path.join(SOURCE, "bench"))


class ThePage(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.build = folder.name
        self.page = os.path.join(folder.name, "performance.md")
        self.programs = {"one": self.program("echo 'RESULT start | 1.2 | 1.0 | 1.5 | yes'"),
                         "two": self.program("echo 'RESULT memory | 9 MB'; echo done")}

    def program(self, text):
        return ["/bin/bash", "-c", text]

    def run_benches(self, *names):
        arguments = ["run", "--no-build", "--build", self.build, "--page", self.page, *names]
        with mock.patch.object(bench, "benchmarks", lambda build: self.programs), \
                mock.patch.object(sys, "argv", arguments), contextlib.redirect_stdout(io.StringIO()):
            bench.main()
        with open(self.page, encoding="utf-8") as file:
            self.text = file.read()
        return [row[:6] for row in bench.kept(self.page)]

    def test_every_line_of_results_is_a_row(self):
        self.assertEqual(self.run_benches(), [["one", "start", "1.2", "1.0", "1.5", "yes"],
                                              ["two", "memory", "9 MB", "", "", ""]])

    def test_rows_of_others_stay_and_own_ones_are_replaced(self):
        self.run_benches()
        self.programs["two"] = self.program("echo 'RESULT memory | 8 MB'")
        self.assertEqual([row[2] for row in self.run_benches("two")], ["1.2", "8 MB"])

    def test_a_failure_keeps_the_earlier_row_and_is_named(self):
        self.run_benches()
        self.programs["one"] = self.program("echo nothing; exit 3")
        self.assertEqual(self.run_benches("one")[0][2], "1.2")
        self.assertIn("- one: exit status 3\n", self.text)

    def test_one_without_results_is_named(self):
        self.programs["one"] = self.program("echo nothing")
        self.assertEqual([row[0] for row in self.run_benches()], ["two"])
        self.assertIn("- one: it prints no line of results\n", self.text)

    def test_one_that_hangs_is_ended(self):
        self.programs["one"] = self.program("read -r line <> <(:)")
        self.run_benches("--patience", "1", "one")
        self.assertIn("- one: not done after 1 s\n", self.text)

    def test_one_that_was_never_run_is_named_below_the_table(self):
        self.programs["three"] = self.program("echo 'RESULT size | 3'")
        self.run_benches("two")
        self.assertIn("\nNothing is written down yet from: one, three.\n", self.text)
        self.run_benches("three")
        self.assertIn("\nNothing is written down yet from: one.\n", self.text)
        self.run_benches("one")
        self.assertNotIn("Nothing is written down", self.text)

    def test_one_that_is_gone_loses_its_rows(self):
        self.run_benches()
        del self.programs["one"]
        self.assertEqual([row[0] for row in self.run_benches()], ["two"])

    def test_one_with_a_table_of_its_own_has_no_row(self):
        self.programs["tables"] = self.program("echo 'RESULT speed | 3'")
        self.assertEqual([row[0] for row in self.run_benches()], ["one", "two"])
        self.assertNotIn("tables:", self.text)
        self.assertNotIn("Nothing is written down", self.text)

    def test_a_name_that_is_none_is_refused(self):
        with self.assertRaisesRegex(SystemExit, "no benchmark is called three; there are one, two"):
            self.run_benches("three")


class TheFolder(unittest.TestCase):
    def test_scripts_and_programs_are_found(self):
        found = bench.benchmarks("/build")
        self.assertEqual(found["start-up"][1:], ["--build", "/build"])
        self.assertEqual(found["tables"][1:], ["--build", "/build", "--write"])
        self.assertEqual(found["spine"], ["/build/benchmarks/spine/bench_spine"])
        self.assertNotIn("run", found)

    def test_every_script_prints_results(self):
        for name, (path, *_) in bench.benchmarks("/build").items():
            if name not in bench.PROGRAMS:
                with open(path, encoding="utf-8") as file:
                    self.assertIn("RESULT ", file.read(), name)

    def test_the_page_is_as_it_would_be_written(self):
        """Its rows are from runs; all around them follows from what there is."""
        with open(bench.PAGE, encoding="utf-8") as file:
            page = file.read()
        where, notes = re.search(r"^The last run was on (.*)\.$", page, re.M)[1], re.findall(r"^- (.*)$", page, re.M)
        with tempfile.NamedTemporaryFile("r", encoding="utf-8") as file:
            bench.write(file.name, bench.kept(bench.PAGE), bench.benchmarks("/build"), notes, where)
            self.assertEqual(page, file.read())


if __name__ == "__main__":
    unittest.main()
