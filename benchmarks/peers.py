#!/usr/bin/python3
"""Filters of other programs on 12 megapixels, in milliseconds of one core.

The counterpart of filters_benchmark.cpp: the same sizes and radii with Pillow, libvips and
GraphicsMagick. Needs python3-pil, libvips-tools and graphicsmagick; leaves out what is missing.
Times are processor time, the least of some runs. What a program needs to read and to write its
picture is measured with a plain copy and taken off.
"""

import os
import resource
import shutil
import subprocess
import sys
import tempfile
import time

WIDTH, HEIGHT = 4000, 3000
RUNS = 3
KERNEL = [1, 2, 3, 2, 1, 2, 4, 6, 4, 2, 3, 6, 9, 6, 3, 2, 4, 6, 4, 2, 1, 2, 3, 2, 1]


def child_seconds(command, environment):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, env=environment, stdout=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def least(measure):
    return min(measure() for _ in range(RUNS))


def picture():
    """A photograph's mixture: slopes, edges and noise, the same in each run."""
    import random

    noise = random.Random(1).randbytes(WIDTH * 3 + 4096)
    rows = []
    for y in range(HEIGHT):
        start = (y * 37) % 4096
        slope = bytes(((x // 7 + y // 5) ^ (255 if (x // 300 + y // 300) % 2 else 0)) & 255
                      for x in range(0, WIDTH * 3, 300))
        base = b"".join(bytes([v]) * 300 for v in slope)
        part = noise[start:start + WIDTH * 3]
        rows.append(bytes((a * 3 + b) >> 2 for a, b in zip(base, part)))
    return b"".join(rows)


def pillow(pixels):
    try:
        from PIL import Image, ImageFilter
    except ImportError:
        return {}
    image = Image.frombytes("RGB", (WIDTH, HEIGHT), pixels)
    filters = {
        "median 7 x 7": ImageFilter.MedianFilter(7),
        "maximum 11 x 11": ImageFilter.MaxFilter(11),
        "gaussian 5": ImageFilter.GaussianBlur(5),
        "gaussian 20": ImageFilter.GaussianBlur(20),
        "unsharp mask 1": ImageFilter.UnsharpMask(1, 100, 0),
        "5 x 5 convolution": ImageFilter.Kernel((5, 5), KERNEL),
    }

    def seconds(kind):
        start = time.process_time()
        image.filter(kind)
        return time.process_time() - start

    return {name: least(lambda k=kind: seconds(k)) for name, kind in filters.items()}


def vips(folder, ppm):
    if not shutil.which("vips"):
        return {}
    environment = dict(os.environ, VIPS_CONCURRENCY="1")
    source, target, mask = (os.path.join(folder, n) for n in ("in.v", "out.v", "kernel.mat"))
    subprocess.run(["vips", "copy", ppm, source], check=True)
    with open(mask, "w", encoding="ascii") as file:
        print(5, 5, sum(KERNEL), 0, file=file)
        for row in range(5):
            print(*KERNEL[row * 5:row * 5 + 5], file=file)
    commands = {
        "median 7 x 7": ["rank", source, target, "7", "7", "24"],
        "maximum 11 x 11": ["rank", source, target, "11", "11", "120"],
        "gaussian 5": ["gaussblur", source, target, "5"],
        "gaussian 20": ["gaussblur", source, target, "20"],
        "unsharp mask 1": ["sharpen", source, target, "--sigma", "1"],
        "5 x 5 convolution": ["conv", source, target, mask, "--precision", "integer"],
    }
    base = least(lambda: child_seconds(["vips", "copy", source, target], environment))
    return {name: least(lambda c=command: child_seconds(["vips", *c], environment)) - base
            for name, command in commands.items()}


def graphics_magick(ppm):
    if not shutil.which("gm"):
        return {}
    environment = dict(os.environ, OMP_NUM_THREADS="1")
    options = {
        "median 7 x 7": ["-median", "3"],
        "gaussian 5": ["-blur", "0x5"],
        "gaussian 20": ["-blur", "0x20"],
        "unsharp mask 1": ["-unsharp", "0x1+1+0"],
        "5 x 5 convolution": ["-convolve", ",".join(map(str, KERNEL))],
    }

    def run(option):
        return child_seconds(["gm", "convert", ppm, *option, "null:"], environment)

    base = least(lambda: run([]))
    return {name: least(lambda o=option: run(o)) - base for name, option in options.items()}


def main():
    pixels = picture()
    folder = tempfile.mkdtemp(dir="/dev/shm" if os.path.isdir("/dev/shm") else None)
    try:
        ppm = os.path.join(folder, "in.ppm")
        with open(ppm, "wb") as file:
            file.write(b"P6 %d %d 255\n" % (WIDTH, HEIGHT) + pixels)
        tables = {"Pillow": pillow(pixels), "libvips": vips(folder, ppm),
                  "GraphicsMagick": graphics_magick(ppm)}
    finally:
        shutil.rmtree(folder)
    names = dict.fromkeys(name for table in tables.values() for name in table)
    print(f"{'':20}" + "".join(f"{peer:>16}" for peer in tables))
    for name in names:
        cells = (f"{table[name] * 1000:16.0f}" if name in table else f"{'':16}"
                 for table in tables.values())
        print(f"{name:20}" + "".join(cells))


if __name__ == "__main__":
    sys.exit(main())
