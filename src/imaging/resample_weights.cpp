#include "imaging/resample_weights.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>
#include <span>

namespace lumo::imaging {
namespace {

constexpr int kWeightLimit = 32766;  // one below int16's, as cumulative rounding may add one

// sin(t) for t from 0 to pi. The C library's own sine picks its code by the processor, and its
// last bit with it; weights, and with them pictures, must not depend on the machine.
double Sine(double t) {
    if (t > std::numbers::pi / 2) t = std::numbers::pi - t;
    double term = t, sum = t;
    for (int n = 2; n < 22; n += 2) {
        term = -term * t * t / (n * (n + 1));
        sum += term;
    }
    return sum;
}

// sinc(x) * sinc(x / 3), with sin(3t) = 3 sin(t) - 4 sin(t)^3.
double Lanczos3(double x) {
    if (x < 1e-8) return 1.0;
    const double t = std::numbers::pi * x / 3.0;
    const double s = Sine(t);
    return (3.0 * s - 4.0 * s * s * s) * s / (3.0 * t * t);
}

// Keys, "Cubic convolution interpolation for digital image processing", 1981, with a = -0.5: the
// spline of Catmull and Rom is the same curve.
double Cubic(double x) {
    return x < 1.0 ? (1.5 * x - 2.5) * x * x + 1.0 : ((-0.5 * x + 2.5) * x - 4.0) * x + 2.0;
}

// The filter is 0 at this distance and beyond.
double FilterRadius(ResampleFilter filter) {
    switch (filter) {
        case ResampleFilter::Bicubic:
        case ResampleFilter::CatmullRom:
            return 2.0;
        case ResampleFilter::Lanczos3:
            return 3.0;
        default:
            return 1.0;
    }
}

// The filter at a distance of x source positions, not widened. The box has its own windows.
double FilterValue(ResampleFilter filter, double x) {
    x = std::abs(x);
    if (x >= FilterRadius(filter)) return 0.0;
    switch (filter) {
        case ResampleFilter::Hermite:
            return (2.0 * x - 3.0) * x * x + 1.0;
        case ResampleFilter::Bicubic:
        case ResampleFilter::CatmullRom:
            return Cubic(x);
        case ResampleFilter::Lanczos3:
            return Lanczos3(x);
        default:
            return 1.0 - x;
    }
}

// The source positions that one target position reads.
struct Window {
    int first = 0;
    int count = 0;
};

// The area of each source position under the target position, counted in 1 / target.
Window BoxWindow(int source, int target, int i, double* values) {
    const auto begin = static_cast<std::int64_t>(i) * source;
    const std::int64_t end = begin + source;
    const auto first = static_cast<int>(begin / target);
    const auto last = static_cast<int>((end - 1) / target);
    for (int j = first; j <= last; ++j) {
        const auto left = static_cast<std::int64_t>(j) * target;
        const std::int64_t covered = std::min(end, left + target) - std::max(begin, left);
        values[j - first] = static_cast<double>(covered) / source;
    }
    return {first, last - first + 1};
}

Window FilterWindow(int source, int target, ResampleFilter filter, int i, double* values) {
    const double centre =
        static_cast<double>((2 * static_cast<std::int64_t>(i) + 1) * source) / (2.0 * target) - 0.5;
    const double widening = std::max(1.0, static_cast<double>(source) / target);
    const double support = FilterRadius(filter) * widening;
    const int edge = source - 1;
    const auto low = static_cast<int>(std::ceil(centre - support));
    // The position in the middle sees as far to the right as to the left.
    const int high = 2 * i + 1 == target ? edge - low : static_cast<int>(centre + support);
    const Window window{std::clamp(low, 0, edge),
                        std::clamp(high, 0, edge) - std::clamp(low, 0, edge) + 1};
    std::fill_n(values, window.count, 0.0);
    double sum = 0;
    for (int j = low; j <= high; ++j) {
        const double value = FilterValue(filter, (j - centre) / widening);
        values[std::clamp(j, 0, edge) - window.first] += value;
        sum += value;
    }
    for (int k = 0; k < window.count; ++k) values[k] /= sum;
    return window;
}

// Rounds the running sum rather than each weight: the integers then add up to `one` exactly, and
// the error of a whole stretch of weights is never more than that of its two ends.
void Quantise(const double* values, int count, int one, std::int16_t* weights) {
    double sum = 0;
    int before = 0;
    for (int k = 0; k < count; ++k) {
        sum += values[k];
        const int now = k + 1 == count ? one : static_cast<int>(std::lround(sum * one));
        weights[k] = static_cast<std::int16_t>(now - before);
        before = now;
    }
}

// Gives the right half the weights of the left one, and what is missing to the middle.
void Symmetrise(std::int16_t* weights, int count, int one) {
    const int half = (count - 1) / 2;
    int rest = one;
    for (int k = 0; k < half; ++k) {
        weights[count - 1 - k] = weights[k];
        rest -= 2 * weights[k];
    }
    if (count % 2 == 0) rest /= 2;
    weights[half] = weights[count - 1 - half] = static_cast<std::int16_t>(rest);
}

// The exact weights of the left half of the target, and their integers: scratch of the build.
struct HalfTable {
    std::span<Window> windows;
    std::span<double> values;         // `room` for each window
    std::span<std::int16_t> weights;  // likewise
    std::size_t room = 0;
    PixelBuffer memory;

