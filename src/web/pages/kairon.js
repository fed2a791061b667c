// What every page shares: the connection to the program, the estimate of the program's clock,
// the countdown's rules and text, and the drawing helpers.
//
// A page counts by itself: from the state it knows the instants, on the program's clock, at
// which the shown seconds change, and it redraws at those instants on its estimate of that
// clock. Messages only bring changes (a running clock sends none); their arrival times are
// never used to count.

// ---- Countdown text and colour, as on the desktop displays -----------------------------------

const two = (n) => String(n).padStart(2, "0");

// "05:07" under an hour, "1:02:03" from an hour on, whole seconds rounded down in magnitude; a
// "-" in front of a negative value only with `showSign` (so -0.4 reads "-00:00").
export function formatCountdown(seconds, showSign) {
    if (!Number.isFinite(seconds))
        return "--:--";
    const t = Math.min(Math.floor(Math.abs(seconds)), 9e15);
    const h = Math.floor(t / 3600), m = Math.floor((t % 3600) / 60), s = t % 60;
    const sign = seconds < 0 && showSign ? "-" : "";
    return t < 3600 ? `${sign}${two(m)}:${two(s)}` : `${sign}${h}:${two(m)}:${two(s)}`;
}

// The whole second a countdown shows, as formatCountdown rounds it: down in magnitude with the
// sign kept, so 0.4 and -0.4 are different seconds. It drops by one at each change.
export function shownSecond(value) {
    return value >= 0 ? Math.floor(value) : -1 - Math.floor(-value);
}

// The active cue of a state document, or null.
export function activeCue(state) {
    return state.activeCueIndex === null ? null : state.cues[state.activeCueIndex] ?? null;
}

// The colour of a countdown showing `value` seconds of `cue`, first match wins: no cue → muted;
// below zero → overtime; at or below the danger threshold → danger; at or below the warning
// threshold → warning; the cue's own colour; the calm green.
export function stateColor(cue, value) {
    if (!cue)
        return "var(--text-muted)";
    if (value < 0)
        return "var(--state-overtime)";
    if (value <= cue.dangerThreshold)
        return "var(--state-danger)";
    if (value <= cue.warningThreshold)
        return "var(--state-warning)";
    return cue.color ?? "var(--state-normal)";
}

const lastMsOfASecond = 999;

// A countdown of the program: `value` seconds, running down one second per second with its
// shown second changing at `nextSecondAtMs` (the program's clock) and every 1000 ms after, or
// standing still when that instant is null.
export class Countdown {
    constructor(value, nextSecondAtMs) {
        this.value = value;
        this.nextAt = nextSecondAtMs;
        this.anchor = shownSecond(value); // the value at nextAt
    }

    get running() {
        return this.nextAt !== null;
    }

    // Until `nextAt` the shown second is the anchor's, however early `now` is: an estimate of
    // the program's clock a little behind it, or `nextAt` rounded to the millisecond, must not
    // show the second before, which would then stand until `nextAt`, a whole second.
    valueAt(now) {
        if (!this.running)
            return this.value;
        return this.anchor + Math.min(this.nextAt - now, lastMsOfASecond) / 1000;
    }

    // The next instant at or after `now` when the shown second, or its colour for `cue` (a
    // threshold crossed), changes; null while standing.
    nextChange(now, cue = null) {
        if (!this.running)
            return null;
        let due = this.nextAt + Math.max(0, Math.ceil((now - this.nextAt) / 1000)) * 1000;
        const value = this.valueAt(now);
        for (const threshold of cue ? [cue.warningThreshold, cue.dangerThreshold] : []) {
            if (value > threshold)
                due = Math.min(due, now + (value - threshold) * 1000);
        }
        return due;
    }
}

// The next instant at or after `now` when a countdown to the instant `targetMs` shows another
// whole second; null once the target is reached.
export function nextChangeCountingTo(targetMs, now) {
    const left = targetMs - now;
    return left > 0 ? now + (left % 1000) : null;
}

