#!/usr/bin/env python3
"""Speech models from Hugging Face and text models in Ollama: good days, and every kind of bad one."""

import hashlib
import json
import os
import pty
import signal
import subprocess

from road import RoadTest, main, until
from servers import Answer, Hub, Ollama, as_json, model

SMALL = "ggml-small.bin"
UNREACHABLE = "http://127.0.0.1:1"


class ModelTest(RoadTest):
    def setUp(self):
        self.tuppi = self.engine()
        self.tuppi.environment |= {"TUPPI_HUB": UNREACHABLE, "TUPPI_OLLAMA": UNREACHABLE, "NO_PROXY": "*"}
        self.folder = os.path.join(self.tuppi.folder, "models")

    def hub(self):
        hub = Hub()
        self.addCleanup(hub.close)
        self.tuppi.environment["TUPPI_HUB"] = hub.address
        return hub

    def ollama(self, *names):
        ollama = Ollama(*names)
        self.addCleanup(ollama.close)
        self.tuppi.environment["TUPPI_OLLAMA"] = ollama.address
        return ollama

    def models(self):
        return json.loads(self.tuppi.ask("models", "--json").out)

    @staticmethod
    def adding(name="My Whisper", repo="someone/whisper-small", kind="whisper"):
        return "models", "add", "--name=" + name, "--kind=" + kind, "--repo=" + repo, "--json"

    def add(self, *arguments, **more):
        return json.loads(self.tuppi.ask(*self.adding(*arguments, **more)).out)

    def refusal(self, *arguments, status=1):
        reply = self.tuppi.call(*arguments)
        self.assert_one_line(reply, status)
        print(f"  {reply.err}", end="")
        return reply.err[len("Error: "):].rstrip("\n")

    def refused_add(self, *arguments, **more):
        before = self.models()
        sentence = self.refusal(*self.adding(*arguments, **more))
        self.assertEqual(self.models(), before)
        return sentence

    def file_of(self, body):
        return os.path.join(self.folder, hashlib.sha256(body).hexdigest() + ".bin")

    def part_of(self, body):
        return self.file_of(body)[:-3] + "part"

    def assert_whole(self, body):
        with open(self.file_of(body), "rb") as file:
            self.assertEqual(file.read(), body)
        self.assertFalse(os.path.exists(self.part_of(body)))

    def files(self):
        return sorted(name for name in os.listdir(self.folder) if name not in ("lock", "models.json"))


class Listing(ModelTest):
    def test_nothing_at_all(self):
        self.assertEqual(self.models(), {"custom": [], "text_model": None, "ollama_models": []})

    def test_what_ollama_has(self):
        ollama = self.ollama("llama3.2:latest", "qwen3:8b")
        ollama.models.append(ollama.described("gpt-oss:120b-cloud", remote_model="gpt-oss:120b",
                                              remote_host="https://ollama.com:443"))
        self.assertEqual(self.models()["ollama_models"], ["llama3.2:latest", "qwen3:8b"], "only what runs here")

    def test_ollama_in_every_bad_state(self):
        ollama = self.ollama("qwen3:8b")
        for tags in (Answer(200, {}, b""), Answer(200, {}, b"\xff\xfe garbage"), Answer(200, {}, b'{"models": [{"na'),
                     Answer(500, {}, b'{"error": "no"}'), as_json([]), as_json({"models": None}),
                     as_json({"models": "many"}), as_json({"models": [None, 3, {}, {"name": 4}]}),
                     Answer(200, {"Content-Length": "5000"}, b'{"models": ['),
                     Answer(200, {}, b"x" * (17 << 20)),
                     Answer(302, {"Location": ollama.address + "/elsewhere"}, b"")):
            with self.subTest(tags[0:2]):
                ollama.tags = tags
                self.assertEqual(self.models()["ollama_models"], [])
        self.assertEqual(ollama.asked("elsewhere"), [])

    def test_ollama_that_hangs(self):
        self.ollama("qwen3:8b").silent = True
        self.assertEqual(self.models()["ollama_models"], [])

    def test_ollama_on_another_computer(self):
        """It is not even asked for by name."""
        ollama = self.ollama("qwen3:8b")
        for host in (f"192.0.2.1:{ollama.port}", "ollama.example", f"localhost.example:{ollama.port}",
                     f"127.0.0.1@192.0.2.1:{ollama.port}", f"https://127.0.0.1:{ollama.port}"):
            self.tuppi.environment["TUPPI_OLLAMA"] = host
            self.assertEqual(self.models()["ollama_models"], [], host)
            self.assertIn("another computer", self.refusal("models", "text-model", "--name=qwen3:8b", "--json"))
        self.assertEqual(ollama.requests, [])

    def test_where_ollama_listens(self):
        ollama = self.ollama("qwen3:8b")
        del self.tuppi.environment["TUPPI_OLLAMA"]
        for host in (f"127.0.0.1:{ollama.port}", f"localhost:{ollama.port}", f"0.0.0.0:{ollama.port}",
                     f":{ollama.port}", f" {ollama.address}/ "):
            self.tuppi.environment["OLLAMA_HOST"] = host
            self.assertEqual(self.models()["ollama_models"], ["qwen3:8b"], host)

    def test_damaged_list(self):
        os.makedirs(self.folder)
        path = os.path.join(self.folder, "models.json")
        for garbage in ("", "{", "[]", '{"models": 3}', '{"models": [{}]}'):
            with open(path, "w", encoding="utf-8") as file:
                file.write(garbage)
            for command in (("models", "--json"), self.adding(), ("models", "remove", "--id=x", "--json")):
                self.assertIn("damaged", self.refusal(*command))
            with open(path, encoding="utf-8") as file:
                self.assertEqual(file.read(), garbage)

    def test_wrong_arguments(self):
        for arguments in (("nonsense",), ("add",), ("add", "--name=x"), ("remove",), ("text-model",),
                          ("remove", "--id=1", "--name=x"), ("--name=x",), ("add", "remove"), ("--nonsense",)):
            with self.subTest(arguments):
                self.refusal("models", *arguments, status=2)


