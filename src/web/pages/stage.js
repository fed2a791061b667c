// The stage display in a browser: the same layers and rules as the desktop's stage window.
import {
    Countdown, Phase, activeCue, earliest, fitColumn, fitLines, fittedSize, formatCountdown, fullDate,
    nextChangeCountingTo, nextWholeSecond, pageHeight, pageWidth, progressAt, setStyle, setText, show, startPage,
    stateColor, timeOfDay,
} from "./kairon.js";

const $ = (id) => document.getElementById(id);
const view = {
    blackout: $("blackout"), doors: $("doors"), doorsTitle: $("doors-title"), doorsTime: $("doors-time"),
    clock: $("clock"), clockTime: $("clock-time"), clockDate: $("clock-date"), timer: $("timer"), cueName: $("cue-name"),
    time: $("time"), progress: $("progress"), progressFill: $("progress-fill"), freeze: $("freeze"),
    blink: $("blink"), banner: $("banner"),
};

// Toggled every 0.6 s while a message is urgent or the cue clock is in overtime, and every
// 0.15 s while the blink lasts.
const flash = new Phase(600, () => redraw());
const blink = new Phase(150, () => redraw());

// First match wins.
function modeOf(state) {
    if (state.blackout)
        return "blackout";
    if (state.doorsTargetMs !== null && !state.running)
        return "doors";
    return state.clockMode ? "clock" : "timer";
}

// The content of a mode (the children of `layer`) kept above `bottom`, the banner's top less a
// gap: centred in the page while it fits there, lifted just enough when it would reach it, its
// texts made smaller when even lifted it would not fit.
function placeAbove(layer, parts, bottom) {
    const height = fitColumn(layer, parts, bottom);
    const top = Math.max(0, Math.min((pageHeight() - height) / 2, bottom - height));
    // The layer centres its content: shortened at the bottom, it centres it at `top`.
    setStyle(layer, "bottom", `${Math.max(0, Math.round(pageHeight() - height - 2 * top))}px`);
}

// One line of `text` in `element` at `size`, made smaller to fit `width`; returns that size.
function lineOf(element, text, size, width) {
    setText(element, text);
    return fittedSize(element, text, size, width);
}

function drawTimer(state, now, width, bottom) {
    const cue = activeCue(state);
    const shown = new Countdown(state.remaining, state.nextSecondAtMs);
    const value = shown.valueAt(now);
    const colour = stateColor(cue, value);
    show(view.cueName, cue !== null);
    setText(view.cueName, cue ? cue.name : "");
    const text = formatCountdown(value, true);
    const timeSize = lineOf(view.time, text, width * 0.22, Math.round(width * 0.96));
    setStyle(view.time, "color", colour);
    setStyle(view.time, "opacity", value < 0 && !flash.on ? "0.35" : "1");

    const barWidth = Math.round(width * 0.6);
    const { filled, due: barDue } = progressAt(state, now, barWidth);
    setStyle(view.progress, "width", `${barWidth}px`);
    setStyle(view.progressFill, "width", `${filled}px`);
    setStyle(view.progressFill, "background", colour);
    show(view.progressFill, filled > 0);
    show(view.freeze, state.freeze);
    const nameSize = Math.max(14, Math.min(width * 0.035, 44));
    placeAbove(view.timer, [[view.cueName, nameSize], [view.time, timeSize]], bottom);

    return earliest(shown.nextChange(now, cue), barDue);
}

function drawDoors(state, now, width, bottom) {
    const left = (state.doorsTargetMs - now) / 1000;
    const text = formatCountdown(Math.max(left, 0), false);
    const timeSize = lineOf(view.doorsTime, text, width * 0.18, width);
    const titleSize = Math.max(14, Math.min(width * 0.03, 36));
    placeAbove(view.doors, [[view.doorsTitle, titleSize], [view.doorsTime, timeSize]], bottom);
    return nextChangeCountingTo(state.doorsTargetMs, now);
}

function drawClock(state, now, width, bottom) {
    const timeSize = lineOf(view.clockTime, timeOfDay(state, now), width * 0.2, width);
    setText(view.clockDate, fullDate(state, now));
    const dateSize = Math.max(14, Math.min(width * 0.025, 28));
    placeAbove(view.clock, [[view.clockTime, timeSize], [view.clockDate, dateSize]], bottom);
    return nextWholeSecond(now);
}

const draws = { doors: drawDoors, clock: drawClock, timer: drawTimer };

// The operator's message, on up to three lines and then smaller, never above the lower half
// of the page; returns how far down the content above it may reach.
function drawBanner(state, width) {
    const message = state.message ?? null;
    const shown = !state.blackout && message !== null;
    show(view.banner, shown);
    view.banner.classList.toggle("urgent", state.messageUrgent);
    setStyle(view.banner, "opacity", state.messageUrgent && !flash.on ? "0.5" : "1");
    if (!shown) {
        setText(view.banner, "");
        return pageHeight();
    }
    fitLines(view.banner, message, Math.min(width * 0.05, 64), 3, pageHeight() * 0.5 - 60 - 40);
    return view.banner.getBoundingClientRect().top - Math.round(pageHeight() * 0.02);
}

function render(state, now) {
    const width = pageWidth();
    const mode = modeOf(state);
    show(view.blackout, mode === "blackout");
    show(view.doors, mode === "doors");
    show(view.clock, mode === "clock");
    show(view.timer, mode === "timer");

    const live = new Countdown(state.liveRemaining, state.liveNextSecondAtMs);
    const overtime = live.valueAt(now) < 0;
    flash.run(state.messageUrgent || overtime);
    blink.run(state.blinkActive);

    show(view.blink, state.blinkActive);
    setStyle(view.blink, "background", blink.on ? "var(--accent)" : "#fff");

    const bottom = drawBanner(state, width);
    const due = mode === "blackout" ? null : draws[mode](state, now, width, bottom);

    // While the digits are frozen the cue clock runs on: its overtime starts the flash.
    const overtimeAt = live.running && !overtime ? now + live.valueAt(now) * 1000 : null;
    return earliest(due, overtimeAt);
}

const redraw = startPage(render);
