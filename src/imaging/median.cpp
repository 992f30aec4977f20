#include "imaging/median.h"

#include <algorithm>
#include <cstddef>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/simd.h"

namespace lumo::imaging {
namespace {

using Byte = std::uint8_t;

inline void Sort(Byte& a, Byte& b) {
    const Byte low = std::min(a, b);
    b = std::max(a, b);
    a = low;
}
inline Byte Middle(Byte a, Byte b, Byte c) {
    return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

/// The median of nine samples: each column sorted, then the largest of the lows, the middle one of
/// the middles and the smallest of the highs hold it between them.
/// Source: J. L. Smith, "Implementing median filters in XC4000E FPGAs", 1996.
inline Byte MedianOf9(Byte a0, Byte a1, Byte a2, Byte b0, Byte b1, Byte b2, Byte c0, Byte c1,
                      Byte c2) {
    Sort(a0, a1), Sort(a1, a2), Sort(a0, a1);
    Sort(b0, b1), Sort(b1, b2), Sort(b0, b1);
    Sort(c0, c1), Sort(c1, c2), Sort(c0, c1);
    return Middle(std::max({a0, b0, c0}), Middle(a1, b1, c1), std::min({a2, b2, c2}));
}

struct ThreeRows {
    const Byte* above;
    const Byte* centre;
    const Byte* below;
};

/// Medians of the samples [begin, end) of a row, whose neighbours stand `left` bytes before and
/// `right` bytes behind them.
LUMO_SIMD_CLONES
void FilterSamples(ThreeRows rows, std::size_t begin, std::size_t end, std::ptrdiff_t left,
                   std::ptrdiff_t right, Byte* __restrict out) {
    const Byte* const a = rows.above;
    const Byte* const b = rows.centre;
    const Byte* const c = rows.below;
    for (std::size_t i = begin; i < end; ++i) {
        const auto x = static_cast<std::ptrdiff_t>(i);
        out[i] = MedianOf9(a[x - left], b[x - left], c[x - left], a[x], b[x], c[x], a[x + right],
                           b[x + right], c[x + right]);
    }
}

void FilterRow(ThreeRows rows, std::size_t width, Byte* out) {
    constexpr std::size_t kPixel = kChannels;
    const std::size_t last = (width - 1) * kPixel;
    if (width == 1) return FilterSamples(rows, 0, kPixel, 0, 0, out);
    FilterSamples(rows, 0, kPixel, 0, kChannels, out);
    FilterSamples(rows, kPixel, last, kChannels, kChannels, out);
    FilterSamples(rows, last, last + kPixel, kChannels, 0, out);
}

}  // namespace

bool MedianFilterImage(ConstImageView source, ImageView target) {
    if (source.IsEmpty() || source.Extent() != target.Extent()) {
        SetLastError("the pictures of a median filter differ in size or are empty");
        return false;
    }
    const int bottom = source.Height() - 1;
    ForRows(source.Height(), source.Stride(), [&](int first, int last) {
        for (int y = first; y < last; ++y)
            FilterRow({source.Row(std::max(y - 1, 0)), source.Row(y),
                       source.Row(std::min(y + 1, bottom))},
                      static_cast<std::size_t>(source.Width()), target.Row(y));
    });
    return true;
}

}  // namespace lumo::imaging
