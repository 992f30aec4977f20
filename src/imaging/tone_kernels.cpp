#include "imaging/tone_kernels.h"

#include <algorithm>

#define HWY_WANT_AVX3_DL
// The order of lanes within blocks is what these loops build on.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/tone_kernels.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

#include "imaging/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace lumo::imaging::HWY_NAMESPACE {

// In deep shadows colour is mostly noise, and more than doubled it would show as blotches.
constexpr float kMostSpread = 2;

#if HWY_TARGET == HWY_SCALAR

void MovePixel(std::uint8_t* p, float y, float target) {
    const float spread = y == target ? 1 : std::min(target / y, kMostSpread);
    const float r = p[0] - y, g = p[1] - y, b = p[2] - y;
    const float max = std::max({r, g, b});
    const float kept = max * spread + target > 255.0F ? (255.0F - target) / max : spread;
    const auto channel = [&](float distance) {
        return static_cast<std::uint8_t>(distance * kept + target + 0.5F);
    };
    p[0] = channel(r);
    p[1] = channel(g);
    p[2] = channel(b);
}

void MoveRun(std::uint8_t* p, std::size_t count, const std::uint8_t* moved) {
    for (; count > 0; --count, p += kChannels) {
        const std::uint8_t y = ComputeLuma(p[0], p[1], p[2]);
        MovePixel(p, y, moved[y]);
    }
}

#else

using Floats = hn::ScalableTag<float>;

// One vector of pixels, lane by lane.
struct Block {
    HWY_ALIGN std::uint8_t red[kMaxBytes];
    HWY_ALIGN std::uint8_t green[kMaxBytes];
    HWY_ALIGN std::uint8_t blue[kMaxBytes];
    HWY_ALIGN std::uint8_t luma[kMaxBytes];
    HWY_ALIGN std::uint8_t target[kMaxBytes];
};

HWY_INLINE void MovePixels(Block& block, std::size_t at) {
    const Floats d;
    const hn::Rebind<std::int32_t, Floats> d32;
    const hn::Rebind<std::uint8_t, Floats> d8;
    const auto load = [&](const std::uint8_t* bytes) {
        return hn::ConvertTo(d, hn::PromoteTo(d32, hn::Load(d8, bytes + at)));
    };
    const auto y = load(block.luma), target = load(block.target);
    const auto white = hn::Set(d, 255.0F);
    // Black stays, so the division by 0 is never looked at.
    const auto ratio = hn::Min(hn::Div(target, y), hn::Set(d, kMostSpread));
    const auto spread = hn::IfThenElse(hn::Eq(y, target), hn::Set(d, 1.0F), ratio);
    const auto r = hn::Sub(load(block.red), y), g = hn::Sub(load(block.green), y),
               b = hn::Sub(load(block.blue), y);
    const auto max = hn::Max(hn::Max(r, g), b);
    const auto beyond = hn::Gt(hn::Add(hn::Mul(max, spread), target), white);
    const auto kept = hn::IfThenElse(beyond, hn::Div(hn::Sub(white, target), max), spread);
    const auto store = [&](auto distance, std::uint8_t* channel) {
        const auto moved = hn::Add(hn::Add(hn::Mul(distance, kept), target), hn::Set(d, 0.5F));
        hn::Store(hn::DemoteTo(d8, hn::ConvertTo(d32, moved)), d8, channel + at);
    };
    store(r, block.red);
    store(g, block.green);
    store(b, block.blue);
}

void MoveRun(std::uint8_t* pixels, std::size_t count, const std::uint8_t* moved) {
    const Bytes d;
    const ByteTable table(moved);
    Block block;
    ForPixelVectors(pixels, count, [&](ByteVector& r, ByteVector& g, ByteVector& b) {
        const ByteVector luma = Luma(r, g, b);
        hn::Store(r, d, block.red);
        hn::Store(g, d, block.green);
        hn::Store(b, d, block.blue);
        hn::Store(luma, d, block.luma);
        hn::Store(table(luma), d, block.target);
        for (std::size_t i = 0; i < hn::Lanes(d); i += hn::Lanes(Floats())) MovePixels(block, i);
        r = hn::Load(d, block.red);
        g = hn::Load(d, block.green);
        b = hn::Load(d, block.blue);
    });
}

#endif  // HWY_SCALAR

}  // namespace lumo::imaging::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::imaging {

HWY_EXPORT(MoveRun);

void MoveLuma(std::uint8_t* pixels, std::size_t count, const Lut& moved) {
    HWY_DYNAMIC_DISPATCH(MoveRun)(pixels, count, moved.data());
}

}  // namespace lumo::imaging
#endif  // HWY_ONCE
