#include <hwy/cache_control.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <span>
#include <vector>

#include "imaging/parallel.h"
#include "ops/geometry/skew.h"

namespace lumo::ops::geometry {
namespace {

using imaging::ConstImageView;
using imaging::ImageView;
using imaging::kChannels;

// Pieces that are worked on together: each reads from a row of its own, and what one row of the
// target reads of them is still in the cache when the next one reads beside it.
constexpr std::size_t kStripPieces = 256;

constexpr int kBlock = 16;             // bytes copied at once
constexpr int kRowsAhead = 8;          // the pixels to come are asked for so many rows before,
constexpr int kPrefetchedPixels = 16;  // so many at once: within a cache line

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

// Neighbouring columns that are displaced alike: of each row of the source they are one run.
struct Piece {
    std::ptrdiff_t offset = 0;  // from a row of the target in the source's stride to their pixels
    std::int64_t start = 0;     // row of the target where the columns begin
    int first = 0;
    int bytes = 0;
    bool asksAhead = false;  // one piece in a cache line asks for the pixels to come
};

std::vector<Piece> PiecesOf(ConstImageView source, const SkewParams& params) {
    std::vector<Piece> pieces;
    for (int x = 0; x < source.Width(); ++x) {
        const std::int64_t start = Displacement(params, x, source.Width());
        if (pieces.empty() || pieces.back().start != start)
            pieces.push_back(
                {std::ptrdiff_t{kChannels} * x - static_cast<std::ptrdiff_t>(start) *
                                                     static_cast<std::ptrdiff_t>(source.Stride()),
                 start, x});
        pieces.back().bytes += kChannels;
        pieces.back().asksAhead |= x % kPrefetchedPixels == 0;
    }
    return pieces;
}

// Copies a run; up to kBlock - 1 bytes behind it are written with what lies behind its pixels.
void CopyBlocks(const std::uint8_t* from, int bytes, std::uint8_t* to) {
    if (bytes <= 4) {
        std::memcpy(to, from, 4);
        return;
    }
    for (int done = 0; done < bytes; done += kBlock) std::memcpy(to + done, from + done, kBlock);
}

// A strip of neighbouring pieces into the rows of the target from `top` to `bottom`.
void SkewStrip(ConstImageView source, std::span<const Piece> strip, bool falling, int top,
               int bottom, ImageView target) {
    const int height = source.Height();
    const auto stride = static_cast<std::ptrdiff_t>(source.Stride());
    const std::uint8_t* const pixels = source.Bytes().data();
    // The starts rise or fall from piece to piece, so those with pixels in row y are neighbours.
    for (int y = top; y < bottom; ++y) {
        const auto begun = [&](const Piece& piece) { return piece.start <= y; };
        const auto ended = [&](const Piece& piece) { return piece.start + height <= y; };
        const auto from =
            falling ? std::partition_point(strip.begin(), strip.end(), ended)
                    : std::partition_point(strip.begin(), strip.end(), std::not_fn(begun));
        const auto to = falling ? std::partition_point(from, strip.end(), begun)
                                : std::partition_point(from, strip.end(), std::not_fn(ended));
        if (from == to) continue;
        const std::ptrdiff_t row = y * stride;
        std::uint8_t* out = target.At(from->first, y);
        int left = ((to - 1)->first - from->first) * kChannels + (to - 1)->bytes;
        for (auto piece = from; piece != to; ++piece) {
            if (piece->asksAhead && y + kRowsAhead < piece->start + height)
                hwy::Prefetch(pixels + (row + piece->offset + kRowsAhead * stride));
            left -= piece->bytes;
            // What a block writes behind its piece is written again by the next pieces.
            if (left >= kBlock)
                CopyBlocks(pixels + (row + piece->offset), piece->bytes, out);
            else
                std::memcpy(out, pixels + (row + piece->offset),
                            static_cast<std::size_t>(piece->bytes));
            out += piece->bytes;
        }
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
    const std::vector<Piece> pieces = PiecesOf(source, params);
    imaging::ForRows(target.Height(), target.Stride(), [&](int top, int bottom) {
        for (std::size_t first = 0; first < pieces.size(); first += kStripPieces)
            SkewStrip(
                source,
                std::span(pieces).subspan(first, std::min(kStripPieces, pieces.size() - first)),
                params.negative, top, bottom, target);
    });
}

}  // namespace lumo::ops::geometry
