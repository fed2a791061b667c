"""A small driver of Debian's chromium over the Chrome DevTools Protocol (python3-websockets).

Chromium runs headless with its own profile; one WebSocket to the browser carries every page's
session ("flat" sessions). A Page navigates, sets its viewport, evaluates JavaScript, waits for
a condition with a deadline and takes screenshots, read as RGB pixels through ImageMagick.
"""
import asyncio
import base64
import itertools
import json
import os
import subprocess
import time

import websockets


class ProtocolError(Exception):
    pass


class Chromium:
    def __init__(self, profile_dir, env=None):
        self.profile_dir = profile_dir
        self.env = env
        self.process = None
        self.socket = None
        self.ids = itertools.count(1)
        self.pending = {}
        self.listeners = []

    async def start(self, timeout=30):
        args = ["/usr/bin/chromium", "--headless=new", "--remote-debugging-port=0",
                f"--user-data-dir={self.profile_dir}", "--no-sandbox", "--no-first-run",
                "--no-default-browser-check", "--disable-gpu", "--hide-scrollbars", "--mute-audio",
                "--disable-background-timer-throttling", "--disable-renderer-backgrounding",
                "--disable-backgrounding-occluded-windows", "--disable-extensions",
                "--force-color-profile=srgb", "about:blank"]
        self.process = subprocess.Popen(args, env=self.env, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        active = os.path.join(self.profile_dir, "DevToolsActivePort")
        deadline = time.monotonic() + timeout
        while True:
            try:
                with open(active) as f:
                    lines = f.read().split("\n")
                if len(lines) >= 2 and lines[1]:
                    break
            except FileNotFoundError:
                pass
            if time.monotonic() > deadline or self.process.poll() is not None:
                raise ProtocolError("chromium did not open its DevTools port")
            await asyncio.sleep(0.05)
        url = f"ws://127.0.0.1:{lines[0].strip()}{lines[1].strip()}"
        self.socket = await websockets.connect(url, max_size=None, ping_interval=None)
        self.reader = asyncio.create_task(self.read())

    async def read(self):
        async for text in self.socket:
            message = json.loads(text)
            if "id" in message:
                future = self.pending.pop(message["id"], None)
                if future and not future.done():
                    future.set_result(message)
            else:
                for listener in list(self.listeners):
                    listener(message)

    async def call(self, method, params=None, session=None, timeout=30):
        ident = next(self.ids)
        request = {"id": ident, "method": method, "params": params or {}}
        if session:
            request["sessionId"] = session
        future = asyncio.get_running_loop().create_future()
        self.pending[ident] = future
        await self.socket.send(json.dumps(request))
        reply = await asyncio.wait_for(future, timeout)
        if "error" in reply:
            raise ProtocolError(f"{method}: {reply['error']}")
        return reply.get("result", {})

    async def new_page(self, width, height):
        """A page in a window of its own, so that every page is visible and never throttled."""
        target = await self.call("Target.createTarget", {"url": "about:blank", "newWindow": True})
        attached = await self.call("Target.attachToTarget",
                                   {"targetId": target["targetId"], "flatten": True})
        page = Page(self, attached["sessionId"])
        await page.call("Page.enable")
        await page.call("Runtime.enable")
        await page.set_viewport(width, height)
        return page

    async def stop(self):
        if self.socket:
            try:
                await self.call("Browser.close", timeout=5)
            except Exception:
                pass
            await self.socket.close()
        if self.process:
            try:
                self.process.wait(5)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()


class Page:
    def __init__(self, browser, session):
        self.browser = browser
        self.session = session
        self.width = self.height = 0

    async def call(self, method, params=None):
        return await self.browser.call(method, params, session=self.session)

    async def set_viewport(self, width, height):
        self.width, self.height = width, height
        await self.call("Emulation.setDeviceMetricsOverride",
                        {"width": width, "height": height, "deviceScaleFactor": 1,
                         "mobile": width < 600})

    async def navigate(self, url, timeout=15):
        loaded = asyncio.get_running_loop().create_future()

        def on_event(message):
            if (message.get("sessionId") == self.session
                    and message.get("method") == "Page.loadEventFired" and not loaded.done()):
                loaded.set_result(True)

        self.browser.listeners.append(on_event)
        try:
            await self.call("Page.navigate", {"url": url})
            await asyncio.wait_for(loaded, timeout)
        finally:
            self.browser.listeners.remove(on_event)

    async def evaluate(self, expression):
        result = await self.call("Runtime.evaluate", {"expression": expression,
                                                      "returnByValue": True, "awaitPromise": True})
        if "exceptionDetails" in result:
            raise ProtocolError(f"{expression}: {result['exceptionDetails']}")
        return result["result"].get("value")

    async def box(self, element_id):
        """[left, top, right, bottom] of the element, in CSS pixels."""
        return await self.evaluate(f"""(() => {{
            const r = document.getElementById('{element_id}').getBoundingClientRect();
            return [r.left, r.top, r.right, r.bottom]; }})()""")

    async def settle(self):
        """Returns once two frames have been drawn: whatever the last change laid out is shown."""
        await self.evaluate("new Promise(r => requestAnimationFrame(() => requestAnimationFrame(r)))")

    async def wait_for(self, expression, timeout=5, what=None):
        """The first truthy value of `expression`, polled every 20 ms until the deadline."""
        deadline = time.monotonic() + timeout
        value = None
        while time.monotonic() < deadline:
            value = await self.evaluate(expression)
            if value:
                return value
            await asyncio.sleep(0.02)
        raise AssertionError(f"{what or expression}: not within {timeout} s (last value {value!r})")

    async def screenshot(self, clip=None, scale=1):
        """PNG bytes of the viewport, or of `clip` = (x, y, width, height) in CSS pixels."""
        params = {"format": "png"}
        if clip:
            x, y, w, h = clip
            params["clip"] = {"x": x, "y": y, "width": w, "height": h, "scale": scale}
        result = await self.call("Page.captureScreenshot", params)
        return base64.b64decode(result["data"])

    async def pixels(self, clip=None, scale=1):
        return Pixels.from_png(await self.screenshot(clip, scale))

    async def transparent(self):
        """From now on the page's default background is transparent, as in a video mixer's
        browser source: a screenshot keeps the alpha of what the page leaves undrawn."""
        await self.call("Emulation.setDefaultBackgroundColorOverride",
                        {"color": {"r": 0, "g": 0, "b": 0, "a": 0}})

    async def rgba(self, clip=None, scale=1):
        return RgbaPixels.from_png(await self.screenshot(clip, scale))


class Pixels:
    """RGB pixels of a screenshot, read with ImageMagick."""

    def __init__(self, width, height, data):
        self.width, self.height, self.data = width, height, data

    @staticmethod
    def from_png(png):
        ppm = subprocess.run(["convert", "png:-", "-alpha", "off", "-depth", "8", "ppm:-"],
                             input=png, check=True, stdout=subprocess.PIPE).stdout
        fields, pos = [], 0
        while len(fields) < 4:
            while ppm[pos:pos + 1].isspace():
                pos += 1
            end = pos
            while not ppm[end:end + 1].isspace():
                end += 1
            fields.append(ppm[pos:end])
            pos = end
        width, height = int(fields[1]), int(fields[2])
        return Pixels(width, height, ppm[pos + 1:pos + 1 + width * height * 3])

    def at(self, x, y):
        i = (y * self.width + x) * 3
        return tuple(self.data[i:i + 3])

    def count(self, rgb, tolerance=6):
        """How many pixels are within `tolerance` of `rgb` on every channel."""
        r, g, b = rgb
        data = self.data
        total = 0
        for i in range(0, len(data), 3):
            if (abs(data[i] - r) <= tolerance and abs(data[i + 1] - g) <= tolerance
                    and abs(data[i + 2] - b) <= tolerance):
                total += 1
        return total


class RgbaPixels:
    """RGBA pixels of a screenshot, read with ImageMagick (as a PAM image)."""

    def __init__(self, width, height, data):
        self.width, self.height, self.data = width, height, data

    @staticmethod
    def from_png(png):
        pam = subprocess.run(["convert", "png:-", "-alpha", "on", "-depth", "8", "pam:-"],
                             input=png, check=True, stdout=subprocess.PIPE).stdout
        end = pam.index(b"ENDHDR\n")
        header = dict(line.split(b" ", 1) for line in pam[:end].split(b"\n")[1:] if b" " in line)
        width, height = int(header[b"WIDTH"]), int(header[b"HEIGHT"])
        if int(header[b"DEPTH"]) != 4:
            raise ValueError(f"a PAM image of depth {header[b'DEPTH']}, not RGBA")
        return RgbaPixels(width, height, pam[end + 7:end + 7 + width * height * 4])

    def at(self, x, y):
        i = (y * self.width + x) * 4
        return tuple(self.data[i:i + 4])

    def region(self, left, top, right, bottom):
        """Every pixel of the rectangle, as (x, y, r, g, b, a)."""
        for y in range(max(0, top), min(self.height, bottom)):
            for x in range(max(0, left), min(self.width, right)):
                i = (y * self.width + x) * 4
                yield (x, y) + tuple(self.data[i:i + 4])

    def max_alpha(self, left=0, top=0, right=None, bottom=None):
        right = self.width if right is None else right
        bottom = self.height if bottom is None else bottom
        if (left, top, right, bottom) == (0, 0, self.width, self.height):
            return max(self.data[3::4], default=0)
        return max((p[5] for p in self.region(left, top, right, bottom)), default=0)
