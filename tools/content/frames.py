"""The frames: pure white is the opening through which the picture shows, and nothing else is white.

"Frame overlay" stretches a frame to the picture and takes the nearest pixel, so all edges at the
opening are hard, and each has a dark or light line of its own there to hide the steps. With the
command's own defaults (key colour white, tolerance 0) every frame works as it is; the brightest
papers stay far enough from white for a tolerance of 4 percent.
"""

import math

from .lettering import text_strokes
from .raster import Field, Noise, Picture, clamp, mix, rounded_box, smoothstep

OPENING = (255, 255, 255)
BRIGHTEST = 245.0

TOP, RIGHT, BOTTOM, LEFT = range(4)
LIGHT = {TOP: 1.0, LEFT: 0.7, RIGHT: -0.7, BOTTOM: -1.0}  # the light comes from the upper left


def _frame(width, height, material, window):
    """`material(x, y)` colours the frame; `window(x, y)` is below 0 in the opening."""

    def colour(x, y):
        if window(x, y) < 0.0:
            return OPENING
        return tuple(min(channel, BRIGHTEST) for channel in material(x, y))

    return Picture(width, height, colour)


def _side(x, y, width, height):
    """Side of a mitred frame, the depth from its outer edge and the way along it."""
    depths = (y, width - x, height - y, x)
    side = depths.index(min(depths))
    return side, depths[side], (x if side in (TOP, BOTTOM) else y)


def _square(x, y, width, height, deep):
    """As rounded_box to the window `deep` from all sides, but square beyond its corners too."""
    return max(deep - x, deep - y, x - (width - deep), y - (height - deep))


def _box(width, height, left, top, right, bottom, radius=0.0):
    return lambda x, y: rounded_box(x, y, left, top, width - right, height - bottom, radius)


def _grain(noise, along, across, side):
    """Wood along a moulding: long fibres, broad figure and pores; -1 to 1."""
    offset = side * 131.0
    figure = noise.fractal(along / 210.0 + offset, across / 30.0, 3)
    rings = abs(((figure * 5.0 + across / 34.0) % 1.0) - 0.5) * 2.0
    fibre = noise.fractal(along / 70.0 + offset, across / 1.7, 2)
    pore = smoothstep(0.66, 0.80, noise.at(along / 16.0 + offset, across / 1.15))
    return (rings - 0.5) * 0.75 + (fibre - 0.5) * 0.9 - pore * 0.55


def _moulding(width, height, deep, bands, noise):
    """A mitred moulding. `bands` are (depth, dark, light, profile) from the outer edge inward;
    profile gives the slope of the surface, positive where it rises, over 0 to 1 of the band."""

    def colour(x, y):
        side, depth, along = _side(x, y, width, height)
        start = 0.0
        for end, dark, light, slope, grained in bands:
            if depth < end or end == deep:
                break
            start = end
        u = clamp((depth - start) / (end - start))
        tone = 0.5 + (0.34 * _grain(noise, along, depth, side) if grained else 0.0)
        shade = 1.0 + 0.42 * slope(u) * LIGHT[side] + 0.05 * LIGHT[side]
        base = mix(dark, light, clamp(tone))
        mitre = sorted((y, width - x, height - y, x))
        if mitre[1] - mitre[0] < 0.9:  # the joint
            shade *= 0.78
        return tuple(channel * shade for channel in base)

    return colour


def walnut():
    """The default frame: dark walnut with a gilded inner fillet."""
    width, height, deep = 960, 720, 84
    bands = (
        (5, (38, 24, 15), (56, 36, 22), lambda u: 0.9, True),
        (62, (44, 27, 17), (112, 72, 44), lambda u: 0.55 - 1.15 * u, True),
        (66, (20, 12, 8), (28, 18, 12), lambda u: 0.0, False),
        (80, (150, 112, 48), (214, 176, 98), lambda u: 1.3 - 2.6 * u, True),
        (deep, (26, 17, 11), (30, 20, 13), lambda u: 0.0, False),
    )
    return _frame(width, height, _moulding(width, height, deep, bands, Noise(41)),
                  _box(width, height, deep, deep, deep, deep))


def oak():
    """Light oak, flat, with a bevel on both edges."""
    width, height, deep = 960, 720, 70
    bands = (
        (6, (150, 112, 70), (190, 150, 100), lambda u: 0.9, True),
        (60, (158, 116, 72), (222, 184, 134), lambda u: 0.0, True),
        (68, (140, 102, 62), (180, 140, 94), lambda u: -0.9, True),
        (deep, (52, 36, 22), (60, 42, 26), lambda u: 0.0, False),
    )
    return _frame(width, height, _moulding(width, height, deep, bands, Noise(42)),
                  _box(width, height, deep, deep, deep, deep))


