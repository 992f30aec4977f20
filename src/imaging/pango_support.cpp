#include "imaging/pango_support.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace lumo::imaging {
namespace {

// What stands in for faces that are not installed, by the beginning of their names in lower case:
// the family whose letters come nearest in shape and width.
constexpr std::pair<std::string_view, std::string_view> kStandIns[] = {
    {"times", "Times New Roman"},      {"tms rmn", "Times New Roman"},
    {"ms serif", "Times New Roman"},   {"roman", "Times New Roman"},
    {"garamond", "Times New Roman"},   {"georgia", "Times New Roman"},
    {"cambria", "Times New Roman"},    {"palatino", "Times New Roman"},
    {"bookman", "Times New Roman"},    {"book antiqua", "Times New Roman"},
    {"century", "Times New Roman"},    {"minion", "Times New Roman"},
    {"verdana", "DejaVu Sans"},        {"lucida sans", "DejaVu Sans"},
    {"courier", "Courier New"},        {"fixedsys", "Courier New"},
    {"terminal", "Courier New"},       {"consolas", "Courier New"},
    {"lucida console", "Courier New"},
};

constexpr int kNormalWeight = 400;

}  // namespace

PangoOwned<PangoContext> MakeTextContext(LetterFit fit) {
    // Each thread has a font map of its own.
    PangoOwned<PangoContext> context(
        pango_font_map_create_context(pango_cairo_font_map_get_default()));
    const CairoFontOptions options(cairo_font_options_create());
    const bool whole = fit == LetterFit::Whole;
    cairo_font_options_set_hint_style(options.get(), whole ? CAIRO_HINT_STYLE_FULL
                                                     : fit == LetterFit::Upright
                                                         ? CAIRO_HINT_STYLE_SLIGHT
                                                         : CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options.get(),
                                        whole ? CAIRO_HINT_METRICS_ON : CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options.get(),
                                     whole ? CAIRO_ANTIALIAS_NONE : CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context.get(), options.get());
    pango_context_set_round_glyph_positions(context.get(), whole ? TRUE : FALSE);
    return context;
}

std::string FontFamilies(std::string_view face, std::string_view generic) {
    std::string families, lower;
    for (const char c : face) {
        const auto byte = static_cast<unsigned char>(c);
        families.push_back(c == ',' || byte < ' ' ? ' ' : c);  // a comma ends a family
        lower.push_back(static_cast<char>(std::tolower(byte)));
    }
    if (!families.empty()) families += ',';
    for (const auto& [start, standIn] : kStandIns)
        if (lower.starts_with(start)) families.append(standIn).push_back(',');
    return families.append(generic);
}

PangoOwned<PangoFontDescription> DescribeFont(const std::string& families, int weight,
                                              bool italic) {
    PangoOwned<PangoFontDescription> description(pango_font_description_new());
    pango_font_description_set_family(description.get(), families.c_str());
    if (weight == 0) weight = kNormalWeight;
    pango_font_description_set_weight(description.get(),
                                      static_cast<PangoWeight>(std::clamp(weight, 100, 1000)));
    if (italic) pango_font_description_set_style(description.get(), PANGO_STYLE_ITALIC);
    return description;
}

FontExtent SetFontHeight(PangoContext* context, PangoFontDescription* description, double pixels,
                         FontHeight of) {
    const auto set = [&](double size) {
        FontExtent extent{std::clamp(size, 1.0, kLargestPangoFont)};
        pango_font_description_set_absolute_size(description, extent.size * PANGO_SCALE);
        pango_context_set_font_description(context, description);
        const PangoOwned<PangoFont> font(pango_context_load_font(context, description));
        if (!font) return FontExtent{};
        const PangoOwned<PangoFontMetrics> metrics(pango_font_get_metrics(font.get(), nullptr));
        extent.ascent = PangoPixels(pango_font_metrics_get_ascent(metrics.get()));
        extent.descent = PangoPixels(pango_font_metrics_get_descent(metrics.get()));
        return extent;
    };
    const FontExtent extent = set(pixels);
    const double cell = extent.ascent + extent.descent;
    return of == FontHeight::Cell && cell > 0 ? set(extent.size * extent.size / cell) : extent;
}

}  // namespace lumo::imaging
