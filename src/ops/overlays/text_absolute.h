#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ops/overlays/text_style.h"

namespace lumo::ops::overlays {

/// Lines of text at a place in pixels.
struct TextLinesParams {
    int x = 0, y = 0;
    TextStyle style;
};

/// The text of a parameter string with its line breaks as CR LF: "$x" and lone line feeds become
/// one. Carriage returns stay.
std::string WithLineBreaks(std::string_view stored);

/// The lines of a text: a carriage return or the end of the text ends one. Bytes up to 13 are left
/// out. An empty text is one empty line.
std::vector<std::string> SplitAtReturns(std::string_view text);

/// Writes the lines on the image. Unsmoothed lines are drawn as one text; smooth ones are measured
/// at four times their height and stand a quarter of the highest of them apart. On a background the
/// block is the widest line and the number of lines times the highest, with margins, and stands by
/// a margin to the left and above (not past the edges); what passes the image at the right or below
/// is cut off. A step that fails is reported, those on single lines for each line; false only if
/// there is no block.
bool OverlayTextLines(imaging::ImageView image, std::string_view text,
                      const TextLinesParams& params, const ReportFailure& report,
                      const TextServices& services = {});

}  // namespace lumo::ops::overlays
