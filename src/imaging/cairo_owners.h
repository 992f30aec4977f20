#pragma once

// Owners of Cairo's objects.

#include <cairo.h>

#include <memory>

namespace lumo::imaging {

struct CairoFree {
    void operator()(cairo_t* p) const { cairo_destroy(p); }
    void operator()(cairo_surface_t* p) const { cairo_surface_destroy(p); }
    void operator()(cairo_pattern_t* p) const { cairo_pattern_destroy(p); }
    void operator()(cairo_font_options_t* p) const { cairo_font_options_destroy(p); }
    void operator()(cairo_path_t* p) const { cairo_path_destroy(p); }
};
using CairoContext = std::unique_ptr<cairo_t, CairoFree>;
using CairoSurface = std::unique_ptr<cairo_surface_t, CairoFree>;
using CairoPattern = std::unique_ptr<cairo_pattern_t, CairoFree>;
using CairoFontOptions = std::unique_ptr<cairo_font_options_t, CairoFree>;
using CairoPath = std::unique_ptr<cairo_path_t, CairoFree>;

inline constexpr int kCairoMaxSide = 32767;  // pixels

}  // namespace lumo::imaging