// The next change of a wall clock's second after `now`.
export function nextWholeSecond(now) {
    return Math.floor(now / 1000) * 1000 + 1000;
}

// How much of a progress bar `width` pixels wide the cue clock fills at `now`, and the instant
// of its next whole pixel (at most ten a second; null while the clock stands or the bar is
// full). The bar follows the cue clock itself, which runs on while the digits are frozen.
export function progressAt(state, now, width) {
    const runs = state.liveNextSecondAtMs !== null;
    const elapsed = state.elapsed + (runs ? (now - state.serverTimeMs) / 1000 : 0);
    const planned = state.plannedDuration;
    const fraction = planned > 0 ? Math.min(Math.max(elapsed / planned, 0), 1) : 0;
    const filled = Math.round(width * fraction);
    let due = null;
    if (runs && planned > 0 && fraction < 1 && width > 0)
        due = Math.max(now + (((filled + 0.5) * planned) / width - elapsed) * 1000, now + 100);
    return { filled, due };
}

// The earliest of the instants that are not null, or null.
export function earliest(...instants) {
    const known = instants.filter((t) => t !== null && t !== undefined);
    return known.length ? Math.min(...known) : null;
}

// ---- The venue's time of day ------------------------------------------------------------------

const calendars = new Map();

// Formatters for the displays' time zone and locale, as the state document gives them; a zone
// this browser does not know is replaced by the document's fixed UTC offset.
function calendarOf(state) {
    const key = `${state.locale}|${state.timeZone}|${state.utcOffsetSeconds}`;
    let calendar = calendars.get(key);
    if (calendar)
        return calendar;
    const make = (zone, shiftMs) => ({
        shiftMs,
        time: new Intl.DateTimeFormat("fr", {
            timeZone: zone, hourCycle: "h23", hour: "2-digit", minute: "2-digit", second: "2-digit",
        }),
        date: new Intl.DateTimeFormat(state.locale || "fr", {
            timeZone: zone, weekday: "long", day: "numeric", month: "long", year: "numeric",
        }),
    });
    try {
        if (state.timeZone)
            calendar = make(state.timeZone, 0);
    } catch {
        // RangeError: a zone name unknown here
    }
    calendar ??= make("UTC", state.utcOffsetSeconds * 1000);
    calendars.set(key, calendar);
    return calendar;
}

// "HH:mm:ss" of the instant `ms` (the program's clock) in the venue.
export function timeOfDay(state, ms) {
    const calendar = calendarOf(state);
    const parts = {};
    for (const part of calendar.time.formatToParts(new Date(ms + calendar.shiftMs)))
        parts[part.type] = part.value;
    return `${two(Number(parts.hour) % 24)}:${parts.minute}:${parts.second}`;
}

// The full date of the instant `ms` in the venue, in the displays' locale.
export function fullDate(state, ms) {
    const calendar = calendarOf(state);
    return calendar.date.format(new Date(ms + calendar.shiftMs));
}

// ---- The program's clock ----------------------------------------------------------------------

// The offset of the program's wall clock from this browser's, from ping round trips: each
// sample assumes the answer was made half way through its trip, and the fastest of the recent
// trips is trusted, its error being at most half of it.
export class ServerClock {
    static keptSamples = 10;

    constructor() {
        this.samples = [];
        this.offset = 0;
    }

    reset() {
        this.samples = [];
    }

    // A state document on arrival: good to the length of one trip, used until a round trip.
    noteArrival(serverMs, receivedAt) {
        if (this.samples.length === 0)
            this.offset = serverMs - receivedAt;
    }

    // Returns whether the estimate moved by a millisecond or more.
    noteRoundTrip(sentAt, serverMs, receivedAt) {
        const trip = receivedAt - sentAt;
        if (!Number.isFinite(trip) || trip < 0 || !Number.isFinite(serverMs))
            return false;
        this.samples.push({ trip, offset: serverMs - (sentAt + receivedAt) / 2 });
        if (this.samples.length > ServerClock.keptSamples)
            this.samples.shift();
        const best = this.samples.reduce((a, b) => (b.trip < a.trip ? b : a));
        const moved = Math.abs(best.offset - this.offset) >= 1;
        this.offset = best.offset;
        return moved;
    }

