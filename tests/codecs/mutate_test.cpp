#include "support/mutate.h"

#include <gtest/gtest.h>

#include <numeric>

namespace lumo::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Counting(std::size_t length) {
    Bytes bytes(length);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

TEST(Mutate, IsTheSameForTheSameSeed) {
    const Bytes file = Counting(1000);
    for (std::uint32_t seed = 0; seed < 100; ++seed)
        EXPECT_EQ(Mutate(file, seed), Mutate(file, seed));
    EXPECT_NE(Mutate(file, 1), Mutate(file, 2));
}

TEST(Mutate, NearlyAlwaysDamages) {
    const Bytes file = Counting(1000);
    int damaged = 0, sameLength = 0;
    for (std::uint32_t seed = 0; seed < 1000; ++seed) {
        const Bytes copy = Mutate(file, seed);
        damaged += copy != file ? 1 : 0;
        sameLength += copy.size() == file.size() ? 1 : 0;
    }
    EXPECT_GT(damaged, 950);
    EXPECT_GT(sameLength, 200);  // not only cut or grown
    EXPECT_LT(sameLength, 800);
}

TEST(Mutate, KeepsToItsLength) {
    for (const std::size_t length : {0U, 1U, 2U, 100U})
        for (std::uint32_t seed = 0; seed < 2000; ++seed)
            EXPECT_LE(Mutate(Counting(length), seed).size(), 2 * length + 64);
}

}  // namespace
}  // namespace lumo::test
