"""Every message that the page posts, and what every answer does to it."""

import unittest

import page
from viewer_case import ViewerCase

ANNA, BORIS = "Anna", "Boris"
LINES = ((ANNA, "One two three."), (ANNA, "Four five."), (BORIS, "Six seven."), (ANNA, "Eight."))
TEXTS = [text for _, text in LINES]
NAMES = [name for name, _ in LINES]
HOSTILE = "--x \"q\" 'a' </script><b>&amp;\\ \u2028\u2029 \U0001f600 e\u0301 \u200fאב\u200e %@"


def line(start, end, speaker, text):
    return {"start": start, "end": end, "speaker": speaker, "text": text}


class Edit(ViewerCase):
    def setUp(self):
        super().setUp()
        self.load_lines(*LINES)

    def test_ctrl_enter_posts_the_text(self):
        self.rewrite(1, "Four and five.")
        self.browser.keys("Control+Enter")
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": "Four and five."})
        self.assertEqual(self.pending(), [1])
        self.assertEqual(self.texts()[1], "Four and five.")

    def test_done_posts_the_text(self):
        self.rewrite(1, "Done.")
        self.browser.click("#save-edit")
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": "Done."})

    def test_leaving_the_field_posts_the_text(self):
        self.rewrite(1, "Left.")
        self.browser.click("#title")
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": "Left."})

    def test_another_tab_posts_the_text(self):
        self.rewrite(1, "Left.")
        self.browser.run("showTab('summary')")
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": "Left."})

    def test_escape_gives_the_old_text_back(self):
        self.rewrite(1, "Never.")
        self.browser.keys("Escape")
        self.assertEqual(self.texts(), TEXTS)
        self.assertEqual(self.browser.get("document.querySelectorAll('textarea').length"), 0)
        self.no_more_messages()

    def test_an_unchanged_text_is_not_posted(self):
        self.edit(1)
        self.browser.keys("Control+Enter")
        self.browser.wait("!document.querySelector('textarea')")
        self.no_more_messages()

    def test_an_emptied_text_is_posted(self):
        self.edit(1)
        self.browser.keys("Control+a", "Backspace", "Control+Enter")
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": ""})

    def test_saved(self):
        self.rewrite(1, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 1, True, "Saved · also fixed in the clean text", "New.")
        self.await_notice("Saved · also fixed in the clean text")
        self.await_settled()
        self.assertEqual(self.texts(), [TEXTS[0], "New.", *TEXTS[2:]])

    def test_failed_restores_and_offers_what_was_typed(self):
        self.rewrite(1, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 1, False, "Not saved: disk full", "New.")
        self.await_notice("Not saved: disk full", failed=True)
        self.await_settled()
        self.assertEqual(self.texts(), TEXTS)
        self.browser.click("#notice-again")
        self.assertEqual(self.browser.get("document.activeElement.value"), "New.")
        self.browser.keys("Control+Enter")
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": "New."})

    def fail_while_open_again(self):
        self.rewrite(1, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.edit(1)
        self.answer("tuppiSaved", 1, False, "Not saved: disk full", "New.")
        self.await_notice("Not saved: disk full", failed=True)

    def test_a_line_opened_again_before_its_saving_failed_is_saved_again(self):
        self.fail_while_open_again()
        self.browser.keys("Control+Enter")
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": "New."})
        self.answer("tuppiSaved", 1, True, "Saved", "New.")
        self.await_settled()
        self.assertEqual(self.texts()[1], "New.")

    def test_one_whose_line_was_opened_again_is_offered_when_that_is_left(self):
        self.fail_while_open_again()
        self.assertEqual(self.browser.get("tuppiFailed()"), ["New."])
        self.browser.keys("Escape")
        self.assertEqual(self.texts()[1], TEXTS[1])
        self.assertEqual(self.browser.get("tuppiFailed()"), ["New."])
        self.browser.click("#notice-again")
        self.assertEqual(self.browser.get("document.activeElement.value"), "New.")
        self.no_more_messages()

    def test_who_asks_again_what_is_saved_leaves_the_next_edit_alone(self):
        self.rewrite(0, "First.")
        self.browser.keys("Control+Enter")
        self.rewrite(1, "Seco")
        self.assertEqual(self.browser.get("[tuppiUnsaved(false), tuppiFailed()]"), [["First."], []])
        self.browser.type("nd.")
        self.message()
        self.answer("tuppiSaved", 0, False, "Not saved: disk full", "First.")
        self.await_notice("Not saved: disk full", failed=True)
        self.assertEqual(self.browser.get("[tuppiUnsaved(false), tuppiFailed()]"), [[], ["First."]])
        self.assertEqual(self.browser.get("document.activeElement.value"), "Second.")
        self.no_more_messages()
        self.assertEqual(self.browser.get("tuppiUnsaved()"), ["Second."])
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": "Second."})

    def test_one_taken_back_before_the_first_failed_hides_nothing_later(self):
        for text in ("New.", TEXTS[0]):
            self.rewrite(0, text)
            self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 0, False, "Not saved: disk full", "New.")
        self.await_notice("Not saved: disk full", failed=True)
        self.await_settled()
        self.no_more_messages()
        self.edit(1, 0)
        self.browser.keys("Backspace")
        self.message()
        self.answer("tuppiJoined", 1, True, "Joined", line(0, 10, ANNA, "One two three. Four five."))
        self.browser.wait("document.activeElement.value === 'One two three. Four five.'")
        self.browser.keys("Escape")
        self.assertEqual(self.texts(), ["One two three. Four five.", *TEXTS[2:]])

    def test_an_answer_about_another_line_settles_nothing(self):
        self.rewrite(1, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 2, True, "Saved", "Other.")
        self.await_notice("Saved")
        self.assertEqual(self.pending(), [1])
        self.answer("tuppiSaved", 1, True, "Saved", "New.")
        self.await_settled()
        self.assertEqual(self.texts()[1:3], ["New.", TEXTS[2]])

    def test_corrections_go_one_after_another(self):
        self.rewrite(0, "First.")
        self.browser.keys("Control+Enter")
        self.rewrite(1, "Second.")
        self.browser.keys("Control+Enter")
        self.assertEqual(self.message()["index"], 0)
        self.assertEqual(self.texts()[:2], ["First.", "Second."])
        self.no_more_messages()
        self.answer("tuppiSaved", 0, False, "Not saved", "First.")
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": "Second."})
        self.assertEqual(self.texts()[:2], [TEXTS[0], "Second."])

    def fail(self, number, text, why):
        self.rewrite(number, text)
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", number, False, why, text)
        self.await_notice(why, failed=True)

    def test_a_later_success_leaves_what_can_be_tried_again(self):
        self.fail(0, "First.", "Not saved: disk full")
        self.rewrite(1, "Second.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 1, True, "Saved", "Second.")
        self.browser.wait("document.getElementById('said').textContent === 'Saved'")
        self.assertEqual(self.browser.get("document.getElementById('notice-text').textContent"), "Not saved: disk full")
        self.browser.click("#notice-again")
        self.assertEqual(self.browser.get("document.activeElement.value"), "First.")
        self.assertEqual(self.browser.get("lineOf(document.activeElement) === state.lines[0]"), True)
        self.assertTrue(self.browser.get("document.getElementById('notice').hidden"))

    def test_each_failure_can_be_tried_again(self):
        self.fail(0, "First.", "Not saved: disk full")
        self.fail(1, "Second.", "Not saved: busy")
        self.fail(2, "Third.", "Not saved: too long")
        self.assertEqual(self.browser.get("tuppiFailed()"), ["First.", "Second.", "Third."])
        self.edit(0, 0)
        self.browser.keys("Enter")
        self.await_notice("Put the caret between two words to split the line.", failed=True)
        self.browser.click("#notice-close")
        self.await_notice("Not saved: too long", failed=True)
        self.browser.click("#notice-close")
        self.await_notice("Not saved: busy", failed=True)
        self.browser.click("#notice-again")
        self.assertEqual(self.browser.get("document.activeElement.value"), "Second.")
        self.await_notice("Not saved: disk full", failed=True)
        self.assertEqual(self.browser.get("tuppiFailed()"), ["First."])
        self.browser.click("#notice-again")
        self.assertEqual(self.browser.get("document.activeElement.value"), "First.")
        self.assertTrue(self.browser.get("document.getElementById('notice').hidden"))
        self.assertEqual(self.browser.get("tuppiFailed()"), [])

    def test_hostile_texts_pass_unchanged(self):
        self.rewrite(2, HOSTILE)
        self.browser.keys("Control+Enter")
        self.assertEqual(self.message(), {"kind": "edit", "index": 2, "text": HOSTILE})
        self.answer("tuppiSaved", 2, True, "Saved", HOSTILE)
        self.await_settled()
        self.assertEqual(self.texts()[2], HOSTILE)

    def test_line_breaks_become_blanks(self):
        self.rewrite(1, "a\nb\r\nc")
        self.browser.keys("Control+Enter")
        self.assertEqual(self.message()["text"], "a b c")

    def test_a_line_with_line_breaks_of_its_own_is_left_alone(self):
        self.load_lines((ANNA, "a\rb\r\nc\nd"), (ANNA, "e"))
        self.edit(0)
        self.browser.keys("Control+Enter")
        self.browser.wait("!document.querySelector('textarea')")
        self.no_more_messages()


class Split(ViewerCase):
    def setUp(self):
        super().setUp()
        self.load_lines(*LINES)

    def test_enter_posts_the_place(self):
        self.edit(0, 7)
        self.browser.keys("Enter")
        self.assertEqual(self.message(), {"kind": "split", "index": 0, "pos": 7})
        self.assertEqual(self.pending(), [0])

    def test_the_button_posts_the_place(self):
        self.edit(2, 3)
        self.browser.click("#split-here")
        self.assertEqual(self.message(), {"kind": "split", "index": 2, "pos": 3})

    def test_the_place_counts_characters_not_utf_16_units(self):
        text = "\U0001f469\u200d\U0001f680 \U0001f600\U0001f600 e\u0301 \u200fאב x"
        for units, characters in ((6, 4), (10, 6), (13, 9), (17, 13)):
            self.answered = 0
            self.load_lines((ANNA, text))
            self.edit(0, units)
            self.browser.keys("Enter")
            self.assertEqual(self.message(), {"kind": "split", "index": 0, "pos": characters})
            self.assertEqual(len(text.encode("utf-16-le")[:units * 2].decode("utf-16-le")), characters)

    def test_a_character_of_two_units_is_not_cut(self):
        self.load_lines((ANNA, "a \U0001f600 b"))
        self.edit(0)
        self.browser.run("document.activeElement.setSelectionRange(3, 3)")
        self.browser.keys("Enter")
        self.assertEqual(self.message()["pos"], 2)

    def test_a_changed_text_is_saved_first(self):
        self.edit(0, 0)
        self.browser.type("Oh \U0001f600 ")
        self.browser.keys("Enter")
        self.assertEqual(self.message(), {"kind": "edit", "index": 0, "text": "Oh \U0001f600 One two three."})
        self.no_more_messages()
        self.answer("tuppiSaved", 0, True, "Saved", "Oh \U0001f600 One two three.")
        self.assertEqual(self.message(), {"kind": "split", "index": 0, "pos": 5})

    def test_a_text_that_could_not_be_saved_is_not_split(self):
        self.edit(0, 0)
        self.browser.type("Oh ")
        self.browser.keys("Enter")
        self.message()
        self.answer("tuppiSaved", 0, False, "Not saved", "Oh One two three.")
        self.await_notice("Not saved", failed=True)
        self.await_settled()
        self.no_more_messages()
        self.assertEqual(self.browser.get("document.activeElement.value"), "Oh One two three.")
        self.browser.keys("Escape")
        self.assertEqual(self.texts(), TEXTS)

    def test_nothing_to_split_off(self):
        for caret in (0, len(TEXTS[0])):
            self.edit(0, caret)
            self.browser.keys("Enter")
            self.await_notice("Put the caret between two words to split the line.", failed=True)
            self.browser.keys("Escape")
        self.no_more_messages()

    def test_split(self):
        self.edit(0, 7)
        self.browser.keys("Enter")
        self.message()
        self.answer("tuppiSplit", 0, True, "Split", line(0, 2, ANNA, "One two"), line(2, 5, ANNA, "three."))
        self.await_notice("Split")
        self.browser.wait("document.activeElement.tagName === 'TEXTAREA' && document.activeElement.value === 'three.'")
        self.assertEqual(self.browser.get("document.activeElement.selectionStart"), 0)
        self.browser.keys("Escape")
        self.assertEqual(self.texts(), ["One two", "three.", *TEXTS[1:]])
        self.assertEqual(self.names(), [ANNA, *NAMES])
        self.assertEqual(self.browser.get("document.querySelectorAll('.time')[1].textContent"), "0:02")

    def test_the_lines_below_move_on(self):
        self.edit(0, 7)
        self.browser.keys("Enter")
        self.message()
        self.answer("tuppiSplit", 0, True, "Split", line(0, 2, ANNA, "One two"), line(2, 5, ANNA, "three."))
        self.browser.wait("document.activeElement.value === 'three.'")
        self.browser.keys("Escape")
        self.rewrite(3, "New.")
        self.browser.keys("Control+Enter")
        self.assertEqual(self.message(), {"kind": "edit", "index": 3, "text": "New."})

    def test_split_without_the_two_lines(self):
        self.edit(0, 7)
        self.browser.keys("Enter")
        self.message()
        self.answer("tuppiSplit", 0, True, "Split", None, None)
        self.browser.wait("document.activeElement.value === 'three.'")
        self.browser.keys("Escape")
        self.assertEqual(self.texts()[:2], ["One two", "three."])

    def test_failed(self):
        self.edit(0, 7)
        self.browser.keys("Enter")
        self.message()
        self.answer("tuppiSplit", 0, False, "Not saved: too short")
        self.await_notice("Not saved: too short", failed=True)
        self.await_settled()
        self.assertEqual(self.browser.get("[document.activeElement.value, document.activeElement.readOnly]"),
                         [TEXTS[0], False])
        self.browser.keys("Escape")
        self.assertEqual(self.texts(), TEXTS)

    def test_nothing_opens_once_the_field_was_left(self):
        self.edit(0, 7)
        self.browser.keys("Enter")
        self.message()
        self.browser.click("#title")
        self.answer("tuppiSplit", 0, True, "Split", line(0, 2, ANNA, "One two"), line(2, 5, ANNA, "three."))
        self.browser.wait("document.querySelectorAll('.line').length === 5")
        self.await_settled()
        self.assertEqual(self.browser.get("document.querySelectorAll('textarea').length"), 0)
        self.no_more_messages()


class Join(ViewerCase):
    def setUp(self):
        super().setUp()
        self.load_lines(*LINES)

    def join(self, number):
        self.edit(number, 0)
        self.browser.keys("Backspace")
        self.message()

    def test_backspace_at_the_start_posts_the_line(self):
        self.edit(2, 0)
        self.browser.keys("Backspace")
        self.assertEqual(self.message(), {"kind": "join", "index": 2})
        self.assertEqual(self.pending(), [1, 2])

    def test_the_button_posts_the_line(self):
        self.edit(1)
        self.browser.click("#join-above")
        self.assertEqual(self.message(), {"kind": "join", "index": 1})

    def test_backspace_elsewhere_deletes(self):
        self.edit(1, 1)
        self.browser.keys("Backspace")
        self.assertEqual(self.browser.get("document.activeElement.value"), "our five.")
        self.browser.keys("Escape")
        self.no_more_messages()

    def test_a_held_backspace_does_not_join(self):
        self.edit(1, 0)
        for held in (True, False):
            self.no_more_messages()
            self.browser.cdp("Input.dispatchKeyEvent", type="rawKeyDown", key="Backspace", code="Backspace",
                             windowsVirtualKeyCode=8, autoRepeat=held)
        self.assertEqual(self.message(), {"kind": "join", "index": 1})

    def test_the_first_line_has_none_above(self):
        self.edit(0, 0)
        self.browser.keys("Backspace")
        self.assertTrue(self.browser.get("document.getElementById('join-above').disabled"))
        self.browser.keys("Escape")
        self.no_more_messages()

    def test_a_changed_text_is_saved_first(self):
        self.rewrite(1, "Changed.")
        self.browser.keys("Home", "Backspace")
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": "Changed."})
        self.answer("tuppiSaved", 1, True, "Saved", "Changed.")
        self.assertEqual(self.message(), {"kind": "join", "index": 1})

    def test_neither_line_can_be_edited_meanwhile(self):
        self.rewrite(1, "Changed.")
        self.browser.keys("Home", "Backspace")
        self.message()
        self.assertEqual(self.pending(), [0, 1])
        self.browser.click(self.line(0) + " .text", times=2)
        self.browser.keys("F2")
        self.assertEqual(self.browser.get("document.querySelectorAll('textarea').length"), 0)
        self.answer("tuppiSaved", 1, True, "Saved", "Changed.")
        self.message()
        self.answer("tuppiJoined", 1, True, "Joined with the line above", line(0, 10, ANNA, "One two three. Changed."))
        self.await_settled()
        self.assertEqual(self.texts(), ["One two three. Changed.", *TEXTS[2:]])
        self.edit(0)
        self.browser.keys("Escape")
        self.no_more_messages()

    def test_joined(self):
        self.join(1)
        self.answer("tuppiJoined", 1, True, "Joined with the line above", line(0, 10, ANNA, "One two three. Four five."))
        self.await_notice("Joined with the line above")
        self.browser.wait("document.activeElement.value === 'One two three. Four five.'")
        self.assertEqual(self.browser.get("document.activeElement.selectionStart"), 15)
        self.browser.keys("Escape")
        self.assertEqual(self.texts(), ["One two three. Four five.", *TEXTS[2:]])
        self.assertEqual(self.names(), [ANNA, BORIS, ANNA])

    def test_joined_without_the_line(self):
        self.join(1)
        self.answer("tuppiJoined", 1, True, "Joined with the line above", None)
        self.browser.wait("document.querySelectorAll('.line').length === 3")
        self.browser.keys("Escape")
        self.assertEqual(self.texts()[0], "One two three. Four five.")

    def test_failed(self):
        self.join(1)
        self.answer("tuppiJoined", 1, False, "Not saved")
        self.await_notice("Not saved", failed=True)
        self.await_settled()
        self.browser.keys("Escape")
        self.assertEqual(self.texts(), TEXTS)

    def test_the_name_stands_over_what_follows(self):
        self.join(2)
        self.answer("tuppiJoined", 2, True, "Joined with the line above", line(5, 15, ANNA, "Four five. Six seven."))
        self.browser.wait("document.querySelectorAll('.line').length === 3")
        self.browser.keys("Escape")
        self.assertEqual(self.browser.get("document.querySelectorAll('.speaker').length"), 1)


class Speaker(ViewerCase):
    def setUp(self):
        super().setUp()
        self.load_lines(*LINES)

    def test_a_known_name_for_one_line(self):
        self.open_menu(1, everywhere=False)
        self.choose(BORIS)
        self.assertEqual(self.message(), {"kind": "speaker", "index": 1, "name": BORIS})
        self.assertEqual(self.pending(), [1])
        self.assertEqual(self.names(), [ANNA, BORIS, BORIS, ANNA])

    def test_a_new_name_for_one_line(self):
        self.open_menu(1, everywhere=False)
        self.write_name("  " + HOSTILE + " ")
        self.assertEqual(self.message(), {"kind": "speaker", "index": 1, "name": HOSTILE})

    def test_no_name(self):
        self.open_menu(1, everywhere=False)
        self.choose("No speaker")
        self.assertEqual(self.message(), {"kind": "speaker", "index": 1, "name": None})

    def test_saved(self):
        self.open_menu(1, everywhere=False)
        self.choose(BORIS)
        self.message()
        self.answer("tuppiSpeakerSaved", 1, True, "Speaker saved", BORIS)
        self.await_notice("Speaker saved")
        self.await_settled()
        self.assertEqual(self.names(), [ANNA, BORIS, BORIS, ANNA])

    def test_the_answer_says_who_it_is(self):
        self.open_menu(1, everywhere=False)
        self.write_name("boris")
        self.message()
        self.answer("tuppiSpeakerSaved", 1, True, "Speaker saved", BORIS)
        self.await_settled()
        self.assertEqual(self.names(), [ANNA, BORIS, BORIS, ANNA])

    def test_cleared(self):
        self.open_menu(0, everywhere=False)
        self.choose("No speaker")
        self.message()
        self.answer("tuppiSpeakerSaved", 0, True, "Speaker saved", None)
        self.await_settled()
        self.assertEqual(self.names(), [None, ANNA, BORIS, ANNA])

    def test_failed(self):
        self.open_menu(1, everywhere=False)
        self.choose(BORIS)
        self.message()
        self.answer("tuppiSpeakerSaved", 1, False, "Not saved", None)
        self.await_notice("Not saved", failed=True)
        self.assertEqual(self.browser.get("tuppiFailed()"), [BORIS])
        self.await_settled()
        self.assertEqual(self.names(), NAMES)

    def test_its_own_name_is_not_posted(self):
        self.open_menu(0, everywhere=True)
        self.choose(ANNA)
        self.browser.wait("!document.getElementById('speaker-menu').open")
        self.no_more_messages()

    def test_no_blank_name(self):
        self.open_menu(0, everywhere=True)
        self.write_name("   ")
        self.assertTrue(self.browser.get("document.getElementById('speaker-menu').open"))
        self.browser.keys("Escape")
        self.no_more_messages()


class Rename(ViewerCase):
    def setUp(self):
        super().setUp()
        self.load_lines(*LINES)

    def rename(self, name):
        self.open_menu(0, everywhere=True)
        self.write_name(name)
        self.message()

    def test_a_new_name_everywhere(self):
        self.open_menu(0, everywhere=True)
        self.write_name(HOSTILE)
        self.assertEqual(self.message(), {"kind": "rename", "old": ANNA, "name": HOSTILE})
        self.assertEqual(self.pending(), [0, 1, 3])
        self.assertEqual(self.names(), [HOSTILE, HOSTILE, BORIS, HOSTILE])

    def test_a_known_name_everywhere(self):
        self.open_menu(2, everywhere=True)
        self.choose(ANNA)
        self.assertEqual(self.message(), {"kind": "rename", "old": BORIS, "name": ANNA})

    def test_the_choice_this_line_only(self):
        self.open_menu(0, everywhere=True)
        self.browser.click("#scope input[value=line]")
        self.write_name("Cleo")
        self.assertEqual(self.message(), {"kind": "speaker", "index": 0, "name": "Cleo"})

    def test_the_choice_everywhere(self):
        self.open_menu(1, everywhere=False)
        self.browser.click("#scope input[value=everywhere]")
        self.assertEqual(self.browser.get("document.querySelectorAll('#names .none').length"), 0)
        self.write_name("Cleo")
        self.assertEqual(self.message(), {"kind": "rename", "old": ANNA, "name": "Cleo"})

    def test_renamed(self):
        self.rename("Cleo")
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", ANNA, "Cleo")
        self.await_notice("Renamed in 3 lines")
        self.await_settled()
        self.assertEqual(self.names(), ["Cleo", "Cleo", BORIS, "Cleo"])

    def test_renamed_to_what_the_answer_says(self):
        self.rename("boris")
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", ANNA, BORIS)
        self.await_settled()
        self.assertEqual(self.names(), [BORIS] * 4)

    def test_again_before_it_is_answered(self):
        self.rename("Cleo")
        self.open_menu(0, everywhere=True)
        self.assertEqual(self.browser.get("document.getElementById('speaker-menu-title').textContent"), "Speaker: Cleo")
        self.assertEqual(self.browser.get("document.querySelector('#names [aria-current]').textContent"), "Cleo")
        self.write_name("Dora")
        self.assertEqual(self.names(), ["Dora", "Dora", BORIS, "Dora"])
        self.no_more_messages()
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", ANNA, "Cleo")
        self.assertEqual(self.message(), {"kind": "rename", "old": "Cleo", "name": "Dora"})
        self.assertEqual(self.names(), ["Dora", "Dora", BORIS, "Dora"])
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", "Cleo", "Dora")
        self.await_settled()
        self.assertEqual(self.names(), ["Dora", "Dora", BORIS, "Dora"])

    def test_taken_back_before_it_is_answered(self):
        self.rename("Cleo")
        self.open_menu(0, everywhere=True)
        self.choose(ANNA)
        self.assertEqual(self.names(), NAMES)
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", ANNA, "Cleo")
        self.assertEqual(self.message(), {"kind": "rename", "old": "Cleo", "name": ANNA})
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", "Cleo", ANNA)
        self.await_settled()
        self.assertEqual(self.names(), NAMES)

    def test_again_after_one_that_fails(self):
        self.rename("Cleo")
        self.open_menu(0, everywhere=True)
        self.write_name("Dora")
        self.answer("tuppiRenamed", False, "Not saved: busy", ANNA, ANNA)
        self.await_notice("Could not save this change", failed=True)
        self.assertEqual(self.browser.get("tuppiFailed()"), ["Cleo", "Dora"])
        self.await_settled()
        self.no_more_messages()
        self.assertEqual(self.names(), NAMES)

    def test_again_with_others_after_one_that_fails(self):
        self.open_menu(0, everywhere=True)
        self.choose(BORIS)
        self.message()
        self.open_menu(0, everywhere=True)
        self.write_name("Bob")
        self.assertEqual(self.names(), ["Bob"] * 4)
        self.answer("tuppiRenamed", False, "Not saved: busy", ANNA, ANNA)
        self.assertEqual(self.message(), {"kind": "rename", "old": BORIS, "name": "Bob"})
        self.answer("tuppiRenamed", True, "Renamed in 1 line", BORIS, "Bob")
        self.await_settled()
        self.assertEqual(self.names(), [ANNA, ANNA, "Bob", ANNA])

    def test_one_that_waits_is_shown(self):
        self.rewrite(3, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.open_menu(0, everywhere=True)
        self.write_name("Cleo")
        self.assertEqual(self.names(), ["Cleo", "Cleo", BORIS, "Cleo"])
        self.open_menu(0, everywhere=False)
        self.choose(BORIS)
        self.assertEqual(self.names(), [BORIS, "Cleo", BORIS, "Cleo"])
        self.answer("tuppiSaved", 3, True, "Saved", "New.")
        self.assertEqual(self.message(), {"kind": "rename", "old": ANNA, "name": "Cleo"})
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", ANNA, "Cleo")
        self.assertEqual(self.names(), [BORIS, "Cleo", BORIS, "Cleo"])
        self.assertEqual(self.message(), {"kind": "speaker", "index": 0, "name": BORIS})

    def test_failed_puts_the_old_name_back(self):
        self.rename("Cleo")
        self.answer("tuppiRenamed", False, "Not saved: busy", ANNA, ANNA)
        self.await_notice("Not saved: busy", failed=True)
        self.assertEqual(self.browser.get("tuppiFailed()"), ["Cleo"])
        self.await_settled()
        self.assertEqual(self.names(), NAMES)

    def test_refused_puts_the_old_name_back(self):
        self.rename("Cleo")
        self.answer("tuppiRenamed", False, "Could not rename", ANNA, "Cleo")
        self.await_notice("Could not rename", failed=True)
        self.await_settled()
        self.assertEqual(self.names(), NAMES)

    def test_the_new_name_is_known_and_the_old_one_is_not(self):
        self.rename("Cleo")
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", ANNA, "Cleo")
        self.await_settled()
        self.open_menu(2, everywhere=True)
        self.assertEqual(self.browser.get("[...document.querySelectorAll('#names button')].map(e => e.textContent)"),
                         ["Cleo", BORIS])


class RenamedSummary(ViewerCase):
    """The same cases as the engine's own, which writes the files anew."""

    def rename(self, old, name, paragraphs, tasks, said="One."):
        self.answered = 0
        self.load_lines((old, said), ("Ann", "Two."), summary={"note": [], "paragraphs": paragraphs, "tasks": tasks})
        self.open_menu(0, everywhere=True)
        self.write_name(name)
        self.message()

    def summary(self):
        return self.browser.get("['prose', 'tasks'].map(id => [...document.querySelectorAll('#' + id + ' li')]"
                                ".map(e => e.textContent))")

    def test_a_name_that_the_engine_gave_changes_everywhere(self):
        self.rename("Speaker 1", "Anna \\1 $&", ["- Speaker 1 met Speaker 10.\n- He spoke."], ["Speaker 1: I will call Speaker 1."])
        self.answer("tuppiRenamed", True, "Renamed in 1 line", "Speaker 1", "Anna \\1 $&")
        self.await_settled()
        self.assertEqual(self.summary(), [["Anna \\1 $& met Speaker 10.", "He spoke."],
                                          ["Anna \\1 $&: I will call Anna \\1 $&."]])
        self.browser.run("document.activeElement.blur()")
        self.browser.keys("Control+z")
        self.message()
        self.answer("tuppiRenamed", True, "Renamed in 1 line", "Anna \\1 $&", "Speaker 1")
        self.await_notice("Undone: Rename")
        self.assertEqual(self.summary()[1], ["Speaker 1: I will call Speaker 1."])

    def test_a_name_that_nobody_said_changes_everywhere(self):
        self.rename("A.na (1)", "Anna", ["- A.na (1) will call Bo.\n- A.na (1)'s dog."], ["A.na (1): I will call."])
        self.answer("tuppiRenamed", True, "Renamed in 1 line", "A.na (1)", "Anna")
        self.await_settled()
        self.assertEqual(self.summary(), [["Anna will call Bo.", "Anna's dog."], ["Anna: I will call."]])

    def test_another_name_changes_where_it_tells_who_speaks(self):
        self.rename("Bo", "Carl", ["- Bo: Yes.\n- Bo said so."],
                    ["Ann: Can you call Bo? Bo: On Monday.", "Ann: Tell Bo that Ann comes."], "I am bo.")
        self.answer("tuppiRenamed", True, "Renamed in 1 line", "Bo", "Carl")
        self.await_settled()
        self.assertEqual(self.summary(), [["Carl: Yes.", "Bo said so."],
                                          ["Ann: Can you call Bo? Carl: On Monday.", "Ann: Tell Bo that Ann comes."]])

    def test_what_failed_changes_nothing(self):
        self.rename("Bo", "Carl", ["- Bo: Yes."], [])
        self.answer("tuppiRenamed", False, "Not saved", "Bo", "Bo")
        self.await_settled()
        self.assertEqual(self.summary(), [["Bo: Yes."], []])


class Undo(ViewerCase):
    def setUp(self):
        super().setUp()
        self.load_lines(*LINES)

    def undo(self):
        self.browser.run("document.activeElement.blur()")
        self.browser.keys("Control+z")

    def await_undone(self, label):
        self.await_notice("Undone: " + label)
        self.await_settled()
        self.assertEqual((self.texts(), self.names()), (TEXTS, NAMES))

    def test_there_is_nothing_to_undo_at_first(self):
        self.assertTrue(self.browser.get("document.getElementById('undo').disabled"))
        self.undo()
        self.no_more_messages()

    def test_edit(self):
        self.rewrite(1, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 1, True, "Saved", "New.")
        self.browser.wait("!document.getElementById('undo').disabled")
        self.browser.click("#undo")
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": TEXTS[1]})
        self.answer("tuppiSaved", 1, True, "Saved", TEXTS[1])
        self.await_undone("Edit")
        self.assertTrue(self.browser.get("document.getElementById('undo').disabled"))

    def test_what_failed_is_not_undone(self):
        self.rewrite(1, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 1, False, "Not saved", "New.")
        self.await_settled()
        self.assertTrue(self.browser.get("document.getElementById('undo').disabled"))

    def test_what_fails_on_its_way_is_not_undone_and_nothing_in_its_place(self):
        self.rewrite(0, "First.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 0, True, "Saved", "First.")
        self.await_settled()
        self.rewrite(1, "Second.")
        self.browser.keys("Control+Enter")
        self.message()
        self.undo()
        self.answer("tuppiSaved", 1, False, "Not saved", "Second.")
        self.await_notice("Not saved", failed=True)
        self.await_settled()
        self.assertEqual(self.texts(), ["First.", *TEXTS[1:]])
        self.assertEqual(self.browser.get("tuppiUnsaved()"), [])
        self.no_more_messages()
        self.undo()
        self.assertEqual(self.message(), {"kind": "edit", "index": 0, "text": TEXTS[0]})

    def test_a_change_that_was_saved_and_then_not_split_is_undone(self):
        self.rewrite(0, "One two four.")
        self.browser.run("document.activeElement.setSelectionRange(3, 3)")
        self.browser.keys("Enter")
        self.message()
        self.undo()
        self.answer("tuppiSaved", 0, True, "Saved", "One two four.")
        self.assertEqual(self.message()["kind"], "split")
        self.answer("tuppiSplit", 0, False, "Not saved", None, None)
        self.assertEqual(self.message(), {"kind": "edit", "index": 0, "text": TEXTS[0]})

    def test_speaker(self):
        self.open_menu(1, everywhere=False)
        self.choose("No speaker")
        self.message()
        self.answer("tuppiSpeakerSaved", 1, True, "Speaker saved", None)
        self.await_settled()
        self.undo()
        self.assertEqual(self.message(), {"kind": "speaker", "index": 1, "name": ANNA})
        self.answer("tuppiSpeakerSaved", 1, True, "Speaker saved", ANNA)
        self.await_undone("Speaker")

    def test_rename(self):
        self.open_menu(0, everywhere=True)
        self.write_name("Cleo")
        self.message()
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", ANNA, "Cleo")
        self.await_settled()
        self.undo()
        self.assertEqual(self.message(), {"kind": "rename", "old": "Cleo", "name": ANNA})
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", "Cleo", ANNA)
        self.await_undone("Rename")

    def test_rename_to_a_name_that_others_had(self):
        self.open_menu(0, everywhere=True)
        self.choose(BORIS)
        self.message()
        self.answer("tuppiRenamed", True, "Renamed in 3 lines", ANNA, BORIS)
        self.await_settled()
        self.undo()
        for index in (0, 1, 3):
            self.assertEqual(self.message(), {"kind": "speaker", "index": index, "name": ANNA})
            self.answer("tuppiSpeakerSaved", index, True, "Speaker saved", ANNA)
        self.await_undone("Rename")

    def split(self):
        self.edit(0, 7)
        self.browser.keys("Enter")
        self.message()
        self.answer("tuppiSplit", 0, True, "Split", line(0, 2, ANNA, "One two"), line(2, 5, ANNA, "three."))
        self.browser.wait("document.activeElement.value === 'three.'")
        self.browser.keys("Escape")

    def test_split(self):
        self.split()
        self.undo()
        self.assertEqual(self.message(), {"kind": "join", "index": 1})
        self.answer("tuppiJoined", 1, True, "Joined with the line above", line(0, 5, ANNA, TEXTS[0]))
        self.await_undone("Split")

    def test_split_whose_joining_gives_another_text(self):
        self.split()
        self.undo()
        self.message()
        self.answer("tuppiJoined", 1, True, "Joined with the line above", line(0, 5, ANNA, "One two  three."))
        self.assertEqual(self.message(), {"kind": "edit", "index": 0, "text": TEXTS[0]})
        self.answer("tuppiSaved", 0, True, "Saved", TEXTS[0])
        self.await_undone("Split")

    def test_join(self):
        self.edit(2, 0)
        self.browser.keys("Backspace")
        self.message()
        self.answer("tuppiJoined", 2, True, "Joined with the line above", line(5, 15, ANNA, "Four five. Six seven."))
        self.browser.wait("document.querySelectorAll('.line').length === 3")
        self.browser.keys("Escape")
        self.undo()
        self.assertEqual(self.message(), {"kind": "split", "index": 1, "pos": 10})
        self.answer("tuppiSplit", 1, True, "Split", line(5, 10, ANNA, "Four five."), line(10, 15, ANNA, "Six seven."))
        self.assertEqual(self.message(), {"kind": "speaker", "index": 2, "name": BORIS})
        self.answer("tuppiSpeakerSaved", 2, True, "Speaker saved", BORIS)
        self.await_undone("Join")

    def test_a_failed_undo_can_be_tried_again(self):
        self.rewrite(1, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 1, True, "Saved", "New.")
        self.await_settled()
        self.undo()
        self.message()
        self.answer("tuppiSaved", 1, False, "Not saved", TEXTS[1])
        self.await_notice("Not saved", failed=True)
        self.assertEqual(self.texts()[1], "New.")
        self.undo()
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": TEXTS[1]})
        self.answer("tuppiSaved", 1, True, "Saved", TEXTS[1])
        self.await_undone("Edit")

    def test_the_last_one_first(self):
        self.rewrite(3, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 3, True, "Saved", "New.")
        self.split()
        self.undo()
        self.undo()
        self.assertEqual(self.message(), {"kind": "join", "index": 1})
        self.answer("tuppiJoined", 1, True, "Joined with the line above", line(0, 5, ANNA, TEXTS[0]))
        self.assertEqual(self.message(), {"kind": "edit", "index": 3, "text": TEXTS[3]})
        self.answer("tuppiSaved", 3, True, "Saved", TEXTS[3])
        self.await_undone("Edit")

    def split_and_undo_behind_another(self):
        self.split()
        self.rewrite(4, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 4, True, "Saved", "New.")
        self.await_settled()
        self.undo()
        self.undo()
        self.assertEqual(self.message(), {"kind": "edit", "index": 4, "text": TEXTS[3]})

    def await_what_no_longer_fits(self, offered):
        self.answer("tuppiSaved", 4, True, "Saved", TEXTS[3])
        self.assertEqual(self.message(), {"kind": "join", "index": 1})
        self.answer("tuppiJoined", 1, True, "Joined with the line above", line(0, 5, ANNA, TEXTS[0]))
        self.await_notice("Could not save this change", failed=True)
        self.await_settled()
        self.assertEqual(self.texts(), TEXTS)
        self.browser.click("#notice-again")
        self.assertEqual(self.browser.get("[document.activeElement.value, state.lines.indexOf(state.editor.line)]"),
                         [offered, 0])
        self.no_more_messages()

    def test_an_edit_of_a_line_that_was_joined_before_its_turn_is_kept(self):
        self.split_and_undo_behind_another()
        self.rewrite(1, "Three!")
        self.browser.keys("Control+Enter")
        self.await_what_no_longer_fits("One two three. Three!")

    def test_an_edit_of_a_line_that_took_another_in_before_its_turn_is_kept(self):
        self.split_and_undo_behind_another()
        self.rewrite(0, "One two!")
        self.browser.keys("Control+Enter")
        self.await_what_no_longer_fits("One two three. One two!")

    def test_an_open_edit_of_a_line_that_is_joined_is_kept(self):
        self.split_and_undo_behind_another()
        self.rewrite(1, "Three!")
        self.await_what_no_longer_fits("One two three. Three!")

    def test_a_line_that_was_edited_and_then_joined(self):
        self.rewrite(1, "New.")
        self.browser.keys("Control+Enter")
        self.message()
        self.answer("tuppiSaved", 1, True, "Saved", "New.")
        self.edit(1, 0)
        self.browser.keys("Backspace")
        self.message()
        self.answer("tuppiJoined", 1, True, "Joined", line(0, 10, ANNA, TEXTS[0] + " New."))
        self.browser.wait("document.querySelectorAll('.line').length === 3")
        self.browser.keys("Escape")
        self.undo()
        self.undo()
        self.assertEqual(self.message(), {"kind": "split", "index": 0, "pos": len(TEXTS[0])})
        self.answer("tuppiSplit", 0, True, "Split", line(0, 5, ANNA, TEXTS[0]), line(5, 10, ANNA, "New."))
        self.assertEqual(self.message(), {"kind": "edit", "index": 1, "text": TEXTS[1]})
        self.answer("tuppiSaved", 1, True, "Saved", TEXTS[1])
        self.await_undone("Edit")

    def test_in_the_editor_the_key_undoes_typing(self):
        self.split()
        self.edit(2)
        self.browser.type("x")
        self.browser.keys("Control+z")
        self.assertEqual(self.browser.get("document.activeElement.value"), TEXTS[1])
        self.browser.keys("Escape")
        self.no_more_messages()


class WithoutTheApplication(ViewerCase):
    def setUp(self):
        super().setUp()
        self.load(page.sample(), channel=False)

    def test_nothing_can_be_corrected(self):
        self.assertEqual(self.browser.get("document.querySelectorAll('.tools, button.speaker, textarea').length"), 0)
        self.assertTrue(self.browser.get("document.getElementById('undo').hidden"))
        self.browser.run("document.querySelector('.line > div').focus()")
        self.browser.keys("F2")
        self.browser.click(self.line(2) + " .text", times=2)
        self.browser.click(self.line(0) + " .speaker")
        self.browser.wait("document.querySelector('.line .spoken')")
        self.assertEqual(self.browser.get("document.querySelectorAll('textarea, dialog[open]').length"), 0)

    def test_it_reads_and_plays(self):
        self.assertEqual(self.texts(), [text for _, text in page.INTERVIEW])
        self.browser.click(self.line(3) + " .text")
        self.browser.wait("!document.getElementById('audio').paused && document.getElementById('audio').currentTime >= 15")


if __name__ == "__main__":
    unittest.main()
