#include "imaging/quick_rotate_kernels.h"

#include <hwy/cache_control.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/quick_rotate_kernels.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

#include "imaging/reverse_pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace lumo::imaging::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
namespace shared = imaging::HWY_NAMESPACE;

void ReverseRow(const std::uint8_t* source, std::size_t width, std::uint8_t* target) {
    std::size_t done = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<std::uint8_t> d;
    const std::size_t lanes = hn::Lanes(d);
    for (; done + lanes <= width; done += lanes)
        shared::StorePixels(d, shared::LoadReversed(d, source + (width - done - lanes) * kChannels),
                            target + done * kChannels);
#endif
    for (; done < width; ++done)
        std::memcpy(target + done * kChannels, source + (width - done - 1) * kChannels, kChannels);
}

// Rows of the source that are turned together: what they write of a row of the target are many
// whole cache lines, and the one line that is read of each of them stays in the cache.
constexpr int kBand = 512;

// Pixels of a square that is turned within registers.
constexpr int kSquare = 4;

// Whole squares in a cache line.
constexpr int kLinePixels = 16;

struct Turn {
    const std::uint8_t*
        source;              // first pixel of the source row that becomes column 0 of the target
    std::ptrdiff_t step;     // bytes to the source row of the next column of the target
    std::uint8_t* target;    // first pixel of the target row that column 0 of the source becomes
    std::ptrdiff_t rowStep;  // bytes to the target row of the next column of the source
    int width, height;       // of the source
};

HWY_INLINE void TurnPixels(const Turn& turn, int x, int lastX, int column, int lastColumn) {
    for (; x < lastX; ++x)
        for (int at = column; at < lastColumn; ++at)
            std::memcpy(turn.target + x * turn.rowStep + std::ptrdiff_t{kChannels} * at,
                        turn.source + at * turn.step + std::ptrdiff_t{kChannels} * x, kChannels);
}

#if HWY_TARGET != HWY_SCALAR

using Bytes16 = hn::FixedTag<std::uint8_t, 16>;
using Words4 = hn::FixedTag<std::uint32_t, 4>;
using Pixels4 = hn::Vec<Words4>;  // one pixel in each lane, with one byte of waste

// Reads 16 bytes, of which 12 count.
HWY_INLINE Pixels4 LoadPixels(const std::uint8_t* from) {
    alignas(16) static constexpr std::uint8_t kSpread[16] = {0, 1, 2, 0, 3, 4,  5,  0,
                                                             6, 7, 8, 0, 9, 10, 11, 0};
    const Bytes16 d8;
    return hn::BitCast(Words4(), hn::TableLookupBytes(hn::LoadU(d8, from), hn::Load(d8, kSpread)));
}

// Writes 16 bytes, of which 12 count; just those 12 if nothing may be written behind them.
HWY_INLINE void StorePixels(Pixels4 pixels, bool last, std::uint8_t* to) {
    alignas(16) static constexpr std::uint8_t kPack[16] = {0,  1,  2,  4,  5,  6,  8,  9,
                                                           10, 12, 13, 14, 14, 14, 14, 14};
    const Bytes16 d8;
    const auto packed = hn::TableLookupBytes(hn::BitCast(d8, pixels), hn::Load(d8, kPack));
    if (!last) {
        hn::StoreU(packed, d8, to);
        return;
    }
    alignas(16) std::uint8_t bytes[16];
    hn::Store(packed, d8, bytes);
    std::memcpy(to, bytes, std::size_t{kSquare} * kChannels);
}

