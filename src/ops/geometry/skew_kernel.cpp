#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "imaging/parallel.h"
#include "ops/geometry/skew.h"

namespace lumo::ops::geometry {
namespace {

using imaging::ConstImageView;
using imaging::ImageView;
using imaging::kChannels;

// Columns that are worked on together, so that what one row of the target reads is still in the
// cache when the next one reads beside it.
constexpr int kStripWidth = 256;

// Displacement of column or row `index` of `count`. With a single one there is nothing to divide
// by: it stays where it is.
std::int64_t Displacement(const SkewParams& params, int index, int count) {
    const std::int64_t d = count > 1 ? params.most * index / (count - 1) : 0;
    return params.negative ? d : params.most - d;
}

void SkewRows(ConstImageView source, const SkewParams& params, ImageView target) {
    for (int y = 0; y < source.Height(); ++y) {
        const auto x = static_cast<int>(Displacement(params, y, source.Height()));
        std::memcpy(target.At(x, y), source.Row(y), source.Stride());
    }
}

// Columns [first, last) of the source into the rows of the target from `top` to `bottom`.
void SkewColumns(ConstImageView source, const SkewParams& params, int first, int last, int top,
                 int bottom, ImageView target) {
    const int count = last - first, height = source.Height();
    std::array<std::int64_t, kStripWidth> starts;     // row of the target where a column begins
    std::array<std::ptrdiff_t, kStripWidth> offsets;  // from there back to its pixel in row 0
    for (int i = 0; i < count; ++i) {
        const auto index = static_cast<std::size_t>(i);
        starts[index] = Displacement(params, first + i, source.Width());
        offsets[index] = std::ptrdiff_t{kChannels} * (first + i) -
                         static_cast<std::ptrdiff_t>(starts[index]) *
                             static_cast<std::ptrdiff_t>(source.Stride());
    }
    // The starts rise or fall from column to column, so those with a pixel in row y are neighbours.
    const auto* const begin = starts.data();
    const auto* const end = begin + count;
    for (int y = top; y < bottom; ++y) {
        const auto begun = [&](std::int64_t start) { return start <= y; };
        const auto ended = [&](std::int64_t start) { return start + height <= y; };
        const auto* from = params.negative ? std::partition_point(begin, end, ended)
                                           : std::partition_point(begin, end, std::not_fn(begun));
        const auto* const to = params.negative
                                   ? std::partition_point(from, end, begun)
                                   : std::partition_point(from, end, std::not_fn(ended));
        if (from == to) continue;
        const std::uint8_t* const row =
            source.Bytes().data() +
            static_cast<std::ptrdiff_t>(y) * static_cast<std::ptrdiff_t>(source.Stride());
        std::uint8_t* out = target.At(first + static_cast<int>(from - begin), y);
        const std::ptrdiff_t* offset = offsets.data() + (from - begin);
        const std::ptrdiff_t* const lastOffset = offsets.data() + (to - begin) - 1;
        // Four bytes at once but for the last pixel: the fourth is overwritten by the next one.
        for (; offset != lastOffset; ++offset, out += kChannels) std::memcpy(out, row + *offset, 4);
        std::memcpy(out, row + *offset, kChannels);
    }
}

}  // namespace

SkewParams SkewOf(imaging::Size source, int horizontalDegrees, int verticalDegrees) {
    const bool vertical = horizontalDegrees == 0;
    const int degrees = vertical ? verticalDegrees : horizontalDegrees;
    const int side = vertical ? source.width : source.height;
    const double angle = degrees * 3.1415926535 / 180.0;
    const double offset = std::trunc(std::tan(angle) * side);
    constexpr double kBeyond = 1e12;  // no side of a picture; keeps the sums within 64 bits
    const auto most = static_cast<std::int64_t>(std::min(std::fabs(offset), kBeyond));
    // One column or row has no neighbour to be displaced against.
    return {vertical, degrees < 0, side > 1 ? most : 0};
}

void SkewImage(ConstImageView source, const SkewParams& params, ImageView target) {
    if (!params.vertical) return SkewRows(source, params, target);
    imaging::ForRows(target.Height(), target.Stride(), [&](int top, int bottom) {
        for (int first = 0; first < source.Width(); first += kStripWidth)
            SkewColumns(source, params, first, std::min(first + kStripWidth, source.Width()), top,
                        bottom, target);
    });
}

}  // namespace lumo::ops::geometry
