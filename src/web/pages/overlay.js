// The countdown over a video mixer's programme picture (a browser source in OBS, vMix or
// CasparCG): on a transparent page, the remaining time in the state colour with a thin dark
// outline and, when asked, the cue's name and the progress bar. Placed and sized by the query:
// ?position=bottom-right&scale=1&show=name,bar. A lost link puts nothing on air but a small grey
// dot in a corner; the last time shown stays, counting on.
import { Countdown, activeCue, earliest, formatCountdown, progressAt, setStyle, setText, show, startPage,
    stateColor } from "./kairon.js";

const positions = ["top-left", "top-center", "top-right", "center-left", "center", "center-right",
    "bottom-left", "bottom-center", "bottom-right"];
const query = new URLSearchParams(location.search);
const position = positions.includes(query.get("position")) ? query.get("position") : "bottom-right";
const scale = Math.min(Math.max(Number(query.get("scale")) || 1, 0.25), 4);
const parts = new Set((query.get("show") ?? "").split(",").map((part) => part.trim()));

const $ = (id) => document.getElementById(id);
const view = { box: $("overlay"), name: $("cue-name"), time: $("time"), bar: $("progress"),
    fill: $("progress-fill"), dot: $("dot") };
view.box.dataset.position = position;
document.documentElement.style.setProperty("--overlay-scale", String(scale));
show(view.name, parts.has("name"));
show(view.bar, parts.has("bar"));

function render(state, now) {
    const cue = activeCue(state);
    // Nothing on air while no cue is active, nor while the stage is blacked out.
    const onAir = cue !== null && !state.blackout;
    show(view.box, onAir);
    if (!onAir)
        return null;
    const shown = new Countdown(state.remaining, state.nextSecondAtMs);
    const value = shown.valueAt(now);
    const colour = stateColor(cue, value);
    setText(view.time, formatCountdown(value, true));
    setStyle(view.time, "color", colour);
    if (parts.has("name"))
        setText(view.name, cue.name);
    let barDue = null;
    if (parts.has("bar")) {
        const { filled, due } = progressAt(state, now, view.bar.clientWidth);
        setStyle(view.fill, "width", `${filled}px`);
        setStyle(view.fill, "background", colour);
        barDue = due;
    }
    return earliest(shown.nextChange(now, cue), barDue);
}

startPage(render, { linkPanel: false, onLink(live) { show(view.dot, !live); } });
