#!/usr/bin/env python3
"""The command line as its callers know it: argument forms, replies, exit statuses."""

import contextlib
import datetime
import json
import os
import re
import shutil
import sqlite3

from road import ACTIVE, ENDED, SENTENCES, RoadTest, main, several, until
from seeded import seed

DATE = r"\A\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\Z"
# Compared with a moment of the reader's: it must tell its zone.
MOMENT = r"\A\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d+)?(Z|[+-]\d\d:\d\d)\Z"

# Arguments that no caller may use: all exit with 2 and one line.
WRONG = [
    (),
    ("",),
    ("nonsense",),
    ("--json",),
    ("process",),
    ("process", "--background"),
    ("process", "{wav}", "{wav}"),
    ("process", "{wav}", "--nonsense"),
    ("process", "{wav}", "--background", "--engine"),
    ("process", "{wav}", "--background", "--language"),
    ("process", "{wav}", "--background", "--engine", ""),
    ("process", "{wav}", "--background", "--language", ""),
    ("process", "{wav}", "--speakers", "--no-speakers"),
    ("history", "extra"),
    ("history", "--nonsense"),
    ("status", "extra"),
    ("status", "--nonsense"),
    ("settings", "extra"),
    ("settings", "--nonsense"),
    ("doctor", "extra"),
    ("resume", "extra"),
    ("pause",),
    ("pause", "1", "2"),
    ("continue",),
    ("cancel",),
    ("retry",),
    ("retry", "--nonsense"),
]


