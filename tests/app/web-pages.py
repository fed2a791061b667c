"""The web pages of the real program in headless chromium (see web-pages.sh).

Usage: web-pages.py KAIRON SHOW PORT CODE DIR
The program is started, stopped and restarted here (its id written to DIR/pids) and driven over
its HTTP API; the stage and confidence pages are open side by side, each in a window of its own.
With KAIRON_SCREENSHOT_DIR set, the pages are also photographed at 390×844 and 1920×1080.
"""
import asyncio
import datetime
import json
import os
import random
import signal
import subprocess
import sys
import time
import zoneinfo

from cdp import Chromium
from checks import check, finish
from webapi import Api

kairon, show, port, code, workdir = sys.argv[1], sys.argv[2], int(sys.argv[3]), sys.argv[4], sys.argv[5]
base = f"http://127.0.0.1:{port}"
shots = os.environ.get("KAIRON_SCREENSHOT_DIR")
venue = zoneinfo.ZoneInfo("Europe/Paris")
WIDTH, HEIGHT = 960, 540

# The palette, and what the blink overlay (0.85) and the dimmed digits (0.35) and banner (0.5)
# make of it over the background (10, 10, 12).
MUTED, GREEN, YELLOW, RED, OVERTIME = (112, 112, 120), (46, 204, 113), (241, 196, 15), (231, 76, 60), (255, 59, 48)
ACCENT, WHITE, BLACK, BLUE = (255, 107, 0), (255, 255, 255), (0, 0, 0), (59, 130, 246)
STATES = [MUTED, GREEN, YELLOW, RED, OVERTIME, BLUE]


def over_background(rgb, opacity, under=(10, 10, 12)):
    return tuple(round(opacity * c + (1 - opacity) * u) for c, u in zip(rgb, under))


DIM_OVERTIME = over_background(OVERTIME, 0.35)
BLINK_ORANGE, BLINK_WHITE = over_background(ACCENT, 0.85), over_background(WHITE, 0.85)
DIM_BANNER = over_background(OVERTIME, 0.5)

# ---- The program ------------------------------------------------------------------------------

class App:
    def __init__(self):
        self.process = None

    def start(self):
        trace = os.path.join(workdir, "trace")
        with open(trace, "w") as err:
            self.process = subprocess.Popen([kairon, show], stderr=err, stdout=subprocess.DEVNULL,
                                            env=dict(os.environ, KAIRON_STARTUP_TRACE="1"))
        with open(os.path.join(workdir, "pids"), "a") as pids:
            pids.write(f"{self.process.pid}\n")
        deadline = time.monotonic() + 20
        while time.monotonic() < deadline:
            with open(trace) as f:
                if "kairon-startup web-listening" in f.read():
                    return
            time.sleep(0.02)
        raise SystemExit("FAIL: the program never served its web pages")

    def signal(self, sig):
        self.process.send_signal(sig)

    def stop(self):
        if self.process and self.process.poll() is None:
            self.process.send_signal(signal.SIGCONT)
            self.process.kill()
        if self.process:
            self.process.wait()


api = Api(port, code)
post, state = api.post, api.state


# ---- Expected texts ---------------------------------------------------------------------------

