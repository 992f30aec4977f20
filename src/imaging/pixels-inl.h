// Vectors over runs of pixels, for kernels that are built once for each instruction set: included
// anew for each of them (see hwy/foreach_target.h), so that the guard below is a toggle.

#if defined(LUMO_IMAGING_PIXELS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LUMO_IMAGING_PIXELS_INL_H
#undef LUMO_IMAGING_PIXELS_INL_H
#else
#define LUMO_IMAGING_PIXELS_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "imaging/image.h"

#if HWY_TARGET != HWY_SCALAR  // plain loops take its place

HWY_BEFORE_NAMESPACE();
namespace lumo::imaging::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using ByteVector = hn::Vec<Bytes>;

inline constexpr std::size_t kMaxBytes = hn::MaxLanes(Bytes());

#if HWY_TARGET == HWY_AVX3_DL

// Where the bytes of one channel stand in 192 bytes of pixels: those in the first two vectors by
// one permutation of both, the rest, from lane `kFromThird` on, by another one.
template <int kChannel>
struct Gather {
    alignas(64) std::uint8_t index[64];
    static constexpr int kFromThird = (128 - kChannel + 2) / 3;
    constexpr Gather() : index() {
        for (int i = 0; i < 64; ++i) index[i] = static_cast<std::uint8_t>((3 * i + kChannel) % 128);
    }
    HWY_INLINE __m512i operator()(__m512i first, __m512i second, __m512i third) const {
        const __m512i at = _mm512_load_si512(index);
        const __m512i low = _mm512_permutex2var_epi8(first, at, second);
        return _mm512_mask_permutexvar_epi8(low, ~std::uint64_t{0} << kFromThird, at, third);
    }
};

// The other way: vector `kVector` of the three, from the channels.
template <int kVector>
struct Scatter {
    alignas(64) std::uint8_t index[64];
    std::uint64_t blue = 0;
    constexpr Scatter() : index() {
        for (int i = 0; i < 64; ++i) {
            const int at = 64 * kVector + i, channel = at % 3;
            index[i] = static_cast<std::uint8_t>(at / 3 + (channel == 1 ? 64 : 0));
            if (channel == 2) blue |= std::uint64_t{1} << i;
        }
    }
    HWY_INLINE void operator()(__m512i r, __m512i g, __m512i b, std::uint8_t* to) const {
        const __m512i at = _mm512_load_si512(index);
        const __m512i both = _mm512_permutex2var_epi8(r, at, g);
        _mm512_storeu_si512(to + 64 * kVector, _mm512_mask_permutexvar_epi8(both, blue, at, b));
    }
};

HWY_INLINE void LoadPixels(const std::uint8_t* pixels, ByteVector& red, ByteVector& green,
                           ByteVector& blue) {
    static constexpr Gather<0> kRed;
    static constexpr Gather<1> kGreen;
    static constexpr Gather<2> kBlue;
    const __m512i first = _mm512_loadu_si512(pixels), second = _mm512_loadu_si512(pixels + 64),
                  third = _mm512_loadu_si512(pixels + 128);
    red.raw = kRed(first, second, third);
    green.raw = kGreen(first, second, third);
    blue.raw = kBlue(first, second, third);
}

HWY_INLINE void StorePixels(ByteVector red, ByteVector green, ByteVector blue,
                            std::uint8_t* pixels) {
    static constexpr Scatter<0> kFirst;
    static constexpr Scatter<1> kSecond;
    static constexpr Scatter<2> kThird;
    kFirst(red.raw, green.raw, blue.raw, pixels);
    kSecond(red.raw, green.raw, blue.raw, pixels);
    kThird(red.raw, green.raw, blue.raw, pixels);
}

// A table of 256 bytes, in registers.
class ByteTable {
  public:
    explicit ByteTable(const std::uint8_t* table)
        : parts_{_mm512_loadu_si512(table), _mm512_loadu_si512(table + 64),
                 _mm512_loadu_si512(table + 128), _mm512_loadu_si512(table + 192)} {}

    HWY_INLINE ByteVector operator()(ByteVector index) const {
        const __m512i low = _mm512_permutex2var_epi8(parts_[0], index.raw, parts_[1]);
        const __m512i high = _mm512_permutex2var_epi8(parts_[2], index.raw, parts_[3]);
        return ByteVector{_mm512_mask_blend_epi8(_mm512_movepi8_mask(index.raw), low, high)};
    }

  private:
    __m512i parts_[4];
};

#else

HWY_INLINE void LoadPixels(const std::uint8_t* pixels, ByteVector& red, ByteVector& green,
                           ByteVector& blue) {
    hn::LoadInterleaved3(Bytes(), pixels, red, green, blue);
}

