"""Frame2.jpg, the picture that the window shows while a run lasts: an iris in evening light."""

import math

from .iris import Iris
from .jpeg import jpeg
from .lettering import text_strokes, text_width
from .raster import Field, Noise, Picture, clamp, mix, smoothstep

WIDTH, HEIGHT = 640, 480
CX, CY, RADIUS, RING = 320.0, 206.0, 132.0, 164.0
NAME, CAP, TRACKING = "LUMOSCRIPT", 24.0, 0.36


def _angle(x, y):
    return round(math.atan2(y - CY, x - CX), 9)


def ornament():
    iris = Iris(CX, CY, RADIUS, 60.0, 14.0)
    edges = Field(WIDTH, HEIGHT, 14.0)
    for start, end, _, _ in iris.edges:
        edges.stroke([start, end])
    letters = Field(WIDTH, HEIGHT, 8.0)
    for line in text_strokes(NAME, CX - text_width(NAME, CAP, TRACKING) / 2.0, 408.0, CAP, TRACKING):
        letters.stroke(line)
    brushed, grain = Noise(81), Noise(82)

    def ground(x, y):
        u, v = (x - CX) / 420.0, (y - CY) / 330.0
        share = smoothstep(1.1, 0.1, math.sqrt(u * u + v * v))
        base = mix((20.0, 24.0, 32.0), (66.0, 78.0, 98.0), share)
        tone = (grain.at(x / 1.7, y / 1.7) - 0.5) * 3.0
        return tuple(channel + tone for channel in base)

    def evening(x, y):
        """What shines through the opening: sky over hills, low sun."""
        drop = (y - CY) / 60.0
        sky = mix((255.0, 226.0, 168.0), (236.0, 128.0, 74.0), clamp(0.5 - drop * 0.7))
        dx, dy = x - CX - 16.0, y - CY - 14.0
        sun = smoothstep(44.0, 6.0, math.sqrt(dx * dx + dy * dy))
        sky = mix(sky, (255.0, 250.0, 232.0), sun)
        for level, colour in ((24.0, (150.0, 84.0, 78.0)), (33.0, (84.0, 56.0, 72.0))):
            ridge = brushed.fractal(x / 34.0 + level, level, 3) - 0.5
            sky = mix(sky, colour, clamp(y - CY - level - ridge * 26.0))
        return sky

    def blade_colour(x, y, number, distance):
        depth = iris.depth(number, x, y)
        metal = 104.0 + 44.0 * iris.shade(number) - 42.0 * smoothstep(4.0, 110.0, depth)
        turned = brushed.fractal(distance / 1.9, _angle(x, y) * 5.0, 2)  # as from a lathe
        metal += (turned - 0.5) * 15.0
        gap = edges.values[int(y) * WIDTH + int(x)]
        lip = smoothstep(5.0, 1.5, depth)  # the polished edge catches the evening
        colour = mix((metal, metal * 1.01, metal * 1.05), (255.0, 206.0, 142.0), 0.62 * lip)
        shadow = 1.0 - 0.72 * smoothstep(9.0, 0.0, gap) * (1.0 - lip)
        return tuple(channel * shadow for channel in colour)

    def ring_colour(x, y, distance):
        """The barrel of the lens, with its scale of marks."""
        angle = math.degrees(_angle(x, y)) % 360.0
        light = 0.5 - 0.5 * ((x - CX) * 0.6 + (y - CY) * 0.8) / distance
        place = (distance - RADIUS) / (RING - RADIUS)
        metal = 26.0 + 40.0 * light + 58.0 * light * smoothstep(0.16, 0.0, abs(place - 0.93))
        metal += 46.0 * (1.0 - light) * smoothstep(0.10, 0.0, abs(place - 0.06))
        colour = (metal, metal * 1.02, metal * 1.07)
        step = 6.0
        off = abs((angle + step / 2.0) % step - step / 2.0) * math.pi / 180.0 * distance
        major = int(angle / step + 0.5) % 5 == 0
        end = 0.74 if major else 0.56
        span = smoothstep(0.30, 0.34, place) - smoothstep(end - 0.02, end + 0.02, place)
        mark = clamp((1.25 if major else 0.85) - off + 0.5) * span
        ink = (236.0, 168.0, 92.0) if major else (196.0, 200.0, 206.0)
        return mix(colour, ink, 0.85 * clamp(mark))

    def colour(x, y):
        dx, dy = x - CX, y - CY
        distance = math.sqrt(dx * dx + dy * dy)
        if distance > RING + 1.0:
            base = ground(x, y)
            fallen = smoothstep(46.0, 0.0, math.sqrt((dx - 5.0) ** 2 + (dy - 11.0) ** 2) - RING)
            base = tuple(channel * (1.0 - 0.55 * fallen) for channel in base)
            ink = clamp(2.0 - letters.values[int(y) * WIDTH + int(x)])
            rule = clamp(1.0 - abs(y - 454.0)) * smoothstep(128.0, 20.0, abs(dx))
            base = mix(base, (236.0, 168.0, 92.0), 0.9 * rule)
            return mix(base, (232.0, 234.0, 238.0), ink)
        number = iris.blade(x, y)
        inner = evening(x, y) if number is None else blade_colour(x, y, number, distance)
        body = mix(inner, ring_colour(x, y, max(distance, 1.0)), clamp(distance - RADIUS + 0.5))
        return mix(body, (14.0, 16.0, 20.0), clamp(distance - RING + 0.5))

    return jpeg(Picture(WIDTH, HEIGHT, colour), 90)


ALL = {"Frame2.jpg": ornament}
