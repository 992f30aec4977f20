#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <utility>

#include "imaging/colour.h"
#include "imaging/last_error.h"
#include "imaging/pixel_runs.h"

// With the byte permutations of this set a table of 256 bytes lies in four registers.
#define HWY_WANT_AVX3_DL
// The order of lanes within blocks is what these loops build on.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/colour_kernels.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace lumo::imaging::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Where the luma of a run of pixels goes: into all three channels of each, or into a byte each.
enum class LumaTo { Pixels, Bytes };

template <LumaTo kTo>
void PlainLuma(const std::uint8_t* pixel, std::size_t count, std::uint8_t* out) {
    constexpr std::size_t kStep = kTo == LumaTo::Pixels ? kChannels : 1;
    for (; count > 0; --count, pixel += kChannels, out += kStep)
        std::memset(out, ComputeLuma(pixel[0], pixel[1], pixel[2]), kStep);
}

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

template <LumaTo kTo>
void Luma(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    PlainLuma<kTo>(pixels, count, out);
}

#else

// 299 r + 587 g + 114 b + 500, divided by 1000 through a multiplication: the quotient in the upper
// 8 bits, its fraction in the lower 24. The factor is below 2^24 / 1000 by so little that the
// quotient is right unless the fraction is within 0.0034 of the next whole number. There lie the
// exact halves, too, which the doubles of ComputeLuma round one way or the other.
constexpr std::int32_t kFactor = 16777;
constexpr std::int32_t kFraction = 0xFFFFFF;
constexpr std::int32_t kDoubtful = kFraction - 57'100;

// The quotients of one half of the lanes of even or odd pixels, 32 bits each.
template <class D16, class V16, class V32>
HWY_INLINE void Divide(D16 d16, V16 redGreen, V16 blueOne, V32& quotient, V32& largestFraction) {
    const hn::Repartition<std::int32_t, D16> d32;
    const auto pair = [&](int first, int second) {
        return hn::BitCast(d16, hn::Set(d32, first | second << 16));
    };
    const auto product = [&](V16 v, V16 weights) {
#if HWY_ARCH_X86
        V32 unused = hn::Zero(d32);
        return hn::ReorderWidenMulAccumulate(d32, v, weights, hn::Zero(d32), unused);
#else
        const auto low = [&](V16 w) { return hn::And(hn::BitCast(d32, w), hn::Set(d32, 0xFFFF)); };
        const auto high = [&](V16 w) { return hn::ShiftRight<16>(hn::BitCast(d32, w)); };
        return hn::Add(hn::Mul(low(v), low(weights)), hn::Mul(high(v), high(weights)));
#endif
    };
    const V32 sum = hn::Add(product(redGreen, pair(299, 587)), product(blueOne, pair(114, 500)));
    const V32 scaled = hn::Mul(sum, hn::Set(d32, kFactor));
    const hn::RebindToUnsigned<decltype(d32)> du32;
    quotient = hn::BitCast(d32, hn::ShiftRight<24>(hn::BitCast(du32, scaled)));
    largestFraction = hn::Max(largestFraction, hn::And(scaled, hn::Set(d32, kFraction)));
}

// The luma of even or of odd pixels, 16 bits each.
template <class D16, class V16, class V32>
HWY_INLINE V16 LumaOf(D16 d16, V16 red, V16 green, V16 blue, V32& largestFraction) {
    const auto one = hn::Set(d16, 1);
    V32 low, high;
    Divide(d16, hn::InterleaveLower(d16, red, green), hn::InterleaveLower(d16, blue, one), low,
           largestFraction);
    Divide(d16, hn::InterleaveUpper(d16, red, green), hn::InterleaveUpper(d16, blue, one), high,
           largestFraction);
    return hn::ReorderDemote2To(d16, low, high);
}

