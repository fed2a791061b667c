// The confidence display in a browser: the wall clock and the speaker, under the clock how the
// show runs against its timetable (for a show with a start time), the cue and its time, what
// comes next and the message. It always shows the cue clock itself, whatever the stage shows
// (blackout, freeze, clock mode).
import {
    Countdown, activeCue, earliest, fitColumn, fitLines, fittedSize, formatCountdown, nextWholeSecond,
    pageHeight, pageWidth, setStyle, setText, show, startPage, stateColor, timeOfDay,
} from "./kairon.js";

const $ = (id) => document.getElementById(id);
const view = {
    wallClock: $("wall-clock"), speaker: $("speaker"), schedule: $("schedule"), centre: $("centre"),
    cueName: $("cue-name"), time: $("time"), next: $("next"), nextText: $("next-text"), message: $("message"),
};

function render(state, now) {
    const width = pageWidth();
    const cue = activeCue(state);
    setText(view.wallClock, timeOfDay(state, now));
    show(view.speaker, cue !== null);
    setText(view.speaker, cue ? cue.speaker : "");
    const schedule = state.schedule ?? null;
    show(view.schedule, schedule !== null);
    setText(view.schedule, schedule ? schedule.text : "");
    if (schedule)
        setStyle(view.schedule, "color", schedule.color);
    show(view.cueName, cue !== null);
    setText(view.cueName, cue ? cue.name : "");

    // The bottom row first: the message, whole, takes the room it needs and the centre the rest.
    const next = state.nextCueName ?? null;
    show(view.next, next !== null);
    setText(view.nextText, next !== null ? `Suivant : ${next}` : "");
    const message = state.message ?? null;
    show(view.message, message !== null);
    view.message.classList.toggle("urgent", state.messageUrgent);
    if (message !== null)
        fitLines(view.message, message, Math.max(14, width * 0.03), 3, pageHeight() * 0.3);
    else
        setText(view.message, "");

    const clock = new Countdown(state.liveRemaining, state.liveNextSecondAtMs);
    const value = clock.valueAt(now);
    const text = formatCountdown(value, true);
    setText(view.time, text);
    setStyle(view.time, "color", stateColor(cue, value));
    // The page's padding is 30 on each side.
    const timeSize = fittedSize(view.time, text, width * 0.16, width - 60);
    fitColumn(view.centre, [[view.cueName, Math.max(14, width * 0.035)], [view.time, timeSize]],
              view.centre.clientHeight);

    return earliest(clock.nextChange(now, cue), nextWholeSecond(now));
}

startPage(render);
