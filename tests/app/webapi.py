"""The program's HTTP API as the browser tests drive it: commands with the access code, and the
state document."""
import json
import urllib.request


class Api:
    def __init__(self, port, code):
        self.base = f"http://127.0.0.1:{port}"
        self.code = code

    def post(self, command, body=None):
        """POST /api/COMMAND with the code (and `body` as JSON); the state document it answers."""
        data = json.dumps(body).encode() if body is not None else None
        request = urllib.request.Request(f"{self.base}/api/{command}", data=data, method="POST",
                                         headers={"Authorization": f"Bearer {self.code}",
                                                  "Content-Type": "application/json"})
        with urllib.request.urlopen(request) as answer:
            return json.load(answer)

    def state(self):
        with urllib.request.urlopen(f"{self.base}/api/state") as answer:
            return json.load(answer)

    def set_remaining(self, seconds):
        """Brings the running cue to `seconds` remaining, however long the steps before took."""
        self.post("adjust", {"seconds": seconds - self.state()["liveRemaining"]})
