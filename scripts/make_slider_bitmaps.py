#!/usr/bin/env python3
"""Draws the eleven 16 x 16 pictures that stand beside the material dialog's
sliders and writes them as PNG files (RGBA, transparent background) into
src/dialogs/resources/bitmaps/, named by their bitmap id, each with a
32 x 32 version ("4004@2x.png") for screens at 200 %.

Each picture is computed per pixel with 4 x 4 supersampling, so edges are
smooth at this tiny size. Needs nothing but Python's standard library.

    python3 scripts/make_slider_bitmaps.py
"""
import math
import os
import struct
import zlib

SIZE = 16
SAMPLES = 4
OUT = os.path.join(os.path.dirname(__file__), "..", "src", "dialogs", "resources", "bitmaps")

TRANSPARENT = (0, 0, 0, 0)


def over(top, bottom):
    """Alpha-composites colour `top` over `bottom` (RGBA, 0..1 floats)."""
    ta = top[3]
    ba = bottom[3] * (1 - ta)
    a = ta + ba
    if a <= 0:
        return TRANSPARENT
    return tuple((top[i] * ta + bottom[i] * ba) / a for i in range(3)) + (a,)


def rgb(r, g, b, a=1.0):
    return (r / 255, g / 255, b / 255, a)


def mix(c1, c2, t):
    t = max(0.0, min(1.0, t))
    return tuple(c1[i] + (c2[i] - c1[i]) * t for i in range(4))


def ball(x, y, cx, cy, r, base, light=(-0.5, -0.6, 0.65), ambient=0.35,
         shine=0.0, sharp=20.0, outline=None):
    """A shaded sphere seen from the front, or None outside it."""
    dx, dy = (x - cx) / r, (y - cy) / r
    d2 = dx * dx + dy * dy
    if d2 > 1:
        return None
    nz = math.sqrt(1 - d2)
    ln = math.sqrt(sum(c * c for c in light))
    lx, ly, lz = (c / ln for c in light)
    diffuse = max(0.0, dx * lx + dy * ly + nz * lz)
    shade = ambient + (1 - ambient) * diffuse
    colour = tuple(min(1.0, base[i] * shade) for i in range(3)) + (1.0,)
    if shine > 0:
        # Reflection of the light about the normal, seen along +z.
        dot = dx * lx + dy * ly + nz * lz
        rz = 2 * dot * nz - lz
        specular = shine * max(0.0, rz) ** sharp
        colour = mix(colour, (1, 1, 1, 1), specular)
    if outline is not None and d2 > 0.8:
        colour = mix(colour, outline, (d2 - 0.8) / 0.2)
    return colour


def ambient(x, y):
    # An evenly lit, unshaded ball with light falling in from every side.
    for k in range(8):
        a = k * math.pi / 4
        px, py = 8 + 6.6 * math.cos(a), 8 + 6.6 * math.sin(a)
        if (x - px) ** 2 + (y - py) ** 2 < 0.9:
            return rgb(240, 190, 40)
    c = ball(x, y, 8, 8, 4.6, (0.75, 0.75, 0.8), ambient=1.0, outline=rgb(90, 90, 110))
    return c or TRANSPARENT


def diffuse(x, y):
    # A matte ball lit from the top left.
    c = ball(x, y, 8, 8, 7.2, (0.95, 0.95, 1.0), ambient=0.15, outline=rgb(60, 60, 80))
    return c or TRANSPARENT


