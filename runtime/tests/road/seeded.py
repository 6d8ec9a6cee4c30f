"""Finished transcripts made without recognition: written straight into a store as its first version kept them, for
tests that need many of them or need to know every word."""

import contextlib
import html
import json
import os
import re
import sqlite3

from road import read, technical

SENTENCES = ("good morning and thank you for coming", "yes of course", "we need to send the report by friday",
             "yes of course", "the doors open in september")

# The store as it was before it kept transcripts.
FIRST_SCHEMA = """
    CREATE TABLE jobs (
        seq INTEGER PRIMARY KEY AUTOINCREMENT, id TEXT NOT NULL UNIQUE,
        status TEXT NOT NULL CHECK (status IN
            ('queued', 'transcribing', 'cleaning', 'analyzing', 'cancelled', 'failed', 'ready')),
        paused INTEGER NOT NULL DEFAULT 0, hidden INTEGER NOT NULL DEFAULT 0, title TEXT NOT NULL,
        call_dir TEXT NOT NULL, audio TEXT NOT NULL, error TEXT, recorded_at TEXT NOT NULL, duration_seconds REAL,
        engine TEXT, recogniser TEXT, engine_choice TEXT NOT NULL, language_choice TEXT NOT NULL,
        language TEXT NOT NULL, speakers INTEGER NOT NULL, clean INTEGER NOT NULL, analyze INTEGER NOT NULL,
        progress TEXT, planned INTEGER NOT NULL DEFAULT 0, attempts INTEGER NOT NULL DEFAULT 0,
        attempts_at INTEGER NOT NULL DEFAULT 0, created_at TEXT NOT NULL, completed_at TEXT);
    CREATE INDEX unfinished ON jobs (seq) WHERE status IN ('queued', 'transcribing', 'cleaning', 'analyzing');
    CREATE TABLE entries (seq INTEGER PRIMARY KEY REFERENCES jobs (seq) ON DELETE CASCADE, entry BLOB NOT NULL);
    CREATE TABLE segments (
        job INTEGER NOT NULL REFERENCES jobs (seq) ON DELETE CASCADE, number INTEGER NOT NULL,
        start_ms INTEGER NOT NULL, end_ms INTEGER NOT NULL, attempts INTEGER NOT NULL DEFAULT 0, words BLOB,
        PRIMARY KEY (job, number)) WITHOUT ROWID;
    CREATE TABLE settings (name TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID;
    PRAGMA journal_mode = WAL;
    PRAGMA user_version = 1;
"""


def seed(engine, *sentences, title="Interview", status="ready", clean=True, analyze=True):
    """Adds a job to the store, which is made in its first version where there is none; gives back its entry."""
    os.makedirs(os.path.dirname(engine.store), exist_ok=True)
    new = not os.path.exists(engine.store)
    with contextlib.closing(sqlite3.connect(engine.store, timeout=30)) as base:
        if new:
            base.executescript(FIRST_SCHEMA)
        seq = 1 + (base.execute("SELECT max(seq) FROM jobs").fetchone()[0] or 0)
        call_dir = os.path.join(engine.library, f"2025-03-14 10.22 {title}" + (f" ({seq})" if seq > 1 else ""))
        os.makedirs(os.path.join(call_dir, "Technical files"))
        with open(os.path.join(call_dir, "Technical files", "audio.wav"), "wb") as file:
            file.write(b"the recording")
        entry = {"id": f"job-{seq}", "status": status, "paused": False, "hidden": False, "title": title,
                 "call_dir": call_dir, "error": "It failed." if status == "failed" else None,
                 "recorded_at": "2025-03-14T10:22:33", "duration_seconds": 60.0, "engine": None,
                 "engine_choice": "auto", "language": "en",
                 "completed_at": "2025-03-14T10:30:00Z" if status in ("ready", "failed") else None}
        base.execute(
            "INSERT INTO jobs (seq, id, status, title, call_dir, audio, error, recorded_at, duration_seconds, recogniser,"
            " engine_choice, language_choice, language, speakers, clean, analyze, planned, created_at, completed_at)"
            " VALUES (?, ?, ?, ?, ?, ?, ?, ?, 60, 'PocketSphinx', 'auto', 'en', 'en', 0, ?, ?, 1, ?, ?)",
            (seq, entry["id"], status, title, call_dir, "Technical files/audio.wav", entry["error"],
             entry["recorded_at"], clean, analyze, "2025-03-14T10:22:33Z", entry["completed_at"]))
        base.execute("INSERT INTO entries VALUES (?, ?)",
                     (seq, json.dumps(entry, ensure_ascii=False, separators=(",", ":")).encode()))
        # A silent stretch in front: the lines are counted without it.
        base.execute("INSERT INTO segments VALUES (?, 0, 0, 500, 1, '[]')", (seq,))
        for number, sentence in enumerate(sentences or SENTENCES, 1):
            start = number * 4000
            words = [[word, start + 200 * i, start + 200 * (i + 1)] for i, word in enumerate(sentence.split())]
            base.execute("INSERT INTO segments VALUES (?, ?, ?, ?, 1, ?)",
                         (seq, number, start, start + 200 * len(words), json.dumps(words)))
        base.commit()
    return entry


def page_data(entry):
    text = read(technical(entry, "viewer.html"))
    start = '<script type="application/json" id="transcript">'
    return json.loads(text.split(start)[1].split("</script>")[0])


def clock(seconds):
    whole = int(seconds)
    return f"{whole // 3600:02}:{whole // 60 % 60:02}:{whole % 60:02}"


