#!/usr/bin/env python3
"""Whisper, with a program in whisper-cli's place that behaves like it: what is kept, what is begun again, what stays."""

import contextlib
import hashlib
import json
import os

from road import SENTENCES, SOURCE, RoadTest, main, results, several, steady, transcript, until

STAND_IN = os.path.join(SOURCE, "runtime", "tests", "stand-in", "whisper-cli")
MODEL = b"lmgg and what follows"


class Whisper(RoadTest):
    def whisper(self):
        engine = self.engine()
        self.knobs = os.path.join(engine.home, "stand-in")
        os.makedirs(self.knobs)
        engine.environment.update(TUPPI_WHISPER_CLI=STAND_IN, STAND_IN_WHISPER=self.knobs)
        self.add_model(engine, MODEL)
        return engine

    def add_model(self, engine, content):
        """As the only one, in the place of one that was there before."""
        models = os.path.join(engine.folder, "models")
        os.makedirs(models, exist_ok=True)
        for name in os.listdir(models):
            os.remove(os.path.join(models, name))
        sha256 = hashlib.sha256(content).hexdigest()
        with open(os.path.join(models, sha256 + ".bin"), "wb") as file:
            file.write(content)
        with open(os.path.join(models, "models.json"), "w", encoding="utf-8") as file:
            json.dump({"models": [{"id": "mine", "name": "Mine", "kind": "whisper", "repo": "owner/whisper-turbo",
                                   "file": "ggml-turbo.bin", "sha256": sha256, "size": len(content)}]}, file)

    def set(self, name, value=""):
        with open(os.path.join(self.knobs, name), "w", encoding="utf-8") as file:
            file.write(value)

    def unset(self, name):
        os.remove(os.path.join(self.knobs, name))

    def runs(self):
        with contextlib.suppress(FileNotFoundError):
            with open(os.path.join(self.knobs, "runs"), encoding="utf-8") as file:
                return [json.loads(line) for line in file]
        return []

    def recording(self, engine, texts=SENTENCES[:4], name="talk.wav"):
        return several(os.path.join(engine.scratch, name), *texts)

    def long_recording(self, engine):
        """Enough for two groups of segments."""
        return self.recording(engine, SENTENCES * 9, "long talk.wav")

    def nothing_left(self, engine):
        until(lambda: not os.path.exists(os.path.join(engine.folder, "store", "work")), "the end of the work folder")

    def test_takes_the_language_that_it_hears(self):
        engine = self.whisper()
        self.set("language", "uk")
        self.set("behaviour", "split")
        entry = engine.transcribe(self.recording(engine), language="auto")
        self.assertEqual((entry["engine"], entry["language"]), ("whisper", "uk"))
        self.assertIn("Ну, heard", transcript(entry))
        self.assertIn("щось.", transcript(entry))
        self.assertEqual([run["language"] for run in self.runs()], ["auto"])
        self.assertGreater(self.runs()[0]["priority"], 0)
        self.nothing_left(engine)

    def test_every_choice(self):
        engine = self.whisper()
        path = self.recording(engine)
        for choice in ("whisper", "custom:mine", "auto"):
            entry = engine.transcribe(path, engine=choice, language="pl")
            self.assertEqual((entry["engine"], entry["language"], entry["engine_choice"]), ("whisper", "pl", choice))
        self.assertEqual([run["language"] for run in self.runs()], ["pl"] * 3)
        self.assertIn("ggml-large-v3.bin", self.refused(engine, path, engine_name="whisper-large"))
        self.assertIn("tlh", self.refused(engine, path, engine_name="whisper", language="tlh"))

    def test_failures(self):
        engine = self.whisper()
        path = self.recording(engine)
        for behaviour in ("crash", "refuse", "garbage", "cut-off"):
            with self.subTest(behaviour):
                self.set("behaviour", behaviour)
                before = len(self.runs())
                self.assertIn("again and again", self.refused(engine, path, engine_name="whisper"))
                self.assertEqual(len(self.runs()), before + 3)
                self.nothing_left(engine)
        self.set("behaviour", "nothing")
        self.assertEqual(self.refused(engine, path, engine_name="whisper"), "Запис містить тишу")
        self.set("behaviour", "crash-once")
        self.unset("crashed")
        engine.transcribe(path, engine="whisper", language="uk")

    def test_model_that_cannot_be_loaded(self):
        engine = self.whisper()
        models = os.path.join(engine.folder, "models")
        name, = (n for n in os.listdir(models) if n.endswith(".bin"))
        path = self.recording(engine)
        with open(os.path.join(models, name), "wb") as file:
            file.write(b"x" * len(MODEL))
        self.assertIn("could not load the speech model “Mine”", self.refused(engine, path, engine_name="whisper"))
        os.remove(os.path.join(models, name))
        self.assertIn("missing or damaged", self.refused(engine, path, engine_name="whisper"))

    def test_each_job_takes_the_model_that_is_there(self):
        """Also where one follows another, and the models have the same name."""
        engine = self.whisper()
        path = self.recording(engine)
        self.set("closed")
        first = engine.process(path, engine="whisper", language="uk")
        second = engine.process(path, engine="whisper", language="uk")
        until(self.runs, "the first run")
        self.add_model(engine, b"one that cannot be loaded")
        self.unset("closed")
        engine.wait(first, "ready")
        self.assertIn("could not load the speech model", engine.wait(second, "failed")["error"])

    def test_pause_cancel_and_kill_at_any_moment(self):
        engine = self.whisper()
        path = self.long_recording(engine)
        self.set("language", "uk")
        expected = results(engine.transcribe(path, engine="whisper", language="auto"))
        undisturbed = len(self.runs())
        self.assertGreaterEqual(undisturbed, 2)

        self.set("closed")
        job = engine.process(path, engine="whisper", language="auto")
        until(lambda: len(self.runs()) > undisturbed, "the first run")
        first = engine.status()["latest_job"]["progress"]
        until(lambda: engine.status()["latest_job"]["progress"] != first, "progress within a group")
        shown = steady(lambda: engine.status()["latest_job"]["progress"], "progress of a recogniser that waits", 30)
        self.assertEqual(engine.kept(job), [])
        program = self.runs()[-1]["pid"]
        engine.ask("pause", job)
        until(lambda: engine.state(program) in "ZX", "the end of a paused recogniser")
        self.nothing_left(engine)
        steady(engine.ticks, "processor time of a paused job")

        # Killed the hard way, in the first group and with one group kept.
        runs = len(self.runs())
        engine.ask("continue", job)
        until(lambda: len(self.runs()) > runs, "the run after the pause")
        program = self.runs()[-1]["pid"]
        engine.kill_worker()
        until(lambda: engine.state(program) in "ZX", "the end of the recogniser of a killed worker")
        self.assertTrue(os.path.isdir(os.path.join(engine.folder, "store", "work")))
        engine.ask("resume")
        until(lambda: len(self.runs()) > runs + 1, "the run after the kill")
        self.assertEqual(engine.status()["latest_job"]["progress"], shown)
        # Only the first group is heard without the language being known.
        self.set("closed", "uk")
        until(lambda: self.runs()[-1]["language"] == "uk", "the second group")
        kept = engine.kept(job)
        self.assertGreater(len(kept), 1)
        engine.kill_worker()
        attempts = engine.attempts(job)
        engine.ask("cancel", job)
        self.unset("closed")
        engine.ask("retry", job)
        entry = engine.wait(job, "ready")
        self.assertEqual(engine.kept(job)[:len(kept)], kept)
        self.assertEqual(engine.attempts(job)[:len(kept)], attempts[:len(kept)])
        self.assertEqual(entry["language"], "uk")
        self.assertEqual(results(entry), expected)
        self.nothing_left(engine)

    def test_cancelled_while_it_hangs(self):
        engine = self.whisper()
        self.set("behaviour", "hang")
        job = engine.process(self.recording(engine), engine="whisper", language="uk")
        until(self.runs, "the run")
        engine.ask("cancel", job)
        until(lambda: engine.state(self.runs()[-1]["pid"]) in "ZX", "the end of a cancelled recogniser")
        self.assertEqual(engine.job(job)["status"], "cancelled")
        self.nothing_left(engine)


if __name__ == "__main__":
    main()
