"""Reading, playing, searching, by pointer, by keyboard and by screen reader; and what the page must never do."""

import json
import socket
import threading
import time
import unittest

import page
from viewer_case import ViewerCase

PLAYER = "document.getElementById('audio')"
SPOKEN = "[...document.querySelectorAll('.line')].findIndex(row => row.querySelector('.spoken'))"


class Tabs(ViewerCase):
    def selected(self):
        return self.browser.get("""['summary', 'transcript'].map(name => [
            document.getElementById('tab-' + name).getAttribute('aria-selected') === 'true',
            !document.getElementById('panel-' + name).hidden, document.getElementById('tab-' + name).tabIndex === 0])""")

    SUMMARY = [[True] * 3, [False] * 3]
    TRANSCRIPT = [[False] * 3, [True] * 3]

    def test_the_transcript_comes_first(self):
        self.load()
        self.assertEqual(self.selected(), self.TRANSCRIPT)

    def test_the_application_can_ask_for_the_summary(self):
        self.load(before="window.TUPPI_TAB='summary';")
        self.assertEqual(self.selected(), self.SUMMARY)

    def test_the_application_can_switch(self):
        self.load()
        self.browser.run("window.showTab&&showTab('summary')")
        self.assertEqual(self.selected(), self.SUMMARY)
        self.browser.run("window.showTab&&showTab('nonsense')")
        self.assertEqual(self.selected(), self.SUMMARY)
        self.browser.run("window.showTab&&showTab('transcript')")
        self.assertEqual(self.selected(), self.TRANSCRIPT)

    def test_arrows_switch(self):
        self.load()
        self.browser.run("document.getElementById('tab-transcript').focus()")
        for key, expected in (("Left", self.SUMMARY), ("Left", self.TRANSCRIPT), ("Home", self.SUMMARY),
                              ("Right", self.TRANSCRIPT), ("Home", self.SUMMARY), ("End", self.TRANSCRIPT)):
            self.browser.keys(key)
            self.assertEqual(self.selected(), expected, key)
            self.assertEqual(self.browser.get("document.activeElement.getAttribute('aria-selected')"), "true")

    def test_arrows_switch_mirrored(self):
        self.load(before="window.TUPPI_RTL=true;")
        self.browser.run("document.getElementById('tab-transcript').focus()")
        self.browser.keys("Right")
        self.assertEqual(self.selected(), self.SUMMARY)

    def test_each_tab_keeps_its_place(self):
        self.load()
        self.browser.run("window.scrollTo(0, 300)")
        self.browser.run("showTab('summary')")
        self.assertLess(self.browser.get("window.scrollY"), 300)
        self.browser.run("showTab('transcript')")
        self.assertEqual(self.browser.get("window.scrollY"), 300)


class Head(ViewerCase):
    def test_title_and_language(self):
        self.load(page.sample(title="<b>Ärger</b> & \"co\"", language="de"))
        self.assertEqual(self.browser.get("[document.title, document.querySelector('h1').textContent]"),
                         ["<b>Ärger</b> & \"co\""] * 2)
        self.assertEqual(self.browser.get("[document.documentElement.lang, document.documentElement.dir]"), ["de", "ltr"])
        for unknown in ("auto", "", None):
            self.load(page.sample(language=unknown))
            self.assertEqual(self.browser.get("document.documentElement.lang"), "")
        self.assertIn("2025", self.browser.get("document.getElementById('about').textContent"))

    def test_summary(self):
        self.load(page.sample(summary={"note": None, "tasks": ["Call *Anna* <now>", "Rest"], "paragraphs": [
            "## Talk\nOne **bold**,\nstill one.\n\nTwo `code`.", "- a\n- b\n\n1. c\n2. d\n\n2 * 3 * 4 <i>no</i>"]}))
        self.assertEqual(self.browser.get("""[...document.getElementById('prose').children]
            .map(e => e.tagName + ':' + [...e.childNodes].map(n => n.nodeName + '=' + n.textContent).join('|'))"""), [
                "H3:#text=Talk", "P:#text=One |STRONG=bold|#text=,|#text= |#text=still one.",
                "P:#text=Two |CODE=code|#text=.", "UL:LI=a|LI=b", "OL:LI=c|LI=d", "P:#text=2 * 3 * 4 <i>no</i>"])
        self.assertEqual(self.browser.get("[...document.querySelectorAll('#tasks li')].map(e => e.textContent)"),
                         ["Call Anna <now>", "Rest"])
        self.assertTrue(self.browser.get("document.getElementById('note').hidden"))

    def test_the_note_is_looked_up_before_it_is_filled(self):
        tables = {"By “%@”.": "Від «%@».", "Gone: %@ to %@.": "Нема від %1$@ до %2$@."}
        note = [{"text": "By “%@”.", "values": ["small %@"]}, {"text": "Gone: %@ to %@.", "values": ["0:01", "0:02"]},
                {"text": "Unknown: %@.", "values": ["x"]}, "odd", None]
        self.load(page.sample(summary={"note": note, "tasks": [], "paragraphs": ["They met."]}),
                  before="window.TUPPI_TAB='summary'; window.TUPPI_I18N=" + json.dumps(tables) + ";")
        self.assertEqual(self.browser.get("document.getElementById('note').textContent"),
                         "Від «small %@». Нема від 0:01 до 0:02. Unknown: x.")

    def test_no_summary(self):
        self.load(page.sample(summary=None), before="window.TUPPI_TAB='summary';")
        self.assertEqual(self.browser.get("document.getElementById('note').textContent"),
                         "No summary was made for this transcript.")
        self.assertFalse(self.browser.get("document.getElementById('no-tasks').hidden"))

    def test_nothing_at_all(self):
        for data in ({}, {"segments": []}, {"segments": [None, 3, {}], "speakers": None, "title": 7, "audio": 9}):
            self.load(data)
            self.assertEqual(self.browser.get("document.querySelectorAll('.line').length"),
                             len([s for s in data.get("segments", []) if isinstance(s, dict)]))
            self.assertEqual(self.browser.get("document.title"), "Transcript")

    def test_the_bare_template_opens_as_an_empty_transcript(self):
        self.load({}, html=page.template())
        self.assertFalse(self.browser.get("document.getElementById('nothing').hidden"))


