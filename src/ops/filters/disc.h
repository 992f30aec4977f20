#pragma once

#include <array>
#include <cstddef>

namespace lumo::ops::filters {

inline constexpr double kLeastRadius = 0.1;
inline constexpr double kLargestRadius = 10.0;

/// The radius of a filter of this folder, limited to 0.1 to 10.0.
double LimitRadius(double radius);

/// The window of the disc filters: a square of side 2 * half + 1 without the cells whose distance
/// from the centre reaches radius + 1. It is symmetric; since `half` is near that distance divided
/// by the square root of two, only some cells at the corners are missing.
struct Disc {
    static constexpr int kMostHalf = 8;
    static constexpr int kMostSide = 2 * kMostHalf + 1;
    /// No row begins later than in this column.
    static constexpr int kMostFirst = 2;

    int half = 0;
    int count = 0;                       // cells that belong to it
    std::array<int, kMostSide> first{};  // of each row: the column of its first cell, from 0

    int Side() const { return 2 * half + 1; }
    int First(int row) const { return first[static_cast<std::size_t>(row)]; }
};

/// The disc of a radius, which is limited first.
Disc MakeDisc(double radius);

}  // namespace lumo::ops::filters
