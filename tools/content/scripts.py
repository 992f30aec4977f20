"""The example Scripts and Subroutines, and the Image lists.

Every Script runs as it stands, unattended too: it reads the shipped photographs and writes to the
folder "out" of the working directory.
"""

from .commands import *  # the vocabulary of Scripts: each line below is one command

PAPER, INK, SOFT_INK = (252, 252, 250), (44, 44, 48), (96, 96, 102)


def thumbnails():
    return script(
        start(),
        info("Thumbnails: each picture is", "fitted into 240 x 240 pixels,", "sharpened a little and saved",
             "as a JPG, its name ending in", "_thumb.", "", "Output: out\\Thumbnails"),
        fit(240, 240),
        unsharp(0.5, 80, 0),
        output("Thumbnails", suffix="_thumb"),
        end())


def web_set():
    return script(
        start(),
        info("Web set: two sizes of each", "picture. The large one is plain,", "the small one has a frame and",
             "a copyright sign. The steps are", "subroutines, so that other Scripts", "can share them.",
             "Output: out\\Web-set"),
        call("Web-fit"),
        output("Web-set\\Large"),
        fit(800, 800),
        call("Frame-any-shape"),
        call("Stamp-corner"),
        output("Web-set\\Framed", suffix="_framed"),
        end())