class Player(ViewerCase):
    def setUp(self):
        super().setUp()
        self.load()

    def at(self):
        return self.browser.get(PLAYER + ".currentTime")

    def playing(self):
        return self.browser.get(f"!{PLAYER}.paused")

    def pause_at(self, seconds):
        self.browser.run(PLAYER + ".pause(); " + PLAYER + ".currentTime = arguments[0];", seconds)
        self.browser.wait(PLAYER + ".currentTime === arguments[0] && !" + PLAYER + ".seeking", seconds)

    def test_a_click_on_a_line_plays_from_there(self):
        self.browser.click(self.line(3) + " .text")
        self.browser.wait(f"{SPOKEN} === 3 && !{PLAYER}.paused")
        self.assertGreaterEqual(self.at(), 15)
        self.assertEqual(self.browser.get("document.querySelectorAll('[aria-current]').length"), 1)

    def test_the_page_stands_still_under_a_click(self):
        self.browser.run("document.querySelectorAll('.line')[4].scrollIntoView({block: 'end'})")
        before = self.browser.get("window.scrollY")
        self.browser.click(self.line(4) + " .text")
        self.browser.wait(f"{SPOKEN} === 4")
        self.browser.run("window.frames = 0; const count = () => ++frames < 8 && requestAnimationFrame(count); count();")
        self.browser.wait("frames === 8")
        self.assertEqual(self.browser.get("window.scrollY"), before)

    def test_a_click_on_a_time_plays_from_there(self):
        self.browser.click(self.line(2) + " .time")
        self.browser.wait(f"{SPOKEN} === 2 && !{PLAYER}.paused")

    def test_enter_on_a_line_plays_from_there(self):
        self.browser.run("document.querySelector('.line > div').focus()")
        self.browser.keys("Down", "Down", "Enter")
        self.browser.wait(f"{SPOKEN} === 2 && !{PLAYER}.paused")

    def test_a_click_on_a_word_plays_from_that_word(self):
        words = [{"word": "w", "start": start, "end": start} for start in (20, 21.5, 23)]
        lines = page.sample()["segments"]
        lines[4] = {"start": 20, "end": 25, "speaker": None, "text": "alpha beta gamma", "words": words}
        self.load(page.sample(segments=lines))
        place = self.browser.get("""(() => { const text = document.querySelectorAll('.line .text')[4].firstChild;
            const range = document.createRange(); range.setStart(text, 7); range.setEnd(text, 8);
            const {left, top} = range.getBoundingClientRect(); return [left + 1, top + 5]; })()""")
        self.browser.click_at(*place)
        self.browser.wait(f"!{PLAYER}.paused && {PLAYER}.currentTime >= 21.5")
        self.assertLess(self.at(), 23)

    def test_selecting_text_plays_nothing(self):
        self.browser.run("getSelection().selectAllChildren(document.querySelector('.line .text'))")
        self.browser.run("document.querySelectorAll('.line .text')[2].click()")
        self.assertFalse(self.playing())

    def test_a_double_click_edits_and_leaves_the_player_alone(self):
        self.pause_at(2)
        self.browser.click(self.line(4) + " .text", times=2)
        self.browser.wait("document.activeElement.tagName === 'TEXTAREA'")
        self.assertEqual(self.browser.get("document.activeElement.value"), page.INTERVIEW[4][1])
        self.browser.wait(f"{PLAYER}.paused && {PLAYER}.currentTime === 2")
        self.assertGreater(self.browser.get("document.activeElement.selectionStart"), 0)

    def test_space_plays_and_pauses(self):
        label = "document.getElementById('play').getAttribute('aria-label')"
        self.browser.keys("Space")
        self.browser.wait(f"!{PLAYER}.paused && {label} === 'Pause'")
        self.browser.keys("Space")
        self.browser.wait(f"{PLAYER}.paused && {label} === 'Play'")

    def test_space_after_a_click_on_a_button_plays(self):
        self.pause_at(30)
        self.browser.click("#back-5")
        self.browser.wait(f"{PLAYER}.currentTime === 25")
        self.browser.keys("Space")
        self.browser.wait(f"!{PLAYER}.paused")
        self.assertGreaterEqual(self.at(), 25)

    def test_space_writes_while_editing_and_searching(self):
        self.edit(0)
        self.browser.keys("Space", "Left")
        self.assertEqual(self.browser.get("document.activeElement.value"), page.INTERVIEW[0][1] + " ")
        self.browser.keys("Escape")
        self.browser.click("#query")
        self.browser.keys("Space")
        self.assertEqual(self.browser.get("document.activeElement.value"), " ")
        self.assertFalse(self.playing())
        self.assertEqual(self.at(), 0)

    def test_ctrl_space_plays_while_editing(self):
        self.edit(0)
        self.browser.keys("Control+Space")
        self.browser.wait(f"!{PLAYER}.paused")
        self.assertEqual(self.browser.get("document.activeElement.value"), page.INTERVIEW[0][1])

    def test_keys_seek(self):
        self.pause_at(30)
        for chord, expected in (("Right", 35), ("Left", 30), ("Shift+Right", 45), ("Shift+Left", 30)):
            self.browser.keys(chord)
            self.assertEqual(self.at(), expected, chord)

    def test_keys_seek_the_same_way_right_to_left(self):
        self.load(before="window.TUPPI_RTL=true;")
        self.pause_at(30)
        self.browser.keys("Right")
        self.assertEqual(self.at(), 35)

    def test_the_slider_is_one(self):
        self.pause_at(30)
        self.browser.run("document.getElementById('seek').focus()")
        for key, expected in (("Right", 35), ("Down", 30), ("Up", 35), ("PageDown", 20), ("Home", 0), ("End", 85)):
            self.browser.keys(key)
            self.assertEqual(self.at(), expected, key)
        self.browser.keys("Home", "Right")
        self.assertEqual(self.browser.get("document.getElementById('seek').getAttribute('aria-valuetext')"), "0:05 of 1:25")
        self.assertEqual(self.browser.get("document.getElementById('seek').value"), "5")

    def test_a_click_on_the_slider_seeks(self):
        self.browser.click("#seek")
        self.browser.wait(f"Math.abs({PLAYER}.currentTime - 42.5) < 3")

    def test_buttons_seek(self):
        self.pause_at(30)
        for button, expected in (("forward-5", 35), ("forward-15", 50), ("back-15", 35), ("back-5", 30)):
            self.browser.click("#" + button)
            self.assertEqual(self.at(), expected, button)

    def test_seeking_stays_inside(self):
        self.pause_at(3)
        self.browser.keys("Left")
        self.assertEqual(self.at(), 0)
        self.pause_at(80)
        self.browser.keys("Shift+Right")
        self.assertEqual(self.at(), 85)

    def test_speeds(self):
        speeds = self.browser.get("[...document.getElementById('speed').options].map(option => Number(option.value))")
        self.assertEqual(speeds, [0.75, 1, 1.25, 1.5, 1.75, 2])
        self.browser.run("document.getElementById('speed').focus()")
        self.browser.keys("End")
        self.assertEqual(self.browser.get(PLAYER + ".playbackRate"), 2)

    def test_a_recording_that_cannot_be_played(self):
        self.folder.joinpath("audio.wav").write_bytes(b"no sound at all")
        self.browser.log()
        self.browser.open(self.folder / "viewer.html")
        self.browser.wait("!document.getElementById('silent').hidden")
        self.assertEqual(self.browser.get("document.querySelectorAll('#controls :enabled').length"), 0)
        self.browser.click(self.line(3) + " .text")
        self.browser.keys("Space", "Right")
        self.assertEqual(self.texts(), [text for _, text in page.INTERVIEW])
        self.assertEqual(self.browser.log(), [])

    def test_a_file_name_with_every_kind_of_character(self):
        self.load(page.sample(audio="a %20#?&\"é \U0001f600.wav"))
        self.assertEqual(self.browser.get(PLAYER + ".duration"), 85)


