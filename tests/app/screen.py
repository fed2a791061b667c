#!/usr/bin/env python3
"""Reads pixels of screenshots for the acceptance test, in the screenshot's coordinates.

  screen.py count  SHOT X Y W H R,G,B [TOL]  pixels of the rectangle within TOL of the colour
  screen.py box    SHOT X Y W H R,G,B [TOL]  "x y w h" around those pixels, or "none"
  screen.py blobs  SHOT X Y W H R,G,B [TOL]  "x y w h count" around each connected patch of
                                             those pixels, the largest first (a button's fill)
  screen.py centre SHOT X Y W H R,G,B [TOL]  "x y", the centre of the largest such patch, or
                                             "none"
  screen.py differ SHOT1 SHOT2 X Y W H       pixels of the rectangle that differ between the two
  screen.py dark   SHOT X Y W H [LEVEL]      share (0…1) of pixels whose channels are all ≤ LEVEL

Every rectangle is cut out of the screenshot by ImageMagick's convert and read as a binary PPM.
"""
import re
import subprocess
import sys


def read_rect(path, x, y, w, h):
    """The rectangle's pixels, row by row, as (width, height, bytes of RGB triples)."""
    ppm = subprocess.run(
        ["convert", path, "-crop", f"{w}x{h}+{x}+{y}", "+repage", "-depth", "8", "ppm:-"],
        check=True, stdout=subprocess.PIPE).stdout
    # P6 header: magic, width, height, maximum, each followed by one whitespace character.
    fields = []
    pos = 0
    while len(fields) < 4:
        while ppm[pos:pos + 1].isspace():
            pos += 1
        if ppm[pos:pos + 1] == b"#":
            pos = ppm.index(b"\n", pos) + 1
            continue
        end = pos
        while not ppm[end:end + 1].isspace():
            end += 1
        fields.append(ppm[pos:end])
        pos = end
    if fields[0] != b"P6" or int(fields[3]) != 255:
        raise SystemExit(f"{path}: not an 8-bit PPM")
    width, height = int(fields[1]), int(fields[2])
    data = ppm[pos + 1:pos + 1 + width * height * 3]
    return width, height, data


def channel_table(low, high):
    """A translation table mapping a channel's byte to 1 within [low, high], else to 0."""
    return bytes(1 if low <= v <= high else 0 for v in range(256))


def mask(data, colour, tol):
    """One byte per pixel: 1 where each channel is within `tol` of the colour's, else 0."""
    bits = None
    for channel, value in enumerate(colour):
        plane = data[channel::3].translate(channel_table(value - tol, value + tol))
        number = int.from_bytes(plane, "big")
        bits = number if bits is None else bits & number
    return bits.to_bytes(len(data) // 3, "big")


def matches(data, colour, tol):
    """The indices of the pixels within `tol` of the colour."""
    return [m.start() for m in re.finditer(b"\x01", mask(data, colour, tol))]


def main(argv):
    command = argv[1]
    if command in ("count", "box"):
        path = argv[2]
        x, y, w, h = (int(v) for v in argv[3:7])
        colour = tuple(int(v) for v in argv[7].split(","))
        tol = int(argv[8]) if len(argv) > 8 else 12
        width, _, data = read_rect(path, x, y, w, h)
        if command == "count":
            print(mask(data, colour, tol).count(1))
            return
        found = matches(data, colour, tol)
        if not found:
            print("none")
        else:
            xs = [i % width for i in found]
            ys = [i // width for i in found]
            print(x + min(xs), y + min(ys), max(xs) - min(xs) + 1, max(ys) - min(ys) + 1)
    elif command in ("blobs", "centre"):
        path = argv[2]
        x, y, w, h = (int(v) for v in argv[3:7])
        colour = tuple(int(v) for v in argv[7].split(","))
        tol = int(argv[8]) if len(argv) > 8 else 12
        width, _, data = read_rect(path, x, y, w, h)
        left = set(matches(data, colour, tol))
        patches = []
        while left:
            seed = left.pop()
            members = [seed]
            todo = [seed]
            while todo:
                i = todo.pop()
                col = i % width
                for j in (i - width, i + width, i - 1 if col > 0 else -1,
                          i + 1 if col < width - 1 else -1):
                    if j in left:
                        left.remove(j)
                        members.append(j)
                        todo.append(j)
            xs = [i % width for i in members]
            ys = [i // width for i in members]
            patches.append((len(members), x + min(xs), y + min(ys),
                            max(xs) - min(xs) + 1, max(ys) - min(ys) + 1))
        patches.sort(reverse=True)
        if command == "centre":
            if patches:
                _, px, py, pw, ph = patches[0]
                print(px + pw // 2, py + ph // 2)
            else:
                print("none")
        for count, px, py, pw, ph in patches if command == "blobs" else ():
            print(px, py, pw, ph, count)
    elif command == "differ":
        x, y, w, h = (int(v) for v in argv[4:8])
        _, _, first = read_rect(argv[2], x, y, w, h)
        _, _, second = read_rect(argv[3], x, y, w, h)
        size = min(len(first), len(second))
        changed = int.from_bytes(first[:size], "big") ^ int.from_bytes(second[:size], "big")
        per_byte = changed.to_bytes(size, "big").translate(channel_table(1, 255))
        bits = 0
        for channel in range(3):
            bits |= int.from_bytes(per_byte[channel::3], "big")
        print(bits.to_bytes(size // 3, "big").count(1))
    elif command == "dark":
        path = argv[2]
        x, y, w, h = (int(v) for v in argv[3:7])
        level = int(argv[7]) if len(argv) > 7 else 16
        _, _, data = read_rect(path, x, y, w, h)
        total = len(data) // 3
        dark = mask(data, (0, 0, 0), level).count(1)
        print(f"{dark / total:.4f}" if total else "0")
    else:
        raise SystemExit(f"unknown command {command}")


if __name__ == "__main__":
    main(sys.argv)