    now() {
        return Date.now() + this.offset;
    }
}

// ---- The connection ---------------------------------------------------------------------------

const pingEveryMs = 1000;
const silenceMs = 2000;       // no answer for this long: the program is taken as gone
const firstRetryMs = 500;
const longestRetryMs = 5000;

// The version of the messages this page reads; the first message of the program says its own.
const protocolVersion = 2;

// The WebSocket to the program: the show and the state in, then only what changes of them, and
// a ping every second out. A closed socket, or one where nothing is heard for two seconds, is
// dropped and opened again after 0.5 s, then 1, 2, 4 and 5 s at most until the program answers.
class Connection {
    constructor(clock, { onState, onLink, onClockMoved, onOutdated }) {
        Object.assign(this, { clock, onState, onLink, onClockMoved, onOutdated });
        this.live = false;
        this.retryMs = firstRetryMs;
    }

    open() {
        const scheme = location.protocol === "https:" ? "wss" : "ws";
        const socket = new WebSocket(`${scheme}://${location.host}/api/ws`);
        this.socket = socket;
        this.clock.reset();
        this.show = null;
        this.state = null;
        this.seq = null;
        this.awaitingWhole = false;
        this.listenFor(silenceMs);
        socket.onopen = () => {
            this.ping();
            this.pinger = setInterval(() => this.ping(), pingEveryMs);
        };
        socket.onmessage = (event) => this.receive(event.data);
        socket.onclose = () => this.drop();
        socket.onerror = () => this.drop();
    }

    ping() {
        this.send({ command: "ping", t: Date.now() });
    }

    send(message) {
        if (this.socket?.readyState === WebSocket.OPEN)
            this.socket.send(JSON.stringify(message));
    }

    listenFor(ms) {
        clearTimeout(this.watchdog);
        this.watchdog = setTimeout(() => this.drop(), ms);
    }

    receive(text) {
        const receivedAt = Date.now();
        let message;
        try {
            message = JSON.parse(text);
        } catch {
            return;
        }
        this.listenFor(silenceMs);
        if ("pong" in message) {
            if (this.clock.noteRoundTrip(message.pong, message.serverTimeMs, receivedAt))
                this.onClockMoved();
            return;
        }
        if ("error" in message)
            return;
        if (this.seq === null && (message.type !== "show" || message.protocol !== protocolVersion)) {
            this.stop();
            this.onOutdated();
            return;
        }
        if (this.apply(message))
            this.publish(receivedAt, message.serverTimeMs);
    }

    // Takes a message of the program in; returns whether the page has a new state to draw.
    // A show or a patch takes the next sequence number: after a gap, the page asks for the
    // whole show and state again and waits for them.
    apply(message) {
        const { type, seq } = message;
        const whole = type === "state" || this.seq === null || this.awaitingWhole;
        if (!whole && seq !== this.seq + 1) {
            this.awaitingWhole = true;
            this.send({ command: "state" });
            return false;
        }
        if (type === "show") {
            this.show = message;
            this.seq = seq;
            return this.state !== null && !this.awaitingWhole;
        }
        if (type === "state") {
            this.state = message;
            this.awaitingWhole = false;
        } else if (type === "patch" && !this.awaitingWhole) {
            Object.assign(this.state, message);
        } else {
            return false;
        }
        this.seq = seq;
        return true;
    }

    publish(receivedAt, serverTimeMs) {
        if (serverTimeMs !== undefined)
            this.clock.noteArrival(serverTimeMs, receivedAt);
        this.retryMs = firstRetryMs;
        if (!this.live) {
            this.live = true;
            this.onLink(true);
        }
        this.onState({ ...this.show, ...this.state });
    }

    // Closes the socket for good: the program speaks another version of the messages.
    stop() {
        this.drop();
        clearTimeout(this.retry);
    }