class Following(ViewerCase):
    LINES = 200

    def setUp(self):
        super().setUp()
        lines = [(None, f"Line {number} " + "and more of it " * (number % 7)) for number in range(self.LINES)]
        self.load(page.sample(segments=page.segments(lines, 1.0), duration=float(self.LINES)))

    def say(self, number):
        self.browser.run(PLAYER + ".currentTime = arguments[0];", number + 0.5)
        self.browser.wait(SPOKEN + " === arguments[0]", number)

    IN_SIGHT = """(() => { const place = document.querySelector('.spoken').getBoundingClientRect();
        return place.top >= document.querySelector('.bar').getBoundingClientRect().bottom
            && place.bottom <= document.getElementById('player').getBoundingClientRect().top; })()"""
    LEFT = "!document.getElementById('follow').hidden"

    def test_the_line_being_spoken_stays_in_sight(self):
        for number in (10, 150, 151, self.LINES - 1, 0):
            self.say(number)
            self.browser.wait(self.IN_SIGHT)
        self.assertFalse(self.browser.get(self.LEFT))

    def test_scrolling_leaves_and_the_button_comes_back(self):
        self.say(100)
        self.browser.wait(self.IN_SIGHT)
        self.browser.scroll(-3000)
        self.browser.wait(f"{self.LEFT} && !{self.IN_SIGHT}")
        self.say(101)
        self.assertFalse(self.browser.get(self.IN_SIGHT))
        self.browser.click("#follow")
        self.browser.wait(f"!({self.LEFT}) && {self.IN_SIGHT}")

    def test_scrolling_keys_leave(self):
        self.say(100)
        self.browser.wait(self.IN_SIGHT)
        self.browser.keys("PageDown")
        self.browser.wait(self.LEFT)

    def test_the_page_stands_still_under_an_editor(self):
        self.edit(2)
        self.say(150)
        self.assertFalse(self.browser.get(self.IN_SIGHT))

    def test_nothing_glides_with_reduced_motion(self):
        self.browser.cdp("Emulation.setEmulatedMedia", features=[{"name": "prefers-reduced-motion", "value": "reduce"}])
        self.addCleanup(self.browser.cdp, "Emulation.setEmulatedMedia", features=[])
        self.browser.run("window.stops = new Set(); addEventListener('scroll', () => stops.add(Math.round(scrollY)))")
        self.say(8)
        self.browser.wait(self.IN_SIGHT)
        self.say(16)
        self.browser.wait(self.IN_SIGHT)
        self.assertLessEqual(self.browser.get("stops.size"), 4)


