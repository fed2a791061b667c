"""WebSocket clients of the real program (python3-websockets from Debian).

One controller checks the first state, a command and the refusals; then 100 viewers connect at
once and every state change made through the controller must reach every one of them.
Usage: web-viewers.py PORT CODE
"""
import asyncio
import json
import sys

import websockets

port, code = int(sys.argv[1]), sys.argv[2]
url = f"ws://127.0.0.1:{port}/api/ws"
VIEWERS = 100
TIMEOUT = 5


async def next_where(ws, predicate):
    """The next message that satisfies predicate, within TIMEOUT seconds."""
    async def wait():
        while True:
            message = json.loads(await ws.recv())
            if predicate(message):
                return message
    return await asyncio.wait_for(wait(), TIMEOUT)


def check(condition, what):
    if not condition:
        raise SystemExit(f"FAIL: {what}")


async def controller_checks():
    async with websockets.connect(url) as ws:
        first = json.loads(await asyncio.wait_for(ws.recv(), TIMEOUT))
        check(first["running"] is False and first["sessionName"] == "Soirée", "first state")
        refusals = [
            ("pas du JSON", "Message invalide : un objet JSON est attendu"),
            (json.dumps([1]), "Message invalide : un objet JSON est attendu"),
            (json.dumps({"code": code}), "« command » manque ou n'est pas un texte"),
            (json.dumps({"command": "danse", "code": code}), "Commande inconnue : « danse »"),
            (json.dumps({"command": "play"}), "Code d'accès manquant ou incorrect"),
            (json.dumps({"command": "play", "code": "00000000"}), "Code d'accès manquant ou incorrect"),
            (json.dumps({"command": "adjust", "seconds": "x", "code": code}),
             "« seconds » doit être un nombre de secondes (±86400 au plus)"),
        ]
        for text, error in refusals:
            await ws.send(text)
            reply = await next_where(ws, lambda m: "error" in m)
            check(reply == {"error": error}, f"refusal of {text!r}: {reply}")
        # Nothing was applied: the clock still stands.
        await ws.send(json.dumps({"command": "message", "text": "Témoin", "urgent": False, "code": code}))
        state = await next_where(ws, lambda m: m.get("message") == "Témoin")
        check(state["running"] is False, "a refused command ran the clock")
        await ws.send(json.dumps({"command": "message", "text": None, "code": code}))
        await next_where(ws, lambda m: "message" not in m)


async def seconds_seen(ws, changes):
    """The whole seconds a viewer is shown until it has seen `changes` of them change."""
    seen = []
    while len(seen) <= changes:
        state = await next_where(ws, lambda m: m["running"] and not m["paused"])
        shown = int(state["remaining"])
        if not seen or shown != seen[-1]:
            seen.append(shown)
    return seen


async def hundred_viewers():
    viewers = [await websockets.connect(url) for _ in range(VIEWERS)]
    try:
        for ws in viewers:  # each first gets the current state
            await asyncio.wait_for(ws.recv(), TIMEOUT)
        async with websockets.connect(url) as control:
            await asyncio.wait_for(control.recv(), TIMEOUT)
            steps = [
                ({"command": "play"}, lambda m: m["running"] and not m["paused"]),
                ({"command": "pause"}, lambda m: m["paused"]),
                ({"command": "message", "text": "Dernière minute", "urgent": True},
                 lambda m: m.get("message") == "Dernière minute" and m["messageUrgent"]),
                ({"command": "blackout"}, lambda m: m["blackout"]),
                ({"command": "blackout"}, lambda m: not m["blackout"]),
                ({"command": "stop"}, lambda m: not m["running"]),
            ]
            for command, seen in steps:
                await control.send(json.dumps({**command, "code": code}))
                results = await asyncio.gather(*(next_where(ws, seen) for ws in viewers),
                                               return_exceptions=True)
                missed = sum(1 for r in results if isinstance(r, BaseException))
                check(missed == 0, f"{missed} of {VIEWERS} viewers missed {command['command']}")
            # While the cue runs, every viewer sees every shown second, one after the other:
            # serving them never makes the engine skip a second.
            await control.send(json.dumps({"command": "start", "index": 0, "code": code}))
            runs = await asyncio.gather(*(seconds_seen(ws, 3) for ws in viewers),
                                        return_exceptions=True)
            for run in runs:
                check(not isinstance(run, BaseException), f"a viewer stopped hearing: {run!r}")
                check(run == list(range(run[0], run[0] - len(run), -1)), f"seconds skipped: {run}")
            await control.send(json.dumps({"command": "stop", "code": code}))
    finally:
        await asyncio.gather(*(ws.close() for ws in viewers))


asyncio.run(controller_checks())
asyncio.run(hundred_viewers())
print(f"WebSocket: pushes, commands and refusals as expected, {VIEWERS} viewers all served")