def mat_board():
    """A cream mat with a cut bevel, in a narrow black frame."""
    width, height = 960, 720
    rim, deep, bevel = 12, 92, 7
    paper = Noise(43)

    def material(x, y):
        side, depth, _ = _side(x, y, width, height)
        if depth < rim:
            shine = 62.0 * smoothstep(4.0, 0.0, abs(depth - 5.0)) * (0.6 + 0.4 * LIGHT[side])
            return (24.0 + shine, 24.0 + shine, 26.0 + shine)
        inner = _square(x, y, width, height, deep)
        if inner > bevel:
            tone = (paper.fractal(x / 2.6, y / 2.6, 2) - 0.5) * 7.0
            shadow = 0.76 + 0.24 * smoothstep(rim, rim + 13.0, depth)
            if side in (BOTTOM, RIGHT):
                shadow = 0.90 + 0.10 * smoothstep(rim, rim + 5.0, depth)
            return tuple((channel + tone) * shadow for channel in (233.0, 226.0, 210.0))
        if inner < 1.6:
            return (120.0, 116.0, 108.0)  # the bevel's own shadow on the picture
        if inner > bevel - 1.0:
            return (206.0, 200.0, 188.0)
        lit = 224.0 - 19.0 * LIGHT[side]  # cut downward, so lit from the far side
        return (lit, lit - 1.0, lit - 5.0)

    return _frame(width, height, material, _box(width, height, deep, deep, deep, deep))


def gallery():
    """A wide white mat and thin black lines."""
    width, height = 960, 720
    rim, deep = 12, 88

    def material(x, y):
        depth = min(x, y, width - x, height - y)
        inner = _square(x, y, width, height, deep)
        if depth < rim:
            edge = 40.0 if depth < 2.0 else 20.0
            return (edge, edge, edge + 2.0)
        if inner <= 3.0:
            return (28.0, 28.0, 30.0)
        if 11.0 < inner <= 12.4:
            return (168.0, 167.0, 164.0)
        white = 244.0 - 30.0 * smoothstep(rim + 10.0, rim, depth)
        return (white, white - 1.0, white - 4.0)

    return _frame(width, height, material, _box(width, height, deep, deep, deep, deep))


def instant_print():
    """An instant print: a pale paper rim, wide below for a line of writing."""
    width, height = 960, 780
    side, foot = 50, 168
    paper = Noise(44)

    def material(x, y):
        inner = rounded_box(x, y, side, side, width - side, height - foot, 3)
        outer = rounded_box(x, y, 0, 0, width, height)
        if inner < 2.2:
            return (92.0, 90.0, 86.0)
        tone = (paper.fractal(x / 5.0, y / 5.0, 2) - 0.5) * 4.0
        pressed = 7.0 * smoothstep(12.0, 2.0, inner)
        curl = 26.0 * smoothstep(-9.0, 0.0, outer)
        lit = 239.0 + tone - pressed - curl + 3.0 * (0.5 - y / height)
        return (lit, lit - 2.0, lit - 8.0)

    return _frame(width, height, material, _box(width, height, side, side, side, foot, 3))


def film_strip():
    """A frame of 35 mm film on the light table, numbers and edge print beside the holes."""
    width, height = 1200, 960
    band, gap = 132, 22
    pitch, hole_w, hole_h = 100.0, 48.0, 62.0
    print_field = Field(width, height, 4.0)
    for text, left, top in (("LUMO 400", 92.0, 12.0), ("12", 596.0, 12.0), ("12A", 1040.0, 12.0),
                            ("12", 196.0, height - 28.0), ("LUMO 400", 780.0, height - 28.0)):
        for line in text_strokes(text, left, top, 16.0, 0.06):
            print_field.stroke(line)
    for left, top in ((560.0, 12.0), (160.0, height - 28.0)):  # the arrow before a number
        print_field.stroke([(left, top), (left + 14.0, top + 8.0), (left, top + 16.0), (left, top)])

    def material(x, y):
        near = min(y, height - y)
        cx = (math.floor(x / pitch) + 0.5) * pitch
        cy = 78.0 if y < height / 2.0 else height - 78.0
        hole = rounded_box(x, y, cx - hole_w / 2, cy - hole_h / 2, cx + hole_w / 2, cy + hole_h / 2, 11)
        base = 21.0 + 9.0 * smoothstep(0.0, 40.0, near)
        film = (base + 3.0, base, base - 3.0)
        amber = clamp(2.4 - print_field.values[int(y) * width + int(x)])
        film = mix(film, (226.0, 158.0, 62.0), amber * 0.92)
        film = mix(film, (70.0, 64.0, 58.0), 0.7 * clamp(2.0 - abs(hole)))  # the punched rim
        return mix(film, (238.0, 236.0, 230.0), clamp(0.5 - hole))

    return _frame(width, height, material, _box(width, height, gap, band, gap, band, 12))


