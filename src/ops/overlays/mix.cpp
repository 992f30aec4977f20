#include "ops/overlays/mix.h"

#include <array>

#include "imaging/simd.h"

namespace lumo::ops::overlays {
namespace {

// x / 100 for x up to 43698.
inline std::uint16_t Hundredth(std::uint16_t x) {
    return static_cast<std::uint16_t>(((x * 5243U) >> 16) >> 3);
}

inline std::uint16_t Times(std::uint8_t byte, std::uint16_t weight) {
    return static_cast<std::uint16_t>(byte * weight);
}

LUMO_SIMD_CLONES void MixApart(std::uint8_t* first, const std::uint8_t* second, std::size_t bytes,
                               std::uint16_t weight, std::uint16_t rest) {
    for (std::size_t i = 0; i < bytes; ++i)
        first[i] = static_cast<std::uint8_t>(Hundredth(Times(first[i], weight)) +
                                             Hundredth(Times(second[i], rest)));
}

LUMO_SIMD_CLONES void MixOnce(std::uint8_t* first, const std::uint8_t* second, std::size_t bytes,
                              std::uint16_t weight, std::uint16_t rest) {
    for (std::size_t i = 0; i < bytes; ++i)
        first[i] = static_cast<std::uint8_t>(Hundredth(
            static_cast<std::uint16_t>(Times(first[i], weight) + Times(second[i], rest))));
}

// byte * weight / 100 in 32 bits that wrap, low 8 bits, for every byte.
std::array<std::uint8_t, 256> Products(unsigned weight) {
    std::array<std::uint8_t, 256> products;
    for (unsigned byte = 0; byte < products.size(); ++byte)
        products[byte] = static_cast<std::uint8_t>(static_cast<std::int32_t>(byte * weight) / 100);
    return products;
}

}  // namespace

void MixDividedApart(std::uint8_t* first, const std::uint8_t* second, std::size_t bytes,
                     int percent) {
    if (percent >= 0 && percent <= 100) {
        MixApart(first, second, bytes, static_cast<std::uint16_t>(percent),
                 static_cast<std::uint16_t>(100 - percent));
        return;
    }
    const auto weight = static_cast<unsigned>(percent);
    const auto ofFirst = Products(weight), ofSecond = Products(100U - weight);
    for (std::size_t i = 0; i < bytes; ++i)
        first[i] = static_cast<std::uint8_t>(ofFirst[first[i]] + ofSecond[second[i]]);
}

void MixDividedOnce(std::uint8_t* first, const std::uint8_t* second, std::size_t bytes,
                    int percent) {
    MixOnce(first, second, bytes, static_cast<std::uint16_t>(percent),
            static_cast<std::uint16_t>(100 - percent));
}

}  // namespace lumo::ops::overlays
