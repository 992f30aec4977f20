#include <algorithm>
#include <cmath>

#include "imaging/codecs/metafile/canvas.h"

namespace lumo::imaging::codecs::metafile {
namespace {

bool IsUpright(const Transform& t) {
    return t.xy == 0 && t.yx == 0;
}
bool IsQuarterTurned(const Transform& t) {
    return t.xx == 0 && t.yy == 0;
}

Box BoundsOf(const Transform& place) {
    Path square;
    square.AddBox({0, 0, 1, 1});
    square.Map(place);
    return square.Bounds();
}

// The same placing with the corners on pixel borders.
Transform SnapPlace(const Transform& t) {
    const Box box = SnapToPixels(BoundsOf(t));
    Transform snapped{0, 0, 0, 0, 0, 0};
    if (IsUpright(t)) {
        snapped.xx = std::copysign(box.Width(), t.xx);
        snapped.yy = std::copysign(box.Height(), t.yy);
        snapped.x0 = t.xx < 0 ? box.right : box.left;
        snapped.y0 = t.yy < 0 ? box.bottom : box.top;
    } else {
        snapped.xy = std::copysign(box.Width(), t.xy);
        snapped.yx = std::copysign(box.Height(), t.yx);
        snapped.x0 = t.xy < 0 ? box.right : box.left;
        snapped.y0 = t.yx < 0 ? box.bottom : box.top;
    }
    return snapped;
}

// A copy of the part, with every n-th pixel only where it is too large for Cairo, and without the
// pixels of the transparent colour.
Bitmap CopyPart(const Bitmap& bitmap, Rect part, const BlitMode& mode) {
    const auto step = [](int extent) { return (extent + kCairoMaxSide - 1) / kCairoMaxSide; };
    const Size size = part.Extent();
    const int dx = step(size.width), dy = step(size.height);
    Bitmap copy;
    copy.size = {(size.width + dx - 1) / dx, (size.height + dy - 1) / dy};
    copy.pixels.reserve(copy.size.Area());
    for (int y = part.top; y < part.bottom; y += dy)
        for (int x = part.left; x < part.right; x += dx) {
            const std::uint32_t pixel = bitmap.At(x, y);
            if (mode.useAlpha)
                copy.pixels.push_back(pixel);
            else if (mode.transparent && UnpackRgb(pixel) == *mode.transparent)
                copy.pixels.push_back(0);
            else
                copy.pixels.push_back(pixel | 0xFF000000U);
        }
    return copy;
}

// Of these the meaning is a mask, and smooth edges of a mask stay smooth in the linear form.
bool IsMasking(Rop3 rop) {
    return rop == 0x88 || rop == 0xEE || rop == 0x22 || rop == 0xBB;
}

// Pixels of the part that lie under a pixel of the canvas, across and down.
bool KeepsPixels(const Transform& place, Size size) {
    if (IsUpright(place))
        return std::abs(place.xx) == size.width && std::abs(place.yy) == size.height;
    return IsQuarterTurned(place) && std::abs(place.xy) == size.height &&
           std::abs(place.yx) == size.width;
}

}  // namespace

void Canvas::Blit(const Bitmap& bitmap, Rect part, const Transform& where, const BlitMode& mode,
                  const Paint& pattern, const Clip& clip) {
    part = Intersection(part, {0, 0, bitmap.size.width, bitmap.size.height});
    if (IsEmpty(part) || mode.rop == kNoOperation || !where.IsFinite()) return;
    if (where.Determinant() == 0) return;
    const bool straight = IsUpright(where) || IsQuarterTurned(where);
    const Transform place = straight ? SnapPlace(where) : where;
    if (!place.IsFinite() || std::abs(place.Determinant()) < 1e-6) return;

    const bool direct = mode.rop == kSourceCopy && clip.IsRectangle();
    const double area = static_cast<double>(part.Extent().Area());
    const Rect box = Admit(BoundsOf(place), 3 * area, direct ? 4 : 4 + kWorkOfLayer, clip);
    if (IsEmpty(box)) return;

    const bool whole = part == Rect{0, 0, bitmap.size.width, bitmap.size.height};
    const bool alpha = mode.useAlpha || mode.transparent;
    Bitmap copy;
    if (!whole || mode.transparent || bitmap.size.width > kCairoMaxSide ||
        bitmap.size.height > kCairoMaxSide)
        copy = CopyPart(bitmap, part, mode);
    const Bitmap& source = copy.pixels.empty() ? bitmap : copy;
    const CairoSurface surface =
        SurfaceOn(const_cast<std::uint32_t*>(source.pixels.data()),
                  alpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24, source.size,
                  static_cast<std::size_t>(source.size.width) * 4);
    const bool keepsPixels = KeepsPixels(place, source.size);

    cairo_matrix_t inverse{place.xx / source.size.width,
                           place.yx / source.size.width,
                           place.xy / source.size.height,
                           place.yy / source.size.height,
                           place.x0,
                           place.y0};
    if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS) return;
    const auto draw = [&](cairo_t* cr) {
        const CairoPattern paint(cairo_pattern_create_for_surface(surface.get()));
        cairo_pattern_set_matrix(paint.get(), &inverse);
        cairo_pattern_set_extend(paint.get(), CAIRO_EXTEND_PAD);
        cairo_pattern_set_filter(paint.get(),
                                 keepsPixels ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
        Path square;
        square.AddBox({0, 0, 1, 1});
        square.Map(place);
        TracePath(cr, square);
        cairo_clip(cr);
        cairo_set_source(cr, paint.get());
        cairo_paint_with_alpha(cr, std::clamp(mode.opacity, 0.0, 1.0));
    };
    if (direct) return DrawDirectly(box, draw);
    DrawLayer(box, CAIRO_ANTIALIAS_DEFAULT, draw);
    Combine(box, clip, mode.rop, IsMasking(mode.rop) && !keepsPixels, pattern);
}

void Canvas::FloodFill(int x, int y, std::optional<Rgb> border, const Paint& paint,
                       const Clip& clip) {
    const Rect bounds = Intersection(limits_, clip.Bounds());
    const auto inside = [&](int px, int py) {
        return px >= bounds.left && px < bounds.right && py >= bounds.top && py < bounds.bottom &&
               (clip.IsRectangle() || clip.Row(py)[px - bounds.left] >= 128);
    };
    if (measuring_ || !inside(x, y) || IsExhausted()) return;
    cairo_surface_flush(surface_.get());
    const std::uint32_t first = Row(y)[x];
    std::vector<bool> done(limits_.Extent().Area());
    const auto index = [&](int px, int py) {
        return static_cast<std::size_t>(py) * static_cast<std::size_t>(limits_.right) +
               static_cast<std::size_t>(px);
    };
    const auto wanted = [&](int px, int py) {
        if (!inside(px, py) || done[index(px, py)]) return false;
        const std::uint32_t pixel = Row(py)[px] | 0xFF000000U;
        return border ? pixel != PackRgb(*border) : pixel == (first | 0xFF000000U);
    };
    Spend(static_cast<double>(done.size()) / 8);
    std::vector<Point> seeds;
    if (wanted(x, y)) seeds.push_back({static_cast<double>(x), static_cast<double>(y)});
    while (!seeds.empty() && !IsExhausted()) {
        const int sy = static_cast<int>(seeds.back().y);
        int left = static_cast<int>(seeds.back().x);
        seeds.pop_back();
        if (!wanted(left, sy)) continue;
        int right = left + 1;
        while (wanted(left - 1, sy)) --left;
        while (wanted(right, sy)) ++right;
        for (int px = left; px < right; ++px) {
            done[index(px, sy)] = true;
            const std::uint32_t colour = ColourAt(paint, px, sy);
            if (colour >> 24 != 0) Row(sy)[px] = colour;
        }
        Spend(8.0 * (right - left));
        for (const int ny : {sy - 1, sy + 1})
            for (int px = left; px < right; ++px)
                if (wanted(px, ny) && (px == left || !wanted(px - 1, ny)))
                    seeds.push_back({static_cast<double>(px), static_cast<double>(ny)});
    }
    cairo_surface_mark_dirty(surface_.get());
}

}  // namespace lumo::imaging::codecs::metafile
