#pragma once

#include <array>
#include <span>

namespace lumo::imaging::codecs {

/// The rows of one pass over a picture.
struct GifPass {
    int first, step;
};
inline constexpr std::array<GifPass, 1> kGifInOrder{{{0, 1}}};
inline constexpr std::array<GifPass, 4> kGifInterlaced{{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};

/// The order in which a file holds the rows.
constexpr std::span<const GifPass> GifPassesOf(bool interlaced) {
    return interlaced ? std::span<const GifPass>(kGifInterlaced)
                      : std::span<const GifPass>(kGifInOrder);
}

}  // namespace lumo::imaging::codecs