def contact_sheet():
    """The sheet waits in temporary slot 1 while a cell is made, the cell in slot 2 while it is placed;
    counter A knows the next place."""
    cell = "<TEMP_FOLDER>\\Temp2.bmp"
    columns, left, top, step_x, step_y = 3, 40, 110, 380, 340
    places = [when(COUNTER_A, EQUAL, number,
                   [place(cell, left + number % columns * step_x, top + number // columns * step_y)])
              for number in range(9)]
    return script(
        set_counter_a(0),
        new_canvas(1200, 1150, (232, 232, 228)),
        lines_at("Contact sheet", 40, 32, 44, INK),
        park(),
        start(),
        info("Contact sheet: the first nine", "pictures on one page, with their", "names. Commands above START make",
             "the page, those below END save", "it. Counter A is the place of the", "next picture.",
             "Output: out\\Contact-sheet"),
        when(COUNTER_A, ABOVE, 8, [leave_image()]),
        fit(336, 246),
        canvas(360, 320, PAPER),
        caption("$(filetitle)", 50, 93, 17, SOFT_INK, anchor="1"),
        park(2),
        fetch(),
        places,
        park(),
        add_to_counter_a(1),
        end(),
        fetch(),
        output("Contact-sheet", prefix="Contact sheet", input_name=False))


def black_and_white_prints():
    return script(
        start(),
        info("Black and white prints of 15 by", "10 cm at 300 dpi, upright pictures", "10 by 15: cropped to the",
             "shape, made grey, given more", "contrast, a fine black line and", "a white margin.",
             "Output: out\\Black-and-white"),
        upright([size_and_crop(1057, 1648)], [size_and_crop(1648, 1057)]),
        command("Convert: Grayscale - 8bit"),
        curve(0, 11, 24, 40, 57, 75, 94, 113, 132, 151, 169, 186, 202, 217, 231, 244, 255),
        unsharp(1.2, 90, 3),
        even_border(2, BLACK),
        even_border(60, WHITE),
        output("Black-and-white", "png", suffix="_bw"),
        end())


def watermark():
    return script(
        start(),
        info("Watermark: an iris in the upper", "left corner, dark on bright", "pictures and light on dark ones:",
             "an IF tests the brightness.", "Sizes stay as they are.", "", "Output: out\\Watermark"),
        when(BRIGHTNESS, ABOVE, 115.0, [stamp("Aperture.bmp", 3, 3, 9, 60)],
             [stamp("blue1.bmp", 3, 3, 9, 70)]),
        output("Watermark"),
        end())


def proofs():
    return script(
        start(),
        info("Proofs to show and not to print:", "1000 pixels, the maker's mark", "tiled faintly over the picture,",
             "and a rubber stamp across it.", "", "", "Output: out\\Proofs"),
        fit(1000, 1000),
        tile("HalcyraWorks.bmp", 22),
        stamp("Sample.bmp", 20, 32, 60, 75),
        output("Proofs", suffix="_proof"),
        end())


def format_conversion():
    formats = ("png", "tif", "gif", "bmp")
    return script(
        start(),
        info("Format conversion: each picture", "is saved as PNG, TIF, GIF and BMP,", "each kind in a folder of its",
             "own. Output setup leaves the", "picture as it is, so a Script may", "hold several.",
             "Output: out\\Formats"),
        fit(800, 800),
        [output("Formats\\" + extension, extension) for extension in formats],
        end())


def postcards():
    def card(width, height, margin):
        low = 100 * (height + 90) // (height + 150)  # percent down: the middle of the lower margin
        return [size_and_crop(width, height),
                even_border(2, (120, 120, 124)),
                border(48, 98, 48, 48, PAPER),
                caption("$(filetitle)", margin, low, 34, INK, italic=True, face="times new roman"),
                caption("$(date%d.%m.%Y)", 100 - margin, low, 28, SOFT_INK, anchor="2",
                        face="times new roman")]

    return script(
        start(),
        info("Postcards: cropped to the shape", "of a card, upright or across, with", "a margin, the name and the date",
             "below, and a soft shadow.", "", "", "Output: out\\Postcards"),
        upright(card(900, 1350, 5), card(1400, 850, 3)),
        shadow((226, 226, 222), 18, 70, 55),
        output("Postcards", suffix="_card"),
        end())


def soft_edges():
    return script(
        start(),
        info("Soft edges: three masks on each", "picture. Reload image file goes", "back to the input after each.",
             "White in a mask keeps the", "picture, black shows the colour", "chosen.", "Output: out\\Soft-edges"),
        fit(1200, 1200),
        mask("Soft-vignette.bmp", BLACK),
        output("Soft-edges", suffix="_vignette"),
        reload(),
        fit(1200, 1200),
        mask("Oval.bmp", WHITE),
        output("Soft-edges", suffix="_oval"),
        reload(),
        fit(1200, 1200),
        mask("Brush-edge.bmp", PAPER),
        output("Soft-edges", suffix="_brush"),
        end())


def old_photo():
    return script(
        start(),
        info("Old photo: sepia tone, less", "contrast, grain, foxed paper", "multiplied over it, and a torn",
             "edge on an album page.", "", "", "Output: out\\Old-photo"),
        fit(1200, 1200),
        command("Convert: sepia tone"),
        contrast_brightness(-14, 6),
        grain(10),
        multiply("Old-paper.bmp"),
        mask("Torn-edge.bmp", (58, 52, 46)),
        output("Old-photo", suffix="_old"),
        end())


def sharpen_for_web():
    return script(
        start(),
        info("Sharpen for the web: small files", "are left out with a line in the", "log, large ones go to the",
             "subroutine Web-fit, the others", "are sharpened a little, dark ones", "are brightened.",
             "Output: out\\Sharpened"),
        when(PIXELS, BELOW, 40000.0, [log_comment("$(filename): too small for the web, $(size)"),
                                      leave_image()]),
        when(PIXELS, ABOVE, 1200000.0, [call("Web-fit")], [unsharp(0.5, 60, 2)]),
        when(BRIGHTNESS, BELOW, 75.0, [gamma(1.15)]),
        output("Sharpened"),
        end())


def frame_any_shape():
    return subroutine(
        info("Frame-any-shape: a wooden frame,", "drawn for pictures that lie.", "Upright ones are turned, framed",
             "and turned back, so the wood", "keeps its width.", "", "Call: SUBROUTINE Execute"),
        upright([quarter_turns(270), frame("frame.bmp"), quarter_turns(90)], [frame("frame.bmp")]))


def stamp_corner():
    return subroutine(
        info("Stamp-corner: a copyright sign at", "the lower right, inside of a", "frame if there is one. Upright",
             "pictures take it lower down.", "", "", "Call: SUBROUTINE Execute"),
        upright([stamp("Copyright.bmp", 76, 81, 10, 65)], [stamp("Copyright.bmp", 79, 70, 9, 65)]))


def web_fit():
    return subroutine(
        info("Web-fit: 1280 pixels on the longer", "side, sharpened for the screen.", "", "", "", "",
             "Call: SUBROUTINE Execute"),
        fit(1280, 1280),
        unsharp(0.7, 80, 2))


def landscapes():
    return image_list(
        "; Single pictures, in the order of the list.",
        PHOTOS + "\\Picos-de-Europa.jpg",
        PHOTOS + "\\Forest-stream.jpg",
        PHOTOS + "\\Sunset.jpg",
        PHOTOS + "\\Dandelions.jpg")


def all_photos():
    return image_list(
        "; A folder ends in a backslash. With (include subfolders) behind it, its folders are read too.",
        PHOTOS + "\\ (no subfolders)")


ALL = {
    "Scripts/Thumbnails.whs": thumbnails,
    "Scripts/Web-set.whs": web_set,
    "Scripts/Contact-sheet.whs": contact_sheet,
    "Scripts/Black-and-white-prints.whs": black_and_white_prints,
    "Scripts/Watermark.whs": watermark,
    "Scripts/Proofs.whs": proofs,
    "Scripts/Format-conversion.whs": format_conversion,
    "Scripts/Postcards.whs": postcards,
    "Scripts/Soft-edges.whs": soft_edges,
    "Scripts/Old-photo.whs": old_photo,
    "Scripts/Sharpen-for-web.whs": sharpen_for_web,
    "Subroutines/Frame-any-shape.sbr": frame_any_shape,
    "Subroutines/Stamp-corner.sbr": stamp_corner,
    "Subroutines/Web-fit.sbr": web_fit,
    "Lists/Landscapes.lst": landscapes,
    "Lists/All-photos.lst": all_photos,
}
