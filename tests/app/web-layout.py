"""The layout of the web stage and confidence pages against long messages (see web-layout.sh).

Usage: web-layout.py PORT CODE DIR SHOW_START_MS
The program already runs, on a show planned to start at SHOW_START_MS (ms since the epoch); it is
driven over its HTTP API. With KAIRON_SCREENSHOT_DIR set, every case is kept as a picture.
"""
import asyncio
import json
import os
import sys

from cdp import Chromium
from checks import check, finish
from webapi import Api

port, code, workdir, show_start_ms = int(sys.argv[1]), sys.argv[2], sys.argv[3], int(sys.argv[4])
api = Api(port, code)
base = api.base
shots = os.environ.get("KAIRON_SCREENSHOT_DIR")

GREEN, ACCENT, DANGER = (46, 204, 113), (255, 107, 0), (231, 76, 60)
TRACK = (35, 35, 37)  # white at 0.1 over the background (10, 10, 12)
LINE_HEIGHT = 1.21    # of the pages' wrapped texts, in ems

LONG_MESSAGE = (
    "Merci de conclure, il reste deux minutes avant la pause déjeuner, puis nous accueillerons sur "
    "la grande scène les lauréats du prix de la fondation pour la photographie officielle avec tous "
    "les partenaires et les mécènes de la soirée, qui nous font l'honneur de leur présence ce soir, "
    "avant le dîner servi dans les salons du premier étage où l'orchestre de chambre jouera jusqu'à "
    "minuit pour tous les invités de la fondation et leurs familles venues de loin.")
SIXTY_FIVE = "Merci de conclure, il reste deux minutes avant la pause déjeuner"
HUNDRED_FIFTY = SIXTY_FIVE + " ; les lauréats sont attendus en coulisses pour la photographie officielle à 13 h 30 !"


