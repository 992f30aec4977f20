#include "imaging/colour_key.h"

#include <array>

#include "imaging/last_error.h"
#include "imaging/pixel_runs.h"
#include "imaging/simd.h"

// The order of lanes after a narrowing is what these loops build on.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/colour_key.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace lumo::imaging::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

std::size_t MaskKeyVectors(const std::uint8_t*, std::size_t, const ColourKey&, std::uint8_t*) {
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// Sums of squares in 16 bits that saturate; the farthest must be less than 65535.
template <class D16>
struct NarrowSums {
    explicit NarrowSums(const ColourKey& key)
        : beyond(hn::Set(D16(), static_cast<std::uint16_t>(key.farthest + 1))) {}

    // 1 where near, else 0: what the sum leaves of one more than the farthest is at least 1.
    template <class V>
    V Near(V red, V green, V blue) const {
        const V sum = hn::SaturatedAdd(hn::SaturatedAdd(red, green), blue);
        return hn::Min(hn::SaturatedSub(beyond, sum), hn::Set(D16(), std::uint16_t{1}));
    }
    hn::Vec<D16> beyond;
};

// The same in 32 bits, for any farthest.
template <class D16>
struct WideSums {
    using D32 = hn::RepartitionToWide<D16>;
    explicit WideSums(const ColourKey& key)
        : beyond(hn::Set(hn::RebindToSigned<D32>(), key.farthest + 1)) {}

    template <class V>
    V Near(V red, V green, V blue) const {
        const hn::Half<D16> half;
        const hn::RebindToSigned<D32> d32;
        const auto wide = [&](auto a, auto b, auto c) {
            const auto sum = hn::Add(hn::Add(hn::PromoteTo(d32, a), hn::PromoteTo(d32, b)),
                                     hn::PromoteTo(d32, c));
            const auto one = hn::Set(d32, 1);
            const auto left = hn::Min(hn::Max(hn::Sub(beyond, sum), hn::Zero(d32)), one);
            return hn::DemoteTo(half, left);
        };
        return hn::Combine(
            D16(),
            wide(hn::UpperHalf(half, red), hn::UpperHalf(half, green), hn::UpperHalf(half, blue)),
            wide(hn::LowerHalf(half, red), hn::LowerHalf(half, green), hn::LowerHalf(half, blue)));
    }
    hn::Vec<hn::RebindToSigned<D32>> beyond;
};

template <template <class> class SumsOf>
std::size_t MaskKeyBy(const std::uint8_t* pixels, std::size_t count, const ColourKey& key,
                      std::uint8_t* mask) {
    const hn::ScalableTag<std::uint8_t> d8;
    const hn::Repartition<std::uint16_t, decltype(d8)> d16;
    const hn::RebindToSigned<decltype(d16)> di16;
    const hn::Half<decltype(d8)> half8;
    const auto keyRed = hn::Set(d8, key.colour.red);
    const auto keyGreen = hn::Set(d8, key.colour.green);
    const auto keyBlue = hn::Set(d8, key.colour.blue);
    const SumsOf<hn::Repartition<std::uint16_t, hn::ScalableTag<std::uint8_t>>> sums(key);
    const auto distance = [](auto a, auto b) {
        return hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a));
    };
    const auto square = [&](auto v) {
        const auto wide = hn::PromoteTo(d16, v);
        return hn::Mul(wide, wide);
    };
    const auto lower = [&](auto v) { return square(hn::LowerHalf(half8, v)); };
    const auto upper = [&](auto v) { return square(hn::UpperHalf(half8, v)); };
    const auto narrow = [&](auto v) { return hn::DemoteTo(half8, hn::BitCast(di16, v)); };
    const std::size_t step = hn::Lanes(d8);
    std::size_t done = 0;
    for (; done + step <= count; done += step) {
        hn::Vec<decltype(d8)> red, green, blue;
        hn::LoadInterleaved3(d8, pixels + 3 * done, red, green, blue);
        red = distance(red, keyRed);
        green = distance(green, keyGreen);
        blue = distance(blue, keyBlue);
        const auto flags = hn::Combine(d8, narrow(sums.Near(upper(red), upper(green), upper(blue))),
                                       narrow(sums.Near(lower(red), lower(green), lower(blue))));
        const auto bytes = hn::Sub(hn::Zero(d8), flags);
        hn::StoreInterleaved3(bytes, bytes, bytes, d8, mask + 3 * done);
    }
    return done;
}

