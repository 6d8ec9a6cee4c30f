#!/usr/bin/env python3
"""What cannot be transcribed: a clear sentence each time, nothing lost, nothing left behind."""

import os
import shutil

from road import SAMPLE, SENTENCES, Engine, RoadTest, ffmpeg, main, say, several, silence, steady, transcript


class BadInput(RoadTest):
    @classmethod
    def setUpClass(cls):
        cls.larkspire = Engine()
        cls.addClassCleanup(cls.larkspire.close)

    @classmethod
    def tearDownClass(cls):
        # After all that, a recording is transcribed as ever.
        entry = cls.larkspire.transcribe(say(os.path.join(cls.larkspire.scratch, "next.wav"), "Thank you very much."))
        assert "much" in transcript(entry), entry

    def path(self, name):
        return os.path.join(self.larkspire.scratch, name)

    def told(self, sentence):
        print(f"{self._testMethodName}: {sentence}")
        return sentence

    def test_text_named_mp3(self):
        with open(self.path("notes.mp3"), "w", encoding="utf-8") as file:
            file.write("Only a text, not a recording.\n" * 40)
        self.told(self.refused(self.larkspire, self.path("notes.mp3")))

    def test_empty(self):
        open(self.path("empty.wav"), "w").close()
        self.told(self.refused(self.larkspire, self.path("empty.wav")))

    def test_refusal_with_a_name_of_two_lines(self):
        open(self.path("two\nlines\r.wav"), "w").close()
        self.told(self.refused(self.larkspire, self.path("two\nlines\r.wav")))

    def test_noise_of_bytes(self):
        with open(self.path("bytes.m4a"), "wb") as file:
            file.write(bytes(range(256)) * 400)
        self.told(self.refused(self.larkspire, self.path("bytes.m4a")))

    def test_truncated(self):
        # The index of this one stands at its end, and is cut off.
        with open(SAMPLE, "rb") as whole, open(self.path("cut.m4a"), "wb") as cut:
            cut.write(whole.read()[:200000])
        self.told(self.refused(self.larkspire, self.path("cut.m4a")))

    def test_truncated_behind_its_index(self):
        # What is there is transcribed.
        spoken = say(self.path("whole.wav"), "My brother will look after the water. Good morning. Good morning.")
        ffmpeg("-i", spoken, "-c:a", "aac", "-movflags", "+faststart", self.path("fast.m4a"))
        size = os.path.getsize(self.path("fast.m4a"))
        with open(self.path("fast.m4a"), "r+b") as file:
            file.truncate(size * 2 // 3)
        entry = self.larkspire.transcribe(self.path("fast.m4a"))
        self.assertIn("brother", transcript(entry))

    def test_truncated_wav(self):
        spoken = say(self.path("spoken.wav"), "My brother will look after the water. Good morning.")
        with open(spoken, "r+b") as file:
            file.truncate(os.path.getsize(spoken) * 2 // 3)
        entry = self.larkspire.transcribe(spoken)
        self.assertIn("brother", transcript(entry))

    def test_folder(self):
        os.mkdir(self.path("folder.wav"))
        self.told(self.refused(self.larkspire, self.path("folder.wav")))

    def test_missing(self):
        sentence = self.told(self.refused(self.larkspire, self.path("never was.wav")))
        self.assertIn("never was.wav", sentence)

    def test_pipe(self):
        # Opening it for reading would wait for ever.
        os.mkfifo(self.path("pipe.wav"))
        self.told(self.refused(self.larkspire, self.path("pipe.wav")))

    def test_silence(self):
        self.assertEqual(self.refused(self.larkspire, silence(self.path("silence.wav"), 3)), "Запис містить тишу")

    def test_quiet_room(self):
        # Nobody speaks, but the microphone hears the room.
        ffmpeg("-f", "lavfi", "-i", "anoisesrc=a=0.0005:d=4:r=44100:seed=3", "-c:a", "aac", self.path("room.m4a"))
        self.assertEqual(self.refused(self.larkspire, self.path("room.m4a")), "Запис містить тишу")

    def test_no_sound_track(self):
        ffmpeg("-f", "lavfi", "-i", "color=c=navy:s=64x48:r=5:d=2", "-c:v", "mpeg4", self.path("silent film.mp4"))
        self.told(self.refused(self.larkspire, self.path("silent film.mp4")))

    def test_unknown_language(self):
        path = self.recording(self.larkspire)
        for language in ("uk", "de"):
            self.told(self.refused(self.larkspire, path, language=language))

    def test_models_that_are_not_installed(self):
        path = self.recording(self.larkspire)
        for model in ("parakeet", "whisper", "whisper-large", "custom:0123"):
            with self.subTest(model):
                if shutil.which("whisper-cli") and model.startswith("whisper"):
                    self.skipTest("a whisper-cli is installed here")
                self.told(self.refused(self.larkspire, path, engine_name=model))

    def test_vanished_while_it_waited(self):
        job = self.larkspire.process(several(self.path("long.wav"), *SENTENCES[:4]))
        self.larkspire.ask("pause", job)
        steady(self.larkspire.ticks, "processor time of a paused job")
        folder, aside = self.larkspire.job(job)["call_dir"], self.path("aside")
        os.rename(folder, aside)
        self.larkspire.ask("continue", job)
        self.told(self.larkspire.wait(job, "failed")["error"])
        self.larkspire.ask("retry", job)
        self.larkspire.wait(job, "failed")
        self.assertFalse(os.path.exists(self.larkspire.job(job)["call_dir"]))
        # Found again, it goes on; thrown away after its end, it leaves the list.
        os.rename(aside, folder)
        self.larkspire.ask("retry", job)
        self.larkspire.wait(job, "ready")
        shutil.rmtree(folder)
        self.assertNotIn(job, [entry["id"] for entry in self.larkspire.history()])

    def test_nothing_stays_after_a_refusal(self):
        engine = self.engine()
        self.refused(engine, self.path("never was.wav"))
        self.assertLessEqual(set(os.listdir(engine.folder)), {"runtime", "store", "changed"})
        self.assertEqual(engine.listing(), [])


if __name__ == "__main__":
    main()
