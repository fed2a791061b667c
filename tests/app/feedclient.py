"""Clients of the program's WebSocket feed, as the pages read it (python3-websockets from Debian).

A viewer first gets the whole show ("type": "show", with the protocol's version) and the whole
state ("type": "state"); after that, a show message when the show changes and a patch with the
fields of the state that changed, each taking the next sequence number. `Viewer` keeps what a
page would hold and fails on a gap; `RawViewer` reads the frames off a plain socket, to see what
has already arrived at a given instant.
"""
import asyncio
import base64
import json
import os
import select
import socket
import struct

import websockets

PROTOCOL = 2
TIMEOUT = 5


class Viewer:
    """A WebSocket viewer holding the show and the state as a page does."""

    def __init__(self, ws):
        self.ws = ws
        self.show = None
        self.state = None
        self.seq = None
        self.awaiting = False
        self.messages = []  # every message, pongs and errors included
        self.bytes = 0  # the payload bytes of every message

    @classmethod
    async def connect(cls, url):
        viewer = cls(await websockets.connect(url, compression=None, max_size=None))
        show = await viewer.recv()
        state = await viewer.recv()
        if show.get("type") != "show" or show.get("protocol") != PROTOCOL or state.get("type") != "state":
            raise AssertionError(f"welcome: {show.get('type')}/{show.get('protocol')}, {state.get('type')}")
        return viewer

    async def close(self):
        await self.ws.close()

    async def send(self, message):
        await self.ws.send(json.dumps(message))

    async def recv(self, timeout=TIMEOUT):
        text = await asyncio.wait_for(self.ws.recv(), timeout)
        self.bytes += len(text.encode())
        message = json.loads(text)
        self.messages.append(message)
        self.apply(message)
        return message

    def apply(self, message):
        kind = message.get("type")
        if kind is None:
            return  # a pong or an error
        whole = kind == "state" or self.seq is None or self.awaiting
        if not whole and message["seq"] != self.seq + 1:
            raise AssertionError(f"gap in the sequence: {self.seq} then {message['seq']}")
        self.seq = message["seq"]
        if kind == "show":
            self.show = message
        elif kind == "state":
            self.state = dict(message)
            self.awaiting = False
        else:
            self.state.update(message)

    async def ask_whole(self):
        """Asks for the whole show and state, as a page does after a gap."""
        self.awaiting = True
        await self.send({"command": "state"})

    def view(self):
        """What a page draws from: the show and the state together, as GET /api/state has them
        (the cues without their "active", an absent field as null)."""
        merged = {**self.show, **self.state}
        for key in ("type", "seq", "protocol"):
            merged.pop(key, None)
        return merged

    async def until(self, predicate, timeout=TIMEOUT):
        """Reads messages until the view satisfies `predicate`; returns the messages read."""
        read = []
        async def wait():
            while not predicate(self.view()):
                read.append(await self.recv(timeout))
        await asyncio.wait_for(wait(), timeout)
        return read

    async def quiet(self, seconds):
        """Every message of the next `seconds`, a ping sent each second as a page does."""
        read = []
        loop = asyncio.get_running_loop()
        end = loop.time() + seconds
        next_ping = loop.time()
        while (now := loop.time()) < end:
            if now >= next_ping:
                await self.send({"command": "ping", "t": now * 1000})
                next_ping += 1
            try:
                read.append(await self.recv(min(end, next_ping) - now))
            except asyncio.TimeoutError:
                pass
        return read


def same_state(page, program):
    """The fields that differ between a page's view and GET /api/state, the clocks aside (read at
    another instant), and the machine's role as a backup, which only GET /api/state carries."""
    moving = {"remaining", "elapsed", "progress", "liveRemaining", "overtime", "serverTimeMs",
              "nextSecondAtMs", "liveNextSecondAtMs"}
    program = dict(program, cues=[{k: v for k, v in c.items() if k != "active"} for c in program["cues"]])
    keys = (set(page) | set(program)) - moving - {"follow"}
    return sorted(k for k in keys if page.get(k) != program.get(k))


class RawViewer:
    """A WebSocket viewer on a plain blocking socket: the frames the server sent are in the
    system's buffers, readable at once, or they are not."""

    def __init__(self, port):
        self.sock = socket.create_connection(("127.0.0.1", port))
        key = base64.b64encode(os.urandom(16)).decode()
        self.sock.sendall(f"GET /api/ws HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\n"
                          f"Connection: Upgrade\r\nSec-WebSocket-Key: {key}\r\n"
                          f"Sec-WebSocket-Version: 13\r\n\r\n".encode())
        self.buffer = b""
        while b"\r\n\r\n" not in self.buffer:
            self.buffer += self.sock.recv(65536)
        head, self.buffer = self.buffer.split(b"\r\n\r\n", 1)
        if not head.startswith(b"HTTP/1.1 101"):
            raise AssertionError(f"handshake: {head!r}")

    def readable(self):
        """Whether a frame is already here, without waiting."""
        return bool(self.buffer) or bool(select.select([self.sock], [], [], 0)[0])

    def message(self):
        """The next text message (the server's frames are whole and unmasked)."""
        while (payload := self._frame()) is None:
            self.buffer += self.sock.recv(65536)
        return json.loads(payload)

    def _frame(self):
        data = self.buffer
        if len(data) < 2:
            return None
        length, offset = data[1] & 0x7F, 2
        if length == 126:
            if len(data) < 4:
                return None
            length, offset = struct.unpack("!H", data[2:4])[0], 4
        elif length == 127:
            if len(data) < 10:
                return None
            length, offset = struct.unpack("!Q", data[2:10])[0], 10
        if len(data) < offset + length:
            return None
        self.buffer = data[offset + length:]
        return data[offset:offset + length]

    def close(self):
        self.sock.close()


class HttpClient:
    """One keep-alive HTTP connection posting commands with the access code."""

    def __init__(self, port, code):
        self.sock = socket.create_connection(("127.0.0.1", port))
        self.code = code

    def post(self, command, body=None):
        self.send(command, body)
        return self.answer()

    def send(self, command, body=None):
        data = json.dumps(body or {}).encode()
        self.sock.sendall(f"POST /api/{command} HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                          f"Authorization: Bearer {self.code}\r\nContent-Type: application/json\r\n"
                          f"Content-Length: {len(data)}\r\n\r\n".encode() + data)
        self.command = command

    def answer(self):
        answer = b""
        while b"\r\n\r\n" not in answer:
            answer += self.sock.recv(65536)
        head, body = answer.split(b"\r\n\r\n", 1)
        length = next(int(line.split(b":")[1]) for line in head.split(b"\r\n")
                      if line.lower().startswith(b"content-length"))
        while len(body) < length:
            body += self.sock.recv(65536)
        if not head.startswith(b"HTTP/1.1 200"):
            raise AssertionError(f"{self.command} refused: {head!r} {body!r}")
        return json.loads(body)

    def close(self):
        self.sock.close()
