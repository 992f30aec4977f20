#pragma once

// What the two text commands share: the look of a text, and the block that it may stand on.

#include <cstdint>
#include <functional>
#include <string_view>

#include "imaging/compose.h"
#include "imaging/draw_text.h"
#include "script/fields.h"

namespace lumo::ops::overlays {

/// The look of a text.
struct TextStyle {
    imaging::TextFont font;
    imaging::Rgb colour;
    bool onBackground = false;
    imaging::Rgb background;
    imaging::Smoothing smoothing = imaging::Smoothing::Aliased;
    double opacity = 1.0;  // of the text; on a background of both together
    int margin = 4;        // of the block around the text, in pixels
};

/// Six fields in a row: height, weight, italic, underline, strikeout ("T" on), face. Of a face
/// count the first 31 bytes, never half of a character.
imaging::TextFont ReadFont(const script::Fields& fields, int first);

/// A field in percent as opacity; empty reads as 100.
double OpacityOf(const script::Fields& fields, int field);

/// The font at another height, limited to 32 bits.
imaging::TextFont WithHeight(imaging::TextFont font, std::int64_t height);

/// A number of pixels, limited to 32 bits.
int LimitPixels(std::int64_t pixels);

/// Takes the words of a step that failed.
using ReportFailure = std::function<void(std::string_view words)>;

/// The words of the steps on a block.
struct BlockWords {
    std::string_view memory, fill, draw, overlay;
};

/// What does the work of the steps, so that a test may let any of them fail.
struct TextServices {
    std::function<decltype(imaging::GetTextLineSize2)> measure = imaging::GetTextLineSize2;
    std::function<decltype(imaging::DrawTextOnRGB2)> draw = imaging::DrawTextOnRGB2;
    std::function<decltype(imaging::DrawSmoothTextOnRGB2)> drawSmooth =
        imaging::DrawSmoothTextOnRGB2;
    std::function<decltype(imaging::FillSolidRect)> fill = imaging::FillSolidRect;
    std::function<decltype(imaging::OverlayImage)> overlay = imaging::OverlayImage;
};

/// Draws the text in its style, smooth or not, with that opacity.
bool DrawStyled(imaging::ImageView image, std::string_view text, const TextStyle& style,
                imaging::Rect rect, double opacity, const TextServices& services);

/// Makes a block of the background colour, lets `write` draw on it and lays it on the image at
/// (x, y), as a whole at the opacity of the style. `write` reports its own failures. A step that
/// fails is reported and the next one is taken; false only if there is no memory for the block, or
/// no pixel in it.
bool LayBlock(imaging::ImageView image, int x, int y, imaging::Size size, const TextStyle& style,
              const BlockWords& words, const ReportFailure& report, const TextServices& services,
              const std::function<void(imaging::ImageView block)>& write);

}  // namespace lumo::ops::overlays