class Search(ViewerCase):
    LINES = (("Anna", "The (cat) sat. The end"), ("Anna", "on the mat"), ("Boris", "ÄTHER \U0001f600 the"), ("Boris", "x"))

    def setUp(self):
        super().setUp()
        self.load_lines(*self.LINES)

    def seek(self, text, count):
        self.browser.keys("Control+f", "Control+a", "Backspace")
        self.browser.type(text)
        self.browser.wait("document.getElementById('count').textContent === arguments[0]", count)

    def marks(self):
        return self.browser.get("""[...document.querySelectorAll('.line mark')].map(mark =>
            mark.textContent + (mark.classList.contains('at') ? '!' : ''))""")

    def count(self):
        return self.browser.get("document.getElementById('count').textContent")

    def test_it_marks_and_counts(self):
        self.seek("the", "1 of 5")
        self.assertEqual(self.marks(), ["The!", "The", "the", "THE", "the"])
        self.assertEqual(self.texts(), [text for _, text in self.LINES])

    def test_next_and_previous(self):
        self.seek("the", "1 of 5")
        for chord, expected in (("Enter", 2), ("Enter", 3), ("Shift+Enter", 2), ("Shift+Enter", 1), ("Shift+Enter", 5),
                                ("Enter", 1), ("F3", 2), ("Shift+F3", 1)):
            self.browser.keys(chord)
            self.assertEqual(self.count(), f"{expected} of 5", chord)
            self.assertEqual([mark[-1] == "!" for mark in self.marks()], [n + 1 == expected for n in range(5)])
        self.browser.click("#hit-after")
        self.assertEqual(self.count(), "2 of 5")
        self.browser.click("#hit-before")
        self.assertEqual(self.count(), "1 of 5")

    def test_what_is_not_there(self):
        self.seek("dog", "No matches")
        self.assertEqual(self.marks(), [])
        self.assertTrue(self.browser.get("document.getElementById('hit-after').disabled"))

    def test_special_characters_are_text(self):
        self.seek("(cat) sat.", "1 of 1")
        self.assertEqual(self.marks(), ["(cat) sat.!"])
        self.seek("\U0001f600", "1 of 1")
        self.seek("äther", "1 of 1")

    def test_escape_clears_and_then_leaves(self):
        self.seek("the", "1 of 5")
        self.browser.keys("Escape")
        self.browser.wait("document.getElementById('count').textContent === ''")
        self.assertEqual(self.marks(), [])
        self.assertEqual(self.browser.get("document.activeElement.id"), "query")
        self.browser.keys("Escape")
        self.assertEqual(self.browser.get("document.activeElement.getAttribute('role')"), "group")

    def test_the_key_opens_it_from_the_summary(self):
        self.browser.run("showTab('summary')")
        self.browser.keys("Control+f")
        self.assertEqual(self.browser.get("document.activeElement.id"), "query")
        self.assertFalse(self.browser.get("document.getElementById('panel-transcript').hidden"))

    def test_marks_do_not_disturb_the_editor(self):
        self.seek("the", "1 of 5")
        self.edit(0)
        self.assertEqual(self.browser.get("document.activeElement.value"), self.LINES[0][1])
        self.browser.keys("Control+a")
        self.browser.type("then the")
        self.browser.keys("Control+Enter")
        self.assertEqual(self.message(), {"kind": "edit", "index": 0, "text": "then the"})
        self.assertEqual(self.marks(), ["the!", "the", "the", "THE", "the"])
        self.answer("tuppiSaved", 0, False, "Not saved", "then the")
        self.await_settled()
        self.assertEqual(self.marks(), ["The!", "The", "the", "THE", "the"])

    def test_a_double_click_on_a_marked_line_finds_the_place(self):
        self.seek("the", "1 of 5")
        place = self.browser.get("""(() => { const {left, top} = document.querySelectorAll('.line mark')[1].getBoundingClientRect();
            return [left + 1, top + 8]; })()""")
        self.browser.click_at(*place, times=2)
        self.browser.wait("document.activeElement.tagName === 'TEXTAREA'")
        self.assertEqual(self.browser.get("document.activeElement.selectionStart"), self.LINES[0][1].index("The end"))


