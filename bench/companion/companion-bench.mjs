// The Companion module against the real program on loopback (run by run-companion-bench.sh):
// 1. from a key press (the action's callback called) to the module's variable showing the
//    change, through the command over HTTP, the program applying it and its WebSocket patch:
//    presses spaced as an operator makes them (every 50 ms), then back to back;
// 2. the program's CPU (user + system, from /proc) while a cue runs, with no module, with 20
//    modules connected (each with its ping every second), and with none again.
// Usage: node companion-bench.mjs [SECONDS] (each CPU phase, default 20)
import fs from "node:fs";
import { performance } from "node:perf_hooks";

import { KaironModule } from "../../integrations/companion/src/module.js";
import { FakeHost } from "../../integrations/companion/test/support/fake-host.js";
import {
  KaironProgram,
  accessCode,
} from "../../integrations/companion/test/support/kairon-program.js";

const phaseSeconds = Number(process.argv[2] ?? 20);
const presses = 200;
const modules = 20;

// A host that keeps, for each variable, the instant (performance.now) of its last change.
class TimingHost extends FakeHost {
  constructor() {
    super();
    this.changedAt = {};
  }

  setVariableValues(values) {
    const now = performance.now();
    for (const id of Object.keys(values)) this.changedAt[id] = now;
    super.setVariableValues(values);
  }
}

const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

function quantile(sorted, q) {
  return sorted[Math.min(sorted.length - 1, Math.floor(q * sorted.length))];
}

function summary(samples) {
  const sorted = [...samples].sort((a, b) => a - b);
  const f = (v) => `${v.toFixed(2)} ms`;
  return `median ${f(quantile(sorted, 0.5))}, p99 ${f(quantile(sorted, 0.99))}, max ${f(sorted.at(-1))} (${sorted.length} presses)`;
}

// The program's CPU time so far, in seconds (utime + stime of /proc/PID/stat).
function cpuSeconds(pid) {
  const fields = fs
    .readFileSync(`/proc/${pid}/stat`, "utf8")
    .split(") ")[1]
    .split(" ");
  return (Number(fields[11]) + Number(fields[12])) / 100; // clock ticks of 10 ms
}

async function cpuOver(pid, seconds) {
  const before = cpuSeconds(pid);
  const start = performance.now();
  await sleep(seconds * 1000);
  return (
    ((cpuSeconds(pid) - before) / ((performance.now() - start) / 1000)) * 100
  );
}

function connect(program, host) {
  const kairon = new KaironModule(host);
  kairon.init({ host: "127.0.0.1", port: program.port, code: accessCode });
  return kairon;
}

// One press: resolves to the milliseconds until the module's variable `id` read `expected`.
async function press(host, action, options, id, expected) {
  const start = performance.now();
  const applied = host.runAction(action, options);
  await host.until(
    () => host.values[id] === expected,
    `${id} = ${expected}`,
    2000,
  );
  const elapsed = host.changedAt[id] - start;
  if (!(await applied)) throw new Error(`${action} refused`);
  return elapsed;
}

const show = {
  name: "Banc",
  cues: Array.from({ length: 200 }, (_, i) => ({
    name: `Cue ${i + 1}`,
    duration: 3600,
  })),
};
const program = await KaironProgram.launch(show);
try {
  const host = new TimingHost();
  const kairon = connect(program, host);
  await host.until(() => host.status?.[0] === "ok", "the status ok");
  await sleep(1500); // the splash gone, the console settled
  if ((await program.post("play")) !== 200) throw new Error("play refused");
  await host.until(() => host.values.state === "running", "running");

  // A message with a new text, or pause / resume, alternately.
  let paused = false;
  const pressOnce = (i) => {
    if (i % 2 === 0)
      return press(
        host,
        "message",
        { text: `Message ${i}` },
        "message",
        `Message ${i}`,
      );
    paused = !paused;
    return press(host, "pause", {}, "state", paused ? "paused" : "running");
  };
  const spaced = [];
  for (let i = 0; i < presses; ++i) {
    spaced.push(await pressOnce(i));
    await sleep(50);
  }
  const backToBack = [];
  for (let i = presses; i < 2 * presses; ++i)
    backToBack.push(await pressOnce(i));
  console.log(`Key press to variable, every 50 ms: ${summary(spaced)}`);
  console.log(`Key press to variable, back to back: ${summary(backToBack)}`);
  kairon.destroy();
  if (paused) await program.post("pause");

  const pid = program.pid;
  await sleep(1000);
  const none = await cpuOver(pid, phaseSeconds);
  const many = Array.from({ length: modules }, () => {
    const h = new FakeHost();
    return { host: h, kairon: connect(program, h) };
  });
  for (const { host: h } of many)
    await h.until(() => h.status?.[0] === "ok", "each module ok");
  await sleep(1000);
  const withModules = await cpuOver(pid, phaseSeconds);
  for (const { kairon: k } of many) k.destroy();
  await sleep(1000);
  const noneAgain = await cpuOver(pid, phaseSeconds);
  const baseline = (none + noneAgain) / 2;
  console.log(
    `CPU of the program while a cue runs: ${none.toFixed(2)} % of one core with no module, ` +
      `${withModules.toFixed(2)} % with ${modules} modules, ${noneAgain.toFixed(2)} % with none again ` +
      `(+${(withModules - baseline).toFixed(2)} % for ${modules} modules, ${phaseSeconds} s each)`,
  );
} finally {
  await program.close();
}