async def ink(page, box, rgb, tolerance=8):
    """The rectangle [left, top, right, bottom] (page pixels) of what `box` shows in `rgb`, or None."""
    left, top, right, bottom = box
    scale = min(1, 400_000 / max(1, (right - left) * (bottom - top))) ** 0.5
    pixels = await page.pixels((left, top, right - left, bottom - top), scale=scale)
    xs, ys = [], []
    r, g, b = rgb
    data, width = pixels.data, pixels.width
    for i in range(0, len(data), 3):
        if abs(data[i] - r) <= tolerance and abs(data[i + 1] - g) <= tolerance and abs(data[i + 2] - b) <= tolerance:
            xs.append(i // 3 % width)
            ys.append(i // 3 // width)
    if not xs:
        return None
    return [left + min(xs) / scale, top + min(ys) / scale, left + (max(xs) + 1) / scale, top + (max(ys) + 1) / scale]


async def shoot(page, name):
    if shots:
        os.makedirs(shots, exist_ok=True)
        with open(os.path.join(shots, f"{name}.png"), "wb") as f:
            f.write(await page.screenshot())


# How many lines a text takes in the stage's banner at its full size, laid out in a hidden copy
# of it (the banner is placed against the page itself).
BANNER_LINES = """((text, size) => {
    const copy = document.createElement('div');
    copy.className = 'banner';
    copy.style.cssText = `visibility: hidden; font-size: ${size}px`;
    copy.textContent = text;
    document.body.append(copy);
    const style = getComputedStyle(copy);
    const height = copy.clientHeight - parseFloat(style.paddingTop) - parseFloat(style.paddingBottom);
    copy.remove();
    return Math.round(height / (LINE_HEIGHT * size));
})""".replace("LINE_HEIGHT", str(LINE_HEIGHT))

# How many lines the confidence message takes at `size`: the message itself at that size for a
# moment, its own size written back before anything is drawn.
MESSAGE_LINES = """((size) => {
    const message = document.getElementById('message');
    const shown = message.style.fontSize;
    message.style.fontSize = `${size}px`;
    const height = message.clientHeight;
    message.style.fontSize = shown;
    return Math.round(height / (LINE_HEIGHT * size));
})""".replace("LINE_HEIGHT", str(LINE_HEIGHT))


async def message_of_lines(page, lines, size):
    """The longest beginning of the long message that takes `lines` lines in the banner."""
    words = LONG_MESSAGE.split(" ")
    fitting = None
    for n in range(1, len(words) + 1):
        text = " ".join(words[:n])
        taken = await page.evaluate(f"{BANNER_LINES}({json.dumps(text)}, {size})")
        if taken > lines:
            break
        if taken == lines:
            fitting = text
    return fitting


async def put_message(page, element_id, text):
    api.post("message", {"text": text, "urgent": False})
    await page.wait_for(f"document.getElementById('{element_id}').textContent === {json.dumps(text)}", 5,
                        f"{element_id} shows the message")
    await page.settle()


async def stage_case(page, width, height, lines):
    what = f"stage {width}x{height}, {lines} line(s)"
    await page.set_viewport(width, height)
    await page.settle()
    size = round(min(width * 0.05, 64))
    text = await message_of_lines(page, lines, size)
    if not check(text is not None, f"{what}: a message of {lines} lines"):
        return
    await put_message(page, "banner", text)
    await shoot(page, f"web-stage-banner-{lines}-lines-{width}x{height}")
    banner = await page.box("banner")
    bar = await page.box("progress")
    time = await page.box("time")
    name = await page.box("cue-name")
    check(abs(banner[3] - (height - 60)) <= 1, f"{what}: banner ends at {banner[3]}, not {height - 60}")
    check(banner[1] >= height * 0.5 - 1, f"{what}: banner rises to {banner[1]}, above the lower half")
    check(bar[3] <= banner[1], f"{what}: bar to {bar[3]}, banner from {banner[1]}")
    check(name[1] >= 0 and name[3] <= time[1] + 1 and time[3] <= bar[1] + 1,
          f"{what}: name {name}, digits {time}, bar {bar}")
    # In pixels: the bar's track at its right end, the green digits whole above the banner.
    track = (await page.pixels((bar[2] - 12, bar[1] + 3, 4, 4))).at(1, 1)
    check(all(abs(a - b) <= 4 for a, b in zip(track, TRACK)), f"{what}: bar track {track}")
    digits = await ink(page, time, GREEN)
    check(digits is not None and digits[1] > time[1] and digits[3] < min(time[3], banner[1])
          and digits[2] - digits[0] > width * 0.2, f"{what}: digits' ink {digits} in {time}")


async def confidence_case(page, width, height, text):
    what = f"confidence {width}x{height}, {len(text)} characters"
    await page.set_viewport(width, height)
    await put_message(page, "message", text)
    await shoot(page, f"web-confidence-message-{len(text)}-{width}x{height}")
    shown = await page.evaluate("""(() => {
        const m = document.getElementById('message');
        const style = getComputedStyle(m);
        return {scrollWidth: m.scrollWidth, clientWidth: m.clientWidth, scrollHeight: m.scrollHeight,
                clientHeight: m.clientHeight, size: parseFloat(style.fontSize), overflow: style.textOverflow,
                whiteSpace: style.whiteSpace}; })()""")
    message = await page.box("message")
    time = await page.box("time")
    centre = await page.box("centre")
    clock = await page.box("wall-clock")
    full = round(max(14, width * 0.03))
    lines = round(shown["clientHeight"] / (LINE_HEIGHT * shown["size"]))
    natural = await page.evaluate(f"{MESSAGE_LINES}({full})")
    check(shown["whiteSpace"] == "normal" and shown["scrollWidth"] <= shown["clientWidth"]
          and shown["scrollHeight"] <= shown["clientHeight"], f"{what}: message cut: {shown}")
    check(natural >= 2, f"{what}: the message takes {natural} line(s) at its size")
    if natural <= 3:
        check(shown["size"] == full and lines == natural, f"{what}: {lines} lines of {shown['size']} px")
    else:
        check(shown["size"] < full and lines * LINE_HEIGHT * shown["size"] <= 3 * LINE_HEIGHT * full + 1,
              f"{what}: {lines} lines of {shown['size']} px for {natural} at {full} px")
    check(0 <= message[0] and message[2] <= width and message[3] <= height, f"{what}: message at {message}")
    schedule = await page.box("schedule")
    check(clock[3] <= schedule[1] + 1 and schedule[3] <= time[1] + 1 and time[3] <= message[1]
          and centre[1] <= time[1] and time[3] <= centre[3] + 0.5,
          f"{what}: clock {clock}, schedule {schedule}, time {time}, centre {centre}, message {message}")
    words = await ink(page, message, ACCENT, tolerance=10)
    check(words is not None and words[3] - words[1] > (lines - 1) * LINE_HEIGHT * shown["size"],
          f"{what}: the message's ink {words} for {lines} lines")
    digits = await ink(page, time, GREEN)
    check(digits is not None and digits[1] > time[1] and digits[3] < time[3] and digits[2] - digits[0] > width * 0.2,
          f"{what}: digits' ink {digits} in {time}")


def check_schedule_document():
    """GET /api/state: the show 5 min 40 s to 6 min 30 s late, its first cue running."""
    s = api.state()
    schedule = s["schedule"]
    offset = schedule["offsetSeconds"]
    check(330 <= offset < 390 and offset == int(offset), f"offset {offset} s")
    check(schedule["showStartMs"] == show_start_ms, f"show start {schedule['showStartMs']}, not {show_start_ms}")
    check(schedule["text"] == "Programme : +6 min de retard", f"schedule text {schedule['text']!r}")
    check(schedule["color"] == "#E74C3C", f"schedule colour {schedule['color']}")
    planned = [show_start_ms, show_start_ms + 600_000]
    rows = [{"plannedStartMs": c["plannedStartMs"], "expectedStartMs": c["expectedStartMs"]} for c in s["cues"]]
    check(schedule["cues"] == rows, f"schedule.cues {schedule['cues']} against the rows {rows}")
    check([r["plannedStartMs"] for r in rows] == planned, f"planned starts {rows}")
    # The second cue when the first one's clock runs out.
    expected = rows[1]["expectedStartMs"]
    runs_out = s["serverTimeMs"] + s["liveRemaining"] * 1000
    check(rows[0]["expectedStartMs"] is None and expected is not None and abs(expected - runs_out) <= 2,
          f"expected starts {rows}, the first cue's clock running out at {runs_out}")
    end = schedule["projectedEndMs"]
    check(end % 1000 == 0 and expected is not None and end == (expected + 1_200_000) // 1000 * 1000,
          f"projected end {end}, the second cue expected at {expected}")


async def schedule_case(page, width, height):
    """The line under the wall clock: its text in the danger red, left-aligned with the clock, in
    Inter SemiBold at 3 % of the page's width."""
    what = f"confidence schedule {width}x{height}"
    await page.set_viewport(width, height)
    await page.settle()
    await shoot(page, f"web-confidence-schedule-{width}x{height}")
    shown = await page.evaluate("""(() => {
        const s = document.getElementById('schedule');
        const style = getComputedStyle(s);
        return {text: s.textContent, hidden: s.hidden, size: parseFloat(style.fontSize),
                weight: style.fontWeight, family: style.fontFamily, colour: style.color,
                scrollWidth: s.scrollWidth, clientWidth: s.clientWidth}; })()""")
    check(shown["text"] == "Programme : +6 min de retard" and not shown["hidden"], f"{what}: {shown}")
    check(abs(shown["size"] - max(14, width * 0.03)) < 0.05 and shown["weight"] == "600"
          and shown["family"].split(",")[0].strip('"') == "Inter", f"{what}: font {shown}")
    check(shown["colour"] == "rgb(231, 76, 60)", f"{what}: colour {shown['colour']}")
    check(shown["scrollWidth"] <= shown["clientWidth"], f"{what}: the line is cut: {shown}")
    schedule = await page.box("schedule")
    clock = await page.box("wall-clock")
    time = await page.box("time")
    check(abs(schedule[0] - clock[0]) <= 1 and abs(schedule[1] - clock[3]) <= 1 and schedule[3] <= time[1] + 1,
          f"{what}: clock {clock}, schedule {schedule}, time {time}")
    words = await ink(page, schedule, DANGER, tolerance=10)
    check(words is not None and words[0] - schedule[0] < shown["size"] and words[2] - words[0] > width * 0.2,
          f"{what}: the red ink {words} in {schedule}")
    digits = await ink(page, time, GREEN)
    check(digits is not None and digits[1] > time[1] and digits[3] < time[3], f"{what}: digits' ink {digits} in {time}")


async def run():
    browser = Chromium(os.path.join(workdir, "chromium"))
    await browser.start()
    with open(os.path.join(workdir, "pids"), "a") as pids:
        pids.write(f"{browser.process.pid}\n")
    try:
        stage = await browser.new_page(1280, 720)
        confidence = await browser.new_page(1280, 720)
        for page, path in [(stage, "/stage"), (confidence, "/confidence")]:
            await page.navigate(base + path)
            await page.wait_for("!document.body.classList.contains('offline') && document.fonts.status === 'loaded'",
                                10, f"{path} live with its fonts")
        api.post("play")
        api.post("adjust", {"seconds": -150})
        await stage.wait_for("document.getElementById('time').textContent.startsWith('07:')", 5, "stage at 07:xx")
        for width, height in [(844, 390), (700, 400), (1280, 720), (1920, 1080), (3840, 2160)]:
            for lines in (1, 2, 3):
                await stage_case(stage, width, height, lines)
        check_schedule_document()
        await confidence.wait_for("document.getElementById('schedule').textContent !== ''", 5, "the schedule line")
        for width, height in [(1920, 1080), (1280, 720), (390, 844)]:
            await schedule_case(confidence, width, height)
        for width, height in [(1920, 1080), (390, 844), (844, 390)]:
            for text in (SIXTY_FIVE, HUNDRED_FIFTY):
                await confidence_case(confidence, width, height, text)
    finally:
        await browser.stop()


asyncio.run(run())
finish("web layout: banners, messages, digits, bars and the schedule line whole at every size")
