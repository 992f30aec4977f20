"""The overlays: stamps and marks on a ground of one key colour, and a paper to blend with.

Blue (0, 0, 255) is the key of "Watermark - overlay image" and cyan (0, 255, 255) that of "Tile over
absolute". No pixel is mixed with its key colour: a mark ends in a dark or light rim with a hard
edge, so no blue seam stays around it on the picture.
"""

import math

from .iris import Iris
from .lettering import text_strokes, text_width
from .raster import Field, Noise, Picture, arc, clamp, cos, mix, rounded_box, sin, smoothstep

BLUE = (0, 0, 255)
CYAN = (0, 255, 255)
LIGHT = (250.0, 250.0, 248.0)
DARK = (34.0, 37.0, 43.0)


def _lines(width, height, key, lines, ink, rim):
    """Strokes in `ink` with a rim around them. `lines` are (polylines, half line width, rim width)."""
    inside = [1e9] * (width * height)
    around = [1e9] * (width * height)
    for strokes, half, extra in lines:
        field = Field(width, height, half + extra + 2.0)
        for stroke in strokes:
            field.stroke(stroke)
        for at, distance in enumerate(field.values):
            if distance < field.reach:
                inside[at] = min(inside[at], distance - half)
                around[at] = min(around[at], distance - half - extra)
    pixels = []
    for inner, outer in zip(inside, around):
        pixels.append(key if outer > 0.0 else mix(rim, ink, clamp(0.5 - inner)))
    picture = Picture(1, 1, key)
    picture.width, picture.height, picture.pixels = width, height, pixels
    return picture


def _centred(text, cx, top, height, tracking):
    left = cx - text_width(text, height, tracking) / 2.0
    return text_strokes(text, left, top, height, tracking)


def wordmark():
    """The maker's mark as a tile: iris, name and a second line, with room on all sides."""
    width, height = 320, 220
    return _lines(width, height, CYAN, [
        (Iris(160.0, 78.0, 34.0, 15.0).strokes(), 2.3, 1.8),
        (_centred("HALCYRA", 160.0, 128.0, 25.0, 0.16), 1.9, 1.8),
        (_centred("WORKS", 160.0, 166.0, 12.5, 0.62), 1.2, 1.6),
    ], LIGHT, DARK)


def badge():
    """The default watermark: the iris, filled, in a ring."""
    width = height = 420
    iris = Iris(210.0, 210.0, 158.0, 64.0)
    lines = Field(width, height, 12.0)
    for stroke in iris.strokes():
        lines.stroke(stroke)

    def colour(x, y):
        distance = math.sqrt((x - 210.0) ** 2 + (y - 210.0) ** 2)
        if distance > 204.0:
            return BLUE
        number = iris.blade(x, y)
        if number is None:
            hexagon = min(-iris.depth(edge, x, y) for edge in range(6))
            if hexagon > 5.0:
                return BLUE  # the picture shows through the opening
            return DARK
        ring = abs(distance - 184.0)
        base = DARK
        if distance < 158.0:
            depth = smoothstep(0.0, 90.0, iris.depth(number, x, y))
            tone = 246.0 - 22.0 * depth - 12.0 * iris.shade(number)
            blade = (tone, tone, tone - 2.0)
            gap = lines.values[int(y) * width + int(x)]
            base = mix(base, blade, clamp(gap - 2.6))
        return mix(base, LIGHT, clamp(8.5 - ring))

    return Picture(width, height, colour)


def copyright_sign():
    width = height = 320
    centre = 160.0
    return _lines(width, height, BLUE, [
        ([arc(centre, centre, 134.0, 134.0, 0, 360, 120)], 9.0, 6.0),
        ([arc(centre, centre, 68.0, 68.0, -46, -314, 72)], 12.0, 6.0),
    ], LIGHT, DARK)


def aperture():
    """The iris in dark lines, for bright pictures."""
    width = height = 320
    return _lines(width, height, BLUE, [
        (Iris(160.0, 160.0, 132.0, 58.0).strokes(), 7.5, 4.5),
    ], DARK, LIGHT)


