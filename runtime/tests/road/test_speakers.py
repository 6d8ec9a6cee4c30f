#!/usr/bin/env python3
"""Two voices in turns: every line has its speaker, also when the worker was killed while it told them apart."""

import json
import os
import re
import subprocess
import wave

from road import RoadTest, main, read, say, silence, technical, transcript, until

SPEAKERS = ("--no-clean", "--no-analyze", "--speakers")
TURNS = (("slt", "Good morning, and thank you for coming in today. We have been working on a new school."),
         ("rms", "There are about twenty people on the team, and we hope to open the doors in September."),
         ("slt", "We need to send the report to the city by Friday, and then we will see."),
         ("rms", "My brother will look after the water and the lights for the whole year."))


class Speakers(RoadTest):
    def conversation(self, engine):
        """The recording, and the second at which each turn but the first begins."""
        parts, starts, at = [], [], 0.0
        for i, (voice, text) in enumerate(TURNS):
            part = say(os.path.join(engine.scratch, f"{i}.wav"), text, voice)
            pause = silence(os.path.join(engine.scratch, f"{i}-pause.wav"), 0.6)
            starts.append(at)
            for path in (part, pause):
                with wave.open(path, "rb") as file:
                    at += file.getnframes() / file.getframerate()
                parts.append(path)
        path = os.path.join(engine.scratch, "conversation.wav")
        subprocess.run(["sox", *parts, path], check=True)
        return path, starts[1:]

    def lines(self, entry):
        return json.loads(read(technical(entry, "segments.json")))["segments"]

    def test_two_voices(self):
        engine = self.engine()
        path, starts = self.conversation(engine)
        entry = engine.transcribe(path, *SPEAKERS)
        found = self.lines(entry)
        self.assertEqual({line["speaker"] for line in found}, {"Speaker 1", "Speaker 2"})
        for line in found:
            middle = (line["start"] + line["end"]) / 2
            turn = sum(start <= middle for start in starts)
            self.assertEqual(line["speaker"], f"Speaker {turn % 2 + 1}", line)
        for line, text in zip(found, transcript(entry).splitlines()):
            self.assertRegex(text, r"\A\[\d\d:\d\d:\d\d\] " + re.escape(f"{line['speaker']}: {line['text']}") + r"\Z")
        self.assertIn("<v Speaker 2>", read(technical(entry, "subtitles.vtt")))
        kept, total = map(int, engine.status()["latest_job"]["progress"].split("/"))
        self.assertEqual(kept, total)

    def test_killed(self):
        engine = self.engine()
        path, _ = self.conversation(engine)
        undisturbed = self.lines(engine.transcribe(path, *SPEAKERS))
        job = engine.process(path, *SPEAKERS)
        until(lambda: len(engine.kept(job)) >= 2, "two kept segments")
        self.assertTrue(engine.kill_worker())
        engine.ask("resume")
        self.assertEqual(self.lines(engine.wait(job, "ready")), undisturbed)

    def test_not_asked_for(self):
        engine = self.engine()
        entry = engine.transcribe(self.recording(engine))
        self.assertEqual({line["speaker"] for line in self.lines(entry)}, {None})


if __name__ == "__main__":
    main()
