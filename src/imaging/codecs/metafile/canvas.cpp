#include "imaging/codecs/metafile/canvas.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr int kMeasuredReach = 1 << 20;  // pixels around the origin

CairoPattern TilePattern(const Paint& paint) {
    // Cairo never writes to a surface that is only a source.
    auto* pixels = const_cast<std::uint32_t*>(paint.tile->pixels.data());
    const Size size = paint.tile->size;
    const CairoSurface surface =
        SurfaceOn(pixels, CAIRO_FORMAT_ARGB32, size, static_cast<std::size_t>(size.width) * 4);
    CairoPattern pattern(cairo_pattern_create_for_surface(surface.get()));
    cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_REPEAT);
    cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_NEAREST);
    cairo_matrix_t shift;
    cairo_matrix_init_translate(&shift, -std::round(paint.origin.x), -std::round(paint.origin.y));
    cairo_pattern_set_matrix(pattern.get(), &shift);
    return pattern;
}

void SetSource(cairo_t* cr, const Paint& paint) {
    if (paint.tile)
        cairo_set_source(cr, TilePattern(paint).get());
    else
        cairo_set_source_rgb(cr, paint.colour.red / 255.0, paint.colour.green / 255.0,
                             paint.colour.blue / 255.0);
}

// Edges that meet the same pixels in two figures leave a faint seam; upright boxes are the usual
// case, and whole pixels are what they were made for.
Path Snapped(const Path& path) {
    Path snapped;
    Path figure;
    std::size_t next = 0;
    const auto flush = [&] {
        if (const auto box = AsBox(figure))
            snapped.AddBox(SnapToPixels(*box));
        else
            snapped.Append(figure);
        figure = Path();
    };
    for (const Path::Verb verb : path.Verbs()) {
        if (verb == Path::Verb::Move) {
            flush();
            figure.MoveTo(path.Points()[next++]);
        } else if (verb == Path::Verb::Close) {
            figure.Close();
        } else {
            figure.LineTo(path.Points()[next++]);
        }
    }
    flush();
    return snapped;
}

// Puts level and upright lines of a thin pen on the middle of pixels, where they are crisp.
void CentreThinLines(Path& path) {
    const auto verbs = path.Verbs();
    const std::span<Point> p = path.Points();
    const std::vector<Point> old(p.begin(), p.end());
    const auto centre = [](double v) { return std::floor(v) + 0.5; };
    const auto join = [&](std::size_t a, std::size_t b) {
        if (old[a].x != old[b].x && old[a].y != old[b].y) return;
        for (const std::size_t i : {a, b}) p[i] = {centre(old[i].x), centre(old[i].y)};
    };
    std::size_t next = 0, start = 0;
    for (const Path::Verb verb : verbs) {
        if (verb == Path::Verb::Move) start = next++;
        if (verb == Path::Verb::Line) {
            join(next - 1, next);
            ++next;
        }
        if (verb == Path::Verb::Curve) next += 3;
        if (verb == Path::Verb::Close && next > start) join(next - 1, start);
    }
}

// Rows that a rasteriser walks for the path, as pixels.
double EdgeWork(const Path& path, double height) {
    double rows = 0;
    ForEachLine(path, [&](Point a, Point b) { rows += 4 + std::min(std::abs(b.y - a.y), height); });
    return rows * 8;
}

std::uint32_t Blend(std::uint32_t below, std::uint32_t above, std::uint32_t amount) {
    std::uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const std::uint32_t a = (above >> shift) & 255, b = (below >> shift) & 255;
        result |= (a * amount + b * (255 - amount) + 127) / 255 << shift;
    }
    return result | 0xFF000000U;
}

std::uint32_t Unmultiplied(std::uint32_t pixel) {
    const std::uint32_t alpha = pixel >> 24;
    if (alpha == 255) return pixel;
    std::uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8)
        result |= std::min(255U, (((pixel >> shift) & 255) * 255 + alpha / 2) / alpha) << shift;
    return result | alpha << 24;
}

std::uint32_t SoftRop(Rop3 rop, std::uint32_t s, std::uint32_t d) {
    std::uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8)
        result |= ApplySoftRop(rop, (s >> shift) & 255, (d >> shift) & 255) << shift;
    return result;
}

}  // namespace

