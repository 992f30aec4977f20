#include "imaging/resample_kernels.h"

#include <algorithm>
#include <cstring>

#include "imaging/resample_plain.h"

// The order of lanes after a narrowing and an interleaving within blocks is what these loops
// build on; vectors of unknown length order them differently.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/resample_kernels.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace lumo::imaging::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

template <typename Sample, typename Out>
void AddRows(const RowSum<Sample>& sum, std::size_t begin, std::size_t end, Out* out) {
    plain::SumRows(sum, begin, end, out);
}

void PackPairs8(const std::uint8_t* pixels, std::size_t width, std::int16_t* pairs) {
    plain::PackPairs(pixels, 0, width, pairs);
}
void PackPairs16(const std::int16_t* pixels, std::size_t width, std::int16_t* pairs) {
    plain::PackPairs(pixels, 0, width, pairs);
}

template <typename Out>
void AddColumns(const ColumnSum& sum, const std::int16_t* const* pairs, int rows, Out* const* out) {
    for (int row = 0; row < rows; ++row) plain::SumColumns(sum, pairs[row], out[row]);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// sum + a[2i] * b[2i] + a[2i + 1] * b[2i + 1]
template <class D32, class V16, class V32 = hn::Vec<D32>>
HWY_INLINE V32 AddPairs(D32 d32, V16 a, V16 b, V32 sum) {
#if HWY_ARCH_X86
    V32 unused = sum;
    return hn::ReorderWidenMulAccumulate(d32, a, b, sum, unused);
#else
    const V32 a32 = hn::BitCast(d32, a);
    const V32 b32 = hn::BitCast(d32, b);
    const auto low = [](V32 v) { return hn::ShiftRight<16>(hn::ShiftLeft<16>(v)); };
    const auto high = [](V32 v) { return hn::ShiftRight<16>(v); };
    return hn::Add(sum, hn::Add(hn::Mul(low(a32), low(b32)), hn::Mul(high(a32), high(b32))));
#endif
}

// Two weights in neighbouring lanes, over and over.
template <class D16>
HWY_INLINE hn::Vec<D16> DupPair(D16 d16, const std::int16_t* weights) {
    const hn::Repartition<std::int32_t, D16> d32;
    std::int32_t pair;
    std::memcpy(&pair, weights, sizeof pair);
    return hn::BitCast(d16, hn::Set(d32, pair));
}

// Four sums of 32 bits for each four bytes of a vector: of bytes 0 2 4 6, 1 3 5 7, 8 10 12 14 and
// 9 11 13 15 of every block of 16.
template <class V32>
struct ByteSums {
    V32 evenLow, oddLow, evenHigh, oddHigh;
};

template <class D8, class V32>
HWY_INLINE void AddTwoRows(D8 d8, const std::uint8_t* a, const std::uint8_t* b,
                           hn::Vec<hn::Repartition<std::int16_t, D8>> weights,
                           ByteSums<V32>& sums) {
    const hn::Repartition<std::uint16_t, D8> du16;
    const hn::Repartition<std::int16_t, D8> d16;
    const hn::Repartition<std::int32_t, D8> d32;
    const auto va = hn::BitCast(du16, hn::LoadU(d8, a));
    const auto vb = hn::BitCast(du16, hn::LoadU(d8, b));
    const auto low = hn::InterleaveLower(du16, va, vb);
    const auto high = hn::InterleaveUpper(du16, va, vb);
    const auto mask = hn::Set(du16, 0xFF);
    const auto even = [&](auto v) { return hn::BitCast(d16, hn::And(v, mask)); };
    const auto odd = [&](auto v) { return hn::BitCast(d16, hn::ShiftRight<8>(v)); };
    sums.evenLow = AddPairs(d32, even(low), weights, sums.evenLow);
    sums.oddLow = AddPairs(d32, odd(low), weights, sums.oddLow);
    sums.evenHigh = AddPairs(d32, even(high), weights, sums.evenHigh);
    sums.oddHigh = AddPairs(d32, odd(high), weights, sums.oddHigh);
}

template <class D8, class V32>
HWY_INLINE void StoreSums(D8 d8, const ByteSums<V32>& sums, int shift, std::uint8_t* out) {
    const hn::Repartition<std::int16_t, D8> d16;
    const auto narrow = [&](V32 low, V32 high) {
        const auto v = hn::ReorderDemote2To(d16, hn::ShiftRightSame(low, shift),
                                            hn::ShiftRightSame(high, shift));
        return hn::Min(hn::Max(v, hn::Zero(d16)), hn::Set(d16, 255));
    };
    const auto even = narrow(sums.evenLow, sums.evenHigh);
    const auto odd = narrow(sums.oddLow, sums.oddHigh);
    hn::StoreU(hn::BitCast(d8, hn::Or(even, hn::ShiftLeft<8>(odd))), d8, out);
}

template <class D8, class V32>
HWY_INLINE void StoreSums(D8 /*d8*/, const ByteSums<V32>& sums, int shift, std::int16_t* out) {
    const hn::Repartition<std::int16_t, D8> d16;
    const auto narrow = [&](V32 low, V32 high) {
        return hn::ReorderDemote2To(d16, hn::ShiftRightSame(low, shift),
                                    hn::ShiftRightSame(high, shift));
    };
    hn::StoreInterleaved2(narrow(sums.evenLow, sums.evenHigh), narrow(sums.oddLow, sums.oddHigh),
                          d16, out);
}

// kVectors vectors of samples from x on.
template <int kVectors, typename Out>
HWY_INLINE void SumBlock(const RowSum<std::uint8_t>& sum, std::size_t x, Out* out) {
    const hn::ScalableTag<std::uint8_t> d8;
    const hn::Repartition<std::int16_t, decltype(d8)> d16;
    const hn::Repartition<std::int32_t, decltype(d8)> d32;
    const std::size_t lanes = hn::Lanes(d8);
    const auto half = hn::Set(d32, 1 << (sum.shift - 1));
    ByteSums<hn::Vec<decltype(d32)>> sums[kVectors];
    for (auto& vector : sums) vector = {half, half, half, half};
    for (int k = 0; k < sum.taps; k += 2) {
        const auto weights = DupPair(d16, sum.weights + k);
        const std::uint8_t* a = sum.rows[k] + x;
        const std::uint8_t* b = sum.rows[k + 1] + x;
        for (std::size_t i = 0; i < kVectors; ++i)
            AddTwoRows(d8, a + i * lanes, b + i * lanes, weights, sums[i]);
    }
    for (std::size_t i = 0; i < kVectors; ++i)
        StoreSums(d8, sums[i], sum.shift, out + x + i * lanes);
}

template <int kVectors>
HWY_INLINE void SumBlock(const RowSum<std::int16_t>& sum, std::size_t x, std::uint8_t* out) {
    const hn::ScalableTag<std::int16_t> d16;
    const hn::Repartition<std::int32_t, decltype(d16)> d32;
    const hn::Rebind<std::uint8_t, decltype(d16)> d8;
    const std::size_t lanes = hn::Lanes(d16);
    const auto half = hn::Set(d32, 1 << (sum.shift - 1));
    hn::Vec<decltype(d32)> low[kVectors], high[kVectors];
    for (int i = 0; i < kVectors; ++i) low[i] = high[i] = half;
    for (int k = 0; k < sum.taps; k += 2) {
        const auto weights = DupPair(d16, sum.weights + k);
        for (std::size_t i = 0; i < kVectors; ++i) {
            const auto a = hn::LoadU(d16, sum.rows[k] + x + i * lanes);
            const auto b = hn::LoadU(d16, sum.rows[k + 1] + x + i * lanes);
            low[i] = AddPairs(d32, hn::InterleaveLower(d16, a, b), weights, low[i]);
            high[i] = AddPairs(d32, hn::InterleaveUpper(d16, a, b), weights, high[i]);
        }
    }
    for (std::size_t i = 0; i < kVectors; ++i) {
        const auto narrow = hn::ReorderDemote2To(d16, hn::ShiftRightSame(low[i], sum.shift),
                                                 hn::ShiftRightSame(high[i], sum.shift));
        hn::StoreU(hn::DemoteTo(d8, narrow), d8, out + x + i * lanes);
    }
}

template <typename Sample, typename Out>
void AddRows(const RowSum<Sample>& sum, std::size_t begin, std::size_t end, Out* out) {
    const hn::ScalableTag<Sample> d;
    const std::size_t lanes = hn::Lanes(d);
    if (end - begin < lanes) return plain::SumRows(sum, begin, end, out);
    constexpr int kVectors = 2;
    std::size_t x = begin;
    for (; x + kVectors * lanes <= end; x += kVectors * lanes) SumBlock<kVectors>(sum, x, out);
    for (; x + lanes <= end; x += lanes) SumBlock<1>(sum, x, out);
    if (x < end) SumBlock<1>(sum, end - lanes, out);  // again, where it overlaps
}

void PackPairs8(const std::uint8_t* pixels, std::size_t width, std::int16_t* pairs) {
    const hn::ScalableTag<std::int16_t> d16;
    const hn::Repartition<std::int32_t, decltype(d16)> d32;
    const hn::Rebind<std::uint8_t, decltype(d16)> d8;
    const std::size_t lanes = hn::Lanes(d16);
    std::size_t x = 0;
    for (; x + lanes <= width; x += lanes) {
        hn::Vec<decltype(d8)> red, green, blue;
        hn::LoadInterleaved3(d8, pixels + 3 * x, red, green, blue);
        const auto widen = [&](auto v) { return hn::BitCast(d32, hn::PromoteTo(d16, v)); };
        hn::StoreInterleaved4(widen(red), widen(green), widen(blue), hn::Zero(d32), d32,
                              reinterpret_cast<std::int32_t*>(pairs + x / 2 * kPairSize));
    }
    plain::PackPairs(pixels, x, width, pairs);
}

void PackPairs16(const std::int16_t* pixels, std::size_t width, std::int16_t* pairs) {
    const hn::ScalableTag<std::int16_t> d16;
    const hn::Repartition<std::int32_t, decltype(d16)> d32;
    const std::size_t lanes = hn::Lanes(d16);
    std::size_t x = 0;
    for (; x + lanes <= width; x += lanes) {
        hn::Vec<decltype(d16)> red, green, blue;
        hn::LoadInterleaved3(d16, pixels + 3 * x, red, green, blue);
        const auto cast = [&](auto v) { return hn::BitCast(d32, v); };
        hn::StoreInterleaved4(cast(red), cast(green), cast(blue), hn::Zero(d32), d32,
                              reinterpret_cast<std::int32_t*>(pairs + x / 2 * kPairSize));
    }
    plain::PackPairs(pixels, x, width, pairs);
}

using Block16 = hn::Full128<std::int16_t>;
using Block32 = hn::Full128<std::int32_t>;
using Sums = hn::Vec<Block32>;

// Adds the products of kBlocks pairs at a time to `sums`, and says how many pairs are done. Two are
// best even where vectors hold four: the windows begin anywhere, and most loads of 64 bytes would
// touch two cache lines.
template <int kBlocks, int kRows>
HWY_INLINE int AddBlocks(const std::int16_t* const* pairs, std::size_t offset,
                         const std::int16_t* weights, int done, int count, Sums* sums) {
    const hn::CappedTag<std::int16_t, kBlocks * kPairSize> d16;
    const hn::Repartition<std::int32_t, decltype(d16)> d32;
    if (done + kBlocks > count) return done;
    hn::Vec<decltype(d32)> wide[kRows];
    for (int row = 0; row < kRows; ++row) wide[row] = hn::Zero(d32);
    for (; done + kBlocks <= count; done += kBlocks) {
        const std::size_t at = static_cast<std::size_t>(done) * kPairSize;
        const auto weight = hn::LoadU(d16, weights + at);
        for (int row = 0; row < kRows; ++row)
            wide[row] = AddPairs(d32, hn::LoadU(d16, pairs[row] + offset + at), weight, wide[row]);
    }
    for (int row = 0; row < kRows; ++row) {
        if constexpr (kBlocks == 2) {
            const hn::Half<decltype(d32)> d32Half;
            sums[row] = hn::Add(sums[row], hn::Add(hn::LowerHalf(d32Half, wide[row]),
                                                   hn::UpperHalf(d32Half, wide[row])));
        } else {
            sums[row] = hn::Add(sums[row], wide[row]);
        }
    }
    return done;
}

// One pixel of each row; its fourth number is waste.
template <int kRows>
HWY_INLINE void StorePixels(const Sums* sums, int shift, std::size_t x, std::uint8_t* const* out,
                            bool last) {
    const Block16 d16;
    const hn::Full128<std::uint8_t> d8;
    const hn::Half<decltype(d8)> d8Half;
    const auto at = [&](int row) { return hn::ShiftRightSame(sums[row % kRows], shift); };
    const auto first = hn::DemoteTo(d8Half, hn::ReorderDemote2To(d16, at(0), at(1)));
    const auto second = hn::DemoteTo(d8Half, hn::ReorderDemote2To(d16, at(2), at(3)));
    alignas(16) std::uint8_t pixels[16];
    hn::Store(hn::Combine(d8, second, first), d8, pixels);
    for (int row = 0; row < kRows; ++row) {
        if (last)
            std::memcpy(out[row] + 3 * x, pixels + 4 * row, 3);
        else
            std::memcpy(out[row] + 3 * x, pixels + 4 * row, 4);
    }
}

template <int kRows>
HWY_INLINE void StorePixels(const Sums* sums, int shift, std::size_t x, std::int16_t* const* out,
                            bool /*last*/) {
    const hn::Half<Block16> d16;
    for (int row = 0; row < kRows; ++row)
        hn::StoreU(hn::DemoteTo(d16, hn::ShiftRightSame(sums[row], shift)), d16, out[row] + 3 * x);
}

template <int kRows, typename Out>
void SumAllPixels(const ColumnSum& sum, const std::int16_t* const* pairs, Out* const* out) {
    // Copies, which the compiler keeps in registers: bytes that are stored might be anything else.
    const int width = sum.width, pairCount = sum.pairCount, shift = sum.shift;
    const std::int32_t* const offsets = sum.offsets;
    const std::int16_t* weights = sum.weights;
    const std::int16_t* from[kRows];
    Out* to[kRows];
    std::copy_n(pairs, kRows, from);
    std::copy_n(out, kRows, to);
    const std::size_t step = static_cast<std::size_t>(pairCount) * kPairSize;
    const auto half = hn::Set(Block32(), 1 << (shift - 1));
    const auto makePixel = [&](int x, bool last) HWY_ATTR {
        Sums sums[kRows];
        for (auto& row : sums) row = half;
        const auto offset = static_cast<std::size_t>(offsets[x]);
        int done = 0;
#if HWY_MAX_BYTES >= 32
        done = AddBlocks<2, kRows>(from, offset, weights, done, pairCount, sums);
#endif
        AddBlocks<1, kRows>(from, offset, weights, done, pairCount, sums);
        StorePixels<kRows>(sums, shift, static_cast<std::size_t>(x), to, last);
        weights += step;
    };
    for (int x = 0; x + 1 < width; ++x) makePixel(x, false);
    makePixel(width - 1, true);
}

template <typename Out>
void AddColumns(const ColumnSum& sum, const std::int16_t* const* pairs, int rows, Out* const* out) {
    if (rows == kMostRows) return SumAllPixels<kMostRows>(sum, pairs, out);
    for (int row = 0; row < rows; ++row) SumAllPixels<1>(sum, pairs + row, out + row);
}

#endif  // SIMD

void SumRows8To8(const RowSum<std::uint8_t>& sum, std::size_t begin, std::size_t end,
                 std::uint8_t* out) {
    AddRows(sum, begin, end, out);
}
void SumRows8To16(const RowSum<std::uint8_t>& sum, std::size_t begin, std::size_t end,
                  std::int16_t* out) {
    AddRows(sum, begin, end, out);
}
void SumRows16To8(const RowSum<std::int16_t>& sum, std::size_t begin, std::size_t end,
                  std::uint8_t* out) {
    AddRows(sum, begin, end, out);
}
void SumColumnsTo8(const ColumnSum& sum, const std::int16_t* const* pairs, int rows,
                   std::uint8_t* const* out) {
    AddColumns(sum, pairs, rows, out);
}
void SumColumnsTo16(const ColumnSum& sum, const std::int16_t* const* pairs, int rows,
                    std::int16_t* const* out) {
    AddColumns(sum, pairs, rows, out);
}

}  // namespace lumo::imaging::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::imaging::kernels {

