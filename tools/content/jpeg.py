"""A baseline JPEG writer: no subsampling, the tables of Annex K of ITU-T T.81, integer arithmetic.

Small and slow, and enough for one ornament picture. The transform is separable with cosines of 13
bits, so that the bytes do not hang on a C library's rounding.
"""

import math
import struct

_LUMA = (16, 11, 10, 16, 24, 40, 51, 61, 12, 12, 14, 19, 26, 58, 60, 55,
         14, 13, 16, 24, 40, 57, 69, 56, 14, 17, 22, 29, 51, 87, 80, 62,
         18, 22, 37, 56, 68, 109, 103, 77, 24, 35, 55, 64, 81, 104, 113, 92,
         49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99)
_CHROMA = (17, 18, 24, 47, 99, 99, 99, 99, 18, 21, 26, 66, 99, 99, 99, 99,
           24, 26, 56, 99, 99, 99, 99, 99, 47, 66, 99, 99, 99, 99, 99, 99) + (99,) * 32

_ZIGZAG = sorted(range(64), key=lambda at: (at // 8 + at % 8,
                                            at // 8 if (at // 8 + at % 8) % 2 else at % 8))

_DC_COUNTS = (bytes((0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0)),
              bytes((0, 3, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0)))
_DC_VALUES = (bytes(range(12)), bytes(range(12)))
_AC_COUNTS = (bytes((0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 0x7D)),
              bytes((0, 2, 1, 2, 4, 4, 3, 4, 7, 5, 4, 4, 0, 1, 2, 0x77)))
_AC_VALUES = (
    bytes.fromhex(
        "01020300041105122131410613516107227114328191a1082342b1c11552d1f02433627282090a161718191a"
        "25262728292a3435363738393a434445464748494a535455565758595a636465666768696a73747576777879"
        "7a838485868788898a92939495969798999aa2a3a4a5a6a7a8a9aab2b3b4b5b6b7b8b9bac2c3c4c5c6c7c8c9"
        "cad2d3d4d5d6d7d8d9dae1e2e3e4e5e6e7e8e9eaf1f2f3f4f5f6f7f8f9fa"),
    bytes.fromhex(
        "0001020311040521310612415107617113223281081442 91a1b1c109233352f0156272d10a162434e125f117"
        "18191a262728292a35363738393a434445464748494a535455565758595a636465666768696a737475767778"
        "797a82838485868788898a92939495969798999aa2a3a4a5a6a7a8a9aab2b3b4b5b6b7b8b9bac2c3c4c5c6c7"
        "c8c9cad2d3d4d5d6d7d8d9dae2e3e4e5e6e7e8e9eaf2f3f4f5f6f7f8f9fa"))

_COSINE_BITS = 13
_COSINE = [[round(math.cos((2 * x + 1) * u * math.pi / 16) * (math.sqrt(0.125) if u == 0 else 0.5)
                  * (1 << _COSINE_BITS)) for x in range(8)] for u in range(8)]


def _codes(counts, values):
    """Symbol to (code, length)."""
    table, code, at = {}, 0, 0
    for length, count in enumerate(counts, 1):
        for _ in range(count):
            table[values[at]] = (code, length)
            code += 1
            at += 1
        code <<= 1
    return table


class _Bits:
    def __init__(self):
        self.out, self.held, self.count = bytearray(), 0, 0

    def put(self, value, length):
        self.held = (self.held << length) | value
        self.count += length
        while self.count >= 8:
            self.count -= 8
            byte = (self.held >> self.count) & 0xFF
            self.out.append(byte)
            if byte == 0xFF:
                self.out.append(0)
        self.held &= (1 << self.count) - 1

    def finish(self):
        if self.count:
            self.put((1 << (8 - self.count)) - 1, 8 - self.count)
        return bytes(self.out)


def _transformed(block):
    """The 64 coefficients of 64 samples, in row order, scaled by two to the 2 * _COSINE_BITS."""
    rows = [sum(c * s for c, s in zip(_COSINE[u], block[row * 8:row * 8 + 8]))
            for row in range(8) for u in range(8)]
    columns = [rows[u::8] for u in range(8)]
    return [sum(c * s for c, s in zip(_COSINE[v], columns[u])) for v in range(8) for u in range(8)]


def _quantised(block, table):
    out = []
    for at in _ZIGZAG:
        value, step = block[at], table[at] << (2 * _COSINE_BITS)
        out.append((value + step // 2) // step if value >= 0 else -((step // 2 - value) // step))
    return out


def _put_value(bits, value, length):
    bits.put(value if value >= 0 else value + (1 << length) - 1, length)


def _put_block(bits, block, before, dc, ac):
    difference = block[0] - before
    length = abs(difference).bit_length()
    bits.put(*dc[length])
    if length:
        _put_value(bits, difference, length)
    zeros = 0
    for value in block[1:]:
        if value == 0:
            zeros += 1
            continue
        while zeros > 15:
            bits.put(*ac[0xF0])
            zeros -= 16
        length = abs(value).bit_length()
        bits.put(*ac[(zeros << 4) | length])
        _put_value(bits, value, length)
        zeros = 0
    if zeros:
        bits.put(*ac[0])
    return block[0]


def _segment(marker, data):
    return struct.pack(">BBH", 0xFF, marker, len(data) + 2) + data


def jpeg(picture, quality):
    """The file of a raster.Picture whose sides are multiples of 8."""
    width, height = picture.width, picture.height
    assert width % 8 == 0 and height % 8 == 0
    scale = 5000 // quality if quality < 50 else 200 - 2 * quality
    tables = [[min(255, max(1, (step * scale + 50) // 100)) for step in base]
              for base in (_LUMA, _CHROMA)]
    planes = ([], [], [])
    for r, g, b in picture.rounded():
        planes[0].append(((19595 * r + 38470 * g + 7471 * b + 32768) >> 16) - 128)
        planes[1].append((-11059 * r - 21709 * g + 32768 * b + 32768) >> 16)
        planes[2].append((32768 * r - 27439 * g - 5329 * b + 32768) >> 16)
    dc = [_codes(c, v) for c, v in zip(_DC_COUNTS, _DC_VALUES)]
    ac = [_codes(c, v) for c, v in zip(_AC_COUNTS, _AC_VALUES)]
    bits, before = _Bits(), [0, 0, 0]
    for top in range(0, height, 8):
        for left in range(0, width, 8):
            for channel, plane in enumerate(planes):
                block = []
                for row in range(top, top + 8):
                    start = row * width + left
                    block += plane[start:start + 8]
                kind = min(channel, 1)
                block = _quantised(_transformed(block), tables[kind])
                before[channel] = _put_block(bits, block, before[channel], dc[kind], ac[kind])
    out = b"\xFF\xD8" + _segment(0xE0, b"JFIF\0" + struct.pack(">HBHHBB", 0x0101, 1, 72, 72, 0, 0))
    for kind, table in enumerate(tables):
        out += _segment(0xDB, bytes([kind]) + bytes(table[at] for at in _ZIGZAG))
    out += _segment(0xC0, struct.pack(">BHHB", 8, height, width, 3) +
                    bytes((1, 0x11, 0, 2, 0x11, 1, 3, 0x11, 1)))
    for kind in (0, 1):
        out += _segment(0xC4, bytes([kind]) + _DC_COUNTS[kind] + _DC_VALUES[kind])
        out += _segment(0xC4, bytes([0x10 | kind]) + _AC_COUNTS[kind] + _AC_VALUES[kind])
    out += _segment(0xDA, bytes((3, 1, 0, 2, 0x11, 3, 0x11, 0, 63, 0)))
    return out + bits.finish() + b"\xFF\xD9"
