#include "imaging/measures.h"

#include <array>
#include <bit>
#include <cstring>
#include <numeric>

#include "imaging/simd.h"

namespace lumo::imaging {
namespace {

constexpr std::size_t kColours = std::size_t{1} << 24;

LUMO_SIMD_CLONES
std::uint64_t SumOfBytes(const std::uint8_t* bytes, std::size_t count) {
    std::uint64_t total = 0;
    // Blocks whose sum fits into 32 bits let the compiler add many bytes at once.
    constexpr std::size_t kBlock = std::size_t{1} << 20;
    for (std::size_t begin = 0; begin < count; begin += kBlock) {
        const std::size_t end = begin + kBlock < count ? begin + kBlock : count;
        std::uint32_t sum = 0;
        for (std::size_t i = begin; i < end; ++i) sum += bytes[i];
        total += sum;
    }
    return total;
}

}  // namespace

int CountImageColors(ConstImageView image) {
    if (image.IsEmpty()) return 0;
    const PixelBuffer seenBytes = PixelBuffer::TryAllocate(kColours / 8);
    if (!seenBytes) return 0;
    auto* const seen = reinterpret_cast<std::uint64_t*>(seenBytes.Data());
    std::memset(seen, 0, kColours / 8);
    const std::uint8_t* p = image.Bytes().data();
    const std::uint8_t* const end = p + image.Bytes().size();
    for (; p != end; p += kChannels) {
        const std::uint32_t colour = p[0] | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16;
        seen[colour >> 6] |= std::uint64_t{1} << (colour & 63U);
    }
    int count = 0;
    for (std::size_t i = 0; i < kColours / 64; ++i) count += std::popcount(seen[i]);
    return count;
}

double ImageBrightness(ConstImageView image) {
    if (image.IsEmpty()) return 0.0;
    const auto bytes = image.Bytes();
    // Whole numbers below 2^53 add without rounding, in whatever order.
    const auto sum = static_cast<double>(SumOfBytes(bytes.data(), bytes.size()));
    const double mean = sum / static_cast<double>(image.Extent().Area());
    return 0.299 * mean + 0.587 * 0 + 0.114 * 0;
}

double BorderBrightness(ConstImageView image) {
    if (image.IsEmpty()) return 0.0;
    const int right = image.Width() - 1, bottom = image.Height() - 1;
    const std::array corners{image.Pixel(0, 0), image.Pixel(right, 0), image.Pixel(0, bottom),
                             image.Pixel(right, bottom)};
    double red = 0, green = 0, blue = 0;
    for (const Rgb corner : corners) {
        red += corner.red;
        green += corner.green;
        blue += corner.blue;
    }
    return 0.299 * (red / 4) + 0.587 * (green / 4) + 0.114 * (blue / 4);
}

}  // namespace lumo::imaging
