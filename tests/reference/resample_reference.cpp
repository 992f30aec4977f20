#include "reference/resample_reference.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <utility>

namespace lumo::test {
namespace {

using imaging::ResampleFilter;

double Sinc(double x) {
    return x == 0 ? 1 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
}

double Radius(ResampleFilter filter) {
    switch (filter) {
        case ResampleFilter::Bicubic:
        case ResampleFilter::CatmullRom:
            return 2;
        case ResampleFilter::Lanczos3:
            return 3;
        default:
            return 1;
    }
}

double Kernel(ResampleFilter filter, double x) {
    x = std::abs(x);
    if (x >= Radius(filter)) return 0;
    switch (filter) {
        case ResampleFilter::Bilinear:
            return 1 - x;
        case ResampleFilter::Hermite:
            return 2 * x * x * x - 3 * x * x + 1;
        case ResampleFilter::Bicubic:
        case ResampleFilter::CatmullRom:
            if (x < 1) return 1.5 * x * x * x - 2.5 * x * x + 1;
            return -0.5 * x * x * x + 2.5 * x * x - 4 * x + 2;
        case ResampleFilter::Lanczos3:
            return Sinc(x) * Sinc(x / 3);
        default:
            std::abort();
    }
}

/// Position of the source, which may lie outside of it, and weight.
using Taps = std::vector<std::pair<int, double>>;

Taps TapsOf(int source, int target, int i, ResampleFilter filter) {
    Taps taps;
    const double scale = static_cast<double>(source) / target;
    if (filter == ResampleFilter::Box) {
        const double begin = i * scale, end = (i + 1) * scale;
        for (int j = 0; j < source; ++j) {
            const double covered = std::min(end, j + 1.0) - std::max(begin, static_cast<double>(j));
            if (covered > 0) taps.emplace_back(j, covered);
        }
    } else {
        const double widening = std::max(1.0, scale);
        const double centre = (i + 0.5) * scale;
        const double reach = Radius(filter) * widening + 1;
        for (int j = static_cast<int>(std::floor(centre - reach)); j <= centre + reach; ++j)
            taps.emplace_back(j, Kernel(filter, (j + 0.5 - centre) / widening));
    }
    double sum = 0;
    for (const auto& tap : taps) sum += tap.second;
    for (auto& tap : taps) tap.second /= sum;
    return taps;
}

}  // namespace

std::vector<double> ReferenceResample(imaging::ConstImageView source, imaging::Size target,
                                      ResampleFilter filter) {
    const imaging::Size from = source.Extent();
    const auto width = static_cast<std::size_t>(target.width);
    std::vector<double> wide(width * static_cast<std::size_t>(from.height) * 3);
    std::vector<double> result(target.Area() * 3);
    const auto at = [&](int x, int y, int c) {
        return (static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x)) * 3 +
               static_cast<std::size_t>(c);
    };
    for (int x = 0; x < target.width; ++x)
        for (const auto& [j, weight] : TapsOf(from.width, target.width, x, filter))
            for (int y = 0; y < from.height; ++y)
                for (int c = 0; c < 3; ++c)
                    wide[at(x, y, c)] += weight * source.At(std::clamp(j, 0, from.width - 1), y)[c];
    for (int y = 0; y < target.height; ++y)
        for (const auto& [j, weight] : TapsOf(from.height, target.height, y, filter))
            for (int x = 0; x < target.width; ++x)
                for (int c = 0; c < 3; ++c)
                    result[at(x, y, c)] +=
                        weight * wide[at(x, std::clamp(j, 0, from.height - 1), c)];
    return result;
}

}  // namespace lumo::test
