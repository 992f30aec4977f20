#include "ops/colour/curve_kernels.h"

#define HWY_WANT_AVX3_DL
// The order of lanes within blocks is what these loops build on.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ops/colour/curve_kernels.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

#include "imaging/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace lumo::ops::colour::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

HWY_INLINE std::uint8_t Scaled(std::uint8_t channel, double level, double y) {
    const double scaled = channel * level / y;
    if (!(scaled > 0)) return 0;  // also black, where it is no number
    return scaled >= 255 ? std::uint8_t{255} : static_cast<std::uint8_t>(scaled);
}

void CurveRun(std::uint8_t* p, std::size_t count, const std::uint8_t* curve) {
    for (; count > 0; --count, p += 3) {
        const double y = 0.289 * p[0] + 0.587 * p[1] + 0.114 * p[2];
        const double level = curve[static_cast<std::size_t>(y)];
        for (int c = 0; c < 3; ++c) p[c] = Scaled(p[c], level, y);
    }
}

#else

namespace hn = hwy::HWY_NAMESPACE;
namespace vectors = imaging::HWY_NAMESPACE;
using vectors::Bytes, vectors::ByteVector, vectors::Doubles, vectors::DoubleVector,
    vectors::kMaxBytes;

// One vector of pixels, lane by lane.
struct Block {
    HWY_ALIGN std::uint8_t red[kMaxBytes];
    HWY_ALIGN std::uint8_t green[kMaxBytes];
    HWY_ALIGN std::uint8_t blue[kMaxBytes];
    HWY_ALIGN double y[kMaxBytes];
    HWY_ALIGN std::uint8_t level[kMaxBytes];
};

HWY_INLINE void Weigh(Block& block) {
    const Doubles d;
    for (std::size_t i = 0; i < hn::Lanes(Bytes()); i += hn::Lanes(d)) {
        auto y = hn::Mul(hn::Set(d, 0.289), vectors::LoadAsDoubles(block.red + i));
        y = hn::Add(y, hn::Mul(hn::Set(d, 0.587), vectors::LoadAsDoubles(block.green + i)));
        y = hn::Add(y, hn::Mul(hn::Set(d, 0.114), vectors::LoadAsDoubles(block.blue + i)));
        vectors::StoreAsBytes(y, block.level + i);
        // No colour but black is below 0.114; of black all products are 0.
        hn::Store(hn::Max(y, hn::Set(d, 0.1)), d, block.y + i);
    }
}

HWY_INLINE void Scale(Block& block) {
    const Doubles d;
    for (std::size_t i = 0; i < hn::Lanes(Bytes()); i += hn::Lanes(d)) {
        const auto level = vectors::LoadAsDoubles(block.level + i);
        const auto y = hn::Load(d, block.y + i);
        const auto scale = [&](std::uint8_t* channel) {
            const auto product = hn::Mul(vectors::LoadAsDoubles(channel), level);
            const auto scaled = hn::Min(hn::Div(product, y), hn::Set(d, 255.0));
            vectors::StoreAsBytes(scaled, channel);
        };
        scale(block.red + i);
        scale(block.green + i);
        scale(block.blue + i);
    }
}

void CurveRun(std::uint8_t* pixels, std::size_t count, const std::uint8_t* curve) {
    const Bytes d;
    const vectors::ByteTable table(curve);
    Block block;
    vectors::ForPixelVectors(pixels, count, [&](ByteVector& r, ByteVector& g, ByteVector& b) {
        hn::Store(r, d, block.red);
        hn::Store(g, d, block.green);
        hn::Store(b, d, block.blue);
        Weigh(block);
        hn::Store(table(hn::Load(d, block.level)), d, block.level);
        Scale(block);
        r = hn::Load(d, block.red);
        g = hn::Load(d, block.green);
        b = hn::Load(d, block.blue);
    });
}

#endif  // HWY_SCALAR

}  // namespace lumo::ops::colour::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::ops::colour::kernels {

HWY_EXPORT(CurveRun);

void CurveBrightness(std::uint8_t* pixels, std::size_t count, const imaging::Lut& curve) {
    HWY_DYNAMIC_DISPATCH(CurveRun)(pixels, count, curve.data());
}

}  // namespace lumo::ops::colour::kernels
#endif  // HWY_ONCE
