#!/usr/bin/env python3
# Draws the program's art: res/*.ico and res/side.bmp. The results are kept in the repository, so this runs only
# when the design changes. Needs nothing but Python's standard library.
# usage: make-art.py [PREVIEW-FOLDER]   with a folder, PNG copies of both go there too
import math
import os
import struct
import sys
import zlib

RES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "res")
ICON_SIZES = (16, 24, 32, 48, 64, 256)
SIDE_SIZE = (120, 260)
EDGE = (16, 26, 66)
BLADES = 7
OPENING = 0.30  # of the lens' radius, to the middle of an edge of the opening
HOUSING = 0.83  # inner radius of the lens' ring

# One colour for each blade, from cool to warm.
BLADE_COLOURS = ((28, 92, 168), (20, 128, 178), (24, 158, 152), (94, 176, 104), (238, 176, 60), (232, 116, 66),
                 (150, 76, 150))
NORMALS = [(math.cos(2 * math.pi * i / BLADES + 0.3), math.sin(2 * math.pi * i / BLADES + 0.3))
           for i in range(BLADES)]


def mix(a, b, t):
    t = min(max(t, 0.0), 1.0)
    return tuple(x + (y - x) * t for x, y in zip(a, b))


def smooth(t):
    t = min(max(t, 0.0), 1.0)
    return t * t * (3 - 2 * t)


def blade_at(x, y):
    """The blade at a point outside the opening, and the distances to its own edge and to the next blade's edge."""
    over = [x * nx + y * ny - OPENING for nx, ny in NORMALS]
    for i in range(BLADES):
        if over[i] > 0 and over[i - 1] <= 0:
            return i, over[i], -over[i - 1]
    return None


def lens(x, y, pixel):
    """Colour and opacity of the lens of radius 1 around the origin; `pixel` is the size of a pixel in this measure."""
    r = math.hypot(x, y)
    if r > 1:
        return (0, 0, 0), 0.0
    light = smooth((-x - y) / 2.0 + 0.5)
    if r > HOUSING:
        middle = 1 - abs((r - HOUSING) / (1 - HOUSING) * 2 - 1)
        colour = mix((22, 30, 48), (96, 112, 140), middle * light)
        return mix(colour, (190, 204, 224), 0.75 * light if r > 1 - max(0.035, 0.6 * pixel) else 0), 1.0
    seam = max(0.022, 0.55 * pixel)
    blade = blade_at(x, y)
    if blade is None:
        glow = smooth(1 - r / (OPENING * 1.15))
        colour = mix((255, 206, 120), (255, 253, 240), glow)
    else:
        index, own, following = blade
        colour = mix(BLADE_COLOURS[index], (255, 255, 255), 0.22 * light)
        colour = mix(colour, (8, 14, 34), 0.55 * smooth((r - 0.45) / (HOUSING - 0.4)))
        # Each blade lies below the one before it: a shadow along that one's edge, a gleam along its own.
        colour = mix(colour, (6, 10, 26), 0.6 * (1 - smooth(following / 0.16)))
        if own < seam:
            colour = mix(colour, (255, 250, 235), 0.8)
    edge = HOUSING - r
    return mix(colour, (6, 10, 22), 0.8 * (1 - smooth(edge / max(0.05, pixel)))), 1.0


def glare(x, y):
    """Light on the front glass: a soft crescent at the upper left."""
    inside = smooth((HOUSING - 0.05 - math.hypot(x, y)) / 0.06)
    outside = smooth((math.hypot(x - 0.32, y - 0.36) - 0.80) / 0.10)
    return 0.30 * inside * outside


def lens_with_glare(x, y, pixel):
    colour, opacity = lens(x, y, pixel)
    return mix(colour, (255, 255, 255), glare(x, y)), opacity


def icon_sample(size):
    def sample(x, y):
        return lens_with_glare((x / size * 2 - 1) * 1.03, (y / size * 2 - 1) * 1.03, 2.0 / size)
    return sample


# Discs of light over the background: centre, radius, colour, strength.
DISCS = ((18, 26, 15, (120, 200, 220), 0.16), (97, 44, 22, (90, 150, 230), 0.16), (52, 70, 9, (255, 220, 150), 0.22),
         (108, 104, 10, (240, 150, 110), 0.20), (12, 112, 20, (130, 120, 220), 0.16), (74, 16, 6, (255, 240, 210), 0.22),
         (26, 76, 5, (200, 240, 240), 0.20))
LENS_AT = (60.0, 184.0)
LENS_RADIUS = 50.0