class Adding(ModelTest):
    def test_from_the_hub_to_a_job(self):
        hub, body = self.hub(), model()
        hub.add("someone/whisper-small", {SMALL: body})
        added = self.add("  Ukrainian   Whisper ")
        expected = {"id": added["id"], "name": "Ukrainian Whisper", "kind": "whisper", "repo": "someone/whisper-small"}
        self.assertEqual(added, expected)
        self.assertEqual(self.models()["custom"], [expected])
        self.assert_whole(body)
        self.assertEqual(self.files(), [os.path.basename(self.file_of(body))])
        # Sent on to where the files are, at the state that was listed.
        self.assertEqual([r.path for r in hub.requests], ["/api/models/someone/whisper-small?blobs=true",
                                                          f"/someone/whisper-small/resolve/{hub.COMMIT}/{SMALL}"])
        self.assertEqual(len(hub.store.requests), 1)

        self.tuppi.environment["PATH"] = "/bin:/usr/bin"
        job = self.tuppi.process(self.recording(self.tuppi), engine="custom:" + added["id"])
        self.assertIn("“Ukrainian Whisper” needs whisper.cpp's whisper-cli", self.tuppi.wait(job, "failed")["error"])

        self.tuppi.ask("models", "remove", "--id=" + added["id"], "--json")
        self.assertEqual(self.models()["custom"], [])
        self.assertEqual(self.files(), [])
        self.assertIn("not installed any more", self.refusal("models", "remove", "--id=" + added["id"], "--json"))
        self.tuppi.ask("retry", job)
        self.assertIn("not installed any more", self.tuppi.wait(job, "failed")["error"])
        listing = self.tuppi.listing()
        self.assertIn("not installed any more", self.refusal(
            "process", self.recording(self.tuppi), "--background", "--engine", "custom:" + added["id"], "--language",
            "auto", "--no-speakers"))
        self.assertEqual(self.tuppi.listing(), listing)

    def test_order_and_odd_names(self):
        hub = self.hub()
        names = ["Ще один", "-x", "'\"$HOME`", "..", "a/b", "🐈"]
        for seed, name in enumerate(names):
            hub.add(f"someone/model-{seed}", {SMALL: model(2000, seed)})
            self.add(name, f"someone/model-{seed}")
        custom = self.models()["custom"]
        self.assertEqual([m["name"] for m in custom], names)
        self.assertEqual(len({m["id"] for m in custom}), len(names))
        self.tuppi.ask("models", "remove", "--id=" + custom[2]["id"], "--json")
        self.assertEqual([m["name"] for m in self.models()["custom"]], names[:2] + names[3:])
        for wrong in ("", "..", "/", "../models", custom[0]["id"] + "/", custom[0]["id"].upper() + "x"):
            self.refusal("models", "remove", "--id=" + wrong, "--json")
        self.assertEqual(len(self.models()["custom"]), len(names) - 1)

    def test_nothing_is_asked_for_what_cannot_be(self):
        hub = self.hub()
        hub.add("someone/whisper-small", {SMALL: model()})
        for name in ("", "   ", "x" * 81, "a\x01b"):
            self.assertIn("name", self.refused_add(name))
        for repo in ("", "  ", "whisper", "a/b/c", "../../etc", "someone/", "/x", "some one/x", "someone/x:",
                     "http://elsewhere.example/someone/x", "someone/x?y=z", "-a/b", "a/.."):
            self.assertIn("owner/model-name", self.refused_add(repo=repo))
        self.assertIn("Parakeet models cannot run", self.refused_add(kind="parakeet"))
        self.refused_add(kind="")
        self.assertEqual(hub.requests, [])

    def test_what_cannot_run(self):
        hub = self.hub()
        hub.add("mlx-community/whisper-large-v3-mlx", {"weights.npz": b"PK" * 5000}, library_name="mlx")
        self.assertIn("Apple's MLX format", self.refused_add(repo="mlx-community/whisper-large-v3-mlx"))
        hub.add("someone/tagged", {"model.safetensors": b"x" * 5000}, tags=["mlx", "whisper"])
        self.assertIn("Apple's MLX format", self.refused_add(repo="someone/tagged"))
        hub.add("openai/whisper-small", {"pytorch_model.bin": b"PK" * 5000, "model.safetensors": b"x" * 5000})
        self.assertIn("holds no model that this computer can run", self.refused_add(repo="openai/whisper-small"))
        self.assertEqual(hub.store.requests, [])
        # Named outright, it shows after the first bytes.
        body = b"PK" * 200_000
        hub.add("openai/other", {"pytorch_model.bin": body})
        hub.store.hold_after = 2000
        self.assertIn("not a Whisper model", self.refused_add(repo="openai/other:pytorch_model.bin"))

    def test_which_file(self):
        hub = self.hub()
        small, packed, turbo = model(3000, 1), model(2000, 2), model(4000, 3)
        hub.add("someone/both", {"ggml-small-q5_0.bin": packed, SMALL: small})
        self.add("Unpacked", "someone/both")
        self.assert_whole(small)
        self.add("Packed", "https://huggingface.co/someone/both/blob/main/ggml-small-q5_0.bin")
        self.assert_whole(packed)
        hub.add("someone/many", {SMALL: small, "ggml-turbo.bin": turbo})
        sentence = self.refused_add("Third", "someone/many")
        self.assertIn("several models", sentence)
        self.assertIn("ggml-turbo.bin", sentence)
        self.assertIn("holds no file named", self.refused_add("Third", "someone/many:ggml-tiny.bin"))
        self.add("Third", "someone/many:ggml-turbo.bin")
        self.assert_whole(turbo)

    def test_twice(self):
        hub = self.hub()
        hub.add("someone/whisper-small", {SMALL: model()})
        hub.add("someone/other", {SMALL: model(5000, 2)})
        self.add("Mine")
        asked = len(hub.requests)
        self.assertIn("already a speech model named “Mine”", self.refused_add("mine", "someone/other"))
        self.assertEqual(len(hub.requests), asked)
        self.assertIn("You have this speech model already: “Mine”", self.refused_add("Again"))
        self.assertEqual(len(hub.store.requests), 1)

    def test_what_the_hub_may_answer(self):
        hub = self.hub()
        hub.add("someone/whisper-small", {SMALL: model()})
        info, file = "/api/models/someone/whisper-small", f"/someone/whisper-small/resolve/{hub.COMMIT}/{SMALL}"
        self.assertIn("no open model “someone/unknown”", self.refused_add(repo="someone/unknown"))
        for path in (info, file):
            for answer, words in (
                    (Answer(404, {"X-Error-Code": "RepoNotFound"}, b"Repository not found"), "no open model"),
                    (Answer(401, {"X-Error-Code": "GatedRepo"}, b"Access is restricted"), "signed in"),
                    (Answer(403, {"X-Error-Code": "GatedRepo"}, b"Access is restricted"), "signed in"),
                    (Answer(302, {"Location": hub.address + path}, b""), "an address that cannot be used"),
                    (Answer(302, {"Location": "file:///etc/passwd"}, b""), "an address that cannot be used")):
                with self.subTest(path=path, answer=answer):
                    hub.answers = {path: answer}
                    self.assertIn(words, self.refused_add())
        for answer in (Answer(200, {}, b""), Answer(200, {}, b"<html>A page to sign in to this network</html>"),
                       as_json([]), as_json({"siblings": None}), as_json("\0")):
            hub.answers = {info: answer}
            self.assertIn("cannot be understood", self.refused_add())
        hub.answers = {}
        hub.add("someone/gated", {SMALL: model()}, gated="manual")
        self.assertIn("signed in", self.refused_add(repo="someone/gated"))
        hub.add("someone/unchecked", {SMALL: model()}, sums={SMALL: "../../../evil"})
        self.assertIn("no checksum", self.refused_add(repo="someone/unchecked"))
        self.assertEqual(self.files(), [os.path.basename(self.part_of(model()))])

    def test_troubles_that_pass(self):
        hub, body = self.hub(), model()
        hub.add("someone/whisper-small", {SMALL: body})
        file = f"/someone/whisper-small/resolve/{hub.COMMIT}/{SMALL}"
        for status, words in ((503, "error 503"), (429, "too often")):
            hub.answers = {file: Answer(status, {}, b"Not now")}
            asked = len(hub.asked("/resolve/"))
            self.assertIn(words, self.refused_add())
            self.assertGreater(len(hub.asked("/resolve/")), asked + 1, "it is tried more than once")
        hub.answers = {}
        self.add()
        self.assert_whole(body)

    def test_renamed_repository(self):
        hub, body = self.hub(), model()
        hub.add("someone/new", {SMALL: body})
        hub.answers["/api/models/someone/old"] = Answer(307, {"Location": "/api/models/someone/new?blobs=true"}, b"")
        hub.answers[f"/someone/old/resolve/{hub.COMMIT}/{SMALL}"] = Answer(
            307, {"Location": f"/someone/new/resolve/{hub.COMMIT}/{SMALL}"}, b"")
        self.add(repo="someone/old")
        self.assert_whole(body)

    def test_without_a_network(self):
        self.assertIn("could not be reached", self.refused_add())
        self.tuppi.environment["TUPPI_HUB"] = "http://hub.example"
        self.assertIn("https", self.refused_add())


