"""Remote control over the web, measured from outside the real program on loopback.

1. A command over HTTP to the first viewer that sees it: a keep-alive HTTP connection posts a
   command, a WebSocket viewer on a plain socket waits for the patch it makes (median, p99, max),
   for start, pause and message, spaced as an operator sends them, then back to back.
2. The bytes a viewer gets while one cue of a 200-cue show runs, pings and their answers aside.
3. 100 WebSocket viewers, silent, then each pinging once a second as the pages do: the
   program's CPU (from /proc, user + system) without viewers and with them.
Usage: web-bench.py PORT CODE PID [SECONDS]   (python3-websockets from Debian)
"""
import asyncio
import os
import random
import statistics
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "app"))
from feedclient import HttpClient, RawViewer, Viewer  # noqa: E402

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


def command_to_viewer(rounds, spaced):
    """Each command `rounds` times, back to back, or `spaced` by 20 to 50 ms as an operator's
    keys or a show-control cue list send them (the frame the last one made is then drawn)."""
    http = HttpClient(port, code)
    viewer = RawViewer(port)
    viewer.message(), viewer.message()  # the show and the state
    commands = {
        "start": lambda i: ("start", {"index": i % 2}),
        "pause": lambda i: ("pause", None),
        "message": lambda i: ("message", {"text": f"bench {i}"}),
    }
    for name, make in commands.items():
        latencies = []
        for i in range(rounds):
            if spaced:
                time.sleep(random.uniform(0.020, 0.050))
            command, body = make(i)
            start = time.perf_counter_ns()
            http.send(command, body)
            patch = viewer.message()
            latencies.append((time.perf_counter_ns() - start) / 1e6)
            http.answer()
            if patch.get("type") != "patch":
                raise SystemExit(f"{name}: {patch}")
        print(f"HTTP {name} to the first viewer, {rounds} rounds {'spaced' if spaced else 'back to back'}: median "
              f"{statistics.median(latencies):.3f} ms, p99 {percentile(latencies, 99):.3f} ms, "
              f"max {max(latencies):.3f} ms")
    http.post("message", {"text": None})
    http.post("start", {"index": 0})
    viewer.close()
    http.close()


async def bytes_while_a_cue_runs(duration):
    viewer = await Viewer.connect(url)
    welcome = viewer.bytes
    read = await viewer.quiet(duration)
    other = sum(len(str(m).encode()) for m in read if "pong" not in m)
    pongs = sum(1 for m in read if "pong" in m)
    await viewer.close()
    print(f"one viewer while a cue of a 200-cue show runs, {duration} s: {other / duration:.1f} bytes/s "
          f"besides {pongs} pongs (the welcome: {welcome} bytes, once)")


async def hundred_viewers(duration):
    before, start = cpu_seconds(), time.monotonic()
    await asyncio.sleep(duration)
    idle_cpu = (cpu_seconds() - before) / (time.monotonic() - start) * 100
    viewers = await asyncio.gather(*(Viewer.connect(url) for _ in range(VIEWERS)))
    await asyncio.sleep(1)
    before, start = cpu_seconds(), time.monotonic()
    await asyncio.sleep(duration)
    silent_cpu = (cpu_seconds() - before) / (time.monotonic() - start) * 100
    before, start = cpu_seconds(), time.monotonic()
    reads = await asyncio.gather(*(v.quiet(duration) for v in viewers))
    viewers_cpu = (cpu_seconds() - before) / (time.monotonic() - start) * 100
    await asyncio.gather(*(v.close() for v in viewers))
    other = sum(1 for read in reads for m in read if "pong" not in m)
    print(f"CPU of the program while a cue runs: {idle_cpu:.2f} % of one core without viewers, "
          f"{silent_cpu:.2f} % with {VIEWERS} silent viewers (+{silent_cpu - idle_cpu:.2f} %), "
          f"{viewers_cpu:.2f} % with {VIEWERS} viewers pinging once a second as the pages do "
          f"(+{viewers_cpu - idle_cpu:.2f} %); {other} messages besides the pongs")


command_to_viewer(300, spaced=True)
command_to_viewer(500, spaced=False)
asyncio.run(bytes_while_a_cue_runs(seconds))
asyncio.run(hundred_viewers(seconds))
