#!/usr/bin/env python3
"""Several recordings: one at a time, none lost."""

import contextlib
import os
import sqlite3
import subprocess

from road import ACTIVE, QUICK, SENTENCES, WORKER, RoadTest, main, several, transcript, until, wer


class Queue(RoadTest):
    def test_second_waits_for_the_first(self):
        engine = self.engine()
        first = engine.process(several(os.path.join(engine.scratch, "first.wav"), *SENTENCES[:2]))
        second = engine.process(self.recording(engine, "Thank you very much.", "second.wav"))
        third = engine.process(self.recording(engine, "The children are in the city.", "third.wav"))
        seen = []

        def ended():
            self.assertLessEqual(len(engine.workers()), 1)
            states = {e["id"]: e["status"] for e in engine.history()}
            state = tuple(states[j] for j in (first, second, third))
            if seen[-1:] != [state]:
                seen.append(state)
            self.assertLessEqual(sum(s in ACTIVE and s != "queued" for s in state), 1, seen)
            return all(s not in ACTIVE for s in state)

        until(ended, lambda: f"three ends: {seen}")
        self.assertEqual(seen[-1], ("ready",) * 3)
        # In the order in which they came.
        self.assertIn(("ready", "queued", "queued"),
                      [tuple("queued" if s in ACTIVE else s for s in state) for state in seen])
        self.assertEqual(engine.status()["latest_job"]["id"], third)
        times = [engine.job(j)["completed_at"] for j in (first, second, third)]
        self.assertEqual(times, sorted(times))

    def test_many_at_once(self):
        engine = self.engine()
        texts = {f"{number}.wav": text for number, text in enumerate(
            ["Thank you very much.", "The children are in the city.", "The building will be ready next week."] * 3)}
        running = []
        for name, text in texts.items():
            path = self.recording(engine, text, name)
            running.append(subprocess.Popen(
                engine.command("process", path, "--background", "--engine", "auto", "--language", "en", *QUICK),
                env=engine.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE))
        for process in running:
            out, err = process.communicate(timeout=120)
            self.assertEqual((process.returncode, err), (0, b""), out)
        entries = engine.history()
        self.assertEqual(len(entries), len(texts))
        self.assertEqual(len({e["call_dir"] for e in entries}), len(texts))
        for entry in entries:
            entry = engine.wait(entry["id"], "ready")
            self.assertLessEqual(len(engine.workers()), 1)
            expected = wer.words(texts[entry["title"] + ".wav"])[-1]
            self.assertIn(expected, transcript(entry))

    def test_same_file_twice(self):
        engine = self.engine()
        path = self.recording(engine)
        first, second = engine.process(path), engine.process(path)
        entries = [engine.wait(job, "ready") for job in (first, second)]
        self.assertNotEqual(entries[0]["call_dir"], entries[1]["call_dir"])
        self.assertEqual(transcript(entries[0]), transcript(entries[1]))

    def test_original_may_go(self):
        engine = self.engine()
        first = engine.process(several(os.path.join(engine.scratch, "first.wav"), *SENTENCES[:2]))
        path = self.recording(engine)
        second = engine.process(path)
        os.remove(path)
        engine.wait(first, "ready")
        self.assertIn("much", transcript(engine.wait(second, "ready")))

    def test_killed_before_its_turn(self):
        engine = self.engine()
        jobs = [engine.process(several(os.path.join(engine.scratch, "first.wav"), *SENTENCES[:3])),
                engine.process(self.recording(engine))]
        until(engine.kill_worker, "a worker to kill")
        self.assertEqual(sorted(e["id"] for e in engine.history()), sorted(jobs))
        # "resume" as often as anyone likes: still one worker.
        for _ in range(3):
            engine.ask("resume")
        for job in jobs:
            self.assertLessEqual(len(engine.workers()), 1)
            engine.wait(job, "ready")

    def test_killed_on_the_way_into_the_list(self):
        """Its folder stands in the library, its job not yet in the store."""
        engine = self.engine()
        engine.transcribe(self.recording(engine))
        before = engine.listing()
        process = ["process", self.recording(engine, name="second.wav"), "--background"]
        with contextlib.closing(sqlite3.connect(engine.store, isolation_level=None)) as base:
            base.execute("BEGIN IMMEDIATE")
            killed = subprocess.Popen(engine.command(*process), env=engine.environment)
            until(lambda: any(name.endswith(" second") for name in os.listdir(engine.library)), "the second folder")
            killed.kill()
            killed.wait()
            base.execute("ROLLBACK")
        self.assertEqual(len(engine.history()), 1)
        third = engine.transcribe(self.recording(engine, name="third.wav"))
        folder = os.path.basename(third["call_dir"])
        self.assertEqual([path for path in engine.listing() if path.split(os.sep)[0] != folder], before)

    def test_foreground(self):
        engine = self.engine()
        reply = engine.call("process", self.recording(engine), "--engine", "auto", "--language", "en", *QUICK)
        self.assertEqual(reply.status, 0, reply)
        self.assertNotIn("Error", reply.err)
        self.assertEqual([e["status"] for e in engine.history()], ["ready"])

    def test_foreground_failure(self):
        engine = self.engine()
        path = os.path.join(engine.scratch, "notes.mp3")
        with open(path, "w", encoding="utf-8") as file:
            file.write("Only a text, not a recording.\n" * 40)
        reply = engine.call("process", path, "--engine", "auto", "--language", "en", *QUICK)
        self.assertEqual(reply.status, 1)
        self.assertRegex(reply.err.splitlines()[-1], r"\AError: .*\w")

    def test_foreground_with_a_worker_that_falls_at_once(self):
        engine = self.engine()
        program, starts = os.path.join(engine.folder, "runtime", "bin", WORKER), os.path.join(engine.home, "starts")
        os.rename(program, program + " kept")
        for end in ("exit 1", "kill -SEGV $$"):
            with self.subTest(end):
                with open(program, "w", encoding="ascii") as file:
                    file.write(f"#!/bin/sh\necho >>'{starts}'\n{end}\n")
                os.chmod(program, 0o755)
                reply = engine.call("process", self.recording(engine), "--engine", "auto", "--language", "en", *QUICK)
                self.assert_one_line(reply, 1)
                self.assertIn("call doctor", reply.err)
                with open(starts, encoding="ascii") as file:
                    self.assertEqual(len(file.readlines()), 3)
                os.remove(starts)
        self.assertEqual([e["status"] for e in engine.history()], ["queued"] * 2)
        os.replace(program + " kept", program)
        engine.ask("resume")
        for entry in engine.history():
            engine.wait(entry["id"], "ready")

    def test_moved_library(self):
        engine = self.engine()
        before = engine.transcribe(self.recording(engine))
        elsewhere = os.path.join(engine.home, "Мої записи", "calls")
        engine.ask("settings", "--library=" + elsewhere, "--json")
        self.assertEqual(engine.status()["library"], elsewhere)
        after = engine.transcribe(self.recording(engine, name="second.wav"))
        self.assertEqual(os.path.dirname(after["call_dir"]), elsewhere)
        self.assertEqual(engine.job(before["id"]), before)


if __name__ == "__main__":
    main()
