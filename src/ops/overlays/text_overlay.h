#pragma once

#include <string>

#include "ops/overlays/text_style.h"

namespace lumo::ops::overlays {

/// Which part of the text stands at its place, as stored.
enum class TextAnchor : int { Start = 0, Centre = 1, End = 2 };

/// A line of text at a place in percent of the image.
struct TextLineParams {
    int xPercent = 0, yPercent = 0;
    bool sizedByImage = false;  // by `heightPercent`; else by the height of the font
    int heightPercent = 0;
    TextAnchor anchor = TextAnchor::Start;
    TextStyle style;
};

/// The height of a font for text of that percentage of the image's height:
/// ((percent * height / 100) * -4) / 3, each division truncated.
int FontHeightByPercent(int percent, int imageHeight);

/// Writes the text on the image. A text wider than the image is cut to
/// (characters * image width) / width of them, once. The anchor moves it to the left by its width,
/// margins included, but not past the left edge. On a background the block is the text and its
/// margins. A step that fails is reported; false only if there is no memory for the block.
bool OverlayTextLine(imaging::ImageView image, std::string text, const TextLineParams& params,
                     const ReportFailure& report, const TextServices& services = {});

}  // namespace lumo::ops::overlays
