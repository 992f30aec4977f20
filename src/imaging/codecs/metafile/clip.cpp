#include "imaging/codecs/metafile/clip.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "imaging/codecs/metafile/cairo_support.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr std::size_t kMostAmounts = 500'000'000;  // bytes; no canvas is larger

std::size_t MaskStride(Rect bounds) {
    return (static_cast<std::size_t>(bounds.Extent().width) + 3) / 4 * 4;
}

// The amount of a set operation, exact where both are 0 or 255 and linear in between.
std::uint8_t CombineAmounts(ClipMode mode, unsigned a, unsigned b) {
    const auto product = [](unsigned x, unsigned y) { return (x * y + 127) / 255; };
    unsigned value = b;
    switch (mode) {
        case ClipMode::And:
            value = product(a, b);
            break;
        case ClipMode::Or:
            value = 255 - product(255 - a, 255 - b);
            break;
        case ClipMode::Xor:
            value = product(a, 255 - b) + product(255 - a, b);
            break;
        case ClipMode::Diff:
            value = product(a, 255 - b);
            break;
        case ClipMode::Copy:
            break;
    }
    return static_cast<std::uint8_t>(std::min(value, 255U));
}

Rect ToRect(Box box, Rect limits) {
    // What is no number falls on the low side.
    const auto whole = [](double v, int low, int high) {
        return !(v > low) ? low : v < high ? static_cast<int>(v) : high;
    };
    return {whole(box.left, limits.left, limits.right), whole(box.top, limits.top, limits.bottom),
            whole(box.right, limits.left, limits.right),
            whole(box.bottom, limits.top, limits.bottom)};
}

}  // namespace

