#include "ops/overlays/mix.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace lumo::ops::overlays {
namespace {

// Every pair of bytes.
struct Pairs {
    std::vector<std::uint8_t> first, second;
    Pairs() {
        for (int a = 0; a < 256; ++a)
            for (int b = 0; b < 256; ++b) {
                first.push_back(static_cast<std::uint8_t>(a));
                second.push_back(static_cast<std::uint8_t>(b));
            }
    }
};

std::int32_t Wrapped(std::int64_t value) {
    return static_cast<std::int32_t>(value);
}

TEST(MixDividedApart, EveryPairOfBytesAtEveryPercent) {
    std::vector<int> percents{-2147483647 - 1, -1000, -1, 101, 150, 255, 1000, 8421505, 2147483647};
    for (int percent = 0; percent <= 100; ++percent) percents.push_back(percent);
    for (const int percent : percents) {
        const Pairs pairs;
        std::vector<std::uint8_t> actual = pairs.first;
        MixDividedApart(actual.data(), pairs.second.data(), actual.size(), percent);
        const std::int64_t rest = Wrapped(100 - std::int64_t{percent});
        for (std::size_t i = 0; i < actual.size(); ++i) {
            const int expected = Wrapped(pairs.first[i] * std::int64_t{percent}) / 100 +
                                 Wrapped(pairs.second[i] * rest) / 100;
            ASSERT_EQ(actual[i], static_cast<std::uint8_t>(expected))
                << percent << ": " << i / 256 << ", " << i % 256;
        }
    }
}

TEST(MixDividedOnce, EveryPairOfBytesAtEveryPercent) {
    for (int percent = 0; percent <= 100; ++percent) {
        const Pairs pairs;
        std::vector<std::uint8_t> actual = pairs.first;
        MixDividedOnce(actual.data(), pairs.second.data(), actual.size(), percent);
        for (std::size_t i = 0; i < actual.size(); ++i)
            ASSERT_EQ(actual[i],
                      (pairs.first[i] * percent + pairs.second[i] * (100 - percent)) / 100);
    }
}

TEST(Mixes, DifferByOneWhereBothProductsLeaveARest) {
    std::uint8_t apart = 199, once = 199;
    const std::uint8_t other = 199;
    MixDividedApart(&apart, &other, 1, 50);
    MixDividedOnce(&once, &other, 1, 50);
    EXPECT_EQ(apart, 198);
    EXPECT_EQ(once, 199);
}

TEST(By255, IsTheTruncatedQuotient) {
    for (unsigned x = 0; x <= 255 * 255; ++x)
        ASSERT_EQ(By255(static_cast<std::uint16_t>(x)), x / 255);
}

}  // namespace
}  // namespace lumo::ops::overlays
