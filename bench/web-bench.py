"""Remote control over the web, measured from outside the real program on loopback.

1. A command over HTTP to the state seen on the WebSocket: a keep-alive HTTP connection posts a
   new message text, a WebSocket viewer waits for the push carrying it (median, p99, max).
2. 100 WebSocket viewers while a cue runs: the program's CPU (from /proc, user + system) without
   viewers and with them, how far apart the viewers receive each shown second (the spread), and
   how long after the engine's own boundary each push was stamped (the tick and the push behind it).
Usage: web-bench.py PORT CODE PID [SECONDS]   (python3-websockets from Debian)
"""
import asyncio
import json
import os
import statistics
import sys
import time

import websockets

port, code, pid = int(sys.argv[1]), sys.argv[2], int(sys.argv[3])
seconds = int(sys.argv[4]) if len(sys.argv) > 4 else 30
url = f"ws://127.0.0.1:{port}/api/ws"
VIEWERS = 100
TICKS = os.sysconf("SC_CLK_TCK")


def cpu_seconds():
    with open(f"/proc/{pid}/stat") as f:
        fields = f.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / TICKS  # utime + stime


def percentile(values, p):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(round(p / 100 * (len(ordered) - 1))))]


async def post(reader, writer, path, body):
    data = json.dumps(body).encode()
    writer.write(f"POST {path} HTTP/1.1\r\nHost: bench\r\nAuthorization: Bearer {code}\r\n"
                 f"Content-Type: application/json\r\nContent-Length: {len(data)}\r\n\r\n".encode() + data)
    head = await reader.readuntil(b"\r\n\r\n")
    length = next(int(line.split(b":")[1]) for line in head.split(b"\r\n")
                  if line.lower().startswith(b"content-length"))
    await reader.readexactly(length)
    if not head.startswith(b"HTTP/1.1 200"):
        raise SystemExit(f"command refused: {head!r}")


async def command_to_push(rounds=500):
    reader, writer = await asyncio.open_connection("127.0.0.1", port)
    async with websockets.connect(url) as ws:
        await ws.recv()
        latencies = []
        for i in range(rounds):
            text = f"bench {i}"
            start = time.perf_counter_ns()
            await post(reader, writer, "/api/message", {"text": text})
            while json.loads(await ws.recv()).get("message") != text:
                pass
            latencies.append((time.perf_counter_ns() - start) / 1e6)
        await post(reader, writer, "/api/message", {"text": None})
    writer.close()
    print(f"command over HTTP to state on the WebSocket, {rounds} rounds: "
          f"median {statistics.median(latencies):.3f} ms, p99 {percentile(latencies, 99):.3f} ms, "
          f"max {max(latencies):.3f} ms")


async def viewer(ws, arrivals, stamps):
    """Records when this viewer learns each shown second, and the server's stamps."""
    previous = None
    async for text in ws:
        now = time.time_ns() / 1e6
        state = json.loads(text)
        shown = int(state["remaining"])
        if previous is not None and shown != previous:
            arrivals.setdefault(shown, []).append(now)
            stamps.setdefault(shown, state["serverTimeMs"])
        previous = shown


async def hundred_viewers():
    reader, writer = await asyncio.open_connection("127.0.0.1", port)
    await post(reader, writer, "/api/play", {})
    await asyncio.sleep(2)
    before, start = cpu_seconds(), time.monotonic()
    await asyncio.sleep(seconds / 3)
    idle_cpu = (cpu_seconds() - before) / (time.monotonic() - start) * 100

    sockets = [await websockets.connect(url) for _ in range(VIEWERS)]
    # The boundaries the engine announces, from one viewer's pushes: the second shown next
    # changes at nextSecondAtMs.
    arrivals, stamps, boundaries = {}, {}, {}
    async def announcer():
        async with websockets.connect(url) as ws:
            async for text in ws:
                state = json.loads(text)
                if state.get("nextSecondAtMs") is not None:
                    boundaries[int(state["remaining"]) - 1] = state["nextSecondAtMs"]
    tasks = [asyncio.create_task(viewer(ws, arrivals, stamps)) for ws in sockets]
    tasks.append(asyncio.create_task(announcer()))
    await asyncio.sleep(1)
    before, start = cpu_seconds(), time.monotonic()
    await asyncio.sleep(seconds)
    viewers_cpu = (cpu_seconds() - before) / (time.monotonic() - start) * 100
    for task in tasks:
        task.cancel()
    await asyncio.gather(*(ws.close() for ws in sockets), return_exceptions=True)
    await post(reader, writer, "/api/stop", {})
    writer.close()

    complete = {s: a for s, a in arrivals.items() if len(a) == VIEWERS}
    spreads = [max(a) - min(a) for a in complete.values()]
    late = [stamps[s] - boundaries[s] for s in complete if s in boundaries]
    print(f"CPU of the program while a cue runs: {idle_cpu:.2f} % of one core without viewers, "
          f"{viewers_cpu:.2f} % with {VIEWERS} viewers")
    print(f"{len(complete)} shown seconds reached all {VIEWERS} viewers; spread of the arrival "
          f"across viewers: median {statistics.median(spreads):.2f} ms, "
          f"max {max(spreads):.2f} ms")
    print(f"push stamped after the engine's boundary: median {statistics.median(late):.1f} ms, "
          f"max {max(late):.1f} ms (server clock in whole ms)")


asyncio.run(command_to_push())
asyncio.run(hundred_viewers())