def slide_mount():
    """A slide in its grey plastic mount."""
    width, height = 960, 720
    deep, radius = 86, 26
    grain = Noise(45)

    def material(x, y):
        inner = rounded_box(x, y, deep, deep, width - deep, height - deep, radius)
        outer = rounded_box(x, y, 0, 0, width, height, 18)
        if outer > 0.0:
            return mix((205.0, 206.0, 207.0), (58.0, 60.0, 63.0), clamp(outer))
        if inner < 3.0:
            return (18.0, 18.0, 19.0)
        light = LIGHT[_side(x, y, width, height)[0]]
        tone = (grain.fractal(x / 3.0, y / 3.0, 2) - 0.5) * 5.0
        grey = 216.0 + tone + 6.0 * (0.5 - y / height)
        if inner < 13.0:
            grey += -34.0 * light * smoothstep(13.0, 5.0, inner) - 16.0
        if outer > -6.0:
            grey += 22.0 * light * smoothstep(-6.0, 0.0, outer) - 6.0
        groove = abs(rounded_box(x, y, 28, 28, width - 28, height - 28, 12))
        if groove < 2.0:
            grey -= 30.0 * (1.0 - groove / 2.0)
        return (grey, grey + 1.0, grey + 2.0)

    return _frame(width, height, material, _box(width, height, deep, deep, deep, deep, radius))


def postage_stamp():
    """A postage stamp's perforated rim on a dark album page."""
    width, height = 960, 720
    margin, deep = 26, 86
    across, down = 37, 27
    page, paper = Noise(46), Noise(47)
    step_x, step_y = (width - 2.0 * margin) / across, (height - 2.0 * margin) / down

    def perforated(x, y):
        """Below 0 on the stamp."""
        edge = rounded_box(x, y, margin, margin, width - margin, height - margin)
        nearest = 1e9
        column = math.floor((x - margin) / step_x + 0.5)
        row = math.floor((y - margin) / step_y + 0.5)
        cx = margin + clamp(column, 0, across) * step_x
        cy = margin + clamp(row, 0, down) * step_y
        for hx, hy in ((cx, margin), (cx, height - margin), (margin, cy), (width - margin, cy)):
            nearest = min(nearest, math.sqrt((x - hx) ** 2 + (y - hy) ** 2))
        return max(edge, 8.0 - nearest)

    def material(x, y):
        stamp = perforated(x, y)
        inner = _square(x, y, width, height, deep)
        tone = (page.fractal(x / 2.2, y / 2.2, 2) - 0.5) * 9.0
        shadow = 1.0 - 0.45 * smoothstep(9.0, 0.0, perforated(x - 3.0, y - 4.0))
        ground = tuple((channel + tone) * shadow for channel in (66.0, 70.0, 78.0))
        weave = (paper.fractal(x / 3.0, y / 3.0, 2) - 0.5) * 5.0
        card = tuple(channel + weave for channel in (240.0, 237.0, 228.0))
        if inner < 2.0:
            card = (88.0, 92.0, 104.0)
        elif 7.0 < inner < 9.0:
            card = (150.0, 152.0, 158.0)
        return mix(ground, card, clamp(0.5 - stamp))

    return _frame(width, height, material, _box(width, height, deep, deep, deep, deep))


ALL = {
    "Frames/frame.bmp": walnut,
    "Frames/Oak.bmp": oak,
    "Frames/Mat-board.bmp": mat_board,
    "Frames/Gallery.bmp": gallery,
    "Frames/Instant-print.bmp": instant_print,
    "Frames/Film-strip.bmp": film_strip,
    "Frames/Slide-mount.bmp": slide_mount,
    "Frames/Postage-stamp.bmp": postage_stamp,
}
