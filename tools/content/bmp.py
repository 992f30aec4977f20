"""Writes BMP files of 8 bits a pixel, run-length coded where that is the smaller form.

The layout is that of the Windows bitmap, version 3: a file header of 14 bytes, an information
header of 40, the palette in blue, green, red, 0, then the rows from the bottom upward.
"""

import struct

DOTS_PER_METRE = 2835  # 72 dpi


def grey_bmp(picture):
    """The file of a raster.Grey: 256 greys, index and value being the same."""
    palette = [(value, value, value) for value in range(256)]
    return _indexed_bmp(picture.width, picture.height, picture.pixels, palette)


def colour_bmp(picture, kept=()):
    """The file of a raster.Picture, its colours reduced to 256.

    Colours in `kept` come through exactly, and no other colour is drawn to one of them: a key
    colour must mean the keyed area and nothing else.
    """
    rounded = picture.rounded()
    counts = {}
    for colour in rounded:
        counts[colour] = counts.get(colour, 0) + 1
    others = {colour: count for colour, count in counts.items() if colour not in kept}
    palette = [colour for colour in kept if colour in counts]
    index = {colour: place for place, colour in enumerate(palette)}
    for box in _median_cut(others, 256 - len(palette)):
        total = sum(count for _, count in box)
        mean = tuple((sum(colour[c] * count for colour, count in box) + total // 2) // total
                     for c in range(3))
        if mean in kept:
            raise ValueError("a colour was drawn to the key colour %r" % (mean,))
        for colour, _ in box:
            index[colour] = len(palette)
        palette.append(mean)
    return _indexed_bmp(picture.width, picture.height, bytes(index[colour] for colour in rounded),
                        palette)


def _median_cut(counts, size):
    """Boxes of (colour, count) pairs, at most `size`: each cut halves the box of the largest error."""
    if not counts:
        return []

    def measured(box):
        best = (-1.0, 0)
        total = sum(count for _, count in box)
        for channel in range(3):
            mean = sum(colour[channel] * count for colour, count in box) / total
            error = sum((colour[channel] - mean) ** 2 * count for colour, count in box)
            best = max(best, (error, channel))
        return best + (box,)

    boxes = [measured(sorted(counts.items()))]
    while len(boxes) < size:
        worst = max(range(len(boxes)), key=lambda place: boxes[place][0])
        error, channel, box = boxes[worst]
        if error <= 0.0:
            break
        box = sorted(box, key=lambda pair: (pair[0][channel], pair[0]))
        half, seen, cut = sum(count for _, count in box) / 2.0, 0, 0
        while cut < len(box) - 1 and seen + box[cut][1] <= half:
            seen += box[cut][1]
            cut += 1
        cut = max(1, cut)
        boxes[worst:worst + 1] = [measured(box[:cut]), measured(box[cut:])]
    return [box for _, _, box in boxes]


def _indexed_bmp(width, height, pixels, palette):
    rows = [bytes(pixels[row * width:(row + 1) * width]) for row in reversed(range(height))]
    padding = bytes(-width % 4)
    plain = b"".join(row + padding for row in rows)
    coded = b"".join(_run_lengths(row) + b"\0\0" for row in rows[:-1])
    coded += _run_lengths(rows[-1]) + b"\0\1"
    compression, data = (1, coded) if len(coded) < len(plain) else (0, plain)
    table = b"".join(struct.pack("<4B", b, g, r, 0) for r, g, b in palette)
    start = 14 + 40 + len(table)
    return (b"BM" + struct.pack("<IHHI", start + len(data), 0, 0, start) +
            struct.pack("<IiiHHIIiiII", 40, width, height, 1, 8, compression, len(data),
                        DOTS_PER_METRE, DOTS_PER_METRE, len(palette), 0) + table + data)


def _run_lengths(row):
    """One row in the RLE8 code: runs of three and more as (count, value), the rest literally."""
    out, literal, at = bytearray(), bytearray(), 0

    def flush():
        while literal:
            part = literal[:255]
            del literal[:255]
            if len(part) < 3:  # a literal piece has three bytes or more
                for value in part:
                    out.extend((1, value))
            else:
                out.extend((0, len(part)))
                out.extend(part)
                if len(part) % 2:
                    out.append(0)

    while at < len(row):
        end = at + 1
        while end < len(row) and end - at < 255 and row[end] == row[at]:
            end += 1
        if end - at >= 3:
            flush()
            out.extend((end - at, row[at]))
        else:
            literal.extend(row[at:end])
        at = end
    flush()
    return bytes(out)
