"""The rules of the house that no compiler checks. A tree is a dictionary of file names and texts; every rule gives
the list of what breaks it, as "file:line: what"."""

import os
import re
import subprocess

SOURCE = (".cpp", ".h")
SUFFIX_OF_INTERPRETER = {"python": ".py", "bash": ".bash", "sh": ".sh"}
LONGEST_FUNCTION = 60
LONGEST_CONTROLLER_HEADER = 260

FLOOR_OF_TARGET = {
    "tuppi_core": "core",
    "tuppi_platform": "platform",
    "tuppi-media-length": "platform",
    "tuppi-sounds": "platform",
    "tuppi_widgets": "widgets",
    "tuppi_viewer": "viewer",
    "tuppi_app": "app",
    "tuppi-transcriber": "main",
}
FLOOR_OF_FOLDER = {"ui": "widgets", "platform": "platform"}
MAY_INCLUDE = {
    "core": {"core"},
    "platform": {"core", "platform"},
    "widgets": {"core", "widgets"},
    "viewer": {"core", "widgets", "viewer"},
    "app": {"core", "platform", "widgets", "app"},
    "main": {"core", "platform", "widgets", "app", "main"},
}
# The folders of runtime/src/, from the ground up, and which of those below each may include.
ENGINE_FLOORS = {
    "core": set(),
    "text": {"core"},
    "media": {"core"},
    "store": {"core", "text"},
    "models": {"core", "store"},
    "recognise": {"core", "text", "models"},
    "speakers": {"core", "text"},
    "intake": {"core", "store"},
    "output": {"core", "text", "store", "intake"},
    "correct": {"core", "text", "store", "intake", "output"},
    "commands": {"core", "text", "store", "models", "intake", "output", "correct"},
    "worker": {"core", "text", "media", "store", "recognise", "speakers", "intake", "output"},
}
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def names_in(root):
    """Every file that git keeps or would keep; where it does not serve, as in an unpacked archive, all but what is built."""
    command = ["git", "-C", root, "ls-files", "-z", "--cached", "--others", "--exclude-standard"]
    try:
        listed = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True, encoding="utf-8")
        return list(filter(None, listed.stdout.split("\0")))
    except (OSError, subprocess.CalledProcessError):
        names = []
        for folder, folders, files in os.walk(root):
            folders[:] = [name for name in folders if not re.match(r"\.|__pycache__$", name)
                          and not (folder == root and name.startswith("build"))]
            names += [os.path.relpath(os.path.join(folder, file), root) for file in files]
        return names


def read_tree(root):
    """Every text of the repository."""
    tree = {}
    for path in names_in(root):
        try:
            with open(os.path.join(root, path), encoding="utf-8") as file:
                tree[path] = file.read()
        except (UnicodeDecodeError, FileNotFoundError):  # no text; taken away and not committed yet
            continue
    return tree


def kind(path, text):
    """The suffix of a file; that of its language, where a script has none."""
    interpreter = re.match(r"#!.*\b(python|bash|sh)[\d.]*\b", text)
    return os.path.splitext(path)[1] or (SUFFIX_OF_INTERPRETER[interpreter[1]] if interpreter else "")


def _line(text, position):
    return text.count("\n", 0, position) + 1


def _found(tree, kinds, pattern, what, exempt=lambda path: False):
    return [f"{path}:{_line(text, match.start())}: {what(match)}"
            for path, text in sorted(tree.items()) if kind(path, text) in kinds and not exempt(path)
            for match in re.finditer(pattern, text)]


def without_comments_and_texts(text):
    """C++ with every comment blanked and every literal emptied; the lines stay where they are."""
    pattern = re.compile(r'R"([^()\\ ]{0,16})\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<![0-9A-Za-z_])\'(?:\\.|[^\'\\\n])+\''
                         r"|//[^\n]*|/\*.*?\*/", re.DOTALL)
    return pattern.sub(lambda match: ('""' if match[0][0] in "R\"'" else " ") + "\n" * match[0].count("\n"), text)


# Which floor a file belongs to

