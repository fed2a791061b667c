"""The overlay page over a transparent background (see web-overlay.sh).

Usage: web-overlay.py PORT CODE DIR KAIRON_PID
The program already runs, idle; it is driven over its HTTP API and stopped with SIGSTOP to lose
the link. With KAIRON_SCREENSHOT_DIR set, every case is kept as a picture (PNG with alpha).
"""
import asyncio
import json
import os
import signal
import sys

from cdp import Chromium
from checks import check, finish
from webapi import Api

port, code, workdir, kairon_pid = int(sys.argv[1]), sys.argv[2], sys.argv[3], int(sys.argv[4])
api = Api(port, code)
base = api.base
shots = os.environ.get("KAIRON_SCREENSHOT_DIR")

GREEN, WARNING, DANGER, OVERTIME = (46, 204, 113), (241, 196, 15), (231, 76, 60), (255, 59, 48)
WHITE, DOT = (255, 255, 255), (138, 138, 142)


def near(rgba, rgb, tolerance=8):
    return all(abs(a - b) <= tolerance for a, b in zip(rgba[:3], rgb))


def drawn_box(shot):
    """[left, top, right, bottom] of every pixel that is not fully transparent, or None."""
    alpha, width = shot.data[3::4], shot.width
    box = None
    for y in range(shot.height):
        row = alpha[y * width:(y + 1) * width]
        if row.count(0) == width:
            continue
        left, right = width - len(row.lstrip(b"\0")), len(row.rstrip(b"\0"))
        box = [left, y, right, y + 1] if box is None else [min(box[0], left), box[1], max(box[2], right), y + 1]
    return box


async def shoot(page, name):
    shot = await page.rgba()
    if shots:
        os.makedirs(shots, exist_ok=True)
        with open(os.path.join(shots, f"{name}.png"), "wb") as f:
            f.write(await page.screenshot())
    return shot


async def nothing_on_air(page, what, name):
    await page.settle()
    shot = await shoot(page, name)
    check(shot.max_alpha() == 0, f"{what}: something drawn at {drawn_box(shot)}")
    check("Connexion" not in await page.evaluate("document.body.innerText"), f"{what}: a link panel in the page")


async def on_air(page, colour, what, name, parts=("name", "bar")):
    """The overlay drawn in `colour`: opaque digits with a dark outline, nothing outside the box,
    transparent corners."""
    await page.settle()
    width, height = page.width, page.height
    shot = await shoot(page, name)
    corner = round(width * 0.02)
    for x, y in [(0, 0), (width - corner, 0), (0, height - corner), (width - corner, height - corner)]:
        check(shot.max_alpha(x, y, x + corner, y + corner) == 0, f"{what}: the corner at {x},{y} is not transparent")
    box = await page.box("overlay")
    time = await page.box("time")
    size = await page.evaluate("parseFloat(getComputedStyle(document.getElementById('time')).fontSize)")
    # The outline reaches 0.07 em beyond the digits' box.
    margin = size * 0.07 + 1
    drawn = drawn_box(shot)
    check(drawn is not None and drawn[0] >= box[0] - margin and drawn[1] >= box[1] - margin
          and drawn[2] <= box[2] + margin and drawn[3] <= box[3] + margin,
          f"{what}: drawn at {drawn}, outside the overlay's box {box}")
    pixels = list(shot.region(*(round(v) for v in time)))
    digits = sum(1 for p in pixels if p[5] == 255 and near(p[2:], colour))
    outline = sum(1 for p in pixels if p[5] >= 200 and max(p[2:5]) <= 40)
    area = (time[2] - time[0]) * (time[3] - time[1])
    check(digits > area * 0.08, f"{what}: {digits} opaque pixels of {colour} in the digits' box of {area:.0f}")
    check(outline > area * 0.01, f"{what}: {outline} dark outline pixels in the digits' box of {area:.0f}")
    check(not any(p[5] == 255 and near(p[2:], c) for p in pixels for c in (GREEN, WARNING, DANGER, OVERTIME)
                  if c != colour and not near(c, colour, 40)),
          f"{what}: another state's colour in the digits")
    if "name" in parts:
        name_box = await page.box("cue-name")
        white = sum(1 for p in shot.region(*(round(v) for v in name_box)) if p[5] == 255 and near(p[2:], WHITE))
        check(white > 50, f"{what}: the cue's name in white ({white} pixels)")
    return box, time, size


async def wait_text(page, condition, what):
    await page.wait_for(f"(t => {condition})(document.getElementById('time').textContent)", 5, what)


