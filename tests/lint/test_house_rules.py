"""Holds the tree against the rules of the house, and each rule against a sample that breaks it."""

import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import house_rules as rules  # noqa: E402

ROOT = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
QT_CORE = os.environ["TUPPI_QTCORE_HEADERS"]


class TheTree(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = rules.read_tree(ROOT)
        cls.qt_core = set(os.listdir(QT_CORE))

    def assert_none(self, found):
        self.assertEqual(found, [], "\n" + "\n".join(found))

    def test_is_read(self):
        for path in ("src/app/AppDelegate.h", "bench", "fuzz/Fuzz.h", "packaging/check-deb", "docs/screenshots"):
            self.assertIn(path, self.tree)
        self.assertIn("QString", self.qt_core)
        self.assertNotIn("QWidget", self.qt_core)
        self.assertGreater(len(list(rules.functions(rules.without_comments_and_texts(self.tree["src/list/Describe.cpp"])))), 10)

    def test_include_table(self):
        self.assert_none(rules.include_table(self.tree))

    def test_engine_table(self):
        self.assert_none(rules.engine_table(self.tree))

    def test_controller_is_private(self):
        self.assert_none(rules.controller_is_private(self.tree))

    def test_qt_modules(self):
        self.assert_none(rules.qt_modules(self.tree, self.qt_core))

    def test_engine_is_apart(self):
        self.assert_none(rules.engine_is_apart(self.tree))

    def test_bare_waits(self):
        self.assert_none(rules.bare_waits(self.tree))

    def test_long_functions(self):
        self.assert_none(rules.long_functions(self.tree))

    def test_long_controller_header(self):
        self.assert_none(rules.long_controller_header(self.tree))

    def test_unfinished(self):
        self.assert_none(rules.unfinished(self.tree))


CMAKE = """
add_library(tuppi_core STATIC
  list/Rows.cpp
  list/Describe.cpp)
add_library(tuppi_widgets STATIC ui/Button.cpp)
add_library(tuppi_platform STATIC platform/Beep.cpp)
add_library(tuppi_app STATIC app/AppDelegate.cpp app/AppDelegate.h list/AppDelegateList.cpp)
add_executable(tuppi-transcriber main.cpp)
"""


def sample(**files):
    tree = {"src/CMakeLists.txt": CMAKE, "src/list/Rows.cpp": "", "src/list/Rows.h": "", "src/list/Describe.cpp": "",
            "src/list/State.h": "", "src/ui/Button.cpp": "", "src/ui/Button.h": "", "src/platform/Beep.cpp": "",
            "src/platform/Beep.h": "", "src/app/AppDelegate.cpp": "", "src/app/AppDelegate.h": "",
            "src/list/AppDelegateList.cpp": "", "src/main.cpp": ""}
    tree.update({path.replace("__", "/").replace("_h", ".h").replace("_cpp", ".cpp"): text for path, text in files.items()})
    return tree


def with_file(path, text):
    return {**sample(), path: text}


class TheRules(unittest.TestCase):
    def assert_found(self, found, *expected):
        self.assertEqual(len(found), len(expected), found)
        for line, start in zip(found, expected):
            self.assertTrue(line.startswith(start), f"{line!r} does not start with {start!r}")

    def test_good_sample_breaks_nothing(self):
        tree = sample(**{"src__list__Rows_cpp": '#include "list/Rows.h"\n#include "list/State.h"\n#include <QString>\n',
                         "src__ui__Button_cpp": '#include "ui/Button.h"\n#include "list/Rows.h"\n#include <QWidget>\n',
                         "src__list__AppDelegateList_cpp": '#include "app/AppDelegate.h"\n#include "ui/Button.h"\n',
                         "src__main_cpp": '#include "app/AppDelegate.h"\nint main() { return application.exec(); }\n'})
        for rule in (rules.include_table, rules.controller_is_private, rules.engine_is_apart, rules.bare_waits,
                     rules.long_functions, rules.long_controller_header, rules.unfinished):
            self.assertEqual(rule(tree), [], rule.__name__)
        self.assertEqual(rules.qt_modules(tree, {"QString"}), [])

    def test_core_that_includes_a_widget(self):
        self.assert_found(rules.include_table(with_file("src/list/Rows.cpp", '\n#include "ui/Button.h"\n')), "src/list/Rows.cpp:2: core")

    def test_header_without_a_source_that_includes_a_widget(self):
        self.assert_found(rules.include_table(with_file("src/list/State.h", '#include "ui/Button.h"\n')), "src/list/State.h:1: core")

    def test_widget_that_includes_the_platform(self):
        self.assert_found(rules.include_table(with_file("src/ui/Button.h", '#include "platform/Beep.h"\n')), "src/ui/Button.h:1: widgets")

    def test_platform_that_includes_a_widget(self):
        self.assert_found(rules.include_table(with_file("src/platform/Beep.cpp", '#include "ui/Button.h"\n')), "src/platform/Beep.cpp:1: platform")

    def test_include_of_a_file_that_is_not_there(self):
        self.assert_found(rules.include_table(with_file("src/list/Rows.cpp", '#include "Rows.h"\n')), "src/list/Rows.cpp:1: Rows.h is no file")

    def test_target_without_a_floor(self):
        self.assert_found(rules.include_table(with_file("src/CMakeLists.txt", "add_library(tuppi_misc STATIC list/Rows.cpp)\n")),
                          "src/CMakeLists.txt:1: the target tuppi_misc")

    def test_others_that_include_the_controller(self):
        for path in ("src/list/Rows.cpp", "src/ui/Button.h", "src/list/State.h"):
            self.assert_found(rules.controller_is_private(with_file(path, '#include "app/AppDelegate.h"\n')), path + ":1:")

    def test_core_with_another_qt_module(self):
        for header in ("QWidget", "QtGui/QImage", "QNetworkAccessManager", "QtWidgets/QPushButton"):
            self.assert_found(rules.qt_modules(with_file("src/list/Rows.h", f"#include <{header}>\n"), {"QString"}), "src/list/Rows.h:1: core")

    def test_web_engine_outside_the_viewer(self):
        self.assert_found(rules.qt_modules(with_file("src/ui/Button.cpp", "#include <QWebEngineView>\n"), {"QString"}), "src/ui/Button.cpp:1:")

    def test_engine_and_application_that_share(self):
        engine = {"runtime/src/Jobs.h": "", "src/list/Rows.h": ""}
        for path, text in (("runtime/src/main.cpp", '#include "list/Rows.h"\n'), ("runtime/src/main.cpp", '#include "../../src/list/Rows.h"\n'),
                           ("runtime/CMakeLists.txt", "target_link_libraries(call PRIVATE tuppi_core)\n"),
                           ("src/list/Rows.cpp", '#include "../../runtime/src/Jobs.h"\n'), ("src/list/Rows.cpp", '#include "Jobs.h"\n'),
                           ("src/CMakeLists.txt", "include_directories(../runtime/src)\n")):
            self.assert_found(rules.engine_is_apart({**engine, path: text}), path + ":1:")
        self.assertEqual(rules.engine_is_apart({**engine, "runtime/src/main.cpp": '#include "Jobs.h"\n'}), [])

    def test_floors_of_the_engine(self):
        for path, text in (("text/Line.h", '#include "store/Segments.h"\n'), ("store/Jobs.cpp", '#include "worker/JobRun.h"\n'),
                           ("commands/Hide.cpp", '#include "worker/Worker.h"\n'), ("speakers/Turns.h", "#include <QSqlQuery>\n"),
                           ("sundry/Name.h", "")):
            self.assert_found(rules.engine_table({"runtime/src/" + path: text}), f"runtime/src/{path}:1: ")
        for path, text in (("store/Jobs.cpp", '#include "text/Line.h"\n#include "store/Jobs.h"\n#include <QSqlQuery>\n'),
                           ("worker/JobRun.cpp", '#include "recognise/Recogniser.h"\n')):
            self.assertEqual(rules.engine_table({"runtime/src/" + path: text}), [])

    def test_floors_of_the_engine_have_no_circle(self):
        below = set()
        for floor, included in rules.ENGINE_FLOORS.items():
            self.assertLessEqual(included, below, floor)
            below.add(floor)

    def test_bare_waits(self):
        for line in ("QTest::qWait(100);", "QThread::msleep(5);", "sleep(1);", "std::this_thread::sleep_for(1s);", "usleep (1);",
                     "process.waitForFinished(-1);", "dialog.exec();", "loop->exec();", "QTRY_COMPARE(a, b);", "QTRY_VERIFY(a);",
                     "QTest::qWaitFor([&] { return seen(a, b); });", "qWaitFor(condition);"):
            self.assert_found(rules.bare_waits({"tests/a.cpp": "\n" + line + "\n"}), "tests/a.cpp:2:")
        self.assert_found(rules.bare_waits({"tests/a.py": "time" + ".sleep(1)\n"}), "tests/a.py:1:")
        self.assert_found(rules.bare_waits({"tests/a.py": "from time" + " import sleep\n"}), "tests/a.py:1:")

        self.assert_found(rules.bare_waits({"tests/a.py": "def until(x):\n    pass\n\ndef test():\n    time" + ".sleep(1)\n"}), "tests/a.py:5:")

    def test_scripts_without_a_suffix(self):
        for path, text, kind in (("run", "#!/usr/bin/env bash\n", ".bash"), ("a/walk", "#!/usr/bin/python3\n", ".py"),
                                 ("bench", "#!/usr/bin/env python3\n", ".py"), ("call", "#!/bin/sh -e\n", ".sh"), ("chart", "#!/usr/bin/gnuplot\n", ""),
                                 ("a.py", "#!/bin/sh\n", ".py"), ("README", "text\n", ""), ("a", "", "")):
            self.assertEqual(rules.kind(path, text), kind, path)
        self.assert_found(rules.bare_waits({"scripts/walk": "#!/usr/bin/env python3\ntime" + ".sleep(1)\n"}), "scripts/walk:2:")
        self.assert_found(rules.unfinished({"run": "#!/bin/bash\n# TO" + "DO\n"}), "run:2:")

    def test_waits_that_are_none(self):
        self.assertEqual(rules.bare_waits({"tests/a.py": "def until(condition):\n    while not condition():\n        time" + ".sleep(1)\n"}), [])
        self.assertEqual(rules.bare_waits({"tests/a.py": "def test():\n    time" + ".sleep(chance.uniform(0, 1))\n"}), [])
        self.assertEqual(rules.bare_waits({"tests/AProgram.cpp": "int main() { return application.exec(); }"}), [])
        for text in ("QTest::qWaitFor(condition, patience);", "qWaitFor([&] { return a(1); },\n    10'000);", "// sleep(1)\n", 'QString text = "sleep(1)";', "process.waitForFinished(1000);"):
            self.assertEqual(rules.bare_waits({"tests/a.cpp": text}), [], text)
        self.assertEqual(rules.bare_waits({"runtime/src/Store.cpp": "query.exec();"}), [])

    def test_long_functions(self):
        body = "    work();\n" * 59
        self.assert_found(rules.long_functions({"src/a.cpp": "namespace a {\nint Class::name(int x) const\n{\n" + body + "}\n}\n"}),
                          "src/a.cpp:3: Class::name has 61 lines")
        self.assert_found(rules.long_functions({"src/a.h": "class A : public B\n{\npublic:\n    A() : b({}) {\n" + body + "    }\n};\n"}),
                          "src/a.h:4:")
        self.assert_found(rules.long_functions({"src/a.h": "class A\n{\n    explicit A(int x) : b{1}, c<int>{2}\n    {\n" + body + "    }\n};\n"}),
                          "src/a.h:4: A")
        self.assert_found(rules.long_functions({"src/a.cpp": "template<int n = 1>\nbool A::operator==(const A &a)\n{\n" + body + "}\n"}), "src/a.cpp:3:")
        self.assert_found(rules.long_functions({"src/a.cpp": "void f()\n{\n    if (x) {\n        g([] {\n" + body + "});\n    }\n}\n"}),
                          "src/a.cpp:2: f")

    def test_functions_that_are_short_enough(self):
        body = "    work();\n" * 58
        function = "void f()\n{\n" + body + "}\n"
        self.assertEqual(rules.long_functions({"src/a.cpp": function + function}), [])
        self.assertEqual(rules.long_functions({"src/a.cpp": "const int table[]{\n" + "    1,\n" * 200 + "};\n"}), [])
        self.assertEqual(rules.long_functions({"src/a.cpp": "const Case cases[]{\n" + '    {f(1), "}"},\n' * 200 + "};\n"}), [])
        self.assertEqual(rules.long_functions({"src/a.cpp": "class A\n{\n" + "    int f() { return 1; }\n" * 200 + "};\n"}), [])

    def test_long_controller_header(self):
        self.assert_found(rules.long_controller_header(with_file("src/app/AppDelegate.h", "\n" * 261)), "src/app/AppDelegate.h: 261")
        self.assertEqual(rules.long_controller_header(with_file("src/app/AppDelegate.h", "\n" * 260)), [])

    def test_unfinished_words(self):
        for word in ("TO" + "DO", "FIX" + "ME", "XX" + "X"):
            self.assert_found(rules.unfinished({"src/a.cpp": f"// {word}: later\n"}), "src/a.cpp:1:")


if __name__ == "__main__":
    unittest.main(verbosity=2)
