#include "ops/colour/hsl_kernels.h"

#include <algorithm>

#include "imaging/colour.h"

#define HWY_WANT_AVX3_DL
// The order of lanes within blocks is what these loops build on.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ops/colour/hsl_kernels.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

#include "imaging/pixels-inl.h"

#ifndef LUMO_OPS_COLOUR_HSL_SHARES
#define LUMO_OPS_COLOUR_HSL_SHARES
namespace lumo::ops::colour::kernels {

// n / 255 for whole n up to 255, as a division rounds it: the reciprocal in two parts, the first
// so short that its product is exact.
inline constexpr double kHigh255 = 0x1.0101010101p-8;
inline constexpr double kLow255 = 0x1.01010101010p-56;

constexpr bool SharesAreThoseOfADivision() {
    for (int n = 0; n < 256; ++n)
        if (n * kHigh255 + n * kLow255 != n / 255.0) return false;
    return true;
}
static_assert(SharesAreThoseOfADivision());

}  // namespace lumo::ops::colour::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace lumo::ops::colour::kernels::HWY_NAMESPACE {

// The channel on the slope.
HWY_INLINE std::uint8_t SlopeByte(const Tone& tone, const Slope& slope) {
    return static_cast<std::uint8_t>(
        static_cast<int>((tone.spread * slope.first * slope.second + tone.low) * 255.0));
}

#if HWY_TARGET == HWY_SCALAR

void ToneRun(std::uint8_t* p, std::size_t count, const imaging::LutSet& luts) {
    for (; count > 0; --count, p += 3) {
        const auto lightness =
            static_cast<std::size_t>(imaging::RgbToHsl({p[0], p[1], p[2]}).lightness);
        p[0] = (*luts.red)[lightness];
        p[1] = (*luts.green)[lightness];
        p[2] = (*luts.blue)[lightness];
    }
}

void AdjustRun(std::uint8_t* p, std::size_t count, const HslTables& tables) {
    for (; count > 0; --count, p += 3) {
        const auto [low, high] = std::minmax({p[0], p[1], p[2]});
        const Tone& tone = tables.tones[tables.toneOf[high * 256U + low]];
        const auto hue = static_cast<std::size_t>(imaging::RgbToHsl({p[0], p[1], p[2]}).hue);
        const std::uint8_t values[] = {SlopeByte(tone, tables.slopes[hue]), tone.highByte,
                                       tone.lowByte};
        for (int c = 0; c < 3; ++c) p[c] = values[tables.places[hue] >> 2 * c & 3];
    }
}

#else

namespace hn = hwy::HWY_NAMESPACE;
namespace vectors = imaging::HWY_NAMESPACE;
using vectors::Bytes, vectors::ByteVector, vectors::Doubles, vectors::DoubleVector,
    vectors::kMaxBytes;

HWY_INLINE DoubleVector Share(DoubleVector n) {
    const Doubles d;
    return hn::Add(hn::Mul(n, hn::Set(d, kHigh255)), hn::Mul(n, hn::Set(d, kLow255)));
}

// One vector of pixels, lane by lane.
struct Block {
    HWY_ALIGN std::uint8_t max[kMaxBytes];
    HWY_ALIGN std::uint8_t min[kMaxBytes];
    // The hue is 60 * ((first - second) / (max - min) + third of the hexcone).
    HWY_ALIGN std::uint8_t first[kMaxBytes];
    HWY_ALIGN std::uint8_t second[kMaxBytes];
    HWY_ALIGN std::uint8_t third[kMaxBytes];
    HWY_ALIGN std::int32_t hue[kMaxBytes];
    HWY_ALIGN std::uint8_t slope[kMaxBytes];
    HWY_ALIGN std::uint8_t high[kMaxBytes];
    HWY_ALIGN std::uint8_t low[kMaxBytes];
    HWY_ALIGN std::uint8_t places[kMaxBytes];
};

HWY_INLINE void Sort(ByteVector r, ByteVector g, ByteVector b, Block& block) {
    const Bytes d;
    const ByteVector max = hn::Max(hn::Max(r, g), b);
    const auto blue = hn::Eq(b, max);  // goes before green, green before red
    const auto green = hn::Eq(g, max);
    const auto choose = [&](ByteVector ifBlue, ByteVector ifGreen, ByteVector ifRed) {
        return hn::IfThenElse(blue, ifBlue, hn::IfThenElse(green, ifGreen, ifRed));
    };
    hn::Store(max, d, block.max);
    hn::Store(hn::Min(hn::Min(r, g), b), d, block.min);
    hn::Store(choose(r, b, g), d, block.first);
    hn::Store(choose(g, r, b), d, block.second);
    hn::Store(choose(hn::Set(d, std::uint8_t{4}), hn::Set(d, std::uint8_t{2}), hn::Zero(d)), d,
              block.third);
}

