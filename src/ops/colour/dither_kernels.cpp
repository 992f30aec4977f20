#include "ops/colour/dither_kernels.h"

#include <algorithm>

#define HWY_WANT_AVX3_DL
// The order of lanes within blocks is what these loops build on.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ops/colour/dither_kernels.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

#include "imaging/pixels-inl.h"

#ifndef LUMO_OPS_COLOUR_DITHER_BAND
#define LUMO_OPS_COLOUR_DITHER_BAND
namespace lumo::ops::colour::kernels {

inline constexpr std::size_t kRows = 8;  // abreast
inline constexpr std::size_t kLag = 2;   // columns between a row and the one above
inline constexpr std::size_t kDelay = kLag * (kRows - 1);

}  // namespace lumo::ops::colour::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace lumo::ops::colour::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

// Row by row; the scratch holds the errors of two rows, with one place more at either end.
void DitherRows(std::uint8_t* p, std::size_t width, std::size_t height, double* scratch) {
    double* current = scratch;
    double* next = scratch + width + 2;
    std::fill_n(next, width + 2, 0.0);
    for (; height > 0; --height) {
        std::swap(current, next);
        std::fill_n(next, width + 2, 0.0);
        for (std::size_t i = 1; i <= width; ++i, p += 3) {
            double v = 0.114 * p[2] + 0.587 * p[1] + 0.299 * p[0] + current[i];
            const bool white = v >= 255.0;
            if (white) v -= 255.0;
            current[i + 1] += v * 7.0 / 16.0;
            next[i - 1] += v * 3.0 / 16.0;
            next[i] += v * 5.0 / 16.0;
            next[i + 1] += v / 16.0;
            p[0] = p[1] = p[2] = white ? 255 : 0;
        }
    }
}

#else

namespace hn = hwy::HWY_NAMESPACE;
namespace vectors = imaging::HWY_NAMESPACE;
using vectors::Bytes, vectors::ByteVector, vectors::Doubles, vectors::DoubleVector,
    vectors::kMaxBytes;

constexpr std::size_t kLanes = std::min(hn::MaxLanes(Doubles()), kRows);
constexpr std::size_t kVectors = kRows / kLanes;  // of a column of the band
constexpr std::size_t kSteps = 256;               // columns between two exchanges with the picture

// Lane r of step t is row r of the band at column t - kLag * r.
struct Wave {
    HWY_ALIGN double value[kSteps * kRows];  // luminance before a step, what is left after
    HWY_ALIGN std::uint8_t white[kSteps + kMaxBytes];  // bit r: row r is white
    HWY_ALIGN double luma[kSteps + kMaxBytes];         // of a row
};

struct Band {
    std::uint8_t* pixels;
    std::size_t width, rows;

    std::uint8_t* At(std::size_t row, std::size_t column) const {
        return pixels + (row * width + column) * 3;
    }
    std::size_t Steps() const { return width + kDelay; }
};

// The columns of a row that stand in the steps [first, first + count).
struct Stretch {
    std::size_t column, count;
    std::size_t step;  // of the first of them, from `first` on
};

HWY_INLINE Stretch ColumnsOf(const Band& band, std::size_t row, std::size_t first,
                             std::size_t count) {
    const std::size_t lag = kLag * row;
    const std::size_t begin = std::max(first, lag), end = std::min(first + count, lag + band.width);
    if (begin >= end) return {0, 0, 0};
    return {begin - lag, end - begin, begin - first};
}

