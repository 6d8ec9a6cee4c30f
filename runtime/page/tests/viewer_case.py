"""What the browser tests share: one browser, and the application's side of the page's contract."""

import json
import pathlib
import shutil
import tempfile
import unittest

import browser
import page

# What the application puts into a page before the page's own scripts run.
CHANNEL = """
window.posted = [];
window.webkit = {messageHandlers: {tuppi: {postMessage(body) { window.posted.push(JSON.stringify(body)); }}}};
"""


class ViewerCase(unittest.TestCase):
    browser = None  # one for all tests of a program, which ends with it

    @classmethod
    def setUpClass(cls):
        if ViewerCase.browser is None:
            ViewerCase.browser = browser.Browser()
            unittest.addModuleCleanup(ViewerCase.end_browser)

    @staticmethod
    def end_browser():
        ViewerCase.browser.close()
        ViewerCase.browser = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="page-test-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.answered = 0

    def load(self, data=None, channel=True, before="", html=None):
        """Opens the page; the data's audio is a silence of its duration."""
        data = page.sample() if data is None else data
        script = self.browser.before_scripts((CHANNEL if channel else "") + before)
        self.browser.open(page.write(self.folder, data, html))
        self.browser.forget(script)
        if isinstance(data.get("audio"), str):
            self.browser.wait("document.getElementById('audio').readyState > 0")

    def load_lines(self, *lines, **changes):
        """Lines as (speaker, text), without a recording."""
        self.load(page.sample(segments=page.segments(lines), speakers=[], audio=None, **changes))

    # ---- The application's side ----

    def message(self):
        """The next message, as the application gets it."""
        self.answered += 1
        self.browser.wait("posted.length >= arguments[0]", self.answered)
        return json.loads(self.browser.get("posted[arguments[0]]", self.answered - 1))

    def answer(self, callback, *values):
        self.browser.run(f"window.{callback}.apply(null, {json.dumps(values, ensure_ascii=False, separators=(',', ':'))})")

    def no_more_messages(self):
        self.assertEqual(self.browser.get("posted.length"), self.answered)

    # ---- What the page shows ----

    def texts(self):
        return self.browser.get("[...document.querySelectorAll('.line .text')].map(e => e.textContent)")

    def names(self):
        """The speaker of every line, as the headings tell it."""
        return self.browser.get("""[...document.querySelectorAll('.line')].reduce((names, row) => {
            const speaker = row.querySelector('.speaker');
            return [...names, speaker ? speaker.textContent : names[names.length - 1] || null];
        }, [])""")

    def line(self, number):
        return f".line:nth-child({number + 1})"

    def pending(self):
        return self.browser.get("""[...document.querySelectorAll('.line')]
            .flatMap((row, at) => row.firstElementChild.getAttribute('aria-busy') ? [at] : [])""")

    def await_notice(self, text, failed=False):
        self.browser.wait("""!document.getElementById('notice').hidden
            && document.getElementById('notice-text').textContent === arguments[0]
            && document.getElementById('notice').classList.contains('failed') === arguments[1]
            && document.getElementById(arguments[1] ? 'warned' : 'said').textContent === arguments[0]""", text, failed)

    def await_settled(self):
        self.browser.wait("document.querySelectorAll('[aria-busy]').length === 0")

    # ---- What a person does ----

    def edit(self, number, caret=None):
        """Opens a line's editor with the keyboard, the caret at this UTF-16 offset or at the end."""
        self.browser.run("document.querySelector(arguments[0] + ' > div').focus()", self.line(number))
        self.browser.keys("F2")
        self.browser.wait("document.activeElement.tagName === 'TEXTAREA'")
        if caret is not None:
            self.browser.run("document.activeElement.setSelectionRange(arguments[0], arguments[0])", caret)

    def rewrite(self, number, text):
        self.edit(number)
        self.browser.keys("Control+a")
        self.browser.type(text)

    def open_menu(self, number, everywhere):
        if everywhere:
            self.browser.click(self.line(number) + " .speaker")
        else:
            self.browser.hover(self.line(number) + " .text")
            self.browser.click("#set-speaker")
        self.browser.wait("document.getElementById('speaker-menu').open")

    def choose(self, name):
        """Clicks a name of the open menu."""
        self.browser.run("""[...document.querySelectorAll('#names button')]
            .find(button => button.firstElementChild.textContent === arguments[0]).setAttribute('data-wanted', '')""", name)
        self.browser.click("[data-wanted]")

    def write_name(self, name):
        self.browser.click("#name")
        self.browser.type(name)
        self.browser.keys("Enter")
