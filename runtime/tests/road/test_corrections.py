#!/usr/bin/env python3
"""Reading and correcting a finished transcript: every command, and what is left when one is killed."""

import contextlib
import json
import os
import random
import signal
import subprocess
import time
import unittest

from road import SOURCE, RoadTest, main, read, technical
from seeded import SENTENCES, assert_agreement, page_data, seed, some_correction, stored, view

KILLS = int(os.environ.get("ROAD_KILLS", "100"))
HOSTILE = "--x \"q\" 'a' </script><b>&amp;\\ \u2028\u2029 \U0001f600 e\u0301 \u200fאב\u200e %@ $HOME `id` @TUPPI_TRANSCRIPT@"


class CorrectionTest(RoadTest):
    def setUp(self):
        self.runtime = self.engine()
        self.entry = seed(self.runtime)
        self.id = self.entry["id"]

    def reply(self, *arguments):
        return json.loads(self.runtime.ask(*arguments).out)

    def agreed(self, entry=None):
        return assert_agreement(self, self.runtime, entry or self.entry)

    def edit(self, line, text):
        return self.reply("edit", self.id, str(line), "--json", "--", text)

    def refused(self, sentence, *arguments, status=1):
        reply = self.runtime.call(*arguments)
        self.assert_one_line(reply, status)
        self.assertRegex(reply.err, sentence)