class Keyboard(ViewerCase):
    def test_few_stops_however_many_lines(self):
        self.load(page.sample(segments=page.segments([("Anna", f"Line {n}") for n in range(300)]), audio=None))
        stops = []
        while len(stops) < 60:
            self.browser.keys("Tab")
            stop = self.browser.get("""document.activeElement === document.body ? '' : document.activeElement.id
                || document.activeElement.className || document.activeElement.getAttribute('role')""")
            if not stop:
                break
            stops.append(stop)
        self.assertEqual(stops, ["tab-transcript", "query", "headed", "time", "speaker voice-2", "set-speaker", "edit-line"])

    def test_the_tools_stay_with_the_keyboard_when_lines_pass_below_a_pointer_that_rests(self):
        self.load()
        place = "lineOf(document.getElementById('edit-line')) === state.lines[arguments[0]]"
        self.browser.hover(".line:nth-child(4) .text")
        self.assertTrue(self.browser.get(place, 3))
        self.browser.run("document.querySelector('.line > div').focus()")
        self.browser.keys("Down")
        self.browser.run("""const [screenX, screenY] = state.pointer.split(' ').map(Number);
            state.lines[4].parts.text.dispatchEvent(new PointerEvent('pointerover', {bubbles: true, screenX, screenY}))""")
        self.assertTrue(self.browser.get(place, 1))
        self.browser.hover(".line:nth-child(3) .text")
        self.assertTrue(self.browser.get(place, 2), "who points gets them")

    def test_arrows_walk_the_lines(self):
        self.load()
        self.browser.run("document.querySelector('.line > div').focus()")
        index = "[...document.querySelectorAll('.line')].indexOf(document.activeElement.closest('.line'))"
        for key, expected in (("Down", 1), ("Down", 2), ("Up", 1), ("End", 16), ("Down", 16), ("Home", 0), ("Up", 0)):
            self.browser.keys(key)
            self.assertEqual(self.browser.get(index), expected, key)
        self.browser.keys("Down", "Tab", "Down")
        self.assertEqual(self.browser.get(index), 2)
        self.assertEqual(self.browser.get("document.querySelectorAll('.line [tabindex=\"0\"].time').length"), 1)

    def test_the_focus_can_be_seen(self):
        self.load()
        self.browser.keys("Tab")
        for _ in range(14):
            style = self.browser.get("""(() => { const focused = document.activeElement;
                const shown = focused.id === 'query' ? focused.parentNode : focused;
                const {outlineStyle, boxShadow} = getComputedStyle(shown);
                return focused === document.body ? 'body' : focused.id === 'query' ? boxShadow : outlineStyle; })()""")
            self.assertNotIn(style, ("none", ""), self.browser.get("document.activeElement.outerHTML"))
            self.browser.keys("Tab")

    def test_the_menu_by_keyboard(self):
        self.load()
        self.browser.run("document.querySelector('.speaker').focus()")
        self.browser.keys("Enter")
        self.browser.wait("document.getElementById('speaker-menu').open")
        self.assertEqual(self.browser.get("document.activeElement.id"), "name")
        self.browser.keys("Escape")
        self.browser.wait("!document.getElementById('speaker-menu').open")
        self.assertIn("speaker", self.browser.get("document.activeElement.className"))
        self.browser.keys("Enter", "Up")
        self.assertEqual(self.browser.get("document.activeElement.textContent"), "Guest")
        self.browser.keys("Enter")
        self.assertEqual(self.message(), {"kind": "rename", "old": "Interviewer", "name": "Guest"})

    def test_a_click_beside_the_menu_closes_it(self):
        self.load()
        self.open_menu(0, everywhere=True)
        self.browser.click_at(700, 450)
        self.browser.wait("!document.getElementById('speaker-menu').open")
        self.assertTrue(self.browser.get(PLAYER + ".paused"))