    double* Values(int i) const { return values.data() + static_cast<std::size_t>(i) * room; }
    std::int16_t* Weights(int i) const {
        return weights.data() + static_cast<std::size_t>(i) * room;
    }
};

std::optional<HalfTable> AllocateHalf(int source, int target, ResampleFilter filter) {
    const double widening = std::max(1.0, static_cast<double>(source) / target);
    const double reach =
        filter == ResampleFilter::Box ? widening : 2.0 * FilterRadius(filter) * widening;
    HalfTable half;
    half.room = static_cast<std::size_t>(std::min<double>(source, std::floor(reach) + 2.0));
    const auto count = static_cast<std::size_t>((target + 1) / 2);
    const std::size_t total = count * half.room;
    half.memory = PixelBuffer::TryAllocate(total * (sizeof(double) + sizeof(std::int16_t)) +
                                           count * sizeof(Window));
    if (!half.memory) return std::nullopt;
    auto* values = reinterpret_cast<double*>(half.memory.Data());
    auto* windows = reinterpret_cast<Window*>(values + total);
    half.values = {values, total};
    half.windows = {windows, count};
    half.weights = {reinterpret_cast<std::int16_t*>(windows + count), total};
    return half;
}

// The most bits with which the largest weight still fits.
int BitsFor(const HalfTable& half, int maxBits) {
    double largest = 0;
    for (std::size_t i = 0; i < half.windows.size(); ++i) {
        const double* values = half.Values(static_cast<int>(i));
        for (int k = 0; k < half.windows[i].count; ++k)
            largest = std::max(largest, std::abs(values[k]));
    }
    int bits = maxBits;
    while (bits > 14 && largest * (1 << bits) > kWeightLimit) --bits;
    return bits;
}

// Turns the values into integers and drops those that came out as 0 at either end.
void QuantiseHalf(HalfTable& half, int target, int bits) {
    const int one = 1 << bits;
    for (int i = 0; i < static_cast<int>(half.windows.size()); ++i) {
        Window& window = half.windows[static_cast<std::size_t>(i)];
        std::int16_t* weights = half.Weights(i);
        Quantise(half.Values(i), window.count, one, weights);
        if (2 * i + 1 == target) Symmetrise(weights, window.count, one);
        const auto isUsed = [](std::int16_t weight) { return weight != 0; };
        std::int16_t* const end = weights + window.count;
        std::int16_t* const begin = std::find_if(weights, end, isUsed);
        const auto skipped = static_cast<int>(begin - weights);
        std::copy(begin, end, weights);
        window.first += skipped;
        window.count -= skipped;
        while (weights[window.count - 1] == 0) --window.count;
    }
}

bool AllocateAxis(AxisWeights& axis) {
    const auto count = static_cast<std::size_t>(axis.target);
    const std::size_t total = count * static_cast<std::size_t>(axis.stride);
    axis.memory =
        PixelBuffer::TryAllocate(count * sizeof(std::int32_t) + total * sizeof(std::int16_t));
    if (!axis.memory) return false;
    axis.first = reinterpret_cast<std::int32_t*>(axis.memory.Data());
    axis.weights = reinterpret_cast<std::int16_t*>(axis.first + count);
    std::fill_n(axis.weights, total, std::int16_t{0});
    return true;
}

}  // namespace

std::optional<AxisWeights> BuildAxisWeights(int source, int target, ResampleFilter filter,
                                            int maxBits) {
    assert(source > 0 && target > 0 && maxBits >= 14 && maxBits <= 22);
    auto half = AllocateHalf(source, target, filter);
    if (!half) return std::nullopt;
    const auto halfCount = static_cast<int>(half->windows.size());
    for (int i = 0; i < halfCount; ++i)
        half->windows[static_cast<std::size_t>(i)] =
            filter == ResampleFilter::Box
                ? BoxWindow(source, target, i, half->Values(i))
                : FilterWindow(source, target, filter, i, half->Values(i));

    AxisWeights axis;
    axis.source = source;
    axis.target = target;
    axis.bits = BitsFor(*half, maxBits);
    QuantiseHalf(*half, target, axis.bits);
    for (const Window& window : half->windows) axis.taps = std::max(axis.taps, window.count);
    axis.stride = axis.taps + axis.taps % 2;
    if (!AllocateAxis(axis)) return std::nullopt;

    for (int i = 0; i < halfCount; ++i) {
        const Window& window = half->windows[static_cast<std::size_t>(i)];
        // Every position has the same number of taps; near the right edge the spare ones lie left.
        const int first = std::min(window.first, source - axis.taps);
        const int mirror = target - 1 - i;
        std::int16_t* left = axis.weights + static_cast<std::size_t>(i) * axis.stride;
        std::copy_n(half->Weights(i), window.count, left + (window.first - first));
        axis.first[i] = first;
        if (mirror != i) {
            std::int16_t* right = axis.weights + static_cast<std::size_t>(mirror) * axis.stride;
            std::reverse_copy(left, left + axis.taps, right);
            axis.first[mirror] = source - axis.taps - first;
        }
        std::int64_t gain = 0;
        for (int k = 0; k < axis.taps; ++k) gain += std::abs(left[k]);
        axis.gain = std::max(axis.gain, gain);
    }
    return axis;
}

}  // namespace lumo::imaging