    drop() {
        if (!this.socket)
            return;
        const socket = this.socket;
        this.socket = null;
        socket.onopen = socket.onmessage = socket.onclose = socket.onerror = null;
        socket.close();
        clearInterval(this.pinger);
        clearTimeout(this.watchdog);
        if (this.live) {
            this.live = false;
            this.onLink(false);
        }
        this.retry = setTimeout(() => this.open(), this.retryMs);
        this.retryMs = Math.min(this.retryMs * 2, longestRetryMs);
    }
}

// ---- Drawing ----------------------------------------------------------------------------------

// Each helper writes to the page only when the value changes, so that nothing is redrawn
// when nothing changed.
const written = new WeakMap();

export function setText(element, text) {
    if (element.textContent !== text)
        element.textContent = text;
}

export function setStyle(element, property, value) {
    let values = written.get(element);
    if (!values)
        written.set(element, (values = new Map()));
    if (values.get(property) !== value) {
        values.set(property, value);
        element.style.setProperty(property, value);
    }
}

export function show(element, visible) {
    if (element.hidden === visible)
        element.hidden = !visible;
}

const measurer = document.createElement("canvas").getContext("2d");

// The size, in pixels, at which one line of `text` in `element`'s font is at most `width` wide:
// `size`, or smaller down to a fifth of it, worked out from one measurement at the full size.
export function fittedSize(element, text, size, width) {
    const style = getComputedStyle(element);
    measurer.font = `${style.fontWeight} ${Math.round(size)}px ${style.fontFamily}`;
    const natural = Math.max(1, measurer.measureText(text).width);
    return Math.max(Math.round(size * 0.2), Math.min(Math.round(size), Math.floor(size * width / natural)));
}

// The line height of wrapped texts, in ems, as the pages' style sheet gives it: Inter's own, as
// on the desktop displays.
const lineHeight = 1.21;

// The height of an element's text at `size` pixels, its padding left out. The size is written
// straight to the element: the caller writes the size it keeps through setStyle afterwards.
function textHeightAt(element, size) {
    element.style.setProperty("font-size", `${size}px`);
    written.get(element)?.delete("font-size");
    const style = getComputedStyle(element);
    return element.clientHeight - parseFloat(style.paddingTop) - parseFloat(style.paddingBottom);
}

// `text` wrapped at `size` pixels on up to `lines` lines, and no higher than `maxHeight`; a
// longer text is made smaller, to the largest whole pixel size that fits that room (a fifth of
// `size` at least). The size is searched again only when the text, its room or the page's width
// change. The element must be shown.
export function fitLines(element, text, size, lines, maxHeight) {
    setText(element, text);
    const full = Math.round(size);
    const room = Math.min(lines * lineHeight * full, maxHeight);
    const key = `${text}|${full}|${room}|${pageWidth()}`;
    if (element.kaironFit?.key !== key) {
        let low = Math.max(1, Math.round(size * 0.2));
        let high = full;
        while (low < high) {
            const middle = Math.ceil((low + high) / 2);
            if (textHeightAt(element, middle) <= room + 0.5)
                low = middle;
            else
                high = middle - 1;
        }
        element.kaironFit = { key, size: low };
    }
    setStyle(element, "font-size", `${element.kaironFit.size}px`);
}

// The height from the top of the first shown child of `container` to the bottom of the last.
function extentOf(container) {
    let top = Infinity, bottom = -Infinity;
    for (const child of container.children) {
        const box = child.getBoundingClientRect();
        if (box.height > 0) {
            top = Math.min(top, box.top);
            bottom = Math.max(bottom, box.bottom);
        }
    }
    return bottom > top ? bottom - top : 0;
}

