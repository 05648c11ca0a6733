"""A running service for the tests, with plain sockets for HTTP and WebSocket, so that they can be misused.

Every answer is held against docs/openapi.yaml, and every event against the schema of the tool's JSON.
"""
import base64
import json
import os
import pathlib
import re
import signal
import socket
import struct
import subprocess
import time

import jsonschema
import yaml

DOCS = pathlib.Path(__file__).resolve().parents[2] / "docs"
SCHEMA = json.loads((DOCS / "schema" / "vt40.schema.json").read_text())
API = yaml.safe_load((DOCS / "openapi.yaml").read_text())
JSON = "application/json"
SECONDS = 20  # after which a test that waits has failed


def validate(document, definition):
    jsonschema.Draft202012Validator({**SCHEMA, "$ref": f"#/$defs/{definition}"}).validate(document)


def described(method, path):
    """The operation of the description that a call makes; None when there is none."""
    for template, item in API["paths"].items():
        if re.fullmatch(re.sub(r"{\w+}", "[^/]+", template).replace(".png", r"\.png"), path) and method.lower() in item:
            return item[method.lower()]
    return None


class Answer:
    def __init__(self, status, fields, body):
        self.status, self.fields, self.body = status, fields, body

    @property
    def json(self):
        return json.loads(self.body)

    def error(self):
        return self.json["error"]["name"]


class Connection:
    """One connection, on which requests follow each other."""

    def __init__(self, port):
        self.port = port
        self.socket = socket.create_connection(("127.0.0.1", port), SECONDS)
        self.file = self.socket.makefile("rb")

    def send(self, data):
        self.socket.sendall(data)

    def request(self, method, path, body=None, fields=()):
        lines = {"Host": f"127.0.0.1:{self.port}", **dict(fields)}
        if body is not None:
            lines.setdefault("Content-Length", len(body))
        head = "".join(f"{name}: {value}\r\n" for name, value in lines.items() if value is not None)
        self.send(f"{method} {path} HTTP/1.1\r\n{head}\r\n".encode() + (body or b""))

    def answer(self, method="GET"):
        status = self.file.readline().decode()
        if not status:
            raise ConnectionError("closed without an answer")
        fields = {}
        while line := self.file.readline().decode().strip():
            name, value = line.split(":", 1)
            fields[name.lower()] = value.strip()
        size = 0 if method == "HEAD" else int(fields.get("content-length", 0))
        return Answer(int(status.split()[1]), fields, self.file.read(size))

    def close(self):
        self.file.close()
        self.socket.close()


class Socket(Connection):
    """A WebSocket."""

    def __init__(self, port, fields=(), path="/api/events"):
        super().__init__(port)
        key = base64.b64encode(os.urandom(16)).decode()
        self.request("GET", path, None, {"Upgrade": "websocket", "Connection": "Upgrade", "Sec-WebSocket-Key": key,
                                         "Sec-WebSocket-Version": "13", **dict(fields)})
        self.opening = self.answer()

    def message(self, data, opcode=1, mask=True):
        head = bytes([0x80 | opcode])
        size = len(data)
        flag = 0x80 if mask else 0
        if size < 126:
            head += bytes([flag | size])
        elif size < 65536:
            head += bytes([flag | 126]) + struct.pack(">H", size)
        else:
            head += bytes([flag | 127]) + struct.pack(">Q", size)
        self.send(head + (b"\0\0\0\0" if mask else b"") + data)

    def say(self, **message):
        self.message(json.dumps(message).encode())

    def next(self):
        """The next text as an object, or frame as bytes; None when the service has closed."""
        head = self.file.read(2)
        if len(head) < 2:
            return None
        size = head[1] & 127
        if size > 125:
            form = ">H" if size == 126 else ">Q"
            size = struct.unpack(form, self.file.read(struct.calcsize(form)))[0]
        data = self.file.read(size)
        opcode = head[0] & 15
        if opcode == 8:
            self.code = struct.unpack(">H", data[:2])[0] if data else 0
            return None
        if opcode == 2:
            frame = Frame(data)
            self.say(seen=frame.number)
            return frame
        if opcode == 9:
            self.message(data, 10)
            return self.next()
        event = json.loads(data)
        validate(event, "serviceEvent")
        return event

    def wait(self, event, accept=lambda event: True):
        """The first event of that name that is accepted."""
        end = time.monotonic() + SECONDS
        while time.monotonic() < end:
            found = self.next()
            assert found is not None, f"closed while waiting for {event}"
            if isinstance(found, Frame):
                if event == "frame" and accept(found):
                    return found
            elif found["event"] == event and accept(found):
                return found
        raise AssertionError(f"no {event} came")


