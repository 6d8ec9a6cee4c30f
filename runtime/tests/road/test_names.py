#!/usr/bin/env python3
"""File names of every kind."""

import json
import os
import shutil

from road import RoadTest, main, read, results, transcript

NAMES = [
    "with  two spaces.wav",
    "it's \"quoted\".wav",
    "two\nlines.wav",
    "مقابلة مع الفريق.wav",
    "🐈‍⬛ cat.wav",
    "-dash.wav",
    "--background.wav",
    "$HOME `id` $(id) %1 %s \\ ; & | * ?.wav",
    "я" * 120 + ".wav",
    ".hidden.wav",
    "dots...wav",
    " .wav",
    "title: 'yaml' # [x] {y}.wav",
    "MIXED.Wav",
]


class Names(RoadTest):
    def test_names(self):
        engine = self.engine()
        spoken = self.recording(engine)
        expected = results(engine.transcribe(spoken, quick=False))
        self.assertIn(b"much", expected["Transcript.txt"])
        expected["segments.json"] = json.loads(expected["segments.json"])["segments"]
        jobs = {}
        for name in NAMES:
            path = os.path.join(engine.scratch, name)
            shutil.copy(spoken, path)
            with self.subTest(name):
                jobs[name] = engine.process(path, quick=False)
        folders = set()
        for name, job in jobs.items():
            with self.subTest(name):
                entry = engine.wait(job, "ready")
                print(f"{name!r}: {os.path.basename(entry['call_dir'])!r}")
                self.assertEqual(os.path.dirname(entry["call_dir"]), engine.library)
                self.assertFalse(os.path.basename(entry["call_dir"]).startswith((".", "-")), entry["call_dir"])
                self.assertNotIn("\n", entry["call_dir"])
                folders.add(entry["call_dir"])
                self.assertTrue(entry["title"].strip())
                self.assertNotIn("\n", entry["title"])
                found = results(entry)
                segments = json.loads(found.pop("segments.json"))
                self.assertEqual(segments["title"], entry["title"])
                self.assertEqual(found | {"segments.json": segments["segments"]}, expected)
                self.audio(entry)
                head = read(entry["call_dir"], "Summary.md").split("\n---\n")[0]
                for line in head.split("\n")[1:]:
                    self.assertRegex(line, r"\A(\w+: ?|  ?- )", "front matter holds one key to a line")
        self.assertEqual(len(folders), len(NAMES))

    def test_relative(self):
        """A path that is not full counts from where one stands."""
        engine = self.engine()
        self.recording(engine, name="-dash.wav")
        self.recording(engine, name="plain.wav")
        reply = engine.call("process", "plain.wav", "--background", "--engine", "auto", "--language", "en",
                            "--no-speakers", cwd=engine.scratch)
        self.assertEqual((reply.status, reply.err), (0, ""))
        reply = engine.call("process", "./-dash.wav", "--background", "--engine", "auto", "--language", "en",
                            "--no-speakers", cwd=engine.scratch)
        self.assertEqual((reply.status, reply.err), (0, ""))
        entries = engine.history()
        self.assertEqual(len(entries), 2)
        for entry in entries:
            self.assertIn("much", transcript(engine.wait(entry["id"], "ready")))

    def test_not_text(self):
        """A name that is no UTF-8 is transcribed or refused in a clear line; nothing half."""
        engine = self.engine()
        path = os.path.join(os.fsencode(engine.scratch), b"\xff\xfe.wav")
        shutil.copy(os.fsencode(self.recording(engine)), path)
        reply = engine.call("process", path, "--background", "--engine", "auto", "--language", "en", "--no-speakers")
        if reply.status == 0:
            for entry in engine.history():
                self.assertIn("much", transcript(engine.wait(entry["id"], "ready")))
        else:
            self.assert_one_line(reply, 1)
            self.assertEqual(engine.history(), [])
            self.assertEqual(engine.listing(), [])

    def test_linked(self):
        """A link is followed: the recording itself is kept."""
        engine = self.engine()
        spoken = self.recording(engine)
        os.symlink(spoken, os.path.join(engine.scratch, "link.wav"))
        entry = engine.transcribe(os.path.join(engine.scratch, "link.wav"))
        self.assertFalse(os.path.islink(self.audio(entry)))
        self.assertEqual(os.path.getsize(self.audio(entry)), os.path.getsize(spoken))


if __name__ == "__main__":
    main()
