#include "ops/filters/disc.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace lumo::ops::filters {

double LimitRadius(double radius) {
    return std::clamp(radius, kLeastRadius, kLargestRadius);
}

Disc MakeDisc(double radius) {
    const double reach = LimitRadius(radius) + 1.0;
    Disc disc;
    disc.half = static_cast<int>(reach / 1.4 + 0.5);
    for (int row = 0; row < disc.Side(); ++row) {
        const int dy = row - disc.half;
        int first = 0;
        for (int dx = -disc.half; dx < 0; ++dx)
            if (!(std::sqrt(static_cast<double>(dx * dx + dy * dy)) < reach)) ++first;
        assert(first <= Disc::kMostFirst);
        disc.first[static_cast<std::size_t>(row)] = first;
        disc.count += disc.Side() - 2 * first;
    }
    return disc;
}

}  // namespace lumo::ops::filters
