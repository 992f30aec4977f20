#pragma once

#include <cstdint>
#include <cstdlib>

#include "imaging/image.h"

namespace lumo::bench {

inline constexpr imaging::Size k12Megapixels{4000, 3000};

/// A gradient with grain, as a photograph has: cheap to make, the same every time.
inline imaging::Image NoisyImage(imaging::Size size) {
    auto image = imaging::Image::TryCreate(size);
    if (!image) std::abort();
    std::uint32_t state = 1;
    for (int y = 0; y < size.height; ++y) {
        std::uint8_t* row = image->View().Row(y);
        for (int x = 0; x < size.width; ++x)
            for (int c = 0; c < 3; ++c) {
                state = state * 1664525U + 1013904223U;
                const int base = (x * 120 / size.width + y * 100 / size.height + c * 10);
                *row++ = static_cast<std::uint8_t>(base + static_cast<int>(state >> 28));
            }
    }
    return std::move(*image);
}

}  // namespace lumo::bench
