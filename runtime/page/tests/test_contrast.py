"""The page's colours against WCAG 2.1 AA: 4.5 for text, 3 for large text, for what a control is told by and for the sign
of the keyboard. The colours are read from the page's own style."""

import re
import unittest

import page

TEXT, MARK = 4.5, 3.0


def colour(value):
    if value == "#fff":
        return 255, 255, 255
    return tuple(int(part) for part in re.fullmatch(r"rgb\((\d+), (\d+), (\d+)\)", value).groups())


def luminance(rgb):
    parts = [part / 255 for part in rgb]
    red, green, blue = (part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in parts)
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue


def contrast(one, other):
    less, more = sorted((luminance(one), luminance(other)))
    return (more + 0.05) / (less + 0.05)


# Selector and property of the colour in front, its ground, what it needs.
PAIRS = (
    ("html", "color", "window", TEXT),
    (".masthead p", "color", "window", TEXT),
    (".pill", "color", "white", TEXT),
    (".pill", "color", "pale", TEXT),
    (".pill.main", "color", "blue", TEXT),
    (".round", "color", "white", MARK),
    (".round", "color", "pale", MARK),
    (".tabs button", "color", "white", TEXT),
    (".tabs button[aria-selected=\"true\"]", "color", "blue", TEXT),
    (".search", "color", "white", TEXT),
    (".search", "border", "white", MARK),
    (".search", "border", "window", MARK),
    (".search input", "color", "white", TEXT),
    (".search input::placeholder", "color", "white", TEXT),
    (".summary .note", "color", "white", TEXT),
    (".tasks li::before", "border", "white", MARK),
    (".summary .prose li::marker", "color", "white", TEXT),
    (".time", "color", "white", TEXT),
    (".time", "color", "pale", TEXT),
    (".time:hover, .spoken .time", "color", "pale", TEXT),
    (".pending .text, .pending .speaker", "color", "white", TEXT),
    (".state", "color", "pale", TEXT),
    (".nothing", "color", "white", TEXT),
    (".editor textarea", "border", "white", MARK),
    (".editor textarea:read-only", "color", "pale", TEXT),
    (".editor kbd", "color", "pale", TEXT),
    ("dialog label.off", "color", "white", TEXT),
    ("dialog .names .none", "color", "pale", TEXT),
    ("dialog form input", "border", "white", MARK),
    ("dialog form input::placeholder", "color", "white", TEXT),
    (".notice", "color", "good", TEXT),
    (".notice", "color", "attention", TEXT),
    (".timeline span", "color", "white", TEXT),
    (".transport .play", "color", "blue", MARK),
    (".timeline input::-webkit-slider-thumb", "background", "white", MARK),
    (".speed", "color", "white", TEXT),
    (".speed", "border", "white", MARK),
    (".silent", "color", "white", TEXT),
    (".silent .icon", "color", "white", MARK),
    ("mark.at", "color", "navy", TEXT),
    *((f".voice-{number}", "color", ground, TEXT) for number in range(7) for ground in ("white", "pale")),
    *((":focus-visible", "outline", ground, MARK) for ground in ("white", "pale", "window", "border")),
)

# Too near to their ground, and the ratio: none of them is needed to know the control, which has its text or its thumb.
KNOWN = (
    (".pill", "border", "white", 1.24),
    (".tabs", "border", "window", 1.16),
    (".card", "border", "window", 1.16),
)


class Contrast(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        style = re.sub(r"/\*.*?\*/", "", page.STYLE.search(page.template()).group(1), flags=re.S)
        cls.style = style[:style.index("@media")]
        cls.variables = dict(re.findall(r"--(\w+): (rgb\([^)]*\)|#fff);", style))

    def declared(self, selector, name):
        rule = re.search(rf"(?:^|\}}|\n)\s*{re.escape(selector)}\s*\{{([^}}]*)\}}", self.style)
        self.assertIsNotNone(rule, f"no rule for {selector}")
        value = re.search(rf"(?:^|[;\s]){name}:([^;]*)", rule.group(1))
        self.assertIsNotNone(value, f"{selector} has no {name}")
        variable = re.search(r"var\(--(\w+)\)", value.group(1))
        if variable:
            return colour(self.variables[variable.group(1)])
        return colour(re.search(r"rgb\([^)]*\)|#fff", value.group(1)).group(0))

    def ratio(self, selector, name, ground):
        return contrast(self.declared(selector, name), colour(self.variables[ground]))

    def test_texts_and_marks(self):
        for selector, name, ground, least in PAIRS:
            with self.subTest(selector=selector, property=name, ground=ground):
                self.assertGreaterEqual(self.ratio(selector, name, ground), least)

    def test_known_ones_are_no_worse(self):
        for selector, name, ground, known in KNOWN:
            with self.subTest(selector=selector):
                self.assertAlmostEqual(self.ratio(selector, name, ground), known, delta=0.005)

    def test_marked_text(self):
        self.assertGreaterEqual(contrast(colour(self.variables["navy"]), colour(self.variables["badge"])), TEXT)

    def test_every_colour_of_text_is_measured(self):
        measured = {selector for selector, name, _, _ in PAIRS if name == "color"}
        # Given over to those around them, disabled, or a state of one that is measured.
        aside = {"button, input, select, textarea", "mark", ".round:disabled", ".tabs button:hover", ".notice .pill",
                 ".notice .round", ".speed:disabled", ".transport .play:disabled", "dialog"}
        for selector, rule in re.findall(r"([^{}]+)\{([^{}]*)\}", self.style):
            if re.search(r"(?:^|[;\s])color:", rule):
                self.assertIn(selector.strip(), measured | aside)


if __name__ == "__main__":
    unittest.main()