def floors(tree):
    """The floor of every source file under src/, as the targets tell; a header goes with its source, and one
    without a source is as low as its folder allows."""
    told, unknown = {}, []
    for path, text in tree.items():
        if not path.startswith("src/") or os.path.basename(path) != "CMakeLists.txt":
            continue
        for match in re.finditer(r"\b(?:add_library|add_executable|target_sources)\s*\(\s*([\w-]+)([^)]*)\)", text):
            files = [word for word in match[2].split() if word.endswith(SOURCE)]
            if files and match[1] not in FLOOR_OF_TARGET:
                unknown.append(f"{path}:{_line(text, match.start())}: the target {match[1]} has no floor")
                continue
            for name in files:
                told[os.path.normpath(os.path.join(os.path.dirname(path), name))] = FLOOR_OF_TARGET[match[1]]
    result = {}
    for path in tree:
        if not path.startswith("src/") or not path.endswith(SOURCE):
            continue
        source = os.path.splitext(path)[0] + ".cpp"
        folder = path.split("/")[1]
        result[path] = told.get(path) or told.get(source) or FLOOR_OF_FOLDER.get(folder, "core")
    return result, unknown


def include_table(tree):
    floor_of, found = floors(tree)
    for path, floor in sorted(floor_of.items()):
        for match in INCLUDE.finditer(tree[path]):
            if match[1] == "<":
                continue
            where = f"{path}:{_line(tree[path], match.start())}"
            included = "src/" + match[2]
            if included not in floor_of:
                found.append(f"{where}: {match[2]} is no file of src/")
            elif floor_of[included] not in MAY_INCLUDE[floor]:
                found.append(f"{where}: {floor} includes {match[2]} of {floor_of[included]}")
    return found


def engine_table(tree):
    """The same for the engine, whose floors are its folders; only the store knows the database."""
    found = []
    for path, text in sorted(tree.items()):
        if not path.startswith("runtime/src/") or not path.endswith(SOURCE):
            continue
        floor = path.split("/")[2]
        if floor not in ENGINE_FLOORS:
            found.append(f"{path}:1: the folder {floor} has no floor")
            continue
        for match in INCLUDE.finditer(text):
            where, included = f"{path}:{_line(text, match.start())}", match[2].split("/")[0]
            if match[1] == "<" and re.match(r"(QtSql/)?QSql", match[2]) and floor != "store":
                found.append(f"{where}: {floor} includes {match[2]}")
            elif match[1] == '"' and included != floor and included not in ENGINE_FLOORS[floor]:
                found.append(f"{where}: {floor} includes {match[2]}")
    return found


def controller_is_private(tree):
    def allowed(path):
        name = os.path.basename(path)
        return not path.startswith("src/") or name == "main.cpp" or re.fullmatch(r"AppDelegate\w*\.cpp", name)

    return _found(tree, SOURCE, r'#\s*include\s*"app/AppDelegate\.h"', lambda match: "includes the controller", allowed)


def qt_modules(tree, core_headers):
    """Core includes Qt Core only; the web engine stays in the viewer."""
    floor_of, found = floors(tree)
    for path, floor in sorted(floor_of.items()):
        for match in INCLUDE.finditer(tree[path]):
            header = match[2].split("/")[-1]
            where = f"{path}:{_line(tree[path], match.start())}"
            is_qt = match[1] == "<" and re.match(r"Q[A-Za-z]", match[2])
            if is_qt and floor == "core" and header not in core_headers:
                found.append(f"{where}: core includes {match[2]}, which is not of Qt Core")
            if re.match(r"QWeb(Engine|Channel)", header) and floor not in ("viewer", "main"):
                found.append(f"{where}: {floor} includes {match[2]}")
    return found


def engine_is_apart(tree):
    """runtime/ and src/ share nothing."""
    found = []
    for path, text in sorted(tree.items()):
        side = path.split("/")[0]
        other = {"src": "runtime", "runtime": "src"}.get(side)
        if other is None:
            continue
        for match in INCLUDE.finditer(text) if path.endswith(SOURCE) else ():
            own = any(name in tree for name in (os.path.normpath(os.path.join(os.path.dirname(path), match[2])),
                                                f"{side}/{match[2]}", f"runtime/src/{match[2]}" if side == "runtime" else ""))
            reached = os.path.normpath(os.path.join(os.path.dirname(path), match[2]))
            if match[1] == '"' and (reached.startswith(other + "/") or
                                    (not own and (f"{other}/{match[2]}" in tree or f"{other}/src/{match[2]}" in tree))):
                found.append(f"{path}:{_line(text, match.start())}: includes {match[2]} of {other}/")
        if os.path.basename(path) == "CMakeLists.txt":
            pattern = r"tuppi_(core|app|widgets|platform|viewer)\b|\.\./src/|SOURCE_DIR\}/src/" if side == "runtime" else r"\bruntime/"
            found += [f"{path}:{_line(text, match.start())}: reaches into {other}/" for match in re.finditer(pattern, text)]
    return found


# What is waited for

