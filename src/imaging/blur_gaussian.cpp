#include "imaging/blur_gaussian.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/pixel_buffer.h"
#include "imaging/recursive_gaussian.h"
#include "imaging/resample_kernels.h"

namespace lumo::imaging {
namespace {

constexpr double kLargestRadius = 20000.0;
// Up to here the weighted sum of all neighbours is the faster way.
constexpr double kLargestSummed = 9.0;
// Beyond 3.5 deviations lies less than 0.0005 of the whole.
constexpr double kReachInDeviations = 3.5;
constexpr int kMostReach = 32;  // covers kLargestSummed
static_assert(kLargestSummed * kReachInDeviations <= kMostReach);

// Bits behind the point that a sample keeps between the two passes.
constexpr int kFraction = 7;

// Integer weights of the neighbours from -reach to reach, mirrored, with the sum 1 << bits.
struct GaussianWeights {
    int reach = 0;
    int taps = 0;  // 2 * reach + 1 and a spare one of weight 0: the kernels take pairs
    int bits = 0;
    std::array<std::int16_t, 2 * kMostReach + 2> weights{};
};

GaussianWeights BuildWeights(double deviation) {
    GaussianWeights result;
    result.reach = std::max(1, static_cast<int>(std::ceil(kReachInDeviations * deviation)));
    result.taps = 2 * result.reach + 2;
    std::array<double, kMostReach + 1> exact{};
    double sum = 0;
    for (int k = 0; k <= result.reach; ++k) {
        const double distance = k / deviation;
        exact[static_cast<std::size_t>(k)] = std::exp(-0.5 * distance * distance);
        sum += (k == 0 ? 1 : 2) * exact[static_cast<std::size_t>(k)];
    }
    // The largest weight fits in 16 bits, a sum of samples with their fraction in 32.
    const double largest = exact[0] / sum;
    result.bits = largest < 0.49 ? 16 : largest < 0.99 ? 15 : 14;
    int rest = 1 << result.bits;
    for (int k = 1; k <= result.reach; ++k) {
        const auto weight = static_cast<std::int16_t>(
            std::lround(std::ldexp(exact[static_cast<std::size_t>(k)] / sum, result.bits)));
        result.weights[static_cast<std::size_t>(result.reach - k)] = weight;
        result.weights[static_cast<std::size_t>(result.reach + k)] = weight;
        rest -= 2 * weight;
    }
    result.weights[static_cast<std::size_t>(result.reach)] = static_cast<std::int16_t>(rest);
    return result;
}

// Repeats the first and the last pixel of a row beyond its ends.
void ReplicateEnds(std::int16_t* row, std::size_t width, int reach) {
    const std::int16_t* last = row + (width - 1) * kChannels;
    std::int16_t* after = row + width * kChannels;
    for (int k = 1; k <= reach; ++k, after += kChannels) {
        std::copy_n(row, kChannels, row - k * kChannels);
        std::copy_n(last, kChannels, after);
    }
}

// Sums the columns into a row with fractions, then along that row.
void BlurRows(ConstImageView source, ImageView target, const GaussianWeights& gaussian, int first,
              int last, std::int16_t* scratch) {
    const std::size_t stride = source.Stride();
    std::int16_t* row = scratch + gaussian.reach * kChannels;
    std::array<const std::uint8_t*, 2 * kMostReach + 2> above{};
    std::array<const std::int16_t*, 2 * kMostReach + 2> beside{};
    const auto taps = static_cast<std::size_t>(gaussian.taps);
    for (std::size_t k = 0; k < taps; ++k) beside[k] = scratch + std::min(k, taps - 2) * kChannels;
    for (int y = first; y < last; ++y) {
        for (int k = 0; k < gaussian.taps; ++k)
            above[static_cast<std::size_t>(k)] =
                source.Row(std::clamp(y - gaussian.reach + k, 0, source.Height() - 1));
        kernels::SumRows(
            {above.data(), gaussian.weights.data(), gaussian.taps, gaussian.bits - kFraction}, 0,
            stride, row);
        ReplicateEnds(row, static_cast<std::size_t>(source.Width()), gaussian.reach);
        kernels::SumRows(
            {beside.data(), gaussian.weights.data(), gaussian.taps, gaussian.bits + kFraction}, 0,
            stride, target.Row(y));
    }
}

bool BlurBySums(ConstImageView source, ImageView target, double deviation) {
    const GaussianWeights gaussian = BuildWeights(deviation);
    const std::size_t samples =
        source.Stride() + static_cast<std::size_t>(2 * gaussian.reach) * kChannels;
    std::atomic<bool> ok{true};
    ForRows(source.Height(), source.Stride() * static_cast<std::size_t>(gaussian.taps),
            [&](int first, int last) {
                const PixelBuffer scratch = PixelBuffer::TryAllocate(2 * samples);
                if (scratch) {
                    BlurRows(source, target, gaussian, first, last,
                             reinterpret_cast<std::int16_t*>(scratch.Data()));
                } else {
                    ok = false;
                }
            });
    if (!ok) SetLastError("not enough memory to blur the picture");
    return ok;
}

}  // namespace

bool BlurGaussian(ConstImageView source, ImageView target, double radius) {
    if (source.Extent() != target.Extent()) {
        SetLastError("the target of the blur has another size than the picture");
        return false;
    }
    if (source.IsEmpty()) return true;
    if (!(radius > 0)) {
        std::memcpy(target.Row(0), source.Row(0), source.Bytes().size());
        return true;
    }
    if (radius <= kLargestSummed) return BlurBySums(source, target, radius);
    return RecursiveGaussian(source, target, std::min(radius, kLargestRadius));
}

}  // namespace lumo::imaging
