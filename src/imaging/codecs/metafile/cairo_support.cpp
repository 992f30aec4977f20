#include "imaging/codecs/metafile/cairo_support.h"

#include <algorithm>
#include <cmath>

namespace lumo::imaging::codecs::metafile {
namespace {

// Cairo keeps 24 bits in front of the binary point; a quarter of that leaves room for widths.
constexpr double kFarthest = 2'000'000;

Point Tame(Point p) {
    const auto tame = [](double v) {
        return std::isnan(v) ? 0.0 : std::clamp(v, -kFarthest, kFarthest);
    };
    return {tame(p.x), tame(p.y)};
}

}  // namespace

CairoSurface SurfaceOn(void* pixels, cairo_format_t format, Size size, std::size_t stride) {
    return CairoSurface(cairo_image_surface_create_for_data(static_cast<unsigned char*>(pixels),
                                                            format, size.width, size.height,
                                                            static_cast<int>(stride)));
}

void TracePath(cairo_t* cr, const Path& path, Point shift) {
    std::size_t next = 0;
    const auto points = path.Points();
    const auto take = [&] { return Tame(points[next++] + shift); };
    for (const Path::Verb verb : path.Verbs()) {
        switch (verb) {
            case Path::Verb::Move: {
                const Point p = take();
                cairo_move_to(cr, p.x, p.y);
                break;
            }
            case Path::Verb::Line: {
                const Point p = take();
                cairo_line_to(cr, p.x, p.y);
                break;
            }
            case Path::Verb::Curve: {
                const Point a = take(), b = take(), p = take();
                cairo_curve_to(cr, a.x, a.y, b.x, b.y, p.x, p.y);
                break;
            }
            case Path::Verb::Close:
                cairo_close_path(cr);
                break;
        }
    }
}

Path TakePath(cairo_t* cr) {
    Path path;
    cairo_path_t* taken = cairo_copy_path(cr);
    for (int i = 0; i < taken->num_data; i += taken->data[i].header.length) {
        const cairo_path_data_t* data = &taken->data[i];
        const auto at = [data](int n) { return Point{data[n].point.x, data[n].point.y}; };
        switch (data->header.type) {
            case CAIRO_PATH_MOVE_TO:
                path.MoveTo(at(1));
                break;
            case CAIRO_PATH_LINE_TO:
                path.LineTo(at(1));
                break;
            case CAIRO_PATH_CURVE_TO:
                path.CurveTo(at(1), at(2), at(3));
                break;
            case CAIRO_PATH_CLOSE_PATH:
                path.Close();
                break;
        }
    }
    cairo_path_destroy(taken);
    cairo_new_path(cr);
    return path;
}

void SetFillRule(cairo_t* cr, FillRule rule) {
    cairo_set_fill_rule(
        cr, rule == FillRule::Winding ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD);
}

}  // namespace lumo::imaging::codecs::metafile
