#include "ops/colour/pixel_kernels.h"

#include <algorithm>
#include <utility>

#include "imaging/colour.h"

#define HWY_WANT_AVX3_DL
// The order of lanes within blocks is what these loops build on.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ops/colour/pixel_kernels.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

#include "imaging/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace lumo::ops::colour::kernels::HWY_NAMESPACE {

using Amounts = std::array<int, 3>;
using Ranges = std::array<Range, 3>;
using imaging::Rgb;

#if HWY_TARGET == HWY_SCALAR

template <class Change>
void ForPixels(std::uint8_t* p, std::size_t count, const Change& change) {
    for (; count > 0; --count, p += 3) change(p);
}

std::uint8_t Sum(int level, int amount) {
    return static_cast<std::uint8_t>(std::clamp(level + amount, 0, 255));
}

std::uint8_t LumaOf(const std::uint8_t* p) {
    return imaging::ComputeLuma(p[0], p[1], p[2]);
}

void AddRun(std::uint8_t* pixels, std::size_t count, const Amounts& amounts) {
    ForPixels(pixels, count, [&](std::uint8_t* p) {
        for (std::size_t c = 0; c < 3; ++c) p[c] = Sum(p[c], amounts[c]);
    });
}

void ReplaceRun(std::uint8_t* pixels, std::size_t count, const Ranges& wanted, Rgb inserted) {
    ForPixels(pixels, count, [&](std::uint8_t* p) {
        for (std::size_t c = 0; c < 3; ++c)
            if (p[c] < wanted[c].low || p[c] > wanted[c].high) return;
        p[0] = inserted.red;
        p[1] = inserted.green;
        p[2] = inserted.blue;
    });
}

void SolarizeRun(std::uint8_t* pixels, std::size_t count, std::uint8_t threshold) {
    ForPixels(pixels, count, [&](std::uint8_t* p) {
        if (LumaOf(p) <= threshold) return;
        for (std::size_t c = 0; c < 3; ++c) p[c] = static_cast<std::uint8_t>(~p[c]);
    });
}

void ThresholdRun(std::uint8_t* pixels, std::size_t count, std::uint8_t threshold) {
    ForPixels(pixels, count,
              [&](std::uint8_t* p) { p[0] = p[1] = p[2] = LumaOf(p) < threshold ? 0 : 255; });
}

std::uint64_t SumForMeanRun(const std::uint8_t* p, std::size_t count) {
    std::uint64_t sum = 0;
    for (; count > 0; --count, p += 3)
        sum += static_cast<std::uint8_t>(0.299 * p[0] + 0.586 * p[1] + 0.114 * p[2] + 0.5);
    return sum;
}

void AddToGreyRun(std::uint8_t* pixels, std::size_t count, const Amounts& amounts) {
    ForPixels(pixels, count, [&](std::uint8_t* p) {
        const std::uint8_t luma = LumaOf(p);
        for (std::size_t c = 0; c < 3; ++c) p[c] = Sum(luma, amounts[c]);
    });
}

void SwapRedGreenRun(std::uint8_t* pixels, std::size_t count) {
    ForPixels(pixels, count, [](std::uint8_t* p) { std::swap(p[0], p[1]); });
}

void SwapGreenBlueRun(std::uint8_t* pixels, std::size_t count) {
    ForPixels(pixels, count, [](std::uint8_t* p) { std::swap(p[1], p[2]); });
}

#else

namespace hn = hwy::HWY_NAMESPACE;
namespace vectors = imaging::HWY_NAMESPACE;
using vectors::Bytes, vectors::ByteVector, vectors::kMaxBytes;

// An amount as what is to be added and what is to be taken, one of them 0.
struct UpDown {
    std::uint8_t up, down;
};
HWY_INLINE UpDown Split(int amount) {
    return {static_cast<std::uint8_t>(std::max(amount, 0)),
            static_cast<std::uint8_t>(std::max(-amount, 0))};
}
HWY_INLINE ByteVector Sum(ByteVector levels, ByteVector up, ByteVector down) {
    return hn::SaturatedSub(hn::SaturatedAdd(levels, up), down);
}

void AddRun(std::uint8_t* pixels, std::size_t count, const Amounts& amounts) {
    const Bytes d;
    const std::size_t lanes = hn::Lanes(d);
    HWY_ALIGN std::uint8_t up[3 * kMaxBytes], down[3 * kMaxBytes];
    for (std::size_t i = 0; i < 3 * lanes; ++i) {
        up[i] = Split(amounts[i % 3]).up;
        down[i] = Split(amounts[i % 3]).down;
    }
    ByteVector ups[3], downs[3];
    for (std::size_t i = 0; i < 3; ++i) {
        ups[i] = hn::Load(d, up + i * lanes);
        downs[i] = hn::Load(d, down + i * lanes);
    }
    vectors::ForByteVectors(pixels, count, [&](ByteVector& a, ByteVector& b, ByteVector& c) {
        a = Sum(a, ups[0], downs[0]);
        b = Sum(b, ups[1], downs[1]);
        c = Sum(c, ups[2], downs[2]);
    });
}