def stored(engine, entry):
    """Title, lines and clean text of a transcript, as they stand in the store."""
    (seq, title), = engine.query("SELECT seq, title FROM jobs WHERE id = ?", entry["id"])
    (clean, summary, revision, written), = engine.query(
        "SELECT clean, summary, revision, written FROM transcripts WHERE job = ?", seq)
    lines = [{"start": start / 1000, "end": end / 1000, "speaker": speaker, "text": text,
              "words": [(w, s / 1000, e / 1000) for w, s, e in json.loads(words)]}
             for start, end, speaker, text, words in engine.query(
                 "SELECT start_ms, end_ms, speaker, text, words FROM lines WHERE job = ? ORDER BY number", seq)]
    return {"title": title, "lines": lines, "clean": clean, "summary": summary, "revision": revision,
            "written": written}


def view(kept):
    return [(line["speaker"], line["text"]) for line in kept["lines"]]


def some_correction(chance, job, kept, number):
    """A command of a kind drawn by lot, and what it makes of (title, lines)."""
    lines = view(kept)
    at = chance.randrange(len(lines))
    speaker, text = lines[at]
    long = [i for i, (_, t) in enumerate(lines) if len(t.split()) > 1]
    kinds = ["rename", "speaker", "edit"]
    if long and len(lines) < 8:
        kinds.append("split")
    elif len(lines) > 1:
        kinds.append("join")
    if speaker:
        kinds.append("everywhere")
    kind = chance.choice(kinds)
    if kind == "rename":
        return ("rename", job, "--", f"Title {number}"), f"Title {number}", lines
    if kind == "speaker":
        return (("speaker", job, str(at), "--json", f"--name=Name {number}"), kept["title"],
                lines[:at] + [(f"Name {number}", text)] + lines[at + 1:])
    if kind == "everywhere":
        return (("speaker", job, "--rename", f"--old={speaker}", f"--new=New {number}", "--json"), kept["title"],
                [(f"New {number}" if s == speaker else s, t) for s, t in lines])
    if kind == "edit":
        return (("edit", job, str(at), "--json", "--", f"{text} x{number}"), kept["title"],
                lines[:at] + [(speaker, f"{text} x{number}")] + lines[at + 1:])
    if kind == "split":
        at = chance.choice(long)
        speaker, text = lines[at]
        first, second = text.split(" ", 1)
        return (("split", job, str(at), str(len(first)), "--json"), kept["title"],
                lines[:at] + [(speaker, first), (speaker, second)] + lines[at + 1:])
    at = max(1, at)
    return (("split", job, str(at), "--join", "--json"), kept["title"],
            lines[:at - 1] + [(lines[at - 1][0], f"{lines[at - 1][1]} {lines[at][1]}")] + lines[at + 1:])


def assert_agreement(test, engine, entry):
    """Every file of the call dir says what the store says, and nothing else stands there but what a killed command may
    leave; gives back what the store says."""
    kept = stored(engine, entry)
    lines = kept["lines"]
    test.assertEqual(kept["written"], kept["revision"])
    page = page_data(entry)
    test.assertEqual(page["title"], kept["title"])
    test.assertEqual([(s["start"], s["end"], s["speaker"], s["text"], s["words"]) for s in page["segments"]],
                     [(s["start"], s["end"], s["speaker"], s["text"], [w[1] for w in s["words"]]) for s in lines])
    programs = json.loads(read(technical(entry, "segments.json")))
    test.assertEqual((programs["title"], programs["revision"]), (kept["title"], kept["revision"]))
    test.assertEqual([(s["start"], s["end"], s["speaker"], s["text"],
                       [(w["word"], w["start"], w["end"]) for w in s["words"]]) for s in programs["segments"]],
                     [(s["start"], s["end"], s["speaker"], s["text"], s["words"]) for s in lines])
    test.assertEqual(read(entry["call_dir"], "Transcript.txt"),
                     "".join(f"[{clock(s['start'])}] {s['speaker'] + ': ' if s['speaker'] else ''}{s['text']}\n"
                             for s in lines if s["text"]))
    test.assertEqual(read(technical(entry, "transcript.txt")), kept["clean"])
    words = " ".join(w[0] for s in lines for w in s["words"])
    test.assertEqual(" ".join(cue_texts(read(technical(entry, "subtitles.srt")))), words)
    test.assertEqual(html.unescape(" ".join(cue_texts(read(technical(entry, "subtitles.vtt"))))), words)
    names = ["Technical files", "Transcript.txt"]
    if kept["summary"] is not None:
        names.insert(0, "Summary.md")
        summary = read(entry["call_dir"], "Summary.md")
        test.assertTrue(summary.endswith("\n## Full text\n\n" + kept["clean"]))
        test.assertIn(f"\n# {kept['title']}\n", summary)
        speakers = ", ".join('"' + name.replace("\\", "\\\\").replace('"', '\\"') + '"'
                             for name in dict.fromkeys(s["speaker"] for s in lines if s["speaker"]))
        test.assertIn(f"\nspeakers: [{speakers}]\n", summary)
    test.assertEqual([n for n in sorted(os.listdir(entry["call_dir"])) if not n.startswith(".tuppi-revision-")], names)
    test.assertEqual(sorted(os.listdir(technical(entry))), ["audio.wav", "segments.json", "subtitles.srt",
                                                            "subtitles.vtt", "transcript.txt", "viewer.html"])
    return kept


def cue_texts(subtitles):
    found = []
    for block in subtitles.split("\n\n"):
        rows = block.split("\n")
        if any(" --> " in row for row in rows[:2]):
            found.append(re.sub(r"\A<v [^>]*>", "", rows[-1]))
    return found