class Commands(CorrectionTest):
    def test_edit(self):
        self.assertEqual(self.edit(2, "we need to send the letter by friday"), {"clean_updated": True})
        kept = self.agreed()
        self.assertEqual(kept["lines"][2]["text"], "we need to send the letter by friday")
        self.assertIn("We need to send the letter by Friday.", kept["clean"])
        self.assertIn("Yes of course.", kept["clean"])
        self.assertEqual([w[0] for w in kept["lines"][2]["words"]], kept["lines"][2]["text"].split())
        # The same text again; then one that the clean text has nothing of.
        self.assertEqual(self.edit(2, "we need to send the letter by friday"), {"clean_updated": False})
        self.assertEqual(self.agreed()["revision"], kept["revision"])
        path = technical(self.entry, "transcript.txt")
        with open(path, "w", encoding="utf-8") as file:
            file.write("All was said in other words.\n")
        self.assertEqual(self.edit(2, "new words"), {"clean_updated": False})
        kept = self.agreed()
        self.assertEqual(kept["clean"], "All was said in other words.\n")
        self.assertEqual(kept["lines"][2]["text"], "new words")

    def test_the_summary_gets_what_was_picked_from_a_line(self):
        self.edit(2, "we need to send the letter by friday")
        self.reply("speaker", self.id, "2", "--json", "--name=Bo")
        task = "Bo: We need to send the letter by Friday."
        self.assertEqual(page_data(self.entry)["summary"]["tasks"], [task])
        self.assertIn(f"- [ ] {task}\n", read(self.entry["call_dir"], "Summary.md"))
        self.assertNotIn("report", read(self.entry["call_dir"], "Summary.md"))
        self.reply("speaker", self.id, "--rename", "--old=Bo", "--new=Boris", "--json")
        self.reply("speaker", self.id, "--rename", "--old=Boris", "--new=Bob", "--json")
        self.assertEqual(page_data(self.entry)["summary"]["tasks"], ["Bob: We need to send the letter by Friday."])

    def test_an_emptied_line_keeps_its_place(self):
        self.edit(1, "")
        self.assertEqual(view(self.agreed())[1], (None, ""))
        self.assertEqual(self.edit(1, SENTENCES[1]), {"clean_updated": True})
        self.assertEqual(view(self.agreed()), [(None, s) for s in SENTENCES])

    def test_speakers(self):
        self.assertEqual(self.reply("speaker", self.id, "0", "--json", "--name=Speaker 1"), {"speaker": "Speaker 1"})
        self.assertEqual(self.reply("speaker", self.id, "3", "--json", "--name= Speaker 1 "), {"speaker": "Speaker 1"})
        self.assertEqual(self.reply("speaker", self.id, "1", "--json", "--name=--Борис=2 \"q\" \\ \u200fא"),
                         {"speaker": "--Борис=2 \"q\" \\ \u200fא"})
        self.assertEqual([s for s, _ in view(self.agreed())],
                         ["Speaker 1", "--Борис=2 \"q\" \\ \u200fא", None, "Speaker 1", None])
        self.assertEqual(page_data(self.entry)["speakers"], ["Speaker 1", "--Борис=2 \"q\" \\ \u200fא"])
        self.assertEqual(self.reply("speaker", self.id, "--rename", "--old=Speaker 1", "--new=Anna", "--json"),
                         {"speaker": "Anna", "changed": 2})
        self.assertEqual(self.reply("speaker", self.id, "1", "--json", "--none"), {"speaker": None})
        self.assertEqual([s for s, _ in view(self.agreed())], ["Anna", None, None, "Anna", None])
        self.assertEqual(self.reply("speaker", self.id, "--rename", "--old=Anna", "--new=Anna", "--json"),
                         {"speaker": "Anna", "changed": 0})

    def test_split_and_join(self):
        before = view(self.agreed_after_a_change())
        segments = self.reply("split", self.id, "2", "10", "--json")["segments"]
        self.assertEqual([s["text"] for s in segments], ["we need to", "send the report by friday"])
        self.assertEqual([len(s["words"]) for s in segments], [3, 5])
        self.assertEqual(page_data(self.entry)["segments"][2:4], segments)
        self.assertEqual(len(view(self.agreed())), len(before) + 1)
        segment = self.reply("split", self.id, "3", "--join", "--json")["segment"]
        self.assertEqual(segment["text"], SENTENCES[2])
        self.assertEqual(page_data(self.entry)["segments"][2], segment)
        self.assertEqual(view(self.agreed()), before)

    def test_an_emptied_line_that_was_joined_comes_back(self):
        before = view(self.agreed_after_a_change())
        for line, joins, place in ((2, 2, len(SENTENCES[1])), (1, 2, 0)):
            with self.subTest(emptied=line):
                self.edit(line, "")
                segment = self.reply("split", self.id, str(joins), "--join", "--json")["segment"]
                self.assertEqual(segment["text"], before[3 - line][1])
                segments = self.reply("split", self.id, str(joins - 1), str(place), "--json")["segments"]
                self.assertEqual(segments[line - 1]["text"], "")
                self.agreed()
                self.edit(line, before[line][1])
                self.reply("speaker", self.id, "1", "--json", "--none")
                self.reply("speaker", self.id, "2", "--json", "--name=Anna")
                self.assertEqual(view(self.agreed()), before)

    def agreed_after_a_change(self):
        self.reply("speaker", self.id, "2", "--json", "--name=Anna")
        return self.agreed()

    def test_the_place_of_a_split_counts_characters(self):
        text = "\U0001f469\u200d\U0001f680 \U0001f600\U0001f600 e\u0301 \u200fאב x"
        self.edit(0, text)
        for place in (4, 6, 9):
            segments = self.reply("split", self.id, "0", str(place), "--json")["segments"]
            self.assertEqual([s["text"] for s in segments], [text[:place].strip(), text[place:].strip()])
            self.agreed()
            self.reply("split", self.id, "1", "--join", "--json")
            self.edit(0, text)

    def test_rename(self):
        for title in ("--Another title", "  \"quoted\" \\ $HOME </script> 🐈 \u200fא  ", "Q3: plan/budget?"):
            self.assertEqual(self.runtime.ask("rename", self.id, "--", title).out, "")
            kept = self.agreed()
            self.assertEqual(kept["title"], title.strip())
            entry = self.runtime.job(self.id)
            self.assertEqual(entry, {**self.entry, "title": title.strip()})

    def test_rename_without_a_transcript(self):
        failed = seed(self.runtime, title="Failed", status="failed")
        self.runtime.ask("rename", failed["id"], "--", "Renamed")
        self.assertEqual(self.runtime.job(failed["id"])["title"], "Renamed")
        self.assertEqual(os.listdir(failed["call_dir"]), ["Technical files"])

    def test_without_summary_and_cleaning(self):
        entry = seed(self.runtime, "one too", "three", title="Plain", clean=False, analyze=False)
        self.assertEqual(self.reply("edit", entry["id"], "0", "--json", "--", "one two"), {"clean_updated": True})
        kept = assert_agreement(self, self.runtime, entry)
        self.assertEqual(kept["clean"], "one two\nthree\n")
        self.assertIsNone(page_data(entry)["summary"])

    def test_hide(self):
        others = [seed(self.runtime, title=t)["id"] for t in ("Second", "Third")]
        working = seed(self.runtime, title="Fourth", status="queued")["id"]
        # Nobody works on it: there is no recording in it that could be read.
        self.runtime.ask("pause", working)

        def hidden():
            return sorted(e["id"] for e in self.runtime.history() if e["hidden"])

        for arguments, expected in (((self.id, *others), sorted((self.id, *others))), ((others[0], "--undo"), sorted((self.id, others[1]))),
                                    ((self.id, self.id), sorted((self.id, others[1]))), (("--all", "--undo"), []),
                                    (("--all",), sorted((self.id, *others))), (("--undo", "--all"), [])):
            self.assertEqual(self.runtime.ask("hide", *arguments).out, "")
            self.assertEqual(hidden(), expected, arguments)
        self.refused("no transcription", "hide", self.id, "nonsense")
        self.refused("still being worked on", "hide", self.id, working)
        self.assertEqual(hidden(), [], "all or none")
        for wrong in ((), ("--undo",), ("--all", self.id), ("--none",)):
            self.refused("Usage", "hide", *wrong, status=2)

    def test_refusals(self):
        queued = seed(self.runtime, title="Queued", status="queued")["id"]
        self.runtime.ask("pause", queued)
        self.reply("speaker", self.id, "0", "--json", "--name=Anna")
        before, history = self.agreed(), self.runtime.history()
        beyond = str(len(SENTENCES[0]) + 1)
        changes = (("rename", "{id}", "--", "x"), ("speaker", "{id}", "0", "--json", "--name=x"),
                   ("speaker", "{id}", "--rename", "--old=Anna", "--new=x", "--json"),
                   ("edit", "{id}", "0", "--json", "--", "x"), ("split", "{id}", "0", "4", "--json"),
                   ("split", "{id}", "1", "--join", "--json"), ("copy", "transcript", "{id}"))
        for change in changes:
            with self.subTest(change):
                for job, sentence in (("nonsense", "no transcription with the number"), ("", "no transcription"),
                                      (queued, "“Queued” is (not transcribed yet|being worked on)")):
                    self.refused(sentence, *(a.format(id=job) for a in change))
        for line in ("5", "-1", "99999999999999999999"):
            for change in (("speaker", "{line}", "--json", "--name=x"), ("speaker", "{line}", "--json", "--none"),
                           ("edit", "{line}", "--json", "--", "x"), ("split", "{line}", "4", "--json"),
                           ("split", "{line}", "--join", "--json")):
                arguments = [change[0], self.id] + [a.format(line=line) for a in change[1:]]
                with self.subTest(arguments):
                    self.refused("There is no line", *arguments)
        for arguments, sentence in (
                (("rename", self.id, "--", ""), "title is empty"), (("rename", self.id, "--", " \t"), "title is empty"),
                (("rename", self.id, "--", "a\nb"), "one line"), (("rename", self.id, "--", "a" * 501), "too long"),
                (("speaker", self.id, "0", "--json", "--name="), "name is empty"),
                (("speaker", self.id, "0", "--json", "--name=a\nb"), "one line"),
                (("speaker", self.id, "0", "--json", "--name=a\u2028b"), "one line"),
                (("speaker", self.id, "0", "--json", "--name=a\x1bb"), "one line"),
                (("speaker", self.id, "0", "--json", "--name=" + "a" * 201), "too long"),
                (("speaker", self.id, "--rename", "--old=Anna", "--new=", "--json"), "name is empty"),
                (("speaker", self.id, "--rename", "--old=", "--new=x", "--json"), "Nobody is called"),
                (("speaker", self.id, "--rename", "--old=anna", "--new=x", "--json"), "Nobody is called “anna”"),
                (("edit", self.id, "0", "--json", "--", "a\nb"), "line breaks"),
                (("edit", self.id, "0", "--json", "--", "a\rb"), "line breaks"),
                (("split", self.id, "0", "-3", "--json"), "inside"),
                (("split", self.id, "0", beyond, "--json"), "inside"),
                (("split", self.id, "0", "99999999999999999999", "--json"), "inside"),
                (("split", self.id, "0", "--join", "--json"), "no line above")):
            with self.subTest(arguments):
                self.refused(sentence, *arguments)
        for arguments in (("rename",), ("rename", self.id), ("rename", self.id, "--", "a", "b"), ("rename", self.id, "--x"),
                          ("speaker",), ("speaker", self.id), ("speaker", self.id, "0", "--json"),
                          ("speaker", self.id, "0", "--name=x", "--none"), ("speaker", self.id, "--name=x"),
                          ("speaker", self.id, "0", "--rename", "--old=a", "--new=b"),
                          ("speaker", self.id, "--rename", "--old=a"), ("speaker", self.id, "x", "--none"),
                          ("speaker", self.id, "1.5", "--none"), ("speaker", self.id, "0", "--name"),
                          ("edit", self.id, "0"), ("edit", self.id, "x", "--", "y"), ("edit", self.id, "0", "--", "a", "b"),
                          ("split", self.id, "0"), ("split", self.id, "0", "1", "--join"), ("split", self.id, "0", "x"),
                          ("split", self.id, "--join"), ("copy", self.id), ("copy", "summary", self.id),
                          ("copy", "transcript")):
            with self.subTest(arguments):
                self.assert_one_line(self.runtime.call(*arguments), 2)
        self.assertEqual(self.agreed(), before)
        self.assertEqual(self.runtime.history(), history)

    def test_unusual_texts(self):
        long = ("слово " * 20000)[:100 * 1024 // 2].strip()
        for text in (HOSTILE, "  two  blanks ", "", "\U0001f600" * 300, "\u200f\u202eאב\u202c", "\t", "a\x01b", long,
                     "-->", "- [ ] no task", "---"):
            with self.subTest(text[:50]):
                self.edit(1, text)
                self.assertEqual(stored(self.runtime, self.entry)["lines"][1]["text"], text)
                self.assertEqual(page_data(self.entry)["segments"][1]["text"], text)
        self.edit(1, HOSTILE)
        self.assertEqual(read(technical(self.entry, "viewer.html")).count("</script>"), 2)
        self.edit(1, SENTENCES[1])
        self.agreed()

    def test_a_folder_that_is_gone(self):
        self.edit(0, "before")
        away = self.entry["call_dir"] + " away"
        os.rename(self.entry["call_dir"], away)
        kept = stored(self.runtime, self.entry)
        for change in (("rename", self.id, "--", "x"), ("edit", self.id, "0", "--json", "--", "x"),
                       ("speaker", self.id, "0", "--json", "--name=x"), ("split", self.id, "1", "3", "--json"),
                       ("split", self.id, "1", "--join", "--json")):
            self.refused("folder is gone", *change)
        self.assertFalse(os.path.exists(self.entry["call_dir"]))
        self.assertEqual(stored(self.runtime, self.entry), kept)
        self.assertEqual(self.runtime.history(), [])
        os.rename(away, self.entry["call_dir"])
        self.edit(0, "behind")
        self.agreed()

    def test_files_that_people_have_thrown_away_or_spoilt_come_back(self):
        self.edit(0, "before")
        for names in (("Transcript.txt",), ("Summary.md",), ("Technical files/segments.json", "Technical files/viewer.html"),
                      ("Technical files/transcript.txt", "Technical files/subtitles.srt", "Technical files/subtitles.vtt")):
            for name in names:
                os.remove(os.path.join(self.entry["call_dir"], name))
            self.edit(0, "behind " + names[0])
            self.agreed()
        for name in ("segments.json", "viewer.html", "subtitles.srt"):
            with open(technical(self.entry, name), "wb") as file:
                file.write(b"\xff\xfe{")
        self.edit(0, "at last")
        self.agreed()

    def test_a_folder_in_the_place_of_a_file(self):
        self.edit(0, "before")
        for name in ("Transcript.txt", "Technical files/viewer.html"):
            path = os.path.join(self.entry["call_dir"], name)
            os.rename(path, path + " aside")
            os.makedirs(os.path.join(path, "theirs"))
            kept = stored(self.runtime, self.entry)
            self.assert_one_line(self.runtime.call("edit", self.id, "0", "--json", "--", "not now"), 1)
            self.assertEqual(stored(self.runtime, self.entry), kept, "nothing has changed")
            self.assertTrue(os.path.isdir(os.path.join(path, "theirs")))
            os.removedirs(os.path.join(path, "theirs"))
            os.rename(path + " aside", path)
            self.agreed()
            self.edit(0, "behind " + name)
            self.agreed()

    @unittest.skipIf(os.geteuid() == 0, "root may write everywhere: see the read-only disk")
    def test_a_folder_that_can_only_be_read(self):
        self.edit(0, "before")
        kept = self.agreed()
        for folder in (self.entry["call_dir"], technical(self.entry)):
            os.chmod(folder, 0o555)
            self.refused("permission", "edit", self.id, "0", "--json", "--", "x")
            os.chmod(folder, 0o755)
            self.assertEqual(self.agreed(), kept)

    def test_a_store_of_the_first_version(self):
        self.assertEqual(self.runtime.query("PRAGMA user_version"), [(1,)])
        segments = self.runtime.query("SELECT * FROM segments")
        self.assertEqual(self.runtime.history(), [self.entry])
        self.assertEqual(self.runtime.query("PRAGMA user_version"), [(4,)])
        self.assertEqual(self.runtime.query("SELECT count(*) FROM lines"), [(0,)])
        self.edit(4, "the doors close in september")
        self.assertEqual(view(self.agreed()), [(None, s) for s in (*SENTENCES[:4], "the doors close in september")])
        self.assertEqual(self.runtime.query("SELECT * FROM segments"), segments, "what was recognised stays")
        self.assertEqual(self.runtime.history(), [self.entry])

    def test_two_at_once(self):
        self.reply("speaker", self.id, "0", "--json", "--name=Anna")
        changes = [("edit", self.id, "2", "--json", "--", "edited two"), ("edit", self.id, "4", "--json", "--", "edited four"),
                   ("speaker", self.id, "1", "--json", "--name=Boris"), ("rename", self.id, "--", "Renamed"),
                   ("speaker", self.id, "--rename", "--old=Anna", "--new=Anna Maria", "--json"),
                   ("speaker", self.id, "3", "--json", "--name=Clara")]
        children = [subprocess.Popen(self.runtime.command(*change), env=self.runtime.environment, stdin=subprocess.DEVNULL,
                                     stdout=subprocess.PIPE, stderr=subprocess.PIPE) for change in changes]
        for child, change in zip(children, changes):
            _, err = child.communicate(timeout=60)
            self.assertEqual((child.returncode, err), (0, b""), change)
        kept = self.agreed()
        self.assertEqual(kept["title"], "Renamed")
        self.assertEqual(view(kept), [("Anna Maria", SENTENCES[0]), ("Boris", SENTENCES[1]), (None, "edited two"),
                                      ("Clara", SENTENCES[3]), (None, "edited four")])
        self.assertEqual(kept["revision"], 1 + len(changes))

    def test_watchers_learn_of_what_the_list_shows(self):
        changed = os.path.join(self.runtime.folder, "changed")

        def state():
            return os.stat(changed).st_ino if os.path.exists(changed) else None

        for arguments, told in ((("rename", self.id, "--", "x"), True), (("hide", self.id), True), (("hide", self.id), False),
                                (("hide", "--all", "--undo"), True), (("edit", self.id, "0", "--json", "--", "x"), False)):
            before = state()
            self.runtime.ask(*arguments)
            self.assertEqual(state() != before, told, arguments)


class Clipboard(CorrectionTest):
    """With programs of the clipboard's names that only write down what they got."""

    def setUp(self):
        super().setUp()
        self.tools = os.path.join(self.runtime.home, "tools")
        os.mkdir(self.tools)
        self.runtime.environment = {k: v for k, v in self.runtime.environment.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY")}
        self.runtime.environment["PATH"] = self.tools
        self.edit(2, "we \U0001f600 need \u2028 \"it\"")

    def tool(self, name, body):
        path = os.path.join(self.tools, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(f'#!/bin/bash\nprintf "%s\\n" "{name} $*" >> "$HOME/called"\n{body}\n')
        os.chmod(path, 0o755)

    def copied(self, **session):
        self.runtime.environment.update(session)
        with contextlib.suppress(FileNotFoundError):
            os.remove(os.path.join(self.runtime.home, "called"))
        self.assertEqual(self.runtime.ask("copy", "transcript", self.id).out, "")
        self.assertEqual(read(self.runtime.home, "copied"), read(technical(self.entry, "transcript.txt")))
        os.remove(os.path.join(self.runtime.home, "copied"))
        return read(self.runtime.home, "called").splitlines()

    def test_the_tool_fits_the_session(self):
        keep = 'text=; while IFS= read -r row; do text+="$row"$\'\\n\'; done; printf %s "$text" > "$HOME/copied"'
        self.refused("no desktop", "copy", "transcript", self.id)
        self.runtime.environment["DISPLAY"] = ":9"
        self.refused("needs.*“xclip”", "copy", "transcript", self.id)
        self.tool("xsel", keep)
        self.assertEqual(self.copied(DISPLAY=":9"), ["xsel --clipboard --input"])
        self.tool("xclip", keep)
        self.assertEqual(self.copied(DISPLAY=":9"), ["xclip -selection clipboard -in"])
        self.assertEqual(self.copied(WAYLAND_DISPLAY="wayland-9"), ["xclip -selection clipboard -in"])
        self.tool("wl-copy", keep)
        self.assertEqual(self.copied(), ["wl-copy --type text/plain;charset=utf-8"])
        self.tool("wl-copy", "exit 1")
        self.assertEqual(len(self.copied()), 2, "the next one is tried")
        self.tool("xclip", "exit 1")
        self.tool("xsel", "exit 1")
        self.refused("did not reach the clipboard", "copy", "transcript", self.id)
        del self.runtime.environment["DISPLAY"]
        os.remove(os.path.join(self.tools, "wl-copy"))
        self.refused("wl-clipboard", "copy", "transcript", self.id)

    def test_a_real_clipboard(self):
        """X11's; it is asked only once the command is over."""
        command = [os.path.join(SOURCE, "scripts", "with-desktop"), "bash", "-c",
                   # The tool may still be on its way to the display when the command is over.
                   '"$@" && for try in {1..300}; do timeout 30 xclip -selection clipboard -out && exit; sleep 0.1; done',
                   "bash",
                   *self.runtime.command("copy", "transcript", self.id)]
        environment = {**self.runtime.environment, "PATH": os.environ["PATH"]}
        pasted = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=120,
                                check=True).stdout
        self.assertEqual(pasted.decode(), read(technical(self.entry, "transcript.txt")))

    def test_a_tool_that_stays_in_the_background_is_not_waited_for(self):
        # It keeps every descriptor that it was given.
        self.tool("xclip", 'exec 9>"$HOME/alive"; ( while :; do read -r -t 1000 <> <(:); done ) & exit 0')
        self.runtime.environment["DISPLAY"] = ":9"
        self.runtime.ask("copy", "transcript", self.id)
        # Gone with the home.
        self.assertTrue(self.runtime.processes())


class Killed(CorrectionTest):
    """Killed in the middle of a change, 100 times."""

    def until_staged(self, child):
        """Waits until the new files are about to stand beside the old ones; looks as often as it can."""
        while child.poll() is None and not any(n.startswith(".tuppi") for n in os.listdir(self.entry["call_dir"])):
            pass

    def strike(self, chance, change, length):
        child = subprocess.Popen(self.runtime.command(*change), env=self.runtime.environment, stdin=subprocess.DEVNULL,
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if chance.random() < 0.7:
            self.until_staged(child)
            time.sleep(chance.uniform(0, length / 2))
        else:
            time.sleep(chance.uniform(0, length))
        with contextlib.suppress(ProcessLookupError):
            os.kill(child.pid, signal.SIGKILL)
        child.wait()
        return child.returncode

    def test_killed(self):
        chosen = int(os.environ.get("ROAD_SEED", "0")) or random.SystemRandom().randrange(1, 1 << 31)
        print(f"killed: ROAD_SEED={chosen}")
        chance = random.Random(chosen)
        begin = time.monotonic()
        self.reply("speaker", self.id, "0", "--json", "--name=Anna")
        length = time.monotonic() - begin
        kept = self.agreed()
        found = {"over": 0, "before": 0, "after": 0, "half": 0}
        for number in range(KILLS):
            change, title, lines = some_correction(chance, self.id, kept, number)
            if self.strike(chance, change, length) == 0:
                found["over"] += 1
            raw = stored(self.runtime, self.entry)
            found["half"] += raw["written"] != raw["revision"]
            # Whatever command comes next finishes what was begun.
            self.runtime.ask("status", "--json")
            now = self.agreed()
            was = (kept["title"], view(kept))
            self.assertIn((now["title"], view(now)), (was, (title, lines)), change)
            changed = (now["title"], view(now)) != was
            self.assertEqual(now["revision"], kept["revision"] + changed)
            self.assertEqual(now["title"], self.runtime.query("SELECT entry ->> 'title' FROM entries")[0][0])
            found["after" if changed else "before"] += 1
            kept = now
        print(f"killed: {found}")
        self.reply("speaker", self.id, "0", "--json", "--name=The last one")
        self.agreed()
        self.assertEqual([n for n in os.listdir(self.entry["call_dir"]) if n.startswith(".")], [])


if __name__ == "__main__":
    main()
