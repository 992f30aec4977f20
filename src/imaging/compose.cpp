#include "imaging/compose.h"

#include <algorithm>
#include <cstring>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/simd.h"

namespace lumo::imaging {
namespace {

Rect Intersection(Rect rect, Size size) {
    return {std::max(rect.left, 0), std::max(rect.top, 0), std::min(rect.right, size.width),
            std::min(rect.bottom, size.height)};
}

bool HasPixels(Rect rect) {
    return rect.left < rect.right && rect.top < rect.bottom;
}

constexpr std::uint32_t kWhole = 65536;

LUMO_SIMD_CLONES void MixRow(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes,
                             std::uint32_t share) {
    for (std::size_t i = 0; i < bytes; ++i)
        to[i] = static_cast<std::uint8_t>(
            (from[i] * share + to[i] * (kWhole - share) + kWhole / 2) / kWhole);
}

}  // namespace

bool FillSolidRect(ImageView target, Rect rect, Rgb colour) {
    if (target.IsEmpty()) {
        SetLastError("there is no picture to fill");
        return false;
    }
    const Rect inside = Intersection(rect, target.Extent());
    if (!HasPixels(inside)) return true;
    const std::size_t bytes = StrideOf({inside.right - inside.left, 1});
    std::uint8_t* const top = target.At(inside.left, inside.top);
    const std::uint8_t pixel[kChannels] = {colour.red, colour.green, colour.blue};
    std::memcpy(top, pixel, kChannels);
    for (std::size_t done = kChannels; done < bytes; done *= 2)
        std::memcpy(top + done, top, std::min(done, bytes - done));
    ForRows(inside.bottom - inside.top - 1, bytes, [&](int first, int last) {
        for (int y = first; y < last; ++y)
            std::memcpy(target.At(inside.left, inside.top + 1 + y), top, bytes);
    });
    return true;
}

bool OverlayImage(ImageView destination, ConstImageView source, int x, int y, double opacity) {
    if (destination.IsEmpty() || source.IsEmpty()) {
        SetLastError("there is no picture to overlay");
        return false;
    }
    // 64 bits: a place far outside plus a size may leave 32.
    const auto clip = [](std::int64_t at, std::int64_t extent, std::int64_t limit) {
        const std::int64_t begin = std::max<std::int64_t>(at, 0);
        const std::int64_t end = std::min(at + extent, limit);
        return std::pair(static_cast<int>(begin), static_cast<int>(std::max<std::int64_t>(end, 0)));
    };
    const auto [left, right] = clip(x, source.Width(), destination.Width());
    const auto [top, bottom] = clip(y, source.Height(), destination.Height());
    if (!HasPixels({left, top, right, bottom})) return true;
    const std::size_t bytes = StrideOf({right - left, 1});
    const auto share = static_cast<std::uint32_t>(std::clamp(opacity, 0.0, 1.0) * kWhole + 0.5);
    ForRows(bottom - top, 2 * bytes, [&, firstX = left, firstY = top](int first, int last) {
        for (int row = firstY + first; row < firstY + last; ++row) {
            std::uint8_t* const to = destination.At(firstX, row);
            const std::uint8_t* const from = source.At(firstX - x, row - y);
            if (share == kWhole)
                std::memcpy(to, from, bytes);
            else
                MixRow(to, from, bytes, share);
        }
    });
    return true;
}

}  // namespace lumo::imaging
