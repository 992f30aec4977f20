#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "imaging/codecs/decoders.h"

namespace lumo::fuzz {

/// Any bytes give a picture inside the limits, with all its pixels there to be read, or a reason.
template <class Decoder>
void CheckDecoder(Decoder decode, const std::uint8_t* data, std::size_t size) {
    constexpr imaging::codecs::DecodeOptions kOptions{
        .limits = {.maxSide = 5000, .maxPixels = 1'000'000, .maxMemory = 32U << 20}};
    const auto result = decode(imaging::codecs::ByteView(data, size), kOptions);
    if (!result) {
        if (result.Message().empty()) std::abort();
        return;
    }
    const imaging::ConstImageView view = result->image.View();
    if (view.IsEmpty() || view.Width() > 5000 || view.Height() > 5000 ||
        view.Extent().Area() > 1'000'000)
        std::abort();
    std::uint64_t sum = 0;
    for (const std::uint8_t byte : view.Bytes()) sum += byte;
    if (sum > view.Bytes().size() * 255) std::abort();
}

}  // namespace lumo::fuzz
