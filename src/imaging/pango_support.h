#pragma once

// What text on pictures and the text of metafiles share of Pango: owners of its objects, and how a
// font is asked for.

#include <pango/pangocairo.h>

#include <memory>
#include <string>
#include <string_view>

#include "imaging/cairo_owners.h"

namespace lumo::imaging {

struct PangoFree {
    void operator()(gpointer object) const { g_object_unref(object); }
    void operator()(PangoFontDescription* p) const { pango_font_description_free(p); }
    void operator()(PangoFontMetrics* p) const { pango_font_metrics_unref(p); }
    void operator()(PangoAttrList* p) const { pango_attr_list_unref(p); }
    void operator()(PangoGlyphString* p) const { pango_glyph_string_free(p); }
};
template <class T>
using PangoOwned = std::unique_ptr<T, PangoFree>;

/// How letters are fitted to pixels.
enum class LetterFit {
    Exact,    // neither shapes nor advances are changed: the same text is as wide at any size
    Upright,  // shapes snap to whole rows; advances as Exact
    Whole,    // shapes and advances snap to whole pixels, and a pixel is either ink or ground
};

/// A context on this thread's own font map.
PangoOwned<PangoContext> MakeTextContext(LetterFit fit);

/// The face, what stands in for it where it is not installed, and the families behind `generic` as
/// a list that Pango reads. The face may be any bytes.
std::string FontFamilies(std::string_view face, std::string_view generic);

/// Weight as fonts number it, 400 normal, 700 bold; 0 is normal, others are limited to 100 to 1000.
PangoOwned<PangoFontDescription> DescribeFont(const std::string& families, int weight, bool italic);

/// What a height in pixels is the height of.
enum class FontHeight {
    Letters,  // the square on which letters are drawn
    Cell,     // the line, from ascent to descent
};

/// All in pixels; `size` is that of the letters.
struct FontExtent {
    double size = 0;
    double ascent = 0;
    double descent = 0;
};

inline constexpr double kLargestPangoFont = 20'000;  // pixels

/// Gives the description and the context the font of that height, 1 to kLargestPangoFont pixels.
/// An extent of zeros if the machine has no font at all.
FontExtent SetFontHeight(PangoContext* context, PangoFontDescription* description, double pixels,
                         FontHeight of);

/// Pango's units as pixels.
constexpr double PangoPixels(int units) {
    return static_cast<double>(units) / PANGO_SCALE;
}

}  // namespace lumo::imaging
