"""WebSocket clients of the real program (python3-websockets from Debian).

One controller checks the first messages, a command and the refusals; then 100 viewers connect
at once and every state change made through the controller must reach every one of them, and
while a cue runs none of them hears anything more.
Usage: web-viewers.py PORT CODE
"""
import asyncio
import json
import sys

from feedclient import Viewer

port, code = int(sys.argv[1]), sys.argv[2]
url = f"ws://127.0.0.1:{port}/api/ws"
VIEWERS = 100
TIMEOUT = 5


def check(condition, what):
    if not condition:
        raise SystemExit(f"FAIL: {what}")


async def controller_checks():
    control = await Viewer.connect(url)
    show, state = control.messages
    check(show["sessionName"] == "Soirée" and [c["name"] for c in show["cues"]] == ["Ouverture", "Débat"],
          f"the show first: {show}")
    check(state["running"] is False and "cues" not in state, f"then the state: {state}")
    # The blink the HTTP checks left on ends by itself (3 s), with a patch of its own: once it
    # has, the replies below are the only messages.
    await control.until(lambda v: not v["blinkActive"])
    seq = control.seq
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
        await control.ws.send(text)
        reply = await control.recv()
        check(reply == {"error": error}, f"refusal of {text!r}: {reply}")
    # Nothing was applied: the clock still stands, and the next message is the one for this.
    await control.send({"command": "message", "text": "Témoin", "urgent": False, "code": code})
    patch = await control.recv()
    check(patch == {"type": "patch", "seq": seq + 1, "message": "Témoin"}, f"one patch: {patch}")
    check(control.view()["running"] is False, "a refused command ran the clock")
    await control.send({"command": "message", "text": None, "code": code})
    patch = await control.recv()
    check(patch == {"type": "patch", "seq": seq + 2, "message": None}, f"message off air: {patch}")
    await control.close()


async def hundred_viewers():
    viewers = await asyncio.gather(*(Viewer.connect(url) for _ in range(VIEWERS)))
    control = await Viewer.connect(url)
    try:
        await asyncio.gather(*(v.until(lambda v: not v["blinkActive"]) for v in viewers + [control]))
        steps = [
            ({"command": "play"}, lambda v: v["running"] and not v["paused"]),
            ({"command": "pause"}, lambda v: v["paused"]),
            ({"command": "message", "text": "Dernière minute", "urgent": True},
             lambda v: v.get("message") == "Dernière minute" and v["messageUrgent"]),
            ({"command": "blackout"}, lambda v: v["blackout"]),
            ({"command": "blackout"}, lambda v: not v["blackout"]),
            ({"command": "start", "index": 1}, lambda v: v["activeCueIndex"] == 1 and not v["paused"]),
        ]
        for command, seen in steps:
            await control.send({**command, "code": code})
            results = await asyncio.gather(*(v.until(seen) for v in viewers), return_exceptions=True)
            missed = [r for r in results if isinstance(r, BaseException)]
            check(not missed, f"{len(missed)} of {VIEWERS} viewers missed {command['command']}: {missed[:1]!r}")
            check(all(len(r) == 1 for r in results), f"{command['command']} took more than one message")
        # While the cue runs, no viewer hears anything more.
        quiet = await asyncio.gather(*(v.quiet(2) for v in viewers))
        extra = sum(1 for read in quiet for m in read if "pong" not in m)
        check(extra == 0, f"{extra} messages while the cue ran: {[m for read in quiet for m in read if 'pong' not in m][:2]}")
        await control.send({"command": "stop", "code": code})
        await asyncio.gather(*(v.until(lambda v: not v["running"]) for v in viewers))
    finally:
        await asyncio.gather(*(v.close() for v in viewers + [control]))


asyncio.run(controller_checks())
asyncio.run(hundred_viewers())
print(f"WebSocket: the show, the state and its patches, commands and refusals as expected, "
      f"{VIEWERS} viewers all served")