// Gives the number of pixels that are done; a rest of less than a vector stays.
std::size_t MaskKeyVectors(const std::uint8_t* pixels, std::size_t count, const ColourKey& key,
                           std::uint8_t* mask) {
    return key.farthest < 0xFFFF ? MaskKeyBy<NarrowSums>(pixels, count, key, mask)
                                 : MaskKeyBy<WideSums>(pixels, count, key, mask);
}

#endif

}  // namespace lumo::imaging::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace lumo::imaging {
namespace {

HWY_EXPORT(MaskKeyVectors);

constexpr std::size_t kPart = 512;  // pixels whose mask is made at once

LUMO_SIMD_CLONES void Select(const std::uint8_t* from, const std::uint8_t* mask, std::size_t bytes,
                             std::uint8_t* to) {
    for (std::size_t i = 0; i < bytes; ++i)
        to[i] = static_cast<std::uint8_t>((to[i] & mask[i]) | (from[i] & ~mask[i]));
}

}  // namespace

void MaskKey(const std::uint8_t* pixels, std::size_t count, const ColourKey& key,
             std::uint8_t* mask) {
    std::size_t done = HWY_DYNAMIC_DISPATCH(MaskKeyVectors)(pixels, count, key, mask);
    for (; done < count; ++done) {
        const std::uint8_t value = key.Matches(pixels + 3 * done) ? 255 : 0;
        for (std::size_t c = 0; c < 3; ++c) mask[3 * done + c] = value;
    }
}

void CopyUnmasked(const std::uint8_t* from, const std::uint8_t* mask, std::size_t bytes,
                  std::uint8_t* to) {
    Select(from, mask, bytes, to);
}

void SnapToKey(ImageView image, const ColourKey& key) {
    std::array<std::uint8_t, kPart * kChannels> flat;
    for (std::size_t i = 0; i < flat.size(); i += kChannels) {
        flat[i] = key.colour.red;
        flat[i + 1] = key.colour.green;
        flat[i + 2] = key.colour.blue;
    }
    ForPixelRuns(image, [&](std::uint8_t* pixels, std::size_t count) {
        std::array<std::uint8_t, kPart * kChannels> mask;
        for (; count > 0;) {
            const std::size_t part = std::min(count, kPart);
            MaskKey(pixels, part, key, mask.data());
            for (std::size_t i = 0; i < part * kChannels; ++i)
                mask[i] = static_cast<std::uint8_t>(~mask[i]);
            Select(flat.data(), mask.data(), part * kChannels, pixels);
            pixels += part * kChannels;
            count -= part;
        }
    });
}

bool OverlayRGBTrans(ImageView image, ConstImageView overlay, const ColourKey& key) {
    if (image.IsEmpty() || image.Extent() != overlay.Extent()) {
        SetLastError("the pictures differ in size");
        return false;
    }
    ForPixelRuns(image, [&](std::uint8_t* pixels, std::size_t count) {
        std::array<std::uint8_t, kPart * kChannels> mask;
        const std::uint8_t* over = overlay.Row(0) + (pixels - image.Row(0));
        for (; count > 0;) {
            const std::size_t part = std::min(count, kPart);
            MaskKey(over, part, key, mask.data());
            Select(over, mask.data(), part * kChannels, pixels);
            pixels += part * kChannels;
            over += part * kChannels;
            count -= part;
        }
    });
    return true;
}

}  // namespace lumo::imaging

#endif  // HWY_ONCE
