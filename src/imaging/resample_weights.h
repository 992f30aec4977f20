#pragma once

// The weights of one axis: how much each source row (or column) gives to each target one.

#include <cstdint>
#include <optional>

#include "imaging/pixel_buffer.h"
#include "imaging/resample.h"

namespace lumo::imaging {

/// Target position i is the sum of weight k times source position `First(i) + k`, for k below
/// `taps`; all of these positions lie inside the source. The weights are integers and add up to
/// exactly 1 << bits at every position, so that a flat picture stays flat. They are mirrored:
/// position i uses the weights of position target - 1 - i in reverse, so that a mirrored picture
/// gives the mirrored result.
struct AxisWeights {
    int source = 0;
    int target = 0;
    int taps = 0;
    int stride = 0;  // taps, rounded up to even; the spare weight is 0
    int bits = 0;
    std::int64_t gain = 0;  // largest sum of the absolute weights of a position

    int First(int i) const { return first[i]; }
    const std::int16_t* Weights(int i) const {
        return weights + static_cast<std::size_t>(i) * static_cast<std::size_t>(stride);
    }

    std::int32_t* first = nullptr;    // in `memory`
    std::int16_t* weights = nullptr;  // in `memory`
    PixelBuffer memory;
};

/// The weights that take `source` positions to `target` ones (both positive) with any filter but
/// Nearest, at the largest `bits` up to `maxBits` (at least 14, at most 22) with which every
/// weight fits in 16 bits. When shrinking, the filter is as many times wider as the picture gets
/// smaller; what it would read outside of the source is read from the edge. Empty, with
/// LastError() set, if there is no memory.
std::optional<AxisWeights> BuildAxisWeights(int source, int target, ResampleFilter filter,
                                            int maxBits);

}  // namespace lumo::imaging
