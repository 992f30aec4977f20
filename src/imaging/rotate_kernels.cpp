#include "imaging/rotate_kernels.h"

#include <cstring>

#include "imaging/image.h"

// What follows counts on blocks of 16 bytes and on lanes in their order; vectors of unknown length
// have neither.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/rotate_kernels.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace lumo::imaging::kernels::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

void DrawAll(const RotatedRun& run) {
    plain::DrawRun(run);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Block8 = hn::FixedTag<std::uint8_t, 16>;
using Block16 = hn::FixedTag<std::int16_t, 8>;
using Block32 = hn::FixedTag<std::int32_t, 4>;
using Sums = hn::Vec<Block32>;  // red, green, blue, and waste

// a[2i] * b[2i] + a[2i + 1] * b[2i + 1]
HWY_INLINE Sums AddPairs(hn::Vec<Block16> a, hn::Vec<Block16> b) {
#if HWY_ARCH_X86
    Sums unused = hn::Zero(Block32());
    return hn::ReorderWidenMulAccumulate(Block32(), a, b, hn::Zero(Block32()), unused);
#else
    const Block32 d;
    const Sums a32 = hn::BitCast(d, a), b32 = hn::BitCast(d, b);
    const auto low = [](Sums v) { return hn::ShiftRight<16>(hn::ShiftLeft<16>(v)); };
    const auto high = [](Sums v) { return hn::ShiftRight<16>(v); };
    return hn::Add(hn::Mul(low(a32), low(b32)), hn::Mul(high(a32), high(b32)));
#endif
}

// Two neighbouring weights, four times.
HWY_INLINE hn::Vec<Block16> Pair(const std::int16_t* weights) {
    std::int32_t pair;
    std::memcpy(&pair, weights, sizeof pair);
    return hn::BitCast(Block16(), hn::Set(Block32(), pair));
}

// Pixels 0 and 1, and 2 and 3, of a row with their channels side by side, as 16 bits.
struct Spread {
    hn::Vec<Block8> first, second;

    HWY_INLINE Spread() {
        constexpr std::uint8_t z = 0x80;  // gives 0
        alignas(16) static constexpr std::uint8_t kFirst[16] = {0, z, 3, z, 1, z, 4, z,
                                                                2, z, 5, z, z, z, z, z};
        alignas(16) static constexpr std::uint8_t kSecond[16] = {6, z, 9,  z, 7, z, 10, z,
                                                                 8, z, 11, z, z, z, z,  z};
        first = hn::Load(Block8(), kFirst);
        second = hn::Load(Block8(), kSecond);
    }
};

// The sum of four pixels of a row by weights, with the fraction of kWeightBits.
HWY_INLINE Sums SumRow(const std::uint8_t* row, const Spread& spread, hn::Vec<Block16> across01,
                       hn::Vec<Block16> across23) {
    const auto bytes = hn::LoadU(Block8(), row);
    const auto first = hn::BitCast(Block16(), hn::TableLookupBytesOr0(bytes, spread.first));
    const auto second = hn::BitCast(Block16(), hn::TableLookupBytesOr0(bytes, spread.second));
    return hn::Add(hn::Add(AddPairs(first, across01), AddPairs(second, across23)),
                   hn::Set(Block32(), 1 << (kFirstShift - 1)));
}

// Two such sums, shortened to 16 bits, side by side.
HWY_INLINE hn::Vec<Block16> Join(Sums above, Sums below) {
    const Block16 d16;
    return hn::OddEven(hn::BitCast(d16, hn::ShiftLeft<16 - kFirstShift>(below)),
                       hn::BitCast(d16, hn::ShiftRight<kFirstShift>(above)));
}

struct Position {
    std::int64_t u, v;
};

HWY_INLINE Sums DrawPixel(const RotatedRun& run, const Spread& spread, Position at) {
    constexpr int kPhaseShift = kPositionBits - kPhaseBits;
    constexpr std::int64_t kPhaseMask = (1 << kPhaseBits) - 1;
    const auto x = static_cast<std::size_t>(at.u >> kPositionBits) - 1;
    const auto y = static_cast<std::size_t>(at.v >> kPositionBits) - 1;
    const std::int16_t* const across = run.table[(at.u >> kPhaseShift) & kPhaseMask].data();
    const std::int16_t* const down = run.table[(at.v >> kPhaseShift) & kPhaseMask].data();
    const std::uint8_t* const first = run.pixels + y * run.stride + x * kChannels;
    const auto across01 = Pair(across), across23 = Pair(across + 2);
    const auto row = [&](std::size_t r) {
        return SumRow(first + r * run.stride, spread, across01, across23);
    };
    const Sums sum = hn::Add(AddPairs(Join(row(0), row(1)), Pair(down)),
                             AddPairs(Join(row(2), row(3)), Pair(down + 2)));
    return hn::ShiftRight<kSecondShift>(hn::Add(sum, hn::Set(Block32(), 1 << (kSecondShift - 1))));
}

// Four pixels as bytes, and four bytes of waste. Within one block "reorder" keeps the order.
HWY_INLINE hn::Vec<Block8> Pack(Sums a, Sums b, Sums c, Sums d) {
    alignas(16) static constexpr std::uint8_t kPack[16] = {0,  1,  2,  4,  5,  6,  8,  9,
                                                           10, 12, 13, 14, 14, 14, 14, 14};
    const Block16 d16;
    const Block8 d8;
    const hn::Half<Block8> dHalf;
    const auto first = hn::DemoteTo(dHalf, hn::ReorderDemote2To(d16, a, b));
    const auto second = hn::DemoteTo(dHalf, hn::ReorderDemote2To(d16, c, d));
    return hn::TableLookupBytes(hn::Combine(d8, second, first), hn::Load(d8, kPack));
}

void DrawAll(const RotatedRun& run) {
    const RotatedRun local = run;  // bytes that are stored may be anything else, but no copy
    const Spread spread;
    Position at{local.u, local.v};
    const auto next = [&] {
        const Position here = at;
        at = {at.u + local.du, at.v + local.dv};
        return DrawPixel(local, spread, here);
    };
    std::uint8_t* out = local.out;
    int left = local.count;
    // Sixteen bytes are stored for twelve: two more pixels follow, and are drawn later.
    for (; left >= 6; left -= 4, out += 4 * kChannels) {
        const Sums a = next(), b = next(), c = next(), d = next();
        hn::StoreU(Pack(a, b, c, d), Block8(), out);
    }
    for (; left > 0; --left, out += kChannels) {
        const Sums pixel = next();
        alignas(16) std::uint8_t bytes[16];
        hn::Store(Pack(pixel, pixel, pixel, pixel), Block8(), bytes);
        std::memcpy(out, bytes, kChannels);
    }
}

#endif

}  // namespace lumo::imaging::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::imaging::kernels {

HWY_EXPORT(DrawAll);

void DrawRun(const RotatedRun& run) {
    HWY_DYNAMIC_DISPATCH(DrawAll)(run);
}

}  // namespace lumo::imaging::kernels
#endif  // HWY_ONCE