async def run():
    browser = Chromium(os.path.join(workdir, "chromium"))
    await browser.start()
    with open(os.path.join(workdir, "pids"), "a") as pids:
        pids.write(f"{browser.process.pid}\n")
    try:
        page = await browser.new_page(1920, 1080)
        await page.transparent()
        await page.navigate(base + "/overlay?show=name,bar")
        await page.wait_for("document.fonts.status === 'loaded' && document.getElementById('dot').hidden", 10,
                            "the overlay live with its fonts")
        await nothing_on_air(page, "idle", "web-overlay-idle-1920x1080")

        api.post("play")
        await wait_text(page, "t.startsWith('09:')", "the keynote's time on air")
        box, time, size = await on_air(page, GREEN, "running 1920x1080", "web-overlay-running-1920x1080")
        check(abs(box[2] - 1920 * 0.97) <= 1 and abs(box[3] - 1080 * 0.97) <= 1, f"bottom-right box at {box}")
        check(abs(size - 120) < 0.01, f"the digits at {size} px, not 120")
        check(await page.evaluate("document.getElementById('cue-name').textContent") == "Keynote d'ouverture",
              "the cue's name")
        fill = await page.box("progress-fill")
        bar = await page.box("progress")
        check(bar[2] - bar[0] > 300 and 0 <= fill[2] - fill[0] <= (bar[2] - bar[0]) * 0.02 + 1,
              f"the bar {bar} barely begun: {fill}")

        await page.set_viewport(3840, 2160)
        box, time, size = await on_air(page, GREEN, "running 3840x2160", "web-overlay-running-3840x2160")
        check(abs(size - 240) < 0.01 and abs(box[2] - 3840 * 0.97) <= 1, f"at 4K: digits {size} px, box {box}")
        await page.set_viewport(1920, 1080)

        api.set_remaining(90)
        await wait_text(page, "t.startsWith('01:')", "the warning zone")
        await on_air(page, WARNING, "warning", "web-overlay-warning-1920x1080")
        api.set_remaining(20)
        await wait_text(page, "t.startsWith('00:')", "the danger zone")
        await on_air(page, DANGER, "danger", "web-overlay-danger-1920x1080")
        api.set_remaining(-20)
        await wait_text(page, "t.startsWith('-00:')", "overtime")
        await on_air(page, OVERTIME, "overtime", "web-overlay-overtime-1920x1080")
        fill = await page.box("progress-fill")
        check(abs((fill[2] - fill[0]) - (bar[2] - bar[0])) <= 1, f"the bar full in overtime: {fill} of {bar}")

        api.post("blackout")
        await page.wait_for("document.getElementById('overlay').hidden", 5, "blackout takes the overlay off")
        await nothing_on_air(page, "blackout", "web-overlay-blackout-1920x1080")
        api.post("blackout")
        await page.wait_for("!document.getElementById('overlay').hidden", 5, "back after the blackout")

        # The link lost: a grey dot in the corner and the time still counting, nothing else.
        os.kill(kairon_pid, signal.SIGSTOP)
        try:
            await page.wait_for("!document.getElementById('dot').hidden", 6, "the dot of a lost link")
            shown = await page.evaluate("document.getElementById('time').textContent")
            await wait_text(page, f"t !== {json.dumps(shown)}", "the time counting on without the program")
            await page.settle()
            shot = await shoot(page, "web-overlay-link-lost-1920x1080")
            check(near(shot.at(1920 - 13, 1080 - 13), DOT, 2) and shot.at(1920 - 13, 1080 - 13)[3] == 255,
                  f"the dot's pixel {shot.at(1920 - 13, 1080 - 13)}")
            for x, y in [(0, 0), (1880, 0), (0, 1040)]:
                check(shot.max_alpha(x, y, x + 40, y + 40) == 0, f"lost link: the corner at {x},{y} is drawn")
            check("Connexion" not in await page.evaluate("document.body.innerText"), "a link panel on air")
            check(not await page.evaluate("document.body.classList.contains('offline')"), "the page dimmed on air")
        finally:
            os.kill(kairon_pid, signal.SIGCONT)
        await page.wait_for("document.getElementById('dot').hidden", 10, "the dot gone once the link is back")

        # Placed and sized by the query; without `show`, the digits alone.
        await page.navigate(base + "/overlay?position=top-left&scale=2")
        await page.wait_for("!document.getElementById('overlay').hidden && document.fonts.status === 'loaded'", 10,
                            "the top-left overlay")
        box, time, size = await on_air(page, OVERTIME, "top-left, twice the size", "web-overlay-top-left-2x-1920x1080",
                                       parts=())
        check(abs(box[0] - 1920 * 0.03) <= 1 and abs(box[1] - 1080 * 0.03) <= 1, f"top-left box at {box}")
        check(abs(size - 240) < 0.01, f"scale 2: digits at {size} px")
        check(await page.evaluate("document.getElementById('cue-name').hidden && document.getElementById('progress').hidden"),
              "no name and no bar unless asked")
        await page.navigate(base + "/overlay?position=center&scale=0.5&show=name")
        await page.wait_for("!document.getElementById('overlay').hidden && document.fonts.status === 'loaded'", 10,
                            "the centred overlay")
        box, time, size = await on_air(page, OVERTIME, "centre, half the size", "web-overlay-center-half-1920x1080",
                                       parts=("name",))
        check(abs((box[0] + box[2]) / 2 - 960) <= 1 and abs((box[1] + box[3]) / 2 - 540) <= 1, f"centred box at {box}")
        check(abs(size - 60) < 0.01, f"scale 0.5: digits at {size} px")
    finally:
        await browser.stop()


asyncio.run(run())
finish("overlay: transparent around opaque outlined digits in the state colour, placed by its query, "
       "nothing on air but a dot when the link is lost")
