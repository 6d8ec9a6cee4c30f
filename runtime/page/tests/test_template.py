"""What must hold of the page's file before any browser sees it."""

import json
import re
import unittest

import page


def shown_texts(html):
    texts = re.findall(r'data-(?:text|label|placeholder)="([^"]+)"', html)
    texts += re.findall(r"\bT\('((?:[^'\\]|\\.)+)'", html)
    texts += re.findall(r"playing \? T\('\w+'\) : T\('(\w+)'\)", html)
    return set(texts) | {"No summary was made for this transcript."}


class Template(unittest.TestCase):
    def setUp(self):
        self.html = page.template()

    def test_there_is_one_placeholder(self):
        self.assertEqual(self.html.count(page.PLACEHOLDER), 1)

    def test_there_is_one_style_and_one_script(self):
        self.assertEqual(len(page.STYLE.findall(self.html)), 1)
        self.assertEqual(len(page.SCRIPT.findall(self.html)), 1)

    def test_the_policy_names_this_style_and_this_script(self):
        self.assertEqual(self.html, page.sealed(self.html), "run runtime/page/seal")

    def test_the_policy_allows_nothing_else(self):
        policy = re.search(r'Content-Security-Policy" content="([^"]+)"', self.html).group(1)
        rules = dict(rule.strip().split(" ", 1) for rule in policy.split(";"))
        self.assertEqual(set(rules), {"default-src", "media-src", "style-src", "script-src", "base-uri", "form-action"})
        self.assertEqual(rules["default-src"], "'none'")
        self.assertEqual(rules["media-src"], "'self' file:")
        for directive in ("style-src", "script-src"):
            self.assertRegex(rules[directive], r"^'sha256-[A-Za-z0-9+/]{43}='$")

    def test_it_refers_to_nothing_outside(self):
        self.assertNotRegex(self.html, r"(?i)https?:|//[a-z]|@import|url\(|<link|<iframe|<img|\bsrc=\"")

    def test_it_needs_no_inline_attributes(self):
        self.assertNotRegex(self.html, r"<[^>]+\s(on[a-z]+|style)=")

    def test_texts_lists_every_text(self):
        listed = (page.TEMPLATE.parent / "texts.txt").read_text(encoding="utf-8").splitlines()
        self.assertEqual(listed, sorted(shown_texts(self.html)))

    def test_embedded_data_cannot_end_its_script(self):
        data = {"title": "</script><script>x()</script><!--\u2028\u2029"}
        text = page.embedded(data)
        self.assertNotRegex(text, "[<\u2028\u2029]")
        self.assertEqual(json.loads(text), data)


if __name__ == "__main__":
    unittest.main()
