"""Writes Scripts, Subroutines and Image lists: the file forms, and each command's fields by name.

A command is a pair of its name and its parameter string: the count of fields, the fields, a comma
behind each. Lines end in CR LF. Nothing outside of ASCII is used.
"""

PHOTOS = "<INSTALL_FOLDER>\\Photos"
SHARP, BLURRED = "13", "3"  # the sizing algorithms Lanczos3 and Bicubic


def quoted(text):
    assert '"' not in text
    return '"%s"' % text


def command(name, *fields):
    if not fields:
        return (name, "0")
    return (name, "%d,%s," % (len(fields), ",".join(str(field) for field in fields)))


def shipped(folder, name):
    return quoted("<INSTALL_FOLDER>\\%s\\%s" % (folder, name))


# --- Input, output and flow ---

def info(*lines):
    """What the Script does, in up to seven lines for its panel."""
    assert len(lines) <= 7 and all(len(line) <= 34 for line in lines), lines
    return command("Script info", *[quoted(line) for line in lines + ("",) * (7 - len(lines))])


def start(folder=PHOTOS):
    """All file types of one folder, no filter by date, size or shape."""
    types = ("1",) * 10
    before, after, sizes = ("1", "12", "2024"), ("1", "12", "1980"), ("64", "48", "1280", "960")
    filters_on = ("0",) * 6
    return command("START image loop (setup)", "2", quoted(""), quoted(folder), *types, *before,
                   *after, *sizes, *filters_on, "0.0", "4.0", "0")


def end():
    return command("END image loop")


def output(folder, extension="jpg", suffix="", prefix="", input_name=True):
    """A folder below "out" in the working directory; a second run replaces the files of the first."""
    return command("Output setup", "0", quoted(".\\out\\" + folder), "0", extension, "1",
                   "0" if input_name else "3", quoted(suffix), quoted(prefix), "0", "0", "1")


ASPECT, WIDTH, HEIGHT, PIXELS, COUNTER_A, BRIGHTNESS = 0, 1, 2, 3, 4, 9
ABOVE, BELOW, EQUAL = 0, 1, 2


def when(item, test, value, body, otherwise=()):
    """An IF block, with an ELSE block behind it if `otherwise` holds commands."""
    block = [command("IF_START (condition)", item, test, "%.1f" % value, "2.0", "0"), *body,
             command("IF_END")]
    if otherwise:
        block += [command("ELSE_START"), *otherwise, command("ELSE_END")]
    return block


def upright(body, otherwise=()):
    return when(ASPECT, BELOW, 1.0, body, otherwise)


def leave_image():
    return command("Exit (get next image)")


def set_counter_a(value):
    return command("Counter (reset or increment)", "0", value, "0")


def add_to_counter_a(value):
    return command("Counter (reset or increment)", "1", value, "0")


def call(subroutine):
    return command("SUBROUTINE Execute", quoted(subroutine))


def log_comment(text):
    return command("Batch Log comments", "0", "0", "0", quoted(text), "0")


def reload():
    return command("Reload image file")


def park(slot=1):
    return command("Output (temporary)", slot - 1, "")


def fetch():
    return command("Input (temporary)", "0", "")


# --- Size and shape ---

def fit(width, height):
    """The largest picture of the same shape inside a box."""
    return command("Scale: change image size", "1", "0", width, height, SHARP, "2")


def size_and_crop(width, height):
    return command("Size and crop (absolute)", width, height, SHARP)


def border(top, bottom, left, right, colour):
    return command("Add border", top, bottom, left, right, *colour, "0")


def even_border(pixels, colour):
    return border(pixels, pixels, pixels, pixels, colour)


def canvas(width, height, colour):
    return command("Canvas size", width, height, "0", "1", *colour)


def new_canvas(width, height, colour):
    return command("New (canvas)", width, height, "0", *colour)


def quarter_turns(degrees):
    return command("Rotate (90 - 180 - 270)", degrees)


# --- Tone and sharpness ---

def unsharp(radius, amount, threshold):
    """On the brightness alone."""
    return command("Unsharp mask", "%.1f" % radius, amount, threshold, "1")


def curve(*points):
    assert len(points) == 17
    return command("Color curve adjust", "1", *points)


def contrast_brightness(contrast, brightness):
    return command("Adjust: contrast-brightness", contrast, brightness)


def gamma(value):
    return command("Gamma adjust", "%.2f" % value)


def grain(amount):
    return command("Noise (add)", "1", "1", amount)


# --- Overlays ---

BLUE, CYAN, WHITE, BLACK = (0, 0, 255), (0, 255, 255), (255, 255, 255), (0, 0, 0)


def frame(name):
    return command("Frame overlay", *WHITE, shipped("Frames", name), "0", "0")


def mask(name, colour):
    return command("Mask overlay: single color", *colour, shipped("Masks", name), "1", "0")


def stamp(name, x, y, size, opacity):
    """A shipped overlay on blue, at percents of the picture."""
    return command("Watermark - overlay image", x, y, size, opacity, "1", *BLUE, "10",
                   shipped("Overlays", name), "0", "0")


def place(path, x, y):
    """A whole picture at a pixel position."""
    return command("Watermark - overlay image", x, y, "100", "100", "0", *BLUE, "0", quoted(path),
                   "1", "0")


def tile(name, opacity):
    return command("Tile over absolute", opacity, "1", "10", shipped("Overlays", name), *CYAN)


def multiply(name):
    return command("Blend images", "Multiply", "0", "100", "255.0", "0", shipped("Overlays", name))


def shadow(colour, pixels, blur, opacity):
    return command("Drop Shadow effect", *colour, pixels, blur, "0", "1", opacity)


def caption(text, x, y, height, colour, anchor="0", italic=False, face="arial"):
    """One smooth line without a ground; x and y in percent, the height in pixels."""
    return command("Text overlay", x, y, quoted(text), "1", "30", "30", "30", "10", "0", -height,
                   "400", "T" if italic else "F", "F", "F", face, *colour, "1", anchor, "100")


def lines_at(text, x, y, height, colour):
    return command("Text overlay (absolute)", x, y, "1", "30", "30", "30", -height, "400", "F", "F",
                   "F", "arial", *colour, quoted(text), "1", "100")


# --- Files ---

def _file(lines):
    return "".join(line + "\r\n" for line in lines).encode("ascii")


def _commands(first_line, commands):
    lines = [first_line, "; ; = Comment. Do not edit. This is a script.",
             "; File must have no format characters."]
    for name, parameters in commands:
        lines += [name, parameters]
    return _file(lines + ["END", "; Do not edit - Lumoscript script.whs"])


def flat(commands):
    """Blocks of commands given as lists are set in line."""
    out = []
    for item in commands:
        out.extend(flat(item) if isinstance(item, list) else [item])
    return out


def script(*commands):
    return _commands("BEGIN", flat(commands))


def subroutine(*commands):
    return _commands("SUBRT", flat(commands))


def image_list(*entries):
    return _file(("START",) + entries + ("END",))
