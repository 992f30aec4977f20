"""The masks: white keeps the picture, black gives it up, grey mixes.

A mask is stretched to the picture with the nearest pixel taken, so the smooth ones may be small
and the ones with edges are drawn larger, with edges one grey ramp wide.
"""

import math

from .raster import Grey, Noise, clamp, cos, rounded_box, sin, smoothstep

SMOOTH = (640, 480)
SHARP = (1280, 960)


def soft_edge():
    """The default: the rectangle of the picture, feathered on all sides."""
    width, height = SMOOTH

    def shade(x, y):
        edge = rounded_box(x, y, 24, 24, width - 24, height - 24, 56)
        return smoothstep(20.0, -44.0, edge)

    return Grey(width, height, shade)


def soft_vignette():
    """A lens's own falling off: the corners keep a third of their light."""
    width, height = SMOOTH

    def shade(x, y):
        u, v = (x / width - 0.5) * 2.0, (y / height - 0.5) * 2.0
        distance = math.sqrt((u * u + v * v) / 2.0)  # 1 in the corners
        return 1.0 - 0.68 * smoothstep(0.38, 1.08, distance)

    return Grey(width, height, shade)


def oval():
    """A portrait oval with a soft rim."""
    width, height = SMOOTH

    def shade(x, y):
        u, v = (x - width * 0.5) / (width * 0.46), (y - height * 0.5) / (height * 0.46)
        return smoothstep(1.02, 0.80, math.sqrt(u * u + v * v))

    return Grey(width, height, shade)


def torn_edge():
    """Torn paper: a coarse tear with fibres along it."""
    width, height = SHARP
    coarse, fine = Noise(11), Noise(12)

    def shade(x, y):
        edge = rounded_box(x, y, 74, 74, width - 74, height - 74, 4)
        if edge < -60.0:
            return 1.0
        if edge > 60.0:
            return 0.0
        tear = (coarse.fractal(x / 92.0, y / 92.0, 5) - 0.5) * 92.0
        fibre = (fine.fractal(x / 7.0, y / 7.0, 3) - 0.5) * 22.0
        body = edge + tear
        paper = clamp(0.5 - (body + fibre * 0.35))
        rim = clamp(0.5 - (body - 9.0 + fibre))  # thin fibres reach beyond the tear
        return max(paper, 0.55 * rim)

    return Grey(width, height, shade)


def brush_edge():
    """A few strokes of a wide, half dry brush, drawn across the picture a little aslant."""
    width, height = SHARP
    bristles, ends, wander = Noise(21), Noise(22), Noise(23)
    strokes, slope = 6, 0.045
    top = 98.0
    band = (height - 2.0 * top) / strokes

    def stroke(x, y, number):
        centre = top + band * (number + 0.5) + (wander.at(x / 330.0, number * 7.7) - 0.5) * 34.0
        across = (y - centre) / (band * 0.66)
        if abs(across) > 1.0:
            return 0.0
        left = 24.0 + 150.0 * ends.at(number * 3.1, 0.5)
        right = width - 24.0 - 150.0 * ends.at(number * 3.1, 9.5)
        rag = (bristles.at(y / 2.6, number * 5.0 + 40.0) - 0.5) * 80.0
        rag += (bristles.at(y / 17.0, number * 5.0 + 80.0) - 0.5) * 70.0
        inside = min(x - left, right - x) + rag
        if inside <= 0.0:
            return 0.0
        # A brush is wet where it is set down and dries on its way; its rim is dry all along.
        way = (x - left) / (right - left)
        if number % 2:
            way = 1.0 - way
        dryness = 0.16 + 0.26 * smoothstep(0.45, 1.0, way) + 0.55 * smoothstep(0.62, 1.0, abs(across))
        dryness += 0.45 * smoothstep(120.0, 0.0, inside)
        hair = bristles.fractal(x / 260.0 + number * 31.0, y / 3.3, 3)
        return smoothstep(0.0, 0.10, hair + 0.12 - dryness)

    def shade(x, y):
        y += (x - width * 0.5) * slope
        number = int((y - top) // band)
        return max((stroke(x, y, near) for near in (number - 1, number, number + 1)
                    if 0 <= near < strokes), default=0.0)

    return Grey(width, height, shade)


def rounded_corners():
    """The whole picture, its corners rounded."""
    width, height = SHARP
    return Grey(width, height,
                lambda x, y: clamp(0.5 - rounded_box(x, y, 0, 0, width, height, 96)))


def film_corners():
    """A scanned negative in a filed-out carrier: a dark rim, round corners, a live edge."""
    width, height = SHARP
    live = Noise(31)

    def shade(x, y):
        edge = rounded_box(x, y, 46, 42, width - 46, height - 42, 38)
        if edge < -30.0:
            return 1.0
        if edge > 30.0:
            return 0.0
        edge += (live.fractal(x / 38.0, y / 38.0, 4) - 0.5) * 11.0
        return smoothstep(3.0, -3.0, edge)

    return Grey(width, height, shade)


def diagonal_fade():
    """From the whole picture at the upper left to nothing at the lower right."""
    width, height = SMOOTH
    return Grey(width, height,
                lambda x, y: 1.0 - smoothstep(0.30, 0.95, (x / width + y / height) * 0.5))


def bottom_fade():
    """The lower third fades, for a caption to stand on."""
    width, height = SMOOTH
    return Grey(width, height, lambda x, y: 1.0 - 0.9 * smoothstep(0.58, 0.92, y / height))


def halftone_edge():
    """Printer's dots that grow toward the edge until they join."""
    width, height = SHARP
    pitch = 20.0
    c, s = cos(math.radians(45.0)), sin(math.radians(45.0))

    def shade(x, y):
        u, v = (x * c + y * s) / pitch, (y * c - x * s) / pitch
        cu, cv = math.floor(u) + 0.5, math.floor(v) + 0.5
        best = 1.0
        for du in (-1, 0, 1):  # joined dots reach into the neighbouring cells
            for dv in (-1, 0, 1):
                mu, mv = cu + du, cv + dv
                mx, my = (mu * c - mv * s) * pitch, (mu * s + mv * c) * pitch
                edge = -rounded_box(mx, my, 0, 0, width, height)
                radius = pitch * 0.86 * (1.0 - smoothstep(-18.0, 205.0, edge))
                if radius > 0.6:
                    distance = math.sqrt((x - mx) ** 2 + (y - my) ** 2)
                    best = min(best, clamp(distance - radius + 0.5))
        return best

    def quick(x, y):
        return 1.0 if -rounded_box(x, y, 0, 0, width, height) > 225.0 else shade(x, y)

    return Grey(width, height, quick)


ALL = {
    "Masks/Mask-1.bmp": soft_edge,
    "Masks/Soft-vignette.bmp": soft_vignette,
    "Masks/Oval.bmp": oval,
    "Masks/Torn-edge.bmp": torn_edge,
    "Masks/Brush-edge.bmp": brush_edge,
    "Masks/Rounded-corners.bmp": rounded_corners,
    "Masks/Film-corners.bmp": film_corners,
    "Masks/Diagonal-fade.bmp": diagonal_fade,
    "Masks/Bottom-fade.bmp": bottom_fade,
    "Masks/Halftone-edge.bmp": halftone_edge,
}