HWY_INLINE void WeighRow(const std::uint8_t* pixels, std::size_t count, double* luma) {
    const Doubles d;
    HWY_ALIGN std::uint8_t red[kMaxBytes], green[kMaxBytes], blue[kMaxBytes];
    vectors::ReadPixelVectors(
        pixels, count, [&](ByteVector r, ByteVector g, ByteVector b, std::size_t lanes) {
            hn::Store(r, Bytes(), red);
            hn::Store(g, Bytes(), green);
            hn::Store(b, Bytes(), blue);
            for (std::size_t i = 0; i < hn::Lanes(Bytes()); i += hn::Lanes(d)) {
                auto y = hn::Mul(hn::Set(d, 0.114), vectors::LoadAsDoubles(blue + i));
                y = hn::Add(y, hn::Mul(hn::Set(d, 0.587), vectors::LoadAsDoubles(green + i)));
                y = hn::Add(y, hn::Mul(hn::Set(d, 0.299), vectors::LoadAsDoubles(red + i)));
                hn::StoreU(y, d, luma + i);
            }
            luma += lanes;
        });
}

HWY_INLINE void ReadSteps(const Band& band, std::size_t first, std::size_t count, Wave& wave) {
    std::fill_n(wave.value, count * kRows, 0.0);
    for (std::size_t row = 0; row < band.rows; ++row) {
        const Stretch stretch = ColumnsOf(band, row, first, count);
        if (stretch.count == 0) continue;
        WeighRow(band.At(row, stretch.column), stretch.count, wave.luma);
        double* to = wave.value + stretch.step * kRows + row;
        for (std::size_t i = 0; i < stretch.count; ++i, to += kRows) *to = wave.luma[i];
    }
}

HWY_INLINE void WriteSteps(const Band& band, std::size_t first, std::size_t count,
                           const Wave& wave) {
    const Bytes d;
    for (std::size_t row = 0; row < band.rows; ++row) {
        const Stretch stretch = ColumnsOf(band, row, first, count);
        if (stretch.count == 0) continue;
        const std::uint8_t* white = wave.white + stretch.step;
        const auto bit = hn::Set(d, static_cast<std::uint8_t>(1U << row));
        vectors::ForPixelVectors(band.At(row, stretch.column), stretch.count,
                                 [&](ByteVector& r, ByteVector& g, ByteVector& b) {
                                     const auto bits = hn::And(hn::LoadU(d, white), bit);
                                     r = g = b = hn::VecFromMask(d, hn::Eq(bits, bit));
                                     white += hn::Lanes(d);
                                 });
    }
}

// What the steps before have left, for the eight rows.
struct Left {
    DoubleVector last[kVectors];    // the pixel to the left in the same row
    DoubleVector above[kVectors];   // the row above, straight
    DoubleVector before[kVectors];  // the row above, one to the left
};

// Moves the lanes of a column one row down; `top` comes in from the band above.
HWY_INLINE void MoveDown(const DoubleVector* from, double top, DoubleVector* to) {
    const Doubles d;
    HWY_ALIGN constexpr std::int64_t kDown[8] = {0, 0, 1, 2, 3, 4, 5, 6};
    HWY_ALIGN constexpr std::int64_t kLast[8] = {kLanes - 1, kLanes - 1, kLanes - 1, kLanes - 1,
                                                 kLanes - 1, kLanes - 1, kLanes - 1, kLanes - 1};
    const auto down = hn::SetTableIndices(d, kDown);
    const auto lowest = hn::SetTableIndices(d, kLast);
    const auto first = hn::FirstN(d, 1);
    for (std::size_t i = 0; i < kVectors; ++i) {
        const auto in = i == 0 ? hn::Set(d, top) : hn::TableLookupLanes(from[i - 1], lowest);
        to[i] = hn::IfThenElse(first, in, hn::TableLookupLanes(from[i], down));
    }
}