std::uint32_t ColourAt(const Paint& paint, int x, int y) {
    if (!paint.tile) return PackRgb(paint.colour);
    const auto wrap = [](int v, double origin, int extent) {
        const int i =
            static_cast<int>((v - static_cast<std::int64_t>(std::round(origin))) % extent);
        return i < 0 ? i + extent : i;
    };
    const Size size = paint.tile->size;
    return paint.tile->At(wrap(x, paint.origin.x, size.width),
                          wrap(y, paint.origin.y, size.height));
}

std::optional<Canvas> Canvas::Create(Size size) {
    if (size.IsEmpty() || size.width > kCairoMaxSide || size.height > kCairoMaxSide)
        return std::nullopt;
    Canvas canvas;
    canvas.pixels_ = PixelBuffer::TryAllocate(size.Area() * 4);
    if (!canvas.pixels_) return std::nullopt;
    canvas.limits_ = {0, 0, size.width, size.height};
    for (int y = 0; y < size.height; ++y)
        std::fill_n(canvas.Row(y), static_cast<std::size_t>(size.width), 0xFFFFFFFFU);
    canvas.Attach(size);
    return canvas;
}

Canvas Canvas::ForMeasuring() {
    Canvas canvas;
    canvas.measuring_ = true;
    canvas.pixels_ = PixelBuffer::TryAllocate(64);
    canvas.Attach({1, 1});
    canvas.limits_ = {-kMeasuredReach, -kMeasuredReach, kMeasuredReach, kMeasuredReach};
    return canvas;
}

void Canvas::Attach(Size size) {
    surface_ = SurfaceOn(pixels_.Data(), CAIRO_FORMAT_RGB24, size,
                         static_cast<std::size_t>(size.width) * 4);
    cr_.reset(cairo_create(surface_.get()));
}

Rect Canvas::Admit(Box extents, double work, double workPerPixel, const Clip& clip) {
    const Rect box = Intersection(OuterPixels(extents, limits_), clip.Bounds());
    if (IsEmpty(box) || IsExhausted()) return {};
    const Box ink{static_cast<double>(box.left), static_cast<double>(box.top),
                  static_cast<double>(box.right), static_cast<double>(box.bottom)};
    ink_ = Union(ink_, ink);
    Spend(work + kWorkPerCall + (measuring_ ? 0 : ink.Width() * ink.Height() * workPerPixel));
    return measuring_ || IsExhausted() ? Rect{} : box;
}

void Canvas::DrawDirectly(Rect box, const std::function<void(cairo_t*)>& draw) {
    const Size size = box.Extent();
    cairo_save(cr_.get());
    cairo_rectangle(cr_.get(), box.left, box.top, size.width, size.height);
    cairo_clip(cr_.get());
    draw(cr_.get());
    cairo_restore(cr_.get());
    cairo_new_path(cr_.get());
}

void Canvas::DrawLayer(Rect box, cairo_antialias_t edges,
                       const std::function<void(cairo_t*)>& draw) {
    const Size size = box.Extent();
    layer_.assign(size.Area(), 0);
    const CairoSurface surface = SurfaceOn(layer_.data(), CAIRO_FORMAT_ARGB32, size,
                                           static_cast<std::size_t>(size.width) * 4);
    cairo_surface_set_device_offset(surface.get(), -box.left, -box.top);
    const CairoContext cr(cairo_create(surface.get()));
    cairo_set_antialias(cr.get(), edges);
    draw(cr.get());
    cairo_surface_flush(surface.get());
}

void Canvas::Draw(Box extents, double work, const Clip& clip, Rop3 rop,
                  const std::function<void(cairo_t*)>& draw) {
    if (rop == kNoOperation) return;
    const bool direct = rop == kPatternCopy && clip.IsRectangle();
    const Rect box = Admit(extents, work, direct ? 1 : kWorkOfLayer, clip);
    if (IsEmpty(box)) return;
    if (direct) return DrawDirectly(box, draw);
    // Half-covered pixels of an inversion would not come back when it is drawn again.
    DrawLayer(box, InvertsDestination(rop) ? CAIRO_ANTIALIAS_NONE : CAIRO_ANTIALIAS_DEFAULT, draw);
    Combine(box, clip, PatternAsSource(rop), false, {});
}

