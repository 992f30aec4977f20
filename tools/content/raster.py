"""Pictures, distance fields and noise in plain Python: what the drawings of the shipped content stand on.

Everything is computed from pixel coordinates, with y downward and pixel (x, y) covering
[x, x + 1) by [y, y + 1). Only the four operations and square roots of IEEE doubles touch a pixel;
sines and cosines are rounded to 12 digits first, because C libraries differ in their last bit and
the files must come out the same on every machine.
"""

import math


def sin(radians):
    return round(math.sin(radians), 12)


def cos(radians):
    return round(math.cos(radians), 12)


def clamp(value, low=0.0, high=1.0):
    return low if value < low else high if value > high else value


def smoothstep(low, high, value):
    """0 at `low`, 1 at `high` (either may be the larger), with no slope at the two ends."""
    t = clamp((value - low) / (high - low))
    return t * t * (3.0 - 2.0 * t)


def mix(a, b, share):
    """Colours or numbers: `a` at share 0, `b` at share 1."""
    if isinstance(a, tuple):
        return tuple(p + (q - p) * share for p, q in zip(a, b))
    return a + (b - a) * share


def byte(value):
    return 0 if value <= 0 else 255 if value >= 255 else int(value + 0.5)


class Noise:
    """Value noise on a lattice of hashed integers: smooth, in 0 to 1, the same for the same seed."""

    def __init__(self, seed):
        self.seed = seed
        self.lattice = {}

    def corner(self, x, y):
        key = (x, y)
        value = self.lattice.get(key)
        if value is None:
            h = (x * 374761393 + y * 668265263 + self.seed * 2246822519) & 0xFFFFFFFF
            h = ((h ^ (h >> 13)) * 1274126177) & 0xFFFFFFFF
            h ^= h >> 16
            value = self.lattice[key] = (h & 0xFFFF) / 65535.0
        return value

    def at(self, x, y):
        left, top = math.floor(x), math.floor(y)
        u, v = x - left, y - top
        u = u * u * (3.0 - 2.0 * u)
        v = v * v * (3.0 - 2.0 * v)
        a, b = self.corner(left, top), self.corner(left + 1, top)
        c, d = self.corner(left, top + 1), self.corner(left + 1, top + 1)
        upper = a + (b - a) * u
        return upper + (c + (d - c) * u - upper) * v

    def fractal(self, x, y, octaves):
        """Sum of octaves, each twice as fine and half as strong as the one before; 0 to 1."""
        total, weight, sum_of_weights = 0.0, 1.0, 0.0
        for octave in range(octaves):
            total += weight * self.at(x + octave * 17.3, y + octave * 9.1)
            sum_of_weights += weight
            weight *= 0.5
            x, y = x * 2.0, y * 2.0
        return total / sum_of_weights


def rounded_box(x, y, left, top, right, bottom, radius=0.0):
    """Signed distance to a rectangle with rounded corners: negative inside."""
    dx = abs(x - (left + right) * 0.5) - (right - left) * 0.5 + radius
    dy = abs(y - (top + bottom) * 0.5) - (bottom - top) * 0.5 + radius
    if dx > 0.0 and dy > 0.0:
        return math.sqrt(dx * dx + dy * dy) - radius
    return max(dx, dy) - radius


class Field:
    """Distance to the nearest of the lines drawn, in pixels; `reach` wherever it is more."""

    def __init__(self, width, height, reach):
        self.width, self.height, self.reach = width, height, reach
        self.values = [reach] * (width * height)

    def line(self, ax, ay, bx, by):
        reach, width, values = self.reach, self.width, self.values
        left = max(0, math.floor(min(ax, bx) - reach))
        right = min(width, math.ceil(max(ax, bx) + reach))
        top = max(0, math.floor(min(ay, by) - reach))
        bottom = min(self.height, math.ceil(max(ay, by) + reach))
        dx, dy = bx - ax, by - ay
        length2 = dx * dx + dy * dy
        for row in range(top, bottom):
            py = row + 0.5 - ay
            at = row * width + left
            for column in range(left, right):
                px = column + 0.5 - ax
                t = (px * dx + py * dy) / length2 if length2 else 0.0
                t = 0.0 if t < 0.0 else 1.0 if t > 1.0 else t
                ex, ey = px - t * dx, py - t * dy
                distance2 = ex * ex + ey * ey
                known = values[at]
                if distance2 < known * known:
                    values[at] = math.sqrt(distance2)
                at += 1

    def stroke(self, points):
        for (ax, ay), (bx, by) in zip(points, points[1:]):
            self.line(ax, ay, bx, by)


def arc(cx, cy, rx, ry, start, end, steps=24):
    """Points of an elliptic arc; degrees, 0 to the right, 90 downward."""
    points = []
    for step in range(steps + 1):
        angle = math.radians(start + (end - start) * step / steps)
        points.append((cx + rx * cos(angle), cy + ry * sin(angle)))
    return points


class Grey:
    """An 8-bit grey picture, rows from the top."""

    def __init__(self, width, height, shade):
        """`shade(x, y)` gives 0 to 1 for the pixel centre at x, y."""
        self.width, self.height = width, height
        self.pixels = bytearray(width * height)
        at = 0
        for row in range(height):
            y = row + 0.5
            for column in range(width):
                self.pixels[at] = byte(shade(column + 0.5, y) * 255.0)
                at += 1


class Picture:
    """A picture of red, green, blue tuples (0 to 255, not yet rounded), rows from the top."""

    def __init__(self, width, height, colour):
        """`colour` is one colour, or a function of the pixel centre x, y that gives one."""
        self.width, self.height = width, height
        if callable(colour):
            self.pixels = [colour(column + 0.5, row + 0.5)
                           for row in range(height) for column in range(width)]
        else:
            self.pixels = [colour] * (width * height)

    def paint(self, coverage, colour):
        """Lays `colour` over the picture. `coverage` holds 0 to 1 for each pixel."""
        pixels = self.pixels
        for at, share in enumerate(coverage):
            if share >= 1.0:
                pixels[at] = colour
            elif share > 0.0:
                pixels[at] = mix(pixels[at], colour, share)

    def rounded(self):
        return [(byte(r), byte(g), byte(b)) for r, g, b in self.pixels]