def checker(x, y):
    return rgb(70, 70, 70) if (int(x // 4) + int(y // 4)) % 2 else rgb(245, 245, 245)


def transparency(x, y):
    # A glass ball in front of a checkerboard.
    back = checker(x, y)
    c = ball(x, y, 8, 8, 6.8, (0.4, 0.7, 1.0), ambient=0.6, shine=1.0, sharp=30)
    if c is None:
        return back
    return over(c[:3] + (0.45,), back)


def refraction(x, y):
    # A straight stick that bends where it enters the water.
    water = y >= 8
    background = rgb(120, 180, 235) if water else rgb(250, 250, 250)
    if abs(y - 8) < 0.5:
        background = rgb(40, 100, 190)
    # Above the water the stick runs from (2, 1) to (8, 8); below it bends
    # towards the vertical, down to (10.5, 15).
    if not water:
        t = (y - 1) / 7
        sx = 2 + 6 * t
    else:
        t = (y - 8) / 7
        sx = 8 + 2.5 * t
    if 1 <= y <= 15 and abs(x - sx) < 0.9:
        return rgb(150, 80, 30)
    return background


def emission(x, y):
    # A glowing sun: bright core, soft halo, short rays.
    d = math.hypot(x - 8, y - 8)
    if d < 3.6:
        return mix(rgb(255, 255, 210), rgb(255, 210, 40), d / 3.6)
    angle = math.atan2(y - 8, x - 8)
    ray = abs(math.sin(angle * 4))
    if d < 7.6 and ray < 0.22 and d > 4.4:
        return rgb(255, 170, 20)
    if d < 5.2:
        return rgb(255, 200, 40, 0.6 * (5.2 - d) / 1.6)
    return TRANSPARENT


def reflection(x, y):
    # A mirror ball showing sky above and ground below its horizon.
    dx, dy = (x - 8) / 7.2, (y - 8) / 7.2
    d2 = dx * dx + dy * dy
    if d2 > 1:
        return TRANSPARENT
    # The mirrored horizon bends with the ball.
    horizon = 0.25 * math.sqrt(max(0.0, 1 - dx * dx))
    if dy < horizon - 0.1:
        c = mix(rgb(40, 110, 220), rgb(200, 230, 255), (dy + 1) / 1.2)
    else:
        c = mix(rgb(160, 120, 70), rgb(80, 55, 30), (dy - horizon + 0.1) / 0.9)
    if (x - 5.5) ** 2 + (y - 5) ** 2 < 2.2:
        c = rgb(255, 255, 255)
    if d2 > 0.82:
        c = mix(c, rgb(40, 40, 60), (d2 - 0.82) / 0.18)
    return c


def highlight_strength(x, y):
    # A dark ball with a small, very bright highlight.
    c = ball(x, y, 8, 8, 7.2, (0.25, 0.3, 0.55), ambient=0.35, shine=1.0, sharp=14,
             outline=rgb(20, 20, 40))
    return c or TRANSPARENT


def spread(x, y):
    # The same ball with a wide, soft highlight.
    c = ball(x, y, 8, 8, 7.2, (0.25, 0.3, 0.55), ambient=0.35, shine=0.7, sharp=1.6,
             outline=rgb(20, 20, 40))
    return c or TRANSPARENT


def colour_drop(base):
    def draw(x, y):
        c = ball(x, y, 8, 8, 6.8, base, ambient=0.55, shine=0.7, sharp=25,
                 outline=tuple(v * 0.45 for v in base) + (1.0,))
        return c or TRANSPARENT
    return draw


PICTURES = {
    4004: ambient,
    4005: diffuse,
    4010: transparency,
    4012: refraction,
    4025: emission,
    4013: reflection,
    4007: highlight_strength,
    4009: spread,
    4015: colour_drop((0.9, 0.1, 0.1)),
    4016: colour_drop((0.1, 0.75, 0.15)),
    4017: colour_drop((0.15, 0.3, 0.95)),
}


def render(draw, scale=1):
    """The picture at `scale` pixels per unit of its 16 x 16 drawing."""
    rows = []
    for py in range(SIZE * scale):
        row = bytearray()
        for px in range(SIZE * scale):
            acc = [0.0, 0.0, 0.0, 0.0]
            for sy in range(SAMPLES):
                for sx in range(SAMPLES):
                    c = draw((px + (sx + 0.5) / SAMPLES) / scale, (py + (sy + 0.5) / SAMPLES) / scale)
                    for i in range(3):
                        acc[i] += c[i] * c[3]
                    acc[3] += c[3]
            n = SAMPLES * SAMPLES
            a = acc[3] / n
            if a > 0:
                colour = [acc[i] / acc[3] for i in range(3)]
            else:
                colour = [0, 0, 0]
            row += bytes(round(max(0, min(1, v)) * 255) for v in colour + [a])
        rows.append(bytes(row))
    return rows


def write_png(path, rows):
    raw = b"".join(b"\x00" + r for r in rows)

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    png = b"\x89PNG\r\n\x1a\n"
    side = len(rows)
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", side, side, 8, 6, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(raw, 9))
    png += chunk(b"IEND", b"")
    with open(path, "wb") as f:
        f.write(png)


def main():
    os.makedirs(OUT, exist_ok=True)
    for bitmap_id, draw in PICTURES.items():
        write_png(os.path.join(OUT, f"{bitmap_id}.png"), render(draw))
        write_png(os.path.join(OUT, f"{bitmap_id}@2x.png"), render(draw, 2))


if __name__ == "__main__":
    main()
