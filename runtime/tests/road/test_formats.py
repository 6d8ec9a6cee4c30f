#!/usr/bin/env python3
"""Every extension that is accepted, in the queue at once."""

import os
import wave

from road import RoadTest, ffmpeg, main, say, transcript, wer

TEXT = "My brother will look after the water and the lights."
PICTURE = ("-f", "lavfi", "-i", "color=c=navy:s=64x48:r=5:d=3", "-shortest")

FORMATS = {
    "m4a": ("-c:a", "aac"),
    "mp3": ("-c:a", "libmp3lame"),
    "wav": ("-c:a", "pcm_s16le"),
    "mp4": (*PICTURE, "-c:v", "mpeg4", "-c:a", "aac"),
    "mov": (*PICTURE, "-c:v", "mpeg4", "-c:a", "pcm_s16le"),
    "aac": ("-c:a", "aac"),
    "flac": ("-c:a", "flac"),
    "ogg": ("-c:a", "libvorbis"),
    "opus": ("-c:a", "libopus"),
    "webm": (*PICTURE, "-c:v", "libvpx", "-c:a", "libopus"),
    "aiff": ("-c:a", "pcm_s16be"),
    "aif": ("-c:a", "pcm_s24be"),
    "caf": ("-c:a", "pcm_s16le"),
    "mkv": (*PICTURE, "-c:v", "mpeg4", "-c:a", "flac"),
}

# What recordings come in besides: two channels, other rates and sample formats, a capital extension, a picture in front
# of the sound, a wrong extension.
ODD = {
    "stereo 44100.wav": ("-ac", "2", "-ar", "44100"),
    "eight bit 8000.wav": ("-c:a", "pcm_u8", "-ar", "8000"),
    "float 96000.WAV": ("-c:a", "pcm_f32le", "-ar", "96000"),
    "six channels.m4a": ("-ac", "6", "-ar", "48000", "-c:a", "aac"),
    "really flac.mp3": ("-c:a", "flac", "-f", "flac"),
}


class Formats(RoadTest):
    def transcribe_all(self, recipes):
        engine = self.engine()
        spoken = say(os.path.join(engine.scratch, "spoken.wav"), TEXT)
        with wave.open(spoken) as file:
            length = file.getnframes() / file.getframerate()
        jobs = {}
        for name, options in recipes.items():
            path = os.path.join(engine.scratch, name)
            # Options that add an input belong before those that shape the output.
            ffmpeg("-i", spoken, *options, path)
            jobs[name] = engine.process(path), path
        for name, (job, path) in jobs.items():
            with self.subTest(name):
                entry = engine.wait(job, "ready")
                errors = wer.compare(wer.words(TEXT), wer.words(transcript(entry)))
                print(f"{name}: {transcript(entry).strip()}  {wer.rate(errors):.2f}")
                self.assertLess(wer.rate(errors), 0.5)
                self.assertAlmostEqual(float(entry["duration_seconds"]), length, delta=0.5)
                with open(path, "rb") as original, open(self.audio(entry), "rb") as kept:
                    self.assertEqual(original.read(), kept.read())

    def test_accepted_extensions(self):
        self.assertEqual(len(FORMATS), 14)
        self.transcribe_all({f"spoken.{extension}" if extension != "wav" else "again.wav": options
                             for extension, options in FORMATS.items()})

    def test_odd_recordings(self):
        self.transcribe_all(ODD)


if __name__ == "__main__":
    main()
