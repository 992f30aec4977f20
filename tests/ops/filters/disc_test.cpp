#include "ops/filters/disc.h"

#include <gtest/gtest.h>

#include <limits>

#include "reference/disc_reference.h"

namespace lumo::ops::filters {
namespace {

TEST(Disc, HasTheStatedSizes) {
    struct Row {
        double radius;
        int half, side, count;
    };
    for (const Row row : {Row{0.1, 1, 3, 5}, Row{1, 1, 3, 9}, Row{2, 2, 5, 25}, Row{3, 3, 7, 45},
                          Row{5, 4, 9, 81}, Row{7, 6, 13, 165}, Row{10, 8, 17, 285}}) {
        const Disc disc = MakeDisc(row.radius);
        EXPECT_EQ(disc.half, row.half) << row.radius;
        EXPECT_EQ(disc.Side(), row.side) << row.radius;
        EXPECT_EQ(disc.count, row.count) << row.radius;
    }
}

TEST(Disc, HoldsTheCellsOfTheMaskForEveryRadius) {
    for (int tenths = 1; tenths <= 100; ++tenths) {
        const Disc disc = MakeDisc(tenths / 10.0);
        const auto mask = reference::DiscMask(tenths / 10.0);
        ASSERT_EQ(static_cast<std::size_t>(disc.Side()), mask.size());
        int count = 0;
        for (int row = 0; row < disc.Side(); ++row) {
            EXPECT_LE(disc.First(row), Disc::kMostFirst);
            for (int column = 0; column < disc.Side(); ++column) {
                const bool set =
                    column >= disc.First(row) && column <= 2 * disc.half - disc.First(row);
                EXPECT_EQ(mask[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)],
                          set ? 1 : 0)
                    << tenths << " row " << row << " column " << column;
                count += set ? 1 : 0;
            }
        }
        EXPECT_EQ(disc.count, count);
        EXPECT_EQ(count % 2, 1);
    }
}

TEST(Disc, LimitsTheRadius) {
    EXPECT_EQ(LimitRadius(0.0), 0.1);
    EXPECT_EQ(LimitRadius(-5.0), 0.1);
    EXPECT_EQ(LimitRadius(10.5), 10.0);
    EXPECT_EQ(LimitRadius(3.25), 3.25);
    EXPECT_EQ(LimitRadius(std::numeric_limits<double>::infinity()), 10.0);
    EXPECT_EQ(MakeDisc(99).count, 285);
    EXPECT_EQ(MakeDisc(-1).count, 5);
}

}  // namespace
}  // namespace lumo::ops::filters
