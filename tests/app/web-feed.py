"""The WebSocket feed of the real program, message by message (see web-feed.sh).

Usage: web-feed.py PORT CODE CONSOLE_X CONSOLE_Y
"""
import asyncio
import json
import subprocess
import sys
import time
import urllib.request

from checks import check, finish
from feedclient import HttpClient, RawViewer, Viewer, same_state

port, code, console_x, console_y = int(sys.argv[1]), sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
url = f"ws://127.0.0.1:{port}/api/ws"
CLOCK_FIELDS = {"remaining", "elapsed", "progress", "liveRemaining", "serverTimeMs",
                "nextSecondAtMs", "liveNextSecondAtMs"}


def program_state():
    with urllib.request.urlopen(f"http://127.0.0.1:{port}/api/state", timeout=5) as answer:
        return json.load(answer)


def kinds(messages):
    return [m.get("type", "pong" if "pong" in m else "error") for m in messages]


# The console's layout, from its QML: the menu bar, the top bar, the cue list's header, then
# rows of 64 spaced by 8.
def cue_row_y(row):
    return console_y + 28 + 56 + 52 + 72 * row + 32


async def scenario():
    http = HttpClient(port, code)
    http.post("start", {"index": 0})
    await asyncio.sleep(1.3)

    # A viewer that comes mid-cue: the whole show, then the whole state, read as it connects.
    viewer = await Viewer.connect(url)
    show, state = viewer.messages
    check(len(show["cues"]) == 200 and show["sessionName"] == "Gala des lumières", "the show on connection")
    check(show["cues"][0] == {"name": "Cue 1", "speaker": "", "duration": 600, "warningThreshold": 120,
                              "dangerThreshold": 30, "colorHex": None, "color": None},
          f"a cue as the show gives it: {show['cues'][0]}")
    check("cues" not in state and state["running"] and not state["paused"], "the state on connection")
    check(598 < state["remaining"] < 599.5, f"the clock read at connection: {state['remaining']}")
    check(0 < state["nextSecondAtMs"] - state["serverTimeMs"] <= 1000, "the next second within the second")
    check(same_state(viewer.view(), program_state()) == [], "the viewer holds the program's state")

    # Ten seconds of a running cue: nothing but the answers to the pings.
    quiet = await viewer.quiet(10)
    check(set(kinds(quiet)) == {"pong"} and len(quiet) >= 9, f"a running cue sent {kinds(quiet)}")
    print(f"10 s of a running cue of a 200-cue show: {len(quiet)} pongs, "
          f"{sum(len(json.dumps(m)) for m in quiet if 'pong' not in m)} other bytes")

    # A command over HTTP: its change is already on the viewer's socket when the answer is read.
    raw = RawViewer(port)
    raw.message(), raw.message()  # the show and the state
    for command, body, expected in [("pause", None, {"paused": True}),
                                    ("message", {"text": "Micro 2"}, {"message": "Micro 2"}),
                                    ("pause", None, {"paused": False})]:
        http.post(command, body)
        check(raw.readable(), f"{command}: the change reached the viewer before the answer")
        patch = raw.message()
        check(patch["type"] == "patch" and all(patch.get(k) == v for k, v in expected.items()),
              f"{command}: {patch}")
        read = await viewer.until(lambda v: all(v.get(k) == v2 for k, v2 in expected.items()))
        check(kinds(read) in (["patch"], ["pong", "patch"]), f"{command} is one patch: {kinds(read)}")
    pause_patch = [m for m in viewer.messages if m.get("paused") is True][-1]
    check(set(pause_patch) == {"type", "seq", "paused"} | CLOCK_FIELDS,
          f"the pause's patch carries the pause and the clocks: {sorted(pause_patch)}")
    raw.close()

    # A viewer that missed a message asks for the whole show and state, and goes on from there.
    await viewer.ask_whole()
    read = await viewer.until(lambda v: not viewer.awaiting)
    check([k for k in kinds(read) if k != "pong"] == ["show", "state"], f"the whole again: {kinds(read)}")
    check(same_state(viewer.view(), program_state()) == [], "the viewer holds the program's state again")

    # A cue renamed in the cue editor (neither the one on air nor the next): one show message.
    # Selecting its row first is one patch: the selection alone while a cue is active (the day's
    # end still counts from that cue), with the durations after the row when none is.
    subprocess.run(["xdotool", "mousemove", str(console_x + 150), str(cue_row_y(5)), "click", "1"], check=True)
    read = await viewer.until(lambda v: v.get("selectedCueIndex") == 5)
    view = viewer.view()
    expected = {"type", "seq", "selectedCueIndex"}
    if view["activeCueIndex"] is None:
        expected.add("laterCuesDuration")
        check(view["laterCuesDuration"] == sum(c["duration"] for c in view["cues"][6:]),
              f"the durations after the selected row: {view['laterCuesDuration']}")
    patches = [set(m) for m in read if m.get("type") == "patch"]
    check(patches == [expected], f"the selection is one patch: {patches}")
    subprocess.run(["xdotool", "key", "Return"], check=True)
    time.sleep(0.8)  # the editor opens, its name selected
    subprocess.run(["xdotool", "type", "--delay", "30", "Remise des prix"], check=True)
    subprocess.run(["xdotool", "key", "Return"], check=True)
    read = await viewer.until(lambda v: v["cues"][5]["name"] == "Remise des prix")
    read += await viewer.quiet(1.5)
    check([k for k in kinds(read) if k != "pong"] == ["show"], f"the rename sent {kinds(read)}")
    check(same_state(viewer.view(), program_state()) == [], "the viewer holds the renamed show")
    await viewer.close()
    http.close()


asyncio.run(scenario())
finish("WebSocket feed: the show and the state, then only what changes, at once")