void Canvas::Combine(Rect box, const Clip& clip, Rop3 rop, bool soft, const Paint& pattern) {
    cairo_surface_flush(surface_.get());
    const std::uint32_t* layer = layer_.data();
    const BitwiseRop bitwise(rop);
    const bool solid = !pattern.tile;
    const std::uint32_t colour = PackRgb(pattern.colour);
    for (int y = box.top; y < box.bottom; ++y) {
        std::uint32_t* row = Row(y);
        const std::uint8_t* amounts = clip.IsRectangle() ? nullptr : clip.Row(y);
        for (int x = box.left; x < box.right; ++x) {
            const std::uint32_t pixel = *layer++;
            std::uint32_t amount = pixel >> 24;
            if (amounts) amount = (amount * amounts[x - clip.Bounds().left] + 127) / 255;
            if (amount == 0) continue;
            const std::uint32_t source = Unmultiplied(pixel);
            const std::uint32_t p = solid ? colour : ColourAt(pattern, x, y);
            const std::uint32_t value =
                soft ? SoftRop(rop, source, row[x]) : bitwise(p, source, row[x]);
            row[x] = amount == 255 ? value | 0xFF000000U : Blend(row[x], value, amount);
        }
    }
    cairo_surface_mark_dirty(surface_.get());
}

void Canvas::Fill(const Path& path, FillRule rule, const Paint& paint, const Clip& clip, Rop3 rop) {
    if (path.IsEmpty()) return;
    const bool straight = path.IsRectilinear();
    const Path snapped = straight ? Snapped(path) : Path();
    const Path& shape = straight ? snapped : path;
    Draw(shape.Bounds(), EdgeWork(shape, limits_.bottom), clip, rop, [&](cairo_t* cr) {
        SetFillRule(cr, rule);
        SetSource(cr, paint);
        TracePath(cr, shape);
        cairo_fill(cr);
    });
}

void Canvas::Stroke(const Path& path, const StrokeStyle& style, const Paint& paint,
                    const Clip& clip, Rop3 rop) {
    if (path.IsEmpty()) return;
    Path line = path;
    if (style.width < 1.5) CentreThinLines(line);
    const double spike =
        style.join == CAIRO_LINE_JOIN_MITER ? std::max(1.0, style.miterLimit) : 1.5;
    const double reach = style.width / 2 * spike + 1;
    Box extents = line.Bounds();
    extents = {extents.left - reach, extents.top - reach, extents.right + reach,
               extents.bottom + reach};
    const double height = limits_.bottom;
    const double points = static_cast<double>(line.Points().size());
    double work = EdgeWork(line, height) * 3 + points * 8 * std::min(style.width, height) +
                  points * 20 * std::sqrt(style.width);
    // Dashes are counted along the whole line, even where it runs far outside of the picture.
    double period = 0;
    for (const double dash : style.dashes) period += dash;
    const double dashes = period > 0 ? line.Length() / period : 0;
    const bool dashed = period > 0 && dashes < 20'000;
    if (dashed) work += dashes * (200 + 16 * style.width);
    Draw(extents, work, clip, rop, [&](cairo_t* cr) {
        SetSource(cr, paint);
        cairo_set_line_width(cr, style.width);
        cairo_set_line_cap(cr, style.cap);
        cairo_set_line_join(cr, style.join);
        cairo_set_miter_limit(cr, std::max(1.0, style.miterLimit));
        if (dashed)
            cairo_set_dash(cr, style.dashes.data(), static_cast<int>(style.dashes.size()), 0);
        TracePath(cr, line);
        cairo_stroke(cr);
    });
}

std::optional<Image> Canvas::TakeImage() {
    cairo_surface_flush(surface_.get());
    auto image = Image::TryCreate(limits_.Extent());
    if (!image) return std::nullopt;
    for (int y = 0; y < image->Height(); ++y) {
        const std::uint32_t* row = Row(y);
        std::uint8_t* target = image->View().Row(y);
        for (int x = 0; x < image->Width(); ++x) {
            *target++ = static_cast<std::uint8_t>(row[x] >> 16);
            *target++ = static_cast<std::uint8_t>(row[x] >> 8);
            *target++ = static_cast<std::uint8_t>(row[x]);
        }
    }
    return image;
}

}  // namespace lumo::imaging::codecs::metafile