// The texts of a column (the children of `container`) made smaller together when the column is
// higher than `room` pixels: `parts` are its texts with their full sizes in pixels, [element,
// size]; the rest (gaps, the bar, the badge) keeps its size. Measured at the sizes shown, since
// a line's height follows its size. Returns the column's height at the sizes it then has.
export function fitColumn(container, parts, room) {
    const height = extentOf(container);
    let texts = 0, natural = 0;
    for (const [element, size] of parts) {
        const shown = element.getBoundingClientRect().height;
        texts += shown;
        natural += shown * size / parseFloat(getComputedStyle(element).fontSize);
    }
    const fit = natural > 0 ? Math.min(1, Math.max(0, (room - (height - texts)) / natural)) : 1;
    for (const [element, size] of parts)
        setStyle(element, "font-size", `${fit >= 1 ? Math.round(size) : Math.max(1, Math.floor(size * fit))}px`);
    return extentOf(container);
}

// The page's width, on which every size of a display depends.
export function pageWidth() {
    return document.documentElement.clientWidth;
}

export function pageHeight() {
    return document.documentElement.clientHeight;
}

// A phase flag toggled every `periodMs` while its condition holds, and left as it is when the
// condition ends (the next one starts from that phase).
export class Phase {
    constructor(periodMs, onToggle) {
        Object.assign(this, { periodMs, onToggle });
        this.on = false;
        this.timer = null;
    }

    run(condition) {
        if (condition && this.timer === null) {
            this.timer = setInterval(() => {
                this.on = !this.on;
                this.onToggle();
            }, this.periodMs);
        } else if (!condition && this.timer !== null) {
            clearInterval(this.timer);
            this.timer = null;
        }
    }
}

const fontsUsed = ['400 16px "Inter"', '500 16px "Inter"', '600 16px "Inter"', '700 16px "Inter"',
                   '800 16px "Inter"', '900 16px "Inter"', '700 16px "DejaVu Sans"'];

// The panel that covers a page while it has no live connection to the program; returns its
// title and its help.
function addLinkPanel() {
    const panel = document.createElement("div");
    panel.className = "link";
    panel.setAttribute("role", "status");
    panel.innerHTML = '<div class="link-panel"><div id="link-title" class="link-title">Connexion…</div>'
        + '<div class="link-help">Reconnexion automatique dès que Kairon répond</div></div>';
    document.body.append(panel);
    return [panel.querySelector("#link-title"), panel.querySelector(".link-help")];
}

// Runs a page: `render(state, now)` draws the state for the instant `now` on the program's
// clock and returns the next instant at which something on the page changes, or null. It is
// called when a document arrives, at that instant, and when the page or its fonts change.
// Returns the function that redraws at once (for the pages' own phase flags).
// Without `linkPanel`, a lost link covers nothing: `onLink(live)` alone is told, as it always is.
export function startPage(render, { linkPanel = true, onLink = () => {} } = {}) {
    const clock = new ServerClock();
    let state = null;
    let timer = null;
    const [linkTitle, linkHelp] = linkPanel ? addLinkPanel() : [null, null];
    const offline = (lost) => {
        if (linkPanel)
            document.body.classList.toggle("offline", lost);
    };

    function draw() {
        clearTimeout(timer);
        timer = null;
        if (!state)
            return;
        const due = render(state, clock.now());
        // One millisecond past the instant: a value exactly on a whole second still shows it.
        if (due !== null)
            timer = setTimeout(draw, Math.max(0, due - clock.now()) + 1);
    }

    const connection = new Connection(clock, {
        onState(next) {
            state = next;
            draw();
        },
        onLink(live) {
            offline(!live);
            if (!live && linkPanel)
                setText(linkTitle, "Connexion perdue");
            onLink(live);
        },
        onClockMoved: draw,
        onOutdated() {
            offline(true);
            if (linkPanel) {
                setText(linkTitle, "Page d'une autre version de Kairon");
                setText(linkHelp, "Rechargez la page");
            }
            onLink(false);
        },
    });
    offline(true);
    onLink(false);
    connection.open();

    addEventListener("resize", draw);
    document.addEventListener("visibilitychange", draw);
    Promise.all(fontsUsed.map((font) => document.fonts.load(font))).then(draw, draw);
    const themeColor = document.querySelector('meta[name="theme-color"]');
    if (themeColor)
        themeColor.content = getComputedStyle(document.documentElement).getPropertyValue("--bg-deep").trim();
    return draw;
}
