#!/usr/bin/env bash
# Start-up of the real program on a private X server, ten launches (or N): from the process
# start to its OSC port listening (seen in the kernel's socket table) and to the first frame of
# the splash (reported by the program), medians and maxima; and the resident memory with the
# operator window alone, 3 s after the first frame.
# Usage: bench/run-startup-bench.sh [N]
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
runs=${1:-10}
dir=$(mktemp -d)
Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp -noreset 3> "$dir/display" >/dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb 2>/dev/null; rm -rf "$dir"' EXIT
for _ in $(seq 50); do [[ -s "$dir/display" ]] && break; sleep 0.1; done

export HOME=$dir/home XDG_CONFIG_HOME=$dir/home/.config XDG_CACHE_HOME=$dir/home/.cache
export XDG_RUNTIME_DIR=$dir/run DISPLAY=:$(cat "$dir/display") QT_QPA_PLATFORM=xcb
mkdir -p "$XDG_CONFIG_HOME/Kairon" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
port=53390
printf '[General]\noscListenEnabled=true\noscListenPort=%d\n' "$port" > "$XDG_CONFIG_HOME/Kairon/Kairon.conf"

python3 - "$here/build/src/app/kairon" "$runs" "$port" <<'PY'
import os, subprocess, sys, time

binary, runs, port = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
needle = ":%04X " % port

def listening():
    with open("/proc/net/udp") as a, open("/proc/net/udp6") as b:
        return needle in a.read() or needle in b.read()

listen_ms, frame_ms, rss = [], [], None
for run in range(runs):
    env = dict(os.environ, KAIRON_STARTUP_TRACE="1")
    start = time.time_ns()
    p = subprocess.Popen([binary], env=env, stderr=subprocess.PIPE)
    os.set_blocking(p.stderr.fileno(), False)
    heard = seen = None
    trace = ""
    while (heard is None or seen is None) and time.time_ns() - start < 10e9:
        if heard is None and listening():
            heard = time.time_ns()
        trace += (p.stderr.read() or b"").decode(errors="replace")
        for line in trace.splitlines():
            if line.startswith("kairon-startup first-frame") and seen is None:
                seen = int(line.split()[2])
        time.sleep(0.0005)
    listen_ms.append((heard - start) / 1e6)
    frame_ms.append((seen - start) / 1e6)
    if run == 0:
        time.sleep(3)
        with open("/proc/%d/status" % p.pid) as s:
            rss = next(int(l.split()[1]) for l in s if l.startswith("VmRSS"))
    p.terminate()
    p.wait()

def stats(v):
    v = sorted(v)
    return "median %.0f ms, max %.0f ms (n=%d)" % (v[(len(v) - 1) // 2], v[-1], len(v))
print("process start to OSC listening:", stats(listen_ms))
print("process start to the splash's first frame:", stats(frame_ms))
print("resident memory with the operator window alone: %.0f MiB" % (rss / 1024))
PY
