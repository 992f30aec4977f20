#pragma once

// Text on pictures, in the fonts of the machine. Needs no display. Any thread may call it.

#include <optional>
#include <string>
#include <string_view>

#include "imaging/image.h"

namespace lumo::imaging {

inline constexpr int kDefaultTextHeight = -16;  // what a height of 0 means

/// What a font is asked for by.
struct TextFont {
    std::string face;  // a family; where it is not installed another takes its place
    /// Pixels: negative that of the letters, positive that of a line from ascent to descent, 0
    /// kDefaultTextHeight. Limited to a million.
    int height = 0;
    int weight = 400;  // 100 to 1000: 400 normal, 700 bold; 0 normal
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
};

enum class Smoothing {
    Aliased,  // a pixel is ink or ground; letters and advances are fitted to whole pixels
    Smooth,   // ink covers pixels in part; widths grow in proportion to the height of the font
};

/// The box of the text in pixels: as wide as its widest line and as high as its number of lines
/// times the highest of them; an empty text is one empty line. CR LF, CR and LF each break a line.
/// Any bytes are a text: what is no UTF-8 shows replacement signs, control characters show nothing.
/// None, with LastError() set, if the machine has no font at all.
[[nodiscard]] std::optional<Size> GetTextLineSize2(std::string_view text, const TextFont& font,
                                                   Smoothing smoothing);

/// Draws the text from the top left of the rectangle, its lines below each other as
/// GetTextLineSize2 counts them, without smoothing. Lines are never wrapped; a line of a right to
/// left script too begins at the left. Ink outside of the rectangle or the picture is left out.
/// Each channel under ink becomes colour * opacity + value * (1 - opacity), rounded; opacity is
/// limited to 0 to 1, and letters that overlap are one ink. Letters stand at whole pixels. False,
/// with LastError() set, if there is no picture, no font or no memory.
[[nodiscard]] bool DrawTextOnRGB2(ImageView image, std::string_view text, const TextFont& font,
                                  Rect rect, Rgb colour, double opacity);

/// The same with smooth edges: the opacity is multiplied by the part of the pixel under ink.
[[nodiscard]] bool DrawSmoothTextOnRGB2(ImageView image, std::string_view text,
                                        const TextFont& font, Rect rect, Rgb colour,
                                        double opacity);

}  // namespace lumo::imaging