// One step of all rows; `top` is what the row above the band leaves one column ahead of row 0.
template <bool kMasked>
HWY_INLINE void Step(double* value, double top, std::size_t step, std::size_t width, Left& left,
                     std::uint8_t* white) {
    const Doubles d;
    DoubleVector ahead[kVectors];
    MoveDown(left.last, top, ahead);
    std::uint8_t bits = 0;
    for (std::size_t i = 0; i < kVectors; ++i) {
        // The left one of the three above has left its share first, then the next ones.
        auto error = hn::Mul(left.before[i], hn::Set(d, 1.0 / 16.0));
        error = hn::Add(error, hn::Mul(left.above[i], hn::Set(d, 5.0 / 16.0)));
        error = hn::Add(error, hn::Mul(ahead[i], hn::Set(d, 3.0 / 16.0)));
        error = hn::Add(error, hn::Mul(left.last[i], hn::Set(d, 7.0 / 16.0)));
        const auto v = hn::Add(hn::Load(d, value + i * kLanes), error);
        const auto over = hn::Ge(v, hn::Set(d, 255.0));
        auto rest = hn::IfThenElse(over, hn::Sub(v, hn::Set(d, 255.0)), v);
        if constexpr (kMasked) {
            // Rows that have not begun or have ended leave nothing.
            HWY_ALIGN double column[kLanes];
            for (std::size_t lane = 0; lane < kLanes; ++lane)
                column[lane] =
                    static_cast<double>(step) - static_cast<double>(kLag * (i * kLanes + lane));
            const auto at = hn::Load(d, column);
            const auto inside = hn::And(hn::Ge(at, hn::Zero(d)),
                                        hn::Lt(at, hn::Set(d, static_cast<double>(width))));
            rest = hn::IfThenElseZero(inside, rest);
        }
        std::uint8_t found[8] = {};
        hn::StoreMaskBits(d, over, found);
        bits = static_cast<std::uint8_t>(bits | found[0] << (i * kLanes));
        left.before[i] = left.above[i];
        left.above[i] = ahead[i];
        left.last[i] = rest;
        hn::Store(rest, d, value + i * kLanes);
    }
    *white = bits;
}

// `above` holds what the last row of the band above leaves, from its column 0 on, and then zeros;
// it is overwritten with the same of this band.
void DitherBand(const Band& band, double* above, Wave& wave) {
    const Doubles d;
    Left left;
    for (std::size_t i = 0; i < kVectors; ++i)
        left.last[i] = left.above[i] = left.before[i] = hn::Zero(d);
    left.above[0] = hn::IfThenElse(hn::FirstN(d, 1), hn::Set(d, above[0]), hn::Zero(d));
    for (std::size_t first = 0; first < band.Steps(); first += kSteps) {
        const std::size_t count = std::min(kSteps, band.Steps() - first);
        ReadSteps(band, first, count, wave);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t step = first + i;
            double* const value = wave.value + i * kRows;
            if (step >= kDelay && step < band.width)
                Step<false>(value, above[step + 1], step, band.width, left, wave.white + i);
            else
                Step<true>(value, above[step + 1], step, band.width, left, wave.white + i);
        }
        WriteSteps(band, first, count, wave);
        const Stretch last = ColumnsOf(band, kRows - 1, first, count);
        for (std::size_t i = 0; i < last.count; ++i)
            above[last.column + i] = wave.value[(last.step + i) * kRows + kRows - 1];
    }
}

void DitherRows(std::uint8_t* pixels, std::size_t width, std::size_t height, double* scratch) {
    std::fill_n(scratch, DitherScratch(width), 0.0);
    Wave wave;
    for (std::size_t y = 0; y < height; y += kRows)
        DitherBand({pixels + y * width * 3, width, std::min(kRows, height - y)}, scratch, wave);
}

#endif  // HWY_SCALAR

}  // namespace lumo::ops::colour::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::ops::colour::kernels {

HWY_EXPORT(DitherRows);

std::size_t DitherScratch(std::size_t width) {
    return std::max(2 * (width + 2), width + kDelay + 1);
}

void Dither(std::uint8_t* pixels, std::size_t width, std::size_t height, double* scratch) {
    HWY_DYNAMIC_DISPATCH(DitherRows)(pixels, width, height, scratch);
}

}  // namespace lumo::ops::colour::kernels
#endif  // HWY_ONCE