def countdown(seconds, show_sign=True):
    t = int(abs(seconds) // 1)
    h, m, s = t // 3600, t % 3600 // 60, t % 60
    sign = "-" if seconds < 0 and show_sign else ""
    return f"{sign}{m:02}:{s:02}" if t < 3600 else f"{sign}{h}:{m:02}:{s:02}"


def shown_second_text(second):
    """The text of a countdown's shown whole second (negative ones from -1 for "-00:00")."""
    return countdown(second) if second >= 0 else "-" + countdown(-1 - second)


def shown_second(value):
    return int(value // 1) if value >= 0 else -1 - int(-value // 1)


DAYS = ["lundi", "mardi", "mercredi", "jeudi", "vendredi", "samedi", "dimanche"]
MONTHS = ["janvier", "février", "mars", "avril", "mai", "juin", "juillet", "août", "septembre",
          "octobre", "novembre", "décembre"]


def venue_time(ms):
    return datetime.datetime.fromtimestamp(ms / 1000, venue)


def venue_date_text(ms):
    d = venue_time(ms)
    return f"{DAYS[d.weekday()]} {d.day} {MONTHS[d.month - 1]} {d.year}"


# ---- Page helpers -----------------------------------------------------------------------------

# A browser whose clock is 3.7 s ahead of the program's: the page must find the offset. The
# recorder reads the true clock.
SKEWED_CLOCK = """
  window.__realNow = Date.now.bind(Date);
  Date.now = () => window.__realNow() + 3700;
"""

# A page whose WebSocket loses one patch on demand (window.__dropNext), or reads every show
# message as of another protocol (window.__protocolShift, before the page loads); it keeps what
# the page sends.
LOSSY_SOCKET = """
  window.__sent = [];
  const Native = WebSocket;
  window.WebSocket = class extends Native {
    set onmessage(handler) {
      super.onmessage = handler && ((event) => {
        const message = JSON.parse(event.data);
        if (message.type === 'patch' && window.__dropNext) {
          window.__dropNext = false;
          return;
        }
        if (message.type === 'show' && window.__protocolShift)
          return handler({data: JSON.stringify({...message, protocol: message.protocol + window.__protocolShift})});
        handler(event);
      });
    }
    send(data) {
      window.__sent.push(data);
      super.send(data);
    }
  };
"""

RECORDER = """(() => {
  const now = window.__realNow ?? Date.now.bind(Date);
  const record = (id, list) => {
    const element = document.getElementById(id);
    window[list] = [];
    new MutationObserver(() => window[list].push([now(), element.textContent, element.style.opacity]))
      .observe(element, {childList: true, characterData: true, subtree: true, attributes: true,
                         attributeFilter: ['style']});
  };
  record('time', '__time');
  if (document.getElementById('wall-clock')) record('wall-clock', '__clock');
  window.__marker = 'never reloaded';
  return true;
})()"""


async def text(page, element_id):
    return await page.evaluate(f"document.getElementById('{element_id}').textContent")


async def visible(page, element_id):
    return await page.evaluate(f"!document.getElementById('{element_id}').closest('[hidden]')")


async def rect(page, element_id):
    return await page.evaluate(f"""(() => {{
        const r = document.getElementById('{element_id}').getBoundingClientRect();
        return [r.x, r.y, r.width, r.height]; }})()""")


async def share(page, element_id, rgb, tolerance=6):
    """The share of the element's box drawn in `rgb`."""
    pixels = await page.pixels(await rect(page, element_id), scale=0.5)
    return pixels.count(rgb, tolerance) / (pixels.width * pixels.height)


async def expect_colour(page, element_id, rgb, what, tolerance=6, minimum=0.05):
    """The element shows `rgb` (on at least `minimum` of its box) and none of the other state
    colours."""
    deadline = time.monotonic() + 3
    while True:
        pixels = await page.pixels(await rect(page, element_id), scale=0.5)
        area = pixels.width * pixels.height
        found = pixels.count(rgb, tolerance) / area
        others = {c: pixels.count(c, tolerance) / area for c in STATES if c != rgb}
        if found > minimum and all(v < 0.002 for v in others.values()):
            return True
        if time.monotonic() > deadline:
            return check(False, f"{what}: {found:.3f} of {rgb}, others {others}")
        await asyncio.sleep(0.05)


async def until(page, expression, what, timeout=5):
    try:
        return await page.wait_for(expression, timeout, what)
    except AssertionError as error:
        check(False, str(error))
        return None


async def shoot(pages, name):
    """Each page at a phone's size and at the operators' screen sizes, then back at the test's size."""
    if not shots:
        return
    os.makedirs(shots, exist_ok=True)
    for width, height in [(390, 844), (1150, 750), (1920, 1080), (3840, 2160)]:
        for page_name, page in pages.items():
            await page.set_viewport(width, height)
            await page.evaluate("new Promise(r => requestAnimationFrame(() => requestAnimationFrame(r)))")
            with open(os.path.join(shots, f"{page_name}-{name}-{width}x{height}.png"), "wb") as f:
                f.write(await page.screenshot())
    for page in pages.values():
        await page.set_viewport(WIDTH, HEIGHT)


def live_expression(live):
    check_offline = "document.body.classList.contains('offline')"
    title = "document.getElementById('link-title').textContent"
    return f"!{check_offline}" if live else f"{check_offline} && {title} === 'Connexion perdue'"


# ---- Checks -----------------------------------------------------------------------------------

async def digit_timing(app, stage, confidence, skewed):
    """Every change of the digits on the engine's instants: ms after each.

    A page that keeps the engine's second is a few milliseconds off it, except when the machine
    holds the browser back a moment (a sanitized program beside it, a loaded CI machine): one
    change may then come late. So each change is within 150 ms (a page counting on its own,
    from a message's arrival or its own start, is up to half a second off), and half of them
    within 25 ms, a frame and a half (a page off by a steady few frames fails here). The run
    prints how close they came."""
    await stage.evaluate("window.__time = []")
    await skewed.evaluate("window.__time = []")
    await confidence.evaluate("window.__time = []; window.__clock = []")
    await stage.wait_for("new Set(window.__time.map(c => c[1])).size >= 4", 9, "four seconds shown")
    # The pages count by themselves: with the program stopped just after a change (so that no
    # message comes), the next change is still on time.
    seen = await stage.evaluate("window.__time.length")
    await stage.wait_for(f"window.__time.length > {seen}", 3, "a change of the digits")
    app.signal(signal.SIGSTOP)
    stopped = time.time() * 1000
    await asyncio.sleep(1.3)
    resumed = time.time() * 1000
    app.signal(signal.SIGCONT)
    silent = [c for c in await stage.evaluate("window.__time") if stopped < c[0] < resumed]
    check(len({c[1] for c in silent}) >= 1, f"the digits stood still while the program was stopped: {silent}")
    await stage.wait_for("new Set(window.__time.map(c => c[1])).size >= 7", 6, "seven seconds shown")
    s = state()
    deltas = []
    for page, count_from, value_key in [(stage, "nextSecondAtMs", "remaining"),
                                        (confidence, "liveNextSecondAtMs", "liveRemaining"),
                                        (skewed, "nextSecondAtMs", "remaining")]:
        changes, last = [], None
        for at, shown, _ in await page.evaluate("window.__time"):
            if shown != last:
                changes.append((at, shown))
                last = shown
        first_second = shown_second(s[value_key])
        for at, shown in changes[1:]:  # the first may be the start of the recording
            k = round((at - s[count_from]) / 1000)
            delta = at - (s[count_from] + k * 1000)
            deltas.append(delta)
            check(-150 <= delta <= 150, f"{count_from}: a change {delta} ms from the engine's second")
            check(shown == shown_second_text(first_second - 1 - k),
                  f"{count_from}: {shown!r} shown after the change of second {k}")
    # The wall clock follows the page's estimate of the program's clock, which may be a few
    # milliseconds either side of this browser's: each change is judged against the nearest second.
    for at, shown, _ in (await confidence.evaluate("window.__clock"))[1:]:
        second = round(at / 1000) * 1000
        delta = at - second
        deltas.append(delta)
        check(-150 <= delta <= 150, f"wall clock changed {delta} ms from a whole second")
        check(shown == venue_time(second).strftime("%H:%M:%S"),
              f"wall clock {shown!r} at {venue_time(at)}")
    middle = sorted(abs(d) for d in deltas)[len(deltas) // 2]
    check(middle <= 25, f"half of the digits' changes {middle} ms or more from the engine's instants")
    return deltas


async def run():
    app = App()
    app.start()
    browser = Chromium(os.path.join(workdir, "chromium"), env=dict(os.environ, TZ="America/New_York"))
    await browser.start()
    with open(os.path.join(workdir, "pids"), "a") as pids:
        pids.write(f"{browser.process.pid}\n")
    try:
        await scenario(app, browser)
    finally:
        await browser.stop()
        app.stop()


async def scenario(app, browser):
    stage = await browser.new_page(WIDTH, HEIGHT)
    confidence = await browser.new_page(WIDTH, HEIGHT)
    index = await browser.new_page(WIDTH, HEIGHT)
    skewed = await browser.new_page(WIDTH, HEIGHT)
    await skewed.call("Page.addScriptToEvaluateOnNewDocument", {"source": SKEWED_CLOCK})
    lossy = await browser.new_page(WIDTH, HEIGHT)
    await lossy.call("Page.addScriptToEvaluateOnNewDocument", {"source": LOSSY_SOCKET})
    pages = {"stage": stage, "confidence": confidence}
    for page, path in [(stage, "/stage"), (confidence, "/confidence"), (index, "/"), (skewed, "/stage"),
                       (lossy, "/confidence")]:
        await page.navigate(base + path)
        await page.wait_for(live_expression(True) + " && document.fonts.status === 'loaded'", 10,
                            f"{path} live with its fonts")
    for page in [stage, confidence, skewed]:
        await page.evaluate(RECORDER)
    # The true clock pinned for one read, so that no millisecond passes between the two.
    skew = await skewed.evaluate("""(() => { const real = window.__realNow; window.__realNow = () => 1000;
        const shown = Date.now(); window.__realNow = real; return shown - 1000; })()""")
    check(skew == 3700, f"the skewed browser's clock: {skew} ms ahead")

    # ---- The countdown's rule, in the pages' own module ----
    # A document 5.3 s from the end, its second changing at 1000 ms: the digits read 5 until
    # then, however early the page's estimate of the program's clock (1 ms, a whole second and
    # more behind), then 4 right after, and the next change is at 1000 ms.
    rule = await stage.evaluate("""import('/pages/kairon.js').then(({Countdown, shownSecond}) => {
        const c = new Countdown(5.3, 1000);
        return [-5000, -1, 0, 999, 1000, 1001, 1999].map(t => shownSecond(c.valueAt(t)))
            .concat([c.nextChange(-1), c.nextChange(1001), new Countdown(7.5, null).valueAt(0)]);
    })""")
    check(rule == [5, 5, 5, 5, 5, 4, 4, 1000, 2000, 7.5], f"the countdown's shown seconds: {rule}")

    # ---- Idle, index ----
    check(await text(index, "show-name") == "Soirée de gala", "index names the show")
    check(await index.evaluate("document.title") == "Kairon — Soirée de gala", "index title")
    check(await index.evaluate("[...document.querySelectorAll('a')].map(a => a.getAttribute('href') + ' ' + a.querySelector('.choice-title').textContent).join('|')")
          == "/stage Stage|/confidence Confidence|/overlay Overlay", "index links to every display")
    check(await text(stage, "time") == "00:00", "idle stage shows 00:00")
    check(not await visible(stage, "cue-name"), "idle stage has no cue name")
    await expect_colour(stage, "time", MUTED, "idle stage digits muted")
    check(await text(confidence, "time") == "00:00", "idle confidence shows 00:00")
    check(not await visible(confidence, "speaker") and not await visible(confidence, "cue-name"),
          "idle confidence has no speaker and no cue")
    check(await text(confidence, "next-text") == "Suivant : Débat", "idle confidence shows what comes next")
    await expect_colour(confidence, "time", MUTED, "idle confidence digits muted")
    # A show without a start time: no timetable anywhere.
    s = state()
    check(s["schedule"] is None, f"no schedule without a start time: {s['schedule']}")
    check(all("plannedStartMs" not in c and "expectedStartMs" not in c for c in s["cues"]),
          "no cue times without a start time")
    check(not await visible(confidence, "schedule") and await text(confidence, "schedule") == "",
          "no schedule line without a start time")

    # ---- Running: green, texts, digit timing ----
    post("play")
    await until(stage, "['10:00', '09:59', '09:58'].includes(document.getElementById('time').textContent)", "stage counts from 10:00")
    check(await text(stage, "cue-name") == "Ouverture", "stage names the cue")
    await expect_colour(stage, "time", GREEN, "running stage digits green")
    check(await text(confidence, "speaker") == "Ana" and await text(confidence, "cue-name") == "Ouverture",
          "confidence shows speaker and cue")
    await expect_colour(confidence, "time", GREEN, "running confidence digits green")
    await expect_colour(confidence, "speaker", ACCENT, "speaker in the accent colour", tolerance=10,
                        minimum=0.005)
    check(not await visible(confidence, "schedule"), "no schedule line while a show without a start time runs")
    deltas = await digit_timing(app, stage, confidence, skewed)
    await skewed.call("Page.close")
    await shoot({**pages, "index": index}, "running")

    # ---- A cue's own colour replaces only the calm green ----
    post("start", {"index": 1})
    await until(confidence, "document.getElementById('speaker').textContent === 'Ben'", "second cue on the confidence")
    await expect_colour(stage, "time", BLUE, "cue colour on the stage")
    await expect_colour(confidence, "time", BLUE, "cue colour on the confidence")
    check(await text(confidence, "next-text") == "Suivant : Clôture", "next cue after the second")

    # ---- Warning, danger ----
    post("start", {"index": 0})
    api.set_remaining(105)
    await until(stage, "document.getElementById('time').textContent.startsWith('01:4')", "stage at 01:4x")
    await expect_colour(stage, "time", YELLOW, "warning stage digits yellow")
    await expect_colour(confidence, "time", YELLOW, "warning confidence digits yellow")
    await expect_colour(stage, "progress-fill", YELLOW, "progress bar in the state colour")
    api.set_remaining(18)
    await until(stage, "document.getElementById('time').textContent.startsWith('00:1')", "stage at 00:1x")
    await expect_colour(stage, "time", RED, "danger stage digits red")
    await expect_colour(confidence, "time", RED, "danger confidence digits red")

    # ---- Freeze: the stage holds, the confidence counts on ----
    post("freeze")
    await until(stage, "!document.getElementById('freeze').hidden", "freeze badge")
    check(await text(stage, "freeze") == "FREEZE", "freeze badge text")
    await expect_colour(stage, "freeze", YELLOW, "freeze badge yellow", tolerance=10)
    held = await text(stage, "time")
    before = await text(confidence, "time")
    await until(confidence, f"document.getElementById('time').textContent !== '{before}'", "confidence counts on while frozen")
    check(await text(stage, "time") == held, "frozen stage digits stay")
    post("freeze")
    await until(stage, "document.getElementById('freeze').hidden", "freeze released")

    # ---- Overtime: sign, colour, pulse 1.0 / 0.35 every 0.6 s ----
    api.set_remaining(-2)
    await until(stage, "document.getElementById('time').textContent.startsWith('-00:0')", "stage in overtime")
    await until(confidence, "document.getElementById('time').textContent.startsWith('-00:0')", "confidence in overtime")
    await stage.evaluate("window.__time = []")
    seen_bright = seen_dim = False
    deadline = time.monotonic() + 4
    while time.monotonic() < deadline and not (seen_bright and seen_dim):
        seen_bright |= await share(stage, "time", OVERTIME) > 0.05
        seen_dim |= await share(stage, "time", DIM_OVERTIME, tolerance=4) > 0.05
        await asyncio.sleep(0.1)
    check(seen_bright and seen_dim, f"overtime digits pulse (bright {seen_bright}, dim {seen_dim})")
    await stage.wait_for("new Set(window.__time.map(c => c[2])).size >= 2 && window.__time.length >= 4", 4)
    toggles, last = [], None
    for at, _, opacity in await stage.evaluate("window.__time"):
        if opacity != last:
            toggles.append((at, opacity))
            last = opacity
    gaps = [b[0] - a[0] for a, b in zip(toggles[1:], toggles[2:])]
    check(gaps and all(540 <= g <= 660 for g in gaps), f"pulse every 0.6 s: {gaps}")
    check({o for _, o in toggles[1:]} == {"1", "0.35"}, f"pulse opacities {toggles}")
    await expect_colour(confidence, "time", OVERTIME, "overtime confidence digits, steady")

    # ---- Messages ----
    post("message", {"text": "Plus fort", "urgent": False})
    await until(stage, "document.getElementById('banner').textContent === 'Plus fort' && !document.getElementById('banner').hidden", "normal banner")
    banner = await stage.pixels(await rect(stage, "banner"))
    area = banner.width * banner.height
    check(banner.count((3, 3, 4), 3) / area > 0.5 and banner.count(ACCENT, 8) / area > 0.03,
          "normal banner: accent text on translucent black")
    check(await text(confidence, "message") == "Plus fort", "confidence message text")
    await expect_colour(confidence, "message", ACCENT, "normal message in accent", tolerance=10)
    post("message", {"text": "Conclure", "urgent": True})
    await until(stage, "document.getElementById('banner').textContent === 'Conclure'", "urgent banner")
    seen_bright = seen_dim = False
    deadline = time.monotonic() + 4
    while time.monotonic() < deadline and not (seen_bright and seen_dim):
        banner = await stage.pixels(await rect(stage, "banner"))
        area = banner.width * banner.height
        # Bright: white text on red; dim: the whole banner at half opacity.
        seen_bright |= banner.count(OVERTIME) / area > 0.4 and banner.count(WHITE, 10) / area > 0.03
        seen_dim |= banner.count(DIM_BANNER, 4) / area > 0.4
        await asyncio.sleep(0.1)
    check(seen_bright and seen_dim, f"urgent banner pulses, white on red (bright {seen_bright}, dim {seen_dim})")
    await expect_colour(confidence, "message", OVERTIME, "urgent message red", tolerance=10)
    await shoot(pages, "overtime-urgent")

    # ---- Blink: orange and white, every 0.15 s ----
    await stage.evaluate("""(() => {
        const blink = document.getElementById('blink');
        window.__blink = [];
        new MutationObserver(() => window.__blink.push([Date.now(), blink.style.background]))
            .observe(blink, {attributes: true, attributeFilter: ['style']});
    })()""")
    post("blink")
    seen_orange = seen_white = False
    corners = []
    deadline = time.monotonic() + 2.5
    while time.monotonic() < deadline and not (seen_orange and seen_white):
        corner = (await stage.pixels((0, 0, 16, 16))).at(8, 8)
        seen_orange |= all(abs(a - b) <= 3 for a, b in zip(corner, BLINK_ORANGE))
        seen_white |= all(abs(a - b) <= 3 for a, b in zip(corner, BLINK_WHITE))
        corners.append(corner)
        await asyncio.sleep(random.uniform(0, 0.15))  # never in step with the strobe
    check(seen_orange and seen_white, f"blink strobes orange and white ({seen_orange}, {seen_white}): {corners}")
    await until(stage, "document.getElementById('blink').hidden", "blink over after 3 s", timeout=5)
    flips = await stage.evaluate("window.__blink")
    gaps = [b[0] - a[0] for a, b in zip(flips, flips[1:])]
    check(len(gaps) >= 10 and all(110 <= g <= 190 for g in gaps), f"blink flips every 0.15 s: {gaps}")

    # ---- Blackout: black, no banner; the confidence runs on ----
    post("blackout")
    await until(stage, "!document.getElementById('blackout').hidden && document.getElementById('banner').hidden", "blackout")
    whole = await stage.pixels(scale=0.25)
    check(whole.count(BLACK, 0) == whole.width * whole.height, "blackout is all black")
    check((await text(confidence, "time")).startswith("-0"), "confidence still shows the time in blackout")
    await expect_colour(confidence, "time", OVERTIME, "confidence in blackout")
    post("blackout")
    post("message", {"text": None})
    await until(stage, "document.getElementById('blackout').hidden && document.getElementById('banner').hidden", "blackout off, message gone")

    # ---- A lost message: the page sees the gap, asks for the whole state, and shows it ----
    await lossy.evaluate("window.__dropNext = true")
    post("message", {"text": "Perdu", "urgent": False})
    await until(lossy, "window.__dropNext === false", "the lossy page lost the message's patch")
    await asyncio.sleep(0.3)
    check(not await visible(lossy, "message"), "a lost patch is not shown")
    check('{"command":"state"}' not in await lossy.evaluate("window.__sent"), "no gap seen yet")
    post("message", {"text": "Retrouvé", "urgent": False})
    await until(lossy, "document.getElementById('message').textContent === 'Retrouvé' && !document.getElementById('message').hidden",
                "the page after the gap shows the whole state")
    check(await lossy.evaluate("window.__sent.filter(m => m === '{\"command\":\"state\"}').length") == 1,
          "the page asked for the whole state once")
    post("message", {"text": None})
    await until(lossy, "document.getElementById('message').hidden", "and follows the patches after it")

    # ---- Clock mode: the venue's time and date ----
    post("clockmode")
    await until(stage, "!document.getElementById('clock').hidden", "clock mode")
    shown, at = await stage.evaluate("[document.getElementById('clock-time').textContent, Date.now()]")
    check(shown in (venue_time(at).strftime("%H:%M:%S"), venue_time(at - 60).strftime("%H:%M:%S")),
          f"clock shows {shown!r} at {venue_time(at)} in Paris")
    check(await text(stage, "clock-date") == venue_date_text(at), f"clock date {await text(stage, 'clock-date')!r}")
    await expect_colour(stage, "clock-time", WHITE, "clock digits white")
    await shoot(pages, "clock")
    post("clockmode")
    await until(stage, "document.getElementById('clock').hidden", "clock mode off")

    # ---- Doors ----
    post("stop")
    doors_at = (venue_time(time.time() * 1000) + datetime.timedelta(minutes=2)).strftime("%H:%M")
    target = post("doors", {"at": doors_at})["doorsTargetMs"]
    await until(stage, "!document.getElementById('doors').hidden", "doors countdown")
    check(await stage.evaluate("document.querySelector('.doors-title').textContent") == "LE SHOW COMMENCE DANS", "doors title")
    shown, at = await stage.evaluate("[document.getElementById('doors-time').textContent, Date.now()]")
    check(shown in (countdown((target - at) / 1000, False), countdown((target - at + 60) / 1000, False)),
          f"doors shows {shown!r} {target - at} ms before")
    await expect_colour(stage, "doors-time", ACCENT, "doors digits orange", tolerance=8)
    post("doors", {"at": None})
    await until(stage, "document.getElementById('doors').hidden", "doors cancelled")

    # ---- A program of another protocol: the page says so and stops ----
    outdated = await browser.new_page(WIDTH, HEIGHT)
    await outdated.call("Page.addScriptToEvaluateOnNewDocument",
                        {"source": LOSSY_SOCKET + "window.__protocolShift = 1;"})
    await outdated.navigate(base + "/stage")
    await until(outdated, "document.getElementById('link-title').textContent === \"Page d'une autre version de Kairon\"",
                "a page of another protocol says so")
    check(await outdated.evaluate("document.querySelector('.link-help').textContent") == "Rechargez la page",
          "and asks for a reload")
    await asyncio.sleep(1.5)
    check(await outdated.evaluate("document.body.classList.contains('offline')"), "the panel stays")
    check(await outdated.evaluate("window.__sent.filter(m => m.includes('ping')).length") <= 1,
          "the page stopped talking to the program")
    await shoot({"outdated": outdated}, "outdated")

    # ---- The connection: no answer, then the program gone, then back ----
    post("play")
    app.signal(signal.SIGSTOP)
    stopped = time.monotonic()
    for page in pages.values():
        await until(page, live_expression(False), "Connexion perdue while the program does not answer", timeout=3.5)
    lost_after = time.monotonic() - stopped
    check(lost_after <= 3.0, f"'Connexion perdue' {lost_after:.2f} s after the program stopped answering")
    app.signal(signal.SIGCONT)
    for page in pages.values():
        await until(page, live_expression(True), "live again once the program answers", timeout=8)
    app.stop()
    killed = time.monotonic()
    for page in pages.values():
        await until(page, live_expression(False), "Connexion perdue once the program is gone", timeout=3.5)
    gone_after = time.monotonic() - killed
    check(gone_after <= 3.0, f"'Connexion perdue' {gone_after:.2f} s after the program ended")
    await shoot(pages, "lost")
    app.start()
    for page in pages.values():
        await until(page, live_expression(True), "live again after the restart", timeout=10)
        check(await page.evaluate("window.__marker") == "never reloaded", "reconnected without a reload")
    # Killed in mid-cue, the program takes its show up where its clock is: the pages count on,
    # a few seconds into the cue started before the program stopped answering.
    resumed = state()
    check(resumed["running"] and not resumed["paused"] and resumed["activeCueIndex"] == 0,
          f"the restarted program did not take its cue up: {resumed}")
    counting = "/^09:[0-5][0-9]$/.test(document.getElementById('time').textContent)"
    await until(stage, counting, "counting again after the restart")
    await until(confidence, counting, "confidence counting again")
    await expect_colour(stage, "time", GREEN, "green again after the restart")

    print(f"digit changes against the engine's instants: {len(deltas)} changes, "
          f"{min(deltas)} to {max(deltas)} ms from them (mean {sum(deltas) / len(deltas):.1f})")
    print(f"'Connexion perdue' after {lost_after:.2f} s (no answer) and {gone_after:.2f} s (program ended)")


asyncio.run(run())
finish("web pages: every state, its colours, its timing and the connection as expected")
