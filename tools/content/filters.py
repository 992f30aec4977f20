"""The custom filters: 25 weights row by row, a scale and an offset, as big-endian 16-bit integers."""

import struct

GAUSS = (1, 4, 6, 4, 1)  # times itself sums to 256


def _acf(rows, scale, offset=0):
    weights = [weight for row in rows for weight in row]
    assert len(weights) == 25
    return struct.pack(">27h", *weights, scale, offset)


def _three(rows):
    """A kernel of 3 by 3 in the middle of one of 5 by 5."""
    empty = (0, 0, 0, 0, 0)
    return (empty,) + tuple((0,) + row + (0,) for row in rows) + (empty,)


def sharpen():
    return _acf(_three(((0, -1, 0), (-1, 8, -1), (0, -1, 0))), 4)


def sharpen_more():
    return _acf(_three(((-1, -1, -1), (-1, 12, -1), (-1, -1, -1))), 4)


def unsharp():
    """Twice the picture less its gaussian blur."""
    rows = [[-a * b for a in GAUSS] for b in GAUSS]
    rows[2][2] += 512
    return _acf(rows, 256)


def soft_blur():
    return _acf([[a * b for a in GAUSS] for b in GAUSS], 256)


def motion_blur():
    """Along the rising diagonal."""
    return _acf([[int(row + column == 4) for column in range(5)] for row in range(5)], 5)


def edges():
    return _acf(_three(((-1, -1, -1), (-1, 8, -1), (-1, -1, -1))), 1)


def pencil():
    """The edges dark on white paper: a scale below zero turns the sum about."""
    return _acf(_three(((-1, -1, -1), (-1, 8, -1), (-1, -1, -1))), -1, 255)


def emboss():
    """Raised toward the upper left; the picture keeps its colours."""
    return _acf(_three(((-2, -1, 0), (-1, 1, 1), (0, 1, 2))), 1)


ALL = {
    "CustomFilters/Sharpen.acf": sharpen,
    "CustomFilters/Sharpen-more.acf": sharpen_more,
    "CustomFilters/Unsharp.acf": unsharp,
    "CustomFilters/Soft-blur.acf": soft_blur,
    "CustomFilters/Motion-blur.acf": motion_blur,
    "CustomFilters/Edges.acf": edges,
    "CustomFilters/Pencil.acf": pencil,
    "CustomFilters/Emboss.acf": emboss,
}
