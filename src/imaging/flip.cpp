#include "imaging/flip.h"

#include <algorithm>
#include <cstring>

#include "imaging/last_error.h"
#include "imaging/parallel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/flip.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

#include "imaging/reverse_pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace lumo::imaging::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Swaps a vector of pixels of either end, reversed, until less than two are left in the middle.
void ReverseRow(std::uint8_t* row, std::size_t width) {
    std::size_t left = 0, right = width;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<std::uint8_t> d;
    const std::size_t lanes = hn::Lanes(d);
    for (; right - left >= 2 * lanes; left += lanes, right -= lanes) {
        std::uint8_t* a = row + left * kChannels;
        std::uint8_t* b = row + (right - lanes) * kChannels;
        const auto first = LoadReversed(d, a), last = LoadReversed(d, b);
        StorePixels(d, last, a);
        StorePixels(d, first, b);
    }
#endif
    for (; right - left >= 2; ++left, --right)
        std::swap_ranges(row + left * kChannels, row + (left + 1) * kChannels,
                         row + (right - 1) * kChannels);
}

}  // namespace lumo::imaging::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::imaging {

HWY_EXPORT(ReverseRow);

namespace {
bool RefuseEmpty(ConstImageView image) {
    if (image.IsEmpty()) SetLastError("there is no picture to flip");
    return image.IsEmpty();
}
}  // namespace

bool HorizontalFlipImage(ImageView image) {
    if (RefuseEmpty(image)) return false;
    const auto width = static_cast<std::size_t>(image.Width());
    ForRows(image.Height(), 2 * image.Stride(), [&](int first, int last) {
        for (int y = first; y < last; ++y) HWY_DYNAMIC_DISPATCH(ReverseRow)(image.Row(y), width);
    });
    return true;
}

bool VerticalFlipImage(ImageView image) {
    if (RefuseEmpty(image)) return false;
    constexpr std::size_t kBlock = 4096;
    const std::size_t bytes = image.Stride();
    ForRows(image.Height() / 2, 4 * bytes, [&](int first, int last) {
        std::uint8_t block[kBlock];
        for (int y = first; y < last; ++y) {
            std::uint8_t* above = image.Row(y);
            std::uint8_t* below = image.Row(image.Height() - 1 - y);
            for (std::size_t at = 0; at < bytes; at += kBlock) {
                const std::size_t count = std::min(kBlock, bytes - at);
                std::memcpy(block, above + at, count);
                std::memcpy(above + at, below + at, count);
                std::memcpy(below + at, block, count);
            }
        }
    });
    return true;
}

}  // namespace lumo::imaging
#endif  // HWY_ONCE