class ScreenReader(ViewerCase):
    CONTROLS = {"button", "slider", "searchbox", "textbox", "tab", "tabpanel", "combobox", "radio", "dialog", "tablist",
                "group", "search"}

    def tree(self):
        nodes = self.browser.cdp("Accessibility.getFullAXTree")["nodes"]
        return [(node["role"]["value"].lower(), node.get("name", {}).get("value", "")) for node in nodes
                if not node.get("ignored")]

    def assert_all_named(self):
        nameless = [role for role, name in self.tree() if role in self.CONTROLS and not name.strip()]
        self.assertEqual([role for role in nameless if role != "group"], [])

    def test_everything_has_a_name(self):
        self.load()
        self.assert_all_named()
        self.edit(1)
        self.assertIn(("textbox", "Text of the line"), self.tree())
        self.assert_all_named()
        self.browser.keys("Escape")
        self.open_menu(0, everywhere=True)
        self.assertIn(("dialog", "Speaker: Interviewer"), self.tree())
        self.assert_all_named()

    def test_the_current_line_says_what_it_is(self):
        self.load()
        self.browser.run("document.querySelector('.line > div').focus()")
        self.browser.keys("Down")
        self.assertIn(("group", "Guest, 0:05, Good morning. I am happy to be here."), self.tree())

    def test_lines_out_of_sight_are_there(self):
        self.load(page.sample(segments=page.segments([("Anna", f"Line {n}") for n in range(500)]), audio=None))
        self.browser.wait("document.querySelectorAll('.later').length === 0")
        texts = [name for role, name in self.tree() if role == "statictext"]
        self.assertIn("Line 499", texts)

    def test_contrast(self):
        self.load()
        self.browser.run("""document.querySelector('.line > div').classList.add('pending', 'spoken');
            document.getElementById('notice').hidden = false; document.getElementById('notice-again').hidden = false;
            document.getElementById('follow').hidden = false; document.getElementById('silent').hidden = false;
            document.getElementById('notice-text').textContent = 'x';""")
        for state in ("", "document.getElementById('notice').classList.add('failed'); showTab('summary')"):
            self.browser.run(state)
            self.assertEqual(self.browser.get(CONTRAST), [])


# Texts with less than 4.5:1 against what stands behind them.
CONTRAST = """(() => {
  const parts = colour => colour.match(/[\\d.]+/g).map(Number);
  const light = colour => parts(colour).slice(0, 3).map(v => v / 255)
      .map(v => v <= 0.03928 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4)
      .reduce((sum, v, at) => sum + v * [0.2126, 0.7152, 0.0722][at], 0);
  const behind = element => { for (let e = element; e; e = e.parentElement) {
    const colour = getComputedStyle(e).backgroundColor;
    if ((parts(colour)[3] ?? 1) === 1) return colour; } return 'rgb(243, 248, 255)'; };
  const weak = [];
  for (const element of document.querySelectorAll('body *')) {
    const own = [...element.childNodes].some(node => node.nodeType === 3 && node.textContent.trim());
    if (!own || !element.getClientRects().length || element.closest(':disabled, script, template')) continue;
    const [a, b] = [light(getComputedStyle(element).color), light(behind(element))];
    const ratio = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
    if (ratio < 4.5) weak.push(element.outerHTML.slice(0, 80) + ' ' + ratio.toFixed(2));
  }
  return weak;
})()"""


class Languages(ViewerCase):
    def test_texts_come_from_the_table(self):
        table = {"Summary": "Зведення", "Play": "Грати", "%@ of %@": "%2$@/%1$@", "Search": 5, "toString": "x"}
        self.load(before="window.TUPPI_I18N=" + json.dumps(table) + ";")
        self.assertEqual(self.browser.get("document.getElementById('tab-summary').textContent"), "Зведення")
        self.assertEqual(self.browser.get("document.getElementById('tab-transcript').textContent"), "Transcript")
        self.assertEqual(self.browser.get("document.getElementById('play').getAttribute('aria-label')"), "Грати")
        self.assertEqual(self.browser.get("document.getElementById('query').placeholder"), "Search")
        self.assertEqual(self.browser.get("document.getElementById('seek').getAttribute('aria-valuetext')"), "1:25/0:00")

    def test_answers_are_shown_as_they_come(self):
        self.load(before="window.TUPPI_I18N=" + json.dumps({"Saved": "no"}) + ";")
        self.answer("tuppiSaved", 0, True, "Saved", "x")
        self.await_notice("Saved")

    def test_direction(self):
        arabic = page.sample(language="ar", segments=page.segments([(None, "صباح الخير"), (None, "Good morning")]))
        spoken = page.sample(segments=page.segments([(None, "صباح الخير"), (None, "شكرًا"), (None, "OK")]))
        for rtl, data, direction, lines in (("true", page.sample(), "rtl", "ltr"), ("false", arabic, "ltr", "rtl"),
                                            (None, arabic, "rtl", "rtl"), (None, page.sample(), "ltr", "ltr"),
                                            ("true", {**arabic, "language": "auto"}, "rtl", "ltr"),
                                            (None, {**spoken, "language": "auto"}, "rtl", "rtl"),
                                            ("true", {**spoken, "language": "en"}, "rtl", "rtl")):
            self.load(data, before=f"window.TUPPI_RTL={rtl};" if rtl else "")
            self.assertEqual(self.browser.get("[document.documentElement.dir, document.getElementById('lines').dir]"),
                             [direction, lines])

    def test_lines_in_another_script_keep_the_edge(self):
        for language, edge, texts in (("ar", "right", ("صباح الخير", "Good morning")), ("en", "left", ("Good", "صباح"))):
            self.load(page.sample(language=language, segments=page.segments([(None, text) for text in texts])))
            edges = self.browser.get("""[...document.querySelectorAll('.line .text')].map(text => {
                const range = document.createRange(); range.selectNodeContents(text);
                return Math.round(range.getBoundingClientRect()[arguments[0]]); })""".replace("arguments[0]", repr(edge)))
            self.assertAlmostEqual(*edges, delta=3)

    def test_nothing_sticks_out(self):
        for width in (560, 900):
            self.browser.size(width, 720)
            self.addCleanup(self.browser.cdp, "Emulation.clearDeviceMetricsOverride")
            for rtl in ("true", "false"):
                self.load(page.sample(title="W" * 200), before=f"window.TUPPI_RTL={rtl};")
                for tab in ("summary", "transcript"):
                    self.browser.run("showTab(arguments[0])", tab)
                    self.assertLessEqual(*self.browser.get(
                        "[document.documentElement.scrollWidth, document.documentElement.clientWidth]"))

    def test_the_menu_stays_inside(self):
        self.browser.size(560, 400)
        self.addCleanup(self.browser.cdp, "Emulation.clearDeviceMetricsOverride")
        for rtl in ("true", "false"):
            self.load(before=f"window.TUPPI_RTL={rtl};")
            for everywhere in (True, False):
                self.open_menu(0, everywhere)
                left, right, top, bottom = self.browser.get("""(place => [place.left, place.right, place.top, place.bottom])
                    (document.getElementById('speaker-menu').getBoundingClientRect())""")
                self.assertTrue(left >= 0 and right <= 560 and top >= 0 and bottom <= 400, (left, right, top, bottom))
                self.browser.keys("Escape")


