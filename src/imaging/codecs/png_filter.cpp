#include "imaging/codecs/png_filter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "imaging/image.h"
#include "imaging/simd.h"

namespace lumo::imaging::codecs {
namespace {

constexpr int kPixel = kChannels;

/// How far a difference is from zero, both ways round.
std::uint8_t Weight(std::uint8_t difference) {
    return std::min(difference, static_cast<std::uint8_t>(-difference));
}

// Each writes the differences and gives the sum of their weights. `row` and `above` may be read one
// pixel before their start.
LUMO_SIMD_CLONES std::uint64_t Plain(const std::uint8_t* row, const std::uint8_t*,
                                     std::size_t count, std::uint8_t* out) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = row[i];
        sum += Weight(out[i]);
    }
    return sum;
}

LUMO_SIMD_CLONES std::uint64_t Sub(const std::uint8_t* row, const std::uint8_t*, std::size_t count,
                                   std::uint8_t* out) {
    const std::uint8_t* left = row - kPixel;
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<std::uint8_t>(row[i] - left[i]);
        sum += Weight(out[i]);
    }
    return sum;
}

LUMO_SIMD_CLONES std::uint64_t Up(const std::uint8_t* row, const std::uint8_t* above,
                                  std::size_t count, std::uint8_t* out) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<std::uint8_t>(row[i] - above[i]);
        sum += Weight(out[i]);
    }
    return sum;
}

LUMO_SIMD_CLONES std::uint64_t Average(const std::uint8_t* row, const std::uint8_t* above,
                                       std::size_t count, std::uint8_t* out) {
    const std::uint8_t* left = row - kPixel;
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<std::uint8_t>(row[i] - (left[i] + above[i]) / 2);
        sum += Weight(out[i]);
    }
    return sum;
}

LUMO_SIMD_CLONES std::uint64_t Paeth(const std::uint8_t* row, const std::uint8_t* above,
                                     std::size_t count, std::uint8_t* out) {
    const std::uint8_t* left = row - kPixel;
    const std::uint8_t* corner = above - kPixel;
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const auto a = static_cast<std::int16_t>(left[i]);
        const auto b = static_cast<std::int16_t>(above[i]);
        const auto c = static_cast<std::int16_t>(corner[i]);
        const auto fromLeft = static_cast<std::int16_t>(std::abs(b - c));
        const auto fromAbove = static_cast<std::int16_t>(std::abs(a - c));
        const auto fromCorner = static_cast<std::int16_t>(std::abs(a + b - 2 * c));
        const std::int16_t other = fromAbove <= fromCorner ? b : c;
        const std::int16_t guess = fromLeft <= std::min(fromAbove, fromCorner) ? a : other;
        out[i] = static_cast<std::uint8_t>(row[i] - guess);
        sum += Weight(out[i]);
    }
    return sum;
}

}  // namespace

PngRowFilter::PngRowFilter(std::size_t rowBytes, Choice choice)
    : rowBytes_(rowBytes),
      choice_(choice),
      current_(rowBytes + kPixel),
      above_(rowBytes + kPixel),
      trial_(rowBytes),
      best_(rowBytes) {}

void PngRowFilter::StartPass() {
    std::ranges::fill(current_, std::uint8_t{0});
}

void PngRowFilter::Filter(const std::uint8_t* row, std::uint8_t* out) {
    if (choice_ == Choice::None) {
        out[0] = 0;
        std::memcpy(out + 1, row, rowBytes_);
        return;
    }
    std::swap(current_, above_);
    std::memcpy(current_.data() + kPixel, row, rowBytes_);
    using Kernel =
        std::uint64_t (*)(const std::uint8_t*, const std::uint8_t*, std::size_t, std::uint8_t*);
    constexpr Kernel kKernels[] = {Plain, Sub, Up, Average, Paeth};  // numbered as in the file
    std::uint64_t least = UINT64_MAX;
    for (std::uint8_t filter = 0; filter < 5; ++filter) {
        const std::uint64_t sum = kKernels[filter](current_.data() + kPixel, above_.data() + kPixel,
                                                   rowBytes_, trial_.data());
        if (sum >= least) continue;
        least = sum;
        out[0] = filter;
        std::swap(trial_, best_);
    }
    std::memcpy(out + 1, best_.data(), rowBytes_);
}

}  // namespace lumo::imaging::codecs