void ReplaceRun(std::uint8_t* pixels, std::size_t count, const Ranges& wanted, Rgb inserted) {
    const Bytes d;
    const auto within = [&](ByteVector v, Range range) {
        const auto held = hn::Max(hn::Min(v, hn::Set(d, range.high)), hn::Set(d, range.low));
        return hn::Eq(held, v);
    };
    for (const Range range : wanted)
        if (range.low > range.high) return;
    vectors::ForPixelVectors(pixels, count, [&](ByteVector& r, ByteVector& g, ByteVector& b) {
        const auto inside =
            hn::And(hn::And(within(r, wanted[0]), within(g, wanted[1])), within(b, wanted[2]));
        r = hn::IfThenElse(inside, hn::Set(d, inserted.red), r);
        g = hn::IfThenElse(inside, hn::Set(d, inserted.green), g);
        b = hn::IfThenElse(inside, hn::Set(d, inserted.blue), b);
    });
}

// All ones where a is at least b.
HWY_INLINE ByteVector AtLeast(ByteVector a, ByteVector b) {
    return hn::VecFromMask(Bytes(), hn::Eq(hn::Max(a, b), a));
}

void SolarizeRun(std::uint8_t* pixels, std::size_t count, std::uint8_t threshold) {
    const auto lowest = hn::Set(Bytes(), static_cast<std::uint8_t>(threshold + 1));
    vectors::ForPixelVectors(pixels, count, [&](ByteVector& r, ByteVector& g, ByteVector& b) {
        const ByteVector ones = AtLeast(vectors::Luma(r, g, b), lowest);
        r = hn::Xor(r, ones);
        g = hn::Xor(g, ones);
        b = hn::Xor(b, ones);
    });
}

void ThresholdRun(std::uint8_t* pixels, std::size_t count, std::uint8_t threshold) {
    const auto lowest = hn::Set(Bytes(), threshold);
    vectors::ForPixelVectors(pixels, count, [&](ByteVector& r, ByteVector& g, ByteVector& b) {
        r = g = b = AtLeast(vectors::Luma(r, g, b), lowest);
    });
}

std::uint64_t SumForMeanRun(const std::uint8_t* pixels, std::size_t count) {
    const hn::Repartition<std::uint64_t, Bytes> d64;
    auto sums = hn::Zero(d64);
    vectors::ReadPixelVectors(
        pixels, count, [&](ByteVector r, ByteVector g, ByteVector b, std::size_t) {
            // Black lanes add nothing.
            sums = hn::Add(sums, hn::SumsOf8(vectors::Luminance<299, 586, 114, 500>(r, g, b)));
        });
    return hn::GetLane(hn::SumOfLanes(d64, sums));
}

void AddToGreyRun(std::uint8_t* pixels, std::size_t count, const Amounts& amounts) {
    const Bytes d;
    ByteVector ups[3], downs[3];
    for (std::size_t c = 0; c < 3; ++c) {
        ups[c] = hn::Set(d, Split(amounts[c]).up);
        downs[c] = hn::Set(d, Split(amounts[c]).down);
    }
    vectors::ForPixelVectors(pixels, count, [&](ByteVector& r, ByteVector& g, ByteVector& b) {
        const ByteVector luma = vectors::Luma(r, g, b);
        r = Sum(luma, ups[0], downs[0]);
        g = Sum(luma, ups[1], downs[1]);
        b = Sum(luma, ups[2], downs[2]);
    });
}

void SwapRedGreenRun(std::uint8_t* pixels, std::size_t count) {
    vectors::ForPixelVectors(pixels, count,
                             [](ByteVector& r, ByteVector& g, ByteVector&) { std::swap(r, g); });
}

void SwapGreenBlueRun(std::uint8_t* pixels, std::size_t count) {
    vectors::ForPixelVectors(pixels, count,
                             [](ByteVector&, ByteVector& g, ByteVector& b) { std::swap(g, b); });
}

#endif  // HWY_SCALAR

}  // namespace lumo::ops::colour::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::ops::colour::kernels {

HWY_EXPORT(AddRun);
HWY_EXPORT(ReplaceRun);
HWY_EXPORT(SolarizeRun);
HWY_EXPORT(ThresholdRun);
HWY_EXPORT(SumForMeanRun);
HWY_EXPORT(AddToGreyRun);
HWY_EXPORT(SwapRedGreenRun);
HWY_EXPORT(SwapGreenBlueRun);

void Add(std::uint8_t* pixels, std::size_t count, const std::array<int, 3>& amounts) {
    HWY_DYNAMIC_DISPATCH(AddRun)(pixels, count, amounts);
}
void Replace(std::uint8_t* pixels, std::size_t count, const std::array<Range, 3>& wanted,
             imaging::Rgb inserted) {
    HWY_DYNAMIC_DISPATCH(ReplaceRun)(pixels, count, wanted, inserted);
}
void Solarize(std::uint8_t* pixels, std::size_t count, std::uint8_t threshold) {
    HWY_DYNAMIC_DISPATCH(SolarizeRun)(pixels, count, threshold);
}
void Threshold(std::uint8_t* pixels, std::size_t count, std::uint8_t threshold) {
    HWY_DYNAMIC_DISPATCH(ThresholdRun)(pixels, count, threshold);
}
std::uint64_t SumForMean(const std::uint8_t* pixels, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(SumForMeanRun)(pixels, count);
}
void AddToGrey(std::uint8_t* pixels, std::size_t count, const std::array<int, 3>& amounts) {
    HWY_DYNAMIC_DISPATCH(AddToGreyRun)(pixels, count, amounts);
}
void SwapRedGreen(std::uint8_t* pixels, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(SwapRedGreenRun)(pixels, count);
}
void SwapGreenBlue(std::uint8_t* pixels, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(SwapGreenBlueRun)(pixels, count);
}

}  // namespace lumo::ops::colour::kernels
#endif  // HWY_ONCE