template <LumaTo kTo>
void Luma(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    const hn::ScalableTag<std::uint8_t> d8;
    const hn::Repartition<std::int16_t, decltype(d8)> d16;
    const hn::Repartition<std::uint16_t, decltype(d8)> du16;
    const hn::Repartition<std::int32_t, decltype(d8)> d32;
    constexpr std::size_t kStep = kTo == LumaTo::Pixels ? kChannels : 1;
    const std::size_t lanes = hn::Lanes(d8);
    const auto even = [&](auto v) {
        return hn::BitCast(d16, hn::And(hn::BitCast(du16, v), hn::Set(du16, 0xFF)));
    };
    const auto odd = [&](auto v) {
        return hn::BitCast(d16, hn::ShiftRight<8>(hn::BitCast(du16, v)));
    };
    for (; count >= lanes; count -= lanes, pixels += lanes * kChannels, out += lanes * kStep) {
        hn::Vec<decltype(d8)> red, green, blue;
        hn::LoadInterleaved3(d8, pixels, red, green, blue);
        auto largestFraction = hn::Zero(d32);
        const auto evenLuma = LumaOf(d16, even(red), even(green), even(blue), largestFraction);
        const auto oddLuma = LumaOf(d16, odd(red), odd(green), odd(blue), largestFraction);
        const auto luma = hn::BitCast(d8, hn::Or(evenLuma, hn::ShiftLeft<8>(oddLuma)));
        if (!hn::AllTrue(d32, hn::Lt(largestFraction, hn::Set(d32, kDoubtful))))
            PlainLuma<kTo>(pixels, lanes, out);
        else if constexpr (kTo == LumaTo::Pixels)
            hn::StoreInterleaved3(luma, luma, luma, d8, out);
        else
            hn::StoreU(luma, d8, out);
    }
    PlainLuma<kTo>(pixels, count, out);
}

#endif  // SIMD

void GreyPixels(std::uint8_t* pixels, std::size_t count) {
    Luma<LumaTo::Pixels>(pixels, count, pixels);
}
void LumaBytes(const std::uint8_t* pixels, std::size_t count, std::uint8_t* luma) {
    Luma<LumaTo::Bytes>(pixels, count, luma);
}

// Tables of red, green and blue, none of them null.
using TableSet = std::array<const std::uint8_t*, kChannels>;

// Four pixels at a time, so that three stores take the place of twelve.
void LookUpPixels(std::uint8_t* pixel, std::size_t count, const TableSet& tables) {
    const auto [red, green, blue] = tables;
    for (; count >= 4; count -= 4, pixel += 4 * kChannels) {
        const std::uint8_t found[4 * kChannels] = {
            red[pixel[0]],   green[pixel[1]], blue[pixel[2]],   red[pixel[3]],
            green[pixel[4]], blue[pixel[5]],  red[pixel[6]],    green[pixel[7]],
            blue[pixel[8]],  red[pixel[9]],   green[pixel[10]], blue[pixel[11]]};
        std::memcpy(pixel, found, sizeof found);
    }
    for (; count > 0; --count, pixel += kChannels) {
        pixel[0] = red[pixel[0]];
        pixel[1] = green[pixel[1]];
        pixel[2] = blue[pixel[2]];
    }
}

#if HWY_TARGET == HWY_AVX3_DL

// A table in registers.
struct WideTable {
    explicit WideTable(const std::uint8_t* table)
        : parts{_mm512_loadu_si512(table), _mm512_loadu_si512(table + 64),
                _mm512_loadu_si512(table + 128), _mm512_loadu_si512(table + 192)} {}

    HWY_INLINE __m512i operator()(__m512i index) const {
        const __m512i low = _mm512_permutex2var_epi8(parts[0], index, parts[1]);
        const __m512i high = _mm512_permutex2var_epi8(parts[2], index, parts[3]);
        return _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high);
    }
    __m512i parts[4];
};

// Bytes i of 64, counted from a red one, for which (i + phase) % 3 is `channel`.
constexpr std::uint64_t ChannelMask(int phase, int channel) {
    std::uint64_t mask = 0;
    for (int i = 0; i < 64; ++i)
        if ((i + phase) % 3 == channel) mask |= std::uint64_t{1} << i;
    return mask;
}

void LookUp(std::uint8_t* pixel, std::size_t count, const TableSet& tables) {
    const WideTable red(tables[0]), green(tables[1]), blue(tables[2]);
    constexpr std::size_t kGroup = 64;  // pixels in three vectors
    const auto vector = [&](std::uint8_t* at, std::uint64_t greens, std::uint64_t blues) {
        const __m512i index = _mm512_loadu_si512(at);
        __m512i found = _mm512_mask_blend_epi8(greens, red(index), green(index));
        found = _mm512_mask_blend_epi8(blues, found, blue(index));
        _mm512_storeu_si512(at, found);
    };
    for (; count >= kGroup; count -= kGroup, pixel += kGroup * kChannels) {
        vector(pixel, ChannelMask(0, 1), ChannelMask(0, 2));
        vector(pixel + 64, ChannelMask(1, 1), ChannelMask(1, 2));
        vector(pixel + 128, ChannelMask(2, 1), ChannelMask(2, 2));
    }
    LookUpPixels(pixel, count, tables);
}

