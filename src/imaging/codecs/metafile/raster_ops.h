#pragma once

// The bitwise combinations of pattern P, source S and destination D that metafiles name.

#include <array>
#include <cstdint>

namespace lumo::imaging::codecs::metafile {

/// A ternary operation: bit (P * 4 + S * 2 + D) of the code is its result.
using Rop3 = std::uint8_t;
inline constexpr Rop3 kBlackness = 0x00;
inline constexpr Rop3 kNoOperation = 0xAA;
inline constexpr Rop3 kSourceCopy = 0xCC;
inline constexpr Rop3 kPatternCopy = 0xF0;
inline constexpr Rop3 kWhiteness = 0xFF;

/// The operation of a drawing mode (1 black to 16 white, 13 copies the pen), with the pen as P.
/// Modes outside of that range copy.
constexpr Rop3 RopOfMode(unsigned mode) {
    if (mode < 1 || mode > 16) return kPatternCopy;
    const unsigned table = mode - 1;  // bit (P * 2 + D)
    const unsigned without = table & 3, with = table >> 2;
    return static_cast<Rop3>(without | without << 2 | with << 4 | with << 6);
}

/// The operation that does with S what `rop`, which has no S in it, does with P.
constexpr Rop3 PatternAsSource(Rop3 rop) {
    const unsigned without = rop & 3, with = (rop >> 4) & 3;
    return static_cast<Rop3>(without | with << 2 | without << 4 | with << 6);
}

constexpr bool UsesPattern(Rop3 rop) {
    return (rop >> 4) != (rop & 15);
}
constexpr bool UsesSource(Rop3 rop) {
    return ((rop >> 2) & 0x33) != (rop & 0x33);
}
constexpr bool UsesDestination(Rop3 rop) {
    return ((rop >> 1) & 0x55) != (rop & 0x55);
}
/// True if the operation inverts D for some P and S: drawn twice, it restores the picture.
constexpr bool InvertsDestination(Rop3 rop) {
    for (unsigned i = 0; i < 8; i += 2)
        if (((rop >> i) & 3) == 1) return true;
    return false;
}

/// The operation on each bit of three words, prepared for many of them.
class BitwiseRop {
  public:
    constexpr explicit BitwiseRop(Rop3 rop) {
        for (unsigned i = 0; i < 8; ++i) masks_[i] = (rop >> i) & 1 ? ~std::uint32_t{0} : 0;
    }
    constexpr std::uint32_t operator()(std::uint32_t p, std::uint32_t s, std::uint32_t d) const {
        const auto& m = masks_;
        const std::uint32_t without = Pick(s, Pick(d, m[3], m[2]), Pick(d, m[1], m[0]));
        const std::uint32_t with = Pick(s, Pick(d, m[7], m[6]), Pick(d, m[5], m[4]));
        return Pick(p, with, without);
    }

  private:
    // The bits of `one` where `bits` are set, else those of `other`.
    static constexpr std::uint32_t Pick(std::uint32_t bits, std::uint32_t one,
                                        std::uint32_t other) {
        return other ^ (bits & (one ^ other));
    }
    std::array<std::uint32_t, 8> masks_{};
};

constexpr std::uint32_t ApplyRop(Rop3 rop, std::uint32_t p, std::uint32_t s, std::uint32_t d) {
    return BitwiseRop(rop)(p, s, d);
}

/// The operation on S and D as amounts from 0 to 255 instead of bits: the one function that is
/// linear in each and agrees with the bitwise one where both are 0 or 255. Smoothed edges of a mask
/// keep their sense under it, which bits of grey values do not. P counts as 0.
constexpr std::uint32_t ApplySoftRop(Rop3 rop, std::uint32_t s, std::uint32_t d) {
    std::uint32_t sum = 0;
    for (unsigned i = 0; i < 4; ++i)
        if ((rop >> i) & 1) sum += (i & 2 ? s : 255 - s) * (i & 1 ? d : 255 - d);
    return (sum + 127) / 255;
}

}  // namespace lumo::imaging::codecs::metafile
