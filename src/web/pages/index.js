// The index: the show's name, and the two displays to open.
import { setText, startPage } from "./kairon.js";

const name = document.getElementById("show-name");
const detail = document.getElementById("show-detail");

startPage((state) => {
    const count = state.cues.length;
    setText(name, state.sessionName || "Aucun projet ouvert");
    document.title = state.sessionName ? `Kairon — ${state.sessionName}` : "Kairon";
    setText(detail, count === 0 ? "Aucune cue" : `${count} cue${count >= 2 ? "s" : ""}`);
    return null;
});
