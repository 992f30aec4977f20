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

#include "imaging/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace lumo::imaging::HWY_NAMESPACE {

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

// Bytes i of 64, counted from a red one, for which (i + phase) % 3 is `channel`.
constexpr std::uint64_t ChannelMask(int phase, int channel) {
    std::uint64_t mask = 0;
    for (int i = 0; i < 64; ++i)
        if ((i + phase) % 3 == channel) mask |= std::uint64_t{1} << i;
    return mask;
}

void LookUp(std::uint8_t* pixel, std::size_t count, const TableSet& tables) {
    const ByteTable red(tables[0]), green(tables[1]), blue(tables[2]);
    constexpr std::size_t kGroup = 64;  // pixels in three vectors
    const auto vector = [&](std::uint8_t* at, std::uint64_t greens, std::uint64_t blues) {
        const ByteVector index = hn::LoadU(Bytes(), at);
        __m512i found = _mm512_mask_blend_epi8(greens, red(index).raw, green(index).raw);
        found = _mm512_mask_blend_epi8(blues, found, blue(index).raw);
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

#if HWY_TARGET == HWY_SCALAR

void GreyPixels(std::uint8_t* pixel, std::size_t count) {
    for (; count > 0; --count, pixel += kChannels)
        std::memset(pixel, ComputeLuma(pixel[0], pixel[1], pixel[2]), kChannels);
}

void LumaBytes(const std::uint8_t* pixel, std::size_t count, std::uint8_t* luma) {
    for (; count > 0; --count, pixel += kChannels)
        *luma++ = ComputeLuma(pixel[0], pixel[1], pixel[2]);
}

void TonePixels(std::uint8_t* pixel, std::size_t count, const TableSet& tables) {
    for (; count > 0; --count, pixel += kChannels) {
        const std::uint8_t luma = ComputeLuma(pixel[0], pixel[1], pixel[2]);
        for (std::size_t c = 0; c < kChannels; ++c) pixel[c] = tables[c][luma];
    }
}

void SwapOuter(std::uint8_t* pixel, std::size_t count) {
    for (; count > 0; --count, pixel += kChannels) std::swap(pixel[0], pixel[2]);
}

#else

void GreyPixels(std::uint8_t* pixels, std::size_t count) {
    ForPixelVectors(pixels, count, [](ByteVector& red, ByteVector& green, ByteVector& blue) {
        red = green = blue = Luma(red, green, blue);
    });
}

void LumaBytes(const std::uint8_t* pixels, std::size_t count, std::uint8_t* luma) {
    ReadPixelVectors(pixels, count,
                     [&](ByteVector red, ByteVector green, ByteVector blue, std::size_t lanes) {
                         const ByteVector y = Luma(red, green, blue);
                         if (lanes == hn::Lanes(Bytes())) {
                             hn::StoreU(y, Bytes(), luma);
                         } else {
                             HWY_ALIGN std::uint8_t rest[kMaxBytes];
                             hn::Store(y, Bytes(), rest);
                             std::memcpy(luma, rest, lanes);
                         }
                         luma += lanes;
                     });
}

void TonePixels(std::uint8_t* pixels, std::size_t count, const TableSet& tables) {
    const ByteTable ofRed(tables[0]), ofGreen(tables[1]), ofBlue(tables[2]);
    ForPixelVectors(pixels, count, [&](ByteVector& red, ByteVector& green, ByteVector& blue) {
        const ByteVector y = Luma(red, green, blue);
        red = ofRed(y);
        green = ofGreen(y);
        blue = ofBlue(y);
    });
}

void SwapOuter(std::uint8_t* pixels, std::size_t count) {
    ForPixelVectors(pixels, count,
                    [](ByteVector& red, ByteVector&, ByteVector& blue) { std::swap(red, blue); });
}

#endif

}  // namespace lumo::imaging::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::imaging {

HWY_EXPORT(GreyPixels);
HWY_EXPORT(LumaBytes);
HWY_EXPORT(LookUp);
HWY_EXPORT(TonePixels);
HWY_EXPORT(SwapOuter);

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
        HWY_DYNAMIC_DISPATCH(TonePixels)(pixels, count, tables);
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
        HWY_DYNAMIC_DISPATCH(SwapOuter)(pixels, count);
    });
    return true;
}

}  // namespace lumo::imaging
#endif  // HWY_ONCE