HWY_INLINE void TurnSquare(const std::uint8_t* from, std::ptrdiff_t step, bool last,
                           std::uint8_t* to, std::ptrdiff_t rowStep) {
    const Words4 d;
    const hn::Repartition<std::uint64_t, Words4> d64;
    const auto a = LoadPixels(from), b = LoadPixels(from + step);
    const auto c = LoadPixels(from + 2 * step), e = LoadPixels(from + 3 * step);
    const auto pair = [&](Pixels4 v) { return hn::BitCast(d64, v); };
    const auto abLow = pair(hn::InterleaveLower(d, a, b)),
               ceLow = pair(hn::InterleaveLower(d, c, e));
    const auto abHigh = pair(hn::InterleaveUpper(d, a, b));
    const auto ceHigh = pair(hn::InterleaveUpper(d, c, e));
    StorePixels(hn::BitCast(d, hn::InterleaveLower(d64, abLow, ceLow)), last, to);
    StorePixels(hn::BitCast(d, hn::InterleaveUpper(d64, abLow, ceLow)), last, to + rowStep);
    StorePixels(hn::BitCast(d, hn::InterleaveLower(d64, abHigh, ceHigh)), last, to + 2 * rowStep);
    StorePixels(hn::BitCast(d, hn::InterleaveUpper(d64, abHigh, ceHigh)), last, to + 3 * rowStep);
}

#endif

void TurnAll(const Turn& turn, int first, int last) {
    int squaresX = first, squaresY = 0;
#if HWY_TARGET != HWY_SCALAR
    // Two pixels to the right of a square are read in vain, so that nothing is read behind a row.
    const int lastX = std::min(last, turn.width - 2);
    squaresX = first + std::max(lastX - first, 0) / kSquare * kSquare;
    squaresY = turn.height / kSquare * kSquare;
    // From left to right: what a square writes behind its pixels is written again by the next one.
    for (int band = 0; band < squaresY; band += kBand) {
        const int bandEnd = std::min(band + kBand, squaresY);
        for (int x = first; x < squaresX; x += kSquare) {
            // So many rows at once are more than the processor foresees by itself.
            if ((x - first) % kLinePixels == 0 && x + kLinePixels + kSquare < turn.width)
                for (int column = band; column < bandEnd; ++column)
                    hwy::Prefetch(turn.source + column * turn.step +
                                  std::ptrdiff_t{kChannels} * (x + kLinePixels + kSquare));
            for (int column = band; column < bandEnd; column += kSquare)
                TurnSquare(turn.source + column * turn.step + std::ptrdiff_t{kChannels} * x,
                           turn.step, column + kSquare == squaresY,
                           turn.target + x * turn.rowStep + std::ptrdiff_t{kChannels} * column,
                           turn.rowStep);
        }
    }
#endif
    TurnPixels(turn, first, squaresX, squaresY, turn.height);
    for (int band = 0; band < turn.height; band += kBand)
        TurnPixels(turn, squaresX, last, band, std::min(band + kBand, turn.height));
}

void TurnSome(ConstImageView source, bool clockwise, int first, int last, ImageView target) {
    const auto stride = static_cast<std::ptrdiff_t>(source.Stride());
    const auto rowStep = static_cast<std::ptrdiff_t>(target.Stride());
    const std::uint8_t* const pixels = source.Bytes().data();
    std::uint8_t* const out = target.Bytes().data();
    const int width = source.Width(), height = source.Height();
    if (clockwise)
        TurnAll({pixels + (height - 1) * stride, -stride, out, rowStep, width, height}, first,
                last);
    else
        TurnAll({pixels, stride, out + (width - 1) * rowStep, -rowStep, width, height}, first,
                last);
}

}  // namespace lumo::imaging::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::imaging::kernels {

HWY_EXPORT(ReverseRow);
HWY_EXPORT(TurnSome);

void ReverseRow(const std::uint8_t* source, int width, std::uint8_t* target) {
    HWY_DYNAMIC_DISPATCH(ReverseRow)(source, static_cast<std::size_t>(width), target);
}

void TurnColumns(ConstImageView source, bool clockwise, int first, int last, ImageView target) {
    HWY_DYNAMIC_DISPATCH(TurnSome)(source, clockwise, first, last, target);
}

}  // namespace lumo::imaging::kernels
#endif  // HWY_ONCE
