#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/image.h"
#include "ops/filters/disc.h"

namespace lumo::ops::filters {

/// Bytes of scratch memory that MedianRows needs.
std::size_t MedianScratchSize();

/// The medians of the rows first to last - 1. Where `wanted` is given, one byte for each pixel of
/// the picture, the pixels with 0 are copied. The scratch memory is aligned to 64 bytes.
void MedianRows(imaging::ConstImageView source, imaging::ImageView target, const Disc& disc,
                const std::uint8_t* wanted, int first, int last, std::uint8_t* scratch);

}  // namespace lumo::ops::filters