class Contract(RoadTest):
    def assert_entry(self, entry):
        for key in ("id", "status", "title", "call_dir", "engine_choice", "language", "recorded_at"):
            self.assertIsInstance(entry[key], str, key)
            self.assertTrue(entry[key], key)
        for key in ("paused", "hidden"):
            self.assertIsInstance(entry[key], bool, key)
        self.assertIn(entry["status"], (*ACTIVE, *ENDED, "paused"))
        self.assertTrue(os.path.isabs(entry["call_dir"]))
        self.assertRegex(entry["recorded_at"], DATE)
        for key in ("error", "engine", "completed_at"):
            self.assertIsInstance(entry.get(key), (str, type(None)), key)
        self.assertEqual(entry["status"] == "failed", bool(entry.get("error")))
        if entry["status"] in ("ready", "failed"):
            self.assertRegex(entry["completed_at"], MOMENT)
        if entry["status"] in ACTIVE:
            self.assertIsNone(entry.get("completed_at"))
        if entry.get("duration_seconds") is not None:
            self.assertIsInstance(entry["duration_seconds"], (int, float))
            self.assertNotIsInstance(entry["duration_seconds"], bool)
            self.assertGreater(entry["duration_seconds"], 0)
        self.assertNotRegex(entry.get("engine") or "", re.compile("parakeet|whisper", re.I))

    def assert_status(self, status, jobs):
        self.assertIsInstance(status, dict)
        self.assertTrue(os.path.isabs(status["library"]))
        if not jobs:
            self.assertIsNone(status["latest_job"])
            return
        self.assertIn(status["latest_job"]["id"], jobs)
        progress = status["latest_job"].get("progress")
        if progress is not None:
            self.assertRegex(progress, r"\A(\d+%|\d+/\d+)\Z")

    def test_before_anything(self):
        engine = self.engine()
        # Nothing is there yet, not even the store.
        self.assertEqual(engine.history(), [])
        self.assert_status(engine.status(), [])
        self.assertEqual(engine.status()["library"], engine.library)
        self.assertEqual(json.loads(engine.ask("settings", "--json").out)["library"], engine.library)
        self.assertEqual(engine.ask("resume").out, "")
        self.assertFalse(engine.workers())

    def test_every_form(self):
        engine = self.engine()
        path = self.recording(engine)
        long = several(os.path.join(engine.scratch, "long.wav"), *SENTENCES[:3])
        forms = [
            ("--no-clean", "--no-analyze", "--speakers"),
            ("--no-clean", "--no-analyze", "--no-speakers"),
            ("--speakers",),
            ("--no-speakers",),
        ]
        jobs = [engine.process(path, *form, engine=name, language=language)
                for form, (name, language) in zip(forms, [("auto", "auto"), ("auto", "en")] * 2)]
        states = set()

        def ended():
            history = engine.history()
            for entry in history:
                self.assert_entry(entry)
                states.add(entry["status"])
            self.assertEqual(sorted(e["id"] for e in history), sorted(jobs))
            self.assert_status(engine.status(), jobs)
            return all(e["status"] not in ACTIVE for e in history)

        until(ended, lambda: f"the end of all: {states}")
        self.assertIn("queued", states)
        for job, language in zip(jobs, ("auto", "en", "auto", "en")):
            entry = engine.wait(job, "ready")
            self.assertEqual(entry["engine_choice"], "auto")
            self.assertEqual(entry["language"], "en", f"asked for: {language}")

        job = engine.process(long)
        for command, field in (("pause", True), ("continue", False)):
            reply = engine.ask(command, job)
            self.assertIs(engine.job(job)["paused"], field, reply)
            self.assert_entry(engine.job(job))
        engine.ask("cancel", job)
        self.assert_entry(engine.wait(job, "cancelled"))
        engine.ask("retry", job)
        self.assert_entry(engine.job(job))
        engine.ask("resume")
        self.assert_entry(engine.wait(job, "ready"))

    def test_dates(self):
        engine = self.engine()
        engine.environment["TZ"] = "Asia/Tokyo"
        path = self.recording(engine)
        recorded = datetime.datetime(2020, 2, 3, 4, 5, 6, tzinfo=datetime.timezone(datetime.timedelta(hours=9)))
        os.utime(path, (recorded.timestamp(),) * 2)
        before = datetime.datetime.now(datetime.timezone.utc).replace(microsecond=0)
        entry = engine.transcribe(path)
        after = datetime.datetime.now(datetime.timezone.utc)
        self.assertEqual(entry["recorded_at"], "2020-02-03T04:05:06")
        self.assertRegex(entry["completed_at"], MOMENT)
        completed = datetime.datetime.fromisoformat(entry["completed_at"].replace("Z", "+00:00"))
        self.assertLessEqual(before, completed)
        self.assertLessEqual(completed, after)

    def test_settings(self):
        engine = self.engine()
        for library in ("records", "Записи  з пробілами", "it's \"quoted\" $HOME"):
            library = os.path.join(engine.home, library)
            engine.ask("settings", "--library=" + library, "--json")
            self.assertEqual(json.loads(engine.ask("settings", "--json").out)["library"], library)
            self.assertEqual(engine.status()["library"], library)
        for form in ("records/", "./records", "other/../records", "records/."):
            engine.ask("settings", "--library=" + os.path.join(engine.home, form), "--json")
            self.assertEqual(engine.status()["library"], os.path.join(engine.home, "records"))
        os.symlink("records", os.path.join(engine.home, "link"))
        engine.ask("settings", "--library=" + os.path.join(engine.home, "link"), "--json")
        self.assertEqual(engine.status()["library"], os.path.join(engine.home, "link"), "as the user chose it")
        engine.transcribe(self.recording(engine))

    def test_settings_that_cannot_be(self):
        """A file stands in the way; a path depends on where one stands; a name is no text or too long."""
        engine = self.engine()
        kept, listing = engine.status()["library"], sorted(os.listdir(engine.home))
        os.symlink("nowhere", os.path.join(engine.scratch, "broken"))
        for wrong in (engine.path, engine.path + "/inside", "records", "", ".", "~/records", "file://" + engine.home,
                      os.path.join(engine.home, "bad \udcff name"), os.path.join(engine.home, "x" * 300),
                      os.path.join(engine.home, "made", "x" * 300), os.path.join(engine.scratch, "broken"),
                      "/proc/nothing", "/dev/null"):
            with self.subTest(wrong):
                self.assert_one_line(engine.call("settings", "--library=" + wrong, "--json"), 1)
                self.assertEqual(engine.status()["library"], kept)
                self.assertEqual(sorted(os.listdir(engine.home)), listing, "nothing is left behind")

    def test_library_that_vanishes(self):
        engine = self.engine()
        path = self.recording(engine)
        engine.library = os.path.join(engine.home, "stick", "calls")
        engine.ask("settings", "--library=" + engine.library, "--json")
        entry = engine.transcribe(path)
        away = os.path.join(engine.home, "away")
        os.rename(os.path.join(engine.home, "stick"), away)
        self.assertEqual(json.loads(engine.ask("settings", "--json").out)["library"], engine.library)
        self.assertEqual(engine.history(), [entry])
        self.assertIn("Connect its disk", self.refused(engine, path))
        self.assertFalse(os.path.exists(os.path.join(engine.home, "stick")))
        os.rename(away, os.path.join(engine.home, "stick"))
        engine.transcribe(path)
        # The usual one is made again.
        os.rename(os.path.join(engine.home, "stick"), away)
        engine.library = os.path.join(engine.home, "Documents", "CallsRawFiles")
        engine.ask("settings", "--library=" + engine.library, "--json")
        os.rmdir(engine.library)
        engine.transcribe(path)

    def test_doctor(self):
        engine = self.engine()
        checks = json.loads(engine.ask("doctor", "--json").out)
        self.assertIsInstance(checks, list)
        self.assertTrue(checks)
        for check in checks:
            self.assertIsInstance(check["check"], str)
            self.assertTrue(check["check"])
            self.assertIsInstance(check["ok"], bool)
            self.assertIsInstance(check["optional"], bool)
        self.assertEqual([c for c in checks if not c["ok"] and not c["optional"]], [])

    def test_doctor_names_a_damaged_speech_model(self):
        engine = self.engine()
        for damaged in (None, "en-us.lm.bin", "cmudict-en-us.dict", "en-us/means", "en-us/mdef"):
            model = os.path.join(engine.home, "model")
            shutil.copytree("/usr/share/pocketsphinx/model/en-us", model)
            if damaged:
                path = os.path.join(model, damaged)
                os.truncate(path, os.path.getsize(path) // 3 * 2 - 2)
            engine.environment["TUPPI_POCKETSPHINX_MODEL"] = model
            with self.subTest(damaged):
                self.assertEqual(list(engine.troubles()),
                                 ["Speech recogniser (PocketSphinx, English)"] if damaged else [])
            shutil.rmtree(model)

    def test_doctor_does_not_call_damaged_what_is_only_slow(self):
        engine = self.engine()
        worker = os.path.join(engine.folder, "runtime", "bin", "tuppi-engine-worker")
        os.remove(worker)
        with open(worker, "w", encoding="ascii") as file:
            file.write("""#!/bin/sh\necho '{"decoding":""}'\nexec sleep 600\n""")
        os.chmod(worker, 0o755)
        troubles = engine.troubles()
        self.assertEqual(troubles, {"Speech recogniser (PocketSphinx, English)":
                                    "The computer is too busy to try it out. Ask again later."})

    def test_doctor_remembers_a_worker_that_is_well(self):
        """As long as nothing of it has changed; then it is looked at again."""
        engine = self.engine()
        bin_folder = os.path.join(engine.folder, "runtime", "bin")
        worker, aside = os.path.join(bin_folder, "tuppi-engine-worker"), os.path.join(bin_folder, "aside")
        memory = os.path.join(os.path.dirname(engine.store), "self-test")
        model = os.path.join(engine.home, "model")
        shutil.copytree("/usr/share/pocketsphinx/model/en-us", model)
        engine.environment["TUPPI_POCKETSPHINX_MODEL"] = model
        recogniser, decoding = "Speech recogniser (PocketSphinx, English)", "Decoding of audio and video (FFmpeg)"

        def remembered(after=None):
            """The file of what is remembered, once another than `after` is there: what has just changed is not."""
            def found():
                self.assertEqual(engine.troubles(), {})
                there = os.path.exists(memory) and os.stat(memory).st_ino
                return there != after and there
            return until(found, "the worker is remembered")

        first = remembered()
        self.assertEqual(engine.troubles(), {})
        self.assertEqual(os.stat(memory).st_ino, first)
        with self.subTest("a part of the model"):
            means = os.path.join(model, "en-us", "means")
            whole = os.path.join(engine.home, "means")
            shutil.copy2(means, whole)
            os.truncate(means, os.path.getsize(means) // 2)
            self.assertEqual(list(engine.troubles()), [recogniser])
            shutil.copy2(whole, means)
            remembered(after=first)
        with self.subTest("the program"):
            os.chmod(worker, 0o644)
            self.assertEqual(list(engine.troubles()), [recogniser, decoding])
            os.chmod(worker, 0o755)
            remembered()
            os.rename(worker, aside)
            self.assertEqual(list(engine.troubles()), [recogniser, decoding])
            os.rename(aside, worker)
        with self.subTest("a day"):
            third = remembered()
            long_ago = os.stat(memory).st_mtime - 25 * 3600
            os.utime(memory, (long_ago, long_ago))
            remembered(after=third)
        with self.subTest("garbage"):
            with open(memory, "wb") as file:
                file.write(b"\t\n\0\t/dev/null")
            remembered(after=os.stat(memory).st_ino)
            with open(memory, "rb") as file:
                self.assertIn(worker.encode(), file.read())

    def test_wrong_arguments(self):
        engine = self.engine()
        path = self.recording(engine)
        for arguments in WRONG:
            arguments = [a.format(wav=path) for a in arguments]
            with self.subTest(arguments):
                self.assert_one_line(engine.call(*arguments), 2)
        self.assertEqual(engine.history(), [])
        self.assertEqual(engine.listing(), [])

    def test_unknown_job(self):
        engine = self.engine()
        known = engine.transcribe(self.recording(engine))
        for command in ("pause", "continue", "cancel", "retry"):
            for job in ("nonsense", "999999", "", "1 OR 1=1", "'; DROP TABLE jobs; --", known["id"] + "0"):
                with self.subTest(command=command, job=job):
                    self.assert_one_line(engine.call(command, job), 1)
        self.assertEqual(engine.history(), [known])

    def test_damaged_store(self):
        """Said, not mended by throwing it away."""
        engine = self.engine()
        path = self.recording(engine)
        engine.transcribe(path)
        until(lambda: not engine.processes(), "the end of the worker")
        listing = engine.listing()
        for name in os.listdir(os.path.dirname(engine.store)):
            if name.startswith("jobs.sqlite-"):
                os.remove(os.path.join(os.path.dirname(engine.store), name))
        garbage = b"This is no list of transcripts.\n" * 500
        with open(engine.store, "wb") as file:
            file.write(garbage)
        for command in (("history", "--json"), ("status", "--json"), ("resume",), ("pause", "1"),
                        ("process", path, "--background", "--engine", "auto", "--language", "en", "--no-speakers")):
            with self.subTest(command):
                self.assert_one_line(engine.call(*command), 1)
        self.assertEqual(list(engine.troubles()), ["List of transcripts"])
        with open(engine.store, "rb") as file:
            self.assertEqual(file.read(), garbage)
        self.assertEqual(engine.listing(), listing)

    def test_history_is_streamed(self):
        """Many more jobs take no more memory: the first go out before the last are read."""
        engine = self.engine()
        # Where the engine is built with the address sanitizer, that would keep what was freed.
        engine.environment["ASAN_OPTIONS"] = "quarantine_size_mb=1:thread_local_quarantine_size_kb=64"
        first = seed(engine)
        engine.ask("history", "--json")

        def filled(jobs):
            """Bytes of the reply with so many jobs, and the memory that it took."""
            with contextlib.closing(sqlite3.connect(engine.store, timeout=30)) as base:
                names = ", ".join(row[1] for row in base.execute("PRAGMA table_info(jobs)")
                                  if row[1] not in ("seq", "id"))
                for number in range(base.execute("SELECT count(*) FROM jobs").fetchone()[0], jobs):
                    job = f"{first['id']}-{number}"
                    seq = base.execute(f"INSERT INTO jobs (id, {names}) SELECT ?, {names} FROM jobs WHERE seq = 1",
                                       (job,)).lastrowid
                    base.execute("INSERT INTO entries VALUES (?, ?)", (seq, json.dumps({**first, "id": job}).encode()))
                base.commit()
            reply = engine.ask("history", "--json").out
            self.assertEqual(len(json.loads(reply)), jobs)
            # How much of the libraries is in memory is up to the system: the least of a few runs is the command's own.
            costs = [engine.cost("history", "--json") for _ in range(3)]
            self.assertEqual({cost.status for cost in costs}, {0})
            return len(reply), min(cost.megabytes for cost in costs) * 2**20

        _, few = filled(5000)  # with these the store's own cache of pages is full
        size, many = filled(20000)
        print(f"{many - few:.0f} bytes more for a reply of {size}")
        self.assertLess(many - few, size / 2)

    def test_other_locales(self):
        engine = self.engine()
        path = self.recording(engine, name="запис 🐈.wav")
        engine.environment = {k: v for k, v in engine.environment.items()
                              if k != "LANG" and not k.startswith("LC_")}
        entry = engine.transcribe(path)
        self.assertIn("запис 🐈", entry["title"])
        engine.environment["LC_ALL"] = "C"
        self.assertEqual(engine.history(), [entry])
        engine.environment["LC_ALL"] = "C.UTF-8"
        self.assertEqual(engine.history(), [entry])
        self.assert_one_line(engine.call("pause", "nonsense"), 1)

    def test_changed_file(self):
        """Whoever watches the folder sees every change, and none where there was none."""
        engine = self.engine()
        path = self.recording(engine)
        long = several(os.path.join(engine.scratch, "long.wav"), *SENTENCES[:3])
        changed = os.path.join(engine.folder, "changed")

        def state():
            if not os.path.exists(changed):
                return None
            found = os.stat(changed)
            return found.st_ino, found.st_mtime_ns

        def replaced(action, name):
            before = state()
            result = action()
            until(lambda: state() is not None and state() != before, f"a change after {name}")
            return result

        first = replaced(lambda: engine.process(path), "process")
        replaced(lambda: engine.wait(first, "ready"), "the work")
        job = engine.process(long)
        for command in ("pause", "continue", "cancel", "retry"):
            replaced(lambda command=command: engine.ask(command, job), command)
        engine.wait(job, "ready")
        replaced(lambda: engine.ask("settings", "--library=" + engine.home + "/other", "--json"), "settings")
        until(lambda: engine.worker() is None, "the end of the worker")
        before = state()
        for command in (("history", "--json"), ("status", "--json"), ("settings", "--json"), ("doctor", "--json")):
            engine.ask(*command)
            self.assertEqual(state(), before, command)


if __name__ == "__main__":
    main()