HWY_INLINE void StorePixels(ByteVector red, ByteVector green, ByteVector blue,
                            std::uint8_t* pixels) {
    hn::StoreInterleaved3(red, green, blue, Bytes(), pixels);
}

// A table of 256 bytes, in memory.
class ByteTable {
  public:
    explicit ByteTable(const std::uint8_t* table) : table_(table) {}

    HWY_INLINE ByteVector operator()(ByteVector index) const {
        HWY_ALIGN std::uint8_t lanes[kMaxBytes];
        hn::Store(index, Bytes(), lanes);
        for (std::size_t i = 0; i < hn::Lanes(Bytes()); ++i) lanes[i] = table_[lanes[i]];
        return hn::Load(Bytes(), lanes);
    }

  private:
    const std::uint8_t* table_;
};

#endif

// Calls `kernel(red, green, blue)` for vectors of pixels, which it may change in place. The last
// ones lie in a vector with black pixels behind them.
template <class Kernel>
HWY_INLINE void ForPixelVectors(std::uint8_t* pixels, std::size_t count, const Kernel& kernel) {
    const std::size_t lanes = hn::Lanes(Bytes());
    const auto change = [&](std::uint8_t* at) {
        ByteVector red, green, blue;
        LoadPixels(at, red, green, blue);
        kernel(red, green, blue);
        StorePixels(red, green, blue, at);
    };
    for (; count >= lanes; count -= lanes, pixels += lanes * kChannels) change(pixels);
    if (count == 0) return;
    HWY_ALIGN std::uint8_t rest[kMaxBytes * kChannels] = {};
    std::memcpy(rest, pixels, count * kChannels);
    change(rest);
    std::memcpy(pixels, rest, count * kChannels);
}

// The same for pixels that are read only; `kernel(red, green, blue, count)` learns how many lanes
// hold pixels. The others are black.
template <class Kernel>
HWY_INLINE void ReadPixelVectors(const std::uint8_t* pixels, std::size_t count,
                                 const Kernel& kernel) {
    const std::size_t lanes = hn::Lanes(Bytes());
    ByteVector red, green, blue;
    for (; count >= lanes; count -= lanes, pixels += lanes * kChannels) {
        LoadPixels(pixels, red, green, blue);
        kernel(red, green, blue, lanes);
    }
    if (count == 0) return;
    HWY_ALIGN std::uint8_t rest[kMaxBytes * kChannels] = {};
    std::memcpy(rest, pixels, count * kChannels);
    LoadPixels(rest, red, green, blue);
    kernel(red, green, blue, count);
}

// Calls `kernel(first, second, third)` for vectors of bytes as they lie in memory: byte i of the
// three together is channel i % 3. The last ones lie in vectors with black pixels behind them.
template <class Kernel>
HWY_INLINE void ForByteVectors(std::uint8_t* pixels, std::size_t count, const Kernel& kernel) {
    const Bytes d;
    const std::size_t lanes = hn::Lanes(d);
    const auto change = [&](std::uint8_t* at) {
        ByteVector first = hn::LoadU(d, at), second = hn::LoadU(d, at + lanes),
                   third = hn::LoadU(d, at + 2 * lanes);
        kernel(first, second, third);
        hn::StoreU(first, d, at);
        hn::StoreU(second, d, at + lanes);
        hn::StoreU(third, d, at + 2 * lanes);
    };
    for (; count >= lanes; count -= lanes, pixels += lanes * kChannels) change(pixels);
    if (count == 0) return;
    HWY_ALIGN std::uint8_t rest[kMaxBytes * kChannels] = {};
    std::memcpy(rest, pixels, count * kChannels);
    change(rest);
    std::memcpy(pixels, rest, count * kChannels);
}

// Doubles out of consecutive bytes, and back: whole numbers between 0 and 255.
using Doubles = hn::ScalableTag<double>;
using DoubleVector = hn::Vec<Doubles>;

HWY_INLINE DoubleVector LoadAsDoubles(const std::uint8_t* bytes) {
    const Doubles d;
    const hn::Rebind<std::int32_t, Doubles> d32;
    const hn::Rebind<std::uint8_t, Doubles> d8;
    return hn::PromoteTo(d, hn::PromoteTo(d32, hn::LoadU(d8, bytes)));
}

// Truncates.
HWY_INLINE void StoreAsBytes(DoubleVector v, std::uint8_t* bytes) {
    const hn::Rebind<std::int32_t, Doubles> d32;
    const hn::Rebind<std::uint8_t, Doubles> d8;
    hn::StoreU(hn::DemoteTo(d8, hn::DemoteTo(d32, v)), d8, bytes);
}

