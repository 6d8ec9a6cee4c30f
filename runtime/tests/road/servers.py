"""Stand-ins for Hugging Face and Ollama on loopback, which answer as the real ones are documented to, or as badly as a
test asks for."""

import hashlib
import json
import re
import threading
from collections import namedtuple
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

Request = namedtuple("Request", "method path headers body")
Answer = namedtuple("Answer", "status headers body")

GGML = b"lmgg"


def model(size=300_000, seed=1):
    """What begins like a file of whisper.cpp and is that long."""
    return GGML + (hashlib.sha256(bytes([seed])).digest() * (size // 32 + 1))[:size - len(GGML)]


def as_json(value, status=200, **headers):
    return Answer(status, {"Content-Type": "application/json", **headers}, json.dumps(value).encode())


class Server:
    """Answers with what answer(request) gives back. What is to go wrong below HTTP is set in the fields."""

    def __init__(self):
        self.requests = []
        self.drops = []        # for each of the next long bodies: after how many bytes the connection is cut
        self.hold_after = None  # bytes of a long body after which it waits for `go`
        self.silent = False    # take connections and requests, and answer nothing before `go`
        self.go = threading.Event()
        self.held = threading.Event()
        server = self

        class Handler(BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def log_message(self, *_):
                pass

            def do_GET(self):
                server._serve(self)

            do_POST = do_GET
            do_HEAD = do_GET

        self._http = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._http.daemon_threads = True
        self._http.handle_error = lambda *_: None  # whoever is killed breaks off
        self.port = self._http.server_address[1]
        self.address = f"http://127.0.0.1:{self.port}"
        self._thread = threading.Thread(target=self._http.serve_forever, kwargs={"poll_interval": 0.05})
        self._thread.start()

    def close(self):
        self.go.set()
        self._http.shutdown()
        self._thread.join()
        self._http.server_close()

    def asked(self, part=""):
        return [request for request in self.requests if part in request.path]

    def _serve(self, handler):
        length = int(handler.headers.get("Content-Length") or 0)
        request = Request(handler.command, handler.path, dict(handler.headers), handler.rfile.read(length))
        self.requests.append(request)
        if self.silent:
            self.held.set()
            self.go.wait()
        answer = self.answer(request)
        handler.send_response(answer.status)
        headers = dict(answer.headers)
        if "Content-Length" not in headers and "Transfer-Encoding" not in headers:
            headers["Content-Length"] = str(len(answer.body))
        if headers["Content-Length"] is None:
            del headers["Content-Length"]
        if headers.get("Content-Length") != str(len(answer.body)):
            headers["Connection"] = "close"
        for name, value in headers.items():
            handler.send_header(name, value)
        handler.end_headers()
        self._send(handler, answer.body)
        if headers.get("Connection") == "close":
            handler.close_connection = True

    def _send(self, handler, body):
        if len(body) > 1000 and self.drops:
            handler.wfile.write(body[:self.drops.pop(0)])
            handler.wfile.flush()
            handler.close_connection = True
            handler.connection.shutdown(2)
            return
        if self.hold_after is not None and len(body) > self.hold_after:
            handler.wfile.write(body[:self.hold_after])
            handler.wfile.flush()
            self.held.set()
            self.go.wait()
            body = body[self.hold_after:]
        handler.wfile.write(body)
        handler.wfile.flush()

    def answer(self, request):
        raise NotImplementedError


class Store(Server):
    """The computers behind Hugging Face, which it sends downloads to."""

    def __init__(self):
        super().__init__()
        self.files = {}       # path: bytes
        self.ranges = True    # whether it answers with a part when asked for one
        self.etag = '"first"'
        self.answers = {}     # by path, instead of the file

    def answer(self, request):
        if request.path in self.answers:
            return self.answers[request.path]
        body = self.files[request.path]
        headers = {"ETag": self.etag, "Accept-Ranges": "bytes", "Content-Type": "application/octet-stream"}
        wanted = re.fullmatch(r"bytes=(\d+)-", request.headers.get("Range", ""))
        if not wanted or not self.ranges or request.headers.get("If-Range", self.etag) != self.etag:
            return Answer(200, headers, body)
        start = int(wanted[1])
        if start >= len(body):
            return Answer(416, {**headers, "Content-Range": f"bytes */{len(body)}"}, b"")
        headers["Content-Range"] = f"bytes {start}-{len(body) - 1}/{len(body)}"
        return Answer(206, headers, body[start:])


class Hub(Server):
    COMMIT = "0123456789abcdef0123456789abcdef01234567"

    def __init__(self):
        super().__init__()
        self.store = Store()
        self.repositories = {}
        self.answers = {}  # by path, instead of what would be right

    def close(self):
        self.store.close()
        super().close()

    def add(self, name, files, sums=None, sizes=None, **fields):
        """A repository with these files ({path: bytes}); some of what it tells of them may be wrong."""
        siblings = [{"rfilename": ".gitattributes", "size": 1519, "blobId": "a6344aac8c09253b3b630fb776ae94478aa0275b"}]
        for path, body in files.items():
            digest = (sums or {}).get(path, hashlib.sha256(body).hexdigest())
            size = (sizes or {}).get(path, len(body))
            siblings.append({"rfilename": path, "size": size, "blobId": hashlib.sha1(body).hexdigest(),
                             "lfs": {"sha256": digest, "size": size, "pointerSize": 134}})
            self.store.files[f"/{name}/{path}"] = body
        self.repositories[name] = {"id": name, "modelId": name, "author": name.split("/")[0], "sha": self.COMMIT,
                                   "private": False, "gated": False, "disabled": False, "tags": ["whisper"],
                                   "siblings": siblings, **fields}

    def answer(self, request):
        path = request.path
        if path.partition("?")[0] in self.answers:
            return self.answers[path.partition("?")[0]]
        if path.startswith("/api/models/"):
            name, _, query = path[len("/api/models/"):].partition("?")
            if name not in self.repositories:
                # To who has not signed in, what is private and what is not there look alike.
                return as_json({"error": "Invalid username or password."}, 401, **{"X-Error-Code": "RepoNotFound"})
            assert query == "blobs=true", query
            return as_json(self.repositories[name])
        found = re.fullmatch(r"/([^/]+/[^/]+)/resolve/([^/]+)/(.+)", path)
        if not found or found[2] != self.COMMIT or f"/{found[1]}/{found[3]}" not in self.store.files:
            return Answer(404, {"X-Error-Code": "EntryNotFound"}, b"Entry not found")
        body = self.store.files[f"/{found[1]}/{found[3]}"]
        return Answer(302, {"Location": f"{self.store.address}/{found[1]}/{found[3]}", "X-Repo-Commit": self.COMMIT,
                            "X-Linked-Size": str(len(body)), "X-Linked-ETag": f'"{hashlib.sha256(body).hexdigest()}"',
                            "Accept-Ranges": "bytes"}, b"Found. Redirecting to the file")


class Ollama(Server):
    def __init__(self, *names):
        super().__init__()
        self.models = [self.described(name) for name in names]
        self.tags = None  # instead of the right answer
        self.pull = None  # likewise: an Answer
        self.chat = None  # gives the answer to a question (both texts; the question as it was sent), or an Answer

    @staticmethod
    def described(name, **more):
        return {"name": name, "model": name, "modified_at": "2025-05-04T17:37:44.706015396-07:00", "size": 3338801804,
                "digest": hashlib.sha256(name.encode()).hexdigest(),
                "details": {"parent_model": "", "format": "gguf", "family": "llama", "families": ["llama"],
                            "parameter_size": "8.0B", "quantization_level": "Q4_K_M"}, **more}

    def answer(self, request):
        if request.path == "/api/tags" and request.method == "GET":
            return self.tags or as_json({"models": self.models})
        if request.path == "/api/pull" and request.method == "POST":
            if self.pull:
                return self.pull
            name = json.loads(request.body)["model"]
            self.models.append(self.described(name if ":" in name else name + ":latest"))
            return self.stream({"status": "pulling manifest"},
                               *({"status": "pulling dde5aa3fc5ff", "digest": "sha256:dde5aa3fc5ff", "total": 2000,
                                  "completed": done} for done in (0, 500, 2000)),
                               {"status": "verifying sha256 digest"}, {"status": "writing manifest"},
                               {"status": "success"})
        if request.path == "/api/chat" and request.method == "POST" and self.chat:
            question = json.loads(request.body)
            answer = self.chat(question)
            if isinstance(answer, Answer):
                return answer
            pieces = [answer[at:at + 40] for at in range(0, len(answer), 40)]
            return self.stream(*({"model": question["model"], "message": {"role": "assistant", "content": piece},
                                  "done": False} for piece in pieces),
                               {"model": question["model"], "message": {"role": "assistant", "content": ""},
                                "done": True, "done_reason": "stop", "prompt_eval_count": 26, "eval_count": 290})
        return Answer(404, {}, b"404 page not found")

    @staticmethod
    def stream(*lines, status=200):
        body = b"".join(json.dumps(line).encode() + b"\n" for line in lines)
        return Answer(status, {"Content-Type": "application/x-ndjson", "Content-Length": None}, body)