def side_background(x, y):
    down = y / SIDE_SIZE[1]
    colour = mix((16, 26, 66), (22, 78, 122), smooth(down / 0.62)) if down < 0.62 else \
        mix((22, 78, 122), (12, 22, 50), smooth((down - 0.62) / 0.38))
    dx, dy = x - LENS_AT[0], y - LENS_AT[1]
    distance = math.hypot(dx, dy)
    angle = math.atan2(dy, dx)
    # Rays of unequal width: a few waves over the angle that don't share a period, fading with the distance.
    waves = 0.5 + 0.26 * math.sin(7 * angle + 0.4) + 0.16 * math.sin(13 * angle + 1.9) + 0.12 * math.sin(23 * angle)
    ray = smooth((waves - 0.45) / 0.45) * max(0.0, 1 - distance / 235)
    colour = mix(colour, (255, 224, 168), 0.34 * ray)
    colour = mix(colour, (255, 226, 170), 0.55 * math.exp(-max(0.0, distance - LENS_RADIUS) / 13))
    for cx, cy, radius, tint, strength in DISCS:
        from_edge = radius - math.hypot(x - cx, y - cy)
        if from_edge > 0:
            rim = 0.6 * (1 - smooth(from_edge / 1.6))
            colour = mix(colour, tint, strength * (1 + rim))
    # One colour all around: where the frame has more room than the picture, it fills the rest with that of the corner.
    from_side = min(x, SIDE_SIZE[0] - x, y, SIDE_SIZE[1] - y)
    return mix(EDGE, colour, smooth((from_side - 1) / 18))


def side_sample(x, y):
    colour, opacity = lens_with_glare((x - LENS_AT[0]) / LENS_RADIUS, (y - LENS_AT[1]) / LENS_RADIUS, 1 / LENS_RADIUS)
    return (colour if opacity else side_background(x, y)), 1.0


def render(width, height, sample, factor):
    """Rows of (r, g, b, a), from the top, each the mean of factor x factor samples."""
    rows = []
    for py in range(height):
        row = []
        for px in range(width):
            total = [0.0, 0.0, 0.0]
            opacity = 0.0
            for sy in range(factor):
                for sx in range(factor):
                    colour, a = sample(px + (sx + 0.5) / factor, py + (sy + 0.5) / factor)
                    opacity += a
                    for i in range(3):
                        total[i] += colour[i] * a
            colour = [int(c / opacity + 0.5) if opacity else 0 for c in total]
            row.append((*colour, int(255 * opacity / factor ** 2 + 0.5)))
        rows.append(row)
    return rows


def png(rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    header = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 6, 0, 0, 0)
    lines = b""
    for row in rows:
        values = bytes(v for pixel in row for v in pixel)
        lines += b"\1" + bytes((v - left) % 256 for v, left in zip(values, bytes(4) + values))
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b"")


def icon_bitmap(rows):
    """An icon's image without compression: header of double height, pixels and mask, both from the bottom up."""
    size = len(rows)
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = b"".join(bytes((b, g, r, a)) for row in reversed(rows) for r, g, b, a in row)
    mask = b""
    for row in reversed(rows):
        bits = "".join("1" if pixel[3] == 0 else "0" for pixel in row)
        bits += "0" * (-len(bits) % 32)
        mask += int(bits, 2).to_bytes(len(bits) // 8, "big")
    return header + pixels + mask


def ico(images):
    directory = struct.pack("<HHH", 0, 1, len(images))
    data = b""
    offset = 6 + 16 * len(images)
    for rows in images:
        size = len(rows)
        image = png(rows) if size == 256 else icon_bitmap(rows)
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(image), offset + len(data))
        data += image
    return directory + data


def bmp(rows):
    line = len(rows[0]) * 3
    pad = b"\0" * (-line % 4)
    pixels = b"".join(bytes(v for r, g, b, _ in row for v in (b, g, r)) + pad for row in reversed(rows))
    header = struct.pack("<IiiHHIIiiII", 40, len(rows[0]), len(rows), 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    return struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54) + header + pixels


def write(folder, name, data):
    with open(os.path.join(folder, name), "wb") as target:
        target.write(data)


def main():
    icons = [render(size, size, icon_sample(size), 4 if size > 64 else 8) for size in ICON_SIZES]
    side = render(*SIDE_SIZE, side_sample, 4)
    write(RES, "setup.ico", ico(icons))
    # What people download is kept small: without the large pictures, which weigh as much as the packer.
    write(RES, "download.ico", ico(icons[:4]))
    write(RES, "side.bmp", bmp(side))
    if len(sys.argv) > 1:
        for rows in icons:
            write(sys.argv[1], "icon%d.png" % len(rows), png(rows))
        write(sys.argv[1], "side.png", png(side))


main()
