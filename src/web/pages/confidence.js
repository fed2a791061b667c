// The confidence display in a browser: the wall clock and the speaker, the cue and its time,
// what comes next and the message. It always shows the cue clock itself, whatever the stage
// shows (blackout, freeze, clock mode).
import {
    Countdown, activeCue, earliest, fitText, formatCountdown, nextWholeSecond, pageWidth, setStyle,
    setText, show, startPage, stateColor, timeOfDay,
} from "./kairon.js";

const $ = (id) => document.getElementById(id);
const view = {
    wallClock: $("wall-clock"), speaker: $("speaker"), cueName: $("cue-name"), time: $("time"),
    next: $("next"), nextText: $("next-text"), message: $("message"),
};

function render(state, now) {
    const width = pageWidth();
    const cue = activeCue(state);
    setText(view.wallClock, timeOfDay(state, now));
    show(view.speaker, cue !== null);
    setText(view.speaker, cue ? cue.speaker : "");
    show(view.cueName, cue !== null);
    setText(view.cueName, cue ? cue.name : "");

    const clock = new Countdown(state.liveRemaining, state.liveNextSecondAtMs);
    const value = clock.valueAt(now);
    // The page's padding is 30 on each side.
    fitText(view.time, formatCountdown(value, true), width * 0.16, width - 60);
    setStyle(view.time, "color", stateColor(cue, value));

    const next = state.nextCueName ?? null;
    show(view.next, next !== null);
    setText(view.nextText, next !== null ? `Suivant : ${next}` : "");
    const message = state.message ?? null;
    show(view.message, message !== null);
    setText(view.message, message ?? "");
    view.message.classList.toggle("urgent", state.messageUrgent);

    return earliest(clock.nextChange(now, cue), nextWholeSecond(now));
}

startPage(render);
