"""Capital letters of one line width, drawn as strokes, so that no font is needed.

A letter stands in a box one unit high, the base line at y = 1; its width is its own. Strokes have
round ends, so the line width adds on all sides.
"""

from .raster import arc

GAP = 0.30  # between letters, before extra tracking
SPACE = 0.46


def _o(width):
    return [arc(width / 2, 0.5, width / 2, 0.5, 0, 360, 48)]


def _bowl(x, right, top, bottom):
    """A bowl of P, R or D: straight from x, round at its right end."""
    radius = (bottom - top) / 2
    return [(x, top)] + arc(right - radius, top + radius, radius, radius, -90, 90) + [(x, bottom)]


GLYPHS = {
    "A": (0.80, [[(0.0, 1.0), (0.40, 0.0), (0.80, 1.0)], [(0.136, 0.66), (0.664, 0.66)]]),
    "C": (0.80, [arc(0.5, 0.5, 0.5, 0.5, -52, -308, 40)]),
    "D": (0.76, [[(0.0, 1.0)] + _bowl(0.0, 0.76, 0.0, 1.0)]),
    "E": (0.54, [[(0.54, 0.0), (0.0, 0.0), (0.0, 1.0), (0.54, 1.0)], [(0.0, 0.48), (0.46, 0.48)]]),
    "F": (0.52, [[(0.52, 0.0), (0.0, 0.0), (0.0, 1.0)], [(0.0, 0.50), (0.44, 0.50)]]),
    "H": (0.70, [[(0.0, 0.0), (0.0, 1.0)], [(0.70, 0.0), (0.70, 1.0)], [(0.0, 0.48), (0.70, 0.48)]]),
    "I": (0.0, [[(0.0, 0.0), (0.0, 1.0)]]),
    "K": (0.62, [[(0.0, 0.0), (0.0, 1.0)], [(0.58, 0.0), (0.0, 0.58)], [(0.22, 0.37), (0.62, 1.0)]]),
    "L": (0.50, [[(0.0, 0.0), (0.0, 1.0), (0.50, 1.0)]]),
    "M": (0.88, [[(0.0, 1.0), (0.08, 0.0), (0.44, 0.80), (0.80, 0.0), (0.88, 1.0)]]),
    "O": (1.0, _o(1.0)),
    "P": (0.54, [[(0.0, 1.0)] + _bowl(0.0, 0.54, 0.0, 0.54)]),
    "R": (0.58, [[(0.0, 1.0)] + _bowl(0.0, 0.54, 0.0, 0.52), [(0.26, 0.52), (0.58, 1.0)]]),
    "S": (0.52, [arc(0.26, 0.25, 0.26, 0.25, -28, -270, 24) + arc(0.26, 0.75, 0.26, 0.25, -90, 152, 24)]),
    "T": (0.64, [[(0.0, 0.0), (0.64, 0.0)], [(0.32, 0.0), (0.32, 1.0)]]),
    "U": (0.66, [[(0.0, 0.0)] + arc(0.33, 0.67, 0.33, 0.33, 180, 0) + [(0.66, 0.0)]]),
    "W": (1.14, [[(0.0, 0.0), (0.285, 1.0), (0.57, 0.08), (0.855, 1.0), (1.14, 0.0)]]),
    "Y": (0.72, [[(0.0, 0.0), (0.36, 0.52), (0.36, 1.0)], [(0.72, 0.0), (0.36, 0.52)]]),
    "0": (0.60, _o(0.60)),
    "1": (0.22, [[(0.0, 0.18), (0.22, 0.0), (0.22, 1.0)]]),
    "2": (0.54, [arc(0.27, 0.27, 0.27, 0.27, 190, 395, 24) + [(0.0, 1.0), (0.54, 1.0)]]),
    "4": (0.60, [[(0.46, 1.0), (0.46, 0.0), (0.0, 0.70), (0.60, 0.70)]]),
}


def text_width(text, height, tracking=0.0):
    """Width from the first stroke's middle to the last one's."""
    width = 0.0
    for letter in text:
        width += SPACE if letter == " " else GLYPHS[letter][0] + GAP + tracking
    return (width - GAP - tracking) * height


def text_strokes(text, left, top, height, tracking=0.0, turn=lambda point: point):
    """The polylines of a line of text. `turn` maps each point, to set it aslant."""
    strokes = []
    for letter in text:
        if letter == " ":
            left += SPACE * height
            continue
        width, lines = GLYPHS[letter]
        for line in lines:
            strokes.append([turn((left + x * height, top + y * height)) for x, y in line])
        left += (width + GAP + tracking) * height
    return strokes
