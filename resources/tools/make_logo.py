#!/usr/bin/env python3
"""Draw spark/img/logoning.gif: rings spreading on a tarn under two peaks.

Usage: make_logo.py OUTPUT.gif

Every colour is one ramp from the dark ground to the lake's light, so a pixel is one
brightness from 0 to 1 and the palette is that ramp. Index 0 is transparent. The loop
closes because after one period each ring stands where the next one began.
"""

import math
import struct
import sys

SIZE = 160
FRAMES = 32
FRAME_CENTISECONDS = 6  # 32 frames: 1.92 s a loop
RINGS = 3
GROUND = (0x22, 0x24, 0x28)
LIGHT = (0x9F, 0xDB, 0xE5)
LEVELS = 32  # palette entries, the transparent one included

WATER_X, WATER_Y = 80.0, 112.0
WATER_REACH = 70.0
WATER_TILT = 0.42  # height of a ring over its width
SHORE_Y = 78.0
PEAKS = (  # left foot, summit, right foot, brightness
    ((88.0, SHORE_Y), (112.0, 44.0), (140.0, SHORE_Y), 0.34),
    ((22.0, SHORE_Y), (64.0, 18.0), (106.0, SHORE_Y), 0.62),
)


def coverage(distance):
    """How much of a pixel lies inside an edge this far away (negative is outside)."""
    return min(1.0, max(0.0, distance + 0.5))


def edge(px, py, ax, ay, bx, by):
    """Signed distance of a point from the line a to b, positive on its right."""
    dx, dy = bx - ax, by - ay
    return (dx * (py - ay) - dy * (px - ax)) / math.hypot(dx, dy)


def mountains(x, y):
    value = 0.0
    for left, summit, right, brightness in PEAKS:
        inside = min(
            edge(x, y, *left, *summit), edge(x, y, *summit, *right), SHORE_Y - y
        )
        cover = coverage(inside)
        # The side away from the light lies in shadow, down a ragged ridge.
        fall = y - summit[1]
        ridge = summit[0] + 0.22 * fall + 0.12 * fall * abs(fall / 11.0 % 2.0 - 1.0)
        shaded = brightness * (1.0 - 0.35 * coverage(x - ridge))
        value = value * (1.0 - cover) + shaded * cover
    return value


def rings(radius, phase):
    value = 0.0
    for ring in range(RINGS):
        age = (ring + phase) / RINGS
        middle = WATER_REACH * age
        width = 1.3 + 2.2 * age
        strength = math.sin(math.pi * age) ** 0.8 * (1.0 - 0.35 * age)
        value = max(value, strength * math.exp(-(((radius - middle) / width) ** 2)))
    return value


def frame_indices(phase, still):
    out = bytearray()
    for row in range(SIZE):
        for column in range(SIZE):
            value = still[row * SIZE + column]
            if value == 0.0 and row > SHORE_Y:
                dx = column + 0.5 - WATER_X
                dy = (row + 0.5 - WATER_Y) / WATER_TILT
                radius = math.hypot(dx, dy)
                if radius < WATER_REACH + 8.0:
                    value = rings(radius, phase)
            out.append(min(LEVELS - 1, int(value * (LEVELS - 1) + 0.5)))
    return bytes(out)


def lzw(indices, code_bits):
    """GIF's variable-width LZW, least significant bit first."""
    clear, end = 1 << code_bits, (1 << code_bits) + 1
    out, buffer, filled = bytearray(), 0, 0

    def put(code, width):
        nonlocal buffer, filled
        buffer |= code << filled
        filled += width
        while filled >= 8:
            out.append(buffer & 0xFF)
            buffer >>= 8
            filled -= 8

    def fresh():
        return {bytes([i]): i for i in range(clear)}, end + 1, code_bits + 1

    table, following, width = fresh()
    put(clear, width)
    prefix = b""
    for index in indices:
        longer = prefix + bytes([index])
        if longer in table:
            prefix = longer
            continue
        put(table[prefix], width)
        if following < 4096:
            table[longer] = following
            if following == 1 << width:
                width += 1
            following += 1
        else:
            put(clear, width)
            table, following, width = fresh()
        prefix = bytes([index])
    put(table[prefix], width)
    put(end, width)
    if filled:
        out.append(buffer & 0xFF)
    return bytes(out)


def blocks(data):
    parts = (data[i : i + 255] for i in range(0, len(data), 255))
    return b"".join(bytes([len(part)]) + part for part in parts) + b"\0"


def gif(frames):
    bits = (LEVELS - 1).bit_length()
    ramp = bytearray()
    for level in range(LEVELS):
        share = level / (LEVELS - 1)
        ramp += bytes(round(g + (l - g) * share) for g, l in zip(GROUND, LIGHT))
    out = bytearray(b"GIF89a")
    out += struct.pack("<HHBBB", SIZE, SIZE, 0xF0 | (bits - 1), 0, 0) + ramp
    out += b"\x21\xff\x0bNETSCAPE2.0\x03\x01\0\0\0"  # repeat for ever
    for indices in frames:
        # Transparent index 0; clear to it before the next frame.
        out += b"\x21\xf9\x04" + struct.pack("<BHBB", 0x09, FRAME_CENTISECONDS, 0, 0)
        out += b"\x2c" + struct.pack("<HHHHB", 0, 0, SIZE, SIZE, 0)
        out += bytes([bits]) + blocks(lzw(indices, bits))
    return bytes(out + b"\x3b")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    still = [mountains(c + 0.5, r + 0.5) for r in range(SIZE) for c in range(SIZE)]
    frames = [frame_indices(i / FRAMES, still) for i in range(FRAMES)]
    with open(sys.argv[1], "wb") as file:
        file.write(gif(frames))


if __name__ == "__main__":
    main()