HWY_INLINE void FindHues(Block& block) {
    const Doubles d;
    const hn::Rebind<std::int32_t, Doubles> d32;
    const auto load = [](const std::uint8_t* bytes) { return vectors::LoadAsDoubles(bytes); };
    for (std::size_t i = 0; i < hn::Lanes(Bytes()); i += hn::Lanes(d)) {
        const auto difference =
            hn::Sub(Share(load(block.first + i)), Share(load(block.second + i)));
        // Grey has no hue, and whatever stands for it changes nothing.
        const auto range = hn::Max(hn::Sub(Share(load(block.max + i)), Share(load(block.min + i))),
                                   hn::Set(d, 1e-3));
        const auto h = hn::Add(hn::Div(difference, range), load(block.third + i));
        const auto hue = hn::DemoteTo(d32, hn::Mul(h, hn::Set(d, 60.0)));
        const auto turn = hn::And(hn::BroadcastSignBit(hue), hn::Set(d32, 360));
        hn::Store(hn::Add(hue, turn), d32, block.hue + i);
    }
}

HWY_INLINE void LookUp(const HslTables& tables, Block& block) {
    for (std::size_t i = 0; i < hn::Lanes(Bytes()); ++i) {
        const Tone& tone = tables.tones[tables.toneOf[block.max[i] * 256U + block.min[i]]];
        const auto hue = static_cast<std::size_t>(block.hue[i]);
        block.slope[i] = SlopeByte(tone, tables.slopes[hue]);
        block.high[i] = tone.highByte;
        block.low[i] = tone.lowByte;
        block.places[i] = tables.places[hue];
    }
}

template <int kChannel>
HWY_INLINE ByteVector ChannelOf(const Block& block) {
    const Bytes d;
    const ByteVector places = hn::Load(d, block.places);
    const auto stands = [&](int place) {
        const auto bit = hn::Set(d, static_cast<std::uint8_t>(place << 2 * kChannel));
        return hn::Eq(hn::And(places, bit), bit);
    };
    return hn::IfThenElse(
        stands(kHigh), hn::Load(d, block.high),
        hn::IfThenElse(stands(kLow), hn::Load(d, block.low), hn::Load(d, block.slope)));
}

void AdjustRun(std::uint8_t* pixels, std::size_t count, const HslTables& tables) {
    Block block;
    vectors::ForPixelVectors(pixels, count, [&](ByteVector& r, ByteVector& g, ByteVector& b) {
        Sort(r, g, b, block);
        FindHues(block);
        LookUp(tables, block);
        r = ChannelOf<0>(block);
        g = ChannelOf<1>(block);
        b = ChannelOf<2>(block);
    });
}

HWY_INLINE ByteVector LightnessOf(ByteVector r, ByteVector g, ByteVector b) {
    const Doubles d;
    HWY_ALIGN std::uint8_t max[kMaxBytes], min[kMaxBytes], lightness[kMaxBytes];
    hn::Store(hn::Max(hn::Max(r, g), b), Bytes(), max);
    hn::Store(hn::Min(hn::Min(r, g), b), Bytes(), min);
    for (std::size_t i = 0; i < hn::Lanes(Bytes()); i += hn::Lanes(d)) {
        const auto sum =
            hn::Add(Share(vectors::LoadAsDoubles(max + i)), Share(vectors::LoadAsDoubles(min + i)));
        const auto l = hn::Mul(sum, hn::Set(d, 0.5));
        vectors::StoreAsBytes(hn::Mul(l, hn::Set(d, 100.0)), lightness + i);
    }
    return hn::Load(Bytes(), lightness);
}

void ToneRun(std::uint8_t* pixels, std::size_t count, const imaging::LutSet& luts) {
    const vectors::ByteTable red(luts.red->data()), green(luts.green->data()),
        blue(luts.blue->data());
    vectors::ForPixelVectors(pixels, count, [&](ByteVector& r, ByteVector& g, ByteVector& b) {
        const ByteVector lightness = LightnessOf(r, g, b);
        r = red(lightness);
        g = green(lightness);
        b = blue(lightness);
    });
}

#endif  // HWY_SCALAR

}  // namespace lumo::ops::colour::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::ops::colour::kernels {

HWY_EXPORT(AdjustRun);
HWY_EXPORT(ToneRun);

void AdjustHsl(std::uint8_t* pixels, std::size_t count, const HslTables& tables) {
    HWY_DYNAMIC_DISPATCH(AdjustRun)(pixels, count, tables);
}

void ToneByLightness(std::uint8_t* pixels, std::size_t count, const imaging::LutSet& luts) {
    HWY_DYNAMIC_DISPATCH(ToneRun)(pixels, count, luts);
}

}  // namespace lumo::ops::colour::kernels
#endif  // HWY_ONCE