class Paper(ViewerCase):
    def test_both_tabs_are_printed_without_the_controls(self):
        self.load()
        self.browser.cdp("Emulation.setEmulatedMedia", media="print")
        self.addCleanup(self.browser.cdp, "Emulation.setEmulatedMedia", media="")
        shown = self.browser.get("""['.masthead', '#panel-summary', '#panel-transcript', '.line:last-child .text', '.bar',
            '.dock', '.tools'].map(selector => document.querySelector(selector).getClientRects().length > 0)""")
        self.assertEqual(shown, [True] * 4 + [False] * 3)


class ManyLines(ViewerCase):
    COUNT = 5000

    def setUp(self):
        super().setUp()
        lines = [(f"Speaker {n % 3}", f"Line {n}: " + "some words that were said " * (n % 5 + 1)) for n in range(self.COUNT)]
        started = time.monotonic()
        self.load(page.sample(segments=page.segments(lines, 0.02), duration=100.0))
        self.opened = time.monotonic() - started

    def test_they_open_and_are_all_there(self):
        marks = self.browser.get("""(() => { const [entry] = performance.getEntriesByType('navigation');
            return [document.querySelectorAll('*').length, Math.round(entry.domInteractive), Math.round(entry.loadEventEnd)]; })()""")
        print(f"\n{self.COUNT} lines: {marks[0]} elements, interactive after {marks[1]} ms, loaded after {marks[2]} ms, "
              f"{self.opened:.2f} s seen from outside")
        self.assertEqual(self.browser.get("document.querySelectorAll('.line').length"), self.COUNT)
        self.assertLess(marks[0], self.COUNT * 7)

    def test_everything_can_be_selected(self):
        self.browser.keys("Control+a")
        selected = self.browser.get("getSelection().toString()")
        self.assertIn("Line 0:", selected)
        self.assertIn(f"Line {self.COUNT - 1}:", selected)

    def test_search_reaches_the_last_line(self):
        self.browser.keys("Control+f")
        started = time.monotonic()
        self.browser.type("some")
        self.browser.wait("document.getElementById('count').textContent === '1 of 15000'")
        print(f"\n15000 matches marked, {time.monotonic() - started:.2f} s seen from outside")
        self.browser.keys("Shift+Enter")
        self.browser.wait("""(place => place.top > 0 && place.bottom < document.getElementById('player').getBoundingClientRect().top)
            (document.querySelector('mark.at').getBoundingClientRect())""")
        self.assertTrue(self.browser.get("document.querySelector('mark.at').closest('.line').matches(':last-child')"))

    def test_scrolling(self):
        frames = self.browser.call("execute/async", {"args": [], "script": """
            const done = arguments[0]; const gaps = []; let before = performance.now(); let at = 0;
            const step = now => { gaps.push(now - before); before = now; scrollTo(0, at += 700);
              if (gaps.length < 120) requestAnimationFrame(step); else done([Math.max(...gaps.slice(1)), scrollY]); };
            requestAnimationFrame(step);"""})
        print(f"\n120 frames of 700 px: longest {frames[0]:.0f} ms")
        self.assertGreater(frames[1], 60000)

    def test_a_rename_reaches_all(self):
        self.open_menu(0, everywhere=True)
        self.write_name("Anna")
        self.assertEqual(self.message(), {"kind": "rename", "old": "Speaker 0", "name": "Anna"})
        self.answer("tuppiRenamed", True, "Renamed in 1667 lines", "Speaker 0", "Anna")
        self.await_settled()
        self.assertEqual(self.names().count("Anna"), 1667)