def _rubber_stamp(text, ink, seed):
    """A worn rubber stamp set aslant: the ink is missing in places, and there is no rim."""
    angle = math.radians(-11.0)
    c, s = cos(angle), sin(angle)
    wear, speckle = Noise(seed), Noise(seed + 1)
    cap, tracking = 136.0, 0.10
    half_w = text_width(text, cap, tracking) / 2.0 + 72.0
    half_h = cap / 2.0 + 54.0
    width = int(2.0 * (half_w * c + half_h * abs(s))) // 4 * 4
    height = int(2.0 * (half_w * abs(s) + half_h * c)) // 4 * 4

    def turn(point):
        x, y = point
        return (width / 2.0 + x * c - y * s, height / 2.0 + x * s + y * c)

    field = Field(width, height, 20.0)
    for stroke in text_strokes(text, -text_width(text, cap, tracking) / 2.0, -cap / 2.0, cap,
                               tracking, turn):
        field.stroke(stroke)

    def colour(x, y):
        dx, dy = x - width / 2.0, y - height / 2.0
        u, v = dx * c + dy * s, dy * c - dx * s
        box = rounded_box(u, v, -half_w, -half_h, half_w, half_h, 26.0)
        letter = field.values[int(y) * width + int(x)] - 13.5
        outer, inner = abs(box + 8.0) - 7.0, abs(box + 25.0) - 2.6
        edge = (speckle.at(x / 3.0, y / 3.0) - 0.5) * 2.2
        if min(letter, outer, inner) + edge > 0.0:
            return BLUE
        worn = wear.fractal(x / 85.0, y / 60.0, 3) * 0.62 + speckle.fractal(x / 4.2, y / 4.2, 2) * 0.38
        if worn > 0.640:
            return BLUE
        share = smoothstep(0.30, 0.66, worn)
        return mix(ink, tuple(channel + (255.0 - channel) * 0.22 for channel in ink), share)

    return Picture(width, height, colour)


def sample():
    return _rubber_stamp("SAMPLE", (188.0, 28.0, 38.0), 61)


def draft():
    return _rubber_stamp("DRAFT", (30.0, 92.0, 70.0), 63)


def proof():
    return _rubber_stamp("PROOF", (112.0, 40.0, 96.0), 65)


def old_paper():
    """Foxed paper, for "Blend images" with the method Multiply."""
    width, height = 512, 384
    cloud, fibre, spots = Noise(71), Noise(72), Noise(73)

    def colour(x, y):
        u, v = (x / width - 0.5) * 2.0, (y / height - 0.5) * 2.0
        rim = smoothstep(0.55, 1.25, math.sqrt(u * u + v * v))
        rim += 0.35 * smoothstep(0.86, 1.0, max(abs(u), abs(v)))
        tone = (cloud.fractal(x / 120.0, y / 120.0, 5) - 0.5) * 0.55
        tone += (fibre.fractal(x / 2.4, y / 1.8, 2) - 0.5) * 0.16
        age = clamp(0.22 + tone + 0.62 * rim)
        fox = smoothstep(0.76, 0.90, spots.fractal(x / 26.0, y / 26.0, 2))
        paper = mix((252.0, 246.0, 228.0), (192.0, 156.0, 104.0), age)
        return mix(paper, (168.0, 122.0, 72.0), 0.5 * fox)

    return Picture(width, height, colour)


KEYS = (BLUE, CYAN)

ALL = {
    "Overlays/blue1.bmp": badge,
    "Overlays/HalcyraWorks.bmp": wordmark,
    "Overlays/Copyright.bmp": copyright_sign,
    "Overlays/Aperture.bmp": aperture,
    "Overlays/Sample.bmp": sample,
    "Overlays/Draft.bmp": draft,
    "Overlays/Proof.bmp": proof,
    "Overlays/Old-paper.bmp": old_paper,
}