Rect Intersection(Rect a, Rect b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

Rect Union(Rect a, Rect b) {
    if (IsEmpty(a)) return b;
    if (IsEmpty(b)) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

Rect OuterPixels(Box box, Rect limits) {
    return ToRect(
        {std::floor(box.left), std::floor(box.top), std::ceil(box.right), std::ceil(box.bottom)},
        limits);
}

Box SnapToPixels(Box box) {
    // Halves go up, as the pixel whose centre lies on a border belongs to the right and the bottom.
    const auto nearest = [](double v) { return std::floor(v + 0.5); };
    Box snapped{nearest(box.left), nearest(box.top), nearest(box.right), nearest(box.bottom)};
    if (snapped.right == snapped.left) {
        snapped.left = std::floor(box.left);
        snapped.right = snapped.left + 1;
    }
    if (snapped.bottom == snapped.top) {
        snapped.top = std::floor(box.top);
        snapped.bottom = snapped.top + 1;
    }
    return snapped;
}

std::optional<Box> AsBox(const Path& path) {
    const auto verbs = path.Verbs();
    const auto p = path.Points();
    if (p.size() < 4 || p.size() > 5 || verbs.size() < p.size() || verbs[0] != Path::Verb::Move)
        return std::nullopt;
    for (std::size_t i = 1; i < p.size(); ++i)
        if (verbs[i] != Path::Verb::Line) return std::nullopt;
    if (verbs.size() > p.size() &&
        (verbs.size() > p.size() + 1 || verbs.back() != Path::Verb::Close))
        return std::nullopt;
    if (p.size() == 5 && p[4] != p[0]) return std::nullopt;
    const bool across =
        p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x;
    const bool down = p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y;
    if (!across && !down) return std::nullopt;
    return path.Bounds();
}

std::shared_ptr<Clip::Mask> Clip::MakeMask(Rect bounds) {
    if (bounds.Extent().Area() > kMostAmounts) return nullptr;
    auto mask = std::make_shared<Mask>();
    mask->bounds = bounds;
    const std::size_t bytes = MaskStride(bounds) * static_cast<std::size_t>(bounds.Extent().height);
    mask->pixels = PixelBuffer::TryAllocate(bytes);
    if (!mask->pixels) return nullptr;
    std::memset(mask->pixels.Data(), 0, bytes);
    return mask;
}

std::shared_ptr<Clip::Mask> Clip::Draw(const Path& shape, FillRule rule, Rect bounds) {
    auto mask = MakeMask(bounds);
    if (!mask) return nullptr;
    const CairoSurface surface =
        SurfaceOn(mask->pixels.Data(), CAIRO_FORMAT_A8, bounds.Extent(), MaskStride(bounds));
    const CairoContext cr(cairo_create(surface.get()));
    SetFillRule(cr.get(), rule);
    TracePath(cr.get(), shape,
              {-static_cast<double>(bounds.left), -static_cast<double>(bounds.top)});
    cairo_fill(cr.get());
    cairo_surface_flush(surface.get());
    return mask;
}

const std::uint8_t* Clip::Row(int y) const {
    return mask_->pixels.Data() +
           static_cast<std::size_t>(y - mask_->bounds.top) * MaskStride(mask_->bounds) +
           (box_.left - mask_->bounds.left);
}

std::uint8_t Clip::At(int x, int y) const {
    if (x < box_.left || x >= box_.right || y < box_.top || y >= box_.bottom) return 0;
    return mask_ ? Row(y)[x - box_.left] : 255;
}

void Clip::SetRectangle(Rect box) {
    box_ = Intersection(box, limits_);
    mask_ = nullptr;
}

std::size_t Clip::Change(ClipMode mode, const Path& shape, FillRule rule) {
    const auto box = AsBox(shape);
    const Rect touched =
        box ? ToRect(SnapToPixels(*box), limits_) : OuterPixels(shape.Bounds(), limits_);
    if (box && (mode == ClipMode::Copy || (mode == ClipMode::And && IsRectangle()))) {
        SetRectangle(mode == ClipMode::Copy ? touched : Intersection(box_, touched));
        return 1;
    }
    if (box && mode == ClipMode::And) {  // the amounts stay, fewer of them count
        box_ = Intersection(box_, touched);
        return 1;
    }
    Rect bounds = box_;
    if (mode == ClipMode::And) bounds = Intersection(box_, touched);
    if (mode == ClipMode::Copy) bounds = touched;
    if (mode == ClipMode::Or || mode == ClipMode::Xor) bounds = Union(box_, touched);
    if (IsEmpty(bounds)) {
        SetRectangle({});
        return 1;
    }
    Clip other(limits_);
    other.SetRectangle(touched);
    if (!box && !IsEmpty(touched)) other.mask_ = Draw(shape, rule, touched);
    if (!box && !IsEmpty(touched) && !other.mask_)
        SetRectangle(bounds);
    else
        Combine(mode, other, bounds);
    return bounds.Extent().Area() + touched.Extent().Area();
}

void Clip::Combine(ClipMode mode, const Clip& other, Rect bounds) {
    auto result = MakeMask(bounds);
    // Without the memory for the amounts the rectangle around them has to do.
    if (!result) return SetRectangle(bounds);
    for (int y = bounds.top; y < bounds.bottom; ++y) {
        std::uint8_t* row =
            result->pixels.Data() + static_cast<std::size_t>(y - bounds.top) * MaskStride(bounds);
        for (int x = bounds.left; x < bounds.right; ++x)
            *row++ = CombineAmounts(mode, At(x, y), other.At(x, y));
    }
    box_ = bounds;
    mask_ = std::move(result);
}

void Clip::Intersect(const Clip& other) {
    const Rect bounds = Intersection(box_, other.box_);
    if (IsEmpty(bounds))
        SetRectangle({});
    else if (other.IsRectangle())
        box_ = bounds;
    else
        Combine(ClipMode::And, other, bounds);
}

void Clip::Offset(int dx, int dy) {
    const auto shift = [&](Rect r) {
        return Rect{r.left + dx, r.top + dy, r.right + dx, r.bottom + dy};
    };
    const Rect box = shift(box_);
    if (mask_) {
        // Amounts are shared with saved states: the copy has its own place, not its own pixels.
        auto moved = std::make_shared<Mask>();
        moved->bounds = shift(mask_->bounds);
        const std::size_t bytes =
            MaskStride(moved->bounds) * static_cast<std::size_t>(moved->bounds.Extent().height);
        moved->pixels = PixelBuffer::TryAllocate(bytes);
        if (moved->pixels)
            std::memcpy(moved->pixels.Data(), mask_->pixels.Data(), bytes);
        else
            moved = nullptr;
        mask_ = std::move(moved);
    }
    box_ = Intersection(box, limits_);
}

}  // namespace lumo::imaging::codecs::metafile