ATTEMPTS = """
const out = 'http://127.0.0.1:%d/';
window.blocked = 0;
addEventListener('securitypolicyviolation', () => blocked++);
const add = (tag, set) => { const e = document.createElement(tag); Object.assign(e, set); document.head.append(e); return e; };
fetch(out + 'fetch').catch(() => {});
try { const x = new XMLHttpRequest(); x.open('GET', out + 'xhr'); x.send(); } catch (e) {}
new Image().src = out + 'image';
add('link', {rel: 'stylesheet', href: out + 'style'});
add('script', {src: out + 'script'});
add('iframe', {src: out + 'frame'});
add('style', {textContent: 'body { background: url(' + out + 'background) }'});
add('object', {data: out + 'object'});
add('audio', {src: out + 'audio'}).load();
try { new WebSocket(out.replace('http', 'ws') + 'socket'); } catch (e) {}
new EventSource(out + 'events');
navigator.sendBeacon(out + 'beacon', 'x');
add('iframe', {name: 'elsewhere'}); // in a window of its own it would hide this page
const form = add('form', {action: out + 'form', method: 'post', target: 'elsewhere'});
form.submit();
"""
ATTEMPT_COUNT = 12  # the object is stopped without a word


class Listener:
    """Counts who knocks."""

    def __init__(self):
        self.socket = socket.create_server(("127.0.0.1", 0))
        self.port = self.socket.getsockname()[1]
        self.knocks = []
        self.knocked = threading.Event()
        self.thread = threading.Thread(target=self._listen, daemon=True)
        self.thread.start()

    def _listen(self):
        while True:
            try:
                connection, _ = self.socket.accept()
            except OSError:
                return
            with connection:
                connection.settimeout(5)
                try:
                    self.knocks.append(connection.recv(200))
                except OSError:
                    self.knocks.append(b"")
                self.knocked.set()

    def close(self):
        self.socket.shutdown(socket.SHUT_RDWR)
        self.socket.close()
        self.thread.join()


class Safety(ViewerCase):
    def setUp(self):
        super().setUp()
        self.listener = Listener()
        self.addCleanup(self.listener.close)

    def hostile(self):
        out = f"http://127.0.0.1:{self.listener.port}/"
        texts = ["</script><script>window.hit=1</script>", f"<img src={out} onerror=window.hit=1>", "<!--<script>",
                 "\"><svg onload=window.hit=1>", "'; window.hit=1; //", "&lt;b&gt; &amp;amp;", "]]>\u2028\u2029\u0000\ufeff",
                 f"<style>@import '{out}';</style>", "{{7*7}} ${7*7} @TUPPI_TRANSCRIPT@ $& $1"]
        return texts, page.sample(title=texts[0], language="\"><b>", speakers=texts, recorded_at=texts[1],
                                  segments=page.segments([(text, text) for text in texts], 1.0), duration=9.0,
                                  summary={"note": [{"text": texts[0], "values": texts}], "paragraphs": texts[:5] + texts[6:], "tasks": texts})

    def test_hostile_data_is_shown_as_text(self):
        texts, data = self.hostile()
        self.load(data)
        self.assertEqual(self.texts(), texts)
        self.assertEqual(self.names(), texts)
        self.assertEqual(self.browser.get("[...document.querySelectorAll('#tasks li')].map(e => e.textContent)"), texts)
        self.assertIsNone(self.browser.get("window.hit"))
        self.assertEqual(self.browser.get("document.querySelectorAll('main :is(img, script, style, b, svg[onload])').length"), 0)
        self.open_menu(0, everywhere=True)
        self.assertEqual(self.browser.get("[...document.querySelectorAll('#names span')].map(e => e.textContent)"), texts)
        self.assertEqual(self.listener.knocks, [])

    def test_a_careless_engine_does_no_harm(self):
        _, data = self.hostile()
        before, after = page.template().split(page.PLACEHOLDER)
        self.load(data | {"audio": None}, html=before + json.dumps(data, ensure_ascii=False) + after)
        self.assertIsNone(self.browser.get("window.hit"))
        self.assertEqual(self.listener.knocks, [])

    def test_nothing_leaves(self):
        self.load()
        self.browser.run(ATTEMPTS % self.listener.port)
        self.browser.wait("blocked >= arguments[0]", ATTEMPT_COUNT)
        self.assertEqual(self.listener.knocks, [])

    def test_without_the_policy_it_would(self):
        html = page.fill(page.sample()).replace("Content-Security-Policy", "X-Nothing")
        self.load(html=html)
        self.browser.run(ATTEMPTS % self.listener.port)
        self.assertTrue(self.listener.knocked.wait(20))

    def test_a_good_page_has_nothing_to_complain_about(self):
        self.browser.log()
        self.load()
        self.browser.click(self.line(1) + " .text")
        self.browser.wait(SPOKEN + " === 1")
        self.edit(0)
        self.browser.keys("Escape")
        self.open_menu(0, everywhere=True)
        self.browser.keys("Escape")
        self.assertEqual(self.browser.log(), [])


if __name__ == "__main__":
    unittest.main()
