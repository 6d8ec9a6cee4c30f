"""The page filled with data, as the engine fills it."""

import base64
import hashlib
import json
import pathlib
import re
import wave

TEMPLATE = pathlib.Path(__file__).resolve().parent.parent / "viewer.html"
PLACEHOLDER = "@TUPPI_TRANSCRIPT@"
STYLE = re.compile(r"<style>(.*?)</style>", re.S)
SCRIPT = re.compile(r"<script>(.*?)</script>", re.S)


def template():
    return TEMPLATE.read_text(encoding="utf-8")


def digest(text):
    return "sha256-" + base64.b64encode(hashlib.sha256(text.encode("utf-8")).digest()).decode("ascii")


def sealed(html):
    for directive, block in (("style-src", STYLE), ("script-src", SCRIPT)):
        html = re.sub(f"{directive} '[^']*'", f"{directive} '{digest(block.search(html).group(1))}'", html, count=1)
    return html


def embedded(data):
    text = json.dumps(data, ensure_ascii=False)
    for character, escape in (("<", "\\u003c"), ("\u2028", "\\u2028"), ("\u2029", "\\u2029")):
        text = text.replace(character, escape)
    return text


def fill(data):
    before, after = template().split(PLACEHOLDER)
    return before + embedded(data) + after


def write(folder, data, html=None):
    folder.mkdir(parents=True, exist_ok=True)
    if isinstance(data.get("audio"), str):
        write_silence(folder / data["audio"], data["duration"])
    file = folder / "viewer.html"
    file.write_text(html if html is not None else fill(data), encoding="utf-8", newline="")
    return file


def write_silence(file, seconds):
    with wave.open(str(file), "wb") as sound:
        sound.setnchannels(1)
        sound.setsampwidth(1)
        sound.setframerate(8000)
        sound.writeframes(b"\x80" * int(seconds * 8000))


INTERVIEW = (
    ("Interviewer", "Good morning, and thank you for coming in today."),
    ("Guest", "Good morning. I am happy to be here."),
    ("Interviewer", "Can you tell us what your team has been working on this year?"),
    ("Guest", "We have been working on a new school for the children of the city."),
    ("Guest", "It stands by the river, where the old market was, and there is a garden behind it. The children have "
              "helped us to draw it: they wanted a library with windows down to the floor, and they will have it."),
    ("Interviewer", "How many people are on the team?"),
    ("Guest", "There are about twenty people. Most of them have been with us from the beginning."),
    ("Interviewer", "What was the most difficult part?"),
    ("Guest", "The money, of course. We had to find a new bank in the middle of the winter."),
    ("Interviewer", "When will the building be ready?"),
    ("Guest", "We hope to open the doors in September."),
    ("Interviewer", "And what has to be done before then?"),
    ("Guest", "We need to send the report to the city by Friday. And I have to call the bank next week."),
    ("Interviewer", "Who will look after the water and the lights?"),
    ("Guest", "My brother will do that. He has to finish before the end of the month."),
    ("Interviewer", "Thank you very much. It was good to talk to you."),
    ("Guest", "Thank you. I will send you the pictures on Monday."),
)


def segments(lines, seconds=5.0):
    return [{"start": at * seconds, "end": (at + 1) * seconds, "speaker": speaker, "text": text}
            for at, (speaker, text) in enumerate(lines)]


def sample(**changes):
    data = {
        "title": "Interview about the new school",
        "language": "en",
        "recorded_at": "2025-03-14T10:22:33",
        "duration": len(INTERVIEW) * 5.0,
        "audio": "audio.wav",
        "speakers": ["Interviewer", "Guest"],
        "segments": segments(INTERVIEW),
        "summary": {
            "note": [{"text": "No text model was used: these sentences were picked from the transcript as they were "
                              "spoken.", "values": []}],
            "paragraphs": ["- We have been working on a new school for the children of the city.\n"
                           "- The money, of course. We had to find a new bank in the middle of the winter.\n"
                           "- We hope to open the doors in September."],
            "tasks": ["We need to send the report to the city by Friday.", "I have to call the bank next week.",
                      "He has to finish before the end of the month.", "I will send you the pictures on Monday."],
        },
    }
    data.update(changes)
    return data
