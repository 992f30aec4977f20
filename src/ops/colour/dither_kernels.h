#pragma once

// Error diffusion over a picture.
//
// A pixel needs what its left neighbour leaves and what the three pixels above it leave, so a row
// can follow two columns behind the one above. Eight rows go abreast in this way, and every sum has
// the same terms in the same order as row by row.

#include <cstddef>
#include <cstdint>

namespace lumo::ops::colour::kernels {

/// Doubles of scratch memory that Dither needs for that width.
std::size_t DitherScratch(std::size_t width);

/// DitherImage (bw_dither.h) of rows without padding.
void Dither(std::uint8_t* pixels, std::size_t width, std::size_t height, double* scratch);

}  // namespace lumo::ops::colour::kernels
