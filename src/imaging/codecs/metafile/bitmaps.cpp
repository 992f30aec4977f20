// The drawing of bitmaps and of boxes combined with the picture.

#include <algorithm>
#include <cmath>

#include "imaging/codecs/metafile/device_context.h"

namespace lumo::imaging::codecs::metafile {
namespace {

// One direction of a transfer: the range of whole pixels of the bitmap that takes part, and the
// range of the target, as a share of it, that they cover.
struct Span {
    int first = 0, last = 0;
    double from = 0, to = 1;
};

Span Overlap(double start, double end, int extent) {
    Span span;
    const double low = std::min(start, end), high = std::max(start, end);
    if (!(high > low)) return span;
    const double first = std::clamp(std::round(low), 0.0, static_cast<double>(extent));
    const double last = std::clamp(std::round(high), 0.0, static_cast<double>(extent));
    span.first = static_cast<int>(first);
    span.last = static_cast<int>(last);
    // Rounding a source that is inside of the bitmap does not move the target.
    const double from = first == 0 || first == extent ? std::max(first, low) : low;
    const double to = last == 0 || last == extent ? std::min(last, high) : high;
    span.from = (from - low) / (high - low);
    span.to = (to - low) / (high - low);
    if (end < start) {
        span.from = 1 - span.from;
        span.to = 1 - span.to;
    }
    return span;
}

}  // namespace

Box SourceBox(const Bitmap& bitmap, Point from, Point size) {
    const Point whole{static_cast<double>(bitmap.size.width),
                      static_cast<double>(bitmap.size.height)};
    const Point rest = whole - from;
    const bool inside = from.x >= 0 && from.y >= 0 && rest.x > 0 && rest.y > 0;
    if (inside && size.x > whole.x && size.y > whole.y) size = rest;
    return {from.x, from.y, from.x + size.x, from.y + size.y};
}

void DeviceContext::PatternBlit(Box box, Rop3 rop) {
    if (UsesSource(rop)) return;
    if (UsesPattern(rop) && state_.brush.kind == Brush::Kind::None) return;
    Path path;
    path.AddBox(box);
    canvas_.Fill(OnCanvas(std::move(path)), FillRule::Winding, PaintOf(state_.brush), state_.clip,
                 rop);
}

void DeviceContext::Blit(const Bitmap& bitmap, Box target, Box source, const BlitMode& mode) {
    BlitOnto(bitmap, {target.Width(), 0, 0, target.Height(), target.left, target.top}, source,
             mode);
}

void DeviceContext::BlitOnto(const Bitmap& bitmap, const Transform& target, Box source,
                             const BlitMode& mode) {
    const Span across = Overlap(source.left, source.right, bitmap.size.width);
    const Span down = Overlap(source.top, source.bottom, bitmap.size.height);
    const Transform share{across.to - across.from, 0,           0,
                          down.to - down.from,     across.from, down.from};
    const Transform place = Compose(ToCanvas(), Compose(target, share));
    canvas_.Blit(bitmap, {across.first, down.first, across.last, down.last}, place, mode,
                 PaintOf(state_.brush), state_.clip);
}

void DeviceContext::SetDibToDevice(const Bitmap& bitmap, Point at, Point from, Point size,
                                   double firstScan, double scans) {
    // Of rows [from.y, from.y + size.y) of the full picture the bitmap holds `scans` ones.
    const double held = std::min(scans, static_cast<double>(bitmap.size.height));
    const double first = std::max(from.y, firstScan);
    const double last = std::min(from.y + size.y, firstScan + held);
    if (!(last > first) || !(size.x > 0)) return;
    const double rows = last - first;
    const double below = first - from.y;  // rows of the target that come before
    const double targetTop = bitmap.bottomUp ? size.y - below - rows : below;
    const double top =
        bitmap.bottomUp ? bitmap.size.height - (last - firstScan) : first - firstScan;

    // The size is in units of the device, so only the corner is mapped.
    const Transform page = Compose(PageToDevice(), state_.mapping.world);
    const Point corner = page.Map(at);
    const Transform place = Compose(base_, {size.x, 0, 0, rows, corner.x, corner.y + targetTop});
    const Span across = Overlap(from.x, from.x + size.x, bitmap.size.width);
    const Span down = Overlap(top, top + rows, bitmap.size.height);
    const Transform share{across.to - across.from, 0,           0,
                          down.to - down.from,     across.from, down.from};
    canvas_.Blit(bitmap, {across.first, down.first, across.last, down.last}, Compose(place, share),
                 {}, {}, state_.clip);
}

void DeviceContext::GradientBox(const GradientVertex& from, const GradientVertex& to,
                                bool downwards) {
    Path box;
    box.AddBox({from.at.x, from.at.y, to.at.x, to.at.y});
    box = OnCanvas(std::move(box));
    const Point start = box.Points()[0], end = box.Points()[downwards ? 3 : 1];
    const auto stop = [](cairo_pattern_t* pattern, double at, Rgb c) {
        cairo_pattern_add_color_stop_rgb(pattern, at, c.red / 255.0, c.green / 255.0,
                                         c.blue / 255.0);
    };
    const Box extents = AsBox(box) ? SnapToPixels(*AsBox(box)) : box.Bounds();
    canvas_.Draw(extents, 1000, state_.clip, kPatternCopy, [&](cairo_t* cr) {
        const CairoPattern colours(cairo_pattern_create_linear(start.x, start.y, end.x, end.y));
        stop(colours.get(), 0, from.colour);
        stop(colours.get(), 1, to.colour);
        cairo_set_source(cr, colours.get());
        if (AsBox(box))
            cairo_rectangle(cr, extents.left, extents.top, extents.Width(), extents.Height());
        else
            TracePath(cr, box);
        cairo_fill(cr);
    });
}

void DeviceContext::GradientTriangle(const std::array<GradientVertex, 3>& corners) {
    Path triangle;
    for (const GradientVertex& corner : corners) triangle.LineTo(corner.at);
    triangle.Close();
    triangle = OnCanvas(std::move(triangle));
    const Box extents = triangle.Bounds();
    canvas_.Draw(extents, 1000 + 20 * extents.Width(), state_.clip, kPatternCopy, [&](cairo_t* cr) {
        const CairoPattern mesh(cairo_pattern_create_mesh());
        cairo_mesh_pattern_begin_patch(mesh.get());
        const auto p = triangle.Points();
        cairo_mesh_pattern_move_to(mesh.get(), p[0].x, p[0].y);
        for (const int i : {1, 2, 0}) cairo_mesh_pattern_line_to(mesh.get(), p[i].x, p[i].y);
        for (unsigned i = 0; i < 4; ++i) {
            const Rgb c = corners[i % 3].colour;
            cairo_mesh_pattern_set_corner_color_rgb(mesh.get(), i, c.red / 255.0, c.green / 255.0,
                                                    c.blue / 255.0);
        }
        cairo_mesh_pattern_end_patch(mesh.get());
        cairo_set_source(cr, mesh.get());
        cairo_paint(cr);
    });
}

}  // namespace lumo::imaging::codecs::metafile