#else

void LookUp(std::uint8_t* pixel, std::size_t count, const TableSet& tables) {
    LookUpPixels(pixel, count, tables);
}

#endif

}  // namespace lumo::imaging::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::imaging {

HWY_EXPORT(GreyPixels);
HWY_EXPORT(LumaBytes);
HWY_EXPORT(LookUp);

namespace {

bool RefuseEmpty(ConstImageView image) {
    if (image.IsEmpty()) SetLastError("the picture is empty");
    return image.IsEmpty();
}

const std::uint8_t* TableOf(const Lut* lut) {
    static constexpr Lut kIdentity = IdentityLut();
    return lut != nullptr ? lut->data() : kIdentity.data();
}

std::array<const std::uint8_t*, kChannels> TablesOf(const LutSet& luts) {
    return {TableOf(luts.red), TableOf(luts.green), TableOf(luts.blue)};
}

}  // namespace

void ComputeLumaOfRow(const std::uint8_t* pixels, std::span<std::uint8_t> luma) {
    HWY_DYNAMIC_DISPATCH(LumaBytes)(pixels, luma.size(), luma.data());
}

std::array<std::uint64_t, 256> LumaHistogram(ConstImageView image) {
    // Neighbours often share a value: with one table each addition would wait for the last.
    constexpr std::size_t kTables = 4;
    std::array<std::array<std::uint64_t, 256>, kTables> counts{};
    std::array<std::uint8_t, 4096> luma;
    const auto bytes = image.Bytes();
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t count = std::min(luma.size(), (bytes.size() - at) / kChannels);
        ComputeLumaOfRow(bytes.data() + at, std::span(luma).first(count));
        for (std::size_t i = 0; i < count; ++i) ++counts[i % kTables][luma[i]];
        at += count * kChannels;
    }
    for (std::size_t table = 1; table < kTables; ++table)
        for (std::size_t value = 0; value < 256; ++value) counts[0][value] += counts[table][value];
    return counts[0];
}

bool ApplyLUTsToImage(ImageView image, const LutSet& luts) {
    if (RefuseEmpty(image)) return false;
    if (!luts.red && !luts.green && !luts.blue) return true;
    ForPixelRuns(image, [&, tables = TablesOf(luts)](std::uint8_t* pixels, std::size_t count) {
        HWY_DYNAMIC_DISPATCH(LookUp)(pixels, count, tables);
    });
    return true;
}

bool ImageToGrayScale(ImageView image) {
    if (RefuseEmpty(image)) return false;
    ForPixelRuns(image, [](std::uint8_t* pixels, std::size_t count) {
        HWY_DYNAMIC_DISPATCH(GreyPixels)(pixels, count);
    });
    return true;
}

bool ToneGrayScale(ImageView image, const LutSet& luts) {
    if (RefuseEmpty(image)) return false;
    ForPixelRuns(image, [&, tables = TablesOf(luts)](std::uint8_t* pixels, std::size_t count) {
        constexpr std::size_t kBlock = 4096;  // stays in the first cache between the two steps
        for (std::size_t at = 0; at < count; at += kBlock) {
            const std::size_t size = std::min(kBlock, count - at);
            HWY_DYNAMIC_DISPATCH(GreyPixels)(pixels + at * kChannels, size);
            HWY_DYNAMIC_DISPATCH(LookUp)(pixels + at * kChannels, size, tables);
        }
    });
    return true;
}

bool ImageToGrayScale8Bit(ConstImageView image, std::span<std::uint8_t> grey) {
    if (RefuseEmpty(image)) return false;
    const auto width = static_cast<std::size_t>(image.Width());
    assert(grey.size() >= image.Extent().Area());
    ForRows(image.Height(), image.Stride(), [&](int first, int last) {
        for (int y = first; y < last; ++y)
            ComputeLumaOfRow(image.Row(y),
                             grey.subspan(static_cast<std::size_t>(y) * width, width));
    });
    return true;
}

bool RGBToBGR(ImageView image) {
    if (RefuseEmpty(image)) return false;
    ForPixelRuns(image, [](std::uint8_t* pixels, std::size_t count) {
        for (; count > 0; --count, pixels += kChannels) std::swap(pixels[0], pixels[2]);
    });
    return true;
}

}  // namespace lumo::imaging
#endif  // HWY_ONCE
