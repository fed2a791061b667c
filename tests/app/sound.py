#!/usr/bin/env python3
"""Finds the sounds in a recording of a sound output, for the acceptance test.

  sound.py bursts RAW [RATE]

RAW is mono signed 16-bit little-endian PCM (what `parec --format=s16le --channels=1 --raw`
writes), RATE its sample rate (48000). Prints one line per burst of sound, in order:

  START END PEAK FREQUENCY

START and END in seconds from the recording's first sample, PEAK the loudest sample in dBFS,
FREQUENCY the strongest of the alert notes' fundamentals (1318.5 Hz for the warning's bell,
1760 for the danger's, 220 for the zero's, 1568 for the doors') over the burst's first 60 ms.
Nothing is printed for a recording of silence.
"""
import array
import math
import sys

WINDOW = 0.010  # seconds per level measurement
THRESHOLD = 0.003  # RMS, as a fraction of full scale (about -50 dBFS): anything above is sound
GAP = 0.15  # seconds of quiet that end a burst
NOTES = (220.0, 1318.51, 1567.98, 1760.0)


def goertzel(samples, rate, frequency):
    k = 2 * math.cos(2 * math.pi * frequency / rate)
    s1 = s2 = 0.0
    for v in samples:
        s1, s2 = v + k * s1 - s2, s1
    return s1 * s1 + s2 * s2 - k * s1 * s2


def main(argv):
    if argv[1] != "bursts":
        raise SystemExit(f"unknown command {argv[1]}")
    rate = int(argv[3]) if len(argv) > 3 else 48000
    pcm = array.array("h")
    with open(argv[2], "rb") as f:
        raw = f.read()
    pcm.frombytes(raw[:len(raw) - len(raw) % 2])
    if sys.byteorder != "little":
        pcm.byteswap()
    step = int(rate * WINDOW)
    loud = []
    for start in range(0, len(pcm) - step + 1, step):
        window = pcm[start:start + step]
        rms = math.sqrt(sum(v * v for v in window) / step) / 32768
        loud.append(rms > THRESHOLD)
    bursts = []
    for i, on in enumerate(loud):
        if not on:
            continue
        if bursts and i - bursts[-1][1] <= GAP / WINDOW:
            bursts[-1][1] = i
        else:
            bursts.append([i, i])
    for first, last in bursts:
        begin, end = first * step, (last + 1) * step
        peak = max(abs(v) for v in pcm[begin:end]) / 32768
        head = [v / 32768 for v in pcm[begin:begin + int(rate * 0.06)]]
        frequency = max(NOTES, key=lambda f: goertzel(head, rate, f))
        print(f"{begin / rate:.3f} {end / rate:.3f} {20 * math.log10(max(peak, 1e-9)):.1f} {frequency}")


if __name__ == "__main__":
    main(sys.argv)
