#include "imaging/codecs/metafile/device_context.h"

#include <algorithm>
#include <cmath>

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr std::size_t kMostSaved = 128;  // states; each may hold a clip as large as the picture

// Points beyond this are as far away as any picture needs, and distances to them stay finite.
constexpr double kFarthest = 1'000'000;

double Tame(double v) {
    return std::isnan(v) ? 0 : std::clamp(v, -kFarthest, kFarthest);
}

// Millimetres of a unit of the metric modes.
double MillimetresOf(MapMode mode) {
    switch (mode) {
        case MapMode::LoMetric:
            return 0.1;
        case MapMode::HiMetric:
            return 0.01;
        case MapMode::LoEnglish:
            return 0.254;
        case MapMode::HiEnglish:
            return 0.0254;
        case MapMode::Twips:
            return 25.4 / 1440;
        default:
            return 1;
    }
}

std::shared_ptr<const Bitmap> HatchTile(unsigned hatch, Rgb ink, std::optional<Rgb> ground) {
    constexpr int kSide = 8;
    auto tile = std::make_shared<Bitmap>();
    tile->size = {kSide, kSide};
    tile->pixels.assign(kSide * kSide, ground ? PackRgb(*ground) : 0);
    for (int i = 0; i < kSide; ++i) {
        const bool level = hatch == 0 || hatch == 4, upright = hatch == 1 || hatch == 4;
        const bool falling = hatch == 2 || hatch == 5, rising = hatch == 3 || hatch == 5;
        if (level) tile->At(i, 3) = PackRgb(ink);
        if (upright) tile->At(3, i) = PackRgb(ink);
        if (falling) tile->At(i, i) = PackRgb(ink);
        if (rising) tile->At(i, kSide - 1 - i) = PackRgb(ink);
    }
    return tile;
}

std::shared_ptr<const Bitmap> Recoloured(const Bitmap& pattern, Rgb black, Rgb white) {
    auto tile = std::make_shared<Bitmap>(pattern);
    for (std::uint32_t& pixel : tile->pixels)
        pixel = PackRgb((pixel & 0xFFFFFF) == 0 ? black : white);
    return tile;
}

}  // namespace

DeviceContext::DeviceContext(Canvas& canvas, Transform base, Point unitsPerMillimetre,
                             const DecodeOptions& options)
    : canvas_(canvas), base_(base), unitsPerMillimetre_(unitsPerMillimetre), options_(options) {
    state_.pen.geometric = false;
    state_.font.face = "Arial";
    state_.clip = Clip(canvas.Limits());
}

void DeviceContext::Save() {
    if (saved_.size() < kMostSaved) saved_.push_back(state_);
}

void DeviceContext::Restore(int which) {
    const std::int64_t count = static_cast<std::int64_t>(saved_.size());
    const std::int64_t index = which < 0 ? count + which : std::int64_t{which} - 1;
    if (which == 0 || index < 0 || index >= count) return;
    state_ = std::move(saved_[static_cast<std::size_t>(index)]);
    saved_.resize(static_cast<std::size_t>(index));
}

void DeviceContext::Select(const Object& object) {
    if (const auto* pen = std::get_if<Pen>(&object)) state_.pen = *pen;
    if (const auto* brush = std::get_if<Brush>(&object)) state_.brush = *brush;
    if (const auto* font = std::get_if<Font>(&object)) state_.font = *font;
    if (const auto* palette = std::get_if<Palette>(&object)) state_.palette = palette->colours;
    if (const auto* region = std::get_if<Region>(&object)) ClipToRegion(ClipMode::Copy, *region);
}

Rgb DeviceContext::ColourOf(ColourRef colour) const {
    if (colour >> 24 == 1) {
        const std::size_t index = colour & 0xFFFF;
        return index < state_.palette.size() ? state_.palette[index] : Rgb{};
    }
    return {static_cast<std::uint8_t>(colour), static_cast<std::uint8_t>(colour >> 8),
            static_cast<std::uint8_t>(colour >> 16)};
}

Paint DeviceContext::PaintOf(const Brush& brush) const {
    Paint paint{.colour = ColourOf(brush.colour)};
    const Point origin = base_.Map(state_.brushOrigin);
    paint.origin = {Tame(origin.x), Tame(origin.y)};
    if (brush.kind == Brush::Kind::Hatch) {
        std::optional<Rgb> ground;
        if (state_.opaqueBack) ground = ColourOf(state_.backColour);
        paint.tile = HatchTile(brush.hatch, paint.colour, ground);
    } else if (brush.kind == Brush::Kind::Pattern && brush.pattern) {
        paint.tile = brush.inTextColours ? Recoloured(*brush.pattern, ColourOf(state_.textColour),
                                                      ColourOf(state_.backColour))
                                         : brush.pattern;
    }
    return paint;
}

Transform DeviceContext::PageToDevice() const {
    const Mapping& m = state_.mapping;
    double sx = 1, sy = 1;
    const auto ratio = [](double viewport, double window) {
        return window == 0 ? 1.0 : viewport / window;
    };
    switch (m.mode) {
        case MapMode::Text:
            break;
        case MapMode::Anisotropic:
        case MapMode::Isotropic:
            sx = ratio(m.viewportExtent.x, m.windowExtent.x);
            sy = ratio(m.viewportExtent.y, m.windowExtent.y);
            if (m.mode == MapMode::Isotropic) {
                const double both = std::min(std::abs(sx), std::abs(sy));
                sx = std::copysign(both, sx);
                sy = std::copysign(both, sy);
            }
            break;
        default:  // the metric modes look up the page
            sx = MillimetresOf(m.mode) * unitsPerMillimetre_.x;
            sy = -MillimetresOf(m.mode) * unitsPerMillimetre_.y;
    }
    return {sx,
            0,
            0,
            sy,
            m.viewportOrigin.x - m.windowOrigin.x * sx,
            m.viewportOrigin.y - m.windowOrigin.y * sy};
}

Transform DeviceContext::ToCanvas() const {
    return Compose(base_, Compose(PageToDevice(), state_.mapping.world));
}

double DeviceContext::Scale() const {
    const double scale = std::sqrt(std::abs(ToCanvas().Determinant()));
    return std::isfinite(scale) ? scale : 1;
}

Path DeviceContext::OnCanvas(Path path, const Transform& transform) {
    for (Point& p : path.Points()) {
        p = transform.Map(p);
        p = {Tame(p.x), Tame(p.y)};
    }
    return path;
}

Box DeviceContext::OutlineBox(Box box) const {
    const Transform page = PageToDevice();
    const auto shrink = [](double from, double& to, double scale) {
        if (scale == 0 || !std::isfinite(1 / scale)) return;
        const double unit = 1 / std::abs(scale);
        if (std::abs(to - from) > unit) to -= std::copysign(unit, to - from);
    };
    // The left and the upper side are those on the device.
    shrink(page.xx < 0 ? box.right : box.left, page.xx < 0 ? box.left : box.right, page.xx);
    shrink(page.yy < 0 ? box.bottom : box.top, page.yy < 0 ? box.top : box.bottom, page.yy);
    return box;
}

}  // namespace lumo::imaging::codecs::metafile