class BrokenDownloads(ModelTest):
    def setUp(self):
        super().setUp()
        self.the_hub, self.body = self.hub(), model(300_000)
        self.store = self.the_hub.store
        self.the_hub.add("someone/whisper-small", {SMALL: self.body})

    def ranges(self):
        return [request.headers.get("Range") for request in self.store.requests]

    def test_connection_that_breaks_again_and_again(self):
        self.store.drops = [100_000, 50_000, 0, 70_000]
        self.add()
        self.assert_whole(self.body)
        self.assertEqual(self.ranges(), [None, "bytes=100000-", "bytes=150000-", "bytes=150000-", "bytes=220000-"])
        self.assertEqual({r.headers.get("If-Range") for r in self.store.requests[1:]}, {self.store.etag})

    def test_connection_that_always_breaks(self):
        self.store.drops = [100_000] + [0] * 20
        self.assertIn("broke off", self.refused_add())
        self.store.drops = []
        self.assertEqual(os.path.getsize(self.part_of(self.body)), 100_000)
        self.add()
        self.assertEqual(self.ranges()[-1], "bytes=100000-")
        self.assert_whole(self.body)

    def start(self, *arguments, **more):
        process = subprocess.Popen(self.tuppi.command(*self.adding(*arguments, **more)), env=self.tuppi.environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(process.communicate)
        return process

    def start_and_hold(self, after=120_000):
        self.store.hold_after = after
        process = self.start()
        part = self.part_of(self.body)
        until(lambda: os.path.exists(part) and os.path.getsize(part) == after, "half of the download")
        return process

    def test_killed(self):
        process = self.start_and_hold()
        process.send_signal(signal.SIGKILL)
        process.wait()
        self.store.hold_after = None
        self.assertEqual(self.models()["custom"], [])
        self.add()
        self.assertEqual(self.ranges(), [None, "bytes=120000-"])
        self.assert_whole(self.body)

    def test_killed_again_and_again(self):
        for after in range(10_000, 90_000, 20_000):
            there = os.path.getsize(self.part_of(self.body)) if os.path.exists(self.part_of(self.body)) else 0
            self.store.hold_after = after
            process = self.start()
            until(lambda: os.path.exists(self.part_of(self.body)) and
                  os.path.getsize(self.part_of(self.body)) == there + after, "some more")
            process.send_signal(signal.SIGKILL)
            process.wait()
        self.store.hold_after = None
        self.add()
        self.assert_whole(self.body)
        self.assertEqual(sum(range(10_000, 90_000, 20_000)), int(self.ranges()[-1][len("bytes="):-1]))

    def test_part_that_a_power_cut_has_spoilt(self):
        process = self.start_and_hold()
        process.send_signal(signal.SIGKILL)
        process.wait()
        self.store.hold_after = None
        for spoil in (b"\0" * 120_000, self.body + b"more"):
            with open(self.part_of(self.body), "wb") as file:
                file.write(spoil)
            added = self.add()
            self.assert_whole(self.body)
            self.tuppi.ask("models", "remove", "--id=" + added["id"], "--json")

    def test_whole_file_without_a_record(self):
        """What is left when the program is killed between the two is not loaded again."""
        os.makedirs(self.folder)
        with open(self.file_of(self.body), "wb") as file:
            file.write(self.body)
        self.add()
        self.assertEqual(self.store.requests, [])
        self.assert_whole(self.body)

    def part(self):
        os.makedirs(self.folder, exist_ok=True)
        with open(self.part_of(self.body), "wb") as file:
            file.write(self.body[:120_000])

    def test_server_without_ranges(self):
        self.part()
        self.store.ranges = False
        self.store.drops = [50_000]
        self.add()
        self.assertEqual(self.ranges(), ["bytes=120000-", "bytes=50000-"])
        self.assert_whole(self.body)

    def test_network_that_wants_one_to_sign_in(self):
        """Its page takes the place of every file; what was loaded before stays."""
        self.part()
        page = b"<html>Welcome. Please accept the terms of this network.</html>"
        for headers in ({}, {"Content-Length": None}):
            self.store.answers["/someone/whisper-small/" + SMALL] = Answer(200, headers, page)
            self.assertIn("another file", self.refused_add())
            self.assertEqual(os.path.getsize(self.part_of(self.body)), 120_000)
        self.store.answers.clear()
        self.add()
        self.assertEqual(self.ranges()[-1], "bytes=120000-")
        self.assert_whole(self.body)

    def test_file_that_has_changed_there(self):
        self.store.drops = [100_000]
        self.store.hold_after = 10_000
        process = self.start()
        until(lambda: self.ranges()[1:], "the second try")
        process.send_signal(signal.SIGKILL)
        process.wait()
        self.store.hold_after = None
        self.store.etag = '"second"'
        self.add()
        self.assertEqual(self.store.requests[-1].headers["If-Range"], '"first"')
        self.assert_whole(self.body)

    def test_wrong_part(self):
        path = "/someone/whisper-small/" + SMALL
        for status, headers in ((206, {"Content-Range": "bytes 0-299999/300000"}), (206, {}),
                                (206, {"Content-Range": "bytes 120000-299999/400000"}), (416, {})):
            with self.subTest(status=status, headers=headers):
                self.part()
                self.store.answers[path] = Answer(status, headers, self.body if status == 206 else b"")
                asked = len(self.store.requests)
                process = self.start()
                until(lambda: None in self.ranges()[asked:], "a try from the start")
                del self.store.answers[path]
                self.assertEqual(process.wait(), 0, process.stderr.read())
                self.assert_whole(self.body)
                self.tuppi.ask("models", "remove", "--id=" + self.models()["custom"][0]["id"], "--json")

    def test_wrong_checksum(self):
        self.the_hub.add("someone/whisper-small", {SMALL: self.body}, sums={SMALL: "0" * 64})
        self.assertIn("checksum is wrong", self.refused_add())
        self.assertEqual(len(self.store.requests), 1)
        self.assertEqual([os.path.getsize(os.path.join(self.folder, name)) for name in self.files()], [0])

    def test_wrong_size(self):
        for size in (len(self.body) - 1, len(self.body) + 1, 5):
            for told in (True, False):
                with self.subTest(size=size, told=told):
                    self.the_hub.add("someone/whisper-small", {SMALL: self.body}, sizes={SMALL: size})
                    if not told:
                        self.store.answers["/someone/whisper-small/" + SMALL] = Answer(
                            200, {"Content-Length": None}, self.body)
                    sentence = self.refused_add()
                    self.assertIn("broke off" if not told and size > len(self.body) else "another file", sentence)
                    self.store.answers.clear()
        self.assertEqual([name for name in self.files() if name.endswith(".bin")], [])

    def test_stalled(self):
        self.tuppi.environment["TUPPI_STALL_SECONDS"] = "1"
        self.part()
        self.store.hold_after = 0
        self.assertIn("does not answer", self.refused_add())
        self.assertEqual(os.path.getsize(self.part_of(self.body)), 120_000)
        self.the_hub.silent = True
        self.assertIn("does not answer", self.refused_add())

    def test_two_at_once(self):
        first = self.start_and_hold()
        self.assertIn("being downloaded already", self.refusal(*self.adding("Another name")))
        self.store.go.set()
        self.assertEqual(first.wait(), 0, first.stderr.read())
        self.assert_whole(self.body)
        self.assertEqual(len(self.models()["custom"]), 1)

    def test_two_names_at_once(self):
        other = model(300_000, 9)
        self.the_hub.add("someone/other", {SMALL: other})
        self.store.hold_after = 1000
        both = [self.start(), self.start(repo="someone/other")]
        until(lambda: all(os.path.exists(self.part_of(b)) and os.path.getsize(self.part_of(b)) == 1000
                          for b in (self.body, other)), "both downloads")
        self.store.go.set()
        self.assertEqual(sorted(process.wait() for process in both), [0, 1])
        self.assertEqual(len(self.models()["custom"]), 1)

    def test_removed_while_another_is_added(self):
        self.the_hub.add("someone/other", {SMALL: model(5000, 9)})
        old = self.add("Old", "someone/other")
        process = self.start_and_hold()
        self.tuppi.ask("models", "remove", "--id=" + old["id"], "--json")
        self.store.go.set()
        self.assertEqual(process.wait(), 0)
        self.assertEqual([m["name"] for m in self.models()["custom"]], ["My Whisper"])
        self.assert_whole(self.body)

    def test_asker_that_goes_away(self):
        """The download goes on: its reader has closed both ends."""
        process = self.start_and_hold()
        process.stdout.close()
        process.stderr.close()
        process.stdout = process.stderr = None
        self.store.go.set()
        until(lambda: self.models()["custom"], "the model")
        self.assert_whole(self.body)

    def test_forgotten_parts(self):
        self.part()
        os.utime(self.part_of(self.body), (1_000_000, 1_000_000))
        self.the_hub.add("someone/other", {SMALL: model(5000, 9)})
        self.add(repo="someone/other")
        self.assertFalse(os.path.exists(self.part_of(self.body)))

    def test_progress_for_a_person(self):
        self.store.drops = [150_000]
        ours, its = pty.openpty()
        done = subprocess.run(self.tuppi.command(*self.adding()), env=self.tuppi.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=its)
        os.close(its)
        self.assertEqual(done.returncode, 0)
        shown = os.read(ours, 1 << 16).decode()
        os.close(ours)
        self.assertIn("100 % of 300.0 kB", shown)


class TextModel(ModelTest):
    def use(self, name):
        return json.loads(self.tuppi.ask("models", "text-model", "--name=" + name, "--json").out)

    def refused_use(self, name):
        before = self.models()["text_model"]
        sentence = self.refusal("models", "text-model", "--name=" + name, "--json")
        self.assertEqual(self.models()["text_model"], before)
        return sentence

    def test_one_that_is_there(self):
        ollama = self.ollama("llama3.2:latest", "qwen3:8b")
        for asked, name in (("qwen3:8b", "qwen3:8b"), (" llama3.2 ", "llama3.2:latest"), ("QWEN3:8B", "qwen3:8b")):
            self.assertEqual(self.use(asked), {"text_model": name})
            self.assertEqual(self.models()["text_model"], name)
        self.assertEqual(ollama.asked("/api/pull"), [])
        ollama.close()
        self.addCleanup(ollama.go.set)
        self.assertEqual(self.models(), {"custom": [], "text_model": "qwen3:8b", "ollama_models": []})

    def test_one_that_is_loaded_first(self):
        ollama = self.ollama()
        self.use("qwen3")
        self.assertEqual(json.loads(ollama.asked("/api/pull")[0].body), {"model": "qwen3", "stream": True})
        self.assertEqual(self.models(), {"custom": [], "text_model": "qwen3:latest", "ollama_models": ["qwen3:latest"]})
        self.use("hf.co/someone/Model-GGUF:Q4_K_M")

    def test_names_that_are_none(self):
        ollama = self.ollama("qwen3:8b")
        for name in ("", "  ", "a b", "../x y", "qwen3\n8b", "ї", "-x", "x" * 300):
            self.assertIn("text model", self.refused_use(name))
        for name in ("gpt-oss:120b-cloud", "deepseek:cloud"):
            self.assertIn("must not leave", self.refused_use(name))
        self.assertEqual(ollama.requests[:0] + ollama.asked("/api/pull"), [])

    def test_one_that_runs_elsewhere(self):
        ollama = self.ollama()
        ollama.models.append(ollama.described("far:latest", remote_model="far", remote_host="https://ollama.com:443"))
        self.assertIn("must not leave", self.refused_use("far"))

    def test_without_ollama(self):
        self.assertIn("Ollama is not", self.refused_use("qwen3:8b"))

    def test_what_ollama_may_answer(self):
        ollama = self.ollama("there:latest")
        self.use("there")
        manifest, some = {"status": "pulling manifest"}, {"status": "pulling x", "total": 2000, "completed": 10}

        def fails(*reason):
            return ollama.stream(manifest, some, {"error": " ".join(reason)})

        for answer, words in (
                (fails("pull model manifest: file does not exist"), "knows no model named “new”"),
                (as_json({"error": "pull model manifest: file does not exist"}, 500), "knows no model named “new”"),
                (as_json({"error": "invalid model name"}, 400), "knows no model named “new”"),
                (fails("write /models/blobs/sha256-1-partial-0: no space left on device"), "not enough room"),
                (fails('Get "https://registry": dial tcp: lookup registry: no such host'), "internet connection"),
                (fails("The model you are attempting to pull requires a newer version of Ollama."), "newer Ollama"),
                (fails("something that nobody has seen"), "something that nobody has seen"),
                (fails("long " * 1000), "long long"),
                (Answer(500, {}, b"<html>"), "error 500"),
                (ollama.stream(manifest, some), "broke off"),
                (ollama.stream(), "broke off"),
                (Answer(200, {"Content-Length": "900"}, b'{"status":"pulling manifest"}\n{"sta'), "broke off"),
                (Answer(200, {}, b"garbage\n" * 1000), "broke off"),
                (Answer(200, {}, b"x" * (2 << 20)), "cannot be understood")):
            with self.subTest(answer.body[:80]):
                ollama.pull = answer
                sentence = self.refused_use("new")
                self.assertIn(words, sentence)
                self.assertLess(len(sentence), 300)

    def test_ollama_that_hangs_over_a_download(self):
        self.tuppi.environment["TUPPI_STALL_SECONDS"] = "1"
        ollama = self.ollama()
        ollama.pull = ollama.stream(*[{"status": "pulling x"}] * 100)
        ollama.hold_after = 100
        self.assertIn("does not answer", self.refused_use("new"))


class Health(ModelTest):
    def checks(self):
        return {check["check"]: check for check in json.loads(self.tuppi.ask("doctor", "--json").out)}

    def bad(self):
        return set(self.tuppi.troubles())

    def test_all_is_well(self):
        self.ollama("qwen3:8b")
        self.hub().add("someone/whisper-small", {SMALL: model()})
        self.add()
        tools = os.path.join(self.tuppi.home, "tools")
        os.makedirs(tools)
        for tool in ("whisper-cli", "xclip"):
            os.symlink("/bin/true", os.path.join(tools, tool))
        self.tuppi.environment["PATH"] = tools + ":/bin:/usr/bin"
        for name, check in self.checks().items():
            self.assertTrue(check["ok"], check)
            self.assertNotRegex(name, r"[.!?:]\Z")
            self.assertLess(len(name), 60)
        os.remove(os.path.join(tools, "xclip"))
        os.remove(os.path.join(tools, "whisper-cli"))
        self.tuppi.environment["PATH"] = tools
        self.assertEqual({n for n, c in self.checks().items() if not c["ok"]},
                         {"Clipboard tool (wl-copy, xclip or xsel)", "Whisper (whisper-cli)"})
        self.assertEqual(self.bad(), set())

    def test_recognisers(self):
        """PocketSphinx has to be there, unless a whole Whisper hears English too."""
        english, whisper = "Speech recogniser (PocketSphinx, English)", "Whisper (whisper-cli)"
        self.hub().add("someone/whisper-small", {SMALL: model()})
        self.tuppi.environment.update(TUPPI_WHISPER_CLI="/bin/true")
        until(lambda: os.path.exists(self.tuppi.store.replace("jobs.sqlite", "self-test")) or self.bad(), "its memory")
        self.assertIn("no model", self.checks()[whisper]["detail"])
        self.tuppi.environment["TUPPI_POCKETSPHINX_MODEL"] = self.tuppi.scratch
        self.assertEqual(self.bad(), {english})
        self.add()
        self.assertTrue(self.checks()[whisper]["ok"])
        self.assertEqual(self.bad(), set())
        self.assertIn("pocketsphinx-en-us", self.checks()[english]["detail"])
        self.tuppi.environment["TUPPI_WHISPER_CLI"] = "/nonexistent"
        self.assertEqual(self.bad(), {english})

    def test_ollama(self):
        check = "Text model (Ollama)"
        self.assertEqual((self.checks()[check]["ok"], self.checks()[check]["optional"]), (False, True))
        ollama = self.ollama("qwen3:8b")
        self.tuppi.ask("models", "text-model", "--name=qwen3:8b")
        self.assertTrue(self.checks()[check]["ok"])
        ollama.models.clear()
        self.assertIn("does not have “qwen3:8b”", self.checks()[check]["detail"])
        ollama.silent = True
        self.assertIn("does not answer", self.checks()[check]["detail"])
        self.assertEqual(self.bad(), set())

    def test_model_whose_file_is_gone(self):
        hub, body = self.hub(), model()
        hub.add("someone/whisper-small", {SMALL: body})
        added = self.add()
        name = "Your speech model “My Whisper”"
        self.assertTrue(self.checks()[name]["ok"])
        os.truncate(self.file_of(body), 100)
        self.assertEqual(self.bad(), {name})
        os.remove(self.file_of(body))
        self.assertEqual(self.bad(), {name})
        job = self.tuppi.process(self.recording(self.tuppi), engine="custom:" + added["id"])
        self.assertIn("is missing or damaged", self.tuppi.wait(job, "failed")["error"])
        self.tuppi.ask("models", "remove", "--id=" + added["id"], "--json")
        self.add()
        self.assertEqual(self.bad(), set())

    def test_engine_that_is_not_complete(self):
        programs = os.path.join(self.tuppi.folder, "runtime", "bin")
        os.remove(os.path.join(programs, "tuppi-engine-models"))
        self.assertEqual(self.bad(), {"Downloads of models"})
        self.assertIn("install it again", self.refusal("models", "--json"))
        os.remove(os.path.join(programs, "tuppi-engine-worker"))
        self.assertIn("Speech recogniser (PocketSphinx, English)", self.bad())

    def test_store_and_library(self):
        chosen = os.path.join(self.tuppi.home, "stick", "calls")
        self.tuppi.ask("settings", "--library=" + chosen, "--json")
        self.assertEqual(self.bad(), set())
        os.rename(os.path.dirname(chosen), os.path.dirname(chosen) + "-away")
        self.assertEqual(self.bad(), {"Transcripts folder"})
        self.assertFalse(os.path.exists(os.path.dirname(chosen)))
        with open(self.tuppi.store, "wb") as file:
            file.write(b"garbage" * 1000)
        self.assertIn("List of transcripts", self.bad())


if __name__ == "__main__":
    main()
