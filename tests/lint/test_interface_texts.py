"""Holds the tables of the interface against every text of the tree, and each rule against a sample that breaks it."""

import json
import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import interface_texts as texts  # noqa: E402

ROOT = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))


class TheTables(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = texts.read_tree(ROOT)

    def test_are_read(self):
        """One text of every kind, so that no collector falls silent unnoticed."""
        code, page = texts.code_texts(self.tree), texts.page_texts(self.tree)
        for text in ("Could not start “%@”",                       # in L()
                     "Still waiting for the next start of Tuppi Transcriber: %@",  # one of two in L()
                     "Open Summary and Text",                      # in a table
                     "Ukrainian", "Start Again",
                     "Detects each file's language by itself.\nUses Parakeet for Ukrainian and English, Whisper for other "
                     "languages. Fast and reliable."):             # of several literals
            self.assertIn(text, code)
        self.assertIn("Put the caret between two words to split the line.", page)
        sentences, filled = texts.engine_texts(self.tree)
        for text in ("There is not enough memory.", "The recording has become shorter since it was taken.",
                     "The file is not a recording that can be read: its channels cannot be mixed.",
                     "The worker could not be started: the disk is full. Make room and try again.",
                     "The transcript's folder could not be written: it is not there.",
                     "Parakeet cannot run on this computer: no program for it is installed. Choose Automatic to use what is "
                     "installed."):
            self.assertIn(text, sentences)
        self.assertGreater(len(filled), 20)

    def test_every_language_has_a_table(self):
        for language in texts.LANGUAGES:
            self.assertGreater(len(texts.table(self.tree, language)), 250, language)

    def test_have_no_others(self):
        files = [name for name in os.listdir(os.path.join(ROOT, texts.TABLES)) if name.endswith(".json")]
        self.assertEqual(sorted(files), sorted(f"{language}.json" for language in ("en", *texts.LANGUAGES)))


def add_rule(rule):
    def test(self):
        found = rule(self.tree)
        self.assertEqual(found, [], "\n" + "\n".join(found))

    setattr(TheTables, "test_" + rule.__name__, test)


for each_rule in texts.RULES:
    add_rule(each_rule)


def sample(code="", page="", planned="", engine=None, **entries):
    """A tree whose tables all hold the given entries; one given as a dictionary is of its language alone."""
    tree = {"src/a.cpp": code, texts.PAGE_TEXTS: page, texts.PLANNED: planned, texts.TABLES + "en.json": "{}"}
    tree.update({f"runtime/src/{name}": text for name, text in (engine or {}).items()})
    for language in texts.LANGUAGES:
        own = entries.get("own", {}).get(language, entries.get("table", {}))
        tree[f"{texts.TABLES}{language}.json"] = json.dumps(own, sort_keys=True)
    return tree


FAILURE_SOURCE = """
    switch (errorNumber) {
    case ENOSPC:
    case EDQUOT:
        return Failure(doing + u": the disk is full."_s);
    case EIO:
        return Failure(doing + u": the disk \\"failed\\"."_s);
    }
"""


class TheCollectors(unittest.TestCase):
    def assert_texts(self, code, *expected):
        self.assertEqual(sorted(texts.code_texts({"src/a.cpp": code})), sorted(expected))

    def test_text_in_a_call(self):
        self.assert_texts('title(L(u"Paused"_s));', "Paused")
        self.assert_texts('return L(u"Paused"_qs) + L( u"More"_s );', "Paused", "More")

    def test_text_of_several_literals(self):
        self.assert_texts('L(u"One "\n  "two "\n  // why\n  u"three"_s)', "One two three")

    def test_escapes(self):
        self.assert_texts(r'L(u"a\nb \"c\" \u2026 \\"_s)', 'a\nb "c" … \\')

    def test_choice_and_nested_call(self):
        self.assert_texts('L(many ? u"Many"_s : u"One"_s); L(text == u"x"_s ? L(u"Silence"_s) : text)', "Many", "One", "Silence")

    def test_marked_text(self):
        self.assert_texts('{LText(u"Undo"_s), u"undo"_s, u"z"_s}', "Undo")

    def test_format_before_it_is_filled(self):
        self.assert_texts('Fill(L(u"%@ of %@"_s), {u"a"_s, name(u"b"_s)})', "%@ of %@")

    def test_what_is_no_text(self):
        self.assert_texts('// L(u"comment"_s)\n/* L(u"comment"_s) */ L(row.value(u"error"_s)); L(table[u"key"_s]); L(name);')
        self.assert_texts('QString L(const QString &text); other.L(u"method"_s); HTML(u"else"_s); u"plain"_s; L("narrow"_L1); L(u""_s)')

    def test_a_quote_in_a_literal_or_character_does_not_mislead(self):
        self.assert_texts("""f('"'); L(u"A"_s); g("//"); L(u"B"_s); h(R"(")"); L(u"C"_s);""", "A", "B", "C")

    def test_page(self):
        self.assertEqual(texts.page_texts({texts.PAGE_TEXTS: "Save\nUndo: %@\n"}), {"Save": texts.PAGE_TEXTS + ":1", "Undo: %@": texts.PAGE_TEXTS + ":2"})

    def assert_sentences(self, code, *expected, filled=0):
        found, places = texts.engine_texts({"runtime/src/a.cpp": code, "runtime/src/core/Failure.cpp": FAILURE_SOURCE})
        self.assertEqual(sorted(found), sorted(expected))
        self.assertEqual(len(places), filled, places)

    def test_whole_sentences(self):
        self.assert_sentences('throw Failure(u"No room."_s); throw usageFailure(u"Too "\n"much."_s); fail(job, u"Gone."_s); '
                              'return report(u"Odd."_s, 1);', "No room.", "Too much.", "Gone.", "Odd.")

    def test_sentence_with_a_constant(self):
        self.assert_sentences('const QString more = u" More."_s;\nreturn Failure(u"Less."_s + more);', "Less. More.")

    def test_sentence_that_is_one_of_two(self):
        self.assert_sentences('throw Failure(denied ? u"Denied."_s : u"Damaged."_s);', "Denied.", "Damaged.")

    def test_sentence_with_a_beginning_of_its_own(self):
        self.assert_sentences('Failure unreadable(const QString &why)\n{\n    return Failure(u"No: "_s + why);\n}\n'
                              'throw unreadable(u"why."_s);', "No: why.", filled=1)

    def test_what_the_system_said(self):
        self.assert_sentences('throw systemFailure(u"Not copied"_s, errno);', "Not copied: the disk is full.", 'Not copied: the disk "failed".')
        self.assert_sentences('throw systemFailure(u"Not read"_s, EIO);', 'Not read: the disk "failed".')
        self.assert_sentences('makeFolder(path, u"Not made"_s);', "Not made: the disk is full.", 'Not made: the disk "failed".')

    def test_filled_in_sentences(self):
        self.assert_sentences('throw Failure(u"No “"_s + name + u"”."_s); throw Failure(u"%1 times."_s.arg(n)); throw Failure(sentence);', filled=2)


class TheRules(unittest.TestCase):
    def assert_found(self, found, *expected):
        self.assertEqual(len(found), len(expected), found)
        for text, part in zip(found, expected):
            self.assertIn(part, text)

    def test_good_sample_breaks_nothing(self):
        tree = sample(code='L(u"Save “%@”"_s);', page="Undo\n", planned="Soon\\nhere\n", engine={"a.cpp": 'throw Failure(u"Gone."_s);'},
                      table={"Save “%@”": "Ð «%@»", "Undo": "Ü", "Soon\nhere": "Ö\nö", "Gone.": "Ä."})
        for rule in texts.RULES:
            self.assertEqual(rule(tree), [], rule.__name__)

    def test_table_that_lacks_a_text(self):
        tree = sample(code='\nL(u"Save"_s);', own={language: {"Save": "Ð"} for language in texts.LANGUAGES if language != "hi"})
        self.assert_found(texts.missing(tree), "src/a.cpp:2: hi lacks 'Save'")

    def test_table_that_is_gone(self):
        tree = sample(code='L(u"Save"_s);', table={"Save": "Ð"})
        del tree[texts.TABLES + "es.json"]
        self.assert_found(texts.missing(tree), "es lacks")
        self.assert_found(texts.unreadable_tables(tree), "es.json")

    def test_table_that_is_no_object(self):
        for text in ("[1]", '"Save"', "{", ""):
            tree = sample()
            tree[texts.TABLES + "uk.json"] = text
            self.assert_found(texts.unreadable_tables(tree), "uk.json")

    def test_text_that_stands_twice_or_out_of_order(self):
        tree = sample()
        tree[texts.TABLES + "uk.json"] = '{"Save": "a", "Save": "b"}'
        self.assert_found(texts.unreadable_tables(tree), "'Save' stands twice")
        tree[texts.TABLES + "uk.json"] = '{"Save": "a", "Open": "b"}'
        self.assert_found(texts.unreadable_tables(tree), "order")

    def test_text_that_nobody_shows(self):
        self.assert_found(texts.unused(sample(own={"ar": {"Old": "X"}})), "ar.json: 'Old'")

    def test_text_that_the_engine_carries_in_a_variable(self):
        engine = {"a.cpp": 'QString trouble() { return u"Not there."_s; }'}
        self.assertEqual(texts.unused(sample(engine=engine, table={"Not there.": "Ö."})), [])
        self.assert_found(texts.planned_and_used(sample(engine=engine, planned="Not there.\n", table={"Not there.": "Ö."})), "the engine")

    def test_planned_text_that_the_code_uses(self):
        tree = sample(code='L(u"Two\\nlines"_s);', planned="Two\\nlines\n", table={"Two\nlines": "Ð\nð"})
        self.assert_found(texts.planned_and_used(tree), "src/a.cpp:1")

    def test_planned_text_that_a_table_lacks(self):
        self.assert_found(texts.planned_and_missing(sample(planned="Soon\n", own={language: {"Soon": "Ö"} for language in texts.LANGUAGES[1:]})),
                          "uk lacks 'Soon'")

    def test_settling_takes_out_what_is_used(self):
        with tempfile.TemporaryDirectory() as root:
            for path, text in sample(code='L(u"Two\\nlines"_s);', planned="Soon\\nhere\nTwo\\nlines\n").items():
                os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
                with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                    file.write(text)
            texts.settle(root)
            self.assertEqual(texts.planned_texts(texts.read_tree(root)), ["Soon\nhere"])
            with open(os.path.join(root, "src/a.cpp"), "a", encoding="utf-8") as file:
                file.write('L(u"Soon\\nhere"_s);')
            texts.settle(root)
            self.assertNotIn(texts.PLANNED, texts.read_tree(root))

    def test_broken_places(self):
        for english, translation in (("%@", ""), ("%@", "%@ %@"), ("%lu", "%@"), ("%.0f", "%.1f"), ("%@ %lu", "%lu %@"), ("%@ %@", "%1$@"),
                                     ("%@", "%2$@"), ("%@ %@", "%1$@ %1$@")):
            self.assert_found(texts.broken_places(sample(own={"uk": {english: translation}})), "places")
        for english, translation in (("%@ %lu", "%2$lu: %1$@"), ("100 %", "%100"), ("%@ of %@", "%@ / %@"), ("%%", "")):
            self.assertEqual(texts.broken_places(sample(own={"uk": {english: translation}})), [], translation)

    def test_broken_edges(self):
        for english, translation in (("Saved ", "X"), ("X", "X "), (" · X", "· X"), ("A\nB", "A B"), ("A\n\nB", "A\nB"), ("A", "A\n")):
            self.assertNotEqual(texts.broken_edges(sample(own={"uk": {english: translation}})), [], translation)
        self.assertEqual(texts.broken_edges(sample(own={"uk": {"Not saved: ": "未存储："}})), [])

    def test_changed_names(self):
        self.assert_found(texts.changed_names(sample(own={"uk": {"Show in Finder": "Показати"}})), "'Finder'")
        self.assertEqual(texts.changed_names(sample(own={"uk": {"Machines": "Машини"}})), [])

    def test_button_named_otherwise(self):
        sentence, (button,) = texts.MENTIONS[0]
        table = {sentence: "Натисніть «Ще раз»", button: "Почати знову"}
        self.assert_found(texts.other_names_of_buttons(sample(own={"uk": table})), "Почати знову")
        table[sentence] = "Натисніть «Почати знову»"
        self.assertEqual(texts.other_names_of_buttons(sample(own={"uk": table})), [])

    def test_rough_writing(self):
        for translation in ('"a"', "a...", "", "\u2068a", 5, None):
            self.assert_found(texts.rough_writing(sample(own={"uk": {"A": translation}})), "uk.json")

    def test_text_outside_of_the_lookup(self):
        for literal in ("Paused", "Could not do it", "Waiting…", "“%@” is gone", "Name: "):
            self.assert_found(texts.unmarked(sample(code=f'f(u"{literal}"_s);')), "src/a.cpp:1")
            self.assertEqual(texts.unmarked(sample(code=f'f(LText(u"{literal}"_s)); g(L(x ? u"{literal}"_s : y));')), [])
        for literal in ("pauseRow", "ID", "Whisper Turbo", "%1 of %2", "/Library/Application Support", "org.freedesktop.Notifications"):
            self.assertEqual(texts.unmarked(sample(code=f'f(u"{literal}"_s);')), [], literal)


if __name__ == "__main__":
    unittest.main(verbosity=2)