class Frame:
    def __init__(self, data):
        (magic, self.format, self.kind, header, self.width, self.height, self.pels, self.number,
         self.time) = struct.unpack("<4sBBHIIIId", data[:32])
        assert magic == b"VTF1" and header == 32
        self.pixels = data[32:]


class Service:
    """The tool's service on a free port, for a with statement."""

    def __init__(self, tool, *options, environment=()):
        self.process = subprocess.Popen([*tool, "serve", "--port", "0", "--json-lines", *options],
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                        env={**os.environ, "KELVARIN_SDK_LOG": "0", **dict(environment)})
        line = self.process.stdout.readline()
        assert line, self.process.stderr.read()
        validate(json.loads(line), "listening")
        self.url = json.loads(line)["url"]
        self.port = int(re.search(r":(\d+)/", self.url)[1])
        self.token = self.url.partition("#token=")[2]
        self.claim = None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()

    def end(self, number=signal.SIGINT):
        """Ends it by a signal; returns its exit code, what it has printed, and the seconds."""
        begin = time.monotonic()
        self.process.send_signal(number)
        printed, _ = self.process.communicate(timeout=SECONDS)
        document = json.loads(printed.splitlines()[-1])
        validate(document, "serve")
        return self.process.returncode, document, time.monotonic() - begin

    def call(self, method, path, body=None, claim=True, fields=(), connection=None):
        """Makes a call, holds its answer against the description, and returns it."""
        data = body if body is None or isinstance(body, bytes) else json.dumps(body).encode()
        lines = dict(fields)
        if method not in ("GET", "HEAD"):
            lines.setdefault("Content-Type", JSON)
            data = b"{}" if data is None else data
        if claim and self.claim and "Claim" not in lines:
            lines["Claim"] = self.claim
        if self.token and "Authorization" not in lines:
            lines["Authorization"] = f"Bearer {self.token}"
        own = connection or Connection(self.port)
        own.request(method, path, data, lines)
        answer = own.answer(method)
        if connection is None:
            own.close()
        self.hold(method, path, answer)
        return answer

    def hold(self, method, path, answer):
        if answer.status >= 400:
            validate(answer.json, "serviceError")
            return
        operation = described(method, path)
        if not path.startswith("/api/") or method == "HEAD":
            return
        assert operation, f"{method} {path} is not described"
        content = operation["responses"][str(answer.status)]["content"]
        assert answer.fields["content-type"] in content, (method, path, answer.fields)
        if JSON in content:
            validate(answer.json, content[JSON]["schema"]["$ref"].rpartition("/")[2])

    def good(self, method, path, body=None, **more):
        answer = self.call(method, path, body, **more)
        assert answer.status in (200, 202), (method, path, answer.status, answer.body)
        return answer if answer.fields["content-type"] == "image/png" else answer.json

    def take(self, name="test"):
        self.claim = self.good("POST", "/api/claim", {"name": name})["claim"]

    def ready(self):
        """Waits until the scanner is open."""
        client = Socket(self.port)
        client.wait("status", lambda event: event["connected"])
        client.close()
