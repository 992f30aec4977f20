#include "imaging/tone.h"

#include <algorithm>
#include <cmath>

#include "imaging/last_error.h"
#include "imaging/pixel_runs.h"
#include "imaging/tone_kernels.h"

namespace lumo::imaging {
namespace {

std::uint8_t RoundToByte(double value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0) + 0.5);
}

/// One table for all channels.
bool ApplyLut(ImageView image, const Lut& lut) {
    return ApplyLUTsToImage(image, {&lut, &lut, &lut});
}

void StretchLevels(const std::array<std::uint64_t, 256>& histogram, int low, int high, Lut& lut) {
    const auto occupied = [&](int level) {
        return histogram[static_cast<std::size_t>(level)] != 0;
    };
    while (low < high && !occupied(low)) ++low;
    while (low < high && !occupied(high)) --high;
    if (low >= high) return;
    const int range = high - low;
    for (int level = 0; level < 256; ++level) {
        const int inside = std::clamp(level, low, high) - low;
        lut[static_cast<std::size_t>(level)] =
            static_cast<std::uint8_t>((inside * 255 + range / 2) / range);
    }
}

void EqualizeLevels(const std::array<std::uint64_t, 256>& histogram, int low, int high, Lut& lut) {
    const std::span<const std::uint64_t> counts(histogram.data() + low,
                                                static_cast<std::size_t>(high - low) + 1);
    std::uint64_t total = 0;
    for (const std::uint64_t count : counts) total += count;
    const auto first = std::find_if(counts.begin(), counts.end(), [](auto n) { return n != 0; });
    if (first == counts.end() || total == *first) return;
    // The lowest occupied level becomes `low`, the highest one `high`.
    const auto range = static_cast<std::uint64_t>(high - low);
    const std::uint64_t above = total - *first;
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        sum += counts[i];
        const std::uint64_t share = sum < *first ? 0 : sum - *first;
        lut[static_cast<std::size_t>(low) + i] = static_cast<std::uint8_t>(
            static_cast<std::uint64_t>(low) + (share * range + above / 2) / above);
    }
}

}  // namespace

Lut ContrastLut(double brightness, double contrast) {
    const double k = contrast <= 0 ? 1 + contrast : 1 / (1 - contrast);
    Lut lut{};
    for (std::size_t v = 0; v < lut.size(); ++v) {
        const double share = static_cast<double>(v) / 255 - 0.5;
        lut[v] = RoundToByte((share * k + 0.5 + brightness) * 255);
    }
    return lut;
}

bool AdjustBrightnessContrast(ImageView image, double brightness, double contrast) {
    return ApplyLut(image, ContrastLut(brightness, contrast));
}

bool AdjustGamma(ImageView image, double gamma) {
    if (!(gamma > 0)) {
        SetLastError("gamma is not above 0");
        return false;
    }
    Lut lut{};
    for (std::size_t v = 0; v < lut.size(); ++v)
        lut[v] = RoundToByte(255 * std::pow(static_cast<double>(v) / 255, 1 / gamma));
    return ApplyLut(image, lut);
}

Lut LuminanceLut(const std::array<std::uint64_t, 256>& histogram, int low, int high,
                 HistogramMode mode) {
    Lut lut = IdentityLut();
    if (mode == HistogramMode::Stretch)
        StretchLevels(histogram, low, high, lut);
    else
        EqualizeLevels(histogram, low, high, lut);
    return lut;
}

bool AutoBrightnessRGB(ImageView image, int low, int high, HistogramMode mode) {
    if (image.IsEmpty()) {
        SetLastError("the picture is empty");
        return false;
    }
    if (low > high) {
        SetLastError("the low threshold is above the high one");
        return false;
    }
    const Lut lut =
        LuminanceLut(LumaHistogram(image), std::clamp(low, 0, 255), std::clamp(high, 0, 255), mode);
    if (lut == IdentityLut()) return true;
    ForPixelRuns(image,
                 [&](std::uint8_t* pixels, std::size_t count) { MoveLuma(pixels, count, lut); });
    return true;
}

}  // namespace lumo::imaging
