"""Every test that docs/subsystems.md names is there and runs as it says, and every folder is there."""

import glob
import os
import re
import subprocess
import unittest

ROOT = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
GOOGLE = re.compile(r"^TEST(?:_[FP])?\((\w+), (\w+)\)", re.MULTILINE)
SLOT = re.compile(r"^    void (\w+)\(\)", re.MULTILINE)
PYTHON = re.compile(r"^    def (test_\w+)\(", re.MULTILINE)
COMMAND = re.compile(r"add_test\(NAME (\w+)$", re.MULTILINE)
FOLDERS = ("tests", "runtime/tests", "runtime/page/tests")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def files(suffix):
    return [path for folder in FOLDERS for path in glob.glob(os.path.join(ROOT, folder, "**", "*" + suffix), recursive=True)]


def there():
    """The tests, named as the page names them."""
    names = set()
    for path in files(".cpp"):
        text, file = read(path), os.path.splitext(os.path.basename(path))[0]
        names.update(".".join(match) for match in GOOGLE.findall(text))
        if "Q_SLOTS:" in text:
            names.update(f"{file}.{slot}" for slot in SLOT.findall(text.split("Q_SLOTS:", 1)[1]))
    for path in files(".py"):
        file = os.path.splitext(os.path.basename(path))[0]
        names.update(f"{file}.{test}" for test in PYTHON.findall(read(path)))
    for path in files("CMakeLists.txt"):
        names.update(COMMAND.findall(read(path)))
    return names


def named(page):
    """The tests in the last column of each table."""
    rows = [line.strip().strip("|").split("|") for line in page.splitlines() if line.startswith("| ")]
    return [name for row in rows for name in re.findall(r"`([^`]+)`", row[-1])]


def chosen_by(name):
    """What ctest -R is given for a test."""
    return name.split(".")[0].removeprefix("test_")


def entries():
    """The names that ctest knows."""
    listed = subprocess.run([os.environ["CTEST"], "--test-dir", os.environ["TUPPI_BUILD"], "-N"], check=True,
                            capture_output=True, text=True).stdout
    return re.findall(r"^  Test +#\d+: (\S+)", listed, re.M)


class TheSubsystems(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.page = read(os.path.join(ROOT, "docs", "subsystems.md"))

    def test_every_test_is_there(self):
        self.assertEqual(sorted(set(named(self.page)) - there()), [])

    def test_every_row_names_one(self):
        rows = [line for line in self.page.splitlines() if line.startswith("| ") and not line.startswith("| what ")]
        self.assertGreater(len(rows), 100)
        self.assertEqual([row for row in rows if not named(row)], [])

    def test_every_folder_is_there(self):
        folders = re.findall(r"^In (.*)\.$", self.page, re.MULTILINE)
        self.assertEqual(len(folders), 23)
        for folder in re.findall(r"`([^`]+)`", " ".join(folders)):
            self.assertTrue(os.path.isdir(os.path.join(ROOT, folder)), folder)

    def test_every_name_of_code_is_there(self):
        sources = "".join(read(path) for folder in ("src", "runtime/src")
                          for path in glob.glob(os.path.join(ROOT, folder, "**", "*.*"), recursive=True))
        for row in (line.split("|") for line in self.page.splitlines() if line.startswith("| ")):
            for name in re.findall(r"`([^`]+)`", row[2]):
                self.assertTrue(name in sources or os.path.isdir(os.path.join(ROOT, name)), name)

    def test_every_folder_of_tests_is_told_of(self):
        rows = re.findall(r"^\| (`.*?) \|", read(os.path.join(ROOT, "CONTRIBUTING.md")), re.M)
        told = set(re.findall(r"`([^`]+)`", " ".join(rows)))
        there = {name for name in os.listdir(os.path.join(ROOT, "tests"))
                 if os.path.exists(os.path.join(ROOT, "tests", name, "CMakeLists.txt"))}
        self.assertIn("keyboard", there)
        self.assertEqual(sorted(there - told), [])

    def test_every_test_is_run_as_told(self):
        entry_names = entries()
        if any(name.endswith("NOT_BUILT") for name in entry_names):
            self.skipTest("only what is built lists its tests")
        choices = {chosen_by(name) for name in named(self.page)}
        choices.update(re.findall(r"\./test -R (\w+)", read(os.path.join(ROOT, "CONTRIBUTING.md"))))
        self.assertIn("Scheduling", choices)
        self.assertEqual([choice for choice in sorted(choices) if not any(choice in name for name in entry_names)], [])

    def test_a_name_that_is_none(self):
        self.assertEqual(named("| a | `b` | `No.Such`, `Test.AtAll` |"), ["No.Such", "Test.AtAll"])
        self.assertFalse({"No.Such", "Test.AtAll"} & there())


if __name__ == "__main__":
    unittest.main()