HWY_EXPORT(SumRows8To8);
HWY_EXPORT(SumRows8To16);
HWY_EXPORT(SumRows16To8);
HWY_EXPORT(PackPairs8);
HWY_EXPORT(PackPairs16);
HWY_EXPORT(SumColumnsTo8);
HWY_EXPORT(SumColumnsTo16);

void SumRows(const RowSum<std::uint8_t>& sum, std::size_t begin, std::size_t end,
             std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(SumRows8To8)(sum, begin, end, out);
}
void SumRows(const RowSum<std::uint8_t>& sum, std::size_t begin, std::size_t end,
             std::int16_t* out) {
    HWY_DYNAMIC_DISPATCH(SumRows8To16)(sum, begin, end, out);
}
void SumRows(const RowSum<std::int16_t>& sum, std::size_t begin, std::size_t end,
             std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(SumRows16To8)(sum, begin, end, out);
}
void PackPairs(const std::uint8_t* pixels, std::size_t width, std::int16_t* pairs) {
    HWY_DYNAMIC_DISPATCH(PackPairs8)(pixels, width, pairs);
}
void PackPairs(const std::int16_t* pixels, std::size_t width, std::int16_t* pairs) {
    HWY_DYNAMIC_DISPATCH(PackPairs16)(pixels, width, pairs);
}
void SumColumns(const ColumnSum& sum, const std::int16_t* const* pairs, int rows,
                std::uint8_t* const* out) {
    HWY_DYNAMIC_DISPATCH(SumColumnsTo8)(sum, pairs, rows, out);
}
void SumColumns(const ColumnSum& sum, const std::int16_t* const* pairs, int rows,
                std::int16_t* const* out) {
    HWY_DYNAMIC_DISPATCH(SumColumnsTo16)(sum, pairs, rows, out);
}

}  // namespace lumo::imaging::kernels
#endif  // HWY_ONCE