def bare_waits(tree):
    """Code and tests wait for conditions. The engine's program is outside: it runs statements of its database
    with exec(), and what it follows there can only be asked for again and again."""
    code = {path: without_comments_and_texts(text) if path.endswith(SOURCE) else text for path, text in tree.items()}
    def engine(path):
        return path.startswith("runtime/") and not path.startswith("runtime/tests/")

    found = _found(code, SOURCE, r"\bqWait\s*\(|\b(?:u|m|nano)?sleep(?:_for|_until)?\s*\(|waitForFinished\s*\(\s*-1\s*\)",
                   lambda match: "waits for a time: " + match[0], engine)
    found += [line for path, text in sorted(code.items()) if kind(path, text) in SOURCE for line in _short_waits(path, text)]
    found += [line for path, text in sorted(code.items()) if kind(path, text) == ".py" for line in _python_sleeps(path, text)]
    found += _found(code, SOURCE, r"(?:\.|->)exec\s*\(\s*\)", lambda match: "runs an event loop of its own",
                    lambda path: "int main(" in tree[path] or engine(path))
    return found


def _short_waits(path, text):
    """Qt's own give up after five seconds, unless they are told how long."""
    for match in re.finditer(r"\bQTRY_(?:COMPARE|VERIFY)\s*\(|\bqWaitFor\s*\(", text):
        depth, end = 1, match.end()
        while depth and end < len(text):
            depth += {"(": 1, ")": -1}.get(text[end], 0)
            end += 1
        if "QTRY" in match[0] or not re.search(r",\s*[\w:']+\s*\)$", text[match.end():end]):
            yield f"{path}:{_line(text, match.start())}: gives up after five seconds: {match[0]}"


def _python_sleeps(path, text):
    """A function that waits for a condition, until() or wait…(), has to look again after a while. A moment
    drawn by lot (chance.uniform) is not waited for: it is where a test strikes."""
    for match in re.finditer(r"\btime\.sleep\s*\((?!chance\.)|\bfrom time import .*\bsleep\b", text):
        within = re.findall(r"^\s*def (\w+)", text[:match.start()], re.MULTILINE)
        if not within or not re.match(r"until|wait", within[-1]):
            yield f"{path}:{_line(text, match.start())}: waits for a time: {match[0]}"


# How long things are

def long_functions(tree):
    found = []
    for path, text in sorted(tree.items()):
        if not path.endswith(SOURCE):
            continue
        code = without_comments_and_texts(text)
        for name, first, last in functions(code):
            if last - first + 1 > LONGEST_FUNCTION:
                found.append(f"{path}:{first}: {name} has {last - first + 1} lines")
    return found


def functions(code):
    """Name, first and last line of every function body; what stands inside one belongs to it."""
    depth, parentheses, start = 0, 0, 0
    inside = value = None  # where the body, or a braced value outside of one, began, and how deep
    for position, character in enumerate(code):
        if character in "()" and inside is None:
            parentheses += 1 if character == "(" else -1
        elif character == "{":
            header = re.sub(r"^\s*#.*$", "", code[start:position], flags=re.MULTILINE).strip()
            if inside is None and value is None:
                if parentheses or _begins_value(header):
                    value = depth
                elif _begins_function(header):
                    inside = (header.split("(")[0].split()[-1], position, depth)
                else:
                    start = position + 1
            depth += 1
        elif character == "}":
            depth -= 1
            if inside is not None and depth == inside[2]:
                yield inside[0], _line(code, inside[1]), _line(code, position)
                inside, start = None, position + 1
            elif value is not None:
                value = None if depth == value else value
            elif inside is None:
                start = position + 1
        elif character == ";" and inside is None and value is None:
            start = position + 1


def _begins_value(header):
    """A braced value: after "=", or a member's in a constructor's list."""
    head = re.sub(r"\btemplate\s*<[^>]*>|\boperator\W+", " ", header.split("(")[0])
    return "=" in head or re.search(r"\)\s*(?:noexcept\s*)?:(?!:).*[\w>]$", header, re.DOTALL)


def _begins_function(header):
    return "(" in header and not re.match(r"(class|struct|enum|namespace)\b", header)


def long_controller_header(tree):
    lines = tree.get("src/app/AppDelegate.h", "").count("\n")
    return [f"src/app/AppDelegate.h: {lines} lines"] if lines > LONGEST_CONTROLLER_HEADER else []


# What is not written

def unfinished(tree):
    words = "|".join(("TO" + "DO", "FIX" + "ME", "XX" + "X"))
    return _found(tree, (*SOURCE, ".py", ".txt", ".cmake", ".sh", ".bash", ".md", ".json"), rf"\b(?:{words})\b",
                  lambda match: "unfinished: " + match[0])