// `red * r + green * g + blue * b + plus` of each pixel, truncated, in doubles in that order, each
// step rounded. The slow way.
HWY_INLINE ByteVector WeighInDoubles(ByteVector r, ByteVector g, ByteVector b, double red,
                                     double green, double blue, double plus) {
    const Doubles d;
    HWY_ALIGN std::uint8_t reds[kMaxBytes], greens[kMaxBytes], blues[kMaxBytes], sums[kMaxBytes];
    hn::Store(r, Bytes(), reds);
    hn::Store(g, Bytes(), greens);
    hn::Store(b, Bytes(), blues);
    for (std::size_t i = 0; i < hn::Lanes(Bytes()); i += hn::Lanes(d)) {
        auto sum = hn::Mul(hn::Set(d, red), LoadAsDoubles(reds + i));
        sum = hn::Add(sum, hn::Mul(hn::Set(d, green), LoadAsDoubles(greens + i)));
        sum = hn::Add(sum, hn::Mul(hn::Set(d, blue), LoadAsDoubles(blues + i)));
        StoreAsBytes(hn::Add(sum, hn::Set(d, plus)), sums + i);
    }
    return hn::Load(Bytes(), sums);
}

// A luminance in thousandths: (kRed r + kGreen g + kBlue b + kPlus) / 1000, truncated.
//
// Integers of 16 bits do it: with S the sum, S = 256 high + low, and S / 1000 is (S / 8) / 125,
// the latter by a multiplication that is exact over the whole range. The doubles that the formula
// is made of can differ from that only where S is a multiple of 1000, since elsewhere S / 1000 is
// much further from a whole number than they are wrong; there they are asked.
template <int kRed, int kGreen, int kBlue, int kPlus>
HWY_INLINE ByteVector Luminance(ByteVector r, ByteVector g, ByteVector b) {
    static_assert(kRed < 512 && kGreen < 768 && kBlue < 256 && kPlus < 512);
    static_assert((kRed % 256 + kGreen % 256 + kBlue) * 255 + kPlus % 256 < 65536);
    const hn::Repartition<std::uint16_t, Bytes> d16;
    const auto set = [&](int value) { return hn::Set(d16, static_cast<std::uint16_t>(value)); };
    const auto byteMask = set(255);
    auto doubtful = hn::Zero(d16);

    const auto quotient = [&](auto r16, auto g16, auto b16, auto& doubt) {
        const auto low =
            hn::Add(hn::Add(hn::Mul(r16, set(kRed % 256)), hn::Mul(g16, set(kGreen % 256))),
                    hn::Add(hn::Mul(b16, set(kBlue)), set(kPlus % 256)));
        auto high = hn::Add(hn::ShiftRight<8>(low), set(kPlus / 256));
        if constexpr (kRed >= 256) high = hn::Add(high, r16);
        if constexpr (kGreen >= 256) high = hn::Add(high, g16);
        if constexpr (kGreen >= 512) high = hn::Add(high, g16);
        const auto eighths =
            hn::Or(hn::ShiftLeft<5>(high), hn::ShiftRight<3>(hn::And(low, byteMask)));
        const auto y = hn::ShiftRight<6>(hn::MulHigh(eighths, set(33555)));
        const auto rest = hn::Or(hn::Sub(eighths, hn::Mul(y, set(125))), hn::And(low, set(7)));
        doubt = hn::VecFromMask(d16, hn::Eq(rest, hn::Zero(d16)));
        return y;
    };
    const auto even = [&](ByteVector v) { return hn::And(hn::BitCast(d16, v), byteMask); };
    const auto odd = [&](ByteVector v) { return hn::ShiftRight<8>(hn::BitCast(d16, v)); };
    auto doubtfulOdd = hn::Zero(d16);
    const auto evenY = quotient(even(r), even(g), even(b), doubtful);
    const auto oddY = quotient(odd(r), odd(g), odd(b), doubtfulOdd);
    doubtful = hn::Or(doubtful, doubtfulOdd);
    if (HWY_UNLIKELY(!hn::AllTrue(d16, hn::Eq(doubtful, hn::Zero(d16)))))
        return WeighInDoubles(r, g, b, kRed / 1000.0, kGreen / 1000.0, kBlue / 1000.0,
                              kPlus / 1000.0);
    return hn::BitCast(Bytes(), hn::Or(evenY, hn::ShiftLeft<8>(oddY)));
}

// ComputeLuma.
HWY_INLINE ByteVector Luma(ByteVector r, ByteVector g, ByteVector b) {
    return Luminance<299, 587, 114, 500>(r, g, b);
}

}  // namespace lumo::imaging::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // HWY_SCALAR
#endif  // toggle
